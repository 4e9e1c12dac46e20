#include "family/log.h"

#include "family/hex_dump.h"
#include "support/file-call.h"
#include "support/string-copy.h"

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

// A file shorter than this holds no log, whole or not.
constexpr off_t least_log_size = 2 * static_cast<off_t>(zel::log_end_marker.size());

// Words of the speed records, by kind.
constexpr std::array speed_words = {"SPEED_ENTRY ",     "SPEED_EXIT ", "SPEED_CYCLE_START ",
                                    "SPEED_CYCLE_END ", "SPEED_URL ",  "SPEED_ERROR "};

// Returns the size of a regular file that may hold a whole log; -1 after telling why not.
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

// Returns 1 if the open file does not end with the marker, else 0.
int check_end(int fd, off_t size, const char *file)
{
    const auto length = static_cast<off_t>(zel::log_end_marker.size());
    // An error is no sign of a crash, so it answers 0.
    if (lseek(fd, size - length, SEEK_SET) < 0) {
        dbg_printf("LogCheckCrash: exit(4), unable to lseek %s errno(%d) >%s<\n", file, errno,
                   std::strerror(errno));
        return 0;
    }
    std::array<char, zel::log_end_marker.size()> end{};
    if (read(fd, end.data(), end.size()) != static_cast<ssize_t>(end.size())) {
        dbg_printf("LogCheckCrash: exit(5), unable to read %s errno(%d) >%s<\n", file, errno,
                   std::strerror(errno));
        return 0;
    }
    if (std::string_view(end.data(), end.size()) == zel::log_end_marker)
        return 0;
    // The spelling is deliberate: the text is an interface.
    dbg_printf("LogCheckCrash: exit(6), eof does't match\n");
    return 1;
}

} // namespace

void LogSpeed(int kind, const char *text)
{
    if (log_init == 0)
        return;
    const bool known = kind >= 0 && static_cast<std::size_t>(kind) < speed_words.size();
    const char *word = known ? speed_words[static_cast<std::size_t>(kind)] : "NONE";
    // Held over all outputs, so that no other line comes between.
    const zel::log_lock lock;
    zel::each_log_output([word, text](std::FILE *stream) {
        // The number is always 0; its place is kept for readers of the log.
        std::fprintf(stream, "%s%lu \"%s\"\n", word, 0UL, text == nullptr ? " " : text);
    });
}

// Flushed at once: after a crash the log has what was written.
int LogWrite(const void *data, std::size_t size, std::size_t count)
{
    zel::each_log_output([data, size, count](std::FILE *stream) {
        std::fwrite(data, size, count, stream);
        std::fflush(stream);
    });
    return 1;
}

int LogPrintData(int level, const unsigned char *data, int length)
{
    // A line of 16 bytes has 49 characters, and before each byte there must be room for five more.
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

zel_log_t *zel_log_open(const char *path, const char *version, unsigned flags)
{
    if (path == nullptr)
        return nullptr;
    zel_log_guard log(static_cast<zel_log_t *>(std::calloc(1, sizeof(zel_log_t))));
    if (log == nullptr)
        return nullptr;
    // As for the program's own log, the last one is kept as ".old".
    log->stream = zel::open_new_log(path);
    if (log->stream == nullptr)
        return nullptr;
    log->flags = flags;
    log->path = zel_strdup(path);
    if ((flags & ZEL_LOG_HEADER) != 0)
        zel::print_log_head(log->stream, version);
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
