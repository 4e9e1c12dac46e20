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
        self->timer_ = 0;
        const int wait = self->step_();
        // The step may have begun the work again.
        if (wait != finished && self->timer_ == 0)
            self->next(wait);
        return FALSE;
    };
    timer_ = after == 0 ? g_idle_add_full(G_PRIORITY_LOW, turn, this, nullptr)
                        : g_timeout_add_full(G_PRIORITY_LOW, static_cast<guint>(after), turn, this,
                                             nullptr);
}

} // namespace zel
