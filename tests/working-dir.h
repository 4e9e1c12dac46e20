#pragma once

// A test that works in a fresh directory, and what the program log says meanwhile.

#include <gtest/gtest.h>

#include <cstdio>
#include <regex>
#include <string>

#include "support/log-print.h"
#include "test-support.h"

namespace zel_test {

class working_dir : public testing::Test {
protected:
    temp_dir dir{temp_dir::enter::yes};
};

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
        static const std::regex stamp("[0-9]{2}:[0-9]{2}:[0-9]{2}:[0-9]{6}-[0-9a-f]{8} ");
        return std::regex_replace(all, stamp, "");
    }

private:
    std::FILE *file_;
    int init_;
    std::FILE *fd_;
};

} // namespace zel_test
