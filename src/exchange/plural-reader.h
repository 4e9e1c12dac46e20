#pragma once

// The plurals of one catalog on their way into a language's texts: which of the catalog's forms
// each form of lang_plural is, and what becomes of the others.
//
// The two are matched by numbers. A form of the language takes the form that serves its numbers
// alone, of several the one that serves most; else the form of its smallest number from 1 on. So
// the right text goes with the right number, in whatever order and for whatever sets of numbers the
// catalog's header has its forms. A form that nothing takes is lost, and numbers that now show
// another text are shifted: both are told once for the catalog, if the texts concerned differ.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/input.h"
#include "exchange/plural-header.h"

namespace zel::exchange {

class plural_reader {
public:
    // Begins with the value of a header's field, and the line where it stands. The header is looked
    // at when the first plural comes, as most that are broken stand in catalogs without any.
    void open(std::string_view language, std::string_view field, std::uint32_t line);

    enum class outcome {
        joined,
        untranslated, // a form is empty, and so none counts
        apart         // a form holds the sign between forms: they cannot be one text
    };
    struct answer {
        outcome what = outcome::untranslated;
        std::string text; // as lang_plural reads it
        std::string one;  // the form for 1, and the one for what has no other
        std::string others;
        std::string remark; // what has no place, a line each: "plural form 3: ..."
        fault wrong;
    };
    answer join(const std::vector<std::string> &forms, std::uint32_t line);

    // The same for forms that bear names, in any order: categories of the language, or the number
    // that a form is for.
    answer join_cases(const std::vector<std::string> &cases, const std::vector<std::string> &forms);

    // Whether a text goes out in these forms, of which the last message was joined: it may have
    // more than the file can hold.
    bool is_written_as(std::string_view text, const std::vector<std::string> &forms) const;

    // A line each for what is wrong with the header, for plurals of which some forms are filled and
    // others are not, and for what is lost and shifted, as "form 3 (for 1) has no
    // place: 6 texts kept as remarks"; or "left out" where the remarks were not taken.
    std::vector<std::string> told(bool kept) const;

private:
    struct sample {
        std::uint64_t number;
        std::size_t form;        // the language's
        std::size_t header_form; // the catalog's
    };
    // The numbers that have one form in the catalog and one in the language.
    struct meeting {
        std::size_t count = 0;
        std::vector<std::uint64_t> first; // three of them
        bool differs = false;             // shifted, and texts show it
    };
    struct lost_form {
        std::size_t form;
        std::vector<std::uint64_t> numbers; // three; none: no whole number has it
        std::size_t instead;                // what the first of them shows now
        std::uint32_t texts = 0;
    };

    void keep_part(answer &out, const std::vector<std::string> &texts,
                   const std::vector<std::string> &cases);
    fault prepare(std::size_t forms, std::uint32_t line);
    bool take_positions(std::size_t forms);
    void match();
    void match_form(std::size_t form);
    bool is_alone(std::size_t header_form, std::size_t form) const;
    void find_lost();
    void look_for_shifts(const std::vector<std::string> &texts);
    std::string joined_forms(const std::vector<std::string> &texts) const;
    std::string told_shift() const;
    std::size_t case_for(std::size_t form, const std::vector<std::string> &cases) const;
    bool is_number_of(std::string_view number, std::size_t form) const;
    meeting &at(std::size_t form, std::size_t header_form)
    {
        return meetings_[form * header_.count + header_form];
    }
    const meeting &at(std::size_t form, std::size_t header_form) const
    {
        return meetings_[form * header_.count + header_form];
    }

    std::string rule_;
    std::string field_;
    std::uint32_t field_line_ = 0;
    plural_header header_;
    std::size_t ready_for_ = 0;       // the count of forms that has been prepared
    std::vector<std::size_t> chosen_; // by the language's form, all of them
    std::vector<bool> rare_;          // the same: it begins at a million
    std::vector<sample> samples_;
    std::vector<meeting> meetings_;
    std::vector<std::uint64_t> smallest_; // of each form of the header, from 1 on where it can be
    std::vector<lost_form> lost_;
    std::vector<std::string> notes_;                  // on the header
    std::map<std::string, std::uint32_t> lost_cases_; // how many texts, by the name
    std::uint32_t partly_ = 0;
};

// Whether two texts show the same for every number, though one may have more forms.
bool shows_the_same(std::string_view language, std::string_view before, std::string_view after);

} // namespace zel::exchange
