#include "kit/support/pseudo-text.h"

#include "lint/conversions.h"
#include "lint/rules.h"
#include "lint/text.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace zel::kit {

namespace {

// small letter, its accented form, the capital's
constexpr struct {
    char letter;
    const char *small, *capital;
} accents[] = {
    {'a', "å", "Å"}, {'b', "ƀ", "Ɓ"}, {'c', "ç", "Ç"}, {'d', "ď", "Ď"}, {'e', "é", "É"},
    {'f', "ƒ", "Ƒ"}, {'g', "ĝ", "Ĝ"}, {'h', "ĥ", "Ĥ"}, {'i', "í", "Í"}, {'j', "ĵ", "Ĵ"},
    {'k', "ķ", "Ķ"}, {'l', "ļ", "Ļ"}, {'m', "ɱ", "Ḿ"}, {'n', "ñ", "Ñ"}, {'o', "ö", "Ö"},
    {'p', "ṕ", "Ṕ"}, {'q', "ɋ", "Ɋ"}, {'r', "ŕ", "Ŕ"}, {'s', "š", "Š"}, {'t', "ţ", "Ţ"},
    {'u', "ü", "Ü"}, {'v', "ṽ", "Ṽ"}, {'w', "ŵ", "Ŵ"}, {'x', "ẋ", "Ẋ"}, {'y', "ý", "Ý"},
    {'z', "ž", "Ž"},
};
static_assert(std::size(accents) == 26 && accents[25].letter == 'z', "found by position");

constexpr std::string_view vowels = "aeiouAEIOU";

std::string with_accent(std::string_view character)
{
    const char c = character.front();
    if (character.size() != 1 || !lint::is_ascii_letter(c))
        return std::string(character);
    const bool small = c >= 'a';
    const auto &row = accents[c - (small ? 'a' : 'A')];
    return small ? row.small : row.capital;
}

// Which bytes of a text stay as they are.
class kept_bytes {
public:
    explicit kept_bytes(std::string_view text) : text_(text), kept_(text.size())
    {
        keep_percents();
        keep_each('_', [&](std::size_t at) { return end_of_pair(at); });
        keep_each('\\', [&](std::size_t at) { return end_of_escape(at); });
        keep_each('<', [&](std::size_t at) { return end_of_tag(at); });
        keep_each('&', [&](std::size_t at) { return end_of_entity(at); });
        keep_addresses();
    }

    bool has(std::size_t at) const { return kept_[at]; }

private:
    void keep(std::size_t from, std::size_t to)
    {
        for (; from < to; ++from)
            kept_[from] = true;
    }
    void keep_part(std::string_view part) // of the text
    {
        const auto from = static_cast<std::size_t>(part.data() - text_.data());
        keep(from, from + part.size());
    }
    template <class End>
    void keep_each(char begin, End end)
    {
        for (std::size_t at = text_.find(begin); at != std::string_view::npos;) {
            const std::size_t behind = end(at);
            keep(at, behind);
            // At least one byte further, or the search would never end.
            at = text_.find(begin, std::max(behind, at + 1));
        }
    }

    void keep_percents();
    void keep_addresses();
    std::size_t end_of_word(std::size_t at) const
    {
        while (at < text_.size() && !lint::is_blank(text_[at]))
            ++at;
        return at;
    }
    std::size_t end_of_pair(std::size_t at) const
    {
        if (++at < text_.size())
            lint::next_char(text_, at);
        return at;
    }
    // "\n", "\x1b", "\u00e4": letters and digits behind it belong to it as far as they may.
    std::size_t end_of_escape(std::size_t at) const
    {
        constexpr std::size_t longest = 8; // digits
        const std::size_t first = at + 1;
        at = end_of_pair(at);
        const std::size_t most = std::min(text_.size(), at + longest);
        if (first < text_.size() &&
            std::string_view("xuU").find(text_[first]) != std::string_view::npos)
            while (at < most && g_ascii_isxdigit(text_[at]))
                ++at;
        return at;
    }
    std::size_t end_of_tag(std::size_t at) const
    {
        const std::size_t end = text_.find_first_of("<>", at + 1);
        const bool closed = end != std::string_view::npos && text_[end] == '>';
        return closed ? end + 1 : at;
    }
    std::size_t end_of_entity(std::size_t at) const
    {
        const std::size_t start = at + 1;
        at = start + (text_.substr(start).starts_with('#') ? 1 : 0);
        while (at < text_.size() && lint::is_word_byte(text_[at]))
            ++at;
        return at > start && at < text_.size() && text_[at] == ';' ? at + 1 : start;
    }

    std::string_view text_;
    std::vector<bool> kept_;
};

// Keeps conversions and symbols as lint sees them; behind any other percent sign the word.
void kept_bytes::keep_percents()
{
    const lint::percents found = lint::read_percents(text_);
    for (const std::string_view conversion : found.conversions)
        keep_part(conversion);
    for (const std::string_view name : found.symbols)
        keep_part({name.data() - 1, name.size() + 2});
    for (std::size_t at = text_.find('%'); at != std::string_view::npos;
         at = text_.find('%', at + 1))
        if (!kept_[at])
            keep(at, end_of_word(at));
}

// Keeps words with a web or mail address or a path.
void kept_bytes::keep_addresses()
{
    for (std::size_t at = 0; at < text_.size();) {
        const std::size_t end = end_of_word(at);
        const std::string_view word = text_.substr(at, end - at);
        const std::size_t slash = word.find('/');
        const bool path = slash != std::string_view::npos &&
                          (slash == 0 || !lint::is_word_byte(word[slash - 1])) &&
                          word.find('<') == std::string_view::npos;
        if (path || word.find("://") != std::string_view::npos ||
            word.find("www.") != std::string_view::npos || word.find('@') != std::string_view::npos)
            keep(at, end);
        at = end + 1;
    }
}

struct character { // of a text, the next one behind the one before
    std::uint8_t bytes;
    bool kept;
    bool vowel;
};

std::vector<character> characters_of(std::string_view text)
{
    const kept_bytes kept(text);
    std::vector<character> out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        const char32_t c = lint::next_char(text, at);
        const std::string_view bytes = text.substr(start, at - start);
        const bool stays = kept.has(start) || !lint::is_letter(c);
        out.push_back({static_cast<std::uint8_t>(bytes.size()), stays,
                       !stays && vowels.find(bytes.front()) != std::string_view::npos});
    }
    return out;
}

