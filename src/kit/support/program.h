#pragma once

// Other programs that a word runs.

#include <cstdint>
#include <string>
#include <vector>

namespace zel::kit {

struct program_run {
    bool started; // false: err has the cause, and is empty where the program is not there
    int status;   // exit status, 128 or more after a signal; 127 where it has none
    std::string out;
    std::string err;
    bool too_much = false; // it said more than was wanted, and was ended
};

// Runs a program of the search path with its arguments in a folder (empty: the current one) and
// waits for it. Its input is empty; what it prints ends for us at its first zero byte. Who says
// more than that many bytes, in its output or its messages, is ended.
program_run run_program(const std::vector<std::string> &words, const std::string &folder,
                        std::size_t most = SIZE_MAX);

// How a shell calls this program: by its name where the search path leads to it, else by its path.
std::string own_command();

} // namespace zel::kit
