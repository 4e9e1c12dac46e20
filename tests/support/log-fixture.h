#pragma once

// A program log of its own for each test, and what was logged in it.

#include "test-support.h"

#include "support/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>

namespace zel_test {

class with_log : public ::testing::Test {
protected:
    void SetUp() override { LogOpen(log_path.c_str(), LOG_OPEN_NEW, "test"); }
    void TearDown() override { LogClose(); }

    // Everything logged so far without the head; each stamp becomes "* ".
    std::string logged() const
    {
        const std::string text = read_file(log_path);
        const std::size_t head = text.find("\n\n", text.find("\n\n") + 2) + 2;
        static const std::regex stamp("\\d\\d:\\d\\d:\\d\\d:\\d{6}-[0-9a-f]{8} ");
        return std::regex_replace(text.substr(head), stamp, "* ");
    }

    temp_dir dir;
    std::string log_path = dir / "test.log";
};

} // namespace zel_test
