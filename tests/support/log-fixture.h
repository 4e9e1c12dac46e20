#pragma once

// A program log of its own for each test, and what was logged in it.

#include "test-support.h"

#include "support/log.h"

#include <cctype>
#include <gtest/gtest.h>
#include <string_view>

namespace zel_test {

// True when the text begins with the stamp of a log line.
inline bool begins_with_stamp(std::string_view text)
{
    constexpr std::string_view pattern = "00:00:00:000000-xxxxxxxx ";
    if (text.size() < pattern.size())
        return false;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const bool fits = pattern[i] == '0'   ? std::isdigit(c) != 0
                          : pattern[i] == 'x' ? std::isxdigit(c) != 0
                                              : text[i] == pattern[i];
        if (!fits)
            return false;
    }
    return true;
}

class with_log : public ::testing::Test {
protected:
    void SetUp() override { LogOpen(log_path.c_str(), LOG_OPEN_NEW, "test"); }
    void TearDown() override { LogClose(); }

    // Everything logged so far without the head; each stamp becomes "* ".
    std::string logged() const
    {
        constexpr std::size_t stamp_size = 25;
        const std::string text = read_file(log_path);
        std::string seen;
        for (std::size_t at = text.find("\n\n", text.find("\n\n") + 2) + 2; at < text.size();) {
            const bool stamp = begins_with_stamp(std::string_view(text).substr(at));
            seen += stamp ? "* " : text.substr(at, 1);
            at += stamp ? stamp_size : 1;
        }
        return seen;
    }

    temp_dir dir;
    std::string log_path = dir / "test.log";
};

} // namespace zel_test
