#pragma once

// What a rule is: a row of the table in lint/rules.cpp and a function in the file of its family.

#include <cstddef>
#include <string>
#include <string_view>

#include "lint/finding.h"
#include "lint/text.h"

namespace zel::lint {

// One text that is judged.
struct text_case {
    const text &own;
    const text &reference; // empty when there is none
    const item_t *item;
    std::string_view plural_rule{}; // of the text's language
};

// Judges a text: true with the message when it is at fault. Messages begin in lower case and have
// no sign at their end.
using text_rule = bool (*)(const text_case &at, std::string &message);

// Which texts a rule about texts is asked about, and with which reference. The reference text is
// the default language's, else the item's name.
enum class scope : unsigned char {
    alone,    // all: the reference text with none, the others with the reference text, which
              // excuses what it has itself
    code,     // all: the default language's text with the item's name, the others with the
              // reference text
    reference // all but the reference text: with that
};

// What is known of an item and its group while it is judged.
struct item_case;
using item_rule = void (*)(const item_case &at);

// In the order of the table's columns, which people read.
struct rule { // NOLINT(clang-analyzer-optin.performance.Padding)
    rule_id id;
    const char *name;
    level severity;
    const char *meaning; // in words for people
    scope about;
    text_rule judge_text; // or null
    item_rule judge_item; // or null
};

} // namespace zel::lint
