#include "langlib/plural-rule.h"
#include "lint/plural.h"
#include "lint/rule-list.h"

#include <algorithm>

namespace zel::lint {

namespace {

// Without the signs around it, "log," is "log".
std::string_view without_signs(std::string_view word)
{
    constexpr std::string_view some = ".,;:!?()[]\"'";
    while (!word.empty() && some.find(word.front()) != std::string_view::npos)
        word.remove_prefix(1);
    while (!word.empty() && some.find(word.back()) != std::string_view::npos)
        word.remove_suffix(1);
    return word;
}

bool is_word(std::string_view bytes, std::size_t least)
{
    std::size_t letters = 0;
    for (std::size_t at = 0; at < bytes.size(); ++letters) {
        // Scripts beyond these double words to stress them.
        constexpr char32_t last_european = 0x52F;
        const char32_t c = next_char(bytes, at);
        if (c > last_european || !is_letter(c))
            return false;
    }
    return letters >= least;
}

// Short words are only slips when they can never meet themselves, as "that that" and "der der" do;
// longer ones always are but for a few, of which some are two cases of one word.
bool is_slip(std::string_view word)
{
    constexpr std::string_view never[] = {"the", "and", "for", "of",  "to",  "is",  "und", "von",
                                          "mit", "les", "del", "los", "las", "est", "para"};
    constexpr std::string_view sometimes[] = {"that",  "nous",   "vous",    "blah",
                                              "sama",  "masing", "teker",   "piano",
                                              "benar", "krāsu",  "eragina", "puntua"};
    const auto is_in = [word](const auto &list) {
        return std::find(std::begin(list), std::end(list), word) != std::end(list);
    };
    return is_in(never) || (is_word(word, 4) && !is_in(sometimes));
}

// Between the columns of a table, or before the next of its rows.
bool is_column(std::string_view gap)
{
    return gap == "\t" || (gap.size() > 1 && gap.back() != '\n');
}

// Turkish and Vietnamese double many a word to stress it; their letters tell them.
bool doubles_words(std::string_view bytes)
{
    constexpr std::u32string_view letters = U"ğşıİŞĞəđơưĐƠƯ";
    for (std::size_t at = 0; at < bytes.size();) {
        const char32_t c = next_char(bytes, at);
        if (c >= 0x80 &&
            (letters.find(c) != std::u32string_view::npos || (c >= 0x1EA0 && c <= 0x1EF9)))
            return true;
    }
    return false;
}

// The first word that stands there twice, one behind the other; empty when there is none. With
// signs between them they are a list, and so is a text of nothing else. Of a reference, which
// excuses it, all of that counts.
std::string_view find_repeated(std::string_view bytes, bool is_reference)
{
    std::string_view before;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t gap = at;
        while (at < bytes.size() && is_blank(bytes[at]))
            ++at;
        const std::size_t start = at;
        if (!is_reference && is_column(bytes.substr(gap, start - gap)))
            before = {};
        while (at < bytes.size() && !is_blank(bytes[at]))
            ++at;
        const std::string_view written = bytes.substr(start, at - start);
        const std::string_view word = is_reference ? without_signs(written) : written;
        // Across line ends too: that is where one types a word again.
        if (word.size() == before.size() && word == before && !word.empty() &&
            (is_reference || bytes.size() > 2 * word.size() + 1))
            return word;
        before = word;
    }
    return {};
}

} // namespace

bool judge_length(const text_case &at, std::string &message)
{
    constexpr std::size_t short_text = 10;
    if (at.reference.bytes.size() <= short_text ||
        // No text has more characters than bytes: most end here, uncounted.
        at.own.bytes.size() <= 2 * count_chars(at.reference.bytes))
        return false;
    std::size_t reference = count_chars(at.reference.bytes);
    std::size_t own = count_chars(at.own.bytes);
    if (at.reference.has(has_forms)) { // one form is shown
        reference /= count_text_forms(at.reference.bytes);
        own /= count_text_forms(at.own.bytes);
    }
    if (reference <= short_text || own <= 2 * reference)
        return false;
    message = std::to_string(own) + " characters, the reference has " + std::to_string(reference);
    return true;
}

bool judge_repeated(const text_case &at, std::string &message)
{
    if (!at.own.has(has_blank))
        return false;
    const std::string_view word = find_repeated(at.own.bytes, false);
    if (word.empty() || !is_slip(word) || doubles_words(at.own.bytes) ||
        !find_repeated(at.reference.bytes, true).empty())
        return false;
    message.append("\"").append(word).append("\" stands there twice");
    return true;
}

} // namespace zel::lint
