#pragma once

// Records that a widget, a cell or another object of the toolkit keeps under a key and deletes at
// its end.

#include <gtk/gtk.h>

namespace zel {

template <class T>
void keep_at(gpointer object, const char *key, T *record)
{
    g_object_set_data_full(G_OBJECT(object), key, record,
                           [](gpointer data) { delete static_cast<T *>(data); });
}

// The record that the object keeps; the first call makes it.
template <class T>
T &kept_at(gpointer object, const char *key)
{
    auto *record = static_cast<T *>(g_object_get_data(G_OBJECT(object), key));
    if (record == nullptr)
        keep_at(object, key, record = new T);
    return *record;
}

} // namespace zel
