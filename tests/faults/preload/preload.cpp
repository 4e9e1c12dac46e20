// Preloaded into a program, makes the allocation of the number LANG_FAIL_AT fail, counted from the
// start of its main, and with LANG_FAIL_ON all behind it too. A program that comes to its end
// without one leaves the file LANG_FAIL_UNTOUCHED.
//
// With LANG_FAIL_CALL, a row of system_calls and an error, it is the system call of that number
// that fails, and the file LANG_FAIL_REPORT holds a call_report.

#include "failing-memory.h"
#include "system-calls.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <optional>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using main_function = int (*)(int, char **, char **);
using start_function = int (*)(main_function, int, char **, void (*)(), void (*)(), void (*)(),
                               void *);

main_function real_main;
std::optional<zel_test::failing_memory> memory;

void fail_calls(std::uint32_t n, bool lasting)
{
    unsigned row = 0;
    int error = 0;
    const int file = open(std::getenv("LANG_FAIL_REPORT"), O_RDWR | O_CLOEXEC);
    if (std::sscanf(std::getenv("LANG_FAIL_CALL"), "%u:%d", &row, &error) != 2 || file < 0)
        _exit(99);
    void *shared =
        mmap(nullptr, sizeof(zel_test::call_report), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    zel_test::fail_system_calls({&zel_test::system_calls()[row], n, error, lasting},
                                static_cast<zel_test::call_report *>(shared));
}

int main_without_memory(int count, char **words, char **environment)
{
    unsetenv("LD_PRELOAD"); // what the program starts is not tested
    if (const char *at = std::getenv("LANG_FAIL_AT")) {
        const unsigned long n = std::strtoul(at, nullptr, 10);
        const bool lasting = std::getenv("LANG_FAIL_ON") != nullptr;
        if (std::getenv("LANG_FAIL_CALL") != nullptr)
            fail_calls(static_cast<std::uint32_t>(n), lasting);
        else
            memory.emplace(n, lasting);
    }
    return real_main(count, words, environment);
}

[[gnu::destructor]] void note_untouched()
{
    const char *untouched = std::getenv("LANG_FAIL_UNTOUCHED");
    memory.reset();
    if (untouched != nullptr && !zel_test::memory_has_failed())
        close(open(untouched, O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
}

} // namespace

// Memory straight from the system fails as well where all of it does.
extern "C" void *mmap(void *address, std::size_t size, int protection, int flags, int file,
                      off_t offset) noexcept
{
    if (zel_test::memory_has_failed() && std::getenv("LANG_FAIL_ON") != nullptr && file == -1) {
        errno = ENOMEM;
        return MAP_FAILED;
    }
    return reinterpret_cast<void *>(
        syscall(SYS_mmap, address, size, protection, flags, file, offset));
}

// What calls main.
extern "C" int __libc_start_main(main_function function, int count, char **words, void (*init)(),
                                 void (*fini)(), void (*loader_fini)(), void *stack_end)
{
    real_main = function;
    const auto start = reinterpret_cast<start_function>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(main_without_memory, count, words, init, fini, loader_fini, stack_end);
}
