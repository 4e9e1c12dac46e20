#pragma once

// The other sources of the folder, read while the translator does nothing: in slices of some
// milliseconds, and none within half a second of a key.

#include <gtk/gtk.h>

#include <functional>
#include <optional>
#include <string>

#include "assist/neighbours.h"
#include "editor/toolkit/slices.h"

namespace zel {

class tab_neighbours {
public:
    // more is called when everything has been read.
    explicit tab_neighbours(std::function<void()> more);
    ~tab_neighbours() { stop(); }
    tab_neighbours(const tab_neighbours &) = delete;
    tab_neighbours &operator=(const tab_neighbours &) = delete;

    // Begins to read, unless the same was read before.
    void begin(const assist::neighbour_texts::query &wanted);

    // Stops reading, and drops what was read.
    void stop();

    std::optional<assist::suggestion> best(const std::string &reference, std::size_t lang) const
    {
        return texts_.best(reference, lang);
    }

    // What has been read so far.
    const assist::neighbour_texts &texts() const { return texts_; }

private:
    static gint key_pressed(GtkWidget *, GdkEventKey *, gpointer self);
    int turn();

    std::function<void()> more_;
    assist::neighbour_texts texts_;
    gint64 last_key_ = 0;
    slices turns_{[this] { return turn(); }};
    guint snooper_ = 0;
};

} // namespace zel
