#include "kit/support/output.h"

#include "exchange/json.h"
#include "exchange/key.h"
#include "source/entry.h"

#include <algorithm>
#include <cstdio>

#include <glib.h>

namespace zel::kit {

namespace {

constexpr std::string_view quote_marks = "\"\\";

// Line ends, tabs, and the marks are escaped.
void append_escapes(std::string &out, std::string_view text, std::string_view marks)
{
    for (const char c : text) {
        if (marks.find(c) != marks.npos)
            out.append(1, '\\').append(1, c);
        else if (c == '\n')
            out += "\\n";
        else if (c == '\t')
            out += "\\t";
        else if (c == '\r')
            out += "\\r";
        else
            out += c;
    }
}

} // namespace

void append_line(std::string &out, std::string_view text)
{
    const auto is_control = [](char c) { return static_cast<unsigned char>(c) < ' '; };
    if (std::none_of(text.begin(), text.end(), is_control))
        out += text;
    else
        append_escapes(out, text, "");
}

void append_json(std::string &out, std::string_view text)
{
    out += '"';
    while (!text.empty()) {
        const char *bad = nullptr;
        // A zero byte counts as no UTF-8, too.
        g_utf8_validate(text.data(), static_cast<gssize>(text.size()), &bad);
        const auto valid = static_cast<std::size_t>(bad - text.data());
        exchange::append_json_signs(out, text.substr(0, valid));
        text.remove_prefix(valid);
        // JSON is UTF-8: each byte that is not becomes U+FFFD.
        if (!text.empty()) {
            out += "\xEF\xBF\xBD";
            text.remove_prefix(1);
        }
    }
    out += '"';
}

void append_json(std::string &out, const char *text)
{
    if (text == nullptr)
        out += "null";
    else
        append_json(out, std::string_view(text));
}

std::string counted(std::size_t count, const std::string &one)
{
    return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

std::string with_commas(std::size_t number)
{
    // printf's separator would depend on the locale.
    std::string out = std::to_string(number);
    for (std::size_t at = out.size(); at > 3; at -= 3)
        out.insert(at - 3, 1, ',');
    return out;
}

std::size_t columns_of(std::string_view text)
{
    std::size_t columns = 0;
    const char *end = text.data() + text.size();
    for (const char *at = text.data(); at < end;) {
        const gunichar c = g_utf8_get_char_validated(at, end - at);
        // A byte that is no UTF-8 takes one column.
        const bool good = c < 0x110000;
        columns += good && g_unichar_iswide(c) ? 2U : good && g_unichar_iszerowidth(c) ? 0U : 1U;
        at = good ? g_utf8_next_char(at) : at + 1;
    }
    return columns;
}

std::string quoted(std::string_view text)
{
    std::string out = "\"";
    append_escapes(out, text, quote_marks);
    return out += '"';
}

std::string shown(std::string_view text)
{
    constexpr std::size_t most = 200;
    constexpr std::size_t half = most / 2;
    const auto is_middle = [](char c) { return (c & 0xC0) == 0x80; }; // of a UTF-8 character
    if (text.size() <= most)
        return quoted(text);
    // Cuts between two characters, never inside one.
    std::size_t end = half;
    while (end > 0 && is_middle(text[end]))
        --end;
    std::size_t begin = text.size() - half;
    while (begin < text.size() && is_middle(text[begin]))
        ++begin;
    std::string out = "\"";
    append_escapes(out, text.substr(0, end), quote_marks);
    out += " ... ";
    append_escapes(out, text.substr(begin), quote_marks);
    return out += '"';
}

std::string shown_key(const edit_t *group, const item_t *item)
{
    std::string out;
    exchange::append_key(out, or_empty(group->name), or_empty(item->name));
    return out;
}

std::string place_of(const item_t *item)
{
    if (item->used_in == nullptr)
        return {};
    const std::string_view place = view_of(static_cast<const char *>(item->used_in->data));
    const std::size_t colon = place.find(':');
    const std::size_t number = place.find_first_not_of('0');
    if (colon == std::string_view::npos || number >= colon)
        return std::string(place);
    return std::string(place.substr(colon + 1)) + ":" +
           std::string(place.substr(number, colon - number));
}

} // namespace zel::kit
