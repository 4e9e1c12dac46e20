#pragma once

// A new source from the catalogs of a project that comes over.

#include <functional>
#include <string>
#include <vector>

#include "exchange/keyed-source.h"
#include "exchange/new-source.h"
#include "kit/support/sources.h"

namespace zel::kit {

// How the catalogs are read.
using take_catalog = std::function<exchange::fault(
    exchange::new_source &into, const std::string &path, std::string_view bytes)>;

// Reads the template (an empty path: there is none) and the catalogs, and writes the source; what
// it holds is said on standard output; whoever has changed the file as it was seen before is not
// overwritten. Returns the exit status.
int make_from_catalogs(const exchange::new_request &request, const take_catalog &take,
                       const std::string &pot, const std::vector<std::string> &catalogs,
                       const destination &to, const seen_file &before);

// The same from files with a text for each key.
int make_from_keys(const exchange::new_request &request, exchange::keyed_reader read,
                   const std::vector<std::string> &files, const destination &to,
                   const seen_file &before);

// A fault in a file from outside, on standard error as editors find its place.
void say_fault(const std::string &path, const exchange::fault &wrong);

} // namespace zel::kit
