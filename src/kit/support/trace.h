#pragma once

// What an application has asked for, as LANG_TRACE lets the library write it
// (langlib/lang-locale.h).

#include <set>
#include <string>

#include "source/picture-index.h"

namespace zel::kit {

struct trace {
    std::set<text_key> asked;
    pictured_texts marks; // what was asked for between each mark and the next
};

// Reads a trace, also one that several runs have written. False after a line on standard error: it
// cannot be read, or has a line that is none of a trace. A last line without its end, as a full
// disk leaves it, is told and left out.
bool read_trace(const std::string &path, trace &out);

} // namespace zel::kit
