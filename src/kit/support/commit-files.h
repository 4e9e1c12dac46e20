#pragma once

// Files as a commit has them, in a folder of their own that goes with the object.

#include <optional>
#include <string>
#include <vector>

#include "kit/support/git-files.h"

namespace zel::kit {

class commit_files {
public:
    // Takes the files of these paths, which may be folders. False after a line on standard error:
    // there is no such commit, or a path is not in the repository of the current folder.
    bool take(const std::string &revision, const std::vector<std::string> &paths);

    // Where one of the paths lies; nothing is there when the commit does not have it.
    std::string place_of(const std::string &path) const;

private:
    std::optional<private_folder> folder_; // everything
    std::string tree_;                     // the files in it
    std::string top_;                      // of the working tree, with a slash behind it
    std::string current_; // what stands for the current folder, with a slash behind it
};

} // namespace zel::kit
