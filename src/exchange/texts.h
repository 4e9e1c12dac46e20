#pragma once

// Texts as a file from outside has them, one at a time.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/carry.h"
#include "exchange/input.h"

namespace zel::exchange {

// What a file says of a language; either may be empty.
struct said_language {
    std::string name; // as sources have it: "german"
    std::string code; // "de", "pt_BR"
};

// A remark to an item, and whose it is.
struct text_note {
    std::string text;
    bool replaces = false; // it is the comment that was exported, perhaps changed; else a new one
    bool lacks_marks = false; // these (exchange/po-remarks.h) were not exported with it
};

// One item's text in one language.
struct text_unit {
    bool keyed = false; // the file names the item; else both names are empty
    std::string group;
    std::string item;
    std::string reference; // what was translated; empty in a format without it
    std::string text;      // empty: there is none, or it is still in its forms
    std::vector<std::string>
        forms; // of a plural, as its file counts; the reference is both its ids
    std::vector<std::string> cases; // of the forms, where the file names them: "one", "other", "0"
    bool fuzzy = false;             // a guess that nobody has looked at
    bool may_be_guess = false;      // the format does not tell guesses
    bool final = false;             // finished and approved
    text_note note;                 // in the text's language; empty: none
    // Of somebody else's catalog: its context, and the group that a new source would have instead.
    bool loose = false;
    std::optional<std::string> context;
    std::string code_group;     // empty where nothing tells it
    bool in_group = false;      // no item of another group is meant
    bool by_id = false;         // the reference finds the item, whose own text may be another
    std::uint32_t language = 0; // position in file_texts::languages
    std::uint32_t line = 0;
};

// A file's languages, and its texts where somebody wants all of them.
struct file_texts {
    std::vector<said_language> languages;
    std::string plural_field; // how a catalog counts (exchange/plural-header.h)
    std::uint32_t plural_line = 0;
    std::vector<std::string> notes; // what somebody should know of the file, a line each
    std::vector<text_unit> units;
};

// Hears every text; the unit is the reader's own and good for the call.
using text_listener = std::function<void(const file_texts &file, text_unit &unit)>;

// Reads a file's texts from its bytes, which are UTF-8 unless the format itself says what they are.
// Bytes carried by private characters (exchange/carry.h) are undone, in names always.
using texts_reader = fault (*)(std::string_view bytes, encoding good, const text_listener &hear);

} // namespace zel::exchange
