#include "exchange/input.h"

#include "exchange/carry.h"
#include "support/guard.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>

namespace zel::exchange {

namespace {

constexpr std::size_t least_piece = std::size_t{64} * 1024;

} // namespace

fault read_input(const std::string &path, std::string &bytes)
{
    bytes.clear();
    const std::unique_ptr<std::FILE, release<std::fclose>> file(std::fopen(path.c_str(), "rbe"));
    if (!file)
        return {0, std::strerror(errno)};
    struct stat status {};
    std::size_t piece = least_piece; // grows with the text: a pipe does not tell its length
    if (fstat(fileno(file.get()), &status) == 0 && S_ISREG(status.st_mode))
        // One byte more than the file has, so that its end shows in the first call.
        piece = std::min(static_cast<std::size_t>(status.st_size), largest_file) + 1;
    for (;; piece = std::max(least_piece, bytes.size() / 2)) {
        const std::size_t before = bytes.size();
        bytes.resize(before + piece);
        const std::size_t count = std::fread(bytes.data() + before, 1, piece, file.get());
        bytes.resize(before + count);
        if (bytes.size() > largest_file)
            return {0, "larger than 512 MB"};
        // fread gives less than it was asked for only at the end and after an error.
        if (count == piece)
            continue;
        if (std::ferror(file.get()) != 0)
            return {0, std::strerror(errno)};
        return {};
    }
}

fault check_utf8(std::string_view bytes)
{
    const std::size_t valid = valid_length(bytes);
    if (valid == bytes.size())
        return {};
    return {line_at(bytes, valid),
            bytes[valid] == '\0' ? "a zero byte" : "a byte that is no UTF-8"};
}

std::uint32_t line_at(std::string_view bytes, std::size_t position)
{
    const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(position);
    return static_cast<std::uint32_t>(1 + std::count(bytes.begin(), end, '\n'));
}

std::string_view stem_of(std::string_view path)
{
    path.remove_prefix(path.rfind('/') + 1);
    return path.substr(0, path.rfind('.'));
}

void drop_mark(std::string_view &bytes)
{
    if (bytes.starts_with("\xEF\xBB\xBF"))
        bytes.remove_prefix(3);
}

} // namespace zel::exchange
