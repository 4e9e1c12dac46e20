#include "kit/support/commit-files.h"

#include <cstdio>

namespace zel::kit {

namespace {

// Arguments: revision, folder, path... An index of its own leaves the repository as it is. Prints
// where the repository is, and where the current folder is in it.
constexpr const char *script =
    "command -v git >/dev/null || exit 4\n"
    "commit=$(git rev-parse --verify --quiet \"$1^{tree}\") || exit 3\n"
    "folder=$2\n"
    "shift 2\n"
    "GIT_INDEX_FILE=$folder/index GIT_LITERAL_PATHSPECS=1\n"
    "export GIT_INDEX_FILE GIT_LITERAL_PATHSPECS\n"
    "set -e\n"
    "git read-tree \"$commit\"\n"
    "git ls-files -z -- \"$@\" >\"$folder/names\"\n"
    "git checkout-index -z --stdin --prefix=\"$folder/tree/\" <\"$folder/names\"\n"
    "mkdir -p \"$folder/tree/$(git rev-parse --show-prefix)\"\n"
    "git rev-parse --show-toplevel --show-prefix\n";

bool say(const std::string &text)
{
    std::fprintf(stderr, "lang-kit lint: %s\n", text.c_str());
    return false;
}

} // namespace

bool commit_files::take(const std::string &revision, const std::vector<std::string> &paths)
{
    folder_.emplace();
    if (!*folder_)
        return say("a temporary folder cannot be made");
    tree_ = *folder_ / "tree/";
    std::vector<std::string> words{"sh", "-c", script, "sh", revision, *folder_ / ""};
    words.insert(words.end(), paths.begin(), paths.end());
    const program_run run = run_program(words, "");
    if (!run.started)
        return say("a shell cannot be started");
    if (run.status == 3)
        return say("\"" + revision + "\" is no commit of a repository here");
    if (run.status == 4)
        return say("git is not installed");
    if (run.status != 0)
        return say(run.err.empty() ? "the files of \"" + revision + "\" cannot be read"
                                   : first_line(run.err));
    top_ = first_line(run.out) + "/";
    current_ = tree_ + first_line(run.out.substr(top_.size()));
    return true;
}

std::string commit_files::place_of(const std::string &path) const
{
    if (!path.starts_with('/'))
        return current_ + path;
    return tree_ + (path.starts_with(top_) ? path.substr(top_.size()) : path);
}

} // namespace zel::kit
