#include "editor/frame/edit-ask.h"

#include "editor/state/edit-state.h"
#include "editor/toolkit/lang-box.h"
#include "editor/toolkit/popup.h"
#include "editor/toolkit/ui-text.h"

#include <gdk/gdkkeysyms.h>

namespace {

// The toolkit takes Escape for closing the window, which discards; a key must not lose anything.
gboolean no_on_escape(GtkWidget *dialog, GdkEventKey *event, gpointer)
{
    if (event->keyval != GDK_KEY_Escape)
        return FALSE;
    gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_NO);
    return TRUE;
}

} // namespace

namespace zel {

bool ask_discard(GtkWidget *widget)
{
    GtkWidget *dialog =
        gtk_message_dialog_new(window_of(widget), GTK_DIALOG_MODAL, GTK_MESSAGE_QUESTION,
                               GTK_BUTTONS_YES_NO, "%s", ui_text("common", "Discard changes ?"));
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    // Return gives the safe answer: the changes are kept.
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_NO);
    g_signal_connect(dialog, "key-press-event", G_CALLBACK(no_on_escape), nullptr);
    const int answer = gtk_dialog_run(GTK_DIALOG(dialog));
    gtk_widget_destroy(dialog);
    return answer != GTK_RESPONSE_NO;
}

void message(GtkWidget *widget, const char *group, const char *text)
{
    // All texts of errors begin with this word, before they are translated.
    const bool is_error = g_ascii_strncasecmp(text, "error", 5) == 0;
    (is_error ? error_box : lang_msg_box)(widget, ui_text(group, text));
}

void status_and_message(GtkWidget *widget, const char *status_group, const char *group,
                        const char *text)
{
    edit_status(ui_text(status_group, text));
    message(widget, group, text);
}

void nothing_to_do(GtkWidget *widget)
{
    status_and_message(widget, "common", "status", "Nothing to do");
}

} // namespace zel
