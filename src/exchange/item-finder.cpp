#include "exchange/item-finder.h"

#include "exchange/input.h"
#include "langlib/plural-rule.h"
#include "source/entry.h"

#include <algorithm>

namespace zel::exchange {

namespace {

// A text that more items have is not looked for in all of them: the time would be the square of
// their number.
constexpr std::size_t most_looked_at = 100;

std::string grouped(std::string_view text, std::string_view group)
{
    std::string out(text);
    out += '\0'; // no name holds one
    return out.append(group);
}

// Each form of a text without the white space at its end.
std::string without_ends(std::string_view text)
{
    std::string out;
    for (std::size_t i = 0; i < count_text_forms(text); ++i)
        out.append(i == 0 ? "" : "|").append(without_end(text_form(text, i)));
    return out;
}

} // namespace

reference_parts split_reference(std::string_view reference)
{
    constexpr std::string_view open = "\xE2\x81\xA8";
    constexpr std::string_view close = "\xE2\x81\xA9";
    const std::size_t colon = reference.rfind(':');
    std::string_view line;
    if (colon != std::string_view::npos && colon + 1 < reference.size() &&
        reference.find_first_not_of("0123456789", colon + 1) == std::string_view::npos) {
        line = reference.substr(colon + 1);
        reference = reference.substr(0, colon);
    }
    // A name with blanks stands between these two characters.
    if (reference.starts_with(open) && reference.ends_with(close))
        reference = reference.substr(open.size(), reference.size() - open.size() - close.size());
    return {reference, line};
}

std::string group_of_place(const std::vector<std::string> &references)
{
    const std::string_view file =
        references.empty() ? std::string_view() : split_reference(references.front()).file;
    return file.empty() ? "messages" : std::string(stem_of(file));
}

void item_finder::add(const edit_t *group, item_t *item, std::string_view text)
{
    std::vector<found> &all = by_text_[std::string(text)];
    if (!all.empty() && all.back().item == item)
        return;
    all.push_back({item, view_of(group->name)});
    by_group_.emplace(grouped(text, view_of(group->name)), all.back());
}

void item_finder::fill()
{
    filled_ = true;
    for (const edit_t *group : each<edit_t>(source_->groups))
        for (item_t *item : each<item_t>(group->items)) {
            add(group, item, view_of(item->name));
            add(group, item, without_end(reference_text(*source_, item)));
        }
}

// The item of that group; of one that bears a number because the other's name was taken, when the
// first is.
const item_finder::found *item_finder::in_group(const std::string &text,
                                                const std::vector<found> &all,
                                                std::string_view group) const
{
    const auto exact = by_group_.find(grouped(text, group));
    if (exact != by_group_.end() && !taken_.contains(exact->second.item))
        return &exact->second;
    if (all.size() > most_looked_at)
        return nullptr;
    const auto numbered = std::find_if(all.begin(), all.end(), [&](const found &one) {
        return one.group.size() > group.size() + 1 && one.group.starts_with(group) &&
               one.group[group.size()] == '-' && !taken_.contains(one.item) &&
               one.group.find_first_not_of("0123456789", group.size() + 1) ==
                   std::string_view::npos;
    });
    return numbered == all.end() ? nullptr : &*numbered;
}

std::vector<item_finder::found> item_finder::find(const std::optional<std::string> &context,
                                                  const std::string &text, std::string_view group,
                                                  bool only_there)
{
    if (!filled_)
        fill();
    // Names may differ in the white space at the end alone, which texts do not have.
    auto known = by_text_.find(text);
    if (known == by_text_.end())
        known = by_text_.find(std::string(without_end(text)));
    if (known == by_text_.end() && text.find(plural_sign) != text.npos)
        known = by_text_.find(without_ends(text));
    if (known == by_text_.end())
        return {};
    const std::string_view wanted = context ? std::string_view(*context) : group;
    if (const found *one =
            context || !group.empty() ? in_group(known->first, known->second, wanted) : nullptr) {
        taken_.insert(one->item);
        return {*one};
    }
    if (only_there || known->second.size() > most_looked_at)
        return {};
    std::vector<found> free;
    std::copy_if(known->second.begin(), known->second.end(), std::back_inserter(free),
                 [&](const found &one) { return !taken_.contains(one.item); });
    if (free.size() == 1)
        taken_.insert(free.front().item);
    return free;
}

} // namespace zel::exchange
