#include "editor/toolkit/accessible.h"

namespace zel {

void set_accessible_name(GtkWidget *widget, const char *name)
{
    atk_object_set_name(gtk_widget_get_accessible(widget), name);
}

void set_accessible_description(GtkWidget *widget, const char *description)
{
    // An empty text takes out the description that was given before.
    atk_object_set_description(gtk_widget_get_accessible(widget),
                               description == nullptr ? "" : description);
}

} // namespace zel
