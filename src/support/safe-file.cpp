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

// A full disk, or the user's limit on the size of files, is an error and no end.
class no_size_signal {
public:
    no_size_signal() : before_(std::signal(SIGXFSZ, SIG_IGN)) {}
    ~no_size_signal() { std::signal(SIGXFSZ, before_); }
    no_size_signal(const no_size_signal &) = delete;
    no_size_signal &operator=(const no_size_signal &) = delete;

private:
    void (*before_)(int);
};

// Whether the open file stood at the place until another one took it: the system still knows by
// which name it was reached last.
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

// A name in the folder of the path. It need not be secret, as an exclusive creation follows it.
std::string name_beside(const std::string &path)
{
    constexpr std::size_t longest_name = 200; // room for the letters in every file system
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    const std::size_t name = path.rfind('/') + 1; // 0 without a folder
    std::string beside = path.substr(0, name + std::min(path.size() - name, longest_name)) + ".";
    std::array<unsigned char, 8> random{};
    if (getrandom(random.data(), random.size(), GRND_NONBLOCK) < 0)
        random[0] = static_cast<unsigned char>(steady_clock::now().time_since_epoch().count());
    for (const unsigned char byte : random)
        beside += letters[byte % letters.size()];
    return beside;
}

// Readable by others only once it is clear that they may.
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
    is_own_name_ = true;
    return take(fd, std::move(path), old);
}

int safe_file::open_again()
{
    if (fd_ >= 0)
        return 0;
    fd_ = open_plain(path_.c_str(), O_RDWR | O_APPEND);
    if (fd_ < 0)
        return errno;
    struct stat status {};
    if (fstat(fd_, &status) != 0)
        return errno;
    return id_of(status) == id_ ? 0 : ESTALE;
}

int safe_file::append(std::string_view text)
{
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
    // A folder that cannot be looked at is none to copy to; the renaming will say why.
    if (near_ != nullptr || stat(name.empty() ? "." : name.c_str(), &folder) != 0 ||
        folder.st_dev == id_.device)
        return 0;
    return copy_near(old);
}

int safe_file::rename_to(const char *place)
{
    if (is_lost(path_.c_str(), id_))
        return ESTALE;
    if (std::rename(path_.c_str(), place) != 0) {
        const int error = errno;
        return is_lost(path_.c_str(), id_) ? ESTALE : error;
    }
    // Between the look and the renaming another file may have got a name that others use; and
    // between the renaming and now another save may have followed this one.
    return is_own_name_ || !is_lost(place, id_) || was_at(fd_, place) ? 0 : ESTALE;
}

int safe_file::put(const target_file &old)
{
    if (near_ == nullptr) {
        int error = rename_to(old.path.c_str());
        if (error == 0) {
            keep();
            if (how_ == synced::yes)
                sync_folder_of(old.path.c_str());
            return 0;
        }
        // Two views of one file system are two for renaming. And where the name was taken away, the
        // text was not.
        if ((error != EXDEV && error != ESTALE) || fd_ < 0)
            return error;
        error = copy_near(old);
        if (error != 0)
            return error;
    }
    const int error = near_->put(old);
    if (error == 0) {
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
