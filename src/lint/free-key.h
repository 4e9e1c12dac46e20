#pragma once

// Free keys ("_Save") for the texts of a group in one language: what has none though its reference
// has one, and what has that of another text, gets a letter that no text of the group has.

#include <string>
#include <string_view>
#include <vector>

#include "source/model.h"

namespace zel::lint {

class group_keys {
public:
    // With is_window no two texts should have one key, but for those whose references share one.
    explicit group_keys(bool is_window) : is_window_(is_window) {}

    // Whether the text should get another key.
    bool wants_key(std::string_view text, std::string_view reference) const;

    // The text's key, if it has one, is taken from now on.
    void take(std::string_view text, std::string_view reference);

    // The text with a free key: the first letter of a word rather than another, a consonant rather
    // than a vowel. Where the letters are wider than keys it stands behind, "(_S)", and is that of
    // the reference if it is free. Empty when there is none.
    std::string with_key(std::string_view text, std::string_view reference) const;

private:
    struct taken_key {
        char32_t key;
        char32_t reference; // of the reference text
        bool operator==(const taken_key &) const = default;
    };
    enum class share : unsigned char { nothing, with_reference, anything };
    bool is_free(char32_t key, char32_t reference, share allowed) const;
    std::string marked(std::string_view text, std::string_view reference, share allowed) const;
    std::string in_parentheses(std::string_view text, std::string_view reference,
                               share allowed) const;

    bool is_window_;
    std::vector<taken_key> taken_;
};

} // namespace zel::lint
