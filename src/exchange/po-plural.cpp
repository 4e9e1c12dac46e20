#include "exchange/po-plural.h"

#include "exchange/plural-text.h"
#include "exchange/po-remarks.h"
#include "langlib/plural-rule.h"

#include <algorithm>

namespace zel::exchange {

namespace {

// Catalogs' compilers let a form for fewer numbers than these, up to a thousand, do without them.
constexpr std::size_t few = 5;

// Whether a text of all forms says something else from a million on.
bool differs_from_million(std::string_view rule, std::string_view text)
{
    const std::size_t all = count_plural_forms(rule).all;
    return count_text_forms(text) == all &&
           text_form(text, plural_form(rule, all, 1'000'000)) != text_form(text, all - 1);
}

bool has_plural_flag(std::string_view comment)
{
    const auto flags = flags_of(comment);
    return flags && std::find(flags->begin(), flags->end(), "plural") != flags->end();
}

} // namespace

bool is_plural(std::string_view reference, std::string_view default_comment)
{
    return reference.find(plural_sign) != reference.npos &&
           (is_plural_text(reference) || has_plural_flag(default_comment));
}

plural_ids ids_of_plural(std::string_view reference, std::string_view default_language)
{
    const std::size_t count = count_text_forms(reference);
    const std::size_t one =
        count == 2 ? 0 : plural_form(plural_rule_of(default_language), count, 1);
    return {text_form(reference, one), text_form(reference, count - 1)};
}

plural_outlet::plural_outlet(const exporter &from)
{
    for (const lang_t *lang : from.languages()) {
        names_.emplace_back(lang->name);
        way &added = ways_.emplace_back();
        added.rule = plural_rule_of(lang->name);
        const plural_forms count = count_plural_forms(added.rule);
        added.all = count.all;
        added.everyday = count.everyday;
    }
    std::vector<bool> needs_rare(ways_.size());
    for (const edit_t *group : each<edit_t>(from.source().groups))
        for (const item_t *item : each<item_t>(group->items))
            if (item->used != 0 || from.request().unused)
                look_at(from.source(), item, needs_rare);
    for (std::size_t at = 0; any_ && at < ways_.size(); ++at)
        make_way(ways_[at], needs_rare[at]);
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

void plural_outlet::make_way(way &of, bool with_rare_forms)
{
    of.value = header_of_rule(of.rule, with_rare_forms);
    plural_header header;
    header.read(of.value);
    of.numbers.assign(header.count, 0);
    std::vector<std::size_t> served(header.count);
    // The smallest number from 1 on stands for a form, and 0 for one that has no other.
    for (const std::uint64_t n : plural_samples()) {
        const std::size_t form = header.form(n);
        served[form] += n <= 1000 ? 1 : 0;
        if (of.numbers[form] == 0)
            of.numbers[form] = n;
    }
    for (const std::size_t count : served)
        of.rare.push_back(count < few);
}

void plural_outlet::split(std::size_t language, std::string_view text, forms &out) const
{
    const way &of = ways_[language];
    const std::size_t count = count_text_forms(text);
    out.fits = text.empty() || count == of.all || count == of.everyday;
    out.is_whole = true;
    out.texts.clear();
    for (const std::uint64_t n : of.numbers) {
        out.texts.push_back(text_form(text, plural_form(of.rule, count, n)));
        out.is_whole = out.is_whole && (text.empty() || !without_end(out.texts.back()).empty());
    }
    if (!out.is_whole)
        out.texts.assign(out.texts.size(), {});
}

} // namespace zel::exchange
