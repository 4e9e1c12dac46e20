#pragma once

// A word of lang-kit. Every word is one file, kit/words/NAME.cpp, and a row of the table in
// kit/words.cpp. It reads its own options (kit/support/options.h), writes results to standard
// output and everything else to standard error, and returns the exit status.

namespace zel::kit {

enum status {
    status_fine = 0,
    status_found = 1, // findings, differences or conflicts
    status_fault = 2  // wrong use, or a file that cannot be read or written
};

struct word {
    const char *name;
    const char *arguments;                               // as the help shows them
    const char *summary;                                 // one line
    int (*run)(const word &self, int argc, char **argv); // argv[0] is the word
};

} // namespace zel::kit
