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

constexpr auto patience = std::chrono::seconds(8); // with a holder that does nothing
constexpr auto most_patience = std::chrono::minutes(5);

// What became of a name that was taken.
enum class taken { gone, held, stays };

// Whether this process has got the lock. On a file system without locks nobody else can hold one,
// so that counts as having it.
bool lock(int fd) { return flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; }

taken remove_name(const char *path)
{
    return unlink(path) == 0 || errno == ENOENT ? taken::gone : taken::stays;
}

// Removes the file of this name unless somebody is at work on it. Whoever removes a file holds its
// lock and has checked that the name is still the file's, so nobody removes a file that has just
// been made.
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

// Removes a file that has just been made. Returns -1 with errno.
int unmake(int fd, const char *path)
{
    const int error = errno;
    // First the name, then the lock: without the lock the name may become another process's.
    unlink(path);
    close(fd);
    errno = error;
    return -1;
}

// Returns the process that holds a lock on the file, or 0 where the system does not tell.
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

// Waits while somebody holds a name. The patience starts again whenever the holder has changed or
// has written.
class waiting {
public:
    explicit waiting(const char *path) : path_(path) {}

    // Pauses. False when it is no use to wait any longer.
    bool go_on()
    {
        struct stat now {};
        const bool is_seen = lstat(path_, &now) == 0;
        if (!is_seen && errno == ENOENT)
            return true;
        // Each write changes the file's ctime: the holder is at work.
        if (is_seen && (zel::id_of(now) != zel::id_of(seen_) || !is_same(now.st_ctim))) {
            moved_ = steady_clock::now();
            seen_ = now;
        }
        // Most saves take milliseconds, so the first pauses are short.
        usleep(pause_);
        pause_ = std::min<useconds_t>(pause_ * 2, 30'000);
        return steady_clock::now() - moved_ < patience;
    }
    bool has_been_long() const { return steady_clock::now() - begin_ > most_patience; }

    // Call after go_on has returned false. Takes the name from its holder.
    taken take() const
    {
        const auto seconds = static_cast<int>(patience.count());
        if (const long process = holder_of(seen_))
            std::fprintf(stderr, "lang: process %ld has held %s for %d seconds\n", process, path_,
                         seconds);
        else
            std::fprintf(stderr, "lang: another program has held %s for %d seconds\n", path_,
                         seconds);
        // If the name has a new holder, that one gets its own time.
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

// Lets everybody open the file who may write into the folder, and nobody else.
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

int create_held(const char *path, mode_t mode, wait_for how)
{
    waiting wait(path);
    while (!wait.has_been_long()) {
        const int fd = open_fresh(path, mode);
        if (fd < 0 && errno != EEXIST)
            return -1;
        if (fd >= 0) {
            struct stat status {};
            // Without its number nobody could tell later whose file it is.
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
        if (what == taken::held && how == wait_for::nobody)
            break;
        if (what == taken::held && !wait.go_on() && wait.take() == taken::stays)
            break;
    }
    // Callers take this errno to say that another program holds the name.
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
    // The name goes before the lock, and only if it is still this turn's: another program may have
    // lost patience and taken it.
    if (fstat(fd_, &status) == 0 && is_named(path_.c_str(), id_of(status)))
        unlink(path_.c_str());
    close_quietly(fd_);
}

} // namespace zel
