#pragma once

// Files as a commit has them, in a folder of their own that goes with the object.

#include <string>
#include <vector>

namespace zel::kit {

class commit_files {
public:
    commit_files() = default;
    ~commit_files();
    commit_files(const commit_files &) = delete;
    commit_files &operator=(const commit_files &) = delete;

    // Takes the files of these paths, which may be folders. False after a line on standard error:
    // there is no such commit, or a path is not in the repository of the current folder.
    bool take(const std::string &revision, const std::vector<std::string> &paths);

    // Where one of the paths lies; nothing is there when the commit does not have it.
    std::string place_of(const std::string &path) const;

private:
    std::string folder_;  // everything
    std::string top_;     // of the working tree, with a slash behind it
    std::string current_; // what stands for the current folder, with a slash behind it
};

} // namespace zel::kit
