#include "system-calls.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <link.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <ucontext.h>
#include <unistd.h>
#include <vector>

// Without a processor whose registers are known here nothing can fail, and the tests say so.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define LANG_SANITIZED
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define LANG_SANITIZED
#endif
#if defined(__x86_64__) && !defined(LANG_SANITIZED)
#define LANG_SEES_CALLS 1
#else
#define LANG_SEES_CALLS 0
#endif

namespace zel_test {

namespace {

#if LANG_SEES_CALLS
constexpr long of_open[] = {SYS_openat, SYS_open, SYS_creat};
constexpr long of_read[] = {SYS_read, SYS_pread64, SYS_readv};
constexpr long of_write[] = {SYS_write, SYS_pwrite64, SYS_writev};
constexpr long of_sync[] = {SYS_fsync, SYS_fdatasync};
constexpr long of_close[] = {SYS_close};
constexpr long of_rename[] = {SYS_rename, SYS_renameat, SYS_renameat2};
constexpr long of_link[] = {SYS_link, SYS_linkat};
constexpr long of_unlink[] = {SYS_unlink, SYS_unlinkat};
constexpr long of_stat[] = {SYS_newfstatat, SYS_stat, SYS_lstat, SYS_fstat, SYS_statx};
constexpr long of_access[] = {SYS_access, SYS_faccessat, SYS_faccessat2};
constexpr long of_mkdir[] = {SYS_mkdir, SYS_mkdirat};
constexpr long of_list[] = {SYS_getdents64};
constexpr long of_seek[] = {SYS_lseek};
constexpr long of_lock[] = {SYS_flock, SYS_fcntl};
constexpr long of_attributes[] = {SYS_fchmod,     SYS_fchown,    SYS_flistxattr,
                                  SYS_llistxattr, SYS_fgetxattr, SYS_lgetxattr,
                                  SYS_fsetxattr,  SYS_listxattr, SYS_getxattr};
constexpr long of_truncate[] = {SYS_ftruncate, SYS_truncate};
constexpr long of_path[] = {SYS_readlink, SYS_readlinkat, SYS_getcwd};
constexpr long of_sleep[] = {SYS_clock_nanosleep, SYS_nanosleep};
#else
constexpr long of_open[] = {-1};
constexpr auto &of_read = of_open, &of_write = of_open, &of_sync = of_open, &of_close = of_open,
               &of_rename = of_open, &of_link = of_open, &of_unlink = of_open, &of_stat = of_open,
               &of_access = of_open, &of_mkdir = of_open, &of_list = of_open, &of_seek = of_open,
               &of_lock = of_open, &of_attributes = of_open, &of_truncate = of_open,
               &of_path = of_open;
#endif

constexpr int open_errors[] = {EMFILE, EACCES, ENFILE, ENOENT, EIO, ENOSPC, EINTR};
constexpr int read_errors[] = {EIO, EINTR, half_done};
constexpr int write_errors[] = {ENOSPC, EIO, EINTR, EDQUOT, EFBIG, half_done};
constexpr int sync_errors[] = {EIO, ENOSPC, EROFS};
constexpr int close_errors[] = {EIO, EDQUOT, EINTR};
constexpr int rename_errors[] = {EACCES, EXDEV, ENOSPC, EIO, EBUSY};
constexpr int link_errors[] = {EPERM, EMLINK, ENOSPC, EIO, EEXIST};
constexpr int unlink_errors[] = {EACCES, EIO, EBUSY};
constexpr int stat_errors[] = {EIO, EACCES};
constexpr int mkdir_errors[] = {EACCES, ENOSPC, EEXIST, EROFS};
constexpr int list_errors[] = {EIO};
constexpr int seek_errors[] = {ESPIPE, EINVAL};
constexpr int lock_errors[] = {ENOLCK, EINTR};
constexpr int attribute_errors[] = {EPERM, ENOTSUP, EIO};
constexpr int truncate_errors[] = {EIO, ENOSPC};
constexpr int path_errors[] = {EACCES, ENOENT};

constexpr call_row rows[] = {
    {"open", of_open, open_errors},
    {"read", of_read, read_errors},
    {"write", of_write, write_errors},
    {"sync", of_sync, sync_errors},
    {"close", of_close, close_errors},
    {"rename", of_rename, rename_errors},
    {"link", of_link, link_errors},
    {"unlink", of_unlink, unlink_errors},
    {"stat", of_stat, stat_errors},
    {"access", of_access, stat_errors},
    {"mkdir", of_mkdir, mkdir_errors},
    {"list", of_list, list_errors},
    {"seek", of_seek, seek_errors},
    {"lock", of_lock, lock_errors},
    {"attributes", of_attributes, attribute_errors},
    {"truncate", of_truncate, truncate_errors},
    {"path", of_path, path_errors},
};

} // namespace

std::span<const call_row> system_calls() { return rows; }

#if LANG_SEES_CALLS

// A system call that the filter lets through: it looks at the address behind it.
extern "C" long lang_raw_call(long number, long a, long b, long c, long d, long e, long f);
extern "C" const char lang_raw_call_end[];
asm(R"(
    .text
    .globl lang_raw_call
    .hidden lang_raw_call
    .type lang_raw_call, @function
lang_raw_call:
    mov %rdi, %rax
    mov %rsi, %rdi
    mov %rdx, %rsi
    mov %rcx, %rdx
    mov %r8, %r10
    mov %r9, %r8
    mov 8(%rsp), %r9
    syscall
    .globl lang_raw_call_end
    .hidden lang_raw_call_end
lang_raw_call_end:
    ret
)");

namespace {

call_fault wanted;
call_report nobody;
call_report *report = &nobody;
int record_fd = -1;

long raw(long number, long a = 0, long b = 0, long c = 0, long d = 0, long e = 0, long f = 0)
{
    return lang_raw_call(number, a, b, c, d, e, f);
}

struct call {
    long number;
    long arguments[6];
    long run() const
    {
        const long *a = arguments;
        return raw(number, a[0], a[1], a[2], a[3], a[4], a[5]);
    }
};

bool is_of(const call_row &row, long number)
{
    for (const long one : row.numbers)
        if (one == number)
            return true;
    return false;
}

// What a message goes out with.
constexpr long message_numbers[] = {SYS_write, SYS_writev, SYS_fstat, SYS_newfstatat, SYS_close};
constexpr call_row message_calls = {"", message_numbers, {}};

// The result of a call that fails.
long fail(call made)
{
    report->struck = 1;
    if (is_of(message_calls, made.number) && (made.arguments[0] == 1 || made.arguments[0] == 2))
        report->muted = 1;
    if (wanted.error == half_done) {
        if (made.number == SYS_readv || made.number == SYS_writev)
            made.arguments[2] = 1; // the first of several pieces
        else if (made.arguments[2] > 1)
            made.arguments[2] /= 2;
        return made.run();
    }
    if (made.number == SYS_close)
        made.run(); // it is closed all the same
    return -wanted.error;
}

bool must_fail(const call &made)
{
    if (wanted.row == nullptr || !is_of(*wanted.row, made.number))
        return false;
    ++report->seen;
    return wanted.n != 0 &&
           (report->seen == wanted.n || (wanted.lasting && report->seen > wanted.n));
}

// ---- Writing down

void put(const call_record &record, const char *first, std::size_t first_size,
         const char *second = nullptr)
{
    call_record whole = record;
    const std::size_t second_size = second == nullptr ? 0 : std::strlen(second) + 1;
    whole.size = static_cast<std::uint32_t>(first_size + second_size);
    raw(SYS_write, record_fd, reinterpret_cast<long>(&whole), sizeof whole);
    raw(SYS_write, record_fd, reinterpret_cast<long>(first), static_cast<long>(first_size));
    if (second != nullptr)
        raw(SYS_write, record_fd, reinterpret_cast<long>(second), static_cast<long>(second_size));
}

call_record record_of(call_record::kind what, long fd, std::int64_t offset = 0)
{
    struct stat status {};
    raw(SYS_fstat, fd, reinterpret_cast<long>(&status));
    return {what, 0, status.st_dev, status.st_ino, offset};
}

void put_paths(call_record::kind what, long first, long second = 0)
{
    const auto *path = reinterpret_cast<const char *>(first);
    put({what, 0, 0, 0, 0}, path, std::strlen(path) + 1, reinterpret_cast<const char *>(second));
}

void put_write(const call &made, long result)
{
    const long *a = made.arguments;
    const long at = made.number == SYS_pwrite64
                        ? a[3]
                        : raw(SYS_lseek, a[0], 0, SEEK_CUR) - result; // behind the fact
    const call_record record = record_of(call_record::write, a[0], at);
    if (made.number != SYS_writev) {
        put(record, reinterpret_cast<const char *>(a[1]), static_cast<std::size_t>(result));
        return;
    }
    call_record piece = record;
    const auto *pieces = reinterpret_cast<const iovec *>(a[1]);
    for (long n = 0, left = result; n < a[2] && left > 0; ++n) {
        const long size = std::min(left, static_cast<long>(pieces[n].iov_len));
        put(piece, static_cast<const char *>(pieces[n].iov_base), static_cast<std::size_t>(size));
        piece.offset += size;
        left -= size;
    }
}

// Runs the call and writes down what came of it.
long run_recorded(const call &made)
{
    const long *a = made.arguments;
    bool is_new = false;
    if (made.number == SYS_openat && (a[2] & O_CREAT) != 0)
        is_new = raw(SYS_faccessat, a[0], a[1], F_OK) != 0;
    const long result = made.run();
    if (result < 0)
        return result;
    switch (made.number) {
    case SYS_openat:
        if (is_new) {
            const auto *path = reinterpret_cast<const char *>(a[1]);
            put(record_of(call_record::create, result), path, std::strlen(path) + 1);
        } else if ((a[2] & O_TRUNC) != 0) {
            put(record_of(call_record::truncate, result), "", 0);
        }
        break;
    case SYS_write:
    case SYS_pwrite64:
    case SYS_writev:
        put_write(made, result);
        break;
    case SYS_fsync:
    case SYS_fdatasync:
        put(record_of(call_record::sync, a[0]), "", 0);
        break;
    case SYS_ftruncate:
        put(record_of(call_record::truncate, a[0], a[1]), "", 0);
        break;
    case SYS_rename:
        put_paths(call_record::rename, a[0], a[1]);
        break;
    case SYS_renameat:
    case SYS_renameat2:
        put_paths(call_record::rename, a[1], a[3]);
        break;
    case SYS_link:
        put_paths(call_record::link, a[0], a[1]);
        break;
    case SYS_linkat:
        put_paths(call_record::link, a[1], a[3]);
        break;
    case SYS_unlink:
        put_paths(call_record::unlink, a[0]);
        break;
    case SYS_unlinkat:
        put_paths(call_record::unlink, a[1]);
        break;
    default:
        break;
    }
    return result;
}

// ---- One after the other

int turn_numbers = -1; // none: the process runs as it likes
int turn_pauses = -1;
std::uint32_t turn_left = 0;
shared_clock *turn_clock = nullptr;

void wait_for_turn()
{
    while (turn_left == 0) {
        const char pause = '.';
        raw(SYS_write, turn_pauses, reinterpret_cast<long>(&pause), 1);
        if (raw(SYS_read, turn_numbers, reinterpret_cast<long>(&turn_left), sizeof turn_left) !=
            sizeof turn_left)
            raw(SYS_exit_group, 99);
    }
    --turn_left;
}

void sleep_for(std::int64_t nanoseconds)
{
    turn_clock->real += nanoseconds;
    turn_clock->steady += nanoseconds;
    turn_left = 0;
}

long run_in_turn(call made)
{
    constexpr std::int64_t moment = 1000 * 1000;
    constexpr std::int64_t second = 1000 * moment;
    wait_for_turn();
    if (made.number == SYS_clock_nanosleep || made.number == SYS_nanosleep) {
        const auto *time = reinterpret_cast<const timespec *>(
            made.arguments[made.number == SYS_nanosleep ? 0 : 2]);
        sleep_for(time->tv_sec * second + time->tv_nsec);
        return 0;
    }
    const bool waits = made.number == SYS_flock && (made.arguments[1] & LOCK_NB) == 0;
    if (waits)
        made.arguments[1] |= LOCK_NB; // who holds it could not let it go
    long result = made.run();
    while (waits && result == -EWOULDBLOCK) {
        sleep_for(moment);
        wait_for_turn();
        result = made.run();
    }
    return result;
}

// ---- The system's part

void handle_call(int, siginfo_t *info, void *context)
{
    greg_t *const registers = static_cast<ucontext_t *>(context)->uc_mcontext.gregs;
    const call made = {info->si_syscall,
                       {registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                        registers[REG_R10], registers[REG_R8], registers[REG_R9]}};
    const int before = errno;
    registers[REG_RAX] = must_fail(made)     ? fail(made)
                         : record_fd >= 0    ? run_recorded(made)
                         : turn_numbers >= 0 ? run_in_turn(made)
                                             : made.run();
    errno = before;
}

std::uint32_t half(std::uint64_t value, int which)
{
    return static_cast<std::uint32_t>(value >> (32 * which));
}

sock_filter load(std::size_t at)
{
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(at));
}

// A filter stays with the programs that this process starts, whose code is at other addresses: only
// calls that come from the code of this one are looked at.
void let_others_be(std::vector<sock_filter> &filter)
{
    std::vector<std::size_t> hits;
    const auto take = [&](std::uint64_t begin, std::uint64_t end) {
        const sock_filter lines[] = {
            load(offsetof(seccomp_data, instruction_pointer) + 4),
            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, half(begin, 1), 0, 4),
            load(offsetof(seccomp_data, instruction_pointer)),
            BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, half(begin, 0), 0, 2),
            BPF_JUMP(BPF_JMP | BPF_JGT | BPF_K, half(end - 1, 0), 1, 0),
            BPF_STMT(BPF_JMP | BPF_JA, 0),
        };
        filter.insert(filter.end(), std::begin(lines), std::end(lines));
        hits.push_back(filter.size());
    };
    auto each = [](dl_phdr_info *object, std::size_t, void *to) {
        for (int n = 0; n < object->dlpi_phnum; ++n) {
            const auto &part = object->dlpi_phdr[n];
            if (part.p_type != PT_LOAD || (part.p_flags & PF_X) == 0)
                continue;
            const std::uint64_t begin = object->dlpi_addr + part.p_vaddr;
            const std::uint64_t end = begin + part.p_memsz;
            const std::uint64_t border = (end - 1) >> 32 << 32; // a filter compares 32 bits
            auto &report_range = *static_cast<decltype(take) *>(to);
            if (begin < border)
                report_range(begin, border);
            report_range(std::max(begin, border), end);
        }
        return 0;
    };
    dl_iterate_phdr(each, const_cast<void *>(static_cast<const void *>(&take)));
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    for (const std::size_t hit : hits)
        filter[hit - 1].k = static_cast<std::uint32_t>(filter.size() - hit);
}

