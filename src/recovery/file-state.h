#pragma once

// Which text a file held when it was looked at, to tell later whether somebody else has changed it.

#include <cstdint>
#include <string>

namespace zel {

struct file_state {
    bool is_there = false; // a regular file that can be read; else the rest says nothing
    std::int64_t size = 0;
    std::int64_t seconds = 0; // of its last change, since the epoch
    std::int64_t nanoseconds = 0;
    std::uint64_t number = 0; // of the file itself; 0 where that is not known
    std::string hash;         // of its bytes, in hexadecimal digits

    // Whether it is the same text; a new time alone does not make it another one.
    bool same_text(const file_state &other) const
    {
        return is_there == other.is_there && size == other.size && hash == other.hash;
    }
};

// Looks at the file and reads it through.
file_state state_of(const char *path);

enum class file_news { same, changed, gone };

// Looks again. Reads the file only where its size or time has changed; when it still holds the old
// text, the known state takes the new time.
file_news news_of(const char *path, file_state &known);

// "2,345 bytes of 2024-05-01 12:00:00", for a person.
std::string describe(const file_state &state);

} // namespace zel
