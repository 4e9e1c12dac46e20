#pragma once

// A file that says by its name that somebody is at work: who makes it holds a lock on it until the
// name is gone, so that one left by a process that was killed is told from one in use.

#include <string>
#include <sys/stat.h>

namespace zel {

// Makes the file, for reading and writing, and holds its lock: the handle, or -1 with errno. What
// nobody holds, or a link, is removed. A file that is held is waited for as long as others take
// turns at it or write it, some minutes at most; one at which nothing has happened for some seconds
// is removed, after a line on standard error, and who held it must look whether his still bears the
// name. Where it cannot be removed: EAGAIN.
int create_held(const char *path, mode_t mode);

// The turn to replace files in a folder. While one lives, no other program that takes a turn there
// comes between a look at a file and its replacement, whatever folder it works from. It is a held
// file in the folder that only who may write there can open: nobody else can keep a turn from them.
class folder_turn {
public:
    // For the folder of the path; waits as create_held does.
    explicit folder_turn(const std::string &path);
    ~folder_turn();
    folder_turn(const folder_turn &) = delete;
    folder_turn &operator=(const folder_turn &) = delete;

    // 0, or errno why there is no turn to be had.
    int error() const { return error_; }

private:
    std::string path_;
    int fd_;
    int error_;
};

} // namespace zel
