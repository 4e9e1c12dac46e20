#include "editor/toolkit/slices.h"

namespace zel {

void slices::begin(int after)
{
    stop();
    next(after);
}

void slices::stop()
{
    if (timer_ != 0)
        g_source_remove(timer_);
    timer_ = 0;
}

void slices::next(int after)
{
    const auto turn = [](gpointer data) -> gboolean {
        auto *self = static_cast<slices *>(data);
        // This source ends with its call. It is forgotten before the step, which may stop or begin.
        self->timer_ = 0;
        const int wait = self->step_();
        // The step may have begun the work again: then a source waits already.
        if (wait != finished && self->timer_ == 0)
            self->next(wait);
        return FALSE;
    };
    // At low priority: keys, drawing and the rest of the window come first.
    timer_ = after == 0 ? g_idle_add_full(G_PRIORITY_LOW, turn, this, nullptr)
                        : g_timeout_add_full(G_PRIORITY_LOW, static_cast<guint>(after), turn, this,
                                             nullptr);
}

} // namespace zel
