#pragma once

// An item as the rules about items look at it: its texts by language, and where findings go.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "lint/finding.h"
#include "lint/text.h"
#include "support/hash-index.h"

namespace zel::lint {

class glossary;

struct language {
    const lang_t *definition;
    const char *name; // empty when it has none
    bool is_default;
    bool wanted; // findings about it are wanted
    std::string_view plural_rule{};
    bool is_variant = false; // of the reference's: it leaves most texts
};

// The defined languages, in their order.
class language_list {
public:
    void push_back(const language &one);
    std::size_t size() const { return all_.size(); }
    const language &operator[](std::size_t i) const { return all_[i]; }
    std::span<const language> all() const { return all_; }

    // The position of the language, or size() when it is none of them. The guess is looked at
    // first.
    std::size_t find(const char *name, std::size_t guess) const;

private:
    std::vector<language> all_;
    hash_index names_;
};

// What an item has in one language.
struct slot {
    const lang_entry_t *entry; // the first one of the language, or null
    text own;
    rule_set off; // rules that a comment in this language switches off
};

struct item_case {
    const LangSource *source;
    const edit_t *group;
    const item_t *item;
    const language_list &languages;
    std::span<const slot> slots; // of each language
    const text &reference;       // the default language's text, else the item's name
    const text_width &ruler;     // empty: nobody can tell
    const glossary *terms;       // or null

    // Where a rule says what it found: about the record (the item, or one of its entries), in a
    // language or, null, in none. The message is copied.
    class sink {
    public:
        virtual void say(rule_id rule, const char *language, const void *record,
                         std::string_view message) = 0;
        // The text in this language has a limit in pixels, and nobody can tell its width.
        virtual void leave_unmeasured(const char *language) = 0;

    protected:
        ~sink() = default;
    };
    sink &found;
};

// Whether a language is the reference's as others speak or write it: "british english" and "en_GB"
// where that is "english" or "en".
bool is_variant(std::string_view name, std::string_view reference);

// Whether both name the same language: compiled files are found by their language whatever the
// case of its ASCII letters.
bool same_language(const char *a, const char *b);

// The item's text that counts in that language, as when a source is compiled; the buffer is for one
// in pieces. Empty when there is none.
std::string_view first_text(const item_t *item, const char *language, std::string &buffer);

inline std::string_view name_of(const char *text) { return text == nullptr ? "" : text; }

} // namespace zel::lint
