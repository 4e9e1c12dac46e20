#pragma once

// What the machine of failing system calls runs. A job is a row of fault_jobs: a program with its
// words, or a function of this process's, in a fresh folder.

#include "fault-files.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace zel_test {

// What a run came to.
struct job_outcome {
    int status;
    std::string said; // on both standard streams,
    bool muted;       // which failed, too
    files before;     // in the folder
    files left;
};

struct fault_job {
    const char *name;
    const char *program;             // null: the function
    std::vector<const char *> words; // from the program's name on
    // Works in a child in the job's folder. Calls begin to fail when it calls begin_failing. 0 when
    // all went well, 1 when it said that it did not; anything else is a loss.
    int (*function)(void (*begin_failing)());
    void (*prepare)(); // fills the folder
    // What must hold after a run, whatever failed; whole is the outcome when nothing does. Returns
    // what does not, or nothing.
    std::string (*look)(const job_outcome &run, const job_outcome &whole);
    int worst_status = 0;    // of a program
    std::uint32_t every = 1; // whose runs take long: only each that many of the calls fails
};

std::span<const fault_job> fault_jobs();

} // namespace zel_test
