#pragma once

// The options of a word: long ones, a few with a letter too, before, between or behind the files.

#include <string>
#include <vector>

#include "kit/support/word.h"

namespace zel::kit {

// One option and where its value goes; exactly one of the addresses is set. Texts are the bytes of
// the command line.
struct option {
    const char *name = nullptr;               // without dashes
    const char *argument = nullptr;           // what the help calls the value; null for a switch
    const char *help = nullptr;               // one line
    bool *on = nullptr;                       // set by a switch
    std::string *text = nullptr;              // the last value counts
    std::vector<std::string> *list = nullptr; // all values, split at commas when asked for
    bool split = false;
    char letter = '\0'; // also "-o"
};

struct parsed {
    bool ends;  // help was printed, or the use was wrong: return the status
    int status; // of that
    std::vector<std::string> files;
};

// Reads the options of a word. "--help" prints its help on standard output. An unknown option, a
// missing value, or fewer or more files than the word takes gets one line on standard error.
parsed parse(const word &self, int argc, char **argv, const std::vector<option> &options,
             std::size_t least_files, std::size_t most_files);

// One line on standard error, "lang-kit WORD: text", and the status of wrong use.
int wrong_use(const word &self, const std::string &text);

// Of a file that must not be there yet: 0, or the status after a line on standard error.
int refuse_present(const word &self, const std::string &path);

// The position of a value among the names, or -1 after the line that an option's value is wrong.
int choose(const word &self, const char *option_name, const std::string &value,
           const std::vector<const char *> &names);

// Reads the value of an option that is a whole percentage; false after the line that it is none.
bool take_percent(const word &self, const char *option_name, const std::string &value,
                  unsigned &percent);

} // namespace zel::kit
