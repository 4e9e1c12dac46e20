#pragma once

// The plurals of a source on their way into a catalog of one language.

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/export.h"
#include "exchange/plural-header.h"

namespace zel::exchange {

// Whether an item's text goes out as a plural.
bool is_plural(std::string_view reference, std::string_view default_comment);

// The ids of a plural: the form for 1 of the reference text, and its last.
struct plural_ids {
    std::string_view one;
    std::string_view others;
};
plural_ids ids_of_plural(std::string_view reference, std::string_view default_language);

// What a catalog's compiler asks of a translation: the line ends of the id at both ends, and of a
// format, which the flags name, the arguments.
class message_check {
public:
    message_check(std::string_view id, const std::vector<std::string> &flags);
    bool fits(std::string_view text, bool may_leave_out_arguments) const;

private:
    std::string_view id_;
    std::optional<std::vector<std::string_view>> arguments_; // of a format that can be compared
    mutable std::vector<std::string_view> own_;              // of the text that is looked at
    std::string other_;                                      // a format that is not C's
    std::set<std::string> other_arguments_;
};

// How each language's catalog counts. Looks through the items once: without any plural nothing is
// written, and where a text has a form of its own from a million on, the header has it, too.
class plural_outlet {
public:
    explicit plural_outlet(const exporter &from);

    // For a format that has a way of its own: the field's value for a language by its name, empty
    // for the language's own.
    plural_outlet(const exporter &from, std::string (*field_of)(std::string_view language));

    // For a catalog that has a header: the field's value, or the language's own where that is none.
    plural_outlet(const exporter &from, const std::string &field);

    bool any() const { return any_; }

    // The value of a language's header.
    const std::string &header(std::size_t language) const { return ways_[language].value; }

    // A text's forms as the header counts them, without copies. Empty ones for a text of which some
    // form is empty.
    struct forms {
        std::vector<std::string_view> texts;
        bool fits = true;     // false: the text has another number of forms than the language
        bool is_whole = true; // false: a form is empty
    };
    void split(std::size_t language, std::string_view text, forms &out) const;

    // Whether a form serves so few numbers that it may do without the number itself.
    bool is_rare(std::size_t language, std::size_t form) const
    {
        return ways_[language].rare[form];
    }

private:
    struct way {
        std::string rule;
        std::size_t all = 0;
        std::size_t everyday = 0;
        std::string value;
        std::vector<std::uint64_t> numbers; // one for each form of the header
        std::vector<bool> rare;

        // For each number of forms that a text has, those that the header's forms are.
        std::vector<std::vector<std::size_t>> forms;
    };
    void look_at(const LangSource &source, const item_t *item, std::vector<bool> &needs_rare);
    void add_language(const char *name);
    void make_way(way &of, const std::string &value) const;

    std::vector<std::string> names_;
    std::vector<way> ways_;
    bool any_ = false;
};

} // namespace zel::exchange
