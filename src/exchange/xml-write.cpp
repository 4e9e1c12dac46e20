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

// For each byte where it must be written as an entity: 1 in an attribute, 2 in a text.
constexpr auto places = [] {
    std::array<unsigned char, 256> table{};
    for (unsigned char c = 0; c < 0x80; ++c)
        table[c] =
            static_cast<unsigned char>((entity_of(static_cast<char>(c), true).empty() ? 0 : 1) |
                                       (entity_of(static_cast<char>(c), false).empty() ? 0 : 2));
    return table;
}();

} // namespace

void append_xml(std::string &out, std::string_view text, bool in_attribute)
{
    std::string carried;
    if (must_carry(text, holds::xml)) {
        append_carried(carried, text, holds::xml);
        text = carried;
    }
    const unsigned place = in_attribute ? 1 : 2;
    std::size_t plain = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if ((places[static_cast<unsigned char>(text[at])] & place) == 0)
            continue;
        out.append(text.substr(plain, at - plain)).append(entity_of(text[at], in_attribute));
        plain = at + 1;
    }
    out.append(text.substr(plain));
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
