#include "assist/fold.h"

#include "lint/text.h"
#include "source/misc.h"
#include "support/text.h"

#include <algorithm>

namespace zel::assist {

namespace {

constexpr char32_t sharp_s = 0xdf;
constexpr char32_t capital_sharp_s = 0x1e9e;

bool is_ascii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

bool is_in(const std::vector<std::string> &words, bool ascii, std::string_view text)
{
    // The letters of ASCII are nobody else's small or capital ones, so that most texts need no
    // copy.
    if (!ascii && is_ascii(text))
        return false;
    const std::string folded = fold(text);
    return std::all_of(words.begin(), words.end(), [&](const std::string &word) {
        return folded.find(word) != std::string::npos;
    });
}

} // namespace

// Folds by way of the capital letter, so that letters with two small forms (sigma) are one.
void append_folded(std::string &out, char32_t c)
{
    if (c < 0x80) {
        out += static_cast<char>(zel::lower(static_cast<int>(c)));
        return;
    }
    if (c == sharp_s || c == capital_sharp_s) {
        out += "ss";
        return;
    }
    char bytes[6];
    const int length = g_unichar_to_utf8(g_unichar_tolower(g_unichar_toupper(c)), bytes);
    out.append(bytes, static_cast<std::size_t>(length));
}

std::string fold(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
        append_folded(out, lint::next_char(text, at));
    return out;
}

folded_words::folded_words(std::string_view text)
{
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of(" \t", at), text.size());
        if (end > at)
            words_.push_back(fold(text.substr(at, end - at)));
        at = end + 1;
    }
    ascii_ = std::all_of(words_.begin(), words_.end(), is_ascii);
}

// Whether each word stands in one of the strings, which are the lines of a text; different words
// may stand in different lines.
bool folded_words::are_in_strings(GList *strings) const
{
    // Most texts are one string, which is searched without a copy where that is possible.
    if (strings != nullptr && strings->next == nullptr)
        return is_in(words_, ascii_, zel::or_empty(static_cast<const char *>(strings->data)));
    std::vector<std::string> lines;
    for (const char *line : each<char>(strings))
        lines.push_back(fold(zel::or_empty(line)));
    return std::all_of(words_.begin(), words_.end(), [&](const std::string &word) {
        return std::any_of(lines.begin(), lines.end(), [&](const std::string &line) {
            return line.find(word) != std::string::npos;
        });
    });
}

bool folded_words::are_in(const item_t *item, const char *lang1, const char *lang2) const
{
    // An item must hold all words in one place: a word from its name and one from its text do not
    // make a hit.
    if (is_in(words_, ascii_, zel::or_empty(item->name)))
        return true;
    for (const char *lang : {lang1, lang2}) {
        const lang_entry_t *entry = misc_select_lang_entry(const_cast<item_t *>(item), lang);
        if (entry != nullptr && are_in_strings(entry->texts))
            return true;
    }
    return false;
}

std::vector<piece> folded_words::hits(std::string_view text) const
{
    if (words_.empty())
        return {};
    // Folding changes lengths: for each folded byte, remember the character that it comes from.
    std::string folded;
    std::vector<piece> origin;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        append_folded(folded, lint::next_char(text, at));
        origin.resize(folded.size(), {start, at - start});
    }
    std::vector<piece> found;
    for (const std::string &word : words_)
        for (std::size_t at = folded.find(word); at != std::string::npos;
             at = folded.find(word, at + word.size())) {
            const piece last = origin[at + word.size() - 1];
            found.push_back({origin[at].at, last.at + last.length - origin[at].at});
        }
    std::sort(found.begin(), found.end(),
              [](const piece &a, const piece &b) { return a.at < b.at; });
    // Words may overlap one another ("ab" and "bc" in "abc"), and the view's tags must not.
    std::vector<piece> out;
    for (const piece &one : found) {
        if (out.empty() || one.at >= out.back().at + out.back().length)
            out.push_back(one);
        else
            out.back().length = std::max(out.back().length, one.at + one.length - out.back().at);
    }
    return out;
}

} // namespace zel::assist
