#pragma once

// Where the records of a source stand in its file, for programs that point into it.

#include <cstddef>
#include <vector>

#include "source/read-message.h"

namespace zel {

// Filled by the reader: a group and an item by their keyword, a text or comment by its LANG or
// COMMENT word, a language by its FILE word. Holds addresses only; it is of no use once the source
// has changed.
class source_places {
public:
    void add(const void *record, place at) { found_.push_back({record, at}); }

    // The record's place; line 0 for a record that was not read. Quick for callers who ask in the
    // order of the file.
    place of(const void *record) const;

private:
    struct row {
        const void *record;
        place at;
    };
    std::vector<row> found_;             // in the order of the file
    mutable std::size_t cursor_ = 0;     // where the last one was found
    mutable std::vector<row> by_record_; // sorted, made when somebody asks out of order
};

} // namespace zel
