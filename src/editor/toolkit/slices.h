#pragma once

// Work that is done in slices of some milliseconds while the toolkit has nothing else to do, so
// that the window answers keys in between.

#include <gtk/gtk.h>

#include <cstdint>
#include <functional>

namespace zel {

class slices {
public:
    static constexpr int finished = -1;

    // step does a slice and returns the milliseconds until the next one, or finished.
    explicit slices(std::function<int()> step) : step_(std::move(step)) {}
    ~slices() { stop(); }
    slices(const slices &) = delete;
    slices &operator=(const slices &) = delete;

    // Begins in that many milliseconds. A slice that waits already is dropped.
    void begin(int after);
    void stop();
    bool wait() const { return timer_ != 0; }

private:
    void next(int after);

    std::function<int()> step_;
    guint timer_ = 0;
};

// Calls one() until it finds nothing more to do or the time is over; false when there is more. The
// clock is read once for several calls: each takes less time than many looks at it.
template <class One>
bool work_for(gint64 microseconds, std::uint32_t at_once, One &&one)
{
    const gint64 end = g_get_monotonic_time() + microseconds;
    std::uint32_t calls = 0;
    do {
        if (!one())
            return true;
    } while (++calls % at_once != 0 || g_get_monotonic_time() < end);
    return false;
}

} // namespace zel
