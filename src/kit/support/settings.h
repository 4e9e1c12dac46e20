#pragma once

// A project's settings, in the file lang-kit.ini beside its language source. Without the file, and
// without a line in it, everything is as the words have it.
//
//   [project]
//   code=src;include                  folders and files, from the folder of the settings
//   keywords=_:1;tr_n:1,2 plural      the application's own words for requests
//   group=main                        the group of keywords that name none
//   languages=german;french           what lint and stat look at
//   [lint]
//   fail-on=warning
//   without=unused,not-ready
//   baseline=known.txt                from the folder of the settings

#include <string>
#include <vector>

namespace zel::kit {

struct settings {
    std::vector<std::string> code; // as paths from the current folder
    std::vector<std::string> keywords;
    std::string group;
    std::vector<std::string> languages;
    std::string fail_on;
    std::vector<std::string> without;
    std::string baseline; // as a path from the current folder
};

// Reads the settings beside the source. False after a line on standard error: the file does not
// read, or has a line that nobody knows.
bool read_settings(const std::string &source, settings &out);

// What the command line gives takes the place of a setting.
template <class T>
void take_setting(T &given, const T &setting)
{
    if (given.empty())
        given = setting;
}

} // namespace zel::kit
