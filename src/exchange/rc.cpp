#include "exchange/carry.h"
#include "exchange/keyed-file.h"
#include "exchange/xml-read.h"
#include "support/cut.h"
#include "support/guard.h"

#include <algorithm>
#include <charconv>
#include <memory>

#include <glib.h>

namespace zel::exchange {

namespace {

constexpr std::string_view rc_blanks = " \t\r\f\v";
constexpr std::string_view page_word = "#pragma code_page(";
constexpr char utf8_page[] = "UTF-8";

// The page of characters that a line tells, as converters call it; UTF-8 for the default one.
std::string charset_of_pragma(std::string_view line)
{
    line.remove_prefix(page_word.size());
    const std::string_view page = cut_at(line, ')');
    return page == "65001" || page.find_first_not_of("0123456789") != page.npos
               ? utf8_page
               : "CP" + std::string(page);
}

// Appends bytes of a page; false where they are none.
bool append_page(std::string &out, std::string_view bytes, const std::string &charset)
{
    gsize written = 0;
    const std::unique_ptr<char, release<g_free>> made(
        g_convert(bytes.data(), static_cast<gssize>(bytes.size()), "UTF-8", charset.c_str(),
                  nullptr, &written, nullptr));
    if (made != nullptr)
        out.append(made.get(), written);
    return made != nullptr;
}

// Makes a script UTF-8, whose parts may each tell their page.
fault decode_script(std::string_view bytes, std::string &text)
{
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
        return decode(bytes, text);
    drop_mark(bytes);
    std::string charset = utf8_page;
    for (std::size_t begin = 0; begin < bytes.size();) {
        const std::size_t at = std::min(bytes.find(page_word, begin), bytes.size());
        const std::string_view part = bytes.substr(begin, at - begin);
        if (!append_page(text, part, charset))
            return {line_at(bytes, begin + (charset == utf8_page ? valid_length(part) : 0)),
                    "bytes that are no " + charset};
        if (at == bytes.size())
            break;
        charset = charset_of_pragma(bytes.substr(at));
        text += page_word;
        begin = at + page_word.size();
    }
    return check_utf8(text);
}

std::string small_letters(std::string_view text)
{
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), g_ascii_tolower);
    return out;
}

// The two words of a LANGUAGE statement, LANG_GERMAN and SUBLANG_GERMAN or SUBLANG_DEFAULT. A
// variant is a language of its own.
said_language language_of_words(std::string_view primary, std::string_view sub)
{
    constexpr struct {
        std::string_view name;
        std::string_view code;
    } variants[] = {{"chinese_traditional", "zh_TW"},
                    {"chinese_simplified", "zh_CN"},
                    {"portuguese_brazilian", "pt_BR"},
                    {"norwegian_nynorsk", "nn"},
                    {"norwegian_bokmal", "nb"}};
    const auto after = [](std::string_view word, std::string_view start) {
        const std::string small = small_letters(word);
        return small.starts_with(start) ? small.substr(start.size()) : small;
    };
    const std::string name = after(primary, "lang_");
    const std::string variant = after(sub, "sublang_");
    for (const auto &row : variants)
        if (row.name == variant)
            return {{}, std::string(row.code)};
    if (name == "neutral")
        return {};
    return {variant.starts_with(name + "_") && variant != "english_us" ? variant : name, {}};
}

enum class rc_token { end, word, string, sign };

class script_reader {
public:
    script_reader(std::string_view text, keyed_file &file) : rest_(text), file_(file) {}

    fault read();

private:
    rc_token next();
    bool skip_blanks();
    void skip_directive();
    void take_string(bool is_wide);
    void take_escape(bool is_wide);
    bool take_code(bool is_wide);
    said_language take_language();
    void take_table();
    void take_entries(keyed_part &part);
    keyed_part &part_of(const said_language &said);
    void count_resource();
    void tell() const;
    bool is_word(std::string_view word) const
    {
        return kind_ == rc_token::word && small_letters(text_) == word;
    }
    bool opens() const { return is_word("begin") || (kind_ == rc_token::sign && text_ == "{"); }
    bool closes() const { return is_word("end") || (kind_ == rc_token::sign && text_ == "}"); }
    void fail(std::uint32_t line, const std::string &text)
    {
        if (!wrong_)
            wrong_ = {line, text};
        rest_ = {};
        kind_ = rc_token::end;
    }

