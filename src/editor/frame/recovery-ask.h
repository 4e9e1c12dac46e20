#pragma once

// The question whether to take a recovery file, and the list of what it would change.

#include <gtk/gtk.h>

#include <cstdint>
#include <string>
#include <vector>

#include "source/model.h"

namespace zel {

// One difference between the source and the recovery file.
struct recovered_difference {
    std::string where;  // "group:item", and what of it
    std::string before; // in the source that was read
    std::string after;
    bool is_text; // a text or a comment, or an item with them
};
std::vector<recovered_difference> differences_to(LangSource *before, LangSource *after);

struct recovery_question {
    std::string path;    // of the source
    std::int64_t age;    // seconds
    bool source_changed; // since the changes were made
    bool declined;       // once
    std::vector<recovered_difference> differences;
};

// True for yes. Closing the question means no.
bool ask_recovery(GtkWidget *parent, const recovery_question &question);

} // namespace zel
