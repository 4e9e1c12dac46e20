#include "recovery/recovery-file.h"

#include "recovery/place.h"
#include "source/last-line.h"
#include "source/quote.h"
#include "support/file-call.h"
#include "support/log-print.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <glib.h>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace {

// A recovery file is a source, so that every tool reads it, with a comment on top that tells which
// source it belongs to.
constexpr std::string_view ending = ".lang-src";
constexpr std::string_view declined_ending = ".declined.lang-src";
constexpr const char *first_line =
    "/* Recovery file of the language editor: changes that were not saved.\n";

// The line of the head that names the source.
std::string source_line(const std::string &absolute)
{
    std::string quoted = "source  \"";
    zel::append_escaped(quoted, absolute.c_str());
    std::string line;
    // A path may hold the end of a comment: it is escaped, or the rest of the head would be read as
    // text.
    zel::append_comment(line, quoted);
    return line + "\"\n";
}

std::string head_of(const std::string &absolute, const zel::file_state &loaded, std::int64_t now)
{
    const char *hash = loaded.hash.empty() ? "0" : loaded.hash.c_str(); // no text is known
    std::string head = first_line + source_line(absolute);
    zel::append_format(head, "size    %lld\ntime    %lld.%09lld\nhash    %s\nwritten %lld\n*/\n",
                       static_cast<long long>(loaded.size), static_cast<long long>(loaded.seconds),
                       static_cast<long long>(loaded.nanoseconds), hash,
                       static_cast<long long>(now));
    return head;
}

// Reads the beginning of the file: enough for any head.
std::string beginning_of(const std::string &path)
{
    std::string text(64 * 1024, '\0');
    const int fd = zel::open_plain(path.c_str(), O_RDONLY);
    const ssize_t size = fd < 0 ? 0 : pread(fd, text.data(), text.size(), 0);
    text.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    if (fd >= 0)
        zel::close_quietly(fd);
    return text;
}

// Reads the head; false unless it is that of a recovery file of the source.
bool read_head(const std::string &absolute, zel::recovery_file &file)
{
    const std::string text = beginning_of(file.path);
    const std::string start = first_line + source_line(absolute);
    std::array<char, 65> hash{};
    long long size = 0;
    long long seconds = 0;
    long long nanoseconds = 0;
    long long written = 0;
    if (!text.starts_with(start) ||
        std::sscanf(text.c_str() + start.size(),
                    "size %lld time %lld.%9lld hash %64[0-9a-f] written %lld", &size, &seconds,
                    &nanoseconds, hash.data(), &written) != 5)
        return false;
    file.source = {true, size, seconds, nanoseconds, 0, hash.data()};
    file.written = written;
    return true;
}

// Whether the file has its last line. One that was cut off is not offered: it would bring back only
// a part of the text.
bool is_whole(const std::string &absolute, const std::string &path)
{
    std::string line;
    zel::append_last_line(line, absolute.c_str());
    const std::string name = zel::name_in_last_line(path.c_str());
    std::string found;
    zel::append_last_line(found, name.c_str());
    return !name.empty() && line == found;
}

// A place for a file that nobody else can read, from the first moment on.
zel::target_file private_place(const std::string &path)
{
    zel::target_file place = zel::find_target(path.c_str(), zel::links::replace);
    if (!place.is_file()) {
        place.status.st_nlink = 1;
        place.status.st_mode = S_IFREG | 0600;
        place.status.st_uid = geteuid();
        place.status.st_gid = getegid();
    }
    return place;
}

// The process that wrote the file, from its name; 0 when none stands there.
long process_of(const std::string &name, std::size_t behind)
{
    const std::size_t at = name.find('-', behind);
    return at == std::string::npos ? 0 : std::strtol(name.c_str() + at + 1, nullptr, 10);
}

// Whether an editor that is still alive wrote the file and will write it again.
bool is_in_use(long process)
{
    std::error_code error;
    if (process <= 0 || process == getpid())
        return false;
    // Numbers of processes are used again: only one that runs this very program counts.
    const auto theirs =
        std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", error);
    return !error && theirs == std::filesystem::read_symlink("/proc/self/exe", error);
}

// Removes a half-written file of a session that was killed, after a day: a younger one may still be
// at work.
void remove_leftover(const std::filesystem::path &path)
{
    constexpr std::int64_t day = 24 * 60 * 60;
    struct stat status {};
    if (lstat(path.c_str(), &status) == 0 && status.st_mtime < std::time(nullptr) - day)
        unlink(path.c_str());
}

} // namespace

