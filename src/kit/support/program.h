#pragma once

// Other programs that a word runs.

#include <string>
#include <vector>

namespace zel::kit {

struct program_run {
    bool started; // false: the program is not there
    int status;   // exit status, 128 or more after a signal
    std::string out;
    std::string err;
};

// Runs a program of the search path with its arguments in a folder (empty: the current one) and
// waits for it. Its input is empty; what it prints ends for us at its first zero byte.
program_run run_program(const std::vector<std::string> &words, const std::string &folder);

// How a shell calls this program: by its name where the search path leads to it, else by its path.
std::string own_command();

} // namespace zel::kit
