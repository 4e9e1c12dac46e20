#pragma once

// The search for requests in code, as the words check and lint run it.

#include <memory>
#include <string>
#include <vector>

#include "checker/c-scan.h"

namespace zel::kit {

// The wrappers that a project's keywords tell; none where there are no keywords. False after a line
// on standard error for a keyword that is none.
bool make_wrappers(const std::vector<std::string> &keywords, const std::string &group,
                   std::unique_ptr<wrapper_words> &out);

// Scans the files and folders as the check does. False after a line on standard error for each path
// that cannot be read.
bool scan_code(item_index &index, const std::vector<std::string> &paths, const scan_how &how);

// The message about such a request, in words for people.
std::string message_of(const unread_request &found);
std::string message_of(const adjacent_request &found);

} // namespace zel::kit
