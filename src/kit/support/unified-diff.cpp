#include "kit/support/unified-diff.h"

#include "source/quote.h"

#include <algorithm>
#include <vector>

namespace zel::kit {

namespace {

constexpr std::size_t lines_around = 3;

// Lines with their ends; the last one may have none.
std::vector<std::string_view> split_lines(std::string_view text)
{
    std::vector<std::string_view> out;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        out.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return out;
}

// A line of one text, of the other, or of both.
struct diff_line {
    bool is_old;
    bool is_new;
    std::string_view text;
};

std::vector<diff_line> pair_lines(std::string_view before, std::string_view after,
                                  std::size_t added_line)
{
    const std::vector<std::string_view> old_lines = split_lines(before);
    const std::vector<std::string_view> new_lines = split_lines(after);
    std::vector<diff_line> out;
    std::size_t old = 0;
    for (std::size_t at = 0; at < new_lines.size(); ++at) {
        if (at + 1 == added_line) {
            out.push_back({false, true, new_lines[at]});
        } else if (old < old_lines.size() && old_lines[old] == new_lines[at]) {
            out.push_back({true, true, new_lines[at]});
            ++old;
        } else {
            if (old < old_lines.size())
                out.push_back({true, false, old_lines[old++]});
            out.push_back({false, true, new_lines[at]});
        }
    }
    return out;
}

void append_side(std::string &out, std::size_t first, std::size_t count)
{
    // Of an empty side the line before it is told.
    out += std::to_string(count == 0 ? first - 1 : first);
    if (count != 1)
        out += "," + std::to_string(count);
}

void append_lines(std::string &out, char sign, std::string_view line)
{
    out.append(1, sign).append(line);
    if (!line.ends_with('\n'))
        out += "\n\\ No newline at end of file\n";
}

// One hunk; in a run of changed lines the old ones come first.
class hunk_writer {
public:
    explicit hunk_writer(const std::vector<diff_line> &lines) : lines_(lines) {}

    void write(std::string &out, std::size_t begin, std::size_t end)
    {
        for (; passed_ < begin; ++passed_) {
            old_ += lines_[passed_].is_old ? 1 : 0;
            new_ += lines_[passed_].is_new ? 1 : 0;
        }
        const auto count = [&](bool diff_line::*side) {
            return static_cast<std::size_t>(
                std::count_if(lines_.begin() + static_cast<std::ptrdiff_t>(begin),
                              lines_.begin() + static_cast<std::ptrdiff_t>(end),
                              [&](const diff_line &one) { return one.*side; }));
        };
        out += "@@ -";
        append_side(out, old_, count(&diff_line::is_old));
        out += " +";
        append_side(out, new_, count(&diff_line::is_new));
        out += " @@\n";
        for (std::size_t at = begin; at < end;)
            at = write_run(out, at, end);
    }

private:
    static bool is_same(const diff_line &one) { return one.is_old && one.is_new; }

    // A line of both, or a run of changed ones; returns what comes behind it.
    std::size_t write_run(std::string &out, std::size_t begin, std::size_t end) const
    {
        if (is_same(lines_[begin])) {
            append_lines(out, ' ', lines_[begin].text);
            return begin + 1;
        }
        std::size_t last = begin;
        while (last < end && !is_same(lines_[last]))
            ++last;
        for (std::size_t at = begin; at < last; ++at)
            if (lines_[at].is_old)
                append_lines(out, '-', lines_[at].text);
        for (std::size_t at = begin; at < last; ++at)
            if (lines_[at].is_new)
                append_lines(out, '+', lines_[at].text);
        return last;
    }

    const std::vector<diff_line> &lines_;
    std::size_t passed_ = 0;
    std::size_t old_ = 1; // the next line's number
    std::size_t new_ = 1;
};

// A name as patch and git read it: in quotes where it would break the line, else with a tab behind
// one with blanks.
std::string header_name(const std::string &name)
{
    const auto is_odd = [](char c) {
        return static_cast<unsigned char>(c) < ' ' || c == '"' || c == '\\' || c == '\x7f';
    };
    if (std::none_of(name.begin(), name.end(), is_odd))
        return name.find(' ') == name.npos ? name : name + '\t';
    std::string out = "\"";
    for (const char c : name)
        if (is_odd(c))
            append_format(out, "\\%03o", static_cast<unsigned>(c));
        else
            out += c;
    return out + '"';
}

} // namespace

std::string unified_diff(const std::string &path, std::string_view before, std::string_view after,
                         std::size_t added_line)
{
    const std::vector<diff_line> lines = pair_lines(before, after, added_line);
    const std::string shown = path.starts_with('/') ? path : "/" + path;
    std::string out;
    hunk_writer hunks(lines);
    for (std::size_t at = 0; at < lines.size(); ++at) {
        if (lines[at].is_old && lines[at].is_new)
            continue;
        const std::size_t begin = at - std::min(at, lines_around);
        // Changes that share lines around them are one hunk.
        std::size_t last = at;
        for (std::size_t next = at; next < lines.size() && next <= last + 2 * lines_around + 1;
             ++next)
            if (!lines[next].is_old || !lines[next].is_new)
                last = next;
        if (out.empty())
            out += "--- " + header_name("a" + shown) + "\n+++ " + header_name("b" + shown) + "\n";
        hunks.write(out, begin, std::min(lines.size(), last + lines_around + 1));
        at = last;
    }
    return out;
}

} // namespace zel::kit
