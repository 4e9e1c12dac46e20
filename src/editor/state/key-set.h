#pragma once

// Keys of the main window that act on something which is destroyed before the window is.

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <vector>

namespace zel {

class key_set {
public:
    // Without a main window there are no keys.
    key_set();
    ~key_set() { clear(); }
    key_set(const key_set &) = delete;
    key_set &operator=(const key_set &) = delete;

    void add(guint keyval, GdkModifierType modifiers, std::function<void()> act);

    // A key that goes on to the widget with the keyboard where the act says false.
    void add_before(guint keyval, GdkModifierType modifiers, std::function<bool()> act);

    // Disconnects all keys; the set takes no new ones afterwards.
    void clear();

private:
    struct bound {
        std::function<bool()> act;
        GClosure *closure;
    };
    static gboolean pressed(GtkAccelGroup *, GObject *, guint, GdkModifierType, gpointer key);

    GtkAccelGroup *group_;
    std::vector<std::unique_ptr<bound>> keys_;
};

// Gives a button of the item table a key of the main window, which acts on every page of it.
void add_button_key(GtkWidget *button, guint keyval, GdkModifierType modifiers);

} // namespace zel
