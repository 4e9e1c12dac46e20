#include "editor/frame/edit-export.h"

#include "app/global.h"
#include "compiler/build-time.h"
#include "compiler/split.h"
#include "config/ini.h"
#include "editor/frame/dir_file_sel.h"
#include "editor/frame/edit-ask.h"
#include "editor/panel/edit-record.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/lang-box.h"
#include "editor/toolkit/ui-text.h"
#include "langlib/lang.h"
#include "source/lang-import.h"
#include "support/string-copy.h"
#include "support/string.h"

#include <cstdio>
#include <cstdlib>

namespace {

void release_handle(lang_handle_t *handle) { lang_free(handle, 1); }
using handle_guard = std::unique_ptr<lang_handle_t, zel::release<release_handle>>;

bool store_pending_edits()
{
    return editWin != nullptr && edit_ctrl.update != nullptr && edit_ctrl.update(editWin) != 0;
}

// The export folder of the settings, asked for when there is none; null when the user gives none.
const char *export_path(GtkWidget *widget)
{
    if (ini == nullptr)
        return nullptr;
    if (ini->dstDir == nullptr || ini->dstDir[0] == '\0')
        zel::replace_string(ini->dstDir,
                            dir_sel(widget, zel::ui_text("split", "Destination path"), nullptr));
    return ini->dstDir;
}

bool write_languages(const char *path)
{
    // What is written must not hold the entries that the panel has made.
    const zel::source_to_write whole;
    return split_file(def_group, path) == 0;
}

void tell_exported(GtkWidget *widget, const char *path)
{
    // The spelling is deliberate: it is an item of the editor's own texts.
    constexpr const char *success = "Writing language files successfull";
    zel::edit_status(zel::ui_text("common", success));
    const char *text = zel::ui_text("status", success);
    std::puts(text);
    std::printf("path: >%s<\n", path);
    const zel::string_guard whole(zel_strdup_printf(
        "Path: %s\n%s\n%s", path, text,
        zel::ui_text("status",
                     "Please select \"[your language]-edit\" in kvo-config or restart KVO")));
    lang_msg_box(widget, whole ? whole.get() : text);
}

zel::import_record look_before(const char *language)
{
    // Entries that the panel has made would count as changes of the import.
    const zel::source_to_write whole;
    return {def_group, language};
}

// A file that names no language gets its own name as the language.
bool name_language(lang_handle_t *handle, const char *path)
{
    if (handle->language != nullptr)
        return true;
    char *dir = nullptr;
    char *file = nullptr;
    zel_split_path_file(path, &dir, &file);
    std::free(dir);
    if (file == nullptr)
        return false;
    // Cut in place: the handle owns the file's name from here on and frees it.
    handle->language = zel_del_cmp_file_ext(file, "lang");
    return true;
}

void import_file(GtkWidget *widget, const char *path)
{
    const handle_guard handle(lang_import_new(path));
    if (!handle) {
        zel::status_and_message(widget, "common", "status", "ERROR: Load file");
        return;
    }
    if (!name_language(handle.get(), path)) {
        zel::status_and_message(widget, "common", "status", "ERROR: No language");
        return;
    }
    std::printf("cb_import: Group %p lang=%s\n", static_cast<void *>(def_group), handle->language);
    // The step that is being typed must be whole before the texts change under it.
    zel::record_begin();
    const zel::import_record before = look_before(handle->language);
    if (lang_import(def_group, handle.get()) != 0) {
        zel::status_and_message(widget, "common", "status", "ERROR: Import file");
        return;
    }
    zel::source_history().add(before.changes());
    zel::edit_set_modified(true);
    // The panel must not store its fields: they show the texts from before the import.
    const zel::flag_guard importing(lang_global.importing);
    edit_refresh();
}

} // namespace

void cb_export(GtkWidget *widget, gpointer)
{
    zel::edit_status(nullptr);
    if (def_group == nullptr && editWin == nullptr) {
        zel::nothing_to_do(widget);
        return;
    }
    // What is still in the fields is exported, too.
    if (!store_pending_edits()) {
        zel::status_and_message(widget, "common", "common", "ERROR: converting language files");
        return;
    }
    const char *path = export_path(widget);
    if (path == nullptr || path[0] == '\0') {
        zel::status_and_message(widget, "common", "common", "ERROR: No destination directory");
        return;
    }
    zel::edit_show_export_path(path);
    if (!write_languages(path))
        zel::status_and_message(widget, "status", "status", "ERROR: writing language files");
    else
        tell_exported(widget, path);
}

bool zel::export_after_save()
{
    const char *path = ini_export_on_save(ini);
    if (path == nullptr)
        return true;
    // Without position numbers, whatever the button says: the application shows these texts.
    const source_to_write whole;
    return compile_source(def_group, path, {false, build_time()}).code == 0;
}

void cb_import(GtkWidget *widget, gpointer)
{
    zel::edit_status(nullptr);
    if (def_group == nullptr) {
        zel::nothing_to_do(widget);
        return;
    }
    store_pending_edits();
    std::puts("------------------------- import");
    const zel::string_guard path(
        zel::select_to_read(widget, zel::ui_text("common", "read file"), def_file, "lang"));
    if (path)
        import_file(widget, path.get());
}
