#include "exchange/keyed-file.h"
#include "exchange/xml-read.h"
#include "support/cut.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace zel::exchange {

namespace {

constexpr std::string_view ini_blanks = " \t\r\f\v";

std::string_view without_ini_blanks(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(ini_blanks), text.size()));
    return text.substr(0, text.find_last_not_of(ini_blanks) + 1);
}

// Four digits at the start of the text; nothing for what is no such code.
std::optional<std::uint32_t> code_at(std::string_view text)
{
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code, 16);
    return error == std::errc() && end == text.data() + 4 ? std::optional(code) : std::nullopt;
}

// The character of a code behind a backslash, of two where one needs the other, which is taken off
// the rest; empty where it is none.
std::string take_code(std::string_view &rest)
{
    constexpr std::size_t length = 5; // with the letter
    std::optional<std::uint32_t> code;
    if (rest.starts_with('u'))
        code = code_at(rest.substr(1, 4));
    if (!code)
        return {};
    if (*code >= 0xD800 && *code < 0xDC00 && rest.substr(length).starts_with("\\u"))
        if (const auto low = code_at(rest.substr(length + 2, 4));
            low && *low >= 0xDC00 && *low < 0xE000) {
            rest.remove_prefix(2 * length + 1);
            return text_of_code(0x10000 + ((*code - 0xD800) << 10) + (*low - 0xDC00));
        }
    std::string character = text_of_code(*code);
    rest.remove_prefix(character.empty() ? 0 : length);
    return character;
}

// A backslash before anything but these stays one, as in a path.
std::string unescaped(std::string_view rest)
{
    constexpr std::string_view letters = "ntr\\\"';#=:";
    constexpr std::string_view meant = "\n\t\r\\\"';#=:";
    std::string out;
    for (;;) {
        const std::size_t plain = rest.find('\\');
        out.append(rest.substr(0, plain));
        if (plain == rest.npos)
            return out;
        rest.remove_prefix(plain + 1);
        const std::size_t known = rest.empty() ? letters.npos : letters.find(rest.front());
        if (known != letters.npos) {
            out += meant[known];
            rest.remove_prefix(1);
            continue;
        }
        const std::string character = take_code(rest);
        out += character.empty() ? "\\" : character;
    }
}

// What stands in quotes, if the value is that and at most a remark behind it; a quote in it is
// escaped, else it is a text that only begins with one.
std::string_view without_quotes(std::string_view value)
{
    if (!value.starts_with('"'))
        return value;
    std::size_t end = 1;
    while (end < value.size() && value[end] != '"')
        end += value[end] == '\\' ? 2 : 1;
    if (end >= value.size())
        return value;
    const std::string_view behind = without_ini_blanks(value.substr(end + 1));
    return behind.empty() || behind.front() == ';' || behind.front() == '#'
               ? value.substr(1, end - 1)
               : value;
}

bool goes_on(std::string_view line)
{
    const std::size_t last = line.find_last_not_of('\\');
    return (line.size() - (last == line.npos ? 0 : last + 1)) % 2 == 1;
}

class ini_reader {
public:
    ini_reader(std::string_view bytes, keyed_part &part) : rest_(bytes), part_(part) {}

    fault read()
    {
        while (!rest_.empty())
            if (fault wrong = take_line())
                return wrong;
        drop_remarks();
        return {};
    }
    std::size_t dropped() const { return dropped_; }

private:
    std::string_view cut_line()
    {
        ++line_;
        std::string_view line = cut_at(rest_, '\n');
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        return line;
    }

    // Remarks belong to the key right below them.
    void drop_remarks()
    {
        dropped_ += remarks_.size();
        remarks_.clear();
    }

    fault take_line();
    fault take_key(std::string_view line);

    std::string_view rest_;
    keyed_part &part_;
    std::uint32_t line_ = 0;
    std::string section_;
    std::vector<std::string> remarks_;
    std::size_t dropped_ = 0;
};

fault ini_reader::take_line()
{
    const std::string_view line = cut_line();
    const std::string_view content = without_ini_blanks(line);
    if (content.empty()) {
        drop_remarks();
    } else if (content.front() == ';' || content.front() == '#') {
        remarks_.emplace_back(without_ini_blanks(content.substr(1)));
        if (remarks_.back().empty())
            remarks_.pop_back();
    } else if (content.front() == '[') {
        drop_remarks();
        const std::size_t end = content.find(']');
        const std::string_view behind =
            end == content.npos ? std::string_view() : without_ini_blanks(content.substr(end + 1));
        if (end == content.npos || (!behind.empty() && behind[0] != ';' && behind[0] != '#'))
            return {line_, "a section without its bracket"};
        section_ = without_ini_blanks(content.substr(1, end - 1));
    } else {
        return take_key(line);
    }
    return {};
}

fault ini_reader::take_key(std::string_view line)
{
    keyed_text one;
    one.line = line_;
    const std::size_t sign = line.find('=');
    const std::string_view key = without_ini_blanks(line.substr(0, sign));
    if (sign == line.npos || key.empty())
        return {line_, "neither a section nor a remark nor a key with its text"};
    std::string value(without_ini_blanks(line.substr(sign + 1)));
    // A path's last backslash would take the next key into its text, but then that was no path.
    while (goes_on(value) && !rest_.empty()) {
        value.pop_back();
        value += without_ini_blanks(cut_line());
        if (value.size() > largest_text)
            return {one.line, "a text of more than 8 MB"};
    }
    one.text = unescaped(without_quotes(value));
    one.group = section_;
    one.key = (section_.empty() ? "" : section_ + ".").append(key);
    one.remarks.swap(remarks_);
    return part_.add(std::move(one));
}

} // namespace

fault read_ini(std::string_view bytes, keyed_file &file)
{
    std::string text;
    if (fault wrong = decode(bytes, text))
        return wrong;
    ini_reader reader(text, file.parts.emplace_back());
    fault wrong = reader.read();
    if (reader.dropped() != 0)
        file.notes.push_back("left out " + counted_words(reader.dropped(), "remark") +
                             " above no key");
    return wrong;
}

} // namespace zel::exchange
