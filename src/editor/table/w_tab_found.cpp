#include "editor/table/w_tab_found.h"

#include "editor/toolkit/theme.h"
#include "editor/toolkit/ui-text.h"

#include <string>

namespace zel {

namespace {

constexpr int between_labels = 6;

} // namespace

tab_info tab_info_new(GtkWidget *progress)
{
    tab_info info{gtk_frame_new(nullptr), gtk_label_new(nullptr), gtk_label_new(nullptr)};
    make_bare(info.frame);
    GtkWidget *row = gtk_hbox_new(FALSE, between_labels);
    gtk_container_add(GTK_CONTAINER(info.frame), row);
    for (GtkWidget *label : {info.count, info.found}) {
        gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
        gtk_box_pack_start(GTK_BOX(row), label, FALSE, FALSE, 0);
    }
    gtk_box_pack_start(GTK_BOX(row), progress, TRUE, TRUE, 0);
    return info;
}

void tab_show_found(GtkWidget *label, const tab_found &found)
{
    std::string text;
    if (!found.searched && !found.untranslated && !found.other_filter)
        text.clear();
    else if (found.shown != 0)
        text = std::to_string(found.shown) + " " + ui_text("tab-edit", "of") + " " +
               std::to_string(found.all);
    // An empty list is good news when only the untranslated are shown, and needs another word than
    // a search without hits.
    else if (found.untranslated && !found.searched && !found.other_filter && found.all != 0)
        text = ui_text("tab-edit", "all translated");
    else
        text = ui_text("tab-edit", "nothing found");
    gtk_label_set_text(GTK_LABEL(label), text.c_str());
}

} // namespace zel
