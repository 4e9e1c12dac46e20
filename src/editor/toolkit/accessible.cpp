#include "editor/toolkit/accessible.h"

namespace zel {

void set_accessible_name(GtkWidget *widget, const char *name)
{
    atk_object_set_name(gtk_widget_get_accessible(widget), name);
}

void set_accessible_description(GtkWidget *widget, const char *description)
{
    AtkObject *accessible = gtk_widget_get_accessible(widget);
    // An empty text takes out the description that was given before.
    const char *text = description == nullptr ? "" : description;
    // Whoever reads it aloud must not hear it again at every key.
    if (g_strcmp0(atk_object_get_description(accessible), text) != 0)
        atk_object_set_description(accessible, text);
}

} // namespace zel
