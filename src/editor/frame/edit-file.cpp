#include "editor/frame/edit-file.h"

#include "app/global.h"
#include "config/ini.h"
#include "editor/frame/dir_file_sel.h"
#include "editor/frame/edit-ask.h"
#include "editor/frame/edit-export.h"
#include "editor/frame/edit-undo.h"
#include "editor/frame/read-report.h"
#include "editor/frame/recent.h"
#include "editor/frame/recovery.h"
#include "editor/frame/source-watch.h"
#include "editor/state/edit-history.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/ui-text.h"
#include "source/lang-read.h"
#include "source/lang-write.h"
#include "source/misc.h"
#include "support/string-copy.h"
#include "support/string.h"
#include "support/time.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

constexpr std::size_t path_size = 2048;

void show_value(GtkWidget *label, const char *text)
{
    if (label != nullptr)
        gtk_label_set_text(GTK_LABEL(label), zel::utf8_shown(text).c_str());
}

void show_source_values()
{
    const char *unknown = zel::ui_text("common", "Unknown");
    const std::string date = zel::date_text("%Y-%m-%d %H:%M:%S", def_group->mtime);
    show_value(lang_global.file_label, def_file);
    show_value(lang_global.create_date_label,
               def_group->create_date == nullptr ? unknown : def_group->create_date);
    show_value(lang_global.mtime_label, def_group->mtime == 0 ? unknown : date.c_str());
}

void clear_source_values()
{
    for (GtkWidget *label :
         {lang_global.file_label, lang_global.create_date_label, lang_global.mtime_label})
        show_value(label, nullptr);
}

// Destroys the table first, since it shows the source that is released next.
void release_source()
{
    if (editWin != nullptr)
        gtk_widget_destroy(editWin);
    editWin = nullptr;
    if (def_group != nullptr)
        lang_free_group(&def_group);
    def_group = nullptr;
    // Its steps point to items that are destroyed now.
    zel::source_history().clear();
}

void close_source()
{
    // The recovery file is written from the source, so its end comes first.
    zel::recovery_end();
    release_source();
    zel::watch_end();
}

// Makes the file the current one, with the folder that it is in.
void set_file(char *owned_path)
{
    zel::replace_string(def_file, owned_path);
    char *dir = nullptr;
    char *name = nullptr;
    zel_split_path_file(def_file, &dir, &name);
    zel::replace_string(lang_global.start_dir, dir);
    std::free(name);
}

// Takes the edits that are still in the text panel into the source.
void take_pending_edits()
{
    if (editWin == nullptr)
        return;
    if (edit_ctrl.update != nullptr)
        edit_ctrl.update(editWin);
    if (edit_ctrl.check_changed != nullptr)
        edit_ctrl.check_changed(editWin);
}

void clear_output_langs()
{
    zel::replace_string(lang_global.output_lang_1, nullptr);
    zel::replace_string(lang_global.output_lang_2, nullptr);
}

bool write_source(const char *path)
{
    const zel::source_to_write whole;
    return lang_write_file(path, def_group) == 0;
}

// Writes the source as long as the file is the one that the user has agreed to write over.
zel::write_answer write_if_allowed(const char *path)
{
    const zel::source_to_write whole;
    zel::write_how how;
    how.now = std::time(nullptr);
    how.may_replace = [path] { return zel::watch_allows(path); };
    return zel::write_source(path, def_group, how);
}

