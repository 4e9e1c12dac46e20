#include "exchange/xml-write.h"

#include "exchange/carry.h"

namespace zel::exchange {

namespace {

// How a character must be written; empty if it stands for itself.
std::string_view entity_of(char c, bool in_attribute)
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

} // namespace

void append_xml(std::string &out, std::string_view text, bool in_attribute)
{
    std::string carried;
    if (must_carry(text, holds::xml)) {
        append_carried(carried, text, holds::xml);
        text = carried;
    }
    std::size_t plain = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::string_view entity = entity_of(text[at], in_attribute);
        if (entity.empty())
            continue;
        out.append(text.substr(plain, at - plain)).append(entity);
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
