#include "source/last-line.h"

#include "source/quote.h"

#include <algorithm>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace zel {

namespace {

constexpr std::string_view before_path = "\n/* EOF ";
constexpr std::string_view behind_path = " */";

// Reads the end of the file, as far back as the last line can reach; nothing when that fails.
std::optional<std::string> read_end(int file)
{
    constexpr off_t longest_name = 8192; // of the path in that line
    struct stat status;
    if (fstat(file, &status) != 0)
        return std::nullopt;
    std::string text(longest_name, '\0');
    // pread leaves the position alone: the file may be the one behind the scanner's stream.
    const ssize_t length =
        pread(file, text.data(), text.size(), std::max<off_t>(0, status.st_size - longest_name));
    if (length < 0)
        return std::nullopt;
    text.resize(static_cast<std::size_t>(length));
    return text;
}

// Turns back what append_comment did.
std::string read_comment(std::string_view text)
{
    std::string out;
    for (std::size_t at = text.find("*\\/"); at != std::string_view::npos; at = text.find("*\\/")) {
        out.append(text.substr(0, at)).append("*/");
        text.remove_prefix(at + 3);
    }
    return out.append(text);
}

} // namespace

bool lacks_last_line(int file)
{
    // Only files that this program wrote have the line, so only they can lack it. In step with the
    // first line in source_text::append_head.
    constexpr std::string_view head = "/* !!!! DO NOT EDIT";
    std::string first(head.size(), '\0');
    // pread fails on a pipe, which then counts as whole.
    if (pread(file, first.data(), first.size(), 0) < 0 || first != head)
        return false;
    const std::optional<std::string> end = read_end(file);
    if (!end)
        return false;
    const std::size_t found = end->rfind(before_path);
    // The line itself may be cut, too: it must end its comment.
    return found == std::string::npos || end->find("*/", found) == std::string::npos;
}

std::string name_in_last_line(const char *path)
{
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return {};
    const std::optional<std::string> end = read_end(file);
    close(file);
    const std::size_t found = end ? end->rfind(before_path) : std::string::npos;
    if (found == std::string::npos)
        return {};
    const std::string_view rest = std::string_view(*end).substr(found + before_path.size());
    const std::size_t length = rest.find(behind_path);
    return length == std::string_view::npos ? std::string() : read_comment(rest.substr(0, length));
}

void append_last_line(std::string &out, const char *path)
{
    out += before_path;
    append_comment(out, path);
    out.append(behind_path) += '\n';
}

} // namespace zel
