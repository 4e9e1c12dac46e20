#pragma once

// What the files of the rules define; the rows that stand for them are in lint/rules.cpp.

#include "lint/rule.h"

namespace zel::lint {

// encoding-rule.cpp
bool judge_encoding(const text_case &at, std::string &message);
void judge_item_encoding(const item_case &at);

// format-rules.cpp
bool judge_format(const text_case &at, std::string &message);
bool judge_symbol(const text_case &at, std::string &message);

// markup-rule.cpp
bool judge_markup(const text_case &at, std::string &message);

// mnemonic-rule.cpp
bool judge_mnemonic(const text_case &at, std::string &message);

// sign-rules.cpp
bool judge_blank(const text_case &at, std::string &message);
bool judge_ending(const text_case &at, std::string &message);
bool judge_bidi(const text_case &at, std::string &message);
bool judge_bracket(const text_case &at, std::string &message);

// link-rule.cpp
void judge_link(const item_case &at);

// plural.cpp
void judge_plural(const item_case &at);

// same-rule.cpp
void judge_same(const item_case &at);

// term-rule.cpp
void judge_term(const item_case &at);

// word-rules.cpp
bool judge_length(const text_case &at, std::string &message);
bool judge_repeated(const text_case &at, std::string &message);

// limit.cpp
void judge_max(const item_case &at);

// state-rules.cpp
void judge_undefined(const item_case &at);
void judge_missing(const item_case &at);
void judge_empty(const item_case &at);
void judge_item_end(const item_case &at);
void judge_unused(const item_case &at);
void judge_not_ready(const item_case &at);
void judge_stale(const item_case &at);

} // namespace zel::lint
