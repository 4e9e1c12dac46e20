// The item table at size, in the process and with a real window: a step counts until the window is
// painted. Needs a display (tools/with-display); without one nothing is measured.

#include "app/global.h"
#include "assist/neighbours.h"
#include "editor/frame/edit-undo.h"
#include "editor/frame/recovery.h"
#include "editor/panel/w_text.h"
#include "editor/state/edit-history.h"
#include "editor/state/edit-state.h"
#include "editor/table/w_tab_edit.h"
#include "editor/table/w_tab_hits.h"
#include "editor/table/w_tab_model.h"
#include "editor/table/w_tab_work.h"
#include "recovery/recovery-file.h"
#include "source/misc.h"
#include "source/model.h"

#include <benchmark/benchmark.h>
#include <gdk/gdkkeysyms.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <glib/gstdio.h>
#include <string>

namespace {

constexpr int items_per_group = 100;
constexpr const char *words[] = {"open", "file",  "window", "print",  "page",
                                 "size", "image", "layer",  "colour", "select"};

lang_t *make_lang(const char *name)
{
    lang_t *lang = alloc_lang();
    lang->name = g_strdup(name);
    lang->file = g_strdup_printf("%s.lang", name);
    lang->edit = 1;
    return lang;
}

lang_entry_t *make_entry(const char *lang, const std::string &text)
{
    lang_entry_t *entry = alloc_lang_entry(lang);
    entry->texts = g_list_append(nullptr, g_strdup(text.c_str()));
    return entry;
}

item_t *make_item(LangSource *source, int number)
{
    item_t *item = alloc_item();
    std::string text;
    for (int word = 0; word < 4; ++word)
        text += std::string(word == 0 ? "" : " ") + words[(number * 7 + word * number) % 10];
    item->name = g_strdup_printf("item %d %s", number, text.c_str());
    item->description = g_strdup("none");
    item->used = 1;
    item->ready = number % 3 == 0;
    item->source = source;
    item->ctime = 1700000000 + (static_cast<std::int64_t>(number) * 7919) % 1000003;
    item->langs = g_list_append(item->langs, make_entry("english", text));
    if (number % 10 != 0)
        item->langs = g_list_append(item->langs, make_entry("german", "wort " + text));
    return item;
}

LangSource *make_source(int items)
{
    LangSource *source = lang_alloc_group();
    source->langs = g_list_append(source->langs, make_lang("english"));
    source->langs = g_list_append(source->langs, make_lang("german"));
    edit_t *group = nullptr;
    zel::list_tail groups(source->groups);
    for (int first = 0; first < items; first += items_per_group) {
        group = lang_alloc_edit();
        group->name = g_strdup_printf("group %d", first / items_per_group);
        groups.append(group);
        zel::list_tail tail(group->items);
        for (int number = first; number < first + items_per_group && number < items; ++number)
            tail.append(make_item(source, number));
    }
    return source;
}

void paint()
{
    while (gtk_events_pending())
        gtk_main_iteration();
    gdk_window_process_all_updates();
    gdk_flush();
}

// A window with the table of a source of that many items; mode 1, which shows all columns.
class window {
public:
    explicit window(int items)
    {
        lang_global = {};
        lang_global.editor_mode = 1;
        source = make_source(items);
        mainWin = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        accel_group = gtk_accel_group_new();
        gtk_window_add_accel_group(GTK_WINDOW(mainWin), accel_group);
        gtk_window_set_default_size(GTK_WINDOW(mainWin), 1200, 800);
        gtk_widget_show(mainWin);
        paint();
    }
    ~window()
    {
        gtk_widget_destroy(mainWin);
        mainWin = nullptr;
        g_clear_object(&accel_group);
        paint();
        zel::edit_select_output_langs(nullptr);
        lang_free_group(&source);
    }
    window(const window &) = delete;
    window &operator=(const window &) = delete;

    ZelTabEdit *open()
    {
        GtkWidget *table = zel_tab_edit_new();
        zel_tab_edit_set(table, source);
        gtk_container_add(GTK_CONTAINER(mainWin), table);
        gtk_widget_show(table);
        paint();
        return ZEL_TAB_EDIT(table);
    }

