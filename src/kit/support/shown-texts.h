#pragma once

// Which texts of a source an application has asked for: how far its tests come, in texts.

#include <set>
#include <string>
#include <vector>

#include "kit/support/trace.h"
#include "source/model.h"

namespace zel::kit {

struct shown_texts {
    std::size_t used = 0;
    std::size_t shown = 0; // of these
    struct row {
        const edit_t *group;
        const item_t *item;
    };
    std::vector<row> never; // the others
};

// Counts the items in use, and takes what the source has off the texts that nobody knows.
shown_texts count_shown(const LangSource *source, const trace &asked, std::set<text_key> &unknown);

// "texts shown: 4 of 6, never: main:Disk full (src/save.c:88)", each further text in a line of its
// own below the first one.
void print_shown(const std::string &start, const shown_texts &texts);

// The same as a JSON object.
void append_shown(std::string &out, const std::string &path, const shown_texts &texts);

} // namespace zel::kit
