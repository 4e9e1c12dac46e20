#include "merge/merge3.h"

#include "merge/fields.h"
#include "merge/merge-lists.h"
#include "merge/numbering.h"

#include <algorithm>
#include <span>
#include <utility>

namespace zel {

namespace {

std::optional<std::string> copy_of(const char *name)
{
    return name == nullptr ? std::nullopt : std::optional<std::string>(name);
}

// Whoever changed a time wins; of two changes the later one is the newer work.
std::int64_t merged_stamp(std::int64_t base, std::int64_t ours, std::int64_t theirs)
{
    return ours == base ? theirs : theirs == base ? ours : std::max(ours, theirs);
}

template <class T>
// Strings are exchanged, not copied: the record of theirs is released after the merge.
void take(const field<T> &row, T &ours, T &theirs)
{
    if (row.number != nullptr)
        ours.*row.number = theirs.*row.number;
    else if (row.mark != nullptr)
        ours.*row.mark = theirs.*row.mark;
    else
        std::swap(ours.*row.text, theirs.*row.text);
}

GList *texts_of(const lang_entry_t *entry) { return entry == nullptr ? nullptr : entry->texts; }

// Down to the cut into strings; a text that is not there is another than an empty one.
bool same_entry(const lang_entry_t *a, const lang_entry_t *b)
{
    return (a == nullptr) == (b == nullptr) && same_strings(texts_of(a), texts_of(b));
}

// A text that is not there is as good as an empty one.
bool same_meaning(const lang_entry_t *a, const lang_entry_t *b)
{
    return same_written_text(texts_of(a), texts_of(b));
}

// Only those of an item that is used are written.
GList *places_of(const item_t &item) { return item.used != 0 ? item.used_in : nullptr; }

bool same_use(const item_t &a, const item_t &b)
{
    return (a.used != 0) == (b.used != 0) && same_strings(places_of(a), places_of(b));
}

// Adds the places that only theirs has.
void unite_places(item_t &ours, const item_t &theirs)
{
    numbering numbers;
    const auto our_names = names_of<char>(ours.used_in);
    const auto their_names = names_of<char>(theirs.used_in);
    numbers.number(our_names);
    list_tail tail(ours.used_in);
    GList *node = theirs.used_in;
    for (const std::uint32_t at : numbers.number(their_names)) {
        if (at >= our_names.size())
            tail.append(std::exchange(node->data, nullptr));
        node = node->next;
    }
}

// Whether what one side did to an item stands against its removal on the other. A check moves
// places and finds kinds of requests everywhere; an item that is not used may go, and so may one
// that lost a text or was only looked at.
bool matters(const difference &found)
{
    if (found.how == change::removed)
        return false;
    for (const field<item_t> &row : item_fields)
        if (row.from != origin::people && std::string_view(found.field) == row.name)
            return row.mark != nullptr && found.after.shown == yes_no.names[1];
    return true;
}

// The languages that the merge left out.
void release_languages(GList *langs)
{
    if (langs != nullptr) // it logs
        free_lang_list(langs);
}

void release_groups(GList *groups)
{
    for (edit_t *group : each<edit_t>(groups))
        free_edit(&group);
    g_list_free(groups);
}

struct merging {
    side prefer = side::neither;
    std::vector<conflict> conflicts;
    bool in_conflict = false; // the item at hand

    // Where the merge is; null where that is not concerned.
    const char *group = nullptr;
    const char *item = nullptr;
    const char *language = nullptr;

    // What both sides added is merged as if it had begun as a new record.
    const item_t new_item = fresh_record(alloc_item);
    const edit_t new_group = fresh_record(lang_alloc_edit);
    const lang_t new_language = fresh_record(alloc_lang);

    bool settle(const char *field, field_value ours, field_value theirs);
    bool note_removed(const difference &found, bool by_them);
    bool stays(bool with_us, bool conflicting) const;

    template <class T>
    void merge_fields(std::span<const field<T>> rows, const T &base, T &ours, T &theirs);

