#pragma once

// What stands at a path before a new text takes its place: where that is, whose it is, and how it
// is kept.

#include <cstdint>
#include <string>
#include <sys/stat.h>

namespace zel {

struct target_file {
    std::string path;      // where the text belongs
    bool is_there = false; // something stands there; also when that cannot be found out
    int refusal = 0;       // errno why nothing may take its place. 0: it may
    struct stat status {}; // of the regular file that stands there; without one, all zero

    bool is_file() const { return status.st_nlink != 0; }
};

enum class links { follow, replace };

// Looks at the path. Links are followed to the file they lead to, which need not be there yet, or
// are themselves what a new file replaces. A link of somebody who is neither this user nor the
// administrator is followed only to what its maker may replace anyway: what is his, or lies in a
// folder of his. Otherwise it is refused with EACCES; what is no regular file, as by refusal_of.
target_file find_target(const char *path, links how);

// Returns the reason for a refusal in words.
const char *refusal_text(int refusal);

// Returns the errno for which the file cannot be written, or made if there is none, although a file
// could be made beside its place. Returns 0 if it can, as far as that shows beforehand.
int write_obstacle(const target_file &old);

// Gives an open file the mode of the old one, its group and owner where the system lets it, its
// access list and the user's extended attributes. A group that cannot be kept gets no more than
// everybody. Nothing without an old file.
void take_attributes(int fd, const target_file &old);

// The old file's name with that time: path-YYYY-MM-DD-HH-MM-SS.bak.
std::string backup_name(const target_file &old, std::int64_t time);

// Returns the errno for which the folder does not give up the old file's name, so that the file can
// neither be renamed nor replaced. Returns 0 if it does, as far as that shows beforehand, or if
// there is no old file.
int backup_obstacle(const target_file &old);

// How the old file was kept under its dated name.
struct backup_file {
    std::string path;   // empty when there was nothing to keep
    bool moved = false; // links are not to be had there: the old path is empty meanwhile
    int error = 0;      // errno; then the old file is where it was
};

// Gives the old file its dated name as a second one. A name that is taken is left alone: the
// function waits for the next second, which has another name.
backup_file make_backup(const target_file &old, std::int64_t now);

// Undoes make_backup. Call when the new text could not be put in place.
void undo_backup(const backup_file &kept, const target_file &old);

} // namespace zel
