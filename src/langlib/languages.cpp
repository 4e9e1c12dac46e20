#include "langlib/languages.h"

#include "support/cut.h"

#include <algorithm>
#include <cstring>
#include <glib.h>

namespace zel {

namespace {

// One text, not a table of pointers: those would have to be adjusted whenever the library is
// loaded.
constexpr std::string_view languages =
#include "langlib/languages.inc"
    ;

constexpr std::string_view territories =
#include "langlib/territories.inc"
    ;

constexpr std::size_t row_fields = 6;

constexpr bool is_well_formed()
{
    std::size_t tabs = 0;
    for (const char c : languages) {
        tabs += c == '\t' ? 1 : 0;
        if (c == '\n' && tabs != row_fields - 1)
            return false;
        tabs = c == '\n' ? 0 : tabs;
    }
    return languages.ends_with('\n');
}
static_assert(is_well_formed(), "each line has its fields");

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
bool is_letter(char c) { return lower(c) >= 'a' && lower(c) <= 'z'; }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

gunichar take_char(std::string_view &text)
{
    const gunichar c = g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
    if (c >= 0xFFFFFFFE) { // no UTF-8: each byte stands for itself, beyond all characters
        const auto byte = static_cast<unsigned char>(text[0]);
        text.remove_prefix(1);
        return 0x200000U + byte;
    }
    text.remove_prefix(
        std::min(static_cast<std::size_t>(g_unichar_to_utf8(c, nullptr)), text.size()));
    return g_unichar_tolower(c);
}

bool same_name(std::string_view a, std::string_view b)
{
    while (!a.empty() && !b.empty()) {
        // Letters of ASCII, by far the most, are compared without decoding them.
        const bool ascii = ((a[0] | b[0]) & 0x80) == 0;
        if (ascii ? lower(a[0]) != lower(b[0]) : take_char(a) != take_char(b))
            return false;
        if (ascii) {
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
    }
    return a.empty() && b.empty();
}

bool has_name(std::string_view names, std::string_view name)
{
    while (!names.empty())
        if (same_name(cut_at(names, '|'), name))
            return true;
    return false;
}

bool is_named(const language_row &row, std::string_view name)
{
    return same_name(row.code, name) || has_name(row.other_codes, name) ||
           same_name(row.english, name) || same_name(row.own, name) ||
           has_name(row.other_names, name);
}

void append(language_tag &tag, std::string_view text)
{
    const std::size_t size = std::min(text.size(), language_tag::limit - tag.length);
    std::memcpy(tag.text + tag.length, text.data(), size);
    tag.length += size;
    tag.text[tag.length] = '\0';
}

constexpr std::string_view separators = "_- (";
constexpr std::size_t longest_part = 16;

struct tag_parts {
    char script[5] = "";
    char territory[4] = "";
    char modifier[longest_part + 1] = "";
};

// A script, and whether its name is a modifier that stands for it.
struct script_name {
    const char *name;
    const char *script;
    bool is_modifier;
};
constexpr script_name scripts[] = {
    {"latin", "Latn", true},        {"cyrillic", "Cyrl", true},
    {"devanagari", "Deva", true},   {"arabic", "Arab", false},
    {"simplified", "Hans", false},  {"simplified han", "Hans", false},
    {"traditional", "Hant", false}, {"traditional han", "Hant", false},
};

bool all(std::string_view text, bool (*is)(char))
{
    return std::all_of(text.begin(), text.end(), is);
}

// Reads a script of four letters, or a territory of two letters or three digits; false for anything
// else.
bool read_part(std::string_view part, tag_parts &parts)
{
    if (part.size() == 4 && all(part, is_letter) && parts.script[0] == '\0') {
        for (std::size_t i = 0; i < 4; ++i)
            parts.script[i] = i == 0 ? upper(part[i]) : lower(part[i]);
        return true;
    }
    const bool letters = part.size() == 2 && all(part, is_letter);
    if ((!letters && (part.size() != 3 || !all(part, is_digit))) || parts.territory[0] != '\0')
        return false;
    for (std::size_t i = 0; i < part.size() && i < 3;
         ++i) // GCC does not see that there are no more
        parts.territory[i] = upper(part[i]);
    return true;
}

// The code of a territory or a script that is named in English; empty for no such name.
std::string_view code_of(std::string_view name)
{
    for (const script_name &one : scripts)
        if (same_name(one.name, name))
            return one.script;
    for (std::string_view rest = territories; !rest.empty();) {
        std::string_view line = cut_at(rest, '\n');
        const std::string_view code = cut_at(line, '\t');
        if (has_name(line, name))
            return code;
    }
    return {};
}

// Reads what stood in parentheses: "AT", "Austria", "Traditional, Hong Kong".
bool read_named_parts(std::string_view names, tag_parts &parts)
{
    while (!names.empty()) {
        std::string_view name = cut_at(names, ',');
        name.remove_prefix(std::min(name.find_first_not_of(' '), name.size()));
        const std::string_view code = code_of(name);
        if (!name.empty() && !read_part(code.empty() ? name : code, parts))
            return false;
    }
    return true;
}

// Reads parts that follow their signs: "_AT", "-Hant-HK".
bool read_coded_parts(std::string_view codes, tag_parts &parts)
{
    while (!codes.empty()) {
        codes.remove_prefix(std::min(codes.find_first_not_of(separators), codes.size()));
        const std::size_t end = std::min(codes.find_first_of(separators), codes.size());
        if (end > 0 && !read_part(codes.substr(0, end), parts))
            return false;
        codes.remove_prefix(end);
    }
    return true;
}

bool read_modifier(std::string_view part, tag_parts &parts)
{
    if (part.empty() || part.size() > longest_part)
        return part.empty();
    std::transform(part.begin(), part.end(), parts.modifier, lower);
    return true;
}

// What stands behind the language: "_AT.UTF-8@euro", "-Hant-HK", " (Austria)".
bool read_parts(std::string_view rest, tag_parts &parts)
{
    const std::size_t modifier = std::min(rest.find('@'), rest.size());
    if (modifier < rest.size() && !read_modifier(rest.substr(modifier + 1), parts))
        return false;
    rest = rest.substr(0, modifier);
    if (rest.starts_with(" (") && rest.ends_with(')')) {
        if (!read_named_parts(rest.substr(2, rest.size() - 3), parts))
            return false;
    } else if (!read_coded_parts(rest.substr(0, rest.find('.')), parts)) {
        return false;
    }
    // Settings tell a language's script by its modifier, whose name a file may have as the code.
    for (const script_name &one : scripts) {
        const bool is_script = parts.modifier[0] == '\0' && same_name(parts.script, one.script);
        if (one.is_modifier && (is_script || same_name(parts.modifier, one.script))) {
            std::strcpy(parts.modifier, one.name);
            parts.script[0] = is_script ? '\0' : parts.script[0];
        }
    }
    return true;
}

void write_tag(language_tag &tag, std::string_view code, const char *script, const char *territory,
               const char *modifier)
{
    tag = {};
    append(tag, code);
    const struct {
        const char *sign;
        const char *part;
    } parts[] = {{"_", script}, {"_", territory}, {"@", modifier}};
    for (const auto &[sign, part] : parts)
        if (part[0] != '\0') {
            append(tag, sign);
            append(tag, part);
        }
}

// Languages that stand in for each other.
struct near_pair {
    std::string_view wanted;
    std::string_view other;
};
// Norwegian has two written languages, nb and nn, and "no" stands for either.
constexpr near_pair near_pairs[] = {{"nb", "no"}, {"nn", "no"}, {"no", "nb"}};

// The script in which a territory writes Chinese.
const char *script_of(std::string_view code, const char *territory)
{
    constexpr std::string_view traditional[] = {"TW", "HK", "MO"};
    if (code != "zh" || territory[0] == '\0')
        return "";
    return std::count(std::begin(traditional), std::end(traditional), territory) != 0 ? "Hant"
                                                                                      : "Hans";
}

// Where a name may be cut into a language and what stands behind it: the last such place before the
// end.
std::size_t last_cut(std::string_view name)
{
    return name.empty() ? name.npos : name.find_last_of("_- (.@");
}

} // namespace

bool find_language(std::string_view name, language_row &row)
{
    if (name.empty())
        return false;
    for (std::string_view rest = languages; !rest.empty();) {
        std::string_view line = cut_at(rest, '\n');
        // The columns of the table, in its order.
        for (std::string_view *field :
             {&row.code, &row.other_codes, &row.english, &row.own, &row.other_names, &row.plural})
            *field = cut_at(line, '\t');
        if (is_named(row, name))
            return true;
    }
    row = {};
    return false;
}

bool read_language(std::string_view name, language_tag &tag, language_row &row)
{
    // Each cut costs a walk through the table, so a name that long is none.
    constexpr std::size_t longest_name = 127;
    tag = {};
    row = {};
    if (name.size() > longest_name)
        return false;
    std::string_view language = name;
    // The longest beginning that the table knows is the language. What stands behind it must be
    // made of known parts, which read_parts looks at.
    while (!find_language(language, row)) {
        const std::size_t cut = last_cut(language);
        if (cut == language.npos)
            return false;
        language = language.substr(0, cut);
    }
    tag_parts parts;
    std::string_view rest = row.code;
    const std::string_view code = cut_at(rest, '_');
    if (!read_parts(rest, parts) || !read_parts(name.substr(language.size()), parts)) {
        row = {};
        return false;
    }
    // A language may have a row of its own for a script or a territory, as "pt-BR" does.
    for (const char *part : {parts.script, parts.territory}) {
        language_row closer;
        write_tag(tag, code, part, "", "");
        if (part[0] != '\0' && find_language(tag.view(), closer)) {
            row = closer;
            break;
        }
    }
    write_tag(tag, code, parts.script, parts.territory, parts.modifier);
    return true;
}

std::string_view near_language(std::string_view code)
{
    for (const near_pair &one : near_pairs)
        if (one.wanted == code)
            return one.other;
    return {};
}

bool next_choice(const language_tag &wanted, unsigned position, language_tag &tag)
{
    std::string_view rest = wanted.view();
    const std::size_t end = std::min(rest.find_first_of("_@"), rest.size());
    const std::string_view code = rest.substr(0, end);
    tag_parts parts;
    read_parts(rest.substr(end), parts);
    const char *script = parts.script[0] != '\0' ? parts.script : script_of(code, parts.territory);
    const std::string_view near = near_language(code);
    const struct {
        std::string_view code;
        const char *script;
        const char *territory;
        const char *modifier;
    } choices[] = {
        {code, parts.script, parts.territory, parts.modifier},
        {code, parts.script, "", parts.modifier},
        {code, parts.script, parts.territory, ""},
        {code, script, "", ""},
        {code, "", "", ""},
        {near.empty() ? code : near, "", "", ""},
    };
    if (position >= std::size(choices))
        return false;
    const auto &choice = choices[position];
    write_tag(tag, choice.code, choice.script, choice.territory, choice.modifier);
    return true;
}

} // namespace zel
