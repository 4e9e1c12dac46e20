#include "source/fields.h"

#include "support/cut.h"

#include <algorithm>

namespace {

struct escape_row {
    char sign;
    char letter;
};
constexpr escape_row field_escapes[] = {{'\t', 't'}, {'\n', 'n'}, {'\r', 'r'}, {'\\', '\\'}};

std::string field_of(std::string_view text)
{
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        char sign = text[at];
        for (const escape_row &row : field_escapes)
            if (text[at] == '\\' && text.substr(at + 1, 1) == std::string_view(&row.letter, 1))
                sign = row.sign;
        at += sign != text[at] || text.substr(at, 2) == "\\\\" ? 1U : 0U;
        out += sign;
    }
    return out;
}

} // namespace

void zel::append_field(std::string &out, std::string_view text)
{
    for (const char c : text) {
        char letter = '\0';
        for (const escape_row &row : field_escapes)
            letter = row.sign == c ? row.letter : letter;
        if (letter != '\0')
            out += '\\';
        out += letter != '\0' ? letter : c;
    }
}

std::vector<std::string> zel::fields_of(std::string_view line)
{
    std::vector<std::string> out;
    const std::size_t tabs = static_cast<std::size_t>(std::count(line.begin(), line.end(), '\t'));
    for (std::size_t i = 0; i <= tabs; ++i)
        out.push_back(field_of(cut_at(line, '\t')));
    return out;
}
