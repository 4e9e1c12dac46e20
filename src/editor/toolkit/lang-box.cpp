#include "editor/toolkit/lang-box.h"

#include "editor/toolkit/accessible.h"
#include "editor/toolkit/popup.h"
#include "editor/toolkit/ui-text.h"
#include "support/log-print.h"

#include <cstdio>

GtkWidget *winMsg;

namespace {

// What the handlers of one box know while it is up.
struct box_state {
    GMainLoop *loop;
    bool gone; // destroyed together with the parent's window
};

void quit(box_state *box, const char *trace)
{
    std::puts(trace);
    LogPrint(1, "%s\n", trace);
    g_main_loop_quit(box->loop);
}

void ok_clicked_cb(GtkWidget *, gpointer data)
{
    quit(static_cast<box_state *>(data), "msg_box_ok: msg_box: g_main_loop_quit");
    LogPrint(1, "Ok pressed\n");
}

constexpr char closed_trace[] = "destroy_event: msg_box: g_main_loop_quit";

gboolean closed_event(GtkWidget *, GdkEvent *, gpointer data)
{
    quit(static_cast<box_state *>(data), closed_trace);
    return TRUE; // show_box destroys it
}

void destroyed_cb(GtkWidget *, gpointer data)
{
    auto *box = static_cast<box_state *>(data);
    box->gone = true;
    quit(box, closed_trace);
}

// Lines stay as they are, and are wrapped only where they would make the box wider than this.
constexpr int widest_text = 560;

GtkWidget *make_text(const std::string &text)
{
    GtkWidget *label = gtk_label_new(text.c_str());
    gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_CENTER);
    // Only lines that are too long are wrapped: a label that wraps takes a width of the toolkit's
    // choice, also for a short text.
    GtkRequisition wanted{};
    gtk_widget_size_request(label, &wanted);
    if (wanted.width > widest_text) {
        gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
        gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
        gtk_widget_set_size_request(label, widest_text, -1);
    }
    return label;
}

void show_box(GtkWidget *parent, const char *text, const char *icon)
{
    if (text == nullptr)
        text = "Info";
    LogPrint(1, "lang_msg_box: entry ->%s<-\n", text);
    const std::string shown = zel::utf8_shown(text);

    GtkWidget *const outer = winMsg; // a box that is still up below this one
    GtkWidget *popup = zel_popup_new();
    winMsg = popup;
    gtk_window_set_position(GTK_WINDOW(popup), GTK_WIN_POS_CENTER);
    // Screen readers announce the text at once only for a window of this role with this name.
    zel::set_accessible_name(popup, shown.c_str());
    atk_object_set_role(gtk_widget_get_accessible(popup), ATK_ROLE_ALERT);
    zel_popup_set_icon(popup, gtk_image_new_from_stock(icon, GTK_ICON_SIZE_DIALOG));
    gtk_box_pack_start(GTK_BOX(ZEL_POPUP(popup)->content_box), make_text(shown), TRUE, TRUE, 10);
    GtkWidget *ok = zel::popup_add_button(popup, zel::ui_text("common", "Ok"), 60,
                                          zel::POPUP_DEFAULT | zel::POPUP_CLOSES);
    gtk_widget_grab_focus(ok);

    box_state box{g_main_loop_new(nullptr, FALSE), false};
    g_signal_connect(ok, "clicked", G_CALLBACK(ok_clicked_cb), &box);
    g_signal_connect(popup, "delete-event", G_CALLBACK(closed_event), &box);
    const gulong destroyed = g_signal_connect(popup, "destroy", G_CALLBACK(destroyed_cb), &box);
    zel::popup_run(popup, parent, box.loop);
    g_main_loop_unref(box.loop);
    winMsg = outer;
    // The handler points into this function's frame: it must not outlive the box.
    if (!box.gone) {
        g_signal_handler_disconnect(popup, destroyed);
        gtk_widget_destroy(popup);
    }
}

} // namespace

void lang_msg_box(GtkWidget *parent, const char *text)
{
    show_box(parent, text, GTK_STOCK_DIALOG_INFO);
}

namespace zel {

void error_box(GtkWidget *parent, const char *text)
{
    show_box(parent, text, GTK_STOCK_DIALOG_ERROR);
}

} // namespace zel
