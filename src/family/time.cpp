#include "family/time.h"

#include <cstdlib>

namespace {

double milliseconds(const timeval &time)
{
    return static_cast<double>(time.tv_sec) * 1000.0 + static_cast<double>(time.tv_usec) / 1000.0;
}

double read_watch(zel_time_t &watch)
{
    // The wall clock: whoever sets it changes what is measured.
    gettimeofday(&watch.now_tv, nullptr);
    return milliseconds(watch.now_tv);
}

} // namespace

zel_time_t *zel_time_start()
{
    auto *watch = static_cast<zel_time_t *>(std::calloc(1, sizeof(zel_time_t)));
    // Without memory the watch is null, which every function takes.
    zel_time_reset(watch);
    return watch;
}

void zel_time_free(zel_time_t *watch) { std::free(watch); }

void zel_time_reset(zel_time_t *watch)
{
    if (watch == nullptr)
        return;
    gettimeofday(&watch->start_tv, nullptr);
    watch->start_ms = milliseconds(watch->start_tv);
    watch->lap_ms = watch->start_ms;
}

double zel_time_get_runtime_sec(zel_time_t *watch)
{
    return zel_time_get_runtime_msec(watch) / 1000.0;
}

double zel_time_get_runtime_msec(zel_time_t *watch)
{
    if (watch == nullptr)
        return 0.0;
    // The lap goes on: both times are measured beside each other.
    watch->last_ms = read_watch(*watch);
    return watch->last_ms - watch->start_ms;
}

double zel_time_get_runtime_lap_sec(zel_time_t *watch)
{
    if (watch == nullptr)
        return 0.0;
    const double previous = watch->lap_ms;
    watch->lap_ms = read_watch(*watch);
    return (watch->lap_ms - previous) / 1000.0;
}
