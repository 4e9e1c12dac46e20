#pragma once

// The one way this project replaces a file that must not be lost: the whole text goes to a fresh
// temporary file and reaches the disk there; only then does anything happen to the old file.

#include <cstdio>

namespace zel {

// A temporary file under construction.
struct safe_file {
    std::FILE *stream = nullptr; // written by the caller; null when the file could not be created
    char *path = nullptr;        // where the temporary file stands, owned
    int error = 0;               // errno of the first call that failed, 0 while all is well
    char *buffer = nullptr;      // the stream's, owned
    void (*size_signal)(int) = nullptr; // what the size-limit signal did before; it is ignored
                                        // meanwhile, so that a full disk is an error, not an end
};

// Creates the temporary file, empty, for writing and reading: a file of that name left from
// before is removed first and no link is followed. On failure stream is null and error is set.
safe_file safe_file_create(const char *path);

// Ends the text: writes what is buffered, makes sure that it is on the disk, closes the stream.
// Returns 0, or the errno of the first write that failed; then the temporary file is removed.
int safe_file_finish(safe_file &file);

// Gives the finished temporary file its final name, replacing what stands there. Where the target
// lies on another file system the text is copied to a fresh name beside it, synced, and renamed
// there. Returns 0, or errno; then the temporary file stays where it is.
int safe_file_move(safe_file &file, const char *target);

// Drops a temporary file that is not wanted any more: closed and removed.
void safe_file_abandon(safe_file &file);

// Releases what the record owns; the file stays. Finished files end with this.
void safe_file_release(safe_file &file);

} // namespace zel
