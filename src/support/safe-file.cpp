#include "support/safe-file.h"

#include "support/held-file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/random.h>
#include <unistd.h>
#include <utility>

namespace {

using std::chrono::steady_clock;

// While it lives, a write beyond the user's limit on the size of files fails, like one on a full
// disk, instead of ending the process.
class no_size_signal {
public:
    no_size_signal() : before_(std::signal(SIGXFSZ, SIG_IGN)) {}
    ~no_size_signal() { std::signal(SIGXFSZ, before_); }
    no_size_signal(const no_size_signal &) = delete;
    no_size_signal &operator=(const no_size_signal &) = delete;

private:
    void (*before_)(int);
};

// Whether the open file stood at the place until another file replaced it: the system still knows
// the last name of the open file.
bool was_at(int fd, const char *place)
{
    std::error_code error;
    const std::filesystem::path path(place);
    const auto folder = std::filesystem::canonical(
        path.has_parent_path() ? path.parent_path() : std::filesystem::path("."), error);
    if (error)
        return false;
    const auto name = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd), error);
    return !error && name.native() == (folder / path.filename()).native() + " (deleted)";
}

// Returns what every name beside the path begins with.
std::string start_beside(const std::string &path)
{
    constexpr std::size_t longest_name = 200;     // room for more letters in every file system
    const std::size_t name = path.rfind('/') + 1; // 0 without a folder
    return path.substr(0, name + std::min(path.size() - name, longest_name)) + ".";
}

// Returns a new name in the path's folder. It need not be secret, since the file is created
// exclusively.
std::string name_beside(const std::string &path)
{
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::string beside = start_beside(path);
    std::array<unsigned char, 8> random{};
    // Early after the start the system may have no random bytes. The clock will do: a name that is
    // taken is tried again with another.
    if (getrandom(random.data(), random.size(), GRND_NONBLOCK) < 0)
        random[0] = static_cast<unsigned char>(steady_clock::now().time_since_epoch().count());
    for (const unsigned char byte : random)
        beside += letters[byte % letters.size()];
    return beside;
}

// Whether the error says that nobody can put another file there, because of the folder or of what
// the place is.
bool is_refused(int error)
{
    return error == EACCES || error == EPERM || error == EROFS || error == EBUSY;
}

// Others may read the file only once it has the old one's mode.
mode_t mode_at_first(const zel::target_file &old) { return old.is_file() ? 0600 : 0666; }

} // namespace

