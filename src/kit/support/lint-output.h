#pragma once

// The forms in which lint prints what it found.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lint/finding.h"
#include "source/read-message.h"

namespace zel::kit {

// A finding with its place. A null member means that it has no such thing.
struct shown_finding {
    const char *file;
    place at; // line 0: the file as a whole
    lint::rule_id rule;
    const char *group;
    const char *item;
    const char *language;
    std::string_view message;
};

class lint_output {
public:
    virtual ~lint_output() = default;
    virtual void add(const shown_finding &found) = 0; // in the order in which they are shown
    // Adds what cannot be read (an empty path for several files), and why.
    virtual void add_unreadable(const std::string & /*path*/, const std::string & /*why*/) {}
    virtual void end() {}
};

// The names of the forms, and one of them by its position among those; it prints to standard
// output.
std::vector<const char *> lint_formats();
std::unique_ptr<lint_output> make_lint_output(int format);

} // namespace zel::kit
