#include "exchange/language-code.h"

#include "exchange/input.h"
#include "langlib/languages.h"

#include <algorithm>
#include <cstring>

namespace zel::exchange {

namespace {

// Of several names for a code, the first one is given for it.
constexpr struct {
    std::string_view name;
    std::string_view code;
} languages[] = {
    {"afrikaans", "af"},
    {"albanian", "sq"},
    {"amharic", "am"},
    {"arabic", "ar"},
    {"aragonese", "an"},
    {"armenian", "hy"},
    {"assamese", "as"},
    {"asturian", "ast"},
    {"azerbaijani", "az"},
    {"basque", "eu"},
    {"belarusian", "be"},
    {"bengali", "bn"},
    {"bosnian", "bs"},
    {"breton", "br"},
    {"bulgarian", "bg"},
    {"burmese", "my"},
    {"catalan", "ca"},
    {"chinese", "zh_CN"},
    {"simplified chinese", "zh_CN"},
    {"traditional chinese", "zh_TW"},
    {"cornish", "kw"},
    {"croatian", "hr"},
    {"czech", "cs"},
    {"danish", "da"},
    {"dutch", "nl"},
    {"dzongkha", "dz"},
    {"english", "en"},
    {"american english", "en_US"},
    {"british english", "en_GB"},
    {"american", "en_US"},
    {"british", "en_GB"},
    {"esperanto", "eo"},
    {"estonian", "et"},
    {"faroese", "fo"},
    {"finnish", "fi"},
    {"french", "fr"},
    {"canadian french", "fr_CA"},
    {"frisian", "fy"},
    {"friulian", "fur"},
    {"galician", "gl"},
    {"georgian", "ka"},
    {"german", "de"},
    {"austrian german", "de_AT"},
    {"swiss german", "de_CH"},
    {"greek", "el"},
    {"greenlandic", "kl"},
    {"gujarati", "gu"},
    {"haitian", "ht"},
    {"hausa", "ha"},
    {"hawaiian", "haw"},
    {"hebrew", "he"},
    {"hindi", "hi"},
    {"hungarian", "hu"},
    {"icelandic", "is"},
    {"igbo", "ig"},
    {"indonesian", "id"},
    {"interlingua", "ia"},
    {"irish", "ga"},
    {"italian", "it"},
    {"japanese", "ja"},
    {"javanese", "jv"},
    {"kannada", "kn"},
    {"kashubian", "csb"},
    {"kazakh", "kk"},
    {"khmer", "km"},
    {"kinyarwanda", "rw"},
    {"korean", "ko"},
    {"kurdish", "ku"},
    {"kyrgyz", "ky"},
    {"lao", "lo"},
    {"latin", "la"},
    {"latvian", "lv"},
    {"limburgish", "li"},
    {"lithuanian", "lt"},
    {"low german", "nds"},
    {"luxembourgish", "lb"},
    {"macedonian", "mk"},
    {"malagasy", "mg"},
    {"malay", "ms"},
    {"malayalam", "ml"},
    {"maltese", "mt"},
    {"manx", "gv"},
    {"maori", "mi"},
    {"marathi", "mr"},
    {"mongolian", "mn"},
    {"nepali", "ne"},
    {"northern sami", "se"},
    {"norwegian", "nb"},
    {"norwegian bokmal", "nb"},
    {"norwegian nynorsk", "nn"},
    {"bokmal", "nb"},
    {"nynorsk", "nn"},
    {"occitan", "oc"},
    {"oriya", "or"},
    {"ossetian", "os"},
    {"pashto", "ps"},
    {"persian", "fa"},
    {"polish", "pl"},
    {"portuguese", "pt"},
    {"brazilian portuguese", "pt_BR"},
    {"brazilian", "pt_BR"},
    {"punjabi", "pa"},
    {"quechua", "qu"},
    {"romanian", "ro"},
    {"romansh", "rm"},
    {"russian", "ru"},
    {"sanskrit", "sa"},
    {"sardinian", "sc"},
    {"scottish gaelic", "gd"},
    {"serbian", "sr"},
    {"serbian latin", "sr@latin"},
    {"sindhi", "sd"},
    {"sinhala", "si"},
    {"slovak", "sk"},
    {"slovenian", "sl"},
    {"somali", "so"},
    {"spanish", "es"},
    {"mexican spanish", "es_MX"},
    {"sundanese", "su"},
    {"swahili", "sw"},
    {"swedish", "sv"},
    {"tagalog", "tl"},
    {"tajik", "tg"},
    {"tamil", "ta"},
    {"tatar", "tt"},
    {"telugu", "te"},
    {"thai", "th"},
    {"tibetan", "bo"},
    {"tigrinya", "ti"},
    {"turkish", "tr"},
    {"turkmen", "tk"},
    {"uighur", "ug"},
    {"ukrainian", "uk"},
    {"urdu", "ur"},
    {"uzbek", "uz"},
    {"vietnamese", "vi"},
    {"walloon", "wa"},
    {"welsh", "cy"},
    {"wolof", "wo"},
    {"xhosa", "xh"},
    {"yiddish", "yi"},
    {"yoruba", "yo"},
    {"zulu", "zu"},
};

bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }

bool same_word(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

std::size_t letters(std::string_view text)
{
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is_letter) -
                                    text.begin());
}