    std::string_view rest_;
    std::string charset_ = utf8_page; // of bytes that are written as escapes
    keyed_file &file_;
    std::uint32_t line_ = 1;
    rc_token kind_ = rc_token::end;
    std::string text_; // of the token
    bool has_zero_ = false;
    said_language language_;
    std::size_t dialogs_ = 0;
    std::size_t menus_ = 0;
    std::size_t versions_ = 0;
    std::size_t with_zero_ = 0;
    std::vector<std::string> included_;
    fault wrong_;
};

// Passes over a line of the preprocessor, which may go on in the next ones.
void script_reader::skip_directive()
{
    std::string_view line = cut_at(rest_, '\n');
    if (line.starts_with(page_word))
        charset_ = charset_of_pragma(line);
    const std::string words = small_letters(line);
    if (words.starts_with("#include") && words.find(".rc") != words.npos) {
        line.remove_prefix(std::min(line.find_first_of("\"<"), line.size()));
        included_.emplace_back(line.substr(0, line.find_last_not_of(rc_blanks) + 1));
    }
    ++line_;
    while (!rest_.empty() && (line.ends_with('\\') || line.ends_with("\\\r"))) {
        line = cut_at(rest_, '\n');
        ++line_;
    }
}

// Passes over what is no token. False where there is none any more.
bool script_reader::skip_blanks()
{
    while (!rest_.empty()) {
        if (rest_.starts_with('\n')) {
            rest_.remove_prefix(1);
            ++line_;
        } else if (rest_.starts_with('#')) {
            skip_directive();
        } else if (rest_.starts_with("//")) {
            rest_.remove_prefix(std::min(rest_.find('\n'), rest_.size()));
        } else if (rest_.starts_with("/*")) {
            const std::size_t end = rest_.find("*/");
            if (end == rest_.npos) {
                fail(line_, "a comment without its end");
                return false;
            }
            line_ += line_at(rest_, end) - 1;
            rest_.remove_prefix(end + 2);
        } else if (rc_blanks.find(rest_.front()) != rc_blanks.npos) {
            rest_.remove_prefix(1);
        } else {
            return true;
        }
    }
    return false;
}

rc_token script_reader::next()
{
    text_.clear();
    if (!skip_blanks())
        return kind_ = rc_token::end;
    const bool is_wide = rest_.starts_with("L\"");
    if (is_wide || rest_.starts_with('"')) {
        rest_.remove_prefix(is_wide ? 2 : 1);
        kind_ = rc_token::string;
        take_string(is_wide);
        return kind_;
    }
    const auto is_letter = [](char c) {
        return g_ascii_isalnum(c) != FALSE || c == '_' || c == '.' || (c & 0x80) != 0;
    };
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), is_letter);
    const auto length = static_cast<std::size_t>(end - rest_.begin());
    text_ = rest_.substr(0, std::max<std::size_t>(length, 1));
    rest_.remove_prefix(text_.size());
    return kind_ = length == 0 ? rc_token::sign : rc_token::word;
}

// A number behind a backslash: "x" and digits, or octal ones.
bool script_reader::take_code(bool is_wide)
{
    const bool is_hex = rest_.starts_with('x') || rest_.starts_with('X');
    const std::string_view digits = rest_.substr(is_hex ? 1 : 0, is_hex ? (is_wide ? 4 : 2) : 3);
    std::uint32_t code = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), code, is_hex ? 16 : 8);
    if (error != std::errc())
        return false;
    rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
    has_zero_ = has_zero_ || code == 0;
    const char byte = static_cast<char>(code);
    if (code == 0)
        return true;
    if (is_wide || code < 0x80)
        text_ += text_of_code(code);
    else if (!append_page(text_, {&byte, 1}, charset_ == utf8_page ? "CP1252" : charset_))
        fail(line_, "an escape that is no character");
    return true;
}

// What stands behind a backslash; where it means nothing, the backslash is one.
void script_reader::take_escape(bool is_wide)
{
    constexpr std::string_view letters = "ntr\\\"";
    constexpr std::string_view meant = "\n\t\r\\\"";
    if (rest_.starts_with("\r\n"))
        rest_.remove_prefix(1);
    if (rest_.starts_with('\n')) {
        rest_.remove_prefix(1);
        ++line_;
        return;
    }
    const std::size_t known = rest_.empty() ? letters.npos : letters.find(rest_.front());
    if (known != letters.npos) {
        text_ += meant[known];
        rest_.remove_prefix(1);
    } else if (!take_code(is_wide)) {
        text_ += '\\';
    }
}

