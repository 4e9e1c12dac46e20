#include "editor/state/edit-history.h"

#include "source/entry.h"
#include "support/string-copy.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace {

using namespace zel;

std::size_t size_of(const std::optional<std::string> &text) { return text ? text->size() : 0; }

std::size_t size_of(const entry_text &text)
{
    std::size_t size = text.lines.capacity() * sizeof(std::string);
    for (const std::string &line : text.lines)
        size += line.capacity();
    return size;
}

std::size_t size_of(const definitions &all)
{
    std::size_t size = all.langs.size() * sizeof(definition);
    for (const definition &lang : all.langs)
        size += size_of(lang.name) + size_of(lang.file);
    return size;
}

std::size_t size_of(const edit_change &change)
{
    if (const auto *text = std::get_if<text_change>(&change))
        return size_of(text->before) + size_of(text->after) + text->place.lang.size();
    if (const auto *langs = std::get_if<definitions_change>(&change))
        return size_of(langs->before) + size_of(langs->after);
    return 0;
}

std::size_t size_of(const edit_step &step)
{
    std::size_t size = sizeof(edit_step) + step.changes.size() * sizeof(edit_change);
    for (const edit_change &change : step.changes)
        size += size_of(change);
    return size;
}

// Must stay in step with trim_lines of the panel, which stores a typed text: blank lines at the end
// and the last line's end are no part of it.
std::vector<std::string> without_blank_end(std::vector<std::string> lines)
{
    while (!lines.empty() && lines.back().find_first_not_of(" \t\n\v\f\r") == std::string::npos)
        lines.pop_back();
    if (!lines.empty())
        lines.back().resize(std::min(lines.back().find_first_of("\n\r"), lines.back().size()));
    return lines;
}

void write_text(const text_place &place, const entry_text &text)
{
    // The item's mark is part of the state: an undone text leaves the item as unchanged as it was.
    place.item->changed = text.changed;
    lang_entry_t *entry = find_entry(place);
    GList *&entries = place.item->*place.entries;
    if (!text.there && entry != nullptr) {
        GList *link = g_list_find(entries, entry);
        entries = g_list_remove_link(entries, link);
        free_lang_entry_list(link);
        return;
    }
    if (text.there && entry == nullptr) {
        entry = alloc_lang_entry(place.lang.c_str());
        if (entry != nullptr)
            entries = g_list_append(entries, entry);
    }
    if (entry != nullptr)
        set_lines(entry, text);
}

void take_name(char *&owned, const std::optional<std::string> &name)
{
    zel::replace_string(owned, name ? zel_strdup2(name->c_str()) : nullptr);
}

void write_definitions(LangSource *source, const definitions &all)
{
    source->whatsnew = all.whatsnew;
    GList *rest = g_list_nth(source->langs, static_cast<guint>(all.langs.size()));
    if (rest != nullptr) {
        // Cuts the list off behind the languages that stay, so that the rest can be freed as a
        // list.
        (rest->prev == nullptr ? source->langs : rest->prev->next) = nullptr;
        rest->prev = nullptr;
        free_lang_list(rest);
    }
    zel::list_tail tail(source->langs);
    // Records that stay are filled again, not replaced: pointers to them stay good.
    for (std::size_t have = g_list_length(source->langs); have < all.langs.size(); ++have) {
        lang_t *lang = alloc_lang();
        if (lang == nullptr)
            return;
        tail.append(lang);
    }
    auto from = all.langs.begin();
    for (lang_t *lang : zel::each<lang_t>(source->langs)) {
        lang->edit = from->edit;
        lang->value_1 = from->value_1;
        lang->value_2 = from->value_2;
        take_name(lang->name, from->name);
        take_name(lang->file, from->file);
        ++from;
    }
}

std::optional<std::string> name_of(const char *name)
{
    return name == nullptr ? std::nullopt : std::optional<std::string>(name);
}

} // namespace

