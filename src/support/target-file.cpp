#include "support/target-file.h"

#include "support/file-call.h"
#include "support/time.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <string_view>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace {

// Returns where a link leads, seen from the folder that holds it; empty when that cannot be read.
std::string target_of_link(const std::string &link)
{
    std::array<char, PATH_MAX> text;
    const ssize_t length = readlink(link.c_str(), text.data(), text.size());
    // A text that fills the area may have been cut.
    if (length <= 0 || length == static_cast<ssize_t>(text.size()))
        return {};
    const std::string_view target(text.data(), static_cast<std::size_t>(length));
    const std::size_t name = link.rfind('/') + 1; // 0 without a folder
    return target.front() == '/' ? std::string(target) : link.substr(0, name).append(target);
}

// Whether the link's maker could write to its target without anybody's help. If not, following the
// link would lend the maker this user's rights.
bool may_lead_to(const std::string &path, const std::string &link, uid_t maker)
{
    struct stat status {};
    if (!zel::is_foreign_link(link.c_str()))
        return true;
    if (lstat(path.c_str(), &status) == 0 && status.st_uid == maker)
        return true;
    const int folder = zel::open_folder_of(path.c_str());
    const bool is_his = folder >= 0 && fstat(folder, &status) == 0 && status.st_uid == maker;
    if (folder >= 0)
        close(folder);
    return is_his;
}

// Follows links to their end. A chain without an end stays a link, which is refused.
std::string follow_links(std::string path, int &refusal)
{
    constexpr int most_links = 40; // as many as the system follows
    struct stat status {};
    for (int count = 0; count < most_links; ++count) {
        if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode))
            return path;
        std::string next = target_of_link(path);
        if (next.empty())
            return path;
        if (!may_lead_to(next, path, status.st_uid))
            refusal = EACCES;
        path = std::move(next);
    }
    return path;
}

// Whether the attribute is copied. Others, such as those by which the system trusts a program,
// belong to the old contents.
bool is_kept(std::string_view attribute)
{
    return attribute.starts_with("user.") || attribute == "system.posix_acl_access";
}

void copy_attribute(int fd, const char *path, const char *name)
{
    const ssize_t size = lgetxattr(path, name, nullptr, 0);
    if (size < 0)
        return;
    std::vector<char> value(static_cast<std::size_t>(size) + 1);
    const ssize_t got = lgetxattr(path, name, value.data(), value.size());
    if (got >= 0)
        static_cast<void>(fsetxattr(fd, name, value.data(), static_cast<std::size_t>(got), 0));
}

void copy_attributes(int fd, const char *path)
{
    const ssize_t size = llistxattr(path, nullptr, 0);
    if (size <= 0)
        return;
    // One byte more than the list gets, so that the last name ends with NUL whatever has changed.
    std::vector<char> names(static_cast<std::size_t>(size) + 1);
    const ssize_t got = llistxattr(path, names.data(), names.size() - 1);
    for (const char *name = names.data(); name < names.data() + got; name += std::strlen(name) + 1)
        if (is_kept(name))
            copy_attribute(fd, path, name);
}

// Renames, but never onto a name that is taken. Returns 0 or errno.
int rename_to_free(const char *from, const char *to)
{
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    if (zel::is_there(to)) // the best that can be done on such a file system
        return EEXIST;
    return std::rename(from, to) == 0 ? 0 : errno;
}

// Gives the file its backup's name, if possible beside its own. Returns 0, EEXIST when that name is
// taken, or errno.
int keep_under(zel::backup_file &kept, const std::string &path)
{
    // With a link the old file never loses its own name; not every file system has links.
    if (link(path.c_str(), kept.path.c_str()) == 0)
        return 0;
    if (errno == EEXIST)
        return EEXIST;
    const int error = rename_to_free(path.c_str(), kept.path.c_str());
    kept.moved = error == 0;
    return error;
}

void wait_for_next_second()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    // One millisecond more, so that the clock is surely in the next second.
    usleep(static_cast<useconds_t>(1000 * 1000 - now.tv_nsec / 1000 + 1000));
}

} // namespace