    LangSource *source = nullptr;
};

void open_table(benchmark::State &state)
{
    window main(static_cast<int>(state.range(0)));
    while (state.KeepRunning()) {
        ZelTabEdit *table = main.open();
        state.PauseTiming();
        gtk_widget_destroy(GTK_WIDGET(table));
        paint();
        state.ResumeTiming();
    }
}

// To the hits of a text and, as a step of its own, back to all rows.
void search(benchmark::State &state, const char *text)
{
    window main(static_cast<int>(state.range(0)));
    ZelTabEdit *table = main.open();
    bool back = false;
    while (state.KeepRunning()) {
        gtk_entry_set_text(GTK_ENTRY(table->search_entry), back ? "" : text);
        back = !back;
        paint();
    }
}

// A key after which the list shows what was found for the word at the caret, or for words to
// replace.
void found_words(benchmark::State &state, guint keyval, GdkModifierType modifiers)
{
    window main(static_cast<int>(state.range(0)));
    ZelTabEdit *table = main.open();
    gtk_entry_set_text(GTK_ENTRY(table->search_entry), modifiers == 0 ? "" : "layer");
    zel_tab_edit_next(GTK_WIDGET(table));
    paint();
    // At the start of the second item's text, "layer", which a fifth of the items have.
    GtkTextIter start;
    GtkTextBuffer *buffer =
        gtk_text_view_get_buffer(GTK_TEXT_VIEW(ZEL_TEXT(table->text_widget)->trans1_view));
    gtk_text_buffer_get_start_iter(buffer, &start);
    gtk_text_buffer_place_cursor(buffer, &start);
    while (state.KeepRunning()) {
        gtk_accel_groups_activate(G_OBJECT(mainWin), keyval, modifiers);
        paint();
        state.PauseTiming();
        if (!table->hits->is_shown())
            state.SkipWithError("nothing is shown");
        gtk_accel_groups_activate(G_OBJECT(mainWin), GDK_KEY_Escape, GdkModifierType{});
        paint();
        state.ResumeTiming();
    }
}

void untranslated(benchmark::State &state)
{
    window main(static_cast<int>(state.range(0)));
    ZelTabEdit *table = main.open();
    while (state.KeepRunning()) {
        lang_global.only_untranslated = 1 - lang_global.only_untranslated;
        zel_tab_edit_empty(GTK_WIDGET(table));
        paint();
    }
}

void sort(benchmark::State &state, int id)
{
    window main(static_cast<int>(state.range(0)));
    ZelTabEdit *table = main.open();
    bool sorted = false;
    while (state.KeepRunning()) {
        gtk_tree_sortable_set_sort_column_id(GTK_TREE_SORTABLE(table->sort_model),
                                             sorted ? static_cast<int>(COL_POS) : id,
                                             GTK_SORT_ASCENDING);
        sorted = !sorted;
        paint();
    }
}

// The sums are shown once every item has been judged.
void wait_until_judged(GtkWidget *table)
{
    GtkLabel *sums = GTK_LABEL(ZEL_TAB_EDIT(table)->work->progress_label());
    while (*gtk_label_get_text(sums) == '\0')
        gtk_main_iteration();
    paint();
}

// The index of the texts begins after the rows are judged and tells nobody when it is whole.
void wait_until_indexed(GtkWidget *table, int seconds = 3)
{
    wait_until_judged(table);
    const gint64 built = g_get_monotonic_time() + seconds * G_USEC_PER_SEC;
    while (g_get_monotonic_time() < built)
        gtk_main_iteration_do(FALSE);
}

// Once the rows are judged and indexed, which would be measured with the steps.
void next_row(benchmark::State &state)
{
    window main(static_cast<int>(state.range(0)));
    ZelTabEdit *table = main.open();
    wait_until_indexed(GTK_WIDGET(table));
    while (state.KeepRunning()) {
        GtkTreePath *before = gtk_tree_path_copy(table->selected_path);
        zel_tab_edit_next(GTK_WIDGET(table));
        if (gtk_tree_path_compare(before, table->selected_path) == 0)
            zel_tab_edit_first(GTK_WIDGET(table));
        gtk_tree_path_free(before);
        paint();
    }
}

// Steps back and forth, each in another item: the first one and the last.
void undo(benchmark::State &state)
{
    window main(static_cast<int>(state.range(0)));
    ZelTabEdit *table = main.open();
    editWin = GTK_WIDGET(table);
    def_group = main.source;
    zel::undo_watch(editWin);
    wait_until_indexed(editWin);
    Zeltext *text = ZEL_TEXT(table->text_widget);
    for (auto *move : {zel_tab_edit_first, zel_tab_edit_last}) {
        move(editWin);
        gtk_text_buffer_insert_at_cursor(gtk_text_view_get_buffer(GTK_TEXT_VIEW(text->trans2_view)),
                                         "typed", -1);
    }
    int step = 0;
    while (state.KeepRunning()) {
        step++ % 4 < 2 ? zel::edit_undo() : zel::edit_redo();
        paint();
    }
    zel::source_history().clear();
    editWin = nullptr;
    def_group = nullptr;
}

// A letter of a translation with conversions, typed and judged; drawing it is the toolkit's.
void keystroke_checked(benchmark::State &state)
{
    window main(static_cast<int>(state.range(0)));
    auto *group = static_cast<edit_t *>(main.source->groups->data);
    auto *item = static_cast<item_t *>(group->items->next->data);
    for (lang_entry_t *entry : zel::each<lang_entry_t>(item->langs)) {
        free_lang_entry_text(entry->texts);
        entry->texts = g_list_append(nullptr, g_strdup("<b>%d</b> of %d files (%s): %NAME%."));
    }
    ZelTabEdit *table = main.open();
    wait_until_judged(GTK_WIDGET(table));
    zel_tab_edit_next(GTK_WIDGET(table));
    GtkTextBuffer *buffer =
        gtk_text_view_get_buffer(GTK_TEXT_VIEW(ZEL_TEXT(table->text_widget)->trans2_view));
    int letters = 0;
    while (state.KeepRunning()) {
        gtk_text_buffer_insert_at_cursor(buffer, ++letters % 2 != 0 ? "%d" : "x", -1);
        state.PauseTiming();
        if (letters == 100) {
            gtk_text_buffer_set_text(buffer, "<b>%d</b> of %d", -1);
            letters = 0;
        }
        paint();
        state.ResumeTiming();
    }
}

// From the first item over all the others, which are done, to the last.
void next_with_work(benchmark::State &state)
{
    window main(static_cast<int>(state.range(0)));
    for (edit_t *group : zel::each<edit_t>(main.source->groups))
        for (item_t *item : zel::each<item_t>(group->items)) {
            item->ready = 1;
            if (misc_select_lang_entry(item, "german") == nullptr)
                item->langs = g_list_append(item->langs, make_entry("german", "wort"));
        }
    auto *last = static_cast<edit_t *>(g_list_last(main.source->groups)->data);
    static_cast<item_t *>(g_list_last(last->items)->data)->ready = 0;
    GtkWidget *table = GTK_WIDGET(main.open());
    wait_until_indexed(table);
    while (state.KeepRunning()) {
        gtk_accel_groups_activate(G_OBJECT(mainWin), GDK_KEY_Page_Down, GDK_MOD1_MASK);
        paint();
        state.PauseTiming();
        zel_tab_edit_first(table);
        paint();
        state.ResumeTiming();
    }
}

// The source's own file, and beside it another source of as many items.
class neighbourhood {
public:
    explicit neighbourhood(int items) : folder_(g_dir_make_tmp("lang-bench-XXXXXX", nullptr))
    {
        def_file = g_build_filename(folder_, "own.lang-src", nullptr);
        other_ = g_build_filename(folder_, "other.lang-src", nullptr);
        g_file_set_contents(def_file, "", 0, nullptr);
        std::string text = "GROUP \"other\" {\n";
        for (int number = 0; number < items; ++number) {
            const std::string count = std::to_string(number);
            text += "ITEM \"" + count + "\" { USED YES LANG \"english\" { \"";
            for (int word = 0; word < 4; ++word)
                text.append(words[(number * 3 + word * number) % 10]).append(" ");
            text.append(count).append("\" } LANG \"german\" { \"Wort ");
            text.append(count).append("\" } }\n");
        }
        text += "}\n";
        g_file_set_contents(other_, text.c_str(), static_cast<gssize>(text.size()), nullptr);
    }
    ~neighbourhood()
    {
        for (char *file : {def_file, other_}) {
            g_unlink(file);
            g_free(file);
        }
        g_rmdir(folder_);
        g_free(folder_);
        def_file = nullptr;
    }
    neighbourhood(const neighbourhood &) = delete;
    neighbourhood &operator=(const neighbourhood &) = delete;

private:
    gchar *folder_;
    gchar *other_;
};

// Another item, with the search for what is most like its text; the index is built.
void suggestion(benchmark::State &state, int seconds_to_build)
{
    window main(static_cast<int>(state.range(0)));
    GtkWidget *table = GTK_WIDGET(main.open());
    wait_until_indexed(table, seconds_to_build);
    auto *group = static_cast<edit_t *>(main.source->groups->data);
    auto *item = static_cast<item_t *>(group->items->next->data);
    lang_entry_t *english = misc_select_lang_entry(item, "english");
    free_lang_entry_text(english->texts);
    english->texts = g_list_append(nullptr, g_strdup("select the size of the page image to print"));
    while (state.KeepRunning()) {
        zel_tab_edit_next(table);
        state.PauseTiming();
        zel_tab_edit_first(table);
        paint();
        state.ResumeTiming();
    }
}

void suggestion_of_two(benchmark::State &state)
{
    const neighbourhood other(static_cast<int>(state.range(0)));
    suggestion(state, 8);
}

// The longest that the window is held up while a neighbour of that many items is read.
void neighbour_turn(benchmark::State &state)
{
    using clock = std::chrono::steady_clock;
    const neighbourhood other(static_cast<int>(state.range(0)));
    while (state.KeepRunning()) {
        zel::assist::neighbour_texts texts;
        texts.begin({def_file, "english", {"german", ""}});
        std::chrono::duration<double> most{};
        for (bool more = true; more;) {
            const auto start = clock::now();
            more = texts.step(start + std::chrono::milliseconds(4));
            most = std::max<std::chrono::duration<double>>(most, clock::now() - start);
        }
        state.SetIterationTime(most.count());
    }
}

// A text of that many letters without a break: the item before it, then it.
void unbroken(benchmark::State &state)
{
    window main(2);
    auto *group = static_cast<edit_t *>(main.source->groups->data);
    auto *item = static_cast<item_t *>(group->items->next->data);
    std::string text;
    for (int letter = 0; letter < state.range(0); ++letter)
        text += static_cast<char>('a' + letter * 7 % 26);
    lang_entry_t *german = misc_select_lang_entry(item, "german");
    free_lang_entry_text(german->texts);
    german->texts = g_list_append(nullptr, g_strdup(text.c_str()));
    GtkWidget *table = GTK_WIDGET(main.open());
    while (state.KeepRunning()) {
        zel_tab_edit_next(table);
        paint();
        state.PauseTiming();
        zel_tab_edit_first(table);
        paint();
        state.ResumeTiming();
    }
}

// The recovery file of the whole source: what the loop spends on it, and the longest it is held up
// by one piece. The syncing is a thread's.
void recovery(benchmark::State &state, bool longest)
{
    window main(static_cast<int>(state.range(0)));
    main.open();
    gchar *folder = g_dir_make_tmp("lang-bench-XXXXXX", nullptr);
    const std::string path = std::string(folder) + "/notes.lang-src";
    using clock = std::chrono::steady_clock;
    while (state.KeepRunning()) {
        zel::recovery_writer writer;
        std::chrono::duration<double> all{};
        std::chrono::duration<double> most{};
        bool more = true;
        for (auto start = clock::now(); more; start = clock::now()) {
            if (!writer.is_writing())
                writer.begin(path, "/home/me/notes.lang-src", {}, 0, main.source, nullptr);
            more = writer.step(zel::recovery_items_at_a_time);
            const std::chrono::duration<double> taken = clock::now() - start;
            all += taken;
            most = std::max(most, taken);
        }
        writer.finish();
        state.SetIterationTime(longest ? most.count() : all.count());
    }
    g_unlink(path.c_str());
    g_rmdir(folder);
    g_free(folder);
}

struct job {
    const char *name;
    void (*run)(benchmark::State &state);
};

constexpr job jobs[] = {
    {"open_table/ours", open_table},
    {"next_row/ours", next_row},
    {"search_some_hits/ours", [](benchmark::State &state) { search(state, "layer"); }},
    {"search_all_hit/ours", [](benchmark::State &state) { search(state, "e"); }},
    {"search_no_hit/ours", [](benchmark::State &state) { search(state, "zzz"); }},
    {"search_letter/ours", [](benchmark::State &state) { search(state, "x"); }},
    {"search_letter_second_try/ours", [](benchmark::State &state) { search(state, "\xc3\xa4"); }},
    {"filter_untranslated/ours", untranslated},
    {"how_translated/ours",
     [](benchmark::State &state) { found_words(state, GDK_KEY_F3, GdkModifierType{}); }},
    {"replace_preview/ours",
     [](benchmark::State &state) { found_words(state, GDK_KEY_h, GDK_CONTROL_MASK); }},
    {"undo/ours", undo},
    {"keystroke_checked/ours", keystroke_checked},
    {"next_with_work/ours", next_with_work},
    {"suggestion/ours", [](benchmark::State &state) { suggestion(state, 3); }},
    {"suggestion_of_two/ours", suggestion_of_two},
    {"sort_by_date/ours", [](benchmark::State &state) { sort(state, COL_TIME); }},
    {"sort_by_ready/ours", [](benchmark::State &state) { sort(state, COL_READY); }},
};

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (!gtk_init_check(&argc, &argv)) {
        std::fputs("editor_bench: no display; run it under tools/with-display\n", stderr);
        return 1;
    }
    for (const job &job : jobs) {
        for (const int items : {300, 5000, 30000})
            benchmark::RegisterBenchmark(job.name, job.run)
                ->Arg(items)
                ->Unit(benchmark::kMillisecond);
    }
    for (const bool longest : {false, true})
        benchmark::RegisterBenchmark(
            longest ? "recovery_longest_piece/ours" : "recovery/ours",
            [longest](benchmark::State &state) { recovery(state, longest); })
            ->Arg(30000)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("neighbour_longest_turn/ours", neighbour_turn)
        ->Arg(30000)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
    for (const int letters : {10000, 100000})
        benchmark::RegisterBenchmark("show_unbroken_letters/ours", unbroken)
            ->Arg(letters)
            ->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
