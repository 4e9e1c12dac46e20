// The line for somebody who watches, on a terminal of the test's own.

#include "kit/support/progress.h"

#include "test-support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using zel::kit::progress;

void count_for(progress &shown, std::chrono::milliseconds time)
{
    const auto end = std::chrono::steady_clock::now() + time;
    for (std::size_t done = 1; std::chrono::steady_clock::now() < end; ++done) {
        shown.at(done % 30001);
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
}

// What standard error shows meanwhile, when it is a terminal.
template <class Function>
std::string on_terminal(Function &&function)
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    zel_test::require(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0, "pty");
    const int terminal = open(ptsname(master), O_RDWR | O_NOCTTY);
    const int saved = dup(STDERR_FILENO);
    zel_test::require(terminal >= 0 && dup2(terminal, STDERR_FILENO) >= 0, "terminal");
    function();
    zel_test::require(dup2(saved, STDERR_FILENO) >= 0, "dup2");
    std::string text;
    char part[4096];
    pollfd ready{master, POLLIN, 0}; // the system hands it over in its own time
    while (poll(&ready, 1, 200) > 0 && (ready.revents & POLLIN) != 0) {
        const ssize_t length = read(master, part, sizeof part);
        if (length <= 0)
            break;
        text.append(part, static_cast<std::size_t>(length));
    }
    for (const int file : {master, terminal, saved})
        close(file);
    return text;
}

TEST(ProgressSlow, IsALineOnATerminalThatIsGoneAtTheEnd)
{
    const std::string text = on_terminal([] {
        progress shown("app.lang-src", 30000);
        count_for(shown, std::chrono::milliseconds(900));
    });
    EXPECT_THAT(text, HasSubstr("\rapp.lang-src "));
    EXPECT_THAT(text, HasSubstr(" of 30,000"));
    EXPECT_THAT(text, EndsWith(" \r"));
    EXPECT_EQ(text.find('\n'), std::string::npos);
}

TEST(ProgressSlow, SaysNothingInAPipeNorForAShortRun)
{
    EXPECT_EQ(on_terminal([] {
                  progress shown("app.lang-src", 30000);
                  count_for(shown, std::chrono::milliseconds(50));
              }),
              "");
    EXPECT_EQ(zel_test::capture_stderr([] {
                  progress shown("app.lang-src", 30000);
                  count_for(shown, std::chrono::milliseconds(700));
              }),
              "");
}

} // namespace