namespace zel {

std::string recovery_path(const std::string &folder, const std::string &absolute, std::int64_t now)
{
    // Two windows of one process, or two files within a second, get two names.
    static int count;
    return folder + "/" + name_of_source(absolute) + "." + std::to_string(now) + "-" +
           std::to_string(getpid()) + "-" + std::to_string(++count) + std::string(ending);
}

std::vector<recovery_file> find_recovery_files(const std::string &folder,
                                               const std::string &absolute)
{
    std::vector<recovery_file> found;
    std::error_code error;
    const std::string begin = name_of_source(absolute) + ".";
    for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end;
         at.increment(error)) {
        const std::string name = at->path().filename().string();
        recovery_file file;
        file.path = at->path().string();
        file.declined = name.ends_with(declined_ending);
        if (!name.starts_with(begin) || name == begin + "lock")
            continue;
        // A name with something behind its ending is that of a file half written.
        if (!name.ends_with(ending))
            remove_leftover(at->path());
        if (!name.ends_with(ending) || is_in_use(process_of(name, begin.size())) ||
            !read_head(absolute, file))
            continue;
        if (is_whole(absolute, file.path))
            found.push_back(std::move(file));
        else
            LogPrint(1, "recovery: ERROR %s lacks its end\n", file.path.c_str());
    }
    // What the user has declined once is offered last, the newest first.
    std::sort(found.begin(), found.end(), [](const recovery_file &a, const recovery_file &b) {
        return a.declined != b.declined ? b.declined : a.written > b.written;
    });
    return found;
}

int decline(const recovery_file &file)
{
    if (file.declined)
        return unlink(file.path.c_str()) == 0 ? 0 : errno;
    const std::string kept =
        file.path.substr(0, file.path.size() - ending.size()) + std::string(declined_ending);
    if (std::rename(file.path.c_str(), kept.c_str()) != 0)
        return errno;
    return 0;
}

void recovery_writer::begin(const std::string &path, const std::string &absolute,
                            const file_state &loaded, std::int64_t now, const LangSource *source,
                            std::function<bool(const lang_entry_t *)> leaves_out)
{
    abandon();
    place_ = private_place(path);
    name_ = absolute;
    file_ = std::make_unique<safe_file>();
    text_ = std::make_unique<source_text>(
        source, text_how{name_.c_str(), nullptr, nullptr, false, std::move(leaves_out)});
    error_ = place_.refusal != 0 ? place_.refusal : file_->create_beside(place_);
    out_ = head_of(absolute, loaded, now);
}

bool recovery_writer::step(std::size_t items)
{
    if (text_ == nullptr)
        return false;
    // The text of a large source is never in memory as a whole.
    const bool more = error_ == 0 && text_->append(out_, items);
    if (error_ == 0)
        error_ = file_->append(out_);
    out_.clear();
    if (more && error_ == 0)
        return true;
    text_.reset();
    if (error_ != 0) {
        file_.reset();
        return false;
    }
    // Set before the thread starts, which may be done before the next line here.
    g_atomic_int_set(&working_, 1);
    // Syncing may take seconds on a slow disk, and somebody is typing.
    thread_ = g_thread_try_new("recovery", work, this, nullptr);
    // Without a thread the window waits, which is better than no recovery file.
    if (thread_ == nullptr)
        put_away();
    return false;
}

// Touches nothing but the file, since it runs in the thread: the caller works on the source
// meanwhile.
void recovery_writer::put_away()
{
    error_ = file_->finish(synced::yes);
    if (error_ == 0)
        error_ = file_->put(place_);
    file_.reset();
    g_atomic_int_set(&working_, 0);
}

void *recovery_writer::work(void *writer)
{
    static_cast<recovery_writer *>(writer)->put_away();
    return nullptr;
}

bool recovery_writer::is_busy() const { return g_atomic_int_get(&working_) != 0; }

void recovery_writer::join()
{
    if (thread_ != nullptr)
        g_thread_join(thread_);
    thread_ = nullptr;
}

// Called when the process ends, also from a signal. With alone set the other threads are gone:
// waiting for one would never end.
int recovery_writer::finish(bool alone)
{
    if (!alone)
        join();
    if (text_ == nullptr)
        return error_;
    constexpr std::size_t some = 1000;
    bool more = error_ == 0;
    while (more) {
        more = text_->append(out_, some);
        error_ = file_->append(out_);
        out_.clear();
        more = more && error_ == 0;
    }
    text_.reset();
    if (error_ == 0)
        put_away();
    file_.reset();
    return error_;
}

void recovery_writer::abandon()
{
    join();
    text_.reset();
    file_.reset();
    out_.clear();
    error_ = 0;
}

} // namespace zel
