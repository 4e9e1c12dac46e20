#pragma once

// The tokens of C and C++ with the bytes that each of them takes, for whoever writes a file again
// and must leave all its other bytes alone. What a request's text is tells the scanner of the
// check (lex/); this one only tells where something stands.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel {

struct code_token {
    enum class kind : std::uint8_t {
        name,
        text,       // "a literal"
        other_text, // one with a prefix, a raw one, or one that its line ends
        number,
        character,
        sign // one byte
    };
    kind is;
    std::uint32_t directive; // which one of the file it is part of, from 1; 0: of none
    std::size_t begin;
    std::size_t end; // behind its last byte
};

// Comments, white space and the backslash that joins two lines are no tokens.
std::vector<code_token> code_tokens(std::string_view bytes);

// What the compiler makes of a literal with its quotes. Nothing where the check would read another
// text, or none: it knows the escapes \\ \" \n \t \r \a \b and \x with two digits.
std::optional<std::string> literal_text(std::string_view literal);

} // namespace zel
