#pragma once

// The operations of the editor's own widgets. Each returns 0, after a warning of the toolkit, when
// it is given something else.

#include <gtk/gtk.h>

namespace zel {

// Runs the operation on the widget and gives 1; 0 after a warning that names the failed check when
// the widget is null or not of the type. The operation takes the widget as an Instance *.
template <class Instance, class Operation>
int operate(GtkWidget *widget, GType type, const char *type_check, const char *function,
            Operation operation)
{
    const char *failed = nullptr;
    if (widget == nullptr)
        failed = "widget != NULL";
    else if (!G_TYPE_CHECK_INSTANCE_TYPE(widget, type))
        failed = type_check;
    if (failed != nullptr) {
        g_return_if_fail_warning(G_LOG_DOMAIN, function, failed);
        return 0;
    }
    operation(reinterpret_cast<Instance *>(widget));
    return 1;
}

} // namespace zel
