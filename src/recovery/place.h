#pragma once

// Where the files lie that belong to a source and are none of its own: recovery files and locks, in
// the folder "recovery" of the program's home.

#include <string>

namespace zel {

// The source's absolute path, without links.
std::string absolute_path(const char *source);

// The folder, made and closed to others where that is needed. Empty when there can be none, and the
// log tells why: HOME names no folder, it is somebody else's, it cannot be written.
std::string recovery_folder();

// What the names of all files of a source begin with: a hash of its absolute path and, for people,
// the end of that path. No two sources have the same.
std::string name_of_source(const std::string &absolute);

} // namespace zel
