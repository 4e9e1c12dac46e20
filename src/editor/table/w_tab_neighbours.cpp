#include "editor/table/w_tab_neighbours.h"

namespace zel {

namespace {

constexpr guint between_turns = 20;    // milliseconds
constexpr gint64 after_a_key = 500000; // microseconds
constexpr std::chrono::milliseconds reading_slice{4};

} // namespace

tab_neighbours::tab_neighbours(std::function<void()> more) : more_(std::move(more)) {}

void tab_neighbours::begin(const assist::neighbour_texts::query &wanted)
{
    texts_.begin(wanted);
    // A snooper, since a key counts in whatever window it is pressed.
    if (snooper_ == 0) {
        snooper_ = gtk_key_snooper_install(key_pressed, this);
        last_key_ = g_get_monotonic_time(); // one may have been pressed just now
    }
    if (timer_ == 0)
        timer_ = g_timeout_add_full(G_PRIORITY_LOW, between_turns, turn, this, nullptr);
}

void tab_neighbours::stop()
{
    if (timer_ != 0)
        g_source_remove(timer_);
    if (snooper_ != 0)
        gtk_key_snooper_remove(snooper_);
    timer_ = 0;
    snooper_ = 0;
    texts_.forget();
}

gint tab_neighbours::key_pressed(GtkWidget *, GdkEventKey *, gpointer self)
{
    static_cast<tab_neighbours *>(self)->last_key_ = g_get_monotonic_time();
    return FALSE;
}

gboolean tab_neighbours::turn(gpointer data)
{
    auto *self = static_cast<tab_neighbours *>(data);
    // The user types: other files can wait.
    if (g_get_monotonic_time() - self->last_key_ < after_a_key)
        return TRUE;
    if (self->texts_.step(std::chrono::steady_clock::now() + reading_slice))
        return TRUE;
    self->timer_ = 0;
    // Nothing is left to read: the snooper would be called at every key for nothing.
    gtk_key_snooper_remove(self->snooper_);
    self->snooper_ = 0;
    self->more_();
    return FALSE;
}

} // namespace zel