// Whether the file has hard links: its other names keep the text that is there now.
bool has_other_names(const char *path)
{
    struct stat status {};
    return stat(path, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink > 1;
}

std::string file_and_text(const char *path, const char *text)
{
    return zel::utf8_shown(path) + ": " + zel::ui_text("status", text);
}

void save_under_name(GtkWidget *widget);

// Writes the source and says how it went. Only a success leaves no changes.
void write_and_tell(GtkWidget *widget, const char *path)
{
    zel::write_answer written{zel::write_not_allowed, {}};
    bool keeps_names = false;
    // Another program may save between the question and the writing: then the question comes again.
    while (written.code == zel::write_not_allowed) {
        const zel::overwrite answer = zel::watch_ask(widget, path);
        if (answer == zel::overwrite::other_name)
            save_under_name(widget);
        else if (answer == zel::overwrite::no)
            zel::edit_status(zel::ui_text("status", "Nothing was saved"));
        if (answer != zel::overwrite::yes)
            return;
        // Asked before: afterwards the file is a new one with a single name.
        keeps_names = has_other_names(path);
        written = write_if_allowed(path);
    }
    if (written.code == 0) {
        if (keeps_names)
            zel::edit_status(
                file_and_text(path, "the file has other names, which keep the old text").c_str());
        zel::edit_set_modified(false);
        zel::recovery_drop();
        zel::watch_saved(path, written.file);
        // Before the message, which waits for the user.
        const bool exported = zel::export_after_save();
        // The text is also an item of the editor's own texts, whose translation is found by this
        // spelling.
        zel::message(mainWin, "status", "Write file successfull");
        if (!exported)
            zel::status_and_message(widget, "status", "status", "ERROR: writing language files");
    } else {
        if (!written.why.empty())
            zel::edit_status((zel::utf8_shown(path) + ": " + written.why).c_str());
        zel::message(widget, "status", "Error write file");
    }
}

// The chosen path with the ending of a source, which is added where it is missing; empty when that
// is longer than a path may be.
std::string with_ending(const char *chosen)
{
    constexpr const char *ending = "lang-src";
    const bool has_it = g_str_has_suffix(chosen, ".lang-src");
    std::string path = chosen;
    // Works in place: the text needs room for the dot, the ending and the NUL.
    path.resize(path.size() + (has_it ? 0 : std::strlen(ending) + 1) + 1);
    zel_gen_file_name_with_ext(path.data(), ending);
    path.resize(std::strlen(path.c_str()));
    return path.size() < path_size ? path : std::string();
}

void save_under_name(GtkWidget *widget)
{
    const zel::string_guard chosen(zel::select_to_write(
        widget, zel::ui_text("common", "Save as (*.lang-src)"), def_file, "lang-src"));
    if (!chosen)
        return;
    const std::string path = with_ending(chosen.get());
    if (path.empty()) {
        zel::message(widget, "status", "Error write file");
        return;
    }
    edit_refresh();
    write_and_tell(widget, path.c_str());
}

// Writes the first output language together with another one into a file of their own.
bool write_pair(const char *folder, const char *date, const char *other)
{
    zel::replace_string(lang_global.output_lang_2, zel_strdup(other));
    std::array<char, path_size> path{};
    const int length = std::snprintf(path.data(), path.size(), "%s/%s-%s-%s-out.lang-src", folder,
                                     date, lang_global.output_lang_1, lang_global.output_lang_2);
    return length > 0 && static_cast<std::size_t>(length) < path.size() &&
           write_source(path.data());
}

void save_pairs(GtkWidget *widget)
{
    const zel::string_guard folder(dir_sel(
        widget, zel::ui_text("define", "Browse destination directory"), lang_global.start_dir));
    if (!folder)
        return;
    edit_refresh();
    // The chooser has run the main loop since the languages were selected: takes them from the
    // source again, which the refresh above does not do.
    zel::edit_select_output_langs(def_group);
    if (lang_global.output_lang_1 == nullptr)
        return;
    const std::string date = zel::date_text("%Y-%m-%d-%H-%M", std::time(nullptr));
    int failures = 0;
    for (const lang_t *lang : zel::each<lang_t>(def_group->langs)) {
        if (lang->name != nullptr && std::strcmp(lang->name, lang_global.output_lang_1) != 0)
            failures += write_pair(folder.get(), date.c_str(), lang->name) ? 0 : 1;
    }
    zel::message(widget, "status",
                 failures != 0 ? "Error write file/s" : "Write file/s successfull");
}

void save_selected(GtkWidget *widget)
{
    clear_output_langs();
    zel::edit_select_output_langs(def_group);
    if (lang_global.output_lang_1 == nullptr)
        zel::status_and_message(widget, "common", "status", "Please select first language");
    else
        save_pairs(widget);
}

std::vector<item_t *> changed_items(const LangSource *source)
{
    std::vector<item_t *> changed;
    for (const edit_t *group : zel::each<edit_t>(source->groups))
        for (item_t *item : zel::each<item_t>(group->items))
            if (item->changed != 0)
                changed.push_back(item);
    return changed;
}

// True when the changes are saved, or the user gives them up: then the recovery file is removed.
bool may_go(GtkWidget *widget)
{
    if (lang_global.modified != 0 && !zel::ask_discard(widget))
        return false;
    zel::recovery_drop();
    return true;
}

} // namespace

