#include "checker/code-token.h"

#include "support/text.h"

#include <algorithm>

namespace zel {

namespace {

using token_kind = code_token::kind;

bool begins_name(char c) { return is_letter(c) || c == '_' || c == '$' || (c & 0x80) != 0; }
bool is_in_name(char c) { return begins_name(c) || is_digit(c); }

class code_reader {
public:
    explicit code_reader(std::string_view bytes) : bytes_(bytes) {}

    std::vector<code_token> read()
    {
        while (at_ < bytes_.size())
            read_next();
        return std::move(tokens_);
    }

private:
    char byte(std::size_t ahead = 0) const
    {
        return at_ + ahead < bytes_.size() ? bytes_[at_ + ahead] : '\0';
    }

    // How many bytes join two lines at a place: a backslash and a line end.
    std::size_t join_at(std::size_t at) const
    {
        if (bytes_.substr(at).starts_with("\\\n"))
            return 2;
        return bytes_.substr(at).starts_with("\\\r\n") ? 3 : 0;
    }

    void read_next()
    {
        const char c = byte();
        if (const std::size_t join = join_at(at_); join != 0) {
            at_ += join;
        } else if (c == '\n') {
            ++at_;
            directive_ = 0;
            begins_line_ = true;
        } else if (is_space(c)) {
            ++at_;
        } else if (c == '/' && (byte(1) == '/' || byte(1) == '*')) {
            skip_comment();
        } else {
            read_token(c);
        }
    }

    void skip_comment()
    {
        if (byte(1) == '/')
            return skip_line();
        const std::size_t end = bytes_.find("*/", at_ + 2);
        at_ = end == bytes_.npos ? bytes_.size() : end + 2;
    }

    // To the line end, which stays.
    void skip_line()
    {
        while (at_ < bytes_.size() && bytes_[at_] != '\n')
            at_ += std::max<std::size_t>(join_at(at_), 1);
    }

    void read_token(char c)
    {
        if (c == '#' && begins_line_)
            directive_ = ++directives_;
        begins_line_ = false;
        const std::size_t begin = at_;
        const token_kind kind = take(c);
        tokens_.push_back({kind, directive_, begin, at_});
    }

    token_kind take(char c)
    {
        if (begins_name(c))
            return take_name();
        if (is_digit(c) || (c == '.' && is_digit(byte(1))))
            return take_number();
        if (c == '"')
            return take_quoted('"') ? token_kind::text : token_kind::other_text;
        if (c == '\'') {
            take_quoted('\'');
            return token_kind::character;
        }
        ++at_;
        return token_kind::sign;
    }

    // A name may be the prefix of a literal.
    token_kind take_name()
    {
        constexpr std::string_view prefixes[] = {"L", "u", "U", "u8", "R", "LR", "uR", "UR", "u8R"};
        const std::size_t begin = at_;
        while (is_in_name(byte()))
            ++at_;
        const std::string_view name = bytes_.substr(begin, at_ - begin);
        const char quote = byte();
        if ((quote != '"' && quote != '\'') ||
            std::find(std::begin(prefixes), std::end(prefixes), name) == std::end(prefixes))
            return token_kind::name;
        if (name.ends_with('R') && quote == '"')
            take_raw();
        else
            take_quoted(quote);
        return quote == '"' ? token_kind::other_text : token_kind::character;
    }

    // R"sign(...)sign"
    void take_raw()
    {
        const std::size_t open = bytes_.find('(', at_);
        if (open == bytes_.npos) {
            at_ = bytes_.size();
            return;
        }
        const std::string last = ")" + std::string(bytes_.substr(at_ + 1, open - at_ - 1)) + "\"";
        const std::size_t end = bytes_.find(last, open);
        at_ = end == bytes_.npos ? bytes_.size() : end + last.size();
    }

    token_kind take_number()
    {
        for (char last = ' ';; last = byte(), ++at_) {
            const char c = byte();
            const bool is_sign =
                (c == '+' || c == '-') && (lower(last) == 'e' || lower(last) == 'p');
            const bool is_mark = c == '\'' && is_in_name(byte(1));
            if (!is_in_name(c) && c != '.' && !is_sign && !is_mark)
                return token_kind::number;
        }
    }

    // Through the closing quote; false where the line ends before that.
    bool take_quoted(char quote)
    {
        for (++at_; at_ < bytes_.size() && bytes_[at_] != '\n';) {
            const char c = bytes_[at_];
            const std::size_t join = join_at(at_);
            at_ = std::min(bytes_.size(), at_ + (join != 0 ? join : c == '\\' ? 2 : 1));
            if (c == quote)
                return true;
        }
        return false;
    }

    std::string_view bytes_;
    std::size_t at_ = 0;
    bool begins_line_ = true;
    std::uint32_t directives_ = 0;
    std::uint32_t directive_ = 0;
    std::vector<code_token> tokens_;
};

int digit_value(char c)
{
    const int small = lower(c);
    return is_digit(c) ? c - '0' : small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

// The byte of an escape, and moves behind it; nothing where the check knows none.
std::optional<char> escaped_byte(std::string_view inner, std::size_t &at)
{
    constexpr std::string_view letters = "\\\"ntrab";
    constexpr std::string_view meant = "\\\"\n\t\r\a\b";
    const char letter = at < inner.size() ? inner[at++] : '\0';
    if (const std::size_t known = letters.find(letter); known != letters.npos)
        return meant[known];
    if (letter != 'x' || inner.size() - at < 2)
        return std::nullopt;
    const int high = digit_value(inner[at]);
    const int low = digit_value(inner[at + 1]);
    at += 2;
    // The compiler would take a third digit, too.
    if (high < 0 || low < 0 || high + low == 0 ||
        (at < inner.size() && digit_value(inner[at]) >= 0))
        return std::nullopt;
    return static_cast<char>(high * 16 + low);
}

} // namespace

std::vector<code_token> code_tokens(std::string_view bytes) { return code_reader(bytes).read(); }

std::optional<std::string> literal_text(std::string_view literal)
{
    if (literal.size() < 2)
        return std::nullopt;
    const std::string_view inner = literal.substr(1, literal.size() - 2);
    std::string out;
    for (std::size_t at = 0; at < inner.size();) {
        const char c = inner[at++];
        if (c == '\0' || c == '\r')
            return std::nullopt;
        if (c != '\\') {
            out += c;
            continue;
        }
        if (inner.substr(at).starts_with("\n") || inner.substr(at).starts_with("\r\n")) {
            at += inner[at] == '\r' ? 2 : 1;
            // A backslash there belongs to the line break for the check.
            if (inner.substr(at).starts_with("\\"))
                return std::nullopt;
            continue;
        }
        const std::optional<char> byte = escaped_byte(inner, at);
        if (!byte)
            return std::nullopt;
        out += *byte;
    }
    return out;
}

} // namespace zel
