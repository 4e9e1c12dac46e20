#pragma once

// The list of terms beside a source (lint/glossary).

#include <memory>
#include <string>

#include "lint/glossary.h"
#include "source/model.h"

namespace zel::kit {

class glossary_files {
public:
    // The terms for a source, null where its folder has no list. A list that serves the next source
    // too is read once. False, after lines on standard error, for one that does not read; they are
    // printed once.
    bool find(const std::string &path, const LangSource *source,
              std::shared_ptr<const lint::glossary> &out);

private:
    std::string path_;
    std::string reference_;
    std::shared_ptr<const lint::glossary> last_;
};

} // namespace zel::kit