void cb_open(GtkWidget *widget, gpointer)
{
    if (!may_go(widget))
        return;
    zel::edit_status(nullptr);
    char *chosen = zel::select_source(widget, zel::ui_text("common", "open file"));
    if (chosen == nullptr) {
        // The user cancelled after Discard: the edits are still in memory.
        zel::recovery_write_soon();
        return;
    }
    set_file(chosen);
    zel::recovery_drop(); // it may have been written again while the chooser was open
    close_source();
    if (!zel::edit_read_source()) {
        // The source from before is closed already: the window must not show its values any longer.
        clear_source_values();
        return;
    }
    zel::edit_show_source();
    show_source_values();
    // Changes of the source before that were discarded have left the mark.
    zel::edit_set_modified(false);
    // Last, since it may ask a question above the window, which is complete by then.
    zel::edit_guard_source(widget);
}

void cb_save(GtkWidget *widget, gpointer)
{
    zel::edit_status(nullptr);
    if (def_group == nullptr) {
        zel::nothing_to_do(widget);
        return;
    }
    take_pending_edits();
    write_and_tell(widget, def_file);
}

void cb_save_as(GtkWidget *widget, gpointer)
{
    zel::edit_status(nullptr);
    if (def_group == nullptr) {
        zel::nothing_to_do(widget);
        return;
    }
    take_pending_edits();
    if (lang_global.save_selected_only != 0)
        save_selected(widget);
    else
        save_under_name(widget);
    // The output languages were chosen for this save: the next one chooses again.
    clear_output_langs();
}

void cb_save_selected_lang(GtkWidget *widget, gpointer data)
{
    const zel::flag_guard selected_only(lang_global.save_selected_only);
    cb_save_as(widget, data);
}

void cb_exit(GtkWidget *widget, gpointer)
{
    if (!may_go(widget))
        return;
    prg_exit();
    gtk_main_quit();
}

gboolean delete_event(GtkWidget *widget, GdkEvent *, gpointer)
{
    if (!may_go(widget))
        return TRUE;
    prg_exit();
    gtk_main_quit();
    return FALSE;
}

void prg_exit()
{
    if (ini != nullptr) {
        ini_write(ini);
        ini_free(ini);
        ini = nullptr;
    }
    close_source();
}

namespace zel {

bool edit_read_source()
{
    note_source_directory(def_file);
    // Before the reading, so that a change meanwhile is noticed.
    watch_note(def_file);
    read_report report(def_file);
    const auto listener = [&report](const read_message &message) {
        print_read_message(message);
        report.hear(message);
    };
    read_how how{lang_global.start_time, listener};
    how.to_write = true; // the next save would drop what stands behind a NUL byte
    read_answer answer = read_source(def_file, how);
    if (answer.result == read_result::stopped)
        say_stopped();
    edit_status(report.text(answer).c_str());
    if (answer.source)
        remember_source(def_file);
    else
        watch_end();
    def_group = answer.source.release();
    return def_group != nullptr;
}

void edit_show_source()
{
    if (edit_ctrl.new_table == nullptr)
        return;
    editWin = edit_ctrl.new_table();
    gtk_widget_set_name(editWin, "item-table");
    g_signal_connect(editWin, "destroy", G_CALLBACK(gtk_widget_destroyed), &editWin);
    // Before the table is filled: from then on typing is recorded.
    undo_watch(editWin);
    if (edit_ctrl.set != nullptr)
        edit_ctrl.set(editWin, def_group);
    gtk_box_pack_start(GTK_BOX(editBox), editWin, TRUE, TRUE, 0);
    gtk_widget_show(editWin); // not show_all, which would show what the table hides inside
}

void edit_guard_source(GtkWidget *parent)
{
    watch_begin(parent);
    if (source_guard recovered = recovery_offer(parent)) {
        // The source that was read gives way to the recovered one; its lock and its path stay.
        release_source();
        def_group = recovered.release();
        const std::vector<item_t *> changed = changed_items(def_group);
        edit_show_source(); // takes the marks of earlier sessions away, and these are of this one
        for (item_t *item : changed)
            item->changed = 1;
        edit_set_modified(true);
        edit_status(ui_text("recovery", "The changes are here again; Save keeps them."));
    }
    recovery_begin();
}

} // namespace zel
