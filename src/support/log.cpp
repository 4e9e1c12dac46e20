#include "support/log.h"

#include "support/file-call.h"
#include "support/hex_dump.h"
#include "support/string-copy.h"
#include "support/string.h"
#include "support/system-name.h"

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::string_view end_marker = "________EOF________";
static_assert(end_marker.size() == 19, "the crash check looks at the last 19 bytes");

// A file shorter than this holds no log, whole or not.
constexpr off_t least_log_size = 2 * static_cast<off_t>(end_marker.size());

// Words of the speed records, by kind.
constexpr std::array speed_words = {"SPEED_ENTRY ",     "SPEED_EXIT ", "SPEED_CYCLE_START ",
                                    "SPEED_CYCLE_END ", "SPEED_URL ",  "SPEED_ERROR "};

// Calls the function with every output of the program log that is open.
template <class Function>
void each_output(Function &&function)
{
    if (logFd != nullptr)
        function(logFd);
    if (logStdout != 0)
        function(stdout);
    if (logStderr != 0)
        function(stderr);
}

void print_stamp_line(std::FILE *stream)
{
    fprint_date(stream);
    std::fputc(' ', stream);
    fprint_time(stream);
    std::fputc('\n', stream);
}

void print_head(std::FILE *stream, const char *version)
{
    std::fprintf(stream, "Start logging Version %s  ", version == nullptr ? "" : version);
    print_stamp_line(stream);
    print_os(stream);
    std::fflush(stream);
}

void print_end(std::FILE *stream)
{
    std::fputs("End logging ", stream);
    print_stamp_line(stream);
}

// A log is written where its path says and nowhere else: over no link, and over nobody else's on
// the way there.
bool leads_elsewhere(const char *file)
{
    errno = ELOOP;
    return zel::crosses_foreign_link(file);
}

// Moves the log of the run before, or a link of that name, out of the way; there need not be one.
// Anything else stays.
void rotate(const char *file)
{
    struct stat status {};
    if (lstat(file, &status) != 0 || (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)))
        return;
    const zel::string_guard old(zel_strdup_printf("%s.old", file));
    if (!old)
        return;
    zel_unlink(old.get());
    if (zel_rename(file, old.get()) != 0)
        unlink(file); // it is made anew all the same
}

std::FILE *open_new(const char *file)
{
    if (leads_elsewhere(file))
        return nullptr;
    rotate(file);
    return zel::stream_of(zel::open_fresh(file, 0666), "w+b");
}

std::FILE *open_for_appending(const char *file)
{
    if (leads_elsewhere(file))
        return nullptr;
    const int flags = O_RDWR | O_APPEND;
    int fd = zel::open_plain(file, flags);
    if (fd < 0 && errno == ENOENT)
        fd = open(file, flags | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    return zel::stream_of(fd, "a+");
}

void open_log_file(const char *file, unsigned flags)
{
    if ((flags & LOG_OPEN_NEW) != 0) {
        logFd = open_new(file);
        if (logFd == nullptr)
            dbg_printf("LogOpen:(1) errno %d >%s<  unable to open >%s<\n", errno,
                       std::strerror(errno), file);
    }
    if ((flags & LOG_OPEN_APPEND) != 0) {
        if (logFd != nullptr)
            std::fclose(logFd);
        logFd = open_for_appending(file);
        if (logFd == nullptr)
            dbg_printf("LogOpen:(2) errno %d >%s<  unable to open >%s<\n", errno,
                       std::strerror(errno), file);
    }
}

void check_standard_streams()
{
    if (fileno(stdout) < 0) {
        dbg_printf("LogOpen: logStdout off\n");
        logStdout = 0;
    }
    if (fileno(stderr) < 0) {
        dbg_printf("LogOpen: logStderr off\n");
        logStderr = 0;
    }
}

void report_already_open(const char *file, unsigned flags)
{
    if (file != nullptr)
        LogPrint(1, "LogOpen: 0x%08x >%s< already open -> return\n", flags, file);
    else
        LogPrint(1, "LogOpen: 0x%08x already open -> return\n", flags);
}

// The size of a regular file that may hold a whole log; -1 after saying why not.
off_t size_of_log(const char *file)
{
    struct stat status {};
    if (file == nullptr || zel_stat(file, &status) != 0) {
        dbg_printf("LogCheckCrash: exit(1), %s error stat\n", file == nullptr ? "(null)" : file);
        return -1;
    }
    if (!S_ISREG(status.st_mode)) {
        dbg_printf("LogCheckCrash: exit(0), %s not found\n", file);
        return -1;
    }
    if (status.st_size < least_log_size) {
        dbg_printf("LogCheckCrash: exit(2), %s no eof size\n", file);
        return -1;
    }
    return status.st_size;
}

// 1 when the last bytes of the open file are no end marker, else 0.
int check_end(int fd, off_t size, const char *file)
{
    const auto length = static_cast<off_t>(end_marker.size());
    if (lseek(fd, size - length, SEEK_SET) < 0) {
        dbg_printf("LogCheckCrash: exit(4), unable to lseek %s errno(%d) >%s<\n", file, errno,
                   std::strerror(errno));
        return 0;
    }
    std::array<char, end_marker.size()> end{};
    if (read(fd, end.data(), end.size()) != static_cast<ssize_t>(end.size())) {
        dbg_printf("LogCheckCrash: exit(5), unable to read %s errno(%d) >%s<\n", file, errno,
                   std::strerror(errno));
        return 0;
    }
    if (std::string_view(end.data(), end.size()) == end_marker)
        return 0;
    dbg_printf("LogCheckCrash: exit(6), eof does't match\n");
    return 1;
}

} // namespace

