#include "langlib/lang-trace.h"

#include "langlib/lang-rare.h"
#include "support/growing-text.h"
#include "support/log-print.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <functional>
#include <iterator>
#include <pthread.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The file. Its number may be another file's by the time of a line, where the application has
// closed all that it did not know: so it is looked at before each.
struct trace_file {
    int number;
    dev_t device;
    ino_t inode;
};
trace_file traced;

// While it lives, a write to a pipe that nobody reads any more, or beyond the user's limit on the
// size of files, fails without the signal that would end the application.
class no_write_signals {
public:
    no_write_signals()
    {
        sigset_t waiting;
        sigpending(&waiting);
        sigemptyset(&held_);
        // One that waits already is the application's affair.
        for (const int signal : {SIGPIPE, SIGXFSZ})
            if (sigismember(&waiting, signal) == 0)
                sigaddset(&held_, signal);
        pthread_sigmask(SIG_BLOCK, &held_, &before_);
    }
    ~no_write_signals()
    {
        constexpr timespec at_once{};
        const int error = errno;
        sigtimedwait(&held_, nullptr, &at_once);
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
        errno = error;
    }
    no_write_signals(const no_write_signals &) = delete;
    no_write_signals &operator=(const no_write_signals &) = delete;

private:
    sigset_t held_;
    sigset_t before_;
};

// Writes a line in one piece, which other processes with the same file cannot cut. Called in a
// signal handler, too.
bool write_line(std::string_view line)
{
    const no_write_signals held;
    struct stat now;
    return fstat(traced.number, &now) == 0 && now.st_dev == traced.device &&
           now.st_ino == traced.inode &&
           write(traced.number, line.data(), line.size()) == static_cast<ssize_t>(line.size());
}

// "1795673131.004200" and a tab.
struct time_field {
    char text[40];
    std::size_t length;

    time_field()
    {
        constexpr int micro = 1000000;
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        char *end = std::to_chars(text, std::end(text), static_cast<std::int64_t>(now.tv_sec)).ptr;
        // One digit more in front, whose place the point takes, keeps the zeros behind it.
        char *point = end;
        end = std::to_chars(end, std::end(text), micro + now.tv_nsec / 1000).ptr;
        *point = '.';
        *end++ = '\t';
        length = static_cast<std::size_t>(end - text);
    }
    std::string_view view() const { return {text, length}; }
};

// What would end a field or a line, and the sign that tells of it.
std::string_view escape_of(char sign)
{
    switch (sign) {
    case '\t':
        return "\\t";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\\':
        return "\\\\";
    default:
        return {};
    }
}

bool append_field(zel::growing_text &line, std::string_view text, std::string_view end)
{
    bool complete = true;
    while (!text.empty() && complete) {
        const std::size_t plain = std::min(text.find_first_of("\t\n\r\\"), text.size());
        complete = line.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (!text.empty()) {
            complete = complete && line.append(escape_of(text.front()));
            text.remove_prefix(1);
        }
    }
    return complete && line.append(end);
}

void end_trace(const char *what)
{
    zel::rare_ends(zel::rare_traced);
    LogPrint(1, "lang_trace: ERROR %s, the trace ends\n", what);
}

// Appends a line of the time and one or two fields.
void trace_line(std::string_view first, const char *second)
{
    zel::growing_text line;
    if (!line.append(time_field().view()) ||
        !append_field(line, first, second == nullptr ? "\n" : "\t") ||
        (second != nullptr && !append_field(line, second, "\n")))
        return end_trace("not enough memory");
    if (!write_line({line.data(), line.length()}))
        end_trace("write");
}

// Begins with 1, and is one more from each mark on.
std::uint32_t section = 1;

void next_section() { __atomic_fetch_add(&section, 1, __ATOMIC_RELAXED); }

// A text's hash, of 64 bits so that no two texts have the same, and the section in which it was
// asked for last.
struct asked_row {
    std::uint64_t hash; // 0: a free row
    std::uint32_t section;
};

// Open addressing, at most half full.
struct {
    pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
    asked_row *rows = nullptr;
    std::size_t size = 0; // a power of two, or 0
    std::size_t count = 0;
} asked;

