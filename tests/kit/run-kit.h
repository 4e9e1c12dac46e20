#pragma once

// Runs the companion as a shell does, and what comes out of it.

#include "test-support.h"

#include <cstdlib>
#include <string>
#include <sys/wait.h>

namespace zel_test {

struct kit_run {
    int status;
    std::string out;
    std::string err;
};

// The words are a shell's, so that they may be quoted and redirected.
inline kit_run kit(const std::string &words)
{
    const temp_dir dir;
    const std::string command = "{ '" LANG_KIT "' " + words + "; } >'" + dir / "out" + "' 2>'" +
                                dir / "err" + "' </dev/null";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read_file(dir / "out"),
            read_file(dir / "err")};
}

} // namespace zel_test