int LogOpen(const char *file, unsigned flags, const char *version)
{
    if (file != nullptr)
        dbg_printf("LogOpen: open 0x%08x>%s<\n", flags, file);
    else
        dbg_printf("LogOpen: open 0x%08x\n", flags);
    if (log_init != 0) {
        report_already_open(file, flags);
        return 0;
    }
    if (file != nullptr)
        zel::replace_string(logFile, zel_strdup(file));
    if ((flags & LOG_OPEN_STDOUT) != 0)
        logStdout = 1;
    if ((flags & LOG_OPEN_STDERR) != 0)
        logStderr = 1;
    if (file != nullptr)
        open_log_file(file, flags);
    pthread_mutexattr_init(&logMutexAttr);
    pthread_mutex_init(&logMutex, &logMutexAttr);
    log_init = 1;
    check_standard_streams();
    each_output([version](std::FILE *stream) { print_head(stream, version); });
    return 0;
}

int LogClose()
{
    if (log_init == 0)
        return 0;
    each_output(print_end);
    if (logFd != nullptr) {
        std::fputs(end_marker.data(), logFd);
        std::fclose(logFd);
    }
    zel::replace_string(logFile, nullptr);
    log_init = 0;
    logFd = nullptr;
    logStdout = 0;
    logStderr = 0;
    return 0;
}

void LogSpeed(int kind, const char *text)
{
    if (log_init == 0)
        return;
    const bool known = kind >= 0 && static_cast<std::size_t>(kind) < speed_words.size();
    const char *word = known ? speed_words[static_cast<std::size_t>(kind)] : "NONE";
    const zel::log_lock lock;
    each_output([word, text](std::FILE *stream) {
        std::fprintf(stream, "%s%lu \"%s\"\n", word, 0UL, text == nullptr ? " " : text);
    });
}

int LogWrite(const void *data, std::size_t size, std::size_t count)
{
    each_output([data, size, count](std::FILE *stream) {
        std::fwrite(data, size, count, stream);
        std::fflush(stream);
    });
    return 1;
}

int LogPrintData(int level, const unsigned char *data, int length)
{
    constexpr int line_limit = 55;
    std::array<char, line_limit> line{};
    while (length > 0) {
        length -= hex_dump_byte_line(line.data(), line_limit, &data, length);
        LogPrint(level, "%s\n", line.data());
    }
    return 0;
}

int LogCheckCrash(const char *file)
{
    const off_t size = size_of_log(file);
    if (size < 0)
        return 0;
    const int fd = zel_open(file, O_RDWR | O_CLOEXEC, 0);
    if (fd < 0) {
        dbg_printf("LogCheckCrash: exit(3), unable to open %s errno(%d) >%s<\n", file, errno,
                   std::strerror(errno));
        return 0;
    }
    const int result = check_end(fd, size, file);
    close(fd);
    return result;
}

std::uint32_t LogSetFlags(int bits) { return log_flags |= static_cast<std::uint32_t>(bits); }

std::uint32_t LogClrFlags(int bits) { return log_flags &= ~static_cast<std::uint32_t>(bits); }

std::uint32_t LogGetFlags() { return log_flags; }

const char *LogGetFile() { return logFile; }

std::FILE *LogGetFd() { return logFd; }

zel_log_t *zel_log_open(const char *path, const char *version, unsigned flags)
{
    if (path == nullptr)
        return nullptr;
    zel_log_guard log(static_cast<zel_log_t *>(std::calloc(1, sizeof(zel_log_t))));
    if (log == nullptr)
        return nullptr;
    log->stream = open_new(path);
    if (log->stream == nullptr)
        return nullptr;
    log->flags = flags;
    log->path = zel_strdup(path);
    if ((flags & ZEL_LOG_HEADER) != 0)
        print_head(log->stream, version);
    return log.release();
}

void zel_log_print(zel_log_t *log, const char *format, ...)
{
    if (log == nullptr)
        return;
    if ((log->flags & ZEL_LOG_TIME) != 0) {
        fprint_time(log->stream);
        std::fputc(' ', log->stream);
    }
    if ((log->flags & ZEL_LOG_THREAD) != 0)
        zel::fprint_thread(log->stream);
    std::va_list args;
    va_start(args, format);
    std::vfprintf(log->stream, format, args);
    va_end(args);
    std::fflush(log->stream);
}

void zel_log_puts(zel_log_t *log, const char *text)
{
    if (log == nullptr)
        return;
    if ((log->flags & ZEL_LOG_THREAD) != 0)
        zel::fprint_thread(log->stream);
    std::fputs(text == nullptr ? "" : text, log->stream);
    std::fflush(log->stream);
}

void zel_log_close(zel_log_t *log)
{
    if (log == nullptr)
        return;
    if (log->stream != nullptr) {
        std::fflush(log->stream);
        std::fclose(log->stream);
    }
    std::free(log->path);
    std::free(log);
}

const char *zel_log_get_file(const zel_log_t *log) { return log == nullptr ? nullptr : log->path; }
