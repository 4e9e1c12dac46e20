#include "compiler/excel.h"

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
#include <utility>

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
    // A longer key is cut.
    if (std::snprintf(key.data(), key.size(), "%s.%s", zel::or_empty(group->name),
                      zel::or_empty(item->name)) < 0)
        key[0] = '\0';
    append_cell(out, key.data());
    append_cell(out, key.data());
    out += '\r';
}

// Where the table goes: a file, put in place when it is whole, or what can only be written into.
class table_output {
public:
    ~table_output()
    {
        if (stream_ != nullptr)
            std::fclose(stream_);
    }
    // Null when it can be written, else why not.
    const char *open(const char *path);
    void append(std::string_view text)
    {
        if (stream_ == nullptr)
            file_.append(text);
        else if (error_ == 0 && std::fwrite(text.data(), 1, text.size(), stream_) < text.size())
            error_ = errno;
    }
    int finish(); // 0 or errno

private:
    int open_file();
    int open_stream(const char *path, int flags);

    zel::target_file old_;
    zel::safe_file file_;
    std::FILE *stream_ = nullptr;
    int error_ = 0;
};

// A terminal, another device, a pipe.
bool is_stream(const struct stat &status)
{
    return S_ISCHR(status.st_mode) || S_ISFIFO(status.st_mode);
}

// A pipe gets some seconds to find its reader.
int open_with_reader(const char *path, int flags)
{
    constexpr int tries = 50;
    constexpr timespec between{0, 100'000'000};
    int fd = -1;
    for (int n = 0; n < tries; ++n) {
        fd = open(path, O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | flags);
        if (fd >= 0 || errno != ENXIO)
            break;
        nanosleep(&between, nullptr);
    }
    return fd;
}

int table_output::open_stream(const char *path, int flags)
{
    const int fd = open_with_reader(path, flags);
    if (fd < 0)
        return errno;
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    stream_ = fdopen(fd, "w");
    if (stream_ != nullptr)
        return 0;
    const int error = errno;
    close(fd);
    return error;
}

int table_output::open_file()
{
    int error = zel::write_obstacle(old_);
    if (error != 0)
        return error;
    error = file_.create_beside(old_);
    // Where the folder takes no other file, what is there may still be written.
    return error != 0 && old_.is_file() ? open_stream(old_.path.c_str(), O_TRUNC | O_NOFOLLOW)
                                        : error;
}

const char *table_output::open(const char *path)
{
    old_ = zel::find_target(path, zel::links::follow);
    struct stat status {};
    // A pipe with a name may be somebody's trap; one that a shell made, for whomever, has none.
    const auto is_trusted = [&] {
        return !S_ISFIFO(status.st_mode) || !old_.is_there || status.st_uid == geteuid();
    };
    const bool streams =
        old_.refusal != EACCES && stat(path, &status) == 0 && is_stream(status) && is_trusted();
    if (!streams && old_.refusal != 0)
        return zel::refusal_text(old_.refusal);
    const int error = streams ? open_stream(path, 0) : open_file();
    if (error == ENXIO)
        return "nobody reads the pipe";
    return error == 0 ? nullptr : std::strerror(error);
}

int table_output::finish()
{
    if (stream_ == nullptr) {
        const int error = file_.finish(zel::synced::no);
        return error == 0 ? file_.put(old_) : error;
    }
    if (std::fclose(std::exchange(stream_, nullptr)) != 0 && error_ == 0)
        error_ = errno;
    return error_;
}

void write_records(table_output &output, const LangSource *source)
{
    constexpr std::size_t worth_a_write = 256 * 1024;
    std::string out;
    for (const edit_t *group : zel::each<edit_t>(source->groups)) {
        for (const item_t *item : zel::each<item_t>(group->items)) {
            append_record(out, group, item);
            if (out.size() < worth_a_write)
                continue;
            output.append(out);
            out.clear();
        }
    }
    output.append(out);
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
    std::puts("to_excel_unicode_text: entry");
    table_output output;
    if (const char *cause = output.open(path)) {
        std::printf("ERROR open excel unicode text file file ->%s<-\n", path);
        std::fprintf(stderr, "lang: %s: %s\n", path, cause);
        return 1;
    }
    write_records(output, source);
    const int error = output.finish();
    if (error != 0) {
        _zel_error("excel", __LINE__, "to_excel_unicode_text: the file is not complete");
        std::fprintf(stderr, "lang: %s: %s\n", path, std::strerror(error));
    }
    std::puts("to_excel_unicode_text: exit");
    return error == 0 ? 0 : 1;
}
