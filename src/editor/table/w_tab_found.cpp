#include "editor/table/w_tab_found.h"

#include "editor/toolkit/ui-text.h"

#include <string>

namespace zel {

GtkWidget *tab_found_label_new()
{
    GtkWidget *label = gtk_label_new(nullptr);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    return label;
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
