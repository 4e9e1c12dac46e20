#include "failing-memory.h"

#include <cerrno>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define LANG_OWN_ALLOCATOR 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define LANG_OWN_ALLOCATOR 0
#endif
#endif
#ifndef LANG_OWN_ALLOCATOR
#define LANG_OWN_ALLOCATOR 1
#endif

// The C library's own.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *block);
}

namespace {

[[maybe_unused]] bool armed;
bool for_good;
bool failed;
std::size_t until_failure; // allocations left, the one that fails included
std::size_t in_use;

[[maybe_unused]] bool must_fail()
{
    if (!armed)
        return false;
    if (until_failure != 0)
        --until_failure;
    if (until_failure != 0 || (failed && !for_good))
        return false;
    failed = true;
    errno = ENOMEM;
    return true;
}

[[maybe_unused]] void *counted(void *block)
{
    if (block != nullptr)
        ++in_use;
    return block;
}

} // namespace

#if LANG_OWN_ALLOCATOR
extern "C" {

void *malloc(std::size_t size) { return must_fail() ? nullptr : counted(__libc_malloc(size)); }

void *calloc(std::size_t count, std::size_t size)
{
    return must_fail() ? nullptr : counted(__libc_calloc(count, size));
}

void *realloc(void *block, std::size_t size)
{
    if (must_fail())
        return nullptr;
    return block == nullptr ? counted(__libc_malloc(size)) : __libc_realloc(block, size);
}

int posix_memalign(void **block, std::size_t alignment, std::size_t size)
{
    void *made = must_fail() ? nullptr : counted(__libc_memalign(alignment, size));
    if (made == nullptr)
        return ENOMEM;
    *block = made;
    return 0;
}

void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    return must_fail() ? nullptr : counted(__libc_memalign(alignment, size));
}

void free(void *block)
{
    if (block != nullptr)
        --in_use;
    __libc_free(block);
}

} // extern "C"
#endif

namespace zel_test {

bool memory_can_fail() { return LANG_OWN_ALLOCATOR != 0; }

failing_memory::failing_memory(std::size_t n, bool forever)
{
    for_good = forever;
    failed = false;
    until_failure = n;
    armed = true;
}

failing_memory::~failing_memory() { armed = false; }

bool memory_has_failed() { return failed; }

std::size_t blocks_in_use() { return in_use; }

} // namespace zel_test
