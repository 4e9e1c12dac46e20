#include "support/log.h"

#include "support/file-call.h"
#include "support/string-copy.h"
#include "support/string.h"
#include "support/system-name.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void print_stamp_line(std::FILE *stream)
{
    fprint_date(stream);
    std::fputc(' ', stream);
    fprint_time(stream);
    std::fputc('\n', stream);
}

void print_end(std::FILE *stream)
{
    std::fputs("End logging ", stream);
    print_stamp_line(stream);
}

// Whether somebody else's link on the way leads the log elsewhere: it is written where its path
// says, or not at all.
bool leads_elsewhere(const char *file)
{
    // The errno for the debug message that names this cause, too.
    errno = ELOOP;
    return zel::crosses_foreign_link(file);
}

// Renames the log of the last run, or a link of that name, to ".old"; where there is none, an older
// ".old" goes all the same. What is no log stays where it is. False when the folder does not give
// the log up.
bool rotate(const char *file)
{
    struct stat status {};
    const bool is_there = lstat(file, &status) == 0;
    const bool is_missing = !is_there && errno == ENOENT && *file != '\0';
    const bool is_log = is_there && (S_ISREG(status.st_mode) || S_ISLNK(status.st_mode));
    if (!is_log && !is_missing)
        return true;
    const zel::string_guard old(zel_strdup_printf("%s.old", file));
    if (!old)
        return true;
    zel_unlink(old.get());
    return is_missing || zel_rename(file, old.get()) == 0 || unlink(file) == 0;
}

// Opens the log of the last run and empties it. A file with another name, under which somebody may
// want its text, is refused. -1 with errno.
int open_emptied(const char *file)
{
    const int fd = zel::open_plain(file, O_RDWR);
    if (fd < 0)
        return -1;
    struct stat status {};
    errno = EMLINK;
    if (fstat(fd, &status) == 0 && status.st_nlink == 1 && ftruncate(fd, 0) == 0)
        return fd;
    zel::close_quietly(fd);
    return -1;
}

} // namespace

namespace zel {

void print_log_head(std::FILE *stream, const char *version)
{
    std::fprintf(stream, "Start logging Version %s  ", version == nullptr ? "" : version);
    print_stamp_line(stream);
    print_os(stream);
    std::fflush(stream);
}

std::FILE *open_new_log(const char *file)
{
    if (leads_elsewhere(file))
        return nullptr;
    // A new file is not made if something has taken the name meanwhile: it is not this program's.
    const int fd = rotate(file) ? zel::open_fresh(file, 0666) : open_emptied(file);
    return zel::stream_of(fd, "w+b");
}

} // namespace zel

namespace {

std::FILE *open_for_appending(const char *file)
{
    if (leads_elsewhere(file))
        return nullptr;
    // In two steps: open_plain opens only a regular file, and creating follows no link.
    const int flags = O_RDWR | O_APPEND;
    int fd = zel::open_plain(file, flags);
    if (fd < 0 && errno == ENOENT)
        fd = open(file, flags | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    return zel::stream_of(fd, "a+");
}

// A log that cannot be opened stops no program: only the debug print tells.
void open_log_file(const char *file, unsigned flags)
{
    if ((flags & LOG_OPEN_NEW) != 0) {
        logFd = zel::open_new_log(file);
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
    zel::each_log_output([version](std::FILE *stream) { zel::print_log_head(stream, version); });
    return 0;
}

int LogClose()
{
    if (log_init == 0)
        return 0;
    zel::each_log_output(print_end);
    if (logFd != nullptr) {
        // LogCheckCrash looks for this at the end of the file, and takes its lack for a crash.
        std::fputs(zel::log_end_marker.data(), logFd);
        std::fclose(logFd);
    }
    zel::replace_string(logFile, nullptr);
    log_init = 0;
    logFd = nullptr;
    logStdout = 0;
    logStderr = 0;
    return 0;
}

std::FILE *LogGetFd() { return logFd; }