// Two or three letters, or these before a separator and a country or variant.
bool is_code(std::string_view name)
{
    const std::size_t first = letters(name);
    if (first < 2 || first > 3)
        return false;
    if (first == name.size())
        return true;
    const char *separators = "_-@";
    const std::size_t second = letters(name.substr(first + 1));
    return std::strchr(separators, name[first]) != nullptr && second >= 2 && second <= 8 &&
           first + 1 + second == name.size();
}

// "szl_PL" is no Polish: small letters before the capitals of a country are a language, known or
// not.
bool has_country(std::string_view code)
{
    const auto is_capital = [](char c) { return c >= 'A' && c <= 'Z'; };
    const std::size_t end = letters(code);
    return is_code(code) && code.size() == end + 3 &&
           std::none_of(code.begin(), code.begin() + static_cast<std::ptrdiff_t>(end),
                        is_capital) &&
           is_capital(code[end + 1]) && is_capital(code[end + 2]);
}

// Variants that XML knows as scripts.
constexpr struct {
    std::string_view variant;
    std::string_view script;
} scripts[] = {{"@latin", "-Latn"}, {"@cyrillic", "-Cyrl"}, {"@devanagari", "-Deva"}};

std::string with_separator(std::string_view code, char old, char fresh)
{
    std::string out(code);
    std::replace(out.begin(), out.end(), old, fresh);
    return out;
}

} // namespace

std::string code_of(std::string_view name)
{
    for (const auto &row : languages)
        if (same_word(row.name, name))
            return std::string(row.code);
    if (is_code(name))
        return with_separator(name, '-', '_');
    language_tag tag;
    language_row row;
    if (!read_language(name, tag, row))
        return {};
    if (tag.view() == row.code)
        for (const auto &known : languages)
            if (same_word(known.name, row.english))
                return std::string(known.code);
    return code_of_xml(with_separator(tag.view(), '_', '-'));
}

std::string_view name_of_code(std::string_view code)
{
    for (const auto &row : languages)
        if (same_word(row.code, code))
            return row.name;
    const std::size_t end = code.find_first_of("_@.");
    // "zh_HK" is some kind of Chinese, too: the first country's name stands for the language.
    for (const auto &row : languages)
        if (same_word(row.code.substr(0, row.code.find_first_of("_@")), code.substr(0, end)))
            return row.name;
    return {};
}

std::string code_of_file(std::string_view path)
{
    std::string_view stem = stem_of(path);
    constexpr std::string_view with_program[] = {".ts", ".json", ".ini", ".rc"};
    if (std::none_of(std::begin(with_program), std::end(with_program),
                     [&](std::string_view ending) { return path.ends_with(ending); }))
        return code_of(stem);
    for (;;) {
        std::string code = code_of(stem);
        if (!name_of_code(code).empty() || has_country(code))
            return code;
        const std::size_t end = stem.find_first_of("_-.");
        if (end == stem.npos)
            return {};
        stem.remove_prefix(end + 1);
    }
}

bool is_as_close(std::string_view own, std::string_view said)
{
    const std::string_view begin = own.substr(0, said.size());
    constexpr std::string_view separators = "_@";
    return std::equal(begin.begin(), begin.end(), said.begin(), said.end(),
                      [&](char a, char b) {
                          return a == b || (separators.find(a) != separators.npos &&
                                            separators.find(b) != separators.npos);
                      }) &&
           (own.size() == said.size() || separators.find(own[said.size()]) != separators.npos);
}

std::string xml_code(std::string_view code)
{
    if (code.empty())
        // The code for a language that is not known.
        return "und";
    for (const auto &row : scripts)
        if (code.ends_with(row.variant))
            return with_separator(code.substr(0, code.size() - row.variant.size()), '_', '-')
                .append(row.script);
    const std::size_t end = code.find('@');
    return with_separator(code.substr(0, end), '_', '-');
}

std::string code_of_xml(std::string_view code)
{
    if (code == "und")
        return {};
    for (const auto &row : scripts)
        if (code.ends_with(row.script))
            return with_separator(code.substr(0, code.size() - row.script.size()), '-', '_')
                .append(row.variant);
    return with_separator(code, '-', '_');
}

} // namespace zel::exchange
