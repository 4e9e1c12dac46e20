#include "merge/compare.h"

#include "merge/fields.h"
#include "merge/numbering.h"
#include "merge/records.h"

#include <span>
#include <string>
#include <vector>

namespace zel {

namespace {

// What a difference is about, and who hears of it.
struct comparison {
    const difference_listener &tell;
    bool with_places = false;
    const char *group = nullptr;
    const char *item = nullptr;
    const char *language = nullptr;

    void say(change how, const char *field, field_value before, field_value after) const
    {
        tell({how, group, item, language, field, std::move(before), std::move(after)});
    }
    // Of a whole record, or of a text.
    void say_one(change how, const char *field, const field_value &value) const
    {
        say(how, field, how == change::removed ? value : field_value{},
            how == change::added ? value : field_value{});
    }
};

// Tells each field of a record that has changed, by the name of its row.
template <class T>
void compare_fields(const comparison &about, std::span<const field<T>> rows, const T &before,
                    const T &after)
{
    for (const field<T> &row : rows)
        if (!agree(row, before, after))
            about.say(change::changed, row.name, value_of(row, before), value_of(row, after));
}

// Calls one(before, after) for the records of two lists by name; one of the two may be null.
template <class T, class One>
void for_pairs(GList *before, GList *after, One one)
{
    // Nearly always nothing was added, removed or moved: then no name is looked up.
    if (same_names<T>(before, after)) {
        for (; before != nullptr; before = before->next, after = after->next)
            one(static_cast<T *>(before->data), static_cast<T *>(after->data));
        return;
    }
    numbering numbers;
    const auto old_names = names_of<T>(before);
    const auto new_names = names_of<T>(after);
    const auto old_numbers = numbers.number(old_names);
    const auto new_numbers = numbers.number(new_names);
    std::vector<std::pair<T *, T *>> pairs(numbers.count());
    for (const std::uint32_t at : old_numbers) {
        pairs[at].first = static_cast<T *>(before->data);
        before = before->next;
    }
    for (const std::uint32_t at : new_numbers) {
        pairs[at].second = static_cast<T *>(after->data);
        after = after->next;
    }
    // What was removed stands between the neighbours that it had, so that a reader finds it.
    for (const std::uint32_t at : weave(old_numbers, new_numbers, numbers.count()))
        one(pairs[at].first, pairs[at].second);
}

// A record that only one of the two sources has.
change how_of(const void *before) { return before == nullptr ? change::added : change::removed; }

// Texts and comments: one entry for each language. A text counts as a whole, however it is cut into
// lines.
void compare_entries(comparison about, const char *field, GList *before, GList *after)
{
    for_pairs<lang_entry_t>(before, after, [&](lang_entry_t *old_one, lang_entry_t *new_one) {
        const bool both = old_one != nullptr && new_one != nullptr;
        if (both && same_text(old_one->texts, new_one->texts))
            return;
        about.language = name_of(old_one == nullptr ? *new_one : *old_one).data();
        about.say(both ? change::changed : how_of(old_one), field, value_of(old_one),
                  value_of(new_one));
    });
}

// Places have no order that means something: only what came and what went is told.
void compare_places(const comparison &about, GList *before, GList *after)
{
    if (same_strings(before, after))
        return;
    numbering numbers;
    const auto old_names = names_of<char>(before);
    const auto new_names = names_of<char>(after);
    const auto old_numbers = numbers.number(old_names);
    const auto new_numbers = numbers.number(new_names);
    std::vector<bool> kept(numbers.count());
    for (const std::uint32_t at : new_numbers)
        kept[at] = true;
    for (std::size_t at = 0; at < old_names.size(); ++at)
        if (!kept[old_numbers[at]])
            about.say_one(change::removed, "place",
                          {field_value::text, std::string(old_names[at])});
    for (std::size_t at = 0; at < new_names.size(); ++at)
        // A number beyond those of the first list is a name that only the second one has.
        if (new_numbers[at] >= old_names.size())
            about.say_one(change::added, "place", {field_value::text, std::string(new_names[at])});
}

void compare_both_items(comparison about, item_t &before, item_t &after)
{
    about.item = or_empty(after.name);
    compare_fields<item_t>(about, item_fields, before, after);
    compare_entries(about, "text", before.langs, after.langs);
    compare_entries(about, "comment", before.comments, after.comments);
    // The writer leaves out the places of an item that is not used, and so do we.
    if (about.with_places)
        compare_places(about, before.used != 0 ? before.used_in : nullptr,
                       after.used != 0 ? after.used_in : nullptr);
}

// The items of two groups; null for a group that is not there.
void compare_item_lists(comparison about, edit_t *before, edit_t *after)
{
    for_pairs<item_t>(before == nullptr ? nullptr : before->items,
                      after == nullptr ? nullptr : after->items,
                      [&](item_t *old_one, item_t *new_one) {
                          if (old_one != nullptr && new_one != nullptr) {
                              compare_both_items(about, *old_one, *new_one);
                              return;
                          }
                          about.item = name_of(old_one == nullptr ? *new_one : *old_one).data();
                          about.say(how_of(old_one), "item", {}, {});
                      });
}

} // namespace

void compare_items(const char *group, item_t *before, item_t *after, bool with_places,
                   const difference_listener &tell)
{
    compare_both_items({tell, with_places, group}, *before, *after);
}

void compare_languages(lang_t *before, lang_t *after, const difference_listener &tell)
{
    comparison about{tell};
    about.language = name_of(before == nullptr ? *after : *before).data();
    if (before != nullptr && after != nullptr)
        compare_fields<lang_t>(about, language_fields, *before, *after);
    else
        about.say(how_of(before), "language", {}, {});
}

void compare_groups(edit_t *before, edit_t *after, const difference_listener &tell)
{
    comparison about{tell};
    about.group = name_of(before == nullptr ? *after : *before).data();
    if (before != nullptr && after != nullptr)
        compare_fields<edit_t>(about, group_fields, *before, *after);
    else
        about.say(how_of(before), "group", {}, {});
}

void compare_sources(LangSource *before, LangSource *after, bool with_places,
                     const difference_listener &tell)
{
    compare_fields<LangSource>({tell}, source_fields, *before, *after);
    for_pairs<lang_t>(before->langs, after->langs, [&](lang_t *old_one, lang_t *new_one) {
        compare_languages(old_one, new_one, tell);
    });
    for_pairs<edit_t>(before->groups, after->groups, [&](edit_t *old_one, edit_t *new_one) {
        compare_groups(old_one, new_one, tell);
        const edit_t &named = old_one == nullptr ? *new_one : *old_one;
        compare_item_lists({tell, with_places, name_of(named).data()}, old_one, new_one);
    });
}

} // namespace zel