    lang_entry_t *merge_entry(const char *field, lang_entry_t *base, lang_entry_t *ours,
                              lang_entry_t *theirs);
    void merge_entries(const char *field, GList *base, GList *&ours, GList *&theirs);
    void merge_use(const item_t &base, item_t &ours, item_t &theirs);
    void merge_both_items(const item_t &base, item_t &ours, item_t &theirs);
    item_t *merge_removed_item(item_t *base, item_t *ours, item_t *theirs);
    item_t *merge_item(item_t *base, item_t *ours, item_t *theirs);
    void merge_items(GList *base, GList *&ours, GList *&theirs);
    edit_t *merge_removed_group(edit_t *base, edit_t *ours, edit_t *theirs);
    edit_t *merge_group(edit_t *base, edit_t *ours, edit_t *theirs);
    lang_t *merge_language(lang_t *base, lang_t *ours, lang_t *theirs);
    void merge_root(const LangSource &base, LangSource &ours, LangSource &theirs);
};

// A conflict. Whether theirs is taken.
bool merging::settle(const char *field, field_value ours, field_value theirs)
{
    // With a preference nothing is left open, so nothing is noted and no mark is taken away.
    if (prefer == side::neither) {
        in_conflict = true;
        conflicts.push_back({copy_of(group), copy_of(item), copy_of(language), field,
                             std::move(ours), std::move(theirs)});
    }
    return prefer == side::theirs;
}

// What one side did to a record that the other one removed.
bool merging::note_removed(const difference &found, bool by_them)
{
    if (found.item != nullptr && !matters(found))
        return false;
    // The comparison names the language of its finding only for the time of this call.
    const char *before = std::exchange(language, found.language);
    if (by_them)
        settle(found.field, found.after, {});
    else
        settle(found.field, {}, found.after);
    language = before;
    return true;
}

// Whether a record that one side removed is in the result.
bool merging::stays(bool with_us, bool conflicting) const
{
    return conflicting && with_us == (prefer != side::theirs);
}

template <class T>
void merging::merge_fields(std::span<const field<T>> rows, const T &base, T &ours, T &theirs)
{
    for (const field<T> &row : rows) {
        // Ours stays: both say the same, or only we have changed it.
        if (agree(row, ours, theirs) || agree(row, theirs, base))
            continue;
        if (agree(row, ours, base) ||
            (row.from == origin::people &&
             settle(row.name, value_of(row, ours), value_of(row, theirs))))
            take(row, ours, theirs);
    }
}

lang_entry_t *merging::merge_entry(const char *field, lang_entry_t *base, lang_entry_t *ours,
                                   lang_entry_t *theirs)
{
    if (same_entry(ours, theirs))
        return ours;
    bool as_theirs = false;
    // Both mean the same: the lines are cut as the side has it that touched them.
    if (same_meaning(ours, theirs)) {
        as_theirs = same_entry(ours, base);
    } else if (same_meaning(ours, base)) {
        as_theirs = true;
    } else if (!same_meaning(theirs, base)) {
        language = or_empty((ours == nullptr ? theirs : ours)->lang);
        as_theirs = settle(field, value_of(ours), value_of(theirs));
        language = nullptr;
    }
    if (!as_theirs)
        return ours;
    // The list takes over a whole entry, or drops ours.
    if (ours == nullptr || theirs == nullptr)
        return theirs;
    std::swap(ours->texts, theirs->texts);
    return ours;
}

void merging::merge_entries(const char *field, GList *base, GList *&ours, GList *&theirs)
{
    merge_lists<lang_entry_t>(base, ours, theirs, free_lang_entry_list,
                              [&](lang_entry_t *b, lang_entry_t *o, lang_entry_t *t) {
                                  return merge_entry(field, b, o, t);
                              });
}

void merging::merge_use(const item_t &base, item_t &ours, item_t &theirs)
{
    if (same_use(ours, theirs) || same_use(theirs, base))
        return;
    // A side that found the item in the code is right: the other one checked other files.
    if (same_use(ours, base) || ours.used == 0) {
        ours.used = theirs.used;
        std::swap(ours.used_in, theirs.used_in);
    } else if (theirs.used != 0) {
        unite_places(ours, theirs);
    }
}

void merging::merge_both_items(const item_t &base, item_t &ours, item_t &theirs)
{
    in_conflict = false;
    merge_use(base, ours, theirs);
    // The table of fields has "used" too, for comparisons; here the places have decided it.
    const std::uint32_t used = ours.used;
    merge_fields<item_t>(item_fields, base, ours, theirs);
    ours.used = used;
    ours.ctime = merged_stamp(base.ctime, ours.ctime, theirs.ctime);
    merge_entries("text", base.langs, ours.langs, theirs.langs);
    merge_entries("comment", base.comments, ours.comments, theirs.comments);
    // Nobody has approved the text that the conflict leaves: somebody must look.
    if (in_conflict)
        ours.ready = 0;
}

// One side removed it, the other one may have changed it.
item_t *merging::merge_removed_item(item_t *base, item_t *ours, item_t *theirs)
{
    item_t *left = ours == nullptr ? theirs : ours;
    bool conflicting = false;
    in_conflict = false;
    compare_items(group, base, left, false, [&](const difference &found) {
        conflicting = note_removed(found, ours != nullptr) || conflicting;
    });
    if (in_conflict)
        left->ready = 0;
    return stays(ours != nullptr, conflicting) ? left : nullptr;
}

item_t *merging::merge_item(item_t *base, item_t *ours, item_t *theirs)
{
    item = or_empty((ours == nullptr ? theirs : ours)->name);
    item_t *result = ours;
    if (ours != nullptr && theirs != nullptr)
        merge_both_items(base == nullptr ? new_item : *base, *ours, *theirs);
    else if (base == nullptr)
        result = ours == nullptr ? theirs : ours;
    else
        result = merge_removed_item(base, ours, theirs);
    item = nullptr;
    return result;
}

void merging::merge_items(GList *base, GList *&ours, GList *&theirs)
{
    merge_lists<item_t>(base, ours, theirs, free_item_list,
                        [&](item_t *b, item_t *o, item_t *t) { return merge_item(b, o, t); });
}

// One side removed the group. It stays as far as the other one has something new in it.
edit_t *merging::merge_removed_group(edit_t *base, edit_t *ours, edit_t *theirs)
{
    edit_t *left = ours == nullptr ? theirs : ours;
    bool conflicting = false;
    compare_groups(base, left, [&](const difference &found) {
        conflicting = note_removed(found, ours != nullptr) || conflicting;
    });
    // The items are merged against an empty list: each is either untouched and goes, or has
    // something new and stays.
    GList *nothing = nullptr;
    if (ours != nullptr) {
        merge_items(base->items, left->items, nothing);
    } else {
        merge_items(base->items, nothing, left->items);
        std::swap(left->items, nothing);
        free_item_list(nothing);
    }
    return left->items != nullptr || stays(ours != nullptr, conflicting) ? left : nullptr;
}

edit_t *merging::merge_group(edit_t *base, edit_t *ours, edit_t *theirs)
{
    group = or_empty((ours == nullptr ? theirs : ours)->name);
    edit_t *result = ours;
    if (ours != nullptr && theirs != nullptr) {
        merge_fields<edit_t>(group_fields, base == nullptr ? new_group : *base, *ours, *theirs);
        merge_items(base == nullptr ? nullptr : base->items, ours->items, theirs->items);
    } else if (base == nullptr) {
        result = ours == nullptr ? theirs : ours;
    } else {
        result = merge_removed_group(base, ours, theirs);
    }
    group = nullptr;
    return result;
}

lang_t *merging::merge_language(lang_t *base, lang_t *ours, lang_t *theirs)
{
    lang_t *left = ours == nullptr ? theirs : ours;
    if (ours != nullptr && theirs != nullptr) {
        language = or_empty(left->name);
        merge_fields<lang_t>(language_fields, base == nullptr ? new_language : *base, *ours,
                             *theirs);
        language = nullptr;
        return ours;
    }
    if (base == nullptr)
        return left;
    bool conflicting = false;
    compare_languages(base, left, [&](const difference &found) {
        conflicting = note_removed(found, ours != nullptr) || conflicting;
    });
    return stays(ours != nullptr, conflicting) ? left : nullptr;
}

void merge_stamps(const LangSource &base, LangSource &ours, LangSource &theirs)
{
    // The date in words goes with the creation time, which a check sets together with it.
    const auto date = [](const LangSource &source) { return view_of(source.create_date); };
    const bool later =
        theirs.ctime > ours.ctime || (theirs.ctime == ours.ctime && date(theirs) > date(ours));
    if (date(theirs) != date(base) && (date(ours) == date(base) || later))
        std::swap(ours.create_date, theirs.create_date);
    for (std::int64_t LangSource::*stamp :
         {&LangSource::whatsnew, &LangSource::ctime, &LangSource::mtime})
        ours.*stamp = merged_stamp(base.*stamp, ours.*stamp, theirs.*stamp);
}

void merging::merge_root(const LangSource &base, LangSource &ours, LangSource &theirs)
{
    merge_fields<LangSource>(source_fields, base, ours, theirs);
    merge_stamps(base, ours, theirs);
    merge_lists<lang_t>(base.langs, ours.langs, theirs.langs, release_languages,
                        [&](lang_t *b, lang_t *o, lang_t *t) { return merge_language(b, o, t); });
    merge_lists<edit_t>(base.groups, ours.groups, theirs.groups, release_groups,
                        [&](edit_t *b, edit_t *o, edit_t *t) { return merge_group(b, o, t); });
}

// Back pointers and counts are as if the source had just been read.
void count_again(LangSource &source)
{
    source.lang_count = 0;
    source.edit_lang_count = 0;
    source.item_count = 0;
    for (const lang_t *lang : each<lang_t>(source.langs)) {
        ++source.lang_count;
        source.edit_lang_count += lang->edit != 0 ? 1U : 0U;
    }
    for (edit_t *group : each<edit_t>(source.groups)) {
        group->used = 0;
        for (item_t *item : each<item_t>(group->items)) {
            item->source = &source;
            ++source.item_count;
            group->used += item->used != 0 ? 1U : 0U;
        }
    }
}

} // namespace

std::vector<conflict> merge_sources(LangSource *base, LangSource *ours, LangSource *theirs,
                                    side prefer)
{
    merging merge;
    merge.prefer = prefer;
    merge.merge_root(*base, *ours, *theirs);
    count_again(*ours);
    return std::move(merge.conflicts);
}

} // namespace zel
