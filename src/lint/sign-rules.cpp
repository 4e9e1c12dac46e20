#include "lint/rule-list.h"

#include <algorithm>
#include <array>
#include <vector>

namespace zel::lint {

namespace {

struct ends {
    std::string_view before; // blanks and line ends
    std::string_view after;
};

ends ends_of(std::string_view bytes)
{
    const auto first = std::find_if_not(bytes.begin(), bytes.end(), is_blank);
    const auto last = std::find_if_not(bytes.rbegin(), bytes.rend(), is_blank).base();
    return {{bytes.begin(), first}, {last, bytes.end()}};
}

std::size_t lines_in(std::string_view blanks)
{
    return static_cast<std::size_t>(std::count(blanks.begin(), blanks.end(), '\n'));
}

// A blank that no line is broken at, of some width: as good as a plain one.
bool is_fixed_blank(std::string_view bytes)
{
    return bytes.starts_with("\u00A0") || bytes.starts_with("\u202F") ||
           bytes.starts_with("\u2003") || bytes.starts_with("\u3000");
}

bool is_only_blanks(std::string_view blanks) { return blanks.find('\n') == std::string_view::npos; }

// "a blank at its start" and the like: what the first has and the second lacks.
std::string ends_differ(std::string_view own, std::string_view reference, const char *where)
{
    const std::size_t lines = lines_in(own);
    const std::size_t expected = lines_in(reference);
    if (lines != expected) {
        if (expected == 0)
            return std::string("there is a line end at the ") + where + ", the reference has none";
        if (lines == 0)
            return std::string("the line end at the ") + where + " is missing";
        return "line ends at the " + std::string(where) + ": " + std::to_string(lines) +
               ", the reference has " + std::to_string(expected);
    }
    if (own.empty())
        return std::string("the blank at the ") + where + " is missing";
    if (reference.empty())
        return std::string("there is a blank at the ") + where + ", the reference has none";
    return std::string("the blanks at the ") + where + " are others than the reference's";
}

// Scripts that set no blanks need none beside their signs.
bool stands_for_blank(std::string_view own, std::string_view reference, std::string_view beside)
{
    std::size_t at = 0;
    return own.empty() && is_only_blanks(reference) &&
           (is_fixed_blank(beside) || is_wide(next_char(beside, at)));
}

enum class sign { none, period, question, exclamation, colon, semicolon, comma, ellipsis };

struct sign_row {
    char32_t character;
    sign means;
};
constexpr sign_row signs[] = {
    {U'.', sign::period},         {U'。', sign::period},        {U'．', sign::period},
    {U'｡', sign::period},         {U'।', sign::period},         {U'॥', sign::period},
    {U'۔', sign::period},         {U'։', sign::period},         {U'።', sign::period},
    {U'။', sign::period},         {U'།', sign::period},         {U'។', sign::period},
    {U'៖', sign::colon},          {U'՝', sign::colon},          {U'፦', sign::colon},
    {U'፧', sign::question},       {U'፤', sign::semicolon},      {U'၊', sign::comma},
    {U'?', sign::question},       {U'？', sign::question},      {U'؟', sign::question},
    {U'\u037E', sign::question},  {U'!', sign::exclamation},    {U'！', sign::exclamation},
    {U':', sign::colon},          {U'：', sign::colon},         {U'\u2236', sign::colon},
    {U';', sign::semicolon},      {U'；', sign::semicolon},     {U'؛', sign::semicolon},
    {U'\u0387', sign::semicolon}, {U'\u00B7', sign::semicolon}, {U',', sign::comma},
    {U'，', sign::comma},         {U'、', sign::comma},         {U'،', sign::comma},
    {U'…', sign::ellipsis},       {U'‥', sign::ellipsis},       {U'⋯', sign::ellipsis},
};

sign sign_of(char32_t c)
{
    const auto *row = std::find_if(std::begin(signs), std::end(signs),
                                   [=](const sign_row &one) { return one.character == c; });
    return row == std::end(signs) ? sign::none : row->means;
}

bool is_quote(char32_t c)
{
    constexpr std::u32string_view quotes = U"\"'`´«»‹›“”„‟‘’‚‛";
    return quotes.find(c) != std::u32string_view::npos;
}

// The length of "&gt;" and the like at the end of the text.
std::size_t entity_at_end(std::string_view bytes)
{
    std::size_t at = bytes.size() - 1;
    while (at > 0 && (is_word_byte(bytes[at - 1]) || bytes[at - 1] == '#'))
        --at;
    return at > 0 && at + 1 < bytes.size() && bytes[at - 1] == '&' ? bytes.size() - at + 1 : 0;
}

// What stands behind the sign in one way or another: blanks, quotes, tags, "(_S)".
std::string_view without_tail(std::string_view bytes)
{
    for (;;) {
        std::size_t at = bytes.size();
        if (at == 0)
            return bytes;
        const char32_t c = last_char(bytes, at);
        if (is_quote(c) || c == 0xA0 || c == 0x202F || c == 0x3000 || c == 0x200F || c == 0x200E ||
            (c < 0x80 && is_blank(static_cast<char>(c)))) {
            bytes = bytes.substr(0, at);
        } else if (c == '>' && bytes.rfind('<') != std::string_view::npos) {
            bytes = bytes.substr(0, bytes.rfind('<'));
        } else if (c == ';' && entity_at_end(bytes) != 0) {
            bytes.remove_suffix(entity_at_end(bytes));
        } else if (c == ')' && bytes.size() >= 4 &&
                   (bytes.substr(bytes.size() - 4, 2) == "(_" ||
                    bytes.substr(bytes.size() - 4, 2) == "(&")) {
            bytes = bytes.substr(0, bytes.size() - 4);
        } else {
            return bytes;
        }
    }
}

struct text_end {
    sign means;
    char32_t before; // the character before the sign
    bool in_bracket = false;
};

bool is_statement(sign means) { return means == sign::period || means == sign::exclamation; }

// Of a text without a tail, which ends with no bracket.
text_end end_of_sentence(std::string_view bytes)
{
    if (bytes.empty())
        return {sign::none, 0};
    std::size_t at = bytes.size();
    const char32_t last = last_char(bytes, at);
    sign means = sign_of(last);
    const bool dots = bytes.ends_with("...") || bytes.ends_with("..") || bytes.ends_with("。。");
    if (dots)
        means = sign::ellipsis;
    if (means == sign::none)
        return {means, last};
    while (at > 0) {
        const char32_t c = last_char(bytes, at);
        if (c != 0xA0 && c != 0x202F && c != ' ' && sign_of(c) != means)
            return {means, c};
    }
    return {means, 0};
}

// A whole sentence may stand in brackets, of which there may be any number.
text_end end_of(std::string_view bytes)
{
    text_end bracket{sign::none, 0}; // the outermost one, or the innermost wide one
    for (;;) {
        bytes = without_tail(bytes);
        std::size_t at = bytes.size();
        const char32_t last = bytes.empty() ? 0 : last_char(bytes, at);
        if ((last != ')' && last != U'）') || at == 0)
            break;
        if (bracket.before == 0 || is_wide(last))
            bracket.before = last;
        bytes = bytes.substr(0, at);
    }
    text_end inside = end_of_sentence(bytes);
    inside.in_bracket = bracket.before != 0;
    const bool counts = bracket.before == 0 || is_statement(inside.means) || is_wide(inside.before);
    return counts ? inside : bracket;
}

bool has_letter_of(std::string_view text, char32_t first, char32_t last)
{
    for (std::size_t at = 0; at < text.size();)
        if (const char32_t c = next_char(text, at); c >= first && c <= last)
            return true;
    return false;
}

bool has_greek(std::string_view text)
{
    return has_letter_of(text, 0x370, 0x3FF) || has_letter_of(text, 0x1F00, 0x1FFF);
}

// Thai, Lao, Tibetan, Burmese, Khmer, and the short texts of Chinese and Japanese: sentences end
// without a sign.
bool ends_without_sign(char32_t c)
{
    return (c >= 0xE00 && c < 0x10A0) || (c >= 0x1780 && c < 0x1800) || is_wide(c);
}

// "Error in %s:" may be "Error: %s" elsewhere.
bool has_colon(std::string_view bytes)
{
    for (std::size_t at = 0; at < bytes.size();)
        if (sign_of(next_char(bytes, at)) == sign::colon)
            return true;
    return false;
}

// "sec." and "Home (num. pad)": where the reference has no sign, a short word or one in a bracket
// ends with that of an abbreviation.
bool is_abbreviation(const text_end &own, std::string_view text)
{
    constexpr std::size_t longest = 4;
    const std::string_view word = without_tail(text);
    return own.means == sign::period &&
           (own.in_bracket ||
            (count_chars(word) <= longest && std::none_of(word.begin(), word.end(), is_blank)));
}

// "the file “.”" and "an address of “data:”" end with a sign that is named.
bool names_its_sign(const text_end &end, std::string_view text)
{
    std::size_t at = text.size();
    return at > 0 && is_quote(last_char(text, at)) &&
           (is_quote(end.before) || end.means == sign::colon);
}

// People type another sign for their script's own: ":" for Armenian's full stop, " -" for a colon
// in Burmese.
bool stands_for_sign(const text_end &own, const text_end &reference, std::string_view text)
{
    return (own.means == sign::colon && is_statement(reference.means) &&
            has_letter_of(text, 0x530, 0x58F)) ||
           (reference.means == sign::colon && text.ends_with(" -"));
}

bool means_the_same(const text_end &own, const text_end &reference, std::string_view text)
{
    if (names_its_sign(own, text) || stands_for_sign(own, reference, text))
        return true;
    // Tibetan ends every kind of text with this sign.
    if (without_tail(text).ends_with("།"))
        return true;
    if (reference.means == sign::none && is_abbreviation(own, text))
        return true;
    if (own.means == reference.means || (is_statement(own.means) && is_statement(reference.means)))
        return true;
    // Greek asks with a semicolon.
    if (own.means == sign::semicolon && reference.means == sign::question)
        return has_greek(text);
    if (own.means == sign::none && reference.means == sign::colon)
        return has_colon(text);
    // Thai ends no sentence with a sign, even where its last word is a foreign one.
    return own.means == sign::none && is_statement(reference.means) &&
           (ends_without_sign(own.before) || has_letter_of(text, 0xE01, 0xE7F));
}

const char *name_of_sign(sign means)
{
    static constexpr std::array names{
        "no sign", "a full stop", "a question mark", "an exclamation mark",
        "a colon", "a semicolon", "a comma",         "an ellipsis"};
    return names[static_cast<std::size_t>(means)];
}

// Wide forms count as the others: texts mix them.
char bracket_of(char32_t c)
{
    constexpr std::u32string_view wide = U"（）［］｛｝";
    if (c < 0x80)
        return std::string_view("()[]{}").find(static_cast<char>(c)) == std::string_view::npos
                   ? '\0'
                   : static_cast<char>(c);
    const std::size_t at = wide.find(c);
    return at == std::u32string_view::npos ? '\0' : "()[]{}"[at];
}

// The first bracket without its other half; 0 when there is none.
char find_unpaired(std::string_view bytes)
{
    // The brackets that wait for their other half.
    std::string open;
    for (std::size_t at = 0; at < bytes.size();) {
        const char bracket = bracket_of(next_char(bytes, at));
        if (bracket == '(' || bracket == '[' || bracket == '{')
            open += bracket;
        if (bracket == ')' || bracket == ']' || bracket == '}') {
            const char half = bracket == ')' ? '(' : bracket == ']' ? '[' : '{';
            if (open.empty() || open.back() != half)
                return bracket;
            open.pop_back();
        }
    }
    return open.empty() ? '\0' : open.back();
}

} // namespace

bool judge_blank(const text_case &at, std::string &message)
{
    if (!at.own.has(has_blank) && !at.reference.has(has_blank))
        return false;
    if (at.own.is_blank() || at.reference.is_blank())
        return false;
    const ends own = ends_of(at.own.bytes);
    const ends reference = ends_of(at.reference.bytes);
    // Between its blanks, to see whether the text begins or ends with a wide sign.
    const std::string_view inside = at.own.bytes.substr(
        own.before.size(), at.own.bytes.size() - own.before.size() - own.after.size());
    std::size_t last = inside.size();
    last_char(inside, last);
    if (own.before != reference.before && !stands_for_blank(own.before, reference.before, inside))
        message = ends_differ(own.before, reference.before, "start");
    else if (own.after != reference.after &&
             !stands_for_blank(own.after, reference.after, inside.substr(last)))
        message = ends_differ(own.after, reference.after, "end");
    return !message.empty();
}

bool judge_ending(const text_case &at, std::string &message)
{
    constexpr std::size_t shortest = 3; // "X:" is a name more than a sentence
    const text_end own = end_of(at.own.bytes);
    const text_end reference = end_of(at.reference.bytes);
    if (own.before == 0 || reference.before == 0 || at.reference.bytes.size() < shortest ||
        names_its_sign(reference, at.reference.bytes) ||
        means_the_same(own, reference, at.own.bytes))
        return false;
    message.append("there is ")
        .append(name_of_sign(own.means))
        .append(" at the end, the reference has ");
    message.append(name_of_sign(reference.means));
    return true;
}

bool judge_bidi(const text_case &at, std::string &message)
{
    if (!at.own.has(has_general))
        return false;
    constexpr char32_t pop_embedding = 0x202C;
    constexpr char32_t pop_isolate = 0x2069;
    std::vector<char32_t> open;
    for (std::size_t i = at.own.bytes.find('\xE2'); i < at.own.bytes.size();) {
        const char32_t c = next_char(at.own.bytes, i);
        if (c >= 0x202A && c <= 0x202E && c != pop_embedding)
            open.push_back(pop_embedding);
        else if (c >= 0x2066 && c <= 0x2068)
            open.push_back(pop_isolate);
        else if (!open.empty() && c == open.back())
            open.pop_back();
        else if (c == '\n' && !open.empty())
            break; // a paragraph ends what it began
    }
    if (open.empty())
        return false;
    message = open.back() == pop_isolate ? "an isolate is not closed with U+2069"
                                         : "an embedding or override is not closed with U+202C";
    return true;
}

bool judge_bracket(const text_case &at, std::string &message)
{
    if (!at.own.has(has_bracket))
        return false;
    const char unpaired = find_unpaired(at.own.bytes);
    // A reference like "a) first" has none either.
    if (unpaired == '\0' || find_unpaired(at.reference.bytes) != '\0')
        return false;
    message.append("a \"").append(1, unpaired).append("\" has no other half");
    return true;
}

} // namespace zel::lint