namespace zel {

void edit_history::clear()
{
    steps_.clear();
    done_ = 0;
    size_ = 0;
    // A version that no step has: what is loaded next counts as saved, and no undo leads back to
    // it.
    base_ = saved_ = ++last_version_;
    open_ = false;
    sealed_ = true;
}

// Letters join while they follow one another, up to the first letter of the next word; a paste or a
// cut is a step of its own.
bool edit_history::joins(const text_place &place, const keystroke &key) const
{
    if (!open_ || sealed_ || !(open_place() == place))
        return false;
    const bool takes_out = key.removed != 0;
    const bool took_out = last_.removed != 0;
    // One action of the user is one step, wherever it changes the text. Without an action, a
    // program that replaces text sends a removal and then an insertion, which belong together, too.
    if (key.action == last_.action && (key.action != 0 || (took_out && !takes_out)))
        return true;
    if (takes_out != took_out || key.removed + key.inserted != 1 ||
        last_.removed + last_.inserted != 1 || (last_.blank && !key.blank))
        return false;
    // Backspace moves the place back by one letter, Delete leaves it.
    if (takes_out)
        return key.at == last_.at || key.at + 1 == last_.at;
    return key.at == last_.at + 1;
}

void edit_history::begin(text_place place, entry_text before, const keystroke &key)
{
    edit_step step;
    step.changes.emplace_back(text_change{std::move(place), std::move(before), {}});
    step.version = ++last_version_;
    push(std::move(step));
    open_ = true;
    sealed_ = false;
    last_ = key;
}

const text_place &edit_history::open_place() const
{
    return std::get<text_change>(steps_[done_ - 1].changes[0]).place;
}

void edit_history::finish(entry_text after)
{
    // The step was counted without its new text; count it again, now that the text is known.
    if (!open_)
        return;
    edit_step &step = steps_.back();
    std::get<text_change>(step.changes[0]).after = std::move(after);
    size_ -= step.size;
    step.size = size_of(step);
    size_ += step.size;
    open_ = false;
    sealed_ = true;
    drop_oldest();
}

void edit_history::add(std::vector<edit_change> changes, bool counts)
{
    if (changes.empty())
        return;
    edit_step step;
    step.changes = std::move(changes);
    // A step that does not count has the version of the one before it, so that the source is as
    // modified as it was.
    step.version = counts ? ++last_version_ : version();
    push(std::move(step));
    sealed_ = true;
    drop_oldest();
}

// Drops the undone steps first: with a step that leads another way they cannot be done again.
void edit_history::push(edit_step step)
{
    for (; steps_.size() > done_; steps_.pop_back())
        size_ -= steps_.back().size;
    step.size = size_of(step);
    size_ += step.size;
    steps_.push_back(std::move(step));
    done_ = steps_.size();
}

void edit_history::drop_oldest()
{
    // What the oldest step led to becomes the state before the first one: undo reaches it no more,
    // but whether the source is modified is still known.
    for (; size_ > limit_ && done_ > 0; --done_) {
        size_ -= steps_.front().size;
        base_ = steps_.front().version;
        steps_.pop_front();
    }
}

const edit_step *edit_history::undo() { return open_ || done_ == 0 ? nullptr : &steps_[--done_]; }

const edit_step *edit_history::redo()
{
    return open_ || done_ == steps_.size() ? nullptr : &steps_[done_++];
}

void edit_history::mark_saved()
{
    saved_ = version();
    sealed_ = true;
}

// No step ever gets this version, so the source stays modified until the next save.
void edit_history::lose_saved() { saved_ = std::numeric_limits<std::uint64_t>::max(); }

edit_history &source_history()
{
    static edit_history history;
    return history;
}

lang_entry_t *find_entry(const text_place &place)
{
    return find_entry(place.item->*place.entries, place.lang.c_str());
}

entry_text read_text(const text_place &place)
{
    entry_text text;
    text.changed = place.item->changed;
    const lang_entry_t *entry = find_entry(place);
    text.there = entry != nullptr;
    for (const char *line : each<char>(entry == nullptr ? nullptr : entry->texts))
        text.lines.emplace_back(line == nullptr ? "" : line);
    return text;
}

void set_lines(lang_entry_t *entry, const entry_text &text)
{
    free_lang_entry_text(entry->texts);
    entry->texts = nullptr;
    list_tail tail(entry->texts);
    // Text that was read keeps its blank lines: undo must bring back the very lines of the file.
    for (const std::string &line : text.typed ? without_blank_end(text.lines) : text.lines)
        tail.append(zel_strdup2(line.c_str()));
}

definitions read_definitions(const LangSource *source)
{
    definitions all;
    all.whatsnew = source->whatsnew;
    for (const lang_t *lang : each<lang_t>(source->langs))
        all.langs.push_back(
            {lang->edit, lang->value_1, lang->value_2, name_of(lang->name), name_of(lang->file)});
    return all;
}

void apply_change(const edit_change &change, bool before)
{
    if (const auto *text = std::get_if<text_change>(&change))
        write_text(text->place, before ? text->before : text->after);
    else if (const auto *ready = std::get_if<ready_change>(&change))
        ready->item->ready = before ? ready->before : ready->after;
    else if (const auto *langs = std::get_if<definitions_change>(&change))
        write_definitions(langs->source, before ? langs->before : langs->after);
}

import_record::import_record(LangSource *source, const char *lang)
    : source_(source), lang_(lang), definitions_(read_definitions(source))
// An import may touch any text of its language: only the whole language before and after tells what
// it did.
{
    for (const edit_t *group : each<edit_t>(source->groups)) {
        for (item_t *item : each<item_t>(group->items)) {
            const text_place place{item, &item_t::langs, lang_};
            texts_.push_back({place, read_text(place), {}});
        }
    }
}

std::vector<edit_change> import_record::changes() const
{
    std::vector<edit_change> found;
    definitions now = read_definitions(source_);
    if (!(now == definitions_))
        found.emplace_back(definitions_change{source_, definitions_, std::move(now)});
    for (const text_change &old : texts_) {
        entry_text text = read_text(old.place);
        if (text.there != old.before.there || text.lines != old.before.lines)
            found.emplace_back(text_change{old.place, old.before, std::move(text)});
    }
    return found;
}

} // namespace zel
