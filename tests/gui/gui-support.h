#pragma once

// What the tests of the editor's windows share: a main loop with a time limit, answers to dialogs
// that will appear, keys, and a record of the toolkit's warnings. The tests fail when
// there is no display.

#include "editor/toolkit/text-places.h"
#include "test-support.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

namespace gui {

// Runs the main loop until the condition holds; false after the limit.
bool wait_for(const std::function<bool()> &condition, int milliseconds = 5000);

// Runs the main loop until nothing is pending, and once more after a moment for what the window
// manager answers.
void settle(int milliseconds = 20);

// The first widget of that name (gtk_widget_set_name), of that text (label, button, entry text), or
// of that type, in a depth-first walk; null when there is none. find_all gives all of a type.
GtkWidget *find_named(GtkWidget *root, const char *name);
GtkWidget *find_text(GtkWidget *root, const std::string &text);
GtkWidget *find_type(GtkWidget *root, GType type);
std::vector<GtkWidget *> find_all(GtkWidget *root, GType type);

// The texts of all labels below a widget, hidden ones too, in the order of the walk.
std::vector<std::string> label_texts(GtkWidget *root);

// The entry of the window's menu bar with that text (the first, in the order of the menus), or
// null.
GtkWidget *menu_entry(GtkWidget *window, const std::string &text);

// Texts of a menu bar: the titles, each followed by its entries; "-" is a separator.
std::vector<std::string> menu_texts(GtkWidget *window);

// The toolbar's button with that tooltip, or null.
GtkWidget *tool_button(GtkWidget *window, const std::string &tooltip);

// The visible top-level window with that title, or null.
GtkWidget *window_titled(const std::string &title);

// --- Dialogs -----------------------------------------------------------------------------------
// A dialog will appear, answer it so. The answers are given in the order in which they were
// announced, each to the next modal window that comes up while a main loop runs, also a nested one.
// A dialog that nobody announced is closed and fails the test; so does an answer never asked for,
// at the end of the test.
using answer_fn = std::function<void(GtkWidget *dialog)>;
void answer_next(answer_fn answer);

// Starts looking out for dialogs, for a program that is no test; Test does it by itself.
void start_watching();

// Ready answers.
answer_fn press(const std::string &button_text); // clicks the button with that label
answer_fn respond(int response);                 // of a GtkDialog
answer_fn close_window();                        // as the window manager closes it
answer_fn accept(const std::string &path);       // a chooser, as soon as that path is chosen
answer_fn choose(const std::string &path);       // a file or folder chooser: that path, accepted
answer_fn type_name(const std::string &folder, const std::string &name); // a save chooser
// Notes the texts of the dialog's labels in *seen (joined by line feeds), then answers.
answer_fn see(std::string *seen, answer_fn then);

std::size_t answers_left();

// --- Keys --------------------------------------------------------------------------------------
// Presses and releases a key in the window, as the toolkit would get it: accelerators, mnemonics,
// then the focused widget. The modifiers are of GdkModifierType.
void key(GtkWidget *window, guint keyval, int modifiers = 0);
void type(GtkWidget *window, const char *ascii);

// --- Warnings ----------------------------------------------------------------------------------
// What GLib and the toolkit warned of since the test began. A test that provokes a warning takes it
// out of here; what is left at the end fails the test.
std::vector<std::string> &warnings();

// --- The editor --------------------------------------------------------------------------------
// Starts the editor with the file (empty: none) and runs the scenario in its main loop; afterwards
// the window is closed, without a question. Without a scenario the editor must end by itself before
// its main loop. Returns what the editor printed.
std::string run_editor(const std::string &file, const std::function<void()> &scenario);

int height_of(GtkWidget *widget);
int line_height(GtkWidget *view); // of its font

// The red, green and blue of each pixel of that part of a drawn window or pixmap, row by row.
std::string pixels_of(GdkDrawable *drawn, const GdkRectangle &part);

// Whether all of the widget is seen in what scrolls around it.
bool in_sight(GtkWidget *widget);

using zel_test::read_file;
using zel_test::write_file;

// Base of the tests: a fresh folder that is the current directory (and HOME) during the test and
// goes with it, an empty lang_global, no windows left over, and the checks above.
class Test : public testing::Test {
public:
    std::string folder; // without a separator at the end
    std::string path(const std::string &name) const { return folder + "/" + name; }
    static std::string text_of(GtkWidget *view)
    {
        return zel::buffer_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)));
    }

protected:
    Test();
    ~Test() override;

private:
    std::string old_folder;
};

} // namespace gui