namespace zel {

target_file find_target(const char *path, links how)
{
    target_file found;
    found.path = how == links::follow ? follow_links(path, found.refusal) : path;
    found.is_there = is_there(found.path.c_str());
    struct stat status {};
    // A pipe that a shell made has no name, and a deleted file has none left: the links lead
    // nowhere, and the given path counts.
    const bool is_nameless = !found.is_there && found.path != path && stat(path, &status) == 0 &&
                             (!S_ISREG(status.st_mode) || status.st_nlink == 0);
    if (is_nameless) {
        found.path = path;
        found.refusal = found.refusal == 0 ? EINVAL : found.refusal;
    }
    if (!found.is_there || lstat(found.path.c_str(), &status) != 0)
        return found;
    if (S_ISREG(status.st_mode))
        found.status = status;
    else if (how == links::follow || !S_ISLNK(status.st_mode))
        found.refusal = refusal_of(status);
    return found;
}

const char *refusal_text(int refusal)
{
    return refusal == EACCES   ? "somebody else's link leads there"
           : refusal == EINVAL ? "it is no regular file"
                               : std::strerror(refusal);
}

int write_obstacle(const target_file &old)
{
    struct stat status {};
    // The name beside the place is cut to fit, so it would work where the place's own is too long.
    const bool possible = old.is_file()
                              ? faccessat(AT_FDCWD, old.path.c_str(), W_OK, AT_EACCESS) == 0
                              : lstat(old.path.c_str(), &status) == 0 || errno == ENOENT;
    return possible ? 0 : errno;
}

void take_attributes(int fd, const target_file &old)
{
    struct stat now {};
    if (!old.is_file() || fstat(fd, &now) != 0)
        return;
    // The bits beyond these, such as set-user-ID, belong to the old contents.
    mode_t mode = old.status.st_mode & 0777;
    // In another group, its members may do no more than everybody could.
    if (now.st_gid != old.status.st_gid &&
        fchown(fd, static_cast<uid_t>(-1), old.status.st_gid) != 0)
        mode &= ~static_cast<mode_t>(070) | (mode & 07) << 3;
    if (now.st_uid != old.status.st_uid)
        static_cast<void>(fchown(fd, old.status.st_uid, static_cast<gid_t>(-1)) == 0);
    copy_attributes(fd, old.path.c_str());
    // Last: until owner and group are right, nobody else may read the file.
    static_cast<void>(fchmod(fd, mode) == 0);
}

std::string backup_name(const target_file &old, std::int64_t time)
{
    return old.path + "-" + date_text("%Y-%m-%d-%H-%M-%S", time) + ".bak";
}

int backup_obstacle(const target_file &old)
{
    struct stat folder {};
    const std::string part = folder_part(old.path);
    const char *name = part.empty() ? "." : part.c_str();
    if (!old.is_there)
        return 0;
    if (faccessat(AT_FDCWD, name, W_OK | X_OK, AT_EACCESS) != 0)
        return errno;
    // In a sticky folder everybody may add a name, but only the owner of the file or of the folder
    // may remove one.
    const uid_t user = geteuid();
    const bool is_bound = stat(name, &folder) == 0 && (folder.st_mode & S_ISVTX) != 0 &&
                          folder.st_uid != user && user != 0;
    return is_bound && old.is_file() && old.status.st_uid != user ? EPERM : 0;
}

backup_file make_backup(const target_file &old, std::int64_t now)
{
    constexpr int most_waits = 5;
    backup_file kept;
    if (!old.is_there)
        return kept;
    // The given time may not be the clock's: each attempt keeps the distance between them.
    const std::int64_t ahead = now - std::time(nullptr);
    for (int waits = 0; waits <= most_waits; ++waits) {
        if (waits > 0)
            wait_for_next_second();
        kept.path = backup_name(old, std::time(nullptr) + ahead);
        kept.error = keep_under(kept, old.path);
        if (kept.error != EEXIST)
            break;
    }
    if (kept.error == ENOENT && !is_there(old.path.c_str()))
        return {}; // the old file was deleted meanwhile
    return kept;
}

void undo_backup(const backup_file &kept, const target_file &old)
{
    struct stat status {};
    if (kept.path.empty() || kept.error != 0)
        return;
    if (kept.moved)
        rename_to_free(kept.path.c_str(), old.path.c_str());
    else if (lstat(kept.path.c_str(), &status) == 0 && is_named(old.path.c_str(), id_of(status)))
        // While both names exist, the old text is safe without the backup.
        unlink(kept.path.c_str());
}

} // namespace zel
