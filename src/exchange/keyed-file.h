#pragma once

// Files with a text for each key, one language in each or several, from which a project comes over
// (exchange/keyed-source.h makes a source of them). A reader is a file and a row of the table of
// formats.

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "exchange/input.h"
#include "exchange/texts.h"

namespace zel::exchange {

struct keyed_text {
    std::string group;              // empty: none
    std::string key;                // as a whole, for people: "menu.open"
    std::string text;               // empty: there is none, or it is in its forms
    std::vector<std::string> cases; // of the forms, by name: "one"
    std::vector<std::string> forms;
    std::vector<std::string> remarks; // lines
    std::uint32_t line = 0;
};

// The texts of one language.
struct keyed_part {
    said_language language; // nothing said: the file's name says it
    std::vector<keyed_text> texts;

    // Adds a text. A key that is there already is the fault.
    fault add(keyed_text one);

private:
    std::unordered_map<std::string, std::uint32_t> lines_; // by group and key
};

struct keyed_file {
    std::vector<keyed_part> parts;
    bool has_suffixes = false;      // "files_one" and "files_other" are forms of "files"
    std::vector<std::string> notes; // what somebody should know, a line each
};

using keyed_reader = fault (*)(std::string_view bytes, keyed_file &file);

// JSON: objects in objects, or keys with points.
fault read_keyed_json(std::string_view bytes, keyed_file &file);
// Sections of lines KEY=TEXT.
fault read_ini(std::string_view bytes, keyed_file &file);
// Tables of strings in scripts of resources, with LANGUAGE statements, of which one file may have
// several. Bytes are those of the page that "#pragma code_page" tells, else UTF-8.
fault read_rc(std::string_view bytes, keyed_file &file);

// Makes the bytes UTF-8 without a mark: they are, or a mark says that they are UTF-16.
fault decode(std::string_view bytes, std::string &text);

// "3 keys", for notes.
std::string counted_words(std::size_t count, const std::string &noun);

} // namespace zel::exchange
