// Undo and redo without windows: what is one step, and that any sequence of edits, moves, undos and
// redos leads through the states that a plain list of states has.

#include "editor/state/edit-history.h"

#include <gtest/gtest.h>

#include <cctype>
#include <random>

namespace {

using namespace zel;

source_guard make_source(int items)
{
    source_guard source(lang_alloc_group());
    edit_t *group = lang_alloc_edit();
    source->groups = g_list_append(source->groups, group);
    for (int number = 0; number < items; ++number) {
        item_t *item = alloc_item();
        group->items = g_list_append(group->items, item);
        lang_entry_t *entry = alloc_lang_entry("english");
        // Two strings that are one line, a byte that is no UTF-8, blank lines at the end.
        entry->texts = g_list_append(entry->texts, strdup("a\xff"));
        entry->texts = g_list_append(entry->texts, strdup("b\n"));
        entry->texts = g_list_append(entry->texts, strdup(" \n"));
        item->langs = g_list_append(item->langs, entry);
    }
    for (const char *name : {"english", "german"}) {
        lang_t *lang = alloc_lang();
        lang->name = strdup(name);
        source->langs = g_list_append(source->langs, lang);
    }
    return source;
}

std::string dump(const LangSource *source)
{
    std::string all = std::to_string(source->whatsnew) + ";";
    for (const lang_t *lang : each<lang_t>(source->langs))
        all += std::string(lang->name == nullptr ? "(none)" : lang->name) + "," +
               std::to_string(lang->edit) + ";";
    const auto *group = static_cast<const edit_t *>(source->groups->data);
    for (const item_t *item : each<item_t>(group->items)) {
        all += "\n" + std::to_string(item->ready) + std::to_string(item->changed);
        for (GList *list : {item->langs, item->comments}) {
            for (const lang_entry_t *entry : each<lang_entry_t>(list)) {
                all += std::string("|") + entry->lang + "=";
                for (const char *line : each<char>(entry->texts))
                    all += std::string("<") + line + ">";
            }
            all += "/";
        }
    }
    return all;
}

// An editor without windows: one field at a time, typed in by single letters and pieces.
class Hand {
public:
    Hand(unsigned seed, std::size_t limit) : random(seed), history(limit), source(make_source(4))
    {
        states = {{dump(source.get()), 0}};
        move();
    }

    void act()
    {
        switch (pick(12)) {
        case 0:
            move();
            break;
        case 1:
            mark_ready();
            break;
        case 2:
            define();
            break;
        case 3:
            save();
            break;
        case 4:
        case 5:
        case 6:
            step_back();
            break;
        case 7:
        case 8:
            step_forth();
            break;
        default:
            type();
        }
        ASSERT_EQ(history.modified(), states[now].version != saved);
    }

    void undo_all()
    {
        while (history.can_undo())
            ASSERT_NO_FATAL_FAILURE(step_back());
    }

    std::size_t undone_to() const { return now; }

    std::mt19937 random;
    edit_history history;

private:
    struct state {
        std::string text;
        unsigned version;
    };

    unsigned pick(unsigned end) { return static_cast<unsigned>(random() % end); }
    item_t *any_item()
    {
        auto *group = static_cast<edit_t *>(source->groups->data);
        return static_cast<item_t *>(g_list_nth_data(group->items, pick(4)));
    }

    void finish()
    {
        if (history.is_open())
            history.finish({true, true, 1, {letters}});
    }
    void show()
    {
        letters.clear();
        for (const std::string &line : read_text(place).lines)
            letters += line;
        typed = false;
    }
    void move()
    {
        finish();
        place = {any_item(), pick(3) == 0 ? &item_t::comments : &item_t::langs,
                 pick(2) == 0 ? "english" : "german"};
        show();
    }
    void type()
    {
        keystroke key;
        key.at = pick(3) == 0 ? static_cast<int>(pick(static_cast<unsigned>(letters.size()) + 1))
                              : static_cast<int>(letters.size());
        if (!letters.empty() && pick(3) == 0) {
            key.at = std::max(key.at - 1, 0);
            key.removed = 1;
        }
        static const std::string pieces[] = {"x", "y", " ", "\n", "pasted piece\n\n"};
        const std::string &piece = pieces[pick(5)];
        key.inserted = key.removed != 0 ? 0 : static_cast<int>(piece.size());
        key.blank = key.inserted == 1 && std::isspace(piece[0]) != 0;
        const bool joins = history.joins(place, key);
        if (joins) {
            history.join(key);
        } else {
            finish();
            entry_text before = read_text(place);
            if (typed)
                before = {true, true, 1, {letters}};
            history.begin(place, std::move(before), key);
        }
        letters.replace(static_cast<std::size_t>(key.at), static_cast<std::size_t>(key.removed),
                        key.removed != 0 ? "" : piece);
        typed = true;
        apply_change(text_change{place, {}, {true, true, 1, {letters}}}, false);
        note(!joins, true);
    }
    void mark_ready()
    {
        finish();
        item_t *item = any_item();
        const bool counts = pick(2) == 0;
        history.add({ready_change{item, item->ready, item->ready + 1}}, counts);
        ++item->ready;
        note(true, counts);
    }
    void define()
    {
        finish();
        const definitions before = read_definitions(source.get());
        definitions after = before;
        after.whatsnew = pick(1000);
        if (pick(2) == 0)
            after.langs.push_back({1, 2, 3, std::nullopt, "x.lang"});
        else if (after.langs.size() > 1)
            after.langs.erase(after.langs.begin());
        const definitions_change change{source.get(), before, after};
        apply_change(change, false);
        history.add({change});
        note(true, true);
    }
    void save()
    {
        history.mark_saved();
        saved = states[now].version;
    }
    // The plain record.
    void note(bool is_new, bool counts)
    {
        states.resize(now + 1);
        const unsigned version =
            counts ? (is_new ? ++versions : states[now].version) : states[now].version;
        if (is_new)
            ++now;
        states.resize(now);
        states.push_back({dump(source.get()), version});
    }
    void follow(const edit_step *step, bool back)
    {
        for (const edit_change &change : step->changes)
            apply_change(change, back);
        now = back ? now - 1 : now + 1;
        ASSERT_EQ(dump(source.get()), states[now].text);
        place = {any_item(), &item_t::langs, "german"};
        if (const auto *text = std::get_if<text_change>(&step->changes[0])) {
            place = text->place;
            show();
            typed = (back ? text->before : text->after).typed;
            letters.clear();
            for (const std::string &line : (back ? text->before : text->after).lines)
                letters += line;
            return;
        }
        show();
    }
    void step_back()
    {
        finish();
        if (const edit_step *step = history.undo())
            follow(step, true);
    }
    void step_forth()
    {
        finish();
        const edit_step *step = history.redo();
        ASSERT_EQ(step != nullptr, now + 1 < states.size());
        if (step != nullptr)
            follow(step, false);
    }

