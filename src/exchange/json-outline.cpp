#include "exchange/json-outline.h"

#include <algorithm>

namespace zel::exchange {

namespace {

constexpr std::size_t item_depth = 5; // source, groups, group, items, item
constexpr std::size_t most_nesting = 16;

struct outliner {
    std::string_view bytes;
    json_outline &out;
    std::size_t at = 0;
    std::uint32_t line = 1;
    std::size_t depth = 0;
    std::size_t copied = 0; // up to here the outline has the text
    bool in_item = false;
    bool has_root = false;
    std::size_t item_begin = 0;
    std::uint32_t item_line = 0;

    fault take();
    bool stands_alone(char c) const;
    fault take_string();
    fault open();
    fault close();
};

fault outliner::take_string()
{
    const std::uint32_t begin = line;
    const std::size_t start = ++at;
    while (at < bytes.size() && bytes[at] != '"') {
        // JSON allows no line end in a string, so the quote is missing on this line.
        if (bytes[at] == '\n')
            return {begin, "a string without its closing quote"};
        // A zero byte can only come as an escape: check_utf8 has refused all others.
        if (bytes.substr(at).starts_with("\\u0000"))
            return {line, "a zero byte"};
        // A backslash protects the next character, which may be a quote.
        at += bytes[at] == '\\' ? 2 : 1;
    }
    if (at >= bytes.size())
        return {begin, "a string without its closing quote"};
    if (at - start > largest_text)
        return {begin, "a text of more than 8 MB"};
    ++at;
    return {};
}

fault outliner::open()
{
    // A hostile file must not exhaust the stack of the parser.
    if (++depth > most_nesting)
        return {line, "brackets deeper than a source has"};
    has_root = true;
    if (depth == item_depth && bytes[at] == '{') {
        in_item = true;
        item_begin = at;
        item_line = line;
    }
    ++at;
    return {};
}

fault outliner::close()
{
    if (depth == 0)
        return {line, "a closing bracket too many"};
    ++at;
    if (depth-- != item_depth || !in_item)
        return {};
    in_item = false;
    out.text.append(bytes.substr(copied, item_begin - copied))
        .append(std::to_string(out.items.size()))
        .append(line - item_line, '\n'); // so that lines stay where they are
    out.items.push_back({bytes.substr(item_begin, at - item_begin), item_line});
    copied = at;
    return {};
}

constexpr std::string_view blanks = " \t\r";
constexpr std::string_view others = ":,+-.0123456789abcdefghijklmnopqrstuvwxyzE";

// Whether the character begins a value outside of the one that a text holds. The parser would take
// several values and lose the memory of all but the last.
bool outliner::stands_alone(char c) const
{
    if (c == '{' || c == '[')
        return has_root && depth == 0;
    return depth == 0 && (c == '"' || others.find(c) != std::string_view::npos);
}

fault outliner::take()
{
    const char c = bytes[at];
    if (stands_alone(c))
        return {line, has_root ? "something behind the object" : "no object"};
    switch (c) {
    case '"':
        return take_string();
    case '{':
    case '[':
        return open();
    case '}':
    case ']':
        return close();
    case '\n':
        ++line;
        ++at;
        return {};
    default:
        if (others.find(c) == std::string_view::npos && blanks.find(c) == std::string_view::npos)
            return {line, "a character that JSON has only in strings"};
        ++at;
        return {};
    }
}

} // namespace

fault make_outline(std::string_view bytes, json_outline &outline)
{
    outliner run{bytes, outline};
    while (run.at < bytes.size())
        if (fault wrong = run.take())
            return wrong;
    outline.text.append(bytes.substr(run.copied));
    return {};
}

} // namespace zel::exchange
