#pragma once

// The compiled language file (*.lang), as the compiler writes it and the loader reads it:
//
//   /* automatically generated file, do not edit NAME */
//
//   FORMAT ASCII|UTF8
//   LANGUAGE "language"
//   POSNR
//   CTIME seconds
//   SRC_MTIME seconds
//
//
//   GROUP "group"
//     "item" {
//      default    "3:"    "text"    "more of it"    }
//
// FORMAT has no word when the source gives none, POSNR and the position numbers ("3:") appear only
// on request, "default" marks a text of the default language that stands in for a missing one. The
// strings of an entry are joined with nothing between. Groups and entries repeat to the end of the
// file. For the loader statements may come in any order, and keywords in any case.

#include "lex/lex.h"

namespace zel {

// Keywords of the file.
enum : int {
    KEY_GROUP = 20001,
    KEY_FORMAT = 20002,
    KEY_ASCII = 20003,
    KEY_UTF8 = 20004,
    KEY_LANGUAGE = 20005,
    KEY_POSNR = 20006,
    KEY_CTIME = 20007,
    KEY_DEFAULT = 20008,
    KEY_SRC_MTIME = 20009
};

// Keyword, id.
inline constexpr Keytab compiled_keywords[] = {
    {nullptr, 0},
    {"format", KEY_FORMAT},
    {"ascii", KEY_ASCII},
    {"utf8", KEY_UTF8},
    {"group", KEY_GROUP},
    {"language", KEY_LANGUAGE},
    {"posnr", KEY_POSNR},
    {"ctime", KEY_CTIME},
    {"default", KEY_DEFAULT},
    {"src_mtime", KEY_SRC_MTIME},
    {nullptr, 0},
};

// What the writer puts between the quoted strings, in the order of the file. Those with a
// conversion are formats: a file name, a word (or nothing), a language, seconds, seconds, a group.
inline constexpr char compiled_first_line[] =
    "/* automatically generated file, do not edit %s */\n";
inline constexpr char compiled_format[] = "\nFORMAT %s";
inline constexpr char compiled_ascii[] = "ASCII\n";
inline constexpr char compiled_utf8[] = "UTF8\n";
inline constexpr char compiled_language[] = "LANGUAGE \"%s\"\n";
inline constexpr char compiled_posnr[] = "POSNR\n";
inline constexpr char compiled_ctime[] = "CTIME %u\n";
inline constexpr char compiled_src_mtime[] = "SRC_MTIME %u\n";
inline constexpr char compiled_group[] = "\n\nGROUP \"%s\"\n";
inline constexpr char compiled_entry_open[] = " {\n";
inline constexpr char compiled_default[] = "   default";
inline constexpr char compiled_posnr_text[] = "%d:"; // a quoted string of its own
inline constexpr char compiled_entry_close[] = "    }\n";

// Ending of the file's name.
inline constexpr char compiled_ending[] = ".lang";

} // namespace zel
