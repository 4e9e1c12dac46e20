#include "exchange/po-plural.h"

#include "exchange/c-format.h"
#include "exchange/other-format.h"
#include "exchange/plural-text.h"
#include "exchange/po-remarks.h"
#include "langlib/plural-rule.h"

#include <algorithm>

namespace zel::exchange {

namespace {

// Catalogs' compilers let a form for fewer numbers than these, up to a thousand, do without them.
constexpr std::size_t few = 5;

// What texts have; in one with more, by mistake, a number is always the last form.
constexpr std::size_t most_forms = 8;

// Whether a text of all forms says something else from a million on.
bool differs_from_million(std::string_view rule, std::string_view text)
{
    const std::size_t all = count_plural_forms(rule).all;
    return count_text_forms(text) == all &&
           text_form(text, plural_form(rule, all, 1'000'000)) != text_form(text, all - 1);
}

bool has_flag(std::string_view comment, std::string_view flag)
{
    const auto flags = flags_of(comment);
    return flags && std::find(flags->begin(), flags->end(), flag) != flags->end();
}

} // namespace

bool is_plural(std::string_view reference, std::string_view default_comment)
{
    return reference.find(plural_sign) != reference.npos &&
           (is_plural_text(reference) ? !has_flag(default_comment, no_plural_flag)
                                      : has_flag(default_comment, plural_flag));
}

plural_ids ids_of_plural(std::string_view reference, std::string_view default_language)
{
    const std::size_t count = count_text_forms(reference);
    const std::size_t one =
        count == 2 ? 0 : plural_form(plural_rule_of(default_language), count, 1);
    return {text_form(reference, one), text_form(reference, count - 1)};
}

message_check::message_check(std::string_view id, const std::vector<std::string> &flags)
    : id_(id), other_(other_format_of(flags)), other_arguments_(other_arguments(other_, id))
{
    // A catalog may call a format what is none here; then nothing can be compared.
    if (std::find(flags.begin(), flags.end(), "c-format") != flags.end())
        arguments_ = c_format_arguments(id);
}

bool message_check::fits(std::string_view text, bool may_leave_out_arguments) const
{
    if (id_.starts_with('\n') != text.starts_with('\n') ||
        id_.ends_with('\n') != text.ends_with('\n'))
        return false;
    if (!other_.empty()) {
        const std::set<std::string> own = other_arguments(other_, text);
        return own == other_arguments_ ||
               (may_leave_out_arguments &&
                std::includes(other_arguments_.begin(), other_arguments_.end(), own.begin(),
                              own.end()));
    }
    if (!arguments_)
        return true;
    return read_c_format(text, own_) &&
           (own_ == arguments_ || (may_leave_out_arguments && own_.empty()));
}

plural_outlet::plural_outlet(const exporter &from)
    : plural_outlet(from, [](std::string_view) { return std::string(); })
{
}

plural_outlet::plural_outlet(const exporter &from, std::string (*field_of)(std::string_view))
{
    for (const lang_t *lang : from.languages())
        add_language(lang->name);
    std::vector<bool> needs_rare(ways_.size());
    for (const edit_t *group : each<edit_t>(from.source().groups))
        for (const item_t *item : each<item_t>(group->items))
            if (item->used != 0 || from.request().unused)
                look_at(from.source(), item, needs_rare);
    for (std::size_t at = 0; any_ && at < ways_.size(); ++at)
        if (const std::string field = field_of(names_[at]); !field.empty())
            make_way(ways_[at], field);
        else
            make_way(ways_[at], header_of_rule(ways_[at].rule, needs_rare[at]));
}

plural_outlet::plural_outlet(const exporter &from, const std::string &field) : any_(true)
{
    add_language(from.languages().front()->name);
    plural_header header;
    const bool is_good = header.read(field).empty() && header.count != 0;
    make_way(ways_.front(), is_good ? field : header_of_rule(ways_.front().rule, false));
}

void plural_outlet::add_language(const char *name)
{
    names_.emplace_back(name);
    way &added = ways_.emplace_back();
    added.rule = plural_rule_of(name);
    const plural_forms count = count_plural_forms(added.rule);
    added.all = count.all;
    added.everyday = count.everyday;
}

void plural_outlet::look_at(const LangSource &source, const item_t *item,
                            std::vector<bool> &needs_rare)
{
    std::string buffer;
    const lang_entry_t *entry = find_entry(item->langs, source.default_lang);
    std::string_view reference =
        entry == nullptr ? std::string_view() : look_at_text(entry->texts, buffer);
    if (without_end(reference).empty())
        reference = view_of(item->name);
    if (reference.find(plural_sign) == reference.npos ||
        !is_plural(reference, text_of(find_entry(item->comments, source.default_lang))))
        return;
    any_ = true;
    for (std::size_t at = 0; at < ways_.size(); ++at)
        if (ways_[at].all != ways_[at].everyday && !needs_rare[at])
            needs_rare[at] = differs_from_million(
                ways_[at].rule, text_of(find_entry(item->langs, names_[at].c_str())));
}

void plural_outlet::make_way(way &of, const std::string &value) const
{
    // Many languages count alike.
    const auto known = std::find_if(ways_.begin(), ways_.end(),
                                    [&](const way &one) { return one.value == value; });
    of.value = value;
    if (known != ways_.end()) {
        of.numbers = known->numbers;
        of.rare = known->rare;
    } else {
        plural_header header;
        header.read(of.value);
        of.numbers = plural_numbers(header);
        std::vector<std::size_t> served(header.count);
        for (std::uint64_t n = 0; n <= 1000; ++n)
            ++served[header.form(n)];
        for (const std::size_t count : served)
            of.rare.push_back(count < few);
    }
    of.forms.resize(most_forms + 1);
    for (std::size_t count = 0; count <= most_forms; ++count)
        for (const std::uint64_t n : of.numbers)
            of.forms[count].push_back(plural_form(of.rule, count, n));
}

void plural_outlet::split(std::size_t language, std::string_view text, forms &out) const
{
    const way &of = ways_[language];
    const std::size_t count = count_text_forms(text);
    out.fits = text.empty() || count == of.all || count == of.everyday;
    out.is_whole = true;
    out.texts.clear();
    for (std::size_t at = 0; at < of.numbers.size(); ++at) {
        const std::size_t form = count <= most_forms ? of.forms[count][at] : count - 1;
        out.texts.push_back(text_form(text, form));
        out.is_whole = out.is_whole && (text.empty() || !without_end(out.texts.back()).empty());
    }
    if (!out.is_whole)
        out.texts.assign(out.texts.size(), {});
}

} // namespace zel::exchange
