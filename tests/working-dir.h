#pragma once

// A test that works in a fresh directory, and what the program log says meanwhile.

#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>

#include "support/log-print.h"
#include "test-support.h"

namespace zel_test {

// Ends a test that needs what is not installed here: it is skipped, but where changes are checked
// (CI=true) it fails, so that nobody goes without it unawares. `return missing("xmllint");`
inline void missing(const char *program)
{
    const char *const ci = std::getenv("CI");
    if (ci != nullptr && std::string(ci) == "true")
        FAIL() << program << " is not installed";
    GTEST_SKIP() << program << " is not installed";
}

class working_dir : public testing::Test {
protected:
    temp_dir dir{temp_dir::enter::yes};
};

// How many descriptors the process has open, beside the one that looks.
inline std::ptrdiff_t open_files()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all)) - 1;
}

// The text with every match of a pattern replaced: 0 stands for a digit, x for a hexadecimal one.
inline std::string replace_pattern(const std::string &text, const std::string &pattern,
                                   const std::string &with)
{
    const auto matches = [&](std::size_t at) {
        for (std::size_t n = 0; n < pattern.size(); n++) {
            const auto byte = static_cast<unsigned char>(text[at + n]);
            const bool good = pattern[n] == '0'   ? std::isdigit(byte) != 0
                              : pattern[n] == 'x' ? std::isxdigit(byte) != 0
                                                  : pattern[n] == text[at + n];
            if (!good)
                return false;
        }
        return true;
    };
    // A match can only be around the pattern's first sign that stands for itself.
    const std::size_t sign = pattern.find_first_not_of("0x");
    require(sign != pattern.npos, "a pattern without a sign");
    std::string out;
    std::size_t done = 0;
    for (std::size_t at = 0; (at = text.find(pattern[sign], at + sign)) != text.npos;) {
        at -= sign;
        if (at + pattern.size() <= text.size() && matches(at)) {
            out.append(text, done, at - done) += with;
            done = at += pattern.size();
        } else {
            ++at;
        }
    }
    return out.append(text, done);
}

// Everything that is logged while it lives, without the stamps.
class log_capture {
public:
    log_capture() : file_(std::tmpfile()), init_(log_init), fd_(logFd)
    {
        require(file_ != nullptr, "tmpfile");
        log_init = 1;
        logFd = file_;
    }
    ~log_capture()
    {
        log_init = init_;
        logFd = fd_;
        std::fclose(file_);
    }
    log_capture(const log_capture &) = delete;
    log_capture &operator=(const log_capture &) = delete;

    std::string text()
    {
        std::string all;
        std::rewind(file_);
        for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_))
            all.push_back(static_cast<char>(c));
        return replace_pattern(all, "00:00:00:000000-xxxxxxxx ", "");
    }

private:
    std::FILE *file_;
    int init_;
    std::FILE *fd_;
};

} // namespace zel_test
