#include "editor/state/key-set.h"

#include "editor/state/edit-state.h"

namespace zel {

key_set::key_set()
    // A reference of our own: clear() must find the group, whatever has become of the window.
    : group_(accel_group == nullptr ? nullptr : GTK_ACCEL_GROUP(g_object_ref(accel_group)))
{
}

gboolean key_set::pressed(GtkAccelGroup *, GObject *, guint, GdkModifierType, gpointer key)
{
    return static_cast<bound *>(key)->act() ? TRUE : FALSE;
}

void key_set::add(guint keyval, GdkModifierType modifiers, std::function<void()> act)
{
    add_before(keyval, modifiers, [act = std::move(act)] {
        act();
        return true;
    });
}

void key_set::add_before(guint keyval, GdkModifierType modifiers, std::function<bool()> act)
{
    if (group_ == nullptr)
        return;
    keys_.push_back(std::make_unique<bound>(bound{std::move(act), nullptr}));
    // Each key lives in memory of its own: the closure points to it while the vector grows.
    bound *key = keys_.back().get();
    key->closure = g_cclosure_new(G_CALLBACK(pressed), key, nullptr);
    gtk_accel_group_connect(group_, keyval, modifiers, static_cast<GtkAccelFlags>(0), key->closure);
}

void key_set::clear()
{
    for (const auto &key : keys_)
        gtk_accel_group_disconnect(group_, key->closure);
    keys_.clear();
    g_clear_object(&group_);
}

void add_button_key(GtkWidget *button, guint keyval, GdkModifierType modifiers)
{
    if (accel_group == nullptr)
        return;
    // On another page of the notebook the button is not shown, and would take no key.
    g_signal_connect(button, "can-activate-accel",
                     G_CALLBACK(+[](GtkWidget *self, guint, gpointer) -> gboolean {
                         return gtk_widget_is_sensitive(self);
                     }),
                     nullptr);
    // "clicked" acts at once, where "activate" would first draw the button pressed.
    gtk_widget_add_accelerator(button, "clicked", accel_group, keyval, modifiers,
                               static_cast<GtkAccelFlags>(0));
}

} // namespace zel