std::uint64_t hash_of(std::string_view group, std::string_view item)
{
    constexpr std::uint64_t odd = 0x9E3779B97F4A7C15;
    const std::hash<std::string_view> hash;
    const std::uint64_t both = hash(group) * odd ^ hash(item);
    return both == 0 ? odd : both;
}

asked_row &row_of(asked_row *rows, std::size_t size, std::uint64_t hash)
{
    std::size_t at = hash & (size - 1);
    while (rows[at].hash != 0 && rows[at].hash != hash)
        at = (at + 1) & (size - 1);
    return rows[at];
}

// Makes room for one more. False without memory.
bool make_room()
{
    constexpr std::size_t first_size = 1024;
    if (asked.count * 2 < asked.size)
        return true;
    const std::size_t larger = asked.size == 0 ? first_size : asked.size * 2;
    auto *rows = static_cast<asked_row *>(std::calloc(larger, sizeof(asked_row)));
    if (rows == nullptr)
        return false;
    for (std::size_t i = 0; i < asked.size; ++i)
        if (asked.rows[i].hash != 0)
            row_of(rows, larger, asked.rows[i].hash) = asked.rows[i];
    std::free(asked.rows);
    asked.rows = rows;
    asked.size = larger;
    return true;
}

// Whether this is the section's first request for the text. Without memory each one is.
bool is_first(std::uint64_t hash)
{
    const std::uint32_t now = __atomic_load_n(&section, __ATOMIC_RELAXED);
    pthread_mutex_lock(&asked.lock);
    bool first = true;
    if (make_room()) {
        asked_row &row = row_of(asked.rows, asked.size, hash);
        first = row.section != now;
        asked.count += row.hash == 0 ? 1U : 0U;
        row = {hash, now};
    }
    pthread_mutex_unlock(&asked.lock);
    return first;
}

// A mark whose name is the signal's number in the order of their coming.
void cb_signal(int)
{
    static int signals;
    const int error = errno;
    char line[80] = {};
    const time_field now;
    std::memcpy(line, now.text, now.length);
    std::memcpy(line + now.length, "usr1-", 5);
    char *end = std::to_chars(line + now.length + 5, std::end(line),
                              __atomic_add_fetch(&signals, 1, __ATOMIC_RELAXED))
                    .ptr;
    *end++ = '\n';
    if (!write_line({line, static_cast<std::size_t>(end - line)}))
        zel::rare_ends(zel::rare_traced);
    next_section();
    errno = error;
}

// An application that has a use for the signal keeps it.
void take_signal()
{
    struct sigaction old {};
    if (sigaction(SIGUSR1, nullptr, &old) != 0 || old.sa_handler != SIG_DFL)
        return;
    struct sigaction mark {};
    mark.sa_handler = cb_signal;
    mark.sa_flags = SA_RESTART;
    sigaction(SIGUSR1, &mark, nullptr);
}

void open_trace()
{
    // Null in a program with other rights than its caller's, which must not write where that says.
    const char *path = secure_getenv("LANG_TRACE");
    if (path == nullptr || *path == '\0')
        return;
    // A pipe that nobody reads must not stop the application.
    traced.number =
        open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    struct stat status;
    if (traced.number < 0 || fstat(traced.number, &status) != 0) {
        LogPrint(1, "lang_trace: ERROR open file >%s<: %s\n", path, std::strerror(errno));
        return;
    }
    traced.device = status.st_dev;
    traced.inode = status.st_ino;
    take_signal();
    zel::rare_begins(zel::rare_traced);
}

} // namespace

void zel::trace_begin()
{
    static pthread_once_t once = PTHREAD_ONCE_INIT;
    pthread_once(&once, open_trace);
}

void zel::trace_request(const char *group, const char *item)
{
    // A pair that lacks one of its names is no text of a source.
    if (group != nullptr && item != nullptr && is_first(hash_of(group, item)))
        trace_line(group, item);
}

void zel::trace_mark(const char *name)
{
    trace_begin();
    if ((rare_now() & rare_traced) == 0)
        return;
    trace_line(name == nullptr ? "" : name, nullptr);
    next_section();
}
