// The main of every test program. A program that ends before all its tests have run has failed,
// whatever its status says: code that ends the process would otherwise pass every test behind it.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

pid_t tests_run_in; // 0 once they have all run; a test's own children may end when they like

int status_of_end(int status)
{
    if (tests_run_in == 0 || tests_run_in != getpid())
        return status;
    std::fputs("the process ended before its tests had run\n", stderr);
    return status == 0 ? 1 : status;
}

void end_early()
{
    if (tests_run_in == getpid())
        _exit(EXIT_FAILURE);
}

} // namespace

// In place of the C library's, for code that ends the process past every handler.
extern "C" void _exit(int status)
{
    syscall(SYS_exit_group, status_of_end(status));
    __builtin_unreachable();
}

extern "C" void _Exit(int status) { _exit(status); }

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    unsetenv("SOURCE_DATE_EPOCH"); // a package's build sets it, and compiled files would bear it
    tests_run_in = getpid();
    std::atexit(end_early);
    std::at_quick_exit(end_early);
    const int status = RUN_ALL_TESTS();
    const bool none = testing::UnitTest::GetInstance()->test_to_run_count() == 0;
    tests_run_in = 0;
    if (none && !testing::GTEST_FLAG(list_tests)) {
        std::fputs("no test of that name\n", stderr);
        return EXIT_FAILURE;
    }
    return status;
}
