#include "exchange/plural-reader.h"

#include "langlib/plural-rule.h"
#include "source/entry.h"

#include <algorithm>

namespace zel::exchange {

namespace {

constexpr std::size_t shown_numbers = 3;
constexpr std::uint64_t million = 1'000'000;

// More numbers than this, and a form without a place: the header is another language's.
constexpr std::size_t many_shifts = 100;

std::string listed(const std::vector<std::uint64_t> &numbers)
{
    std::string out;
    for (const std::uint64_t n : numbers)
        out.append(out.empty() ? "" : ", ").append(std::to_string(n));
    return out;
}

void keep_first(std::vector<std::uint64_t> &numbers, std::uint64_t n)
{
    if (numbers.size() < shown_numbers)
        numbers.push_back(n);
}

void add_remark(std::string &remark, const std::string &form, const std::string &text)
{
    remark.append(remark.empty() ? "" : "\n")
        .append("plural form ")
        .append(form)
        .append(": ")
        .append(text);
}

// Says what has become of so many texts that have no place in the language.
std::string told_texts(std::uint32_t count, bool kept)
{
    return std::to_string(count) + (count == 1 ? " text " : " texts ") +
           (!kept        ? "left out"
            : count == 1 ? "kept as a remark"
                         : "kept as remarks");
}

// The text without the forms that begin at a million, where they differ from none of the others.
std::string without_rare_forms(std::string_view rule, const std::string &all)
{
    const plural_forms count = count_plural_forms(rule);
    std::string everyday;
    for (std::size_t form = 0; form < count.all && count.everyday < count.all; ++form) {
        const std::string_view one = text_form(all, form);
        const bool is_rare = is_rare_form(rule, form);
        if (is_rare && one != text_form(all, count.all - 1))
            return all;
        if (!is_rare)
            everyday.append(form == 0 ? "" : "|").append(one);
    }
    return everyday.empty() ? all : everyday;
}

} // namespace

void plural_reader::open(std::string_view language, std::string_view field, std::uint32_t line)
{
    *this = {};
    rule_ = plural_rule_of(language);
    field_ = field;
    field_line_ = line;
}

// Makes ready for messages of so many forms.
fault plural_reader::prepare(std::size_t forms, std::uint32_t line)
{
    if (ready_for_ == forms)
        return {};
    if (ready_for_ != 0)
        return {line, std::to_string(forms) + " plural forms, and others have " +
                          std::to_string(ready_for_)};
    if (std::string wrong = header_.read(field_); !wrong.empty())
        return {field_line_, "Plural-Forms: " + wrong};
    const std::string told_count = std::to_string(forms) + " plural forms";
    if (header_.count != forms && !take_positions(forms))
        return {line, header_.count == 0
                          ? told_count + " without a header that says when each is used"
                          : told_count + ", and the header says " + std::to_string(header_.count)};
    match();
    // A header that never comes to a form that the language needs is broken.
    const plural_forms own = count_plural_forms(rule_);
    if ((own.all == forms || own.everyday == forms) &&
        std::any_of(lost_.begin(), lost_.end(),
                    [](const lost_form &one) { return one.numbers.empty(); })) {
        take_positions(forms);
        match();
        notes_.emplace_back(
            "the header's expression does not reach every form: they are taken in their order");
    }
    ready_for_ = forms;
    return {};
}

// The forms stand in the language's own order, or as catalogs with so many have them.
bool plural_reader::take_positions(std::size_t forms)
{
    const plural_forms own = count_plural_forms(rule_);
    const std::string_view rule = forms == own.all || forms == own.everyday
                                      ? std::string_view(rule_)
                                  : forms == 1 ? std::string_view("other")
                                  : forms == 2 ? rule_of_two
                                               : std::string_view();
    return !rule.empty() && header_.read(header_of_rule(rule, forms != own.everyday)).empty();
}

// Whether a form of the header has only numbers of that form of the language.
bool plural_reader::is_alone(std::size_t header_form, std::size_t form) const
{
    for (std::size_t other = 0; other < chosen_.size(); ++other)
        if ((at(other, header_form).count != 0) != (other == form))
            return false;
    return true;
}

void plural_reader::match_form(std::size_t form)
{
    std::size_t best = header_.count;
    for (std::size_t one = 0; one < header_.count; ++one)
        if (is_alone(one, form) &&
            (best == header_.count || at(form, one).count > at(form, best).count))
            best = one;
    // "first" holds the smallest numbers in order; a zero counts last here.
    std::uint64_t smallest = UINT64_MAX;
    for (std::size_t one = 0; best == header_.count && one < header_.count; ++one)
        for (const std::uint64_t n : at(form, one).first)
            smallest = std::min(smallest, n == 0 ? UINT64_MAX - 1 : n);
    if (best == header_.count)
        best = smallest == UINT64_MAX ? header_.count - 1
                                      : header_.form(smallest == UINT64_MAX - 1 ? 0 : smallest);
    chosen_[form] = best;
}

void plural_reader::match()
{
    const std::size_t forms = count_plural_forms(rule_).all;
    chosen_.assign(forms, 0);
    rare_.assign(forms, true);
    meetings_.assign(forms * header_.count, {});
    smallest_.assign(header_.count, 0);
    samples_.clear();
    for (const std::uint64_t n : plural_samples()) {
        const std::size_t form = plural_form(rule_, forms, n);
        const std::size_t header_form = header_.form(n);
        samples_.push_back({n, form, header_form});
        meeting &met = at(form, header_form);
        ++met.count;
        keep_first(met.first, n);
        if (n < million)
            rare_[form] = false;
        if (smallest_[header_form] == 0)
            smallest_[header_form] = n;
    }
    for (std::size_t form = 0; form < forms; ++form)
        match_form(form);
    find_lost();
}

void plural_reader::find_lost()
{
    lost_.clear();
    for (std::size_t one = 0; one < header_.count; ++one) {
        if (std::find(chosen_.begin(), chosen_.end(), one) != chosen_.end())
            continue;
        lost_form lost{one, {}, chosen_.back()};
        for (const sample &at : samples_)
            if (at.header_form == one) {
                if (lost.numbers.empty())
                    lost.instead = chosen_[at.form];
                keep_first(lost.numbers, at.number);
            }
        lost_.push_back(std::move(lost));
    }
}

// Marks the numbers that show another text than the catalog gave them.
void plural_reader::look_for_shifts(const std::vector<std::string> &texts)
{
    for (std::size_t form = 0; form < chosen_.size(); ++form)
        for (std::size_t one = 0; one < header_.count; ++one)
            if (meeting &met = at(form, one); met.count != 0 && one != chosen_[form] &&
                                              !met.differs && texts[one] != texts[chosen_[form]])
                met.differs = true;
}

// Makes what a plural has, which is not all forms, its remark.
void plural_reader::keep_part(answer &out, const std::vector<std::string> &texts,
                              const std::vector<std::string> &cases)
{
    ++partly_;
    out.what = outcome::untranslated;
    for (std::size_t form = 0; form < texts.size(); ++form)
        if (!texts[form].empty())
            add_remark(out.remark, cases.empty() ? std::to_string(form) : cases[form], texts[form]);
}

plural_reader::answer plural_reader::join(const std::vector<std::string> &forms, std::uint32_t line)
{
    answer out;
    std::vector<std::string> texts;
    std::size_t empty = 0;
    bool has_sign = false;
    for (const std::string &form : forms) {
        texts.emplace_back(without_end(form));
        empty += texts.back().empty() ? 1 : 0;
        has_sign = has_sign || texts.back().find(plural_sign) != std::string::npos;
    }
    if (empty == forms.size() || (out.wrong = prepare(forms.size(), line)))
        return out;
    if (empty != 0) {
        keep_part(out, texts, {});
        return out;
    }
    out.one = texts[chosen_[plural_form(rule_, chosen_.size(), 1)]];
    out.others = texts[chosen_.back()];
    if (has_sign) {
        out.what = outcome::apart;
        for (std::size_t form = 0; form < texts.size(); ++form)
            add_remark(out.remark, std::to_string(form), texts[form]);
        return out;
    }
    out.what = outcome::joined;
    look_for_shifts(texts);
    for (lost_form &lost : lost_)
        if (texts[lost.form] != texts[lost.instead]) {
            ++lost.texts;
            add_remark(out.remark, std::to_string(lost.form), texts[lost.form]);
        }
    out.text = joined_forms(texts);
    return out;
}

// Whether a form of the language has that number and no other.
bool plural_reader::is_number_of(std::string_view number, std::size_t form) const
{
    const std::size_t all = count_plural_forms(rule_).all;
    std::size_t count = 0;
    for (const std::uint64_t n : plural_samples())
        if (plural_form(rule_, all, n) == form && (++count > 1 || std::to_string(n) != number))
            return false;
    return count == 1;
}

// The position of the case that serves a form of the language; behind the last where none does.
std::size_t plural_reader::case_for(std::size_t form, const std::vector<std::string> &cases) const
{
    const std::string_view name = plural_form_name(rule_, form);
    std::size_t best = cases.size();
    for (std::size_t at = 0; at < cases.size(); ++at) {
        if (cases[at] == name)
            return at;
        if (is_number_of(cases[at], form) || (best == cases.size() && cases[at] == "other"))
            best = at;
    }
    return best;
}

plural_reader::answer plural_reader::join_cases(const std::vector<std::string> &cases,
                                                const std::vector<std::string> &forms)
{
    answer out;
    std::vector<std::string> texts;
    std::size_t empty = 0;
    for (const std::string &form : forms) {
        texts.emplace_back(without_end(form));
        empty += texts.back().empty() ? 1 : 0;
        if (texts.back().find(plural_sign) != std::string::npos)
            out.what = outcome::apart;
    }
    std::vector<std::size_t> chosen;
    const plural_forms count = count_plural_forms(rule_);
    for (std::size_t form = 0; form < count.all; ++form)
        chosen.push_back(case_for(form, cases));
    const bool lacks = std::find(chosen.begin(), chosen.end(), cases.size()) != chosen.end();
    if (empty != 0 || lacks) {
        if (empty != texts.size())
            keep_part(out, texts, cases);
        return out;
    }
    std::string all;
    for (std::size_t form = 0; form < count.all; ++form)
        all.append(form == 0 ? "" : "|").append(texts[chosen[form]]);
    out.one = texts[chosen[plural_form(rule_, count.all, 1)]];
    out.others = texts[chosen.back()];
    for (std::size_t at = 0; at < cases.size(); ++at) {
        const bool has_place = std::any_of(
            chosen.begin(), chosen.end(), [&](std::size_t one) { return texts[one] == texts[at]; });
        if (out.what == outcome::apart || !has_place)
            add_remark(out.remark, cases[at], texts[at]);
        if (out.what != outcome::apart && !has_place)
            ++lost_cases_[cases[at]];
    }
    if (out.what == outcome::apart)
        return out;
    out.what = outcome::joined;
    out.text = without_rare_forms(rule_, all);
    return out;
}

bool plural_reader::is_written_as(std::string_view text,
                                  const std::vector<std::string> &forms) const
{
    if (ready_for_ != forms.size())
        return false;
    const std::size_t count = count_text_forms(text);
    for (std::size_t form = 0; form < forms.size(); ++form)
        if (text_form(text, plural_form(rule_, count, smallest_[form])) != without_end(forms[form]))
            return false;
    return true;
}

// The language's forms in its order. Those that begin at a million are left out where they say
// nothing else.
std::string plural_reader::joined_forms(const std::vector<std::string> &texts) const
{
    bool with_rare = false;
    for (std::size_t form = 0; form < chosen_.size(); ++form)
        with_rare = with_rare || (rare_[form] && texts[chosen_[form]] != texts[chosen_.back()]);
    std::string out;
    for (std::size_t form = 0; form < chosen_.size(); ++form)
        if (with_rare || !rare_[form])
            out.append(form == 0 ? "" : "|").append(texts[chosen_[form]]);
    return out;
}

// "101, 201, 301 now take the form of 20", for each form that takes others' numbers.
std::string plural_reader::told_shift() const
{
    struct taken {
        std::size_t form;
        std::vector<std::uint64_t> numbers;
    };
    std::vector<taken> all;
    std::size_t count = 0;
    for (const auto &[n, form, header_form] : samples_) {
        const std::size_t served = header_form; // a lambda takes no part of a structure
        const bool is_lost = std::any_of(lost_.begin(), lost_.end(),
                                         [&](const lost_form &one) { return one.form == served; });
        if (is_lost || !at(form, header_form).differs)
            continue;
        ++count;
        const std::size_t target = chosen_[form];
        auto at_form = std::find_if(all.begin(), all.end(),
                                    [&](const taken &one) { return one.form == target; });
        if (at_form == all.end())
            at_form = all.insert(all.end(), {target, {}});
        keep_first(at_form->numbers, n);
    }
    std::string line =
        count > many_shifts && !lost_.empty() ? "the header's rule is not the language's: " : "";
    for (const taken &one : all)
        line.append(&one == all.data() ? "" : "; ")
            .append(listed(one.numbers))
            .append(one.numbers.size() == 1 ? " now takes" : " now take")
            .append(" the form of ")
            .append(std::to_string(smallest_[one.form]));
    return line;
}

std::vector<std::string> plural_reader::told(bool kept) const
{
    std::vector<std::string> lines = notes_;
    if (partly_ != 0)
        lines.push_back((kept ? "kept as remarks: " : "left out ") + std::to_string(partly_) +
                        (partly_ == 1 ? " plural" : " plurals") + " without a text for each form");
    for (const auto &[name, texts] : lost_cases_)
        lines.push_back("form \"" + name + "\" has no place: " + told_texts(texts, kept));
    if (ready_for_ == 0)
        return lines;
    for (const lost_form &lost : lost_) {
        if (lost.texts == 0)
            continue;
        lines.push_back("form " + std::to_string(lost.form) + " (for " +
                        (lost.numbers.empty() ? "no whole number" : listed(lost.numbers)) +
                        ") has no place: " + told_texts(lost.texts, kept));
    }
    if (std::string shift = told_shift(); !shift.empty())
        lines.push_back(std::move(shift));
    return lines;
}

bool shows_the_same(std::string_view language, std::string_view before, std::string_view after)
{
    const std::size_t had = count_text_forms(before);
    const std::size_t has = count_text_forms(after);
    if (had == has)
        return false;
    const std::string_view rule = plural_rule_of(language);
    const auto samples = plural_samples();
    return std::all_of(samples.begin(), samples.end(), [&](std::uint64_t n) {
        return text_form(before, plural_form(rule, had, n)) ==
               text_form(after, plural_form(rule, has, n));
    });
}

} // namespace zel::exchange
