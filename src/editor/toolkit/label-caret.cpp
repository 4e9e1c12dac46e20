#include "editor/toolkit/label-caret.h"

#include <gtk/gtk.h>

namespace {

void (*toolkit_move)(GtkLabel *, GtkMovementStep, gint, gboolean);

void move_in_text(GtkLabel *label, GtkMovementStep step, gint count, gboolean extends)
{
    toolkit_move(label, step, count, extends);
    gint anchor = 0;
    gint caret = 0; // the bounds of the selection would hide where it is
    g_object_get(label, "selection-bound", &anchor, "cursor-position", &caret, nullptr);
    const auto length = static_cast<gint>(g_utf8_strlen(gtk_label_get_text(label), -1));
    if (caret > length)
        // The anchor may stand behind the end as well, where a selection was begun there.
        gtk_label_select_region(label, MIN(anchor, length), length);
}

} // namespace

namespace zel {

void keep_carets_in_labels()
{
    if (toolkit_move != nullptr)
        return;
    // Exchanged in the class, so that it holds for the labels of the toolkit's own dialogs, too.
    // The reference is never given back: the class must stay.
    GtkLabelClass *labels = GTK_LABEL_CLASS(g_type_class_ref(GTK_TYPE_LABEL));
    toolkit_move = labels->move_cursor;
    labels->move_cursor = move_in_text;
}

} // namespace zel
