#pragma once

// Catalogs that somebody else knows, with the texts of a source.

#include <string>
#include <vector>

#include "exchange/export.h"

namespace zel::kit {

// Writes each catalog anew, by its own name, into the folder (an empty path: the current one). The
// paths are printed; what is not as in the source is said on standard error. Returns the exit
// status.
int write_like_catalogs(const exchange::export_request &request,
                        const std::vector<std::string> &catalogs, const std::string &folder,
                        bool dry_run);

} // namespace zel::kit
