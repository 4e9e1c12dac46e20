#pragma once

// The versions of a file that git keeps, newest first, asked of git itself while nobody waits for
// it. Without git, outside of a repository, or in one that git does not trust, there are none.
//
// A repository may be somebody else's: nothing of what its settings name is run, nothing is
// fetched, nobody is asked for a password, and nothing in it is written.

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "assist/child-output.h"

namespace zel::assist {

enum class revision_news {
    came,  // something was done
    waits, // git is at work
    text,  // the next version is there
    over   // there are no more
};

class revisions {
public:
    revisions(const std::string &path, std::size_t count, std::size_t bytes_of_one);

    // Does a piece of the work. With text, all bytes of a version are put there; those of more
    // bytes are passed over, as are commits that have not the file.
    revision_news step(std::string &text);

private:
    void run(const std::vector<std::string> &words, std::size_t bytes);
    void take_list(const std::string &lines);

    std::string git_; // the program's path
    std::string folder_;
    std::string name_; // of the file, beginning with "./"
    std::size_t bytes_of_one_;
    std::vector<std::string> environment_;
    bool is_listed_ = false;
    std::vector<std::string> commits_;    // to be read, the newest at the end
    std::unique_ptr<child_output> child_; // null between two
};

} // namespace zel::assist
