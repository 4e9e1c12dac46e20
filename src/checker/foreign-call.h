#pragma once

// The calls with which an application asks other libraries for its texts, and where each part of
// them stands in the code.

#include <span>
#include <string>
#include <vector>

#include "checker/code-token.h"

namespace zel {

enum class call_dialect { gettext, qt };

// A word and which of its arguments is what, from 1; 0 for none.
struct foreign_form {
    std::string_view word;
    std::uint8_t item;
    std::uint8_t plural;  // the form for many
    std::uint8_t number;  // that the form is for
    std::uint8_t context; // tells texts apart
    std::uint8_t domain;  // names the catalog: the source is one
    std::uint8_t comment; // may tell two texts of one context apart
    std::uint8_t least;   // how many there are
    std::uint8_t most;
    bool is_mark; // the text itself: it stands where the compiler wants a constant
};

std::span<const foreign_form> foreign_forms(call_dialect of);

struct foreign_argument {
    std::size_t first = 0; // its tokens
    std::size_t last = 0;  // behind them
};

struct foreign_call {
    const foreign_form *form = nullptr;
    std::size_t word = 0;    // its token
    std::size_t first = 0;   // the token with which the call begins: of "Window::tr" the first name
    std::size_t closing = 0; // the token of its parenthesis
    std::vector<foreign_argument> arguments;
    std::string scope;      // the class that it is asked for, as far as the code tells
    bool of_object = false; // "window->tr(...)": whose class nobody tells
    bool is_split = false;  // a directive stands among its arguments
    bool is_open = false;   // the parenthesis has no end: nothing is known of the arguments
};

// In the order of the file. Declarations of the words, and definitions of them, are none.
std::vector<foreign_call> foreign_calls(std::string_view bytes,
                                        const std::vector<code_token> &tokens, call_dialect of);

} // namespace zel
