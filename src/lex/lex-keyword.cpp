#include "lex/lex-keyword.h"

#include "support/text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

int compare_words(const zel_lex_t *lex, const char *a, const char *b)
{
    return (lex->flags & LEX_KEYWORD_NOCASE) != 0 ? zel::compare_nocase(a, b) : std::strcmp(a, b);
}

// Letters differ in case by one bit. The hash drops that bit from every byte, so that words which
// differ in case alone share a slot.
unsigned word_hash(const char *word, std::size_t length)
{
    const auto first = static_cast<unsigned char>(word[0] | 0x20);
    const auto last = static_cast<unsigned char>(word[length - 1] | 0x20);
    const auto middle = static_cast<unsigned char>(word[length / 2] | 0x20);
    return static_cast<unsigned>(length * 7 + first * 31U + last * 5U + middle) %
           ZEL_LEX_KEYWORD_SLOTS;
}

int bisect_keyword(const zel_lex_t *lex, const char *word)
{
    // The word, if it is there, stands between the rows low and high, which are both excluded.
    unsigned low = 0;
    unsigned high = lex->keyword_count;
    unsigned mid = high / 2;
    for (;;) {
        const Keytab *row = lex->keywords[mid];
        // Row 0, which is the scanner's, and a row without a word sort behind every word.
        const int order =
            mid == 0 || row->word == nullptr ? 1 : compare_words(lex, row->word, word);
        if (order == 0)
            return row->id;
        (order < 0 ? low : high) = mid;
        mid = low + (high - low) / 2;
        if (mid == low)
            return TOKEN_IDENT;
    }
}

} // namespace

namespace zel {

int find_keyword(const zel_lex_t *lex, const char *word, std::size_t length)
{
    if (lex->keyword_count < 2 || length == 0)
        return TOKEN_IDENT;
    if (lex->hashed == 0)
        return bisect_keyword(lex, word);
    for (unsigned slot = word_hash(word, length); lex->keyword_hash[slot] != 0;
         slot = (slot + 1) % ZEL_LEX_KEYWORD_SLOTS) {
        const Keytab *row = lex->keywords[lex->keyword_hash[slot]];
        if (compare_words(lex, row->word, word) == 0)
            return row->id;
    }
    return TOKEN_IDENT;
}

} // namespace zel

namespace {

// Most words of a source are keywords, and a bisection for each makes scanning it 17 percent
// slower. The hash answers like the bisection as long as no word stands twice; a table that is too
// full or has a row without a word is bisected.
void build_keyword_hash(zel_lex_t *lex)
{
    lex->hashed = 0;
    std::fill(std::begin(lex->keyword_hash), std::end(lex->keyword_hash), std::uint16_t{0});
    const unsigned count = lex->keyword_count;
    if (count < 2 || count > ZEL_LEX_KEYWORD_SLOTS / 2)
        return;
    for (unsigned i = 1; i < count; ++i) {
        const char *word = lex->keywords[i]->word;
        // Of equal words the bisection may find any; the hash would always find the first.
        if (word == nullptr || *word == '\0' ||
            (i > 1 && compare_words(lex, lex->keywords[i - 1]->word, word) == 0))
            return;
        unsigned slot = word_hash(word, std::strlen(word));
        while (lex->keyword_hash[slot] != 0)
            slot = (slot + 1) % ZEL_LEX_KEYWORD_SLOTS;
        lex->keyword_hash[slot] = static_cast<std::uint16_t>(i);
    }
    lex->hashed = 1;
}

std::uint16_t count_keywords(const Keytab *table)
{
    std::uint16_t count = 0;
    // Row 0 counts without a look: its id is 0, like that of the row at the end.
    if (table != nullptr)
        do
            ++count;
        while (table[count].id != 0);
    return count;
}

// Sorts by insertion: rows of equal words keep their order.
void sort_keywords(zel_lex_t *lex)
{
    for (unsigned i = 2; i < lex->keyword_count; ++i) {
        const Keytab *row = lex->keywords[i];
        // The rest stays as it is: build_keyword_hash leaves such a table to the bisection.
        if (row->word == nullptr)
            return;
        unsigned at = i;
        for (; at > 1 && lex->keywords[at - 1]->word != nullptr &&
               compare_words(lex, lex->keywords[at - 1]->word, row->word) > 0;
             --at)
            lex->keywords[at] = lex->keywords[at - 1];
        lex->keywords[at] = row;
    }
}

} // namespace

namespace zel {

bool build_keywords(zel_lex_t *lex, const Keytab *table)
{
    const std::uint16_t count = count_keywords(table);
    // One slot more, for the row that ends the table.
    auto **index = static_cast<const Keytab **>(std::calloc(count + 1U, sizeof(Keytab *)));
    if (index == nullptr)
        return false;
    lex->keywords = index;
    lex->keyword_count = count;
    for (unsigned i = 1; i <= count; ++i)
        // The index points into the table, which must therefore outlive the scanner.
        index[i] = &table[i];
    sort_keywords(lex);
    build_keyword_hash(lex);
    return true;
}

} // namespace zel
