#pragma once

// Language sources as the words read and write them.

#include <string>
#include <vector>

#include "source/lang-read.h"
#include "source/model.h"
#include "support/file-call.h"

namespace zel::kit {

// Whether the path names a pipe, into which perhaps nobody ever writes. One that a shell has made
// for a command has no name.
bool is_named_pipe(const std::string &path);

// Whether the system says that nothing bears the path: what it does not tell counts as there.
bool is_absent(const std::string &path);

// Leaves each file once in the list, whether a link or another way to write its path names it
// again.
void keep_each_once(std::vector<std::string> &paths);

// Reads a source. Every message of the reader is one line on standard error with its place,
// "FILE:LINE:COLUMN: error: MEANING [syntax]". Null when it cannot be read. A pipe that has a name
// is not waited for.
source_guard read(const std::string &path, source_places *places = nullptr);

// The same of a text, which a message calls by that name.
source_guard read_text(const std::string &name, const std::string &text);

// A file as it was before a word read it.
struct seen_file {
    std::string path;
    file_stamp stamp;

    explicit seen_file(const std::string &seen) : path(seen), stamp(stamp_of(seen.c_str())) {}
};

// A source that will be written again, and the files that it comes from.
struct source_file {
    source_guard source; // null: it cannot be read
    std::vector<seen_file> from;

    explicit operator bool() const { return source != nullptr; }
    LangSource *operator->() const { return source.get(); }
};

// Reads a source that will be written again. Null also when a part of the file was not understood,
// which writing would lose; the line that says so is an error then. Items without a creation time
// get that of the call. Messages may call the file something else.
source_file read_whole(const std::string &path, std::int64_t now = 0,
                       const std::string &shown = {});

// Takes a source over until the process ends: to release millions of strings one by one takes
// longer than the system needs for all of them.
void keep_to_the_end(source_guard source);

// Destination of a changed source.
struct destination {
    std::string path;     // the file that is replaced
    bool dry_run = false; // nothing is written

    // Of what is made from several sources:
    bool merged = false; // the source keeps its stamp, so that the same merge gives the same bytes
    std::string name{};  // in the file's last line, where that is not the path
    bool backup = true;  // the old file is kept
};

// Writes a source as the editor does: safely, a file that is there is kept under its date. One of
// the files that the source comes from is left alone, by whatever path it is reached, when another
// program has changed it since it was seen. False after a line on standard error.
bool write(const destination &to, LangSource *source, const std::vector<seen_file> &from);
inline bool write(const destination &to, const source_file &file)
{
    return write(to, file.source.get(), file.from);
}

} // namespace zel::kit