    source_guard source;
    text_place place{nullptr, nullptr, ""};
    std::string letters;
    bool typed = false;
    std::vector<state> states;
    std::size_t now = 0;
    unsigned versions = 0;
    unsigned saved = 0;
};

} // namespace

TEST(History, AnySequenceGoesThroughTheStatesOfAPlainRecord)
{
    for (unsigned seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE(seed);
        Hand hand(seed, edit_history::default_limit);
        for (int number = 0; number < 60; ++number)
            ASSERT_NO_FATAL_FAILURE(hand.act());
        ASSERT_NO_FATAL_FAILURE(hand.undo_all());
        ASSERT_EQ(hand.undone_to(), 0U);
    }
}

TEST(History, TheOldestStepsGoFirstWhenThereIsNoMoreRoom)
{
    constexpr std::size_t limit = 3000;
    std::size_t cut_short = 0;
    for (unsigned seed = 0; seed < 100; ++seed) {
        SCOPED_TRACE(seed);
        Hand hand(seed, limit);
        for (int number = 0; number < 60; ++number) {
            ASSERT_NO_FATAL_FAILURE(hand.act());
            if (!hand.history.is_open()) {
                ASSERT_LE(hand.history.size(), limit);
            }
        }
        ASSERT_NO_FATAL_FAILURE(hand.undo_all());
        cut_short += hand.undone_to() != 0 ? 1 : 0;
    }
    EXPECT_GT(cut_short, 30U);
}

TEST(History, TypingIsUndoneInWordsAndPiecesAlone)
{
    constexpr keystroke a{0, 0, 1, false, 0};
    constexpr struct {
        const char *what;
        keystroke first;
        keystroke second;
        bool joins;
    } rows[] = {
        {"the next letter", a, {1, 0, 1, false, 0}, true},
        {"the blank behind a word", a, {1, 0, 1, true, 0}, true},
        {"the first letter of the next word", {0, 0, 1, true, 0}, {1, 0, 1, false, 0}, false},
        {"a letter elsewhere", a, {7, 0, 1, false, 0}, false},
        {"a pasted piece", a, {1, 0, 5, false, 0}, false},
        {"a letter behind a pasted piece", {0, 0, 5, false, 0}, {5, 0, 1, false, 0}, false},
        {"a letter taken out again", a, {0, 1, 0, false, 0}, false},
        {"backspace after backspace", {5, 1, 0, false, 0}, {4, 1, 0, false, 0}, true},
        {"delete after delete", {5, 1, 0, false, 0}, {5, 1, 0, false, 0}, true},
        {"a cut piece after backspace", {5, 1, 0, false, 0}, {2, 3, 0, false, 0}, false},
        {"what replaces a selection", {2, 4, 0, false, 7}, {2, 0, 1, false, 7}, true},
        {"a second paste", {2, 0, 4, false, 7}, {6, 0, 4, false, 8}, false},
        {"a program's other text", {0, 9, 0, false, 0}, {0, 0, 5, false, 0}, true},
    };
    const item_guard item(alloc_item());
    const text_place place{item.get(), &item_t::langs, "german"};
    for (const auto &row : rows) {
        edit_history history;
        history.begin(place, {}, row.first);
        EXPECT_EQ(history.joins(place, row.second), row.joins) << row.what;
        EXPECT_FALSE(history.joins({item.get(), &item_t::comments, "german"}, row.second));
        history.mark_saved();
        EXPECT_FALSE(history.joins(place, row.second)) << row.what << ", after saving";
    }
}
