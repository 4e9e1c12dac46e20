#pragma once

// System calls that fail when asked to, and processes that are killed at any of theirs. Stands in
// for the C library's functions, so it is included in one file of a test program.

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <functional>
#include <sys/file.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace zel_test {

struct fault {
    const char *call = ""; // the call that fails,
    int countdown = 0;     // this many calls of it from now,
    int error = 0;         // with this errno,
    bool lasting = false;  // and each one after it;
    bool struck = false;
    std::function<void()> instead{}; // of failing: happens just before the call
};
inline fault armed;

struct call_that_fails {
    const char *name;
    int error;
};

inline bool fails(const char *call)
{
    if (std::strcmp(armed.call, call) != 0 || (--armed.countdown != 0 && !armed.lasting) ||
        armed.countdown > 0)
        return false;
    armed.struck = true;
    if (armed.instead) {
        std::exchange(armed.instead, nullptr)();
        armed.call = "";
        return false;
    }
    errno = armed.error;
    return true;
}

template <class Function>
Function *real(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

// Runs the function in a process that dies at the given stop: every system call has one before it
// and one behind it. False once the process ended by itself.
enum class death { killed, ended, not_allowed };
template <class Function>
death kill_at(int stop, Function function)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            _exit(77);
        raise(SIGSTOP);
        function();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    while (WIFSTOPPED(status) && stop-- > 0) {
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        waitpid(child, &status, 0);
    }
    if (!WIFSTOPPED(status))
        return WIFEXITED(status) && WEXITSTATUS(status) == 77 ? death::not_allowed : death::ended;
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return death::killed;
}

} // namespace zel_test

// The calls by name, with what they give when they fail.
#define ZEL_FAILING(result, name, parameters, arguments, failed)                                   \
    result name parameters                                                                         \
    {                                                                                              \
        static auto *next = zel_test::real<result parameters>(#name);                              \
        return zel_test::fails(#name) ? (failed) : next arguments;                                 \
    }

extern "C" {

ZEL_FAILING(int, rename, (const char *from, const char *to) noexcept, (from, to), -1)
ZEL_FAILING(int, renameat2,
            (int at, const char *from, int to_at, const char *to, unsigned how) noexcept,
            (at, from, to_at, to, how), -1)
ZEL_FAILING(int, link, (const char *from, const char *to) noexcept, (from, to), -1)
ZEL_FAILING(int, unlink, (const char *path) noexcept, (path), -1)
ZEL_FAILING(int, fsync, (int fd), (fd), -1)
ZEL_FAILING(int, flock, (int fd, int how) noexcept, (fd, how), -1)
ZEL_FAILING(int, fchmod, (int fd, mode_t mode) noexcept, (fd, mode), -1)
ZEL_FAILING(int, fchown, (int fd, uid_t user, gid_t group) noexcept, (fd, user, group), -1)
ZEL_FAILING(int, lstat, (const char *path, struct stat *status) noexcept, (path, status), -1)
ZEL_FAILING(std::FILE *, fdopen, (int fd, const char *mode) noexcept, (fd, mode), nullptr)
ZEL_FAILING(ssize_t, write, (int fd, const void *data, std::size_t size), (fd, data, size), -1)
ZEL_FAILING(ssize_t, pread, (int fd, void *data, std::size_t size, off_t at), (fd, data, size, at),
            -1)

int close(int fd)
{
    static auto *next = zel_test::real<int(int)>("close");
    const bool fail = zel_test::fails("close");
    const int error = errno;
    const int result = next(fd); // it is closed all the same
    if (!fail)
        return result;
    errno = error;
    return -1;
}

int open(const char *path, int flags, ...)
{
    static auto *next = zel_test::real<int(const char *, int, ...)>("open");
    std::va_list args;
    va_start(args, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(args, mode_t) : 0;
    va_end(args);
    return zel_test::fails("open") ? -1 : next(path, flags, mode);
}

} // extern "C"
