#pragma once

// The line under a translation whose original has changed in the code: what it was before, with the
// difference, "was: Open a file[+...+]". What came is bold, what went "[-is-]" is struck through.

#include <gtk/gtk.h>

#include <string>
#include <vector>

namespace zel {

struct was_line {
    std::string text;
    struct part {
        std::size_t from; // in bytes of the text
        std::size_t to;
        bool is_added;
    };
    std::vector<part> parts;
};
[[nodiscard]] was_line was_line_of(const std::string &before, const std::string &now);

// Marks its parts in a label's text in which the line begins at that byte.
void mark_was_line(PangoAttrList *list, const was_line &line, std::size_t at);

} // namespace zel