bool look_at_calls(bool sleeps_too = false)
{
    struct sigaction action {};
    action.sa_sigaction = handle_call;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    sigaction(SIGSYS, &action, nullptr);
    const auto behind = reinterpret_cast<std::uint64_t>(lang_raw_call_end);
    std::vector<sock_filter> filter;
    let_others_be(filter);
    for (const sock_filter &line : {
             load(offsetof(seccomp_data, instruction_pointer)),
             BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, half(behind, 0), 0, 3),
             load(offsetof(seccomp_data, instruction_pointer) + 4),
             BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, half(behind, 1), 0, 1),
             sock_filter(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)),
             load(offsetof(seccomp_data, nr)),
         })
        filter.push_back(line);
    const auto look_at = [&filter](std::span<const long> numbers) {
        for (const long number : numbers) {
            filter.push_back(
                BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(number), 0, 1));
            filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP));
        }
    };
    for (const call_row &row : rows)
        look_at(row.numbers);
    if (sleeps_too)
        look_at(of_sleep);
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) == 0;
}

} // namespace

bool system_calls_can_fail()
{
    static const bool can = [] {
        const pid_t child = fork();
        if (child == 0)
            syscall(SYS_exit_group, look_at_calls() && close(-1) != 0 ? 0 : 1);
        int status = -1;
        waitpid(child, &status, 0);
        return status == 0;
    }();
    return can;
}

void fail_system_calls(const call_fault &fault, call_report *told)
{
    report = told;
    report->begun = look_at_calls() ? 1 : 0;
    wanted = fault;
}

void stop_failing() { wanted.row = nullptr; }

void record_system_calls(int fd) { record_fd = look_at_calls() ? fd : -1; }

void take_turns(int numbers, int pauses, shared_clock *clock)
{
    turn_clock = clock;
    turn_pauses = pauses;
    turn_numbers = look_at_calls(true) ? numbers : -1;
}

#else

bool system_calls_can_fail() { return false; }
void fail_system_calls(const call_fault &, call_report *) {}
void stop_failing() {}
void record_system_calls(int) {}
void take_turns(int, int, shared_clock *) {}

#endif

} // namespace zel_test
