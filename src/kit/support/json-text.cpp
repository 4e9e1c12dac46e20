#include "kit/support/json-text.h"

#include "support/text.h"

#include <algorithm>
#include <charconv>

#include <glib.h>

namespace zel::kit {

namespace {

class json_text_reader {
public:
    explicit json_text_reader(std::string_view inner) : rest_(inner) {}

    std::optional<std::string> read()
    {
        while (!rest_.empty()) {
            const char c = rest_.front();
            rest_.remove_prefix(1);
            if (c == '"' || static_cast<unsigned char>(c) < ' ')
                return std::nullopt;
            if (c != '\\')
                out_ += c;
            else if (!take_escape())
                return std::nullopt;
        }
        return std::move(out_);
    }

private:
    bool take_escape()
    {
        constexpr std::string_view letters = "\"\\/bfnrt";
        constexpr std::string_view meant = "\"\\/\b\f\n\r\t";
        const char letter = rest_.empty() ? '\0' : rest_.front();
        if (letter == 'u')
            return take_character();
        const std::size_t known = letter == '\0' ? letters.npos : letters.find(letter);
        if (known == letters.npos)
            return false;
        rest_.remove_prefix(1);
        out_ += meant[known];
        return true;
    }

    // "u" and four digits.
    bool take_unit(unsigned &unit)
    {
        constexpr std::size_t size = 5;
        const char *end = rest_.data() + std::min(rest_.size(), size);
        if (rest_.size() < size || rest_.front() != 'u' ||
            std::from_chars(rest_.data() + 1, end, unit, 16).ptr != end)
            return false;
        rest_.remove_prefix(size);
        return true;
    }

    // Characters beyond the first 65,536 are written as two units.
    bool take_character()
    {
        unsigned unit = 0;
        unsigned low = 0;
        if (!take_unit(unit) || unit == 0 || (unit >= 0xDC00 && unit < 0xE000))
            return false;
        if (unit >= 0xD800 && unit < 0xDC00) {
            if (!rest_.starts_with('\\'))
                return false;
            rest_.remove_prefix(1);
            if (!take_unit(low) || low < 0xDC00 || low >= 0xE000)
                return false;
            unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
        }
        char bytes[6];
        out_.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(unit, bytes)));
        return true;
    }

    std::string_view rest_;
    std::string out_;
};

} // namespace

std::optional<std::string> read_json_text(std::string_view line)
{
    while (!line.empty() && is_space(line.front()))
        line.remove_prefix(1);
    while (!line.empty() && is_space(line.back()))
        line.remove_suffix(1);
    if (line == "null")
        return std::string();
    if (line.size() < 2 || line.front() != '"' || line.back() != '"' ||
        g_utf8_validate(line.data(), static_cast<gssize>(line.size()), nullptr) == FALSE)
        return std::nullopt;
    return json_text_reader(line.substr(1, line.size() - 2)).read();
}

} // namespace zel::kit
