#pragma once

// A file that a word makes for others: written whole beside its place and moved there at the end.
// What stood there and differs is kept under its date; the same text is left alone.

#include <cstdio>
#include <string>

#include "support/safe-file.h"

namespace zel::kit {

class text_file {
public:
    text_file() = default;
    ~text_file();
    text_file(const text_file &) = delete;
    text_file &operator=(const text_file &) = delete;

    // Each is false after a line on standard error; then the place is as it was.
    bool create(const std::string &path);
    bool finish(); // the text is complete
    bool put_in_place();

    std::FILE *stream() const { return file_.stream; }
    const std::string &path() const { return path_; }

private:
    bool say(int error) const;

    std::string path_;
    safe_file file_;
};

} // namespace zel::kit
