#pragma once

// A small source and the changes that tests make of it.

#include "test-support.h"

#include <string>

namespace zel_test {

inline const std::string menu_source = R"(define format utf8
app "notes"
default lang "english"
define file "english.lang" lang "english" 200 200 1
define file "german.lang" lang "german" 200 200 1
GROUP "menu" {
  VISIBLE 1
  SCREEN_SHOT "main"
  ITEM "_Open" {
    DESCRIPTION "opens a note"
    TYP 1
    CTIME 1700000000
    READY 1
    USED YES { "00010:a.c" "00020:a.c" }
    LANG "english" { "_Open" }
    LANG "german" { "_Öffnen" }
  }
  ITEM "_Save" {
    CTIME 1700000000
    READY 1
    USED YES { "00030:a.c" }
    LANG "english" { "_Save" }
    LANG "german" { "Sichern\n" "jetzt" }
    COMMENT "german" { "kurz" }
  }
  ITEM "_Close" {
    CTIME 1700000000
    USED NO
    LANG "english" { "_Close" }
  }
}
GROUP "help" {
  ITEM "_About" { CTIME 1700000000 USED YES LANG "english" { "_About" } }
}
)";

// The text with the first place of what is given replaced; it must be there.
inline std::string with(std::string text, const std::string &what, const std::string &by)
{
    const std::size_t at = text.find(what);
    if (at == std::string::npos)
        std::fprintf(stderr, "not there: %s\n", what.c_str());
    require(at != std::string::npos, "with");
    return text.replace(at, what.size(), by);
}

} // namespace zel_test
