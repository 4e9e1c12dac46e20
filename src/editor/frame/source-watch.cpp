#include "editor/frame/source-watch.h"

#include "editor/frame/edit-ask.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/lang-box.h"
#include "editor/toolkit/popup.h"
#include "editor/toolkit/ui-text.h"
#include "recovery/place.h"
#include "recovery/source-lock.h"
#include "support/file-call.h"

#include <cstring>
#include <sys/stat.h>

namespace {

struct watch {
    std::string path; // empty while nothing is watched
    zel::file_state known;
    zel::file_state agreed; // may be written over
    zel::source_lock lock;
    bool alone = false;
    zel::file_news told = zel::file_news::same; // in the status line
};
watch current;

// Whether both paths name the same file, or would if it existed.
bool is_watched(const char *path)
{
    struct stat one {};
    struct stat other {};
    if (current.path.empty())
        return false;
    // By the files themselves, so that links and other spellings of the path count.
    if (stat(path, &one) == 0 && stat(current.path.c_str(), &other) == 0)
        return zel::id_of(one) == zel::id_of(other);
    return zel::absolute_path(path) == current.path;
}

std::string with_path(const char *text)
{
    return zel::utf8_shown(current.path.c_str()) + ": " + zel::ui_text("status", text);
}

GtkWidget *make_question(GtkWidget *parent)
{
    GtkWidget *dialog = gtk_message_dialog_new(
        zel::window_of(parent), GTK_DIALOG_MODAL, GTK_MESSAGE_WARNING, GTK_BUTTONS_NONE, "%s",
        zel::ui_text("status", "The file was changed by another program since it was loaded.\n"
                               "Write over it?"));
    const std::string now = zel::describe(current.agreed);
    gtk_message_dialog_format_secondary_text(
        GTK_MESSAGE_DIALOG(dialog), "%s\n%s: %s\n%s: %s\n\n%s",
        zel::utf8_shown(current.path.c_str()).c_str(), zel::ui_text("status", "Loaded"),
        zel::describe(current.known).c_str(), zel::ui_text("status", "Now"), now.c_str(),
        zel::ui_text("status", "Yes keeps the other program's text as a backup with its date."));
    gtk_dialog_add_buttons(GTK_DIALOG(dialog), zel::ui_text("neu", "Save as"), GTK_RESPONSE_APPLY,
                           GTK_STOCK_YES, GTK_RESPONSE_YES, GTK_STOCK_NO, GTK_RESPONSE_NO, nullptr);
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_NO);
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    return dialog;
}

gboolean look_again(GtkWidget *, GdkEventFocus *, gpointer)
{
    if (current.path.empty())
        return FALSE;
    const zel::file_news news = zel::news_of(current.path.c_str(), current.known);
    // Told once for each change: the user comes back to the window many times.
    if (news == current.told)
        return FALSE;
    current.told = news;
    if (news == zel::file_news::changed)
        zel::edit_status(with_path("changed by another program").c_str());
    else if (news == zel::file_news::gone)
        zel::edit_status(with_path("moved away or deleted by another program").c_str());
    return FALSE;
}

} // namespace

namespace zel {

void watch_note(const char *path)
{
    current.path = absolute_path(path);
    current.known = state_of(current.path.c_str());
    current.told = file_news::same;
}

void watch_begin(GtkWidget *parent)
{
    current.alone = current.lock.take(recovery_folder(), current.path);
    if (current.alone)
        return;
    const std::string text = with_path("another editor has this source open") + " (" +
                             utf8_shown(current.lock.holder().c_str()) + ").";
    // Told in both: the user closes the box at once, and the status line stays.
    edit_status(text.c_str());
    const std::string more =
        text + "\n" +
        ui_text("status", "Whoever saves last is asked before the other's changes "
                          "are written over.");
    lang_msg_box(parent, more.c_str());
}

void watch_end()
{
    current.lock.release();
    current.path.clear();
    current.alone = false;
}

bool watch_is_alone() { return current.alone; }
const std::string &watched_path() { return current.path; }
const file_state &watched_state() { return current.known; }

void watch_saved(const char *path, const file_id &written)
{
    if (!is_watched(path))
        return;
    current.known = state_of(current.path.c_str());
    current.told = file_news::same;
    if (current.known.number != written.number)
        current.known = file_state(); // another program has saved since: no text is known
}

bool watch_allows(const char *path)
{
    // Compared with the state that the user was asked about, not with the loaded one.
    return !is_watched(path) || news_of(current.path.c_str(), current.agreed) != file_news::changed;
}

overwrite watch_ask(GtkWidget *parent, const char *path)
{
    // A time that has changed over the same text is no reason to ask.
    const bool is_changed =
        is_watched(path) && news_of(current.path.c_str(), current.known) == file_news::changed;
    // The text may change again while the question is open; watch_allows notices that.
    current.agreed = is_changed ? state_of(current.path.c_str()) : current.known;
    if (!is_changed)
        return overwrite::yes;
    GtkWidget *dialog = make_question(parent);
    const int answer = gtk_dialog_run(GTK_DIALOG(dialog));
    gtk_widget_destroy(dialog);
    if (answer == GTK_RESPONSE_APPLY)
        return overwrite::other_name;
    return answer == GTK_RESPONSE_YES ? overwrite::yes : overwrite::no;
}

void watch_window(GtkWidget *window)
{
    g_signal_connect(window, "focus-in-event", G_CALLBACK(look_again), nullptr);
}

} // namespace zel
