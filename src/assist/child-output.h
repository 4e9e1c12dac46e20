#pragma once

// What another program prints, taken as it comes: nobody waits for the program, which is killed
// when nobody wants its output any more.

#include <chrono>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace zel::assist {

enum class child_news {
    came,  // there may be more at once
    waits, // nothing has come yet
    done,  // all has come, and the program has ended well
    failed // it has not, or was killed for its limits; what it had printed is there
};

class child_output {
public:
    struct limits {
        std::size_t bytes;
        std::chrono::milliseconds time; // in which somebody reads
    };

    // Words: the program's path and its arguments; environment: "NAME=value". The program starts in
    // the folder (empty: the current one), without input and without open files of this process.
    // What it says on standard error is dropped.
    child_output(const std::vector<std::string> &words, const std::string &folder,
                 const std::vector<std::string> &environment, const limits &most);
    ~child_output() { end(); }
    child_output(const child_output &) = delete;
    child_output &operator=(const child_output &) = delete;

    // Takes a piece of what has been printed.
    child_news read();

    // What has come so far, which is gone from here.
    std::string take() { return std::move(text_); }

private:
    child_news look_after_end();
    void close_pipe();
    void end();

    limits most_;
    std::chrono::steady_clock::time_point read_; // when it was read last
    std::chrono::steady_clock::time_point last_;
    pid_t pid_ = 0; // 0: its status is taken, or somebody else's to take
    int fd_ = -1;
    std::string text_;
};

} // namespace zel::assist