// Text with accents and doubled letters; vowels are doubled where there are any. What the text
// grows by is shared out evenly.
std::string grown_text(std::string_view text, const pseudo_how &how)
{
    const std::vector<character> characters = characters_of(text);
    const auto count = [&](auto is) {
        return static_cast<std::size_t>(std::count_if(characters.begin(), characters.end(), is));
    };
    const std::size_t vowel_count = count([](const character &c) { return c.vowel; });
    const auto doubles = [=](const character &c) { return vowel_count == 0 ? !c.kept : c.vowel; };
    const std::size_t doubled = count(doubles);
    // Rounded up: even a short text grows.
    const std::size_t more = (characters.size() * static_cast<std::size_t>(how.grow) + 99) / 100;
    std::string out;
    std::size_t done = 0;
    for (const character &c : characters) {
        const std::string_view bytes = text.substr(0, c.bytes);
        text.remove_prefix(c.bytes);
        const std::string written =
            how.accents && !c.kept ? with_accent(bytes) : std::string(bytes);
        out += written;
        if (!doubles(c))
            continue;
        // Spreads what is added evenly over the letters that are doubled.
        for (std::size_t n = done * more / doubled; n < (done + 1) * more / doubled; ++n)
            out += written;
        ++done;
    }
    return out;
}

bool is_in(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }

struct inside {
    std::size_t from, to;
};

inside without_blanks(std::string_view text)
{
    inside part{0, text.size()};
    while (part.from < part.to && lint::is_blank(text[part.from]))
        ++part.from;
    while (part.to > part.from && lint::is_blank(text[part.to - 1]))
        --part.to;
    return part;
}

// Returns where the text, taken up to there, ends without its closing signs.
std::size_t before_signs(std::string_view text, std::size_t to)
{
    for (std::size_t before = to; before > 0; to = before)
        if (const char32_t c = lint::last_char(text, before);
            c != U'…' && (c >= 0x80 || !is_in(".?!:;, \n\t", static_cast<char>(c))))
            break;
    return to;
}

// Returns where the text, taken up to there, ends without its closing quotes and tags.
std::size_t before_quotes(std::string_view text, std::size_t to)
{
    for (std::size_t before = to; before > 0; to = before) {
        const char32_t c = lint::last_char(text, before);
        if (c == '>' && text.rfind('<', before) != std::string_view::npos)
            before = text.rfind('<', before);
        else if (c != '"' && c != '\'' && c != U'”' && c != U'’' && c != U'»')
            break;
    }
    return to;
}

// The part without the signs at the end, and without quotes and tags behind them.
inside without_signs(std::string_view text, inside part)
{
    for (;;) {
        part.to = std::max(part.from, before_signs(text, part.to));
        const std::size_t inner = before_quotes(text, part.to);
        if (inner <= part.from || before_signs(text, inner) == inner)
            return part;
        part.to = inner;
    }
}

// The part inside of what encloses the whole text.
inside inside_of_pair(std::string_view text, inside part)
{
    while (part.from < part.to && is_in("([{\"'", text[part.from]))
        ++part.from;
    while (part.to > part.from && is_in(")]}\"'.?!:;,", text[part.to - 1]))
        --part.to;
    return part;
}

std::string with_brackets(std::string_view text, inside part)
{
    std::string out(text.substr(0, part.from));
    out.append("[").append(text.substr(part.from, part.to - part.from)) += ']';
    return out.append(text.substr(part.to));
}

// Whether lint has nothing to say, except that the text is long.
bool is_clean(const std::string &text, std::string_view reference, const item_t *item)
{
    const lint::text own = lint::look_at(text);
    const lint::text other = lint::look_at(reference);
    std::string message;
    const auto rows = lint::rules();
    return std::none_of(rows.begin(), rows.end(), [&](const lint::rule &row) {
        return row.judge_text != nullptr && row.id != lint::rule_id::length &&
               row.judge_text({own, other, item}, message);
    });
}

} // namespace

std::string pseudo_text(std::string_view reference, const item_t *item, const pseudo_how &how)
{
    if (lint::look_at(reference).is_blank())
        return std::string(reference);
    const std::string grown = grown_text(reference, how);
    const inside whole = without_blanks(grown);
    // The brackets stand where lint accepts them: outermost first.
    for (const inside part : {whole, without_signs(grown, whole), inside_of_pair(grown, whole)})
        if (std::string text = with_brackets(grown, part); is_clean(text, reference, item))
            return text;
    // Where no brackets can be. What lint has against the reference itself, it has against the
    // grown text as well.
    return is_clean(grown, reference, item) ? grown : std::string(reference);
}

} // namespace zel::kit
