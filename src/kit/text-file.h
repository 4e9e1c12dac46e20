#pragma once

// A file that a word makes for others: written whole beside its place and moved there at the end.
// What stood there and differs is kept under its date; the same text is left alone.

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "support/guard.h"
#include "support/safe-file.h"

namespace zel::kit {

class text_file {
public:
    text_file() = default;
    text_file(const text_file &) = delete;
    text_file &operator=(const text_file &) = delete;

    // Each is false after a line on standard error; then the place is as it was.
    bool create(const std::string &path);
    bool finish(); // the text is complete
    bool put_in_place();

    std::FILE *stream() const { return stream_.get(); }
    const std::string &path() const { return path_; }

private:
    using stream_guard = std::unique_ptr<std::FILE, release<std::fclose>>;

    bool say(int error) const;
    void compare(std::string_view text);
    static ssize_t write(void *self, const char *data, std::size_t size);

    std::string path_;
    target_file old_;
    safe_file file_;
    stream_guard old_text_; // as far as the new text is the same; null once it differs
    stream_guard stream_;
};

} // namespace zel::kit
