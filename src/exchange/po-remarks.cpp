#include "exchange/po-remarks.h"

#include "exchange/c-format.h"
#include "support/cut.h"

#include <algorithm>

namespace zel::exchange {

namespace {

constexpr std::string_view flags_word = "flags:";
constexpr std::string_view fuzzy_word = "fuzzy";
constexpr std::string_view no_flag = "none";

bool is_fuzzy_line(std::string_view line)
{
    if (!line.starts_with(fuzzy_word))
        return false;
    line.remove_prefix(fuzzy_word.size());
    return line.empty() || line.starts_with(": was \"") || line.starts_with(": plural \"") ||
           line.starts_with(": in \"");
}

void append_quoted(std::string &out, std::string_view word, const std::optional<std::string> &text)
{
    if (!text)
        return;
    out.append(word).append(" \"");
    for (const char c : *text)
        switch (c) {
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '"':
        case '\\':
            out.append(1, '\\') += c;
            break;
        default:
            out += c;
        }
    out += '"';
}

// Takes WORD "TEXT" off the line; nothing where another word stands there.
std::optional<std::string> take_quoted(std::string_view &line, std::string_view word)
{
    if (!line.starts_with(word) || line.substr(word.size(), 2) != " \"")
        return std::nullopt;
    line.remove_prefix(word.size() + 2);
    std::string text;
    for (; !line.empty() && line.front() != '"'; line.remove_prefix(1)) {
        const bool escaped = line.front() == '\\' && line.size() > 1;
        if (escaped)
            line.remove_prefix(1);
        const char c = line.front();
        text += !escaped ? c : c == 'n' ? '\n' : c == 'r' ? '\r' : c;
    }
    line.remove_prefix(std::min<std::size_t>(line.size(), 1));
    return text;
}

std::string without_lines(std::string_view comment, bool (*is_one)(std::string_view line))
{
    std::string out;
    bool first = true;
    while (!comment.empty()) {
        const std::string_view line = cut_at(comment, '\n');
        if (is_one(line))
            continue;
        out.append(first ? "" : "\n").append(line);
        first = false;
    }
    return out;
}

} // namespace

std::optional<std::vector<std::string>> flags_of(std::string_view comment)
{
    while (!comment.empty()) {
        std::string_view line = cut_at(comment, '\n');
        if (!line.starts_with(flags_word))
            continue;
        line.remove_prefix(flags_word.size());
        std::vector<std::string> flags;
        while (!line.empty()) {
            std::string_view flag = cut_at(line, ',');
            while (flag.starts_with(' '))
                flag.remove_prefix(1);
            if (!flag.empty() && flag != no_flag)
                flags.emplace_back(flag);
        }
        return flags;
    }
    return std::nullopt;
}

std::string flags_line(const std::vector<std::string> &flags)
{
    std::string line(flags_word);
    for (const std::string &flag : flags)
        line.append(line.size() == flags_word.size() ? " " : ", ").append(flag);
    return flags.empty() ? line.append(" ").append(no_flag) : line;
}

std::vector<std::string> usual_flags(std::string_view text)
{
    // Most texts have no percent sign, and this look is cheap.
    if (text.find('%') == std::string_view::npos)
        return {};
    const auto found = c_format_arguments(text);
    return found && !found->empty() ? std::vector<std::string>{"c-format"}
                                    : std::vector<std::string>();
}

std::string fuzzy_line(const po_id &previous)
{
    std::string line(fuzzy_word);
    if (!previous.context && !previous.text && !previous.plural)
        return line;
    line += ':';
    append_quoted(line, " was", previous.text);
    append_quoted(line, " plural", previous.plural);
    append_quoted(line, " in", previous.context);
    return line;
}

bool read_fuzzy(std::string_view comment, po_id &previous)
{
    previous = {};
    while (!comment.empty()) {
        std::string_view line = cut_at(comment, '\n');
        if (!is_fuzzy_line(line))
            continue;
        line.remove_prefix(std::min(line.size(), fuzzy_word.size() + 1));
        previous.text = take_quoted(line, " was");
        previous.plural = take_quoted(line, " plural");
        previous.context = take_quoted(line, " in");
        return true;
    }
    return false;
}

bool is_mark(std::string_view line) { return line.starts_with(flags_word) || is_fuzzy_line(line); }

std::string without_fuzzy(std::string_view comment)
{
    return without_lines(comment, is_fuzzy_line);
}

std::string without_marks(std::string_view comment)
{
    // Most comments are for people alone.
    if (comment.find(flags_word) == comment.npos && comment.find(fuzzy_word) == comment.npos)
        return std::string(comment);
    return without_lines(comment, is_mark);
}

std::string marks_of(std::string_view comment)
{
    return without_lines(comment, [](std::string_view line) { return !is_mark(line); });
}

} // namespace zel::exchange
