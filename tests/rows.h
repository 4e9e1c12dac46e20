#pragma once

// Rows of a table that stands in a file of its own. Its lines, but for blank ones and those that
// begin with "#":
//   a name                  opens a section
//     "a" "b\n" "\xe4"      (behind blanks) is a row of texts, each in quotes and with C's escapes
//     `a "b"`"\n"           is one text: what touches is joined, and between ` nothing is an escape
//         "c"               (behind four blanks or more) goes on with the row above

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "test-support.h"

namespace zel_test {

struct row {
    std::string section;
    int line; // in the file, for messages
    std::vector<std::string> texts;

    // The text of a column; empty where the row has none.
    const std::string &operator[](std::size_t n) const
    {
        static const std::string none;
        return n < texts.size() ? texts[n] : none;
    }
};

// The text behind a quote; the position moves behind its other one.
inline std::string quoted_text(const std::string &line, std::size_t &at)
{
    static const std::string letters = "ntrabvf0";
    static const std::string meant("\n\t\r\a\b\v\f\0", 8);
    std::string out;
    for (; at < line.size() && line[at] != '"'; ++at) {
        if (line[at] != '\\') {
            out += line[at];
        } else if (line[++at] == 'x') {
            out += static_cast<char>(std::strtol(line.substr(at + 1, 2).c_str(), nullptr, 16));
            at += 2;
        } else {
            const std::size_t known = letters.find(line[at]);
            out += known == letters.npos ? line[at] : meant[known];
        }
    }
    require(at++ < line.size(), "a row without its last quote");
    return out;
}

// The rows of a file below tests/, or of one section of it.
inline std::vector<row> rows_of(const std::string &name, const std::string &section = "")
{
    std::ifstream file(LANG_SOURCE_ROOT "/tests/" + name);
    require(file.good(), name.c_str());
    std::vector<row> rows;
    std::string line;
    std::string open;
    for (int number = 1; std::getline(file, line); ++number) {
        const std::size_t indent = line.find_first_not_of(' ');
        if (indent == line.npos || line[indent] == '#')
            continue;
        if (indent == 0)
            open = line;
        if (indent == 0 || (!section.empty() && open != section))
            continue;
        if (indent < 4)
            rows.push_back({open, number, {}});
        std::vector<std::string> &texts = rows.back().texts;
        for (std::size_t at = 0; (at = line.find_first_of("\"`", at)) != line.npos;) {
            const bool joined = at > indent && line[at - 1] != ' ';
            const bool plain = line[at++] == '`';
            const std::size_t end = plain ? line.find('`', at) : at;
            const std::string text = plain ? line.substr(at, end - at) : quoted_text(line, at);
            at = plain ? end + 1 : at;
            joined ? texts.back().append(text) : texts.emplace_back(text);
        }
    }
    require(!rows.empty(), name.c_str());
    return rows;
}

} // namespace zel_test
