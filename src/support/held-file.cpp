#include "support/held-file.h"

#include "support/file-call.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace {

using std::chrono::steady_clock;

constexpr auto patience = std::chrono::seconds(8); // with one who does not move
constexpr auto most_patience = std::chrono::minutes(5);

// What a name that is taken turned out to be.
enum class taken { gone, held, stays };

// Whether nobody holds a lock on the file. Where locks are not to be had, nobody does.
bool lock(int fd) { return flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; }

taken remove_name(const char *path)
{
    return unlink(path) == 0 || errno == ENOENT ? taken::gone : taken::stays;
}

// Removes what bears the name, unless somebody is at work. Whoever removes a file holds its lock
// and has seen that it still bears the name, so that nobody removes what has just been made.
taken remove_leftover(const char *path)
{
    const int fd = zel::open_plain(path, O_RDONLY);
    if (fd < 0)
        return errno == ENOENT                     ? taken::gone
               : errno == ELOOP || errno == EINVAL ? remove_name(path)
               : errno == EACCES                   ? taken::held // by another user, maybe
                                                   : taken::stays;
    taken result = taken::held;
    if (lock(fd)) {
        struct stat open_one {};
        struct stat named {};
        if (fstat(fd, &open_one) != 0 || (lstat(path, &named) != 0 && errno != ENOENT))
            result = taken::stays; // nobody can tell whose it is
        else
            result = zel::id_of(named) == zel::id_of(open_one) ? remove_name(path) : taken::gone;
    }
    zel::close_quietly(fd);
    return result;
}

// Gives up a file that was just made. -1 with errno.
int unmake(int fd, const char *path)
{
    const int error = errno;
    unlink(path);
    close(fd);
    errno = error;
    return -1;
}

// The process that holds a lock on the file, as far as the system tells; else 0.
long holder_of(const struct stat &status)
{
    std::FILE *locks = std::fopen("/proc/locks", "re");
    long found = 0;
    char line[256];
    while (locks != nullptr && found == 0 && std::fgets(line, sizeof line, locks) != nullptr) {
        long process = 0;
        unsigned device[2];
        std::uintmax_t number = 0;
        if (std::sscanf(line, "%*s FLOCK %*s %*s %ld %x:%x:%" SCNuMAX, &process, &device[0],
                        &device[1], &number) == 4 &&
            makedev(device[0], device[1]) == status.st_dev && number == status.st_ino)
            found = std::max(process, 0L);
    }
    if (locks != nullptr)
        std::fclose(locks);
    return found;
}

// Waits for who holds a name, as long as somebody else does each time, or writes.
class waiting {
public:
    explicit waiting(const char *path) : path_(path) {}

    // A pause; false when waiting is no use any longer.
    bool go_on()
    {
        struct stat now {};
        const bool is_seen = lstat(path_, &now) == 0;
        if (!is_seen && errno == ENOENT)
            return true;
        if (is_seen && (zel::id_of(now) != zel::id_of(seen_) || !is_same(now.st_ctim))) {
            moved_ = steady_clock::now();
            seen_ = now;
        }
        usleep(pause_);
        pause_ = std::min<useconds_t>(pause_ * 2, 30'000);
        return steady_clock::now() - moved_ < patience;
    }
    bool has_been_long() const { return steady_clock::now() - begin_ > most_patience; }

    // After go_on has ended: takes the name from its holder.
    taken take() const
    {
        const auto seconds = static_cast<int>(patience.count());
        if (const long process = holder_of(seen_))
            std::fprintf(stderr, "lang: process %ld has held %s for %d seconds\n", process, path_,
                         seconds);
        else
            std::fprintf(stderr, "lang: another program has held %s for %d seconds\n", path_,
                         seconds);
        return zel::is_named(path_, zel::id_of(seen_)) ? remove_name(path_) : taken::gone;
    }

private:
    bool is_same(const timespec &time) const
    {
        return time.tv_sec == seen_.st_ctim.tv_sec && time.tv_nsec == seen_.st_ctim.tv_nsec;
    }

    const char *path_;
    struct stat seen_ {};
    useconds_t pause_ = 2000;
    steady_clock::time_point begin_ = steady_clock::now();
    steady_clock::time_point moved_ = begin_;
};

// Lets those open the file who may write in the folder, and nobody else.
void share_with_writers(int fd, const char *folder)
{
    struct stat status {};
    if (stat(folder, &status) != 0)
        return;
    mode_t mode = 0600;
    if ((status.st_mode & S_IWGRP) != 0 && fchown(fd, static_cast<uid_t>(-1), status.st_gid) == 0)
        mode |= 0060;
    if ((status.st_mode & S_IWOTH) != 0)
        mode |= 0066;
    static_cast<void>(fchmod(fd, mode) == 0);
}

} // namespace

namespace zel {

int create_held(const char *path, mode_t mode)
{
    waiting wait(path);
    while (!wait.has_been_long()) {
        const int fd = open_fresh(path, mode);
        if (fd < 0 && errno != EEXIST)
            return -1;
        if (fd >= 0) {
            struct stat status {};
            if (fstat(fd, &status) != 0)
                return unmake(fd, path);
            if (lock(fd) && !is_lost(path, id_of(status)))
                return fd;
            close(fd); // somebody took it for a leftover
            continue;
        }
        taken what = remove_leftover(path);
        if (what == taken::stays)
            return -1;
        if (what == taken::held && !wait.go_on() && wait.take() == taken::stays)
            break;
    }
    errno = EAGAIN;
    return -1;
}

folder_turn::folder_turn(const std::string &path)
    : path_(folder_part(path) + ".lang.lock"), fd_(create_held(path_.c_str(), 0600)),
      error_(fd_ < 0 ? errno : 0)
{
    const std::string folder = folder_part(path);
    if (fd_ >= 0)
        share_with_writers(fd_, folder.empty() ? "." : folder.c_str());
}

folder_turn::~folder_turn()
{
    struct stat status {};
    if (fd_ < 0)
        return;
    if (fstat(fd_, &status) == 0 && is_named(path_.c_str(), id_of(status)))
        unlink(path_.c_str());
    close_quietly(fd_);
}

} // namespace zel
