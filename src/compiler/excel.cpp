#include "compiler/excel.h"

#include "support/file-call.h"
#include "support/misc-error.h"
#include "support/safe-file.h"
#include "support/text.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t KEY_SIZE = 1024; // with the closing NUL

void append_escaped(std::string &out, const char *text)
{
    for (const char *at = text; *at != '\0';) {
        const std::size_t plain = std::strcspn(at, "\"\n\r\t");
        out.append(at, plain);
        at += plain;
        if (*at == '"')
            out += "\"\"";
        else if (*at == '\t')
            out += ' ';
        else if (*at != '\0')
            // An escape character, a blank and a colon are a line's end: deliberate, byte for byte.
            out += "\x1b :";
        at += *at != '\0' ? 1 : 0;
    }
}

void append_cell(std::string &out, const char *key)
{
    out += '"';
    append_escaped(out, key);
    out += "\"\t";
}

void append_record(std::string &out, const edit_t *group, const item_t *item)
{
    std::array<char, KEY_SIZE> key;
    // Both columns carry the key, and a record ends with CR alone: deliberate, byte for byte. A key
    // that does not fit is cut.
    if (std::snprintf(key.data(), key.size(), "%s.%s", zel::or_empty(group->name),
                      zel::or_empty(item->name)) < 0)
        key[0] = '\0';
    append_cell(out, key.data());
    append_cell(out, key.data());
    out += '\r';
}

// A terminal, another device, a pipe.
bool is_stream(const struct stat &status)
{
    return S_ISCHR(status.st_mode) || S_ISFIFO(status.st_mode);
}

// Opens a pipe and waits some seconds for somebody to read it: a plain open would wait for ever.
// Returns -1 with errno.
int open_stream(const char *path)
{
    constexpr int tries = 50;
    constexpr timespec between{0, 100'000'000};
    int fd = -1;
    for (int n = 0; n < tries; ++n) {
        fd = open(path, O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        if (fd >= 0 || errno != ENXIO)
            break;
        nanosleep(&between, nullptr);
    }
    // Only the opening must not block: write_all has to wait for a slow reader.
    if (fd >= 0)
        fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    return fd;
}

// Destination of the table. A regular file is written beside its place and moved there when it is
// whole; a terminal, another device or a pipe can only be written into.
class table_output {
public:
    ~table_output()
    {
        if (stream_ >= 0)
            close(stream_);
    }
    const char *open(const char *path);  // null when it can be written, else why not
    int write(std::string_view records); // 0 or errno

private:
    zel::target_file old_;
    zel::safe_file file_;
    int stream_ = -1;
};

const char *table_output::open(const char *path)
{
    old_ = zel::find_target(path, zel::links::follow);
    struct stat status {};
    // A pipe with a name may be somebody's trap, so the user must own it. A shell's pipe has no
    // name and may belong to anybody.
    const auto is_trusted = [&] {
        return !S_ISFIFO(status.st_mode) || !old_.is_there || status.st_uid == geteuid();
    };
    if (old_.refusal != EACCES && stat(path, &status) == 0 && is_stream(status) && is_trusted()) {
        stream_ = open_stream(path);
        return stream_ >= 0     ? nullptr
               : errno == ENXIO ? "nobody reads the pipe"
                                : std::strerror(errno);
    }
    if (old_.refusal != 0)
        return zel::refusal_text(old_.refusal);
    const int error = file_.create_output(old_, zel::handle::kept);
    return error == 0 ? nullptr : std::strerror(error);
}

int table_output::write(std::string_view records)
{
    if (stream_ >= 0)
        return zel::write_all(stream_, records);
    file_.append(records);
    const int error = file_.finish(zel::synced::no);
    return error == 0 ? file_.put(old_) : error;
}

std::string records_of(const LangSource *source)
{
    std::string out;
    for (const edit_t *group : zel::each<edit_t>(source == nullptr ? nullptr : source->groups))
        for (const item_t *item : zel::each<item_t>(group->items))
            append_record(out, group, item);
    return out;
}

} // namespace

int write_str(std::FILE *stream, const char *text)
{
    std::string out;
    append_escaped(out, zel::or_empty(text));
    std::fwrite(out.data(), 1, out.size(), stream);
    return 0;
}

int to_excel_unicode_text(LangSource *source, const char *path, const char * /*lang*/,
                          const char * /*comment_lang*/)
{
    // The lines on standard output are an interface: scripts look for them. The causes go to
    // standard error beside them.
    std::puts("to_excel_unicode_text: entry");
    path = zel::or_empty(path);
    table_output output;
    if (const char *cause = output.open(path)) {
        std::printf("ERROR open excel unicode text file file ->%s<-\n", path);
        std::fprintf(stderr, "lang: %s: %s\n", path, cause);
        return 1;
    }
    const int error = output.write(records_of(source));
    if (error != 0) {
        std::printf("ERROR write excel unicode text file ->%s<-\n", path);
        _zel_error("excel", __LINE__, "to_excel_unicode_text: the file is not complete");
        std::fprintf(stderr, "lang: %s: %s\n", path, std::strerror(error));
    }
    std::puts("to_excel_unicode_text: exit");
    return error == 0 ? 0 : 1;
}
