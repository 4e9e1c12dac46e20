#include "assist/word-finder.h"

#include "assist/fold.h"
#include "assist/words.h"
#include "lint/mnemonics.h"
#include "lint/text.h"
#include "support/text.h"

#include <algorithm>
#include <optional>

namespace zel::assist {

namespace {

constexpr std::size_t shortest_stem = 4; // letters
constexpr std::size_t longest_end = 3;

std::string_view without_blanks(std::string_view text)
{
    while (!text.empty() && lint::is_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && lint::is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

// Whether underscores of the text mark letters; else they belong to names.
bool has_marks(std::string_view text)
{
    return text.find('_') != std::string_view::npos && lint::read_mnemonics(text).sure != 0;
}

bool is_mark(std::string_view text, std::size_t at)
{
    if (text[at] != '_' || (at > 0 && text[at - 1] == '_'))
        return false;
    std::size_t behind = at + 1;
    return behind < text.size() && lint::is_letter(lint::next_char(text, behind));
}

// Whether a backslash before the place makes it a part of an escape; two are the sign itself.
bool is_escaped(std::string_view text, std::size_t at)
{
    std::size_t start = at;
    while (start > 0 && text[start - 1] == '\\')
        --start;
    return (at - start) % 2 != 0;
}

// Whether two characters side by side are of one word. Of scripts that set no blanks nobody knows.
bool joins(char32_t a, char32_t b)
{
    // A byte that is no UTF-8 may be a letter of another encoding.
    const auto in_word = [](char32_t c) {
        return c == '_' || c == 0xfffd || lint::is_letter(c) || lint::is_digit(c);
    };
    return in_word(a) && in_word(b) && !sets_no_blanks(a) && !sets_no_blanks(b);
}

// What stands around the hits of one text: read where there is a first one only.
class surroundings {
public:
    surroundings(std::string_view text, bool marks) : text_(text), marks_(marks) {}

    // The beginning moves in front of a mnemonic's sign.
    bool begins_word(std::size_t &at) const
    {
        if (is_escaped(text_, at))
            return false;
        std::size_t behind = at;
        const char32_t first = lint::next_char(text_, behind);
        if (marks_ && at > 0 && is_mark(text_, at - 1))
            --at;
        if (at == 0)
            return true;
        std::size_t before = at;
        const char32_t last = lint::last_char(text_, before);
        // The letter of an escape or a conversion is none of the word.
        return !joins(last, first) || is_escaped(text_, before) || ends_piece(at);
    }

    bool ends_word(std::size_t at) const
    {
        std::size_t before = at;
        const char32_t last = lint::last_char(text_, before);
        if (marks_ && at < text_.size() && is_mark(text_, at))
            ++at;
        return at == text_.size() || !joins(last, lint::next_char(text_, at));
    }

    bool is_of_application(std::size_t at, std::size_t end) const
    {
        if (at > 0 && text_[at - 1] == '&' && end < text_.size() && text_[end] == ';')
            return true; // an entity
        const auto next = first_that_ends_behind(at);
        return next != pieces().end() && next->at < end;
    }

private:
    const std::vector<piece> &pieces() const
    {
        if (!pieces_)
            pieces_ = pieces_of(text_);
        return *pieces_;
    }
    // Searched by halves: a long text may have as many pieces as hits.
    std::vector<piece>::const_iterator first_that_ends_behind(std::size_t at) const
    {
        return std::partition_point(pieces().begin(), pieces().end(),
                                    [at](const piece &one) { return one.at + one.length <= at; });
    }
    bool ends_piece(std::size_t at) const
    {
        const auto next = first_that_ends_behind(at - 1);
        return next != pieces().end() && next->at + next->length == at;
    }

    std::string_view text_;
    bool marks_;
    mutable std::optional<std::vector<piece>> pieces_;
};

// The characters of a word, and its letters in a case.
struct case_of_word {
    bool all_upper = false; // of two letters at least
    bool first_upper = false;
    bool first_lower = false;
};

case_of_word case_of(std::string_view word)
{
    std::size_t letters = 0;
    std::size_t upper = 0;
    case_of_word found;
    for (std::size_t at = 0; at < word.size();) {
        const char32_t c = lint::next_char(word, at);
        if (!lint::is_letter(c))
            continue;
        const bool is_upper = g_unichar_isupper(c) != FALSE;
        if (letters++ == 0) {
            found.first_upper = is_upper;
            found.first_lower = g_unichar_islower(c) != FALSE;
        }
        // A letter without case, as a mark on another is, does not end a word of capitals.
        upper += is_upper || g_unichar_islower(c) == FALSE ? 1U : 0U;
    }
    found.all_upper = found.first_upper && letters > 1 && upper == letters;
    return found;
}

std::string with_case(std::string_view word, gchar *(*change)(const gchar *, gssize))
{
    gchar *changed = change(word.data(), static_cast<gssize>(word.size()));
    std::string out = changed;
    g_free(changed);
    return out;
}

std::string with_first(std::string_view word, gchar *(*change)(const gchar *, gssize))
{
    std::size_t first = 0;
    if (!word.empty())
        lint::next_char(word, first);
    return with_case(word.substr(0, first), change) + std::string(word.substr(first));
}

std::string without_marks(std::string_view text)
{
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at)
        if (!is_mark(text, at))
            out += text[at];
    return out;
}

} // namespace

word_finder::word_finder(std::string_view words, word_extent extent)
    : wanted_(fold(without_blanks(words))), extent_(extent)
{
    if (wanted_.empty())
        return;
    // Letters beyond ASCII may fold to any other one.
    for (std::size_t byte = 0; byte < 256; ++byte)
        may_begin_[byte] = byte >= 0x80;
    const char first = wanted_.front();
    for (const char c : {first, g_ascii_toupper(first)})
        may_begin_[static_cast<unsigned char>(c)] = true;
}

// Returns where the wanted letters end that begin at the place; npos when others stand there.
std::size_t word_finder::end_of_match(std::string_view text, std::size_t at, bool marks) const
{
    std::string folded;
    for (std::size_t done = 0; done < wanted_.size();) {
        if (marks && done != 0 && at < text.size() && is_mark(text, at))
            ++at;
        if (at >= text.size())
            return std::string_view::npos;
        // Most letters are of ASCII and need no folding.
        if ((text[at] & 0x80) == 0) {
            if (wanted_[done++] != static_cast<char>(zel::lower(text[at++])))
                return std::string_view::npos;
            continue;
        }
        folded.clear();
        append_folded(folded, lint::next_char(text, at));
        if (wanted_.compare(done, folded.size(), folded) != 0)
            return std::string_view::npos;
        done += folded.size();
    }
    return at;
}

std::vector<piece> word_finder::find(std::string_view text, bool one_is_enough) const
{
    std::vector<piece> found;
    if (wanted_.empty() || text.size() * 2 < wanted_.size()) // a letter may fold to a longer one
        return found;
    std::optional<surroundings> around;
    const bool marks = has_marks(text);
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const std::size_t end =
            may_begin_[byte] ? end_of_match(text, at, marks) : std::string_view::npos;
        std::size_t start = at;
        if (end == std::string_view::npos) {
            ++at;
            // Not into the middle of a letter.
            while (byte >= 0x80 && at < text.size() && (text[at] & '\xc0') == '\x80')
                ++at;
            continue;
        }
        if (!around)
            around.emplace(text, marks);
        const bool is_hit = around->begins_word(start) &&
                            (extent_ == word_extent::beginning || around->ends_word(end)) &&
                            !around->is_of_application(start, end);
        if (is_hit) {
            found.push_back({start, end - start});
            if (one_is_enough)
                return found;
        }
        // "aa" stands once in "aaa": hits do not overlap.
        at = is_hit ? end : at + 1;
        while (at < text.size() && (text[at] & '\xc0') == '\x80')
            ++at;
    }
    return found;
}

std::string word_at(std::string_view text, std::size_t place)
{
    const bool marks = has_marks(text);
    const std::vector<piece> pieces = pieces_of(text);
    auto next = pieces.begin();
    std::string before; // the last word that ended before the place
    for (std::size_t at = 0; at < text.size();) {
        if (next != pieces.end() && next->at <= at) {
            at = std::max(at, next->at + next->length);
            ++next;
            continue;
        }
        if (text[at] == '\\') {
            at += 2;
            continue;
        }
        const std::size_t limit = next == pieces.end() ? text.size() : next->at;
        const std::size_t start = at;
        std::string word;
        while (at < limit) {
            std::size_t behind = at;
            const char32_t c = lint::next_char(text, behind);
            const bool is_sign = marks && is_mark(text, at);
            if (!is_sign && c != '_' && !lint::is_letter(c) && !lint::is_digit(c))
                break;
            if (!is_sign)
                word += text.substr(at, behind - at);
            at = behind;
        }
        if (word.empty()) {
            lint::next_char(text, at);
            continue;
        }
        if (at >= place)
            return before.empty() || start <= place ? word : before;
        before = word;
    }
    return before;
}

std::string stem_of(std::string_view word)
{
    const std::size_t letters = lint::count_chars(word);
    if (letters <= shortest_stem)
        return std::string(word);
    std::size_t at = 0;
    for (std::size_t kept = std::max(shortest_stem, letters - longest_end); kept > 0; --kept)
        lint::next_char(word, at);
    return std::string(word.substr(0, at));
}

word_replacer::word_replacer(std::string_view words, std::string_view others)
    : words_(without_blanks(words)), others_(without_blanks(others)),
      finder_(words_, word_extent::whole)
{
}

// The others as the written words are: in capitals, or with a first letter of the other case than
// the words that were given.
std::string word_replacer::written_for(std::string_view written) const
{
    const std::string letters = without_marks(written);
    const case_of_word is = case_of(letters);
    const case_of_word given = case_of(words_);
    std::string out = others_;
    if (is.all_upper && !given.all_upper)
        out = with_case(others_, g_utf8_strup);
    else if (is.first_upper && given.first_lower)
        out = with_first(others_, g_utf8_strup);
    else if (is.first_lower && given.first_upper)
        out = with_first(others_, g_utf8_strdown);
    return letters == written ? out : written_like(written, out);
}

word_replacer::replaced word_replacer::in(std::string_view text) const
{
    replaced made;
    const std::vector<piece> hits = finder_.hits(text);
    // Letters of two encodings in one text could be read by nobody.
    if (!hits.empty() &&
        g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == 0)
        return made;
    std::size_t done = 0;
    for (const piece &hit : hits) {
        made.text += text.substr(done, hit.at - done);
        const std::string word = written_for(text.substr(hit.at, hit.length));
        made.places.push_back({made.text.size(), word.size()});
        made.text += word;
        done = hit.at + hit.length;
    }
    if (made.any())
        made.text += text.substr(done);
    return made;
}

} // namespace zel::assist
