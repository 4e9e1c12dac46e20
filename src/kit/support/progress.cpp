#include "kit/support/progress.h"

#include "kit/support/output.h"

#include <chrono>
#include <unistd.h>
#include <utility>

namespace zel::kit {

namespace {

// Short jobs show nothing, and nobody can read faster changes.
constexpr std::int64_t first_ms = 500;
constexpr std::int64_t every_ms = 100;

std::int64_t now_ms()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

// Writes past the stream, which would show the carriage return as an escape.
void write_raw(const std::string &text)
{
    static_cast<void>(!::write(STDERR_FILENO, text.data(), text.size()));
}

} // namespace

progress::progress(std::string what, std::size_t total)
    : what_(std::move(what)), total_(total), watched_(isatty(STDERR_FILENO) != 0),
      next_(watched_ ? now_ms() + first_ms : 0)
{
}

void progress::show(std::size_t done)
{
    const std::int64_t now = now_ms();
    if (now < next_)
        return;
    next_ = now + every_ms;
    std::string line = what_;
    if (total_ != 0)
        line += " " + with_commas(done) + " of " + with_commas(total_);
    const std::size_t columns = line.size();
    // Blanks cover the rest of a longer line.
    if (columns < shown_)
        line.append(shown_ - columns, ' ');
    shown_ = columns;
    write_raw("\r" + line);
}

progress::~progress()
{
    if (shown_ != 0)
        write_raw("\r" + std::string(shown_, ' ') + "\r");
}

} // namespace zel::kit
