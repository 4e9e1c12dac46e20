#pragma once

// What the user has done to the source since it was loaded, as steps that can be undone and done
// again. The history knows the model only: the windows tell it what happens, ask for a step and
// show it.
//
// A step holds the whole state before and after it of every text it touched, so that undoing never
// depends on what was shown or stored in between, and bytes that a window cannot show come back.

#include "source/model.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zel {

// Where a text or a comment stands.
struct text_place {
    item_t *item;
    GList *item_t::*entries; // langs or comments
    std::string lang;

    bool operator==(const text_place &other) const
    {
        return item == other.item && entries == other.entries && lang == other.lang;
    }
};

struct entry_text {
    bool there = false;        // the item has an entry of the language
    bool typed = false;        // as typed: storing it drops blank lines at its end
    std::uint32_t changed = 0; // of the item, beside this text
    std::vector<std::string> lines;
};

struct text_change {
    text_place place;
    entry_text before;
    entry_text after;
};

struct ready_change {
    item_t *item;
    std::int32_t before;
    std::int32_t after;
};

// The languages of a source and its what's-new time.
struct definition {
    std::int32_t edit;
    std::int32_t value_1;
    std::int32_t value_2;
    std::optional<std::string> name;
    std::optional<std::string> file;

    bool operator==(const definition &) const = default;
};
struct definitions {
    std::vector<definition> langs;
    std::int64_t whatsnew = 0;

    bool operator==(const definitions &) const = default;
};
struct definitions_change {
    LangSource *source;
    definitions before;
    definitions after;
};

using edit_change = std::variant<text_change, ready_change, definitions_change>;

struct edit_step {
    std::vector<edit_change> changes;
    std::uint64_t version = 0; // of the source after it
    std::size_t size = 0;      // bytes held
};

// One change of a field's text: letters taken out at a place, or put in there.
struct keystroke {
    int at = 0;
    int removed = 0;
    int inserted = 0;
    bool blank = false;       // the letter, when it is one
    std::uint64_t action = 0; // what the user did; its changes belong together. 0: a program's
};

class edit_history {
public:
    static constexpr std::size_t default_limit = std::size_t{64} << 20;
    explicit edit_history(std::size_t limit = default_limit) : limit_(limit) {}

    void clear(); // with nothing done and nothing modified

    // Typing: a change of a text is about to happen. One that does not join the step before begins
    // a step of its own, which is open until its text is known: call finish before anything else.
    bool joins(const text_place &place, const keystroke &key) const;
    void join(const keystroke &key) { last_ = key; }
    void begin(text_place place, entry_text before, const keystroke &key);
    bool is_open() const { return open_; }
    const text_place &open_place() const;
    void finish(entry_text after);

    // Adds what was done at once. A step that does not count leaves the source unmodified.
    void add(std::vector<edit_change> changes, bool counts = true);

    // The step to take back, or to do again; null when there is none, or while a step is open.
    const edit_step *undo();
    const edit_step *redo();
    bool can_undo() const { return done_ > 0; }
    bool can_redo() const { return done_ < steps_.size(); }

    // Whether the source differs from what was saved last.
    bool modified() const { return version() != saved_; }
    void mark_saved();
    void lose_saved(); // something else has changed the source: no step leads back

    std::size_t size() const { return size_; }

private:
    std::uint64_t version() const { return done_ == 0 ? base_ : steps_[done_ - 1].version; }
    void push(edit_step step);
    void drop_oldest();

    std::size_t limit_;
    std::deque<edit_step> steps_;
    std::size_t done_ = 0; // the steps before it are done, the others undone
    std::size_t size_ = 0;
    std::uint64_t base_ = 0; // version before the first step
    std::uint64_t last_version_ = 0;
    std::uint64_t saved_ = 0;
    bool open_ = false;
    bool sealed_ = true; // the next keystroke begins a step
    keystroke last_;
};

// The history of the editor's current source.
edit_history &source_history();

lang_entry_t *find_entry(const text_place &place); // the first of the language, or null
entry_text read_text(const text_place &place);
void set_lines(lang_entry_t *entry, const entry_text &text); // as they are stored
definitions read_definitions(const LangSource *source);

// Brings the model to what it was before the change, or after it.
void apply_change(const edit_change &change, bool before);

// Which texts an import changes: make it before the import, and ask it afterwards for what was
// done.
class import_record {
public:
    import_record(LangSource *source, const char *lang);
    std::vector<edit_change> changes() const;

private:
    LangSource *source_;
    std::string lang_;
    definitions definitions_;
    std::vector<text_change> texts_;
};

} // namespace zel
