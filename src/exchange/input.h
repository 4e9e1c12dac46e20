#pragma once

// Files from outside: read whole, within bounds, and looked at before any format does.

#include <cstdint>
#include <string>
#include <string_view>

namespace zel::exchange {

// What is wrong with a file; an empty text says that nothing is.
struct fault {
    std::uint32_t line = 0; // 0: the file as a whole
    std::string text;

    explicit operator bool() const { return !text.empty(); }
};

inline constexpr std::size_t largest_file = std::size_t{512} * 1024 * 1024;
inline constexpr std::size_t largest_text = std::size_t{8} * 1024 * 1024;

// Reads a whole file of at most largest_file bytes.
fault read_input(const std::string &path, std::string &bytes);

// A fault for the first byte that is not part of UTF-8, or zero.
fault check_utf8(std::string_view bytes);

// The line on which a position stands, from 1.
std::uint32_t line_at(std::string_view bytes, std::size_t position);

// A file's name without folders and ending.
std::string_view stem_of(std::string_view path);

// Takes a byte order mark off the start.
void drop_mark(std::string_view &bytes);

} // namespace zel::exchange
