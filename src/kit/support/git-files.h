#pragma once

// What git keeps of files: asked of git itself, in the repository of the current folder.

#include <optional>
#include <string>
#include <vector>

#include "kit/support/program.h"

namespace zel::kit {

// Runs git with these words in a folder (empty: the current one).
program_run run_git_program(std::vector<std::string> words, const std::string &folder = {});

// The text without what stands behind its first line end.
std::string first_line(const std::string &text);

// The top of the working tree; empty after a line "START: cause" on standard error.
std::string find_top(const std::string &start);

// A file's bytes by the name that git knows it by, "HEAD:app.lang-src", ":2:app.lang-src". None
// where git has none of that name, or not all of it can be had; why tells the cause.
std::optional<std::string> kept_text(const std::string &name, const std::string &folder,
                                     std::string &why);

// A file of which a merge has left several versions.
struct unmerged_file {
    std::string path;                    // from the top of the working tree
    bool has[3] = {false, false, false}; // base, ours, theirs
    bool is_regular = true;              // all of them; else a link or another repository
};

// Those of the named files and folders, of the whole working tree without a name. Where git does
// not tell, why is filled.
std::vector<unmerged_file> unmerged_files(const std::string &top,
                                          const std::vector<std::string> &names, std::string &why);

// A new folder that only this user can enter, which is gone with its files at the end.
class private_folder {
public:
    private_folder();
    ~private_folder();
    private_folder(const private_folder &) = delete;
    private_folder &operator=(const private_folder &) = delete;

    explicit operator bool() const { return !path_.empty(); } // false: there is none, see errno
    std::string operator/(const char *name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

} // namespace zel::kit
