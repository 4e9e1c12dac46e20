#pragma once

// What the status line says about a source that was read, or could not be.

#include <string>

#include "source/lang-read.h"

namespace zel {

// Hears the reader's messages and keeps what a person needs to know of them.
class read_report {
public:
    explicit read_report(const char *path);

    void hear(const read_message &message);

    // "PATH: line 12, column 3: what is wrong there", or "PATH: 31 items, 6 languages" and after it
    // what was noticed on the way.
    std::string text(const read_answer &answer) const;

private:
    std::string cause(read_cause why) const;

    std::string path_;
    std::string error_;   // the first message of something that was not read, with its place
    std::string warning_; // the first of the other messages
    std::string failure_; // why the file could not be opened, in the system's words
};

} // namespace zel
