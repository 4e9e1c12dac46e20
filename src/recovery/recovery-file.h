#pragma once

// A recovery file: the unsaved state of a source, to be offered when its editor has not come to an
// orderly end. It is a language source like any other, so that a person may rescue it by hand,
// below a comment:
//
//   /* Recovery file of the language editor: changes that were not saved.
//   source  "/home/me/notes.lang-src"
//   size    12345                          of the source that the changes were made to,
//   time    1700000000.123456789           its time
//   hash    e3b0c442...                    and the SHA-256 of its text
//   written 1700000600
//   */
//
// Its name is that of its source (see name_of_source), then ".TIME-PROCESS-NUMBER" of the
// session that wrote it, and ".lang-src"; one that was declined once has ".declined" before that.

#include <cstdint>
#include <string>
#include <vector>

#include "recovery/file-state.h"
#include "source/write-text.h"
#include "support/safe-file.h"

struct _GThread;

namespace zel {

struct recovery_file {
    std::string path;
    file_state source; // as it was when it was loaded
    std::int64_t written = 0;
    bool declined = false; // once; the second time it is removed
};

// A new name for a session's recovery file.
std::string recovery_path(const std::string &folder, const std::string &absolute, std::int64_t now);

// The whole recovery files of the source, those first that were not declined, then the younger.
std::vector<recovery_file> find_recovery_files(const std::string &folder,
                                               const std::string &absolute);

// Call when the user does not want the file: it is kept for one more start, and removed when it was
// declined before. 0 or errno.
int decline(const recovery_file &file);

// Writes a recovery file beside other work: the text goes out piece by piece, then a thread brings
// it to the disk and puts it in its place. What is there stays whole until then.
class recovery_writer {
public:
    recovery_writer() = default;
    ~recovery_writer() { abandon(); }
    recovery_writer(const recovery_writer &) = delete;
    recovery_writer &operator=(const recovery_writer &) = delete;

    // Begins again, whatever was under way. The source is only read and must last until the last
    // piece; leaves_out is that of text_how.
    void begin(const std::string &path, const std::string &absolute, const file_state &loaded,
               std::int64_t now, const LangSource *source,
               std::function<bool(const lang_entry_t *)> leaves_out);

    // Between begin and the last piece.
    bool is_writing() const { return text_ != nullptr; }

    // Writes that many items more. False once there is nothing left for the caller to do.
    bool step(std::size_t items);

    // Whether the thread still works. Once it does not, and until the next begin, error() is 0 when
    // the file is in its place, or errno.
    bool is_busy() const;
    int error() const { return error_; }

    // Brings what was begun to its end, now; 0 or errno. With alone set it waits for no thread: for
    // a process that has no other thread any more.
    int finish(bool alone = false);

    // Drops what was begun; waits for the thread.
    void abandon();

private:
    void put_away();
    void join();
    static void *work(void *writer);

    std::unique_ptr<source_text> text_; // while there are pieces to write
    std::unique_ptr<safe_file> file_;
    target_file place_;
    std::string name_; // of the source
    std::string out_;
    _GThread *thread_ = nullptr;
    int working_ = 0; // set by the caller, cleared by the thread
    int error_ = 0;
};

} // namespace zel