void script_reader::take_string(bool is_wide)
{
    const std::uint32_t line = line_;
    for (;;) {
        const std::size_t plain = rest_.find_first_of("\"\\\n");
        if (plain == rest_.npos || rest_[plain] == '\n')
            return fail(line, "a string without its closing quote");
        text_.append(rest_.substr(0, plain));
        const char sign = rest_[plain];
        rest_.remove_prefix(plain + 1);
        if (text_.size() > largest_text)
            return fail(line, "a text of more than 8 MB");
        if (sign == '\\') {
            take_escape(is_wide);
        } else if (rest_.starts_with('"')) {
            text_ += '"';
            rest_.remove_prefix(1);
        } else {
            return;
        }
    }
}

// The words behind LANGUAGE; the token is the last of them.
said_language script_reader::take_language()
{
    next();
    const std::string primary = text_;
    next();
    next();
    if (kind_ != rc_token::word && !wrong_)
        fail(line_, "LANGUAGE without its two words");
    return language_of_words(primary, text_);
}

keyed_part &script_reader::part_of(const said_language &said)
{
    for (keyed_part &part : file_.parts)
        if (part.language.name == said.name && part.language.code == said.code)
            return part;
    constexpr std::size_t most_languages = 500; // more than there are
    if (file_.parts.size() == most_languages)
        fail(line_, "more than 500 languages");
    else
        file_.parts.emplace_back().language = said;
    return file_.parts.back();
}

// A table's head may have a language of its own, for it alone.
void script_reader::take_table()
{
    const std::uint32_t line = line_;
    said_language language = language_;
    for (next(); kind_ != rc_token::end && !opens(); next())
        if (is_word("language"))
            language = take_language();
    if (kind_ == rc_token::end)
        return fail(line, "a STRINGTABLE without its BEGIN");
    take_entries(part_of(language));
}

void script_reader::take_entries(keyed_part &part)
{
    const std::uint32_t begin = line_;
    for (next(); !closes();) {
        keyed_text one;
        one.line = line_;
        has_zero_ = false;
        for (; kind_ == rc_token::word || (kind_ == rc_token::sign && !closes()); next())
            one.key.append(text_ == "," ? "" : text_);
        if (kind_ == rc_token::end)
            return fail(begin, "a STRINGTABLE without its END");
        if (kind_ != rc_token::string || one.key.empty())
            return fail(one.line, "a text without its name, or a name without its text");
        for (; kind_ == rc_token::string; next())
            one.text += text_;
        with_zero_ += has_zero_ ? 1 : 0;
        if (!has_zero_)
            if (const fault wrong = part.add(std::move(one)))
                return fail(wrong.line, wrong.text);
    }
}

// What else has texts is counted by its type; its parts are passed over.
void script_reader::count_resource()
{
    dialogs_ += is_word("dialog") || is_word("dialogex") ? 1 : 0;
    menus_ += is_word("menu") || is_word("menuex") ? 1 : 0;
    versions_ += is_word("versioninfo") ? 1 : 0;
}

void script_reader::tell() const
{
    std::string all;
    for (const auto &[count, noun] :
         {std::pair(dialogs_, "dialog"), {menus_, "menu"}, {versions_, "version"}})
        if (count != 0)
            all.append(all.empty() ? "" : ", ").append(counted_words(count, noun));
    if (!all.empty())
        file_.notes.push_back("only tables of strings are read, not " + all);
    if (with_zero_ != 0)
        file_.notes.push_back("left out " + counted_words(with_zero_, "text") +
                              " with a zero byte");
    for (const std::string &name : included_)
        file_.notes.push_back("not read: " + name + ", which it includes");
}

fault script_reader::read()
{
    std::size_t depth = 0;
    std::uint32_t begin = 0; // of the outermost block
    while (next() != rc_token::end) {
        if (opens())
            begin = depth++ == 0 ? line_ : begin;
        else if (closes())
            depth -= depth == 0 ? 0 : 1;
        else if (depth == 0 && is_word("language"))
            language_ = take_language();
        else if (depth == 0 && is_word("stringtable"))
            take_table();
        else if (depth == 0)
            count_resource();
    }
    // Tables may stand in what was passed over.
    if (depth != 0)
        fail(begin, "a BEGIN without its END");
    tell();
    return wrong_;
}

} // namespace

fault read_rc(std::string_view bytes, keyed_file &file)
{
    std::string text;
    if (fault wrong = decode_script(bytes, text))
        return wrong;
    return script_reader(text, file).read();
}

} // namespace zel::exchange
