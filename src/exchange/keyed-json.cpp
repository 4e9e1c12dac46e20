#include "exchange/keyed-file.h"
#include "exchange/xml-read.h"

#include <algorithm>
#include <charconv>

namespace zel::exchange {

namespace {

constexpr std::size_t most_levels = 64;
constexpr std::string_view json_blanks = " \t\r\n";

// One value after the other, with the keys that lead to it. Not by the parser for whole sources,
// which tells neither lines nor keys that are there twice.
class key_walker {
public:
    key_walker(std::string_view bytes, keyed_part &part) : bytes_(bytes), part_(part) {}

    fault walk();
    std::size_t others() const { return others_; }

private:
    struct level {
        bool is_array;
        std::string key; // of the value that comes, or its number
        std::size_t count = 0;
    };

    bool fail(const std::string &text)
    {
        if (!wrong_)
            wrong_ = {line_, text};
        return false;
    }
    bool is_at(char c) const { return at_ < bytes_.size() && bytes_[at_] == c; }
    void skip_blanks();
    bool take_between();
    bool take_key();
    bool take_word();
    bool take_string(std::string &text);
    bool take_escape(std::string &text);
    bool take_code(std::uint32_t &code);
    bool open();
    bool take_text();

    std::string_view bytes_;
    keyed_part &part_;
    std::size_t at_ = 0;
    std::uint32_t line_ = 1;
    std::vector<level> levels_;
    std::size_t others_ = 0; // values that are no text
    fault wrong_;
};

void key_walker::skip_blanks()
{
    for (; at_ < bytes_.size() && json_blanks.find(bytes_[at_]) != json_blanks.npos; ++at_)
        line_ += bytes_[at_] == '\n' ? 1 : 0;
}

// Four digits behind "\u".
bool key_walker::take_code(std::uint32_t &code)
{
    const std::string_view digits = bytes_.substr(at_, 4);
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
    if (error != std::errc() || digits.size() != 4 || end != digits.data() + 4)
        return fail("an escape that is none");
    at_ += 4;
    return true;
}

bool key_walker::take_escape(std::string &text)
{
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view meant = "\"\\/\b\f\n\r\t";
    const char letter = at_ < bytes_.size() ? bytes_[at_++] : '\0';
    if (const std::size_t known = letters.find(letter); known != letters.npos) {
        text += meant[known];
        return true;
    }
    std::uint32_t code = 0;
    if (letter != 'u')
        return fail("an escape that is none");
    if (!take_code(code))
        return false;
    if (code >= 0xD800 && code < 0xDC00) {
        std::uint32_t low = 0;
        if (bytes_.substr(at_, 2) != "\\u")
            return fail("half of a character");
        at_ += 2;
        if (!take_code(low))
            return false;
        if (low < 0xDC00 || low > 0xDFFF)
            return fail("half of a character");
        code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
    }
    const std::string character = text_of_code(code);
    text += character;
    return !character.empty() || fail(code == 0 ? "a zero byte" : "half of a character");
}

bool key_walker::take_string(std::string &text)
{
    text.clear();
    for (++at_; !is_at('"');) {
        if (at_ >= bytes_.size() || bytes_[at_] == '\n')
            return fail("a string without its closing quote");
        const char c = bytes_[at_++];
        if (c != '\\')
            text += c;
        else if (!take_escape(text))
            return false;
        if (text.size() > largest_text)
            return fail("a text of more than 8 MB");
    }
    ++at_;
    return true;
}

// Adds the string that comes, by the keys that lead to it.
bool key_walker::take_text()
{
    keyed_text one;
    one.line = line_;
    if (!take_string(one.text))
        return false;
    for (const level &outer : levels_)
        one.key.append(one.key.empty() ? "" : ".")
            .append(outer.is_array ? std::to_string(outer.count) : outer.key);
    // A key with points in it is as good as objects in objects; one with blanks is a text.
    const std::size_t point = one.key.find('.');
    if (levels_.size() > 1)
        one.group = levels_.front().key;
    else if (point != 0 && point + 1 < one.key.size() && one.key.find(' ') == one.key.npos)
        one.group = one.key.substr(0, point == one.key.npos ? 0 : point);
    const fault wrong = part_.add(std::move(one));
    return !wrong || fail(wrong.text);
}

bool key_walker::take_word()
{
    const std::size_t end = bytes_.find_first_of(",]} \t\r\n", at_);
    const std::string_view word = bytes_.substr(at_, end - at_);
    const bool is_number = word.find_first_not_of("+-.0123456789eE") == word.npos;
    if (word.empty() || (!is_number && word != "true" && word != "false" && word != "null"))
        return fail("no JSON");
    at_ += word.size();
    ++others_;
    return true;
}

bool key_walker::take_key()
{
    level &in = levels_.back();
    if (!is_at('"'))
        return fail("no key");
    if (!take_string(in.key))
        return false;
    if (levels_.size() == 1 && in.key == "language_source")
        return fail("the JSON of a whole source, which needs no --new");
    skip_blanks();
    if (!is_at(':'))
        return fail("a key without its value");
    ++at_;
    skip_blanks();
    return true;
}

bool key_walker::open()
{
    if (levels_.size() == most_levels)
        return fail("brackets deeper than 64");
    levels_.push_back({bytes_[at_++] == '[', {}});
    return true;
}

// Takes what stands behind a value: the ends of arrays and objects, and the next key.
bool key_walker::take_between()
{
    for (;;) {
        skip_blanks();
        if (levels_.empty())
            return at_ == bytes_.size() || fail("something behind the object");
        level &in = levels_.back();
        if (is_at(in.is_array ? ']' : '}')) {
            ++at_;
            levels_.pop_back();
            continue;
        }
        if (!is_at(','))
            return fail(at_ == bytes_.size() ? "an object without its end" : "no JSON");
        ++at_;
        ++in.count;
        skip_blanks();
        return in.is_array || take_key();
    }
}

fault key_walker::walk()
{
    skip_blanks();
    if (!is_at('{'))
        fail("no object");
    while (!wrong_) {
        const bool opens = is_at('{') || is_at('[');
        if (!(opens ? open() : is_at('"') ? take_text() : take_word()))
            break;
        skip_blanks();
        if (opens && !is_at(levels_.back().is_array ? ']' : '}')) {
            if (!levels_.back().is_array)
                take_key();
            continue;
        }
        if (!take_between() || levels_.empty())
            break;
    }
    return wrong_;
}

} // namespace

fault read_keyed_json(std::string_view bytes, keyed_file &file)
{
    std::string text;
    if (fault wrong = decode(bytes, text))
        return wrong;
    file.has_suffixes = true;
    keyed_part &part = file.parts.emplace_back();
    key_walker walker(text, part);
    fault wrong = walker.walk();
    if (walker.others() != 0)
        file.notes.push_back("left out " + counted_words(walker.others(), "value") +
                             (walker.others() == 1 ? " that is no text" : " that are no text"));
    return wrong;
}

} // namespace zel::exchange
