#include "lint/free-key.h"

#include "lint/conversions.h"
#include "lint/markup.h"
#include "lint/mnemonics.h"
#include "lint/plural.h"
#include "lint/text.h"
#include "source/entry.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace zel::lint {

namespace {

char32_t small(char32_t c) { return g_unichar_tolower(c); }

// Letters that a key can bear; a mark belongs to the letter before it.
bool is_key(char32_t c) { return is_letter(c) && g_unichar_ismark(c) == FALSE && !is_wide(c); }

bool is_vowel(char32_t c)
{
    constexpr std::u32string_view vowels = U"aeiouyαεηιουωаеёиіоуыэюя";
    gunichar parts[G_UNICHAR_MAX_DECOMPOSITION_LENGTH];
    // Without its accents.
    const gsize count = g_unichar_fully_decompose(small(c), FALSE, parts, std::size(parts));
    return count != 0 && vowels.find(static_cast<char32_t>(parts[0])) != vowels.npos;
}

// Bytes that belong to the application: conversions, symbols, tags and entities.
std::vector<bool> foreign_bytes(std::string_view text)
{
    std::vector<bool> out(text.size());
    const auto mark = [&](std::size_t at, std::size_t length) {
        for (std::size_t i = at; i < std::min(at + length, out.size()); ++i)
            out[i] = true;
    };
    const percents found = read_percents(text);
    for (const auto *parts : {&found.conversions, &found.symbols})
        for (const std::string_view part : *parts)
            mark(static_cast<std::size_t>(part.data() - text.data()), part.size());
    for (std::size_t at = text.find('<'); at != text.npos; at = text.find('<', at + 1))
        mark(at, tag_length(text.substr(at)));
    for (std::size_t at = text.find('&'); at != text.npos; at = text.find('&', at + 1)) {
        constexpr std::size_t most = 10; // "&#x1F600;"
        const std::string_view entity = text.substr(at, most);
        const std::size_t end = entity.find(';');
        if (end < entity.find(' '))
            mark(at, end);
    }
    return out;
}

enum class rank_of_key : std::uint8_t { first, of_word, consonant, vowel };

struct place_of_key {
    rank_of_key rank;
    std::size_t at;
    char32_t key;
};

// The letters of a text that may be marked, the best ones first.
std::vector<place_of_key> places_of_keys(std::string_view text)
{
    const std::vector<bool> foreign = foreign_bytes(text);
    std::vector<place_of_key> out;
    bool in_word = false;
    bool is_first = true;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        const char32_t c = next_char(text, at);
        const bool begins = !in_word;
        in_word = is_letter(c) || is_digit(c) || c == '\'';
        if (foreign[start] || !is_key(c))
            continue;
        const rank_of_key rank = begins
                                     ? (is_first ? rank_of_key::first : rank_of_key::of_word)
                                     : (is_vowel(c) ? rank_of_key::vowel : rank_of_key::consonant);
        is_first = is_first && !begins;
        out.push_back({rank, start, small(c)});
    }
    std::stable_sort(out.begin(), out.end(),
                     [](const place_of_key &a, const place_of_key &b) { return a.rank < b.rank; });
    return out;
}

bool has_one_key(const mnemonics &marks) { return marks.count == 1 && marks.sure == 1; }

bool has_wide_letters(std::string_view text)
{
    for (std::size_t at = 0; at < text.size();)
        if (const char32_t c = next_char(text, at); is_wide(c) && is_letter(c))
            return true;
    return false;
}

// Where "(_S)" goes: before the signs at the end.
std::size_t end_of_words(std::string_view text)
{
    std::size_t end = text.size();
    while (end > 0) {
        std::size_t at = end;
        const char32_t c = last_char(text, at);
        if (is_letter(c) || is_digit(c) || c == ')' || c == U'\uFF09' || c == '%')
            break;
        end = at;
    }
    return end == 0 ? text.size() : end;
}

void append_char(std::string &out, char32_t c)
{
    char bytes[6];
    out.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(c, bytes)));
}

} // namespace

bool group_keys::wants_key(std::string_view text, std::string_view reference) const
{
    constexpr std::size_t longest_label = 300;
    if (text.size() > longest_label || reference.size() > longest_label)
        return false;
    const mnemonics of_reference = read_mnemonics(reference);
    const mnemonics own = read_mnemonics(text);
    if (!has_one_key(of_reference) || without_end(text).empty() || has_plural_forms(text))
        return false;
    // Another underscore would be a second key beside a name's.
    if (own.count == 0)
        return true;
    return own.count == 1 && own.sure == 1 && is_window_ &&
           !is_free(own.key, of_reference.key, share::with_reference);
}

void group_keys::take(std::string_view text, std::string_view reference)
{
    const mnemonics own = read_mnemonics(text);
    const taken_key one{own.key, read_mnemonics(reference).key};
    // Once is enough: so few stay even in a group of thousands.
    if (own.count == 1 && std::find(taken_.begin(), taken_.end(), one) == taken_.end())
        taken_.push_back(one);
}

bool group_keys::is_free(char32_t key, char32_t reference, share allowed) const
{
    return std::all_of(taken_.begin(), taken_.end(), [&](const taken_key &one) {
        return one.key != key || allowed == share::anything ||
               (allowed == share::with_reference && one.reference == reference);
    });
}

std::string group_keys::marked(std::string_view text, std::string_view reference,
                               share allowed) const
{
    const char32_t of_reference = read_mnemonics(reference).key;
    std::string out(text);
    if (const mnemonics own = read_mnemonics(text); own.count == 1)
        out.erase(own.at, 1);
    for (const place_of_key &one : places_of_keys(out))
        if (is_free(one.key, of_reference, allowed))
            return out.insert(one.at, "_");
    return {};
}

std::string group_keys::in_parentheses(std::string_view text, std::string_view reference,
                                       share allowed) const
{
    const mnemonics of_reference = read_mnemonics(reference);
    std::vector<char32_t> keys{of_reference.key};
    for (const place_of_key &one : places_of_keys(reference))
        keys.push_back(one.key);
    for (char32_t c = 'a'; c <= 'z'; ++c)
        keys.push_back(c);
    const auto free = std::find_if(keys.begin(), keys.end(), [&](char32_t key) {
        return is_free(key, of_reference.key, allowed);
    });
    if (free == keys.end())
        return {};
    std::string out(text);
    if (const mnemonics own = read_mnemonics(text); own.count == 1) {
        const std::size_t from = own.at > 0 && out[own.at - 1] == '(' ? own.at - 1 : own.at;
        const std::size_t end = out.find(')', own.at);
        // "(_S)" is replaced as a whole; of a mark in a word the sign goes.
        out.erase(from, from < own.at && end != out.npos ? end + 1 - from : 1);
    }
    std::string key = "(_";
    append_char(key, g_unichar_toupper(*free));
    return out.insert(end_of_words(out), key + ")");
}

std::string group_keys::with_key(std::string_view text, std::string_view reference) const
{
    const bool is_behind = has_wide_letters(text);
    for (const share allowed : {share::nothing, share::with_reference, share::anything}) {
        // In a window a key that two texts have is no help.
        if (allowed == share::anything && is_window_)
            break;
        std::string made =
            is_behind ? in_parentheses(text, reference, allowed) : marked(text, reference, allowed);
        if (!made.empty())
            return made;
    }
    return {};
}

} // namespace zel::lint