namespace zel {

safe_file::~safe_file() { drop(); }

int safe_file::take(int fd, std::string path, const target_file &old)
{
    if (fd < 0)
        return error_ = errno;
    struct stat status {};
    if (fstat(fd, &status) != 0) { // without its number nobody could tell later whose file it is
        error_ = errno;
        unlink(path.c_str());
        close(fd);
        return error_;
    }
    fd_ = fd;
    path_ = std::move(path);
    id_ = id_of(status);
    take_attributes(fd, old);
    return error_ = 0;
}

int safe_file::create(const char *path, const target_file &old)
{
    return take(create_held(path, mode_at_first(old)), path, old);
}

int safe_file::create_beside(const target_file &old)
{
    constexpr int most_tries = 100;
    std::string path;
    int fd = -1;
    for (int tries = 0; tries < most_tries && fd < 0 && (tries == 0 || errno == EEXIST); ++tries) {
        path = name_beside(old.path);
        fd = open_fresh(path.c_str(), mode_at_first(old));
    }
    // Nobody else aims at a random name: rename_to need not look for another file under it.
    is_own_name_ = true;
    return take(fd, std::move(path), old);
}

int safe_file::create_output(const target_file &old, handle how)
{
    if (const int error = write_obstacle(old))
        return error_ = error;
    writes_into_ = old.is_file();
    std::string path = start_beside(old.path) + "tmp";
    // A file without a handle has no lock either, so it does not take the name that all share.
    const int fd =
        how == handle::rests ? -1 : create_held(path.c_str(), mode_at_first(old), wait_for::nobody);
    int error = fd >= 0 ? take(fd, std::move(path), old) : create_beside(old);
    // Where no new file can be made, put() writes into the old one.
    if (writes_into_ && is_refused(error))
        error = error_ = 0;
    return error;
}

int safe_file::open_again()
{
    if (fd_ >= 0)
        return 0;
    fd_ = open_plain(path_.c_str(), O_RDWR | O_APPEND);
    if (fd_ < 0)
        return errno;
    // While no handle was open, another file may have taken the name.
    struct stat status {};
    if (fstat(fd_, &status) != 0)
        return errno;
    return id_of(status) == id_ ? 0 : ESTALE;
}

int safe_file::append(std::string_view text)
{
    // No file beside the place: the text waits in memory until put() writes into the old file.
    if (path_.empty() && writes_into_) {
        held_ += text;
        return error_;
    }
    if (error_ == 0)
        error_ = open_again();
    if (error_ == 0) {
        const no_size_signal ignored;
        error_ = write_all(fd_, text);
    }
    return error_;
}

void safe_file::rest()
{
    // Some file systems report a full disk only here.
    if (fd_ >= 0 && close(fd_) != 0 && error_ == 0)
        error_ = errno;
    fd_ = -1;
}

int safe_file::finish(synced how)
{
    how_ = how;
    if (error_ == 0 && how == synced::yes)
        error_ = open_again();
    if (error_ == 0 && how == synced::yes)
        error_ = sync_file(fd_);
    return error_;
}

int safe_file::copy_from(int fd)
{
    std::array<char, 64 * 1024> block;
    off_t at = 0;
    while (error_ == 0) {
        const ssize_t size = pread(fd, block.data(), block.size(), at);
        if (size == 0)
            return 0;
        if (size > 0) {
            append({block.data(), static_cast<std::size_t>(size)});
            at += size;
        } else if (errno != EINTR) {
            error_ = errno;
        }
    }
    return error_;
}

int safe_file::copy_near(const target_file &old)
{
    // A renaming cannot cross file systems, so the text is copied to the target's first.
    near_ = std::make_unique<safe_file>();
    int error = near_->create_beside(old);
    if (error == 0)
        error = near_->copy_from(fd_);
    if (error == 0)
        error = near_->finish(synced::yes);
    near_->rest();
    if (error == 0)
        error = near_->error_;
    if (error != 0)
        near_.reset();
    return error;
}

int safe_file::approach(const target_file &old)
{
    struct stat folder {};
    const std::string name = folder_part(old.path);
    // If the folder cannot be examined, no copy is made: the renaming will report the cause.
    if (near_ != nullptr || stat(name.empty() ? "." : name.c_str(), &folder) != 0 ||
        folder.st_dev == id_.device)
        return 0;
    return copy_near(old);
}

int safe_file::rename_to(const char *place)
{
    // Somebody has taken the name: a stranger's file must not get into the place.
    if (is_lost(path_.c_str(), id_))
        return ESTALE;
    if (std::rename(path_.c_str(), place) != 0) {
        const int error = errno;
        return is_lost(path_.c_str(), id_) ? ESTALE : error;
    }
    // Between the look and the renaming another file may have got a name that others share. And
    // after the renaming another save may already have replaced this file.
    return is_own_name_ || !is_lost(place, id_) || was_at(fd_, place) ? 0 : ESTALE;
}

int safe_file::write_into(const std::string &place)
{
    struct stat status {};
    safe_file into;
    into.fd_ = open_plain(place.c_str(), O_WRONLY);
    if (into.fd_ < 0 || fstat(into.fd_, &status) != 0)
        return errno;
    if (status.st_nlink != 1)
        return EACCES; // a second name may be a trap: that file would change, too
    // Empties the file first, so that whoever reads it meanwhile never sees new text run into old.
    if (ftruncate(into.fd_, 0) != 0)
        return errno;
    // Either all of the text waited in memory, or it stands in the file that cannot be moved.
    into.append(held_);
    if (!path_.empty() && (into.error_ = open_again()) == 0)
        into.copy_from(fd_);
    into.rest();
    drop();
    return into.error_;
}

int safe_file::put(const target_file &old, const std::function<bool()> &may)
{
    if (path_.empty() && writes_into_)
        return write_into(old.path);
    if (near_ == nullptr) {
        int error = rename_to(old.path.c_str());
        if (writes_into_ && is_refused(error))
            return write_into(old.path);
        if (error == 0) {
            keep();
            // The new file is in its place, whether or not its folder can be synced.
            if (how_ == synced::yes)
                sync_folder_of(old.path.c_str());
            return 0;
        }
        // Two mounts of one file system are two for renaming. And if the name was taken away, the
        // open file still has the text.
        if ((error != EXDEV && error != ESTALE) || fd_ < 0)
            return error;
        error = copy_near(old);
        if (error == 0 && may && !may())
            error = ECANCELED;
        if (error != 0)
            return error;
    }
    const int error = near_->put(old);
    if (error == 0) {
        // Callers ask for the id of the file that is in the place.
        const file_id id = near_->id_;
        drop();
        id_ = id;
    }
    return error;
}

void safe_file::keep()
{
    path_.clear();
    drop();
}

void safe_file::drop()
{
    near_.reset();
    // Another process may have taken the name: then the file is not this one's to remove.
    if (!path_.empty() && is_named(path_.c_str(), id_))
        unlink(path_.c_str());
    path_.clear();
    if (fd_ >= 0)
        close(fd_); // and with it the lock
    fd_ = -1;
}

int replace_file(const char *path, std::string_view text)
{
    const target_file old = find_target(path, links::follow);
    if (old.refusal != 0)
        return old.refusal;
    safe_file file;
    int error = file.create_beside(old);
    if (error == 0)
        error = file.append(text);
    if (error == 0)
        error = file.finish(synced::yes);
    return error == 0 ? file.put(old) : error;
}

} // namespace zel
