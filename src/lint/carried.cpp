#include "lint/carried.h"

#include "source/entry.h"

#include <cstdint>
#include <cstdio>
#include <functional>

namespace zel::lint {

namespace {

constexpr std::string_view begin = "carried from ";
constexpr std::size_t sum_digits = 8;

// The same on every machine and in every version, since it stands in files (FNV-1a).
std::string sum_of(std::string_view text)
{
    std::uint32_t sum = 2166136261U;
    // The blank end of a text is not written.
    for (const char c : without_end(text))
        sum = (sum ^ static_cast<unsigned char>(c)) * 16777619U;
    char digits[sum_digits + 1];
    std::snprintf(digits, sizeof digits, "%08x", static_cast<unsigned>(sum));
    return digits;
}

struct mark {
    std::string_view name; // with its quotes; empty when the line is no mark
    std::string_view sum;
};

mark read_mark(std::string_view line)
{
    line = without_end(line);
    constexpr std::size_t behind = sizeof " []" - 1 + sum_digits;
    if (!line.starts_with(begin) || line.size() < begin.size() + behind || !line.ends_with("]"))
        return {};
    line.remove_prefix(begin.size());
    const std::string_view name = line.substr(0, line.size() - behind);
    const std::string_view rest = line.substr(name.size());
    if (name.size() < 2 || name.front() != '"' || name.back() != '"' || !rest.starts_with(" ["))
        return {};
    return {name, rest.substr(2, sum_digits)};
}

// Each line with its end.
void each_line(std::string_view text, const std::function<void(std::string_view)> &to)
{
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end == std::string_view::npos ? end : end + 1);
        to(line);
        text.remove_prefix(line.size());
    }
}

} // namespace

std::string carried_mark(std::string_view quoted_name, std::string_view text)
{
    return std::string(begin).append(quoted_name) + " [" + sum_of(text) + "]";
}

std::string_view find_carried(std::string_view comment, std::string_view text)
{
    std::string_view found;
    // Most comments hold no mark: their texts need no sum.
    if (comment.find(begin) == std::string_view::npos)
        return found;
    const std::string sum = sum_of(text);
    each_line(comment, [&](std::string_view line) {
        if (const mark one = read_mark(line); one.sum == sum)
            found = one.name;
    });
    return found;
}

std::string without_carried(std::string_view comment)
{
    std::string out;
    each_line(comment, [&](std::string_view line) {
        if (read_mark(line).name.empty())
            out += line;
    });
    return out;
}

} // namespace zel::lint
