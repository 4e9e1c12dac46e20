#include "assist/dictionary-choice.h"

#include "langlib/languages.h"
#include "support/text.h"

#include <algorithm>
#include <iterator>

namespace zel::assist {

namespace {

// Languages whose home territory is neither their code in capitals, as in de_DE, nor the first by
// the alphabet.
constexpr struct {
    std::string_view code;
    std::string_view territory;
} homes[] = {{"ca", "ES"}, {"el", "GR"}, {"en", "US"}, {"sv", "SE"}};
static_assert(std::is_sorted(std::begin(homes), std::end(homes),
                             [](const auto &a, const auto &b) { return a.code < b.code; }));

// Names of dictionaries are written with both signs, and in upper and lower case.
bool is_same(std::string_view a, std::string_view b)
{
    const auto plain = [](char c) { return c == '-' ? '_' : lower(static_cast<unsigned char>(c)); };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char x, char y) { return plain(x) == plain(y); });
}

std::string named(std::string_view code, std::span<const std::string> there)
{
    std::string best;
    for (const std::string &one : there)
        if (is_same(one, code) && (best.empty() || one < best))
            best = one;
    return best;
}

// Whether the name is the language with a territory, two capitals or three digits, and nothing
// else.
bool is_of_territory(std::string_view name, std::string_view code)
{
    const auto is_capital = [](char c) { return c >= 'A' && c <= 'Z'; };
    const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
    if (name.size() < code.size() + 3 || !is_same(name.substr(0, code.size()), code) ||
        !is_same(name.substr(code.size(), 1), "_"))
        return false;
    name.remove_prefix(code.size() + 1);
    return (name.size() == 2 && std::all_of(name.begin(), name.end(), is_capital)) ||
           (name.size() == 3 && std::all_of(name.begin(), name.end(), is_digit));
}

std::string of_any_territory(std::string_view code, std::span<const std::string> there)
{
    std::string home(code);
    std::transform(home.begin(), home.end(), home.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    for (const auto &row : homes)
        if (row.code == code)
            home = row.territory;
    home.insert(0, std::string(code) + "_");
    if (std::string best = named(home, there); !best.empty())
        return best;
    // The order of the list is the file system's: the first by the alphabet is the same on every
    // machine.
    std::string best;
    for (const std::string &one : there)
        if (is_of_territory(one, code) && (best.empty() || one < best))
            best = one;
    return best;
}

// Whether the code has a script or a modifier, "sr_Latn" or "sr@latin".
bool has_form(std::string_view code)
{
    if (code.find('@') != std::string_view::npos)
        return true;
    const std::size_t at = code.find('_');
    // A script has four letters, a territory two or three.
    return at != std::string_view::npos && code.size() >= at + 5 &&
           (code.size() == at + 5 || code[at + 5] == '_');
}

} // namespace

std::string choose_dictionary(std::string_view language, std::span<const std::string> there)
{
    language_tag wanted;
    language_row row;
    if (!read_language(language, wanted, row))
        return named(language, there);
    if (std::string best = named(language, there); !best.empty())
        return best;
    const bool formed = has_form(wanted.view());
    language_tag choice;
    std::string best;
    // The whole chain by exact names first: de_AT is to find "de" before any other territory's
    // dictionary.
    for (unsigned i = 0; best.empty() && next_choice(wanted, i, choice); ++i)
        // Another script would mark every word of the text as wrong.
        if (!formed || has_form(choice.view()))
            best = named(choice.view(), there);
    for (unsigned i = 0; best.empty() && !formed && next_choice(wanted, i, choice); ++i)
        if (choice.view().find('_') == std::string_view::npos)
            best = of_any_territory(choice.view(), there);
    return best;
}

} // namespace zel::assist
