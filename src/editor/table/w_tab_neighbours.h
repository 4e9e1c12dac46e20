#pragma once

// The other sources of the folder, and behind them the backups of the source itself, read while the
// translator does nothing: in slices of some milliseconds, and none within half a second of a key.

#include <gtk/gtk.h>

#include <functional>
#include <optional>
#include <string>

#include "assist/earlier.h"
#include "assist/neighbours.h"
#include "editor/toolkit/slices.h"

namespace zel {

class tab_neighbours {
public:
    // more is called when all other sources have been read, earlier with each backup that was.
    tab_neighbours(std::function<void()> more, std::function<void()> earlier);
    ~tab_neighbours() { stop(); }
    tab_neighbours(const tab_neighbours &) = delete;
    tab_neighbours &operator=(const tab_neighbours &) = delete;

    // Begins to read, unless the same was read before. The source must live until the reading
    // stops.
    void begin(const assist::neighbour_texts::query &wanted, const LangSource &source);

    // Call before anything of the source is changed or released: its backups are compared with it.
    void leave_source() { earlier_.stop(); }

    // Stops reading, and drops what was read.
    void stop();

    std::optional<assist::suggestion> best(const std::string &reference, std::size_t lang) const
    {
        return texts_.best(reference, lang);
    }

    const assist::earlier_texts &earlier() const { return earlier_; }

    // What has been read so far.
    const assist::neighbour_texts &texts() const { return texts_; }

private:
    static gint key_pressed(GtkWidget *, GdkEventKey *, gpointer self);
    int turn();

    std::function<void()> more_;
    std::function<void()> earlier_came_;
    assist::neighbour_texts texts_;
    assist::earlier_texts earlier_;
    bool is_told_ = false; // that texts_ is complete
    gint64 last_key_ = 0;
    slices turns_{[this] { return turn(); }};
    guint snooper_ = 0;
};

} // namespace zel
