#include "editor/state/edit-state.h"

#include "app/global.h"
#include "editor/state/edit-history.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/ui-text.h"
#include "source/misc.h"
#include "support/string-copy.h"

GtkWidget *mainWin;
GtkWidget *editBox;
GtkWidget *editWin;
GtkWidget *statusWin;
GtkWidget *changed_sign;
GtkAccelGroup *accel_group;
char *def_file;
LangSource *def_group;
GtkWidget *empty_menu;
GtkWidget *empty_tool;
int empty_lock;
edit_ctrl_t edit_ctrl;
edit_more_t edit_more;

void edit_refresh()
{
    // Called also while there is no table yet, and while no source is open.
    if (def_group != nullptr && editWin != nullptr && edit_ctrl.refresh != nullptr)
        edit_ctrl.refresh(editWin);
}

namespace zel {

void edit_reload()
{
    if (def_group != nullptr && editWin != nullptr && edit_more.reload != nullptr)
        edit_more.reload(editWin);
}

source_to_write::source_to_write()
{
    if (editWin != nullptr && edit_more.put_away != nullptr)
        edit_more.put_away(editWin);
}

source_to_write::~source_to_write()
{
    if (editWin != nullptr && edit_more.bring_back != nullptr)
        edit_more.bring_back(editWin);
}

void edit_status(const char *text)
{
    if (statusWin == nullptr)
        return;
    const std::string shown = utf8_shown(text);
    gtk_entry_set_text(GTK_ENTRY(statusWin), shown.c_str());
    // A screen reader says the name instead of the text of the entry: it must be the text.
    set_accessible_name(statusWin, shown.empty() ? "Status" : shown.c_str());
}

std::string edit_status_text()
{
    return statusWin == nullptr ? "" : gtk_entry_get_text(GTK_ENTRY(statusWin));
}

unsigned edit_changes;

void edit_set_modified(bool modified)
{
    edit_changes += modified ? 1 : 0;
    lang_global.modified = modified ? 1 : 0;
    // The history remembers which of its steps was saved: undo past it makes the source modified
    // again.
    if (!modified)
        source_history().mark_saved();
    if (changed_sign != nullptr)
        gtk_widget_set_visible(changed_sign, modified);
}

void edit_show_export_path(const char *path)
{
    if (lang_global.export_path_label != nullptr)
        gtk_label_set_text(GTK_LABEL(lang_global.export_path_label), utf8_shown(path).c_str());
}

void edit_select_output_langs(LangSource *source)
{
    const char *first = nullptr;
    const char *second = nullptr;
    misc_select_edit_lang(source, &first, &second);
    // Copies, since the names belong to a source that may be closed before they are used.
    replace_string(lang_global.output_lang_1, zel_strdup(first));
    replace_string(lang_global.output_lang_2, zel_strdup(second));
}

} // namespace zel
