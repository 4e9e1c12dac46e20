// Preloaded into a program, lets it run by turns and gives it the clock of the file
// LANG_OFFICE_CLOCK. Numbers of calls come by descriptor 3, pauses go out by 4.

#include "system-calls.h"

#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

using main_function = int (*)(int, char **, char **);
using start_function = int (*)(main_function, int, char **, void (*)(), void (*)(), void (*)(),
                               void *);

constexpr int numbers = 3;
constexpr int pauses = 4;
constexpr std::int64_t second = 1000000000;
constexpr std::int64_t glance = 50000; // what a look at the clock takes

main_function real_main;
zel_test::shared_clock nobodys{};
zel_test::shared_clock *shared = &nobodys;

std::int64_t look(bool steady)
{
    shared->real += glance;
    shared->steady += glance;
    return steady ? shared->steady : shared->real;
}

int main_by_turns(int count, char **words, char **environment)
{
    unsetenv("LD_PRELOAD");
    const int file = open(std::getenv("LANG_OFFICE_CLOCK"), O_RDWR | O_CLOEXEC);
    void *clock = mmap(nullptr, sizeof *shared, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (clock == MAP_FAILED)
        _exit(98);
    close(file);
    shared = static_cast<zel_test::shared_clock *>(clock);
    zel_test::take_turns(numbers, pauses, shared);
    return real_main(count, words, environment);
}

} // namespace

extern "C" int clock_gettime(clockid_t which, timespec *time) noexcept
{
    if (which != CLOCK_REALTIME && which != CLOCK_MONOTONIC)
        return static_cast<int>(syscall(SYS_clock_gettime, which, time));
    const std::int64_t now = look(which == CLOCK_MONOTONIC);
    *time = {now / second, now % second};
    return 0;
}

extern "C" int gettimeofday(timeval *time, void *) noexcept
{
    const std::int64_t now = look(false);
    *time = {now / second, now % second / 1000};
    return 0;
}

extern "C" time_t time(time_t *time) noexcept
{
    const time_t now = look(false) / second;
    if (time != nullptr)
        *time = now;
    return now;
}

// What calls main.
extern "C" int __libc_start_main(main_function function, int count, char **words, void (*init)(),
                                 void (*fini)(), void (*loader_fini)(), void *stack_end)
{
    real_main = function;
    const auto start = reinterpret_cast<start_function>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(main_by_turns, count, words, init, fini, loader_fini, stack_end);
}
