// Preloaded into a program, makes the allocation of the number LANG_FAIL_AT fail, counted from the
// start of its main, and with LANG_FAIL_ON all behind it too. A program that comes to its end
// without one leaves the file LANG_FAIL_UNTOUCHED.

#include "failing-memory.h"

#include <cerrno>
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

int main_without_memory(int count, char **words, char **environment)
{
    unsetenv("LD_PRELOAD"); // what the program starts is not tested
    if (const char *at = std::getenv("LANG_FAIL_AT"))
        memory.emplace(std::strtoul(at, nullptr, 10), std::getenv("LANG_FAIL_ON") != nullptr);
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
