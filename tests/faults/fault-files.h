#pragma once

// What the fault machines work on, and what lies in a folder afterwards.

#include "working-dir.h"

#include <filesystem>
#include <map>
#include <string>

namespace zel_test {

// Every kind of thing, and a text for which the scanner's room must grow.
inline const std::string &old_source()
{
    static const std::string text =
        "define format utf8\napp \"notes:1\"\nwhatsnew 5\ndefault lang \"english\"\n"
        "define file \"english.lang\" lang \"english\" 200 200 1\n"
        "define file \"german.lang\" lang \"german\" 200 200 1\n"
        "GROUP \"g\" {\n  SCREEN_SHOT \"shot\"\n  ITEM \"Open\" {\n    DESCRIPTION \"note\"\n"
        "    USED YES { \"00001:old.c\" }\n    LANG \"english\" { \"Open\\n\" \"it\" }\n"
        "    LANG \"german\" { \"" +
        std::string(9000, 'o') +
        "\" }\n    COMMENT \"german\" { \"comment\" }\n  }\n"
        "  ITEM \"Close\" { USED YES LANG \"english\" { \"Close\" } }\n}\n"
        "GROUP \"h\" { ITEM \"x\" { USED NO LANG \"german\" { \"ix\" } } }\n";
    return text;
}

inline const std::string &application_code()
{
    static const std::string text =
        "a = lang_get_string(\"g\", \"Open\");\n"
        "b = \"" +
        std::string(9000, 'l') +
        "\";\nc = lang_get(\"a new one\", \"new\", \"Item\" \" in pieces\");\n"
        "d = \"lang_get_string(\\\"g\\\", \\\"Close\\\")\";\n";
    return text;
}

using files = std::map<std::string, std::string>;

// Every file below a folder. Times of the run read NOW, and so does the stamp of a backup.
inline files files_below(const std::string &folder)
{
    namespace fs = std::filesystem;
    files all;
    const auto links = fs::directory_options::follow_directory_symlink;
    for (const auto &file : fs::recursive_directory_iterator(folder, links)) {
        if (!file.is_regular_file())
            continue;
        const std::string name = file.path().lexically_relative(folder);
        all[replace_pattern(name, "-0000-00-00-00-00-00", "-NOW")] =
            replace_pattern(replace_pattern(read_file(file.path()), " 0000000000", " NOW"),
                            "0000-00-00 00:00:00", "NOW");
    }
    return all;
}

} // namespace zel_test
