#include "app/memory.h"

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <glib.h>
#include <malloc.h>
#include <new>
#include <string_view>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace std::string_view_literals;

constexpr int first_block = 1024 * 1024;
constexpr int smallest = 16 * first_block;

// How much address space may be reserved: a quarter where the user's is limited, since the rest of
// the program needs some too.
int most_to_reserve()
{
    constexpr rlim_t most = 1024 * 1024 * 1024;
    rlim_t reserved = most;
    for (const auto kind : {RLIMIT_AS, RLIMIT_DATA}) {
        rlimit limit{};
        if (getrlimit(kind, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY)
            reserved = std::min(reserved, limit.rlim_cur / 4);
    }
    return static_cast<int>(reserved);
}

// Makes the heap grow by that much at once; false where the system has not got it.
bool grow_heap(int size)
{
    mallopt(M_TOP_PAD, size);
    // Near a limit malloc maps the block elsewhere and the heap's end stays: nothing was reserved.
    // Without volatile the compiler would remove the pair of calls.
    const void *before = sbrk(0);
    void *volatile block = std::malloc(first_block); // larger than what is there: the heap grows
    std::free(block);
    return sbrk(0) != before;
}

const char *program_name = "";
int end_status;

void handle_glib_message(const char *domain, GLogLevelFlags level, const char *text, void *data)
{
    // Lack of memory ends the program with its own message and status, before GLib's handler would
    // abort. Every other message is GLib's to print.
    zel::end_on_glib_error(level);
    g_log_default_handler(domain, level, text, data);
}

// GLib's allocator of small pieces prints what it lacks and aborts. Mapping some memory tells this
// abort from any other, which goes on as usual.
void end_for_abort(int)
{
    constexpr std::size_t some = 1024 * 1024;
    void *area = mmap(nullptr, some, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (area == MAP_FAILED)
        _exit(end_status);
    munmap(area, some);
}

} // namespace

namespace zel {

// A source becomes hundreds of thousands of small texts, and giving memory out page by page takes
// the system longer than reading the source takes us. So the heap is reserved in one piece and laid
// on large pages where the system has them; what is not touched costs nothing. Later growth goes in
// ordinary steps: near a limit a large one would fail where a small one fits.
void prepare_heap()
{
    constexpr std::uintptr_t large_page = 2 * 1024 * 1024;
    int reserved = most_to_reserve();
    // Freed memory stays in the heap for the next texts. Only large blocks are mapped one by one.
    mallopt(M_TRIM_THRESHOLD, 1024 * 1024 * 1024);
    mallopt(M_MMAP_THRESHOLD, 2 * first_block);
    const auto begin = reinterpret_cast<std::uintptr_t>(sbrk(0));
    while (reserved >= smallest && !grow_heap(reserved))
        reserved /= 2;
    mallopt(M_TOP_PAD, first_block);
    const auto end = reinterpret_cast<std::uintptr_t>(sbrk(0));
    const std::uintptr_t from = (begin + large_page - 1) / large_page * large_page;
    const std::uintptr_t to = end / large_page * large_page;
    if (from < to)
        madvise(reinterpret_cast<void *>(from), to - from, MADV_HUGEPAGE);
}

void give_back_memory() { malloc_trim(0); }

void end_without_memory(const char *program, int status)
{
    program_name = program;
    end_status = status;
    std::set_new_handler(end_for_memory);
    // SA_RESETHAND: when the handler returns, abort() raises the signal again, and its default
    // action ends the program.
    struct sigaction action {};
    action.sa_handler = end_for_abort;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGABRT, &action, nullptr);
    // Not g_log_set_handler, which takes memory while GLib holds the lock that its error waits for.
    g_log_set_default_handler(handle_glib_message, nullptr);
}

void end_for_memory()
{
    // Flushed here because _exit does not do it, and exit would run handlers that may need memory.
    std::fflush(stdout);
    for (const std::string_view part : {std::string_view(program_name), ": not enough memory\n"sv})
        static_cast<void>(!write(STDERR_FILENO, part.data(), part.size()));
    _exit(end_status);
}

// Lack of memory is the only error that GLib ends a process for, in what this program asks of it.
void end_on_glib_error(int level)
{
    if ((level & G_LOG_LEVEL_ERROR) != 0)
        end_for_memory();
}

} // namespace zel
