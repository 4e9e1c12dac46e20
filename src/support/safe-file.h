#pragma once

// The one way this project replaces a file: the whole text goes to a file of its own and, where it
// must not be lost, reaches the disk there; only then does anything happen to the old one. At every
// moment the path names the old text or the new one, whole; only an output that can be made again
// (create_output) is written into the old file where no other one may take its place.

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "support/file-call.h"
#include "support/target-file.h"

namespace zel {

enum class synced { no, yes };
enum class handle { kept, rests };

// A new text on its way to its place. Functions return 0 or errno; the first error is kept, so that
// a text may be written piece by piece and the result looked at once. What is not put in place, or
// kept, is removed.
class safe_file {
public:
    safe_file() = default;
    ~safe_file();
    safe_file(const safe_file &) = delete;
    safe_file &operator=(const safe_file &) = delete;

    // Makes the file under a name that others may use too, by create_held (support/held-file.h):
    // its lock is held until it is put in place.
    int create(const char *path, const target_file &old);

    // Makes it beside its place, under a name that nobody uses.
    int create_beside(const target_file &old);

    // Makes the file of a text that can be made again beside its place, as PLACE.tmp: what a killed
    // process left under that name is removed, but not what a living one writes; then, and where
    // the handle is to rest, under a name that nobody uses. Where the folder takes no file, or lets
    // nobody replace the old one (EACCES, EPERM, EROFS, EBUSY), put writes into the old one, unless
    // that has other names. Fails when the old file may not be written.
    int create_output(const target_file &old, handle how);

    int append(std::string_view text);

    // Gives the handle back until the next piece: more files than handles may be under way. Only
    // for a file whose name nobody uses.
    void rest();

    // Ends the text. Synced, it survives a power cut from here on, and its place does once it is
    // put there.
    int finish(synced how);

    // Where the place is on another file system, copies the finished text to a file beside it, so
    // that putting it in place needs no more room.
    int approach(const target_file &old);

    // Puts the finished text in its place: this file, whatever its name stands for by now. Where it
    // has to be copied beside the place first, which takes a while, the function, if there is one,
    // is asked before the last step: ECANCELED when it says no.
    int put(const target_file &old, const std::function<bool()> &may = nullptr);

    // The file that was put in its place.
    const file_id &id() const { return id_; }

    // Leaves the file where it is, under its first name, or removes it at once.
    void keep();
    void drop();

private:
    int take(int fd, std::string path, const target_file &old);
    int write_into(const std::string &place);
    int open_again();
    int copy_from(int fd);
    int copy_near(const target_file &old);
    int rename_to(const char *place);

    std::string path_; // empty while there is no file
    int fd_ = -1;
    file_id id_{};
    int error_ = 0;
    bool is_own_name_ = false; // nobody else uses it
    bool writes_into_ = false; // the old file, where it cannot be replaced,
    std::string held_;         // with this text, where there is no file
    synced how_ = synced::yes;
    std::unique_ptr<safe_file> near_; // the copy on the place's file system
};

// Replaces the file at the path, or makes it, in one call; links are followed. 0 or errno.
int replace_file(const char *path, std::string_view text);

} // namespace zel
