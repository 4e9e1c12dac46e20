#pragma once

// Language sources as the words read and write them.

#include <string>
#include <vector>

#include "source/lang-read.h"
#include "source/model.h"

namespace zel::kit {

// Reads a source. Every message of the reader is one line on standard error with its place,
// "FILE:LINE:COLUMN: error: MEANING [syntax]". Null when it cannot be read.
source_guard read(const std::string &path, source_places *places = nullptr);

// Reads a source that will be written again. Null also when a part of the file was not understood,
// which writing would lose; the line that says so is an error then. Items without a creation time
// get that of the call.
source_guard read_whole(const std::string &path, std::int64_t now = 0);

// Takes a source over until the process ends: to release millions of strings one by one takes
// longer than the system needs for all of them.
void keep_to_the_end(source_guard source);

// Where a changed source goes.
struct destination {
    std::string path;     // the file that is replaced
    bool dry_run = false; // nothing is written

    // Of what is made from several sources:
    bool merged = false; // the source keeps its stamp, so that the same merge gives the same bytes
    std::string name{};  // in the file's last line, where that is not the path
    bool backup = true;  // the old file is kept
};

// Writes a source as the editor does: safely, a file that is there is kept under its date. A file
// that read_whole has read by the same path, and that another program has changed since, is left
// alone. False after a line on standard error.
bool write(const destination &to, LangSource *source);

} // namespace zel::kit
