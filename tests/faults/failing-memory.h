#pragma once

// Memory that runs out where a test wants it. The program's allocations all come here: those of the
// code under test, of the C and C++ libraries and of GLib.

#include <cstddef>

namespace zel_test {

// False in a build with sanitizers, whose allocator cannot be replaced.
bool memory_can_fail();

// While it lives, the n-th allocation from its making on fails, counted from 1, and with forever
// all behind it too.
class failing_memory {
public:
    failing_memory(std::size_t n, bool forever);
    ~failing_memory();
    failing_memory(const failing_memory &) = delete;
    failing_memory &operator=(const failing_memory &) = delete;
};

// Whether an allocation has failed since the last one of these was made.
bool memory_has_failed();

// Blocks that are allocated at the moment.
std::size_t blocks_in_use();

} // namespace zel_test
