#pragma once

// A file that a word makes for others: written whole beside its place and put there at the end.
// What stood there and differs is kept under its date, and by its other names (hard links), of
// which a line tells; the same text is left alone. What a killed process leaves, as
// PLACE.lang-kit.tmp, the next one removes.

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/guard.h"
#include "support/safe-file.h"

namespace zel::kit {

class text_file {
public:
    text_file() = default;
    ~text_file();

    // Each is false after a line on standard error; then the place is as it was.
    bool create(const std::string &path);
    bool finish(); // the text is complete
    bool put_in_place();

    void append(std::string_view text); // finish tells of an error
    const std::string &path() const { return path_; }

private:
    bool say(const char *cause) const;
    bool say(int error) const;
    void compare(std::string_view text);

    std::string path_;
    target_file old_;
    safe_file file_;
    std::string held_; // its name, where that tells whether its maker lives
    // The old text while the new one has been the same so far.
    std::unique_ptr<std::FILE, release<std::fclose>> same_;
};

// Puts complete texts in their places and prints these; none that is there changes before all texts
// are complete. After a failure at its place some files are new and some are old, each whole.
bool finish_all(std::vector<text_file> &files);

} // namespace zel::kit
