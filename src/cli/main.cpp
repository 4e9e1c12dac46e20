#include "cli/driver.h"

#include <cstdint>
#include <cstdlib>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// A source becomes hundreds of thousands of small texts, and giving memory out page by page takes
// the system longer than reading the source takes us. So the heap is reserved in one piece and laid
// on large pages where the system has them; what is not touched costs nothing.
void prepare_heap()
{
    constexpr int reserved = 1024 * 1024 * 1024;
    constexpr int first_block = 1024 * 1024;
    constexpr std::uintptr_t large_page = 2 * 1024 * 1024;
    mallopt(M_TOP_PAD, reserved);
    mallopt(M_TRIM_THRESHOLD, reserved);
    mallopt(M_MMAP_THRESHOLD, 2 * first_block);
    const auto begin = reinterpret_cast<std::uintptr_t>(sbrk(0));
    void *volatile block = std::malloc(first_block); // larger than what is there: the heap grows
    std::free(block);
    const auto end = reinterpret_cast<std::uintptr_t>(sbrk(0));
    const std::uintptr_t from = (begin + large_page - 1) / large_page * large_page;
    const std::uintptr_t to = end / large_page * large_page;
    if (from < to)
        madvise(reinterpret_cast<void *>(from), to - from, MADV_HUGEPAGE);
}

} // namespace

int main(int argc, char **argv)
{
    prepare_heap();
    lang_edit(argc, argv);
    return 0;
}
