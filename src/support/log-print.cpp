#include "support/log-print.h"

#include "support/local-time.h"

#include <sys/time.h>
#include <unistd.h>

int log_init;
pthread_mutex_t logMutex = PTHREAD_MUTEX_INITIALIZER;
pthread_mutexattr_t logMutexAttr;
std::FILE *logFd;
int logStdout;
int logStderr;
std::uint32_t log_flags;
char *logFile;
int __dbg_printf_on__;

namespace {

void print_to(std::FILE *stream, int level, const char *format, std::va_list args)
{
    // Level 0 goes on with a line, which has its stamps already.
    if (level != 0) {
        fprint_time(stream);
        zel::fprint_thread(stream);
    }
    // Printing uses up the arguments, and several outputs share them.
    std::va_list copy;
    va_copy(copy, args);
    std::vfprintf(stream, format, copy);
    va_end(copy);
    // After a crash the log has every line.
    std::fflush(stream);
}

} // namespace

namespace zel {

void fprint_thread(std::FILE *stream)
{
    std::fprintf(stream, "-%08x ", static_cast<std::uint32_t>(pthread_self()));
}

log_lock::log_lock()
{
    while (pthread_mutex_trylock(&logMutex) != 0)
        usleep(1000);
}

log_lock::~log_lock() { pthread_mutex_unlock(&logMutex); }

} // namespace zel

int fprint_time(std::FILE *stream)
{
    if (stream == nullptr)
        return 0;
    timeval now{};
    gettimeofday(&now, nullptr);
    tm parts{};
    zel::local_time(now.tv_sec, parts);
    return std::fprintf(stream, "%02u:%02u:%02u:%06u", static_cast<unsigned>(parts.tm_hour),
                        static_cast<unsigned>(parts.tm_min), static_cast<unsigned>(parts.tm_sec),
                        static_cast<unsigned>(now.tv_usec));
}

int fprint_date(std::FILE *stream)
{
    if (stream == nullptr)
        return 0;
    const std::time_t now = std::time(nullptr);
    tm parts{};
    zel::local_time(now, parts);
    return std::fprintf(stream, "%04d-%02d-%02d", parts.tm_year + 1900, parts.tm_mon + 1,
                        parts.tm_mday);
}

int vfLogPrint(int level, const char *format, std::va_list args)
{
    if (log_init == 0)
        return 0;
    const zel::log_lock lock;
    if (logFd != nullptr)
        print_to(logFd, level, format, args);
    if (logStdout != 0)
        print_to(stdout, level, format, args);
    if (logStderr != 0)
        print_to(stderr, level, format, args);
    return 0;
}

int LogPrint(int level, const char *format, ...)
{
    std::va_list args;
    va_start(args, format);
    vfLogPrint(level, format, args);
    va_end(args);
    return 0;
}

void zel::print_and_log(int level, const char *format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::vprintf(format, args);
    va_end(args);
    // Printing has used up the arguments.
    va_start(args, format);
    vfLogPrint(level, format, args);
    va_end(args);
}

int dbg_printf(const char *format, ...)
{
    if (__dbg_printf_on__ == 0)
        return 0;
    std::va_list args;
    va_start(args, format);
    const int printed = std::vprintf(format, args);
    va_end(args);
    std::fflush(stdout);
    return printed;
}

void dbg_printf_on(int on) { __dbg_printf_on__ = on; }
