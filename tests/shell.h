#pragma once

// Runs a shell's words with the built programs first in the path.

#include "test-support.h"

#include <cstdlib>
#include <string>
#include <sys/wait.h>

namespace zel_test {

struct shell_run {
    int status; // -1 where a signal ended it
    std::string out;
    std::string err;
};

// The words may be any script; who needs longer than five minutes goes in a circle.
inline shell_run shell(const std::string &words)
{
    const temp_dir dir;
    const std::string kit = LANG_KIT;
    write_file(dir / "command",
               "PATH='" + kit.substr(0, kit.rfind('/')) + "':$PATH\nexport PATH\n" + words + "\n");
    const int status = std::system(("timeout 300 sh '" + dir / "command" + "' >'" + dir / "out" +
                                    "' 2>'" + dir / "err" + "' </dev/null")
                                       .c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read_file(dir / "out"),
            read_file(dir / "err")};
}

} // namespace zel_test
