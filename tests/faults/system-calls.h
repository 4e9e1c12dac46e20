#pragma once

// This process's system calls, seen by the system itself: also those that the C library makes for
// its own ends. They fail where a test wants it, or are written down. Once begun there is no way
// back, so it is for a child, or for a program that this is preloaded into.

#include <cstdint>
#include <span>

namespace zel_test {

// What a call may answer instead of its result: errno, or that it did half of it.
inline constexpr int half_done = -1;

struct call_row {
    const char *name;
    std::span<const long> numbers; // of the system calls
    std::span<const int> errors;
};

// The calls that a program's files see, each with all that it can come to.
std::span<const call_row> system_calls();

// Whether this system lets a process look at its own calls.
bool system_calls_can_fail();

// What is shared with whoever looks on; zero at first.
struct call_report {
    std::uint32_t seen;   // calls of the row so far
    std::uint32_t struck; // 1: one was made to fail,
    std::uint32_t muted;  // 1: one of them on standard output or standard error
    std::uint32_t begun;  // 1: calls are looked at
};

// The row's n-th call from now on, counted from 1, fails with the error, and with lasting all
// behind it too. n 0: none does.
struct call_fault {
    const call_row *row;
    std::uint32_t n;
    int error;
    bool lasting;
};
void fail_system_calls(const call_fault &fault, call_report *report);

// From now on nothing fails any more.
void stop_failing();

// Every call that changes a file or makes sure of it is written to the descriptor behind the fact:
// a record and its data.
struct call_record {
    enum kind : std::uint32_t { write, truncate, sync, create, link, rename, unlink };
    kind what;
    std::uint32_t size;   // of the data: the bytes written, or a path and, behind its NUL, another
    std::uint64_t device; // of the file
    std::uint64_t number;
    std::int64_t offset; // where the bytes went; for a truncation the length
};
void record_system_calls(int fd);

// A clock that only moves when it is looked at or slept by, for all processes that map it.
struct shared_clock {
    std::int64_t real; // nanoseconds since the epoch
    std::int64_t steady;
};

// From now on the process runs by turns: it reads the number of calls that it may make from the one
// descriptor, and having made them it writes a byte to the other and waits for the next number.
// Whoever gives one turn at a time decides in which order things happen. A sleep, and the wait for
// a lock, ends the turn and moves the clock.
void take_turns(int numbers, int pauses, shared_clock *clock);

} // namespace zel_test
