#pragma once

// Runs a shell's words with the built programs first in the path, and looks at the files of the
// tree.

#include "test-support.h"

#include <cstdlib>
#include <iterator>
#include <regex>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace zel_test {

struct shell_run {
    int status;
    std::string out;
    std::string err;
};

inline std::string in_root(const std::string &path) { return LANG_SOURCE_ROOT "/" + path; }
inline std::string text_of(const std::string &path) { return read_file(in_root(path)); }

inline shell_run shell(const std::string &words)
{
    const temp_dir dir;
    const std::string kit = LANG_KIT;
    write_file(dir / "command",
               "PATH='" + kit.substr(0, kit.rfind('/')) + "':$PATH\nexport PATH\n" + words + "\n");
    const int status = std::system(
        ("sh '" + dir / "command" + "' >'" + dir / "out" + "' 2>'" + dir / "err" + "' </dev/null")
            .c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read_file(dir / "out"),
            read_file(dir / "err")};
}

// What the first brackets of the pattern hold, at every place where it fits.
inline std::vector<std::string> matches(const std::string &text, const std::string &pattern)
{
    std::vector<std::string> found;
    const std::regex regex(pattern);
    for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at)
        found.push_back((*at)[1]);
    return found;
}

} // namespace zel_test
