#include "editor/table/w_tab_neighbours.h"

#include "app/memory.h"

namespace zel {

namespace {

constexpr int between_turns = 20;      // milliseconds
constexpr gint64 after_a_key = 500000; // microseconds
constexpr std::chrono::milliseconds reading_slice{4};

} // namespace

tab_neighbours::tab_neighbours(std::function<void()> more, std::function<void()> earlier)
    : more_(std::move(more)), earlier_came_(std::move(earlier))
{
}

void tab_neighbours::begin(const assist::neighbour_texts::query &wanted, const LangSource &source)
{
    texts_.begin(wanted);
    earlier_.begin(wanted, source);
    is_told_ = false;
    // A snooper, since a key counts in whatever window it is pressed.
    if (snooper_ == 0) {
        snooper_ = gtk_key_snooper_install(key_pressed, this);
        last_key_ = g_get_monotonic_time(); // one may have been pressed just now
    }
    if (!turns_.wait())
        turns_.begin(between_turns);
}

void tab_neighbours::stop()
{
    turns_.stop();
    if (snooper_ != 0)
        gtk_key_snooper_remove(snooper_);
    snooper_ = 0;
    texts_.forget();
    earlier_.stop();
}

gint tab_neighbours::key_pressed(GtkWidget *, GdkEventKey *, gpointer self)
{
    static_cast<tab_neighbours *>(self)->last_key_ = g_get_monotonic_time();
    return FALSE;
}

int tab_neighbours::turn()
{
    // While the user types, other files can wait.
    if (g_get_monotonic_time() - last_key_ < after_a_key)
        return between_turns;
    const auto until = std::chrono::steady_clock::now() + reading_slice;
    if (texts_.step(until))
        return between_turns;
    if (!is_told_) {
        is_told_ = true;
        more_();
        return between_turns;
    }
    const std::size_t before = earlier_.files();
    const bool is_more = earlier_.step(until);
    if (earlier_.files() != before)
        earlier_came_();
    if (is_more)
        return between_turns;
    // Nothing is left to read: the snooper would be called at every key for nothing.
    gtk_key_snooper_remove(snooper_);
    snooper_ = 0;
    // Each file was in memory whole, with its records.
    give_back_memory();
    return slices::finished;
}

} // namespace zel
