#include "recovery/source-lock.h"

#include "recovery/place.h"
#include "support/file-call.h"
#include "support/log-print.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

std::string host_name()
{
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "unknown";
}

// What stands in a lock file: the process, one blank, the host.
struct owner {
    long process = 0;
    std::string host;
};

owner read_owner(int fd)
{
    std::array<char, 512> text{};
    owner found;
    if (pread(fd, text.data(), text.size() - 1, 0) <= 0)
        return found;
    char *end = nullptr;
    found.process = std::strtol(text.data(), &end, 10);
    if (*end == ' ')
        found.host.assign(end + 1, std::strcspn(end + 1, "\n"));
    return found;
}

// For file systems without locks: whether the process that the file names may be alive. One on
// another host cannot be asked, and may be.
bool may_live(const owner &other)
{
    if (other.process <= 0 || other.process == getpid())
        return false;
    // EPERM means that the process is there and belongs to somebody else.
    return other.host != host_name() || kill(static_cast<pid_t>(other.process), 0) == 0 ||
           errno == EPERM;
}

bool is_still_named(const std::string &path, int fd)
{
    struct stat status {};
    return fstat(fd, &status) == 0 && zel::is_named(path.c_str(), zel::id_of(status));
}

} // namespace

namespace zel {

// Takes the lock of the open file. Whoever holds the lock holds the source; the text in the file
// only names its holder.
bool source_lock::take_open(int fd)
{
    const bool is_locked = flock(fd, LOCK_EX | LOCK_NB) == 0;
    const bool is_refused = !is_locked && errno == EWOULDBLOCK;
    const owner other = read_owner(fd);
    if (is_refused || (!is_locked && may_live(other))) {
        holder_ = other.host + ", process " + std::to_string(other.process);
        return false;
    }
    // Written again also over an old holder's name: a crash leaves the file, but no lock.
    const std::string mine = std::to_string(getpid()) + " " + host_name() + "\n";
    if (ftruncate(fd, 0) != 0 || pwrite(fd, mine.data(), mine.size(), 0) < 0)
        LogPrint(1, "recovery: ERROR(%d) %s write %s\n", errno, std::strerror(errno),
                 path_.c_str());
    return true;
}

bool source_lock::take(const std::string &folder, const std::string &absolute)
{
    constexpr int most_tries = 10;
    release();
    // Without a folder nobody can be told: working without a lock is better than not working.
    if (folder.empty())
        return true;
    path_ = folder + "/" + name_of_source(absolute) + ".lock";
    for (int tries = 0; tries < most_tries; ++tries) {
        // Made fresh first: open_plain opens only what is there, and between the two calls another
        // editor may make or remove the file.
        int fd = open_fresh(path_.c_str(), 0600);
        if (fd < 0 && errno == EEXIST)
            fd = open_plain(path_.c_str(), O_RDWR);
        if (fd < 0 && errno == ENOENT)
            continue; // its owner has just removed it
        if (fd < 0)
            break;
        if (!take_open(fd)) {
            close(fd);
            path_.clear();
            return false;
        }
        // The file may have been removed between opening and locking: its lock would be worth
        // nothing, since the next editor makes a new file.
        if (is_still_named(path_, fd)) {
            fd_ = fd;
            return true;
        }
        close(fd); // its owner removed it in between
    }
    LogPrint(1, "recovery: ERROR(%d) %s lock %s\n", errno, std::strerror(errno), path_.c_str());
    path_.clear();
    return true;
}

void source_lock::release()
{
    holder_.clear();
    if (fd_ < 0)
        return;
    // Removed while we still hold the lock: after it, the file might be the next holder's.
    if (is_still_named(path_, fd_))
        unlink(path_.c_str());
    close(fd_);
    fd_ = -1;
}

} // namespace zel
