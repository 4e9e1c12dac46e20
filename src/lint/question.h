#pragma once

// Questions about texts. A comment that begins with a question mark asks what stands behind it in
// its first line; whoever writes a line below has answered. What programs write into comments
// ("lint: ...", "flags: ...", where a text was carried from) answers nothing.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "source/model.h"

namespace zel::lint {

struct question {
    std::string text;   // without the sign
    std::string answer; // empty while it is open
};
std::optional<question> read_question(std::string_view comment);
bool is_open_question(const lang_entry_t *comment);

// How many questions are open at the items in use, in all languages.
std::size_t count_open_questions(const LangSource *source);

} // namespace zel::lint
