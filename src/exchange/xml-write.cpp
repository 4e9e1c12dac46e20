#include "exchange/xml-write.h"

#include "exchange/carry.h"

#include <array>

namespace zel::exchange {

namespace {

// How a character must be written; empty if it stands for itself.
constexpr std::string_view entity_of(char c, bool in_attribute)
{
    switch (c) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '\r':
        return "&#13;"; // else it would be read as a line end
    case '"':
        return in_attribute ? "&quot;" : "";
    case '\n':
        return in_attribute ? "&#10;" : "";
    case '\t':
        return in_attribute ? "&#9;" : "";
    default:
        return {};
    }
}

// For each byte where it must be written as an entity, 1 in an attribute and 2 in a text, and
// whether it may have to be carried, 4.
constexpr auto places = [] {
    std::array<unsigned char, 256> table{};
    for (unsigned c = 0; c < table.size(); ++c) {
        const auto byte = static_cast<char>(c);
        table[c] = static_cast<unsigned char>((entity_of(byte, true).empty() ? 0 : 1) |
                                              (entity_of(byte, false).empty() ? 0 : 2) |
                                              (c < ' ' || c >= 0x80 ? 4 : 0));
    }
    return table;
}();

std::size_t find_place(std::string_view text, std::size_t at, unsigned wanted)
{
    while (at < text.size() && (places[static_cast<unsigned char>(text[at])] & wanted) == 0)
        ++at;
    return at;
}

} // namespace

void append_xml(std::string &out, std::string_view text, bool in_attribute)
{
    const unsigned place = in_attribute ? 1U : 2U;
    // Most names and many texts end here.
    const std::size_t start = find_place(text, 0, place | 4U);
    out.append(text.substr(0, start));
    text.remove_prefix(start);
    std::string carried;
    if (must_carry(text, holds::xml)) {
        append_carried(carried, text, holds::xml);
        text = carried;
    }
    for (std::size_t plain = 0; plain < text.size();) {
        const std::size_t at = find_place(text, plain, place);
        out.append(text.substr(plain, at - plain));
        if (at < text.size())
            out.append(entity_of(text[at], in_attribute));
        plain = at + 1;
    }
}

void append_attribute(std::string &out, std::string_view name, std::string_view value)
{
    out.append(1, ' ').append(name).append("=\"");
    append_xml(out, value, true);
    out += '"';
}

void append_element(std::string &out, std::string_view start, std::string_view name,
                    std::string_view text)
{
    out.append(start).append(1, '>');
    append_xml(out, text);
    out.append("</").append(name).append(">\n");
}

} // namespace zel::exchange
