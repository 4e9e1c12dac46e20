#include "kit/support/likeness.h"

#include "lint/text.h"
#include "support/hash-index.h"

#include <algorithm>

namespace zel::kit {

namespace {

// Letters carry the meaning; "Open" and "Open..." are nearly one.
constexpr unsigned letter_weight = 2;
constexpr unsigned sign_weight = 1;

bool is_part_of_word(char c) { return lint::is_word_byte(c) ? c != '_' : (c & 0x80) != 0; }

unsigned weight_of(char c) { return is_part_of_word(c) ? letter_weight : sign_weight; }

unsigned weight_of(std::string_view text)
{
    unsigned sum = 0;
    for (const char c : text)
        sum += weight_of(c);
    return sum;
}

void append_small(std::string &out, char32_t c)
{
    char bytes[6];
    out.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(g_unichar_tolower(c), bytes)));
}

// "_Save", "Save _as": the underscore shows no character of its own.
bool is_mnemonic(std::string_view text, std::size_t at)
{
    const bool begins_word = at == 0 || !is_part_of_word(text[at - 1]);
    return text[at] == '_' && begins_word && at + 1 < text.size() && is_part_of_word(text[at + 1]);
}

std::string fold(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        if (is_mnemonic(text, at)) {
            ++at;
        } else if (lint::is_blank(text[at])) {
            if (!out.empty() && out.back() != ' ')
                out += ' ';
            ++at;
        } else {
            append_small(out, lint::next_char(text, at));
        }
    }
    return out;
}

// Without blanks, and without the sign at the end in any of its scripts.
std::string core_of(std::string_view folded)
{
    constexpr std::string_view ends[] = {".", ":",  "!",  "?",  ";",  ",", " ",
                                         "…", "。", "：", "！", "？", "؟", "।"};
    for (bool cut = true; cut;) {
        cut = false;
        for (const std::string_view end : ends)
            if (folded.ends_with(end) && folded.size() > end.size()) {
                folded.remove_suffix(end.size());
                cut = true;
            }
    }
    std::string out(folded);
    std::erase(out, ' ');
    std::erase(out, '_');
    return out;
}

// Weight of the longest run of characters that both have in their order, with gaps.
unsigned common_weight(std::string_view a, std::string_view b)
{
    unsigned ends = 0;
    // What is equal at the ends is always part of it.
    while (!a.empty() && !b.empty() && a.front() == b.front()) {
        ends += weight_of(a.front());
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    while (!a.empty() && !b.empty() && a.back() == b.back()) {
        ends += weight_of(a.back());
        a.remove_suffix(1);
        b.remove_suffix(1);
    }
    std::vector<unsigned> row(b.size() + 1);
    for (const char c : a) {
        const unsigned weight = weight_of(c);
        unsigned diagonal = 0;
        for (std::size_t i = 0; i < b.size(); ++i) {
            const unsigned above = row[i + 1];
            row[i + 1] = b[i] == c ? diagonal + weight : std::max(above, row[i]);
            diagonal = above;
        }
    }
    return ends + row.back();
}

// What differs in signs alone is never told less than that.
constexpr unsigned nearly_the_same = 90;

unsigned percent_of(unsigned common, unsigned a, unsigned b)
{
    return a + b == 0 ? 0 : 200 * common / (a + b);
}

// Spreads the bits, so that the smallest ones are a fair sample.
std::uint32_t mixed(std::uint32_t value)
{
    value *= 0x9E3779B1U;
    value ^= value >> 15;
    return value * 0x85EBCA6BU;
}

} // namespace

compared_text::compared_text(std::string_view text)
    : text_(text), folded_(fold(text)), core_(core_of(folded_)), weight_(weight_of(folded_))
{
    const std::string_view folded = folded_;
    for (std::size_t at = 0; at < folded.size();) {
        const std::size_t start = at;
        while (at < folded.size() && is_part_of_word(folded[at]))
            ++at;
        if (at == start) {
            ++at;
            continue;
        }
        words_.push_back(
            {hash_of(folded.substr(start, at - start)), static_cast<std::uint32_t>(at - start)});
        words_weight_ += words_.back().weight;
    }
    std::sort(words_.begin(), words_.end());
}

unsigned compared_text::likeness_of_words(const compared_text &other) const
{
    unsigned common = 0;
    auto i = words_.begin();
    auto j = other.words_.begin();
    while (i != words_.end() && j != other.words_.end())
        if (i->hash == j->hash) {
            common += i->weight;
            ++i;
            ++j;
        } else if (i->hash < j->hash) {
            ++i;
        } else {
            ++j;
        }
    // Texts without a letter are their signs.
    const unsigned all = words_weight_ + other.words_weight_;
    return all == 0 ? 100 : percent_of(common, words_weight_, other.words_weight_);
}

unsigned compared_text::likeness(const compared_text &other, unsigned at_least) const
{
    if (text_ == other.text_)
        return 100;
    const unsigned by_words = likeness_of_words(other);
    if (!is_nearly(other) && (100 + 2 * by_words) / 3 < at_least)
        return 0;
    constexpr std::size_t most_steps = 250 * 250;
    const bool is_long = folded_.size() * other.folded_.size() > most_steps;
    const unsigned by_characters =
        is_long ? by_words
                : percent_of(common_weight(folded_, other.folded_), weight_, other.weight_);
    // Any two texts share half of their characters: mostly the words tell that one was the other.
    const unsigned both = (by_characters + 2 * std::min(by_characters, by_words)) / 3;
    constexpr unsigned last_but_one = 99;
    if (is_nearly(other))
        return std::min(last_but_one, std::max(both, nearly_the_same));
    // "Create room" and "Create poll" agree by chance more easily than sentences.
    constexpr std::size_t few_words = 2;
    constexpr unsigned chance = 5;
    const bool is_short = std::min(words_.size(), other.words_.size()) <= few_words;
    return both - (is_short ? std::min(both, chance) : 0);
}

std::vector<std::uint32_t> compared_text::features() const
{
    constexpr std::size_t most = 200;
    std::vector<std::uint32_t> out;
    std::uint32_t last = ' ';
    for (const char c : folded_) {
        last = (last << 8 | static_cast<unsigned char>(c)) & 0xFFFFFFU;
        out.push_back(mixed(last));
    }
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    out.resize(std::min(out.size(), most));
    return out;
}

void likeness_index::add(std::uint32_t text, const compared_text &compared)
{
    shared_.resize(std::max<std::size_t>(shared_.size(), text + std::size_t{1}));
    for (const std::uint32_t feature : compared.features())
        by_feature_[feature].push_back(text);
}

void likeness_index::count(const std::vector<std::uint32_t> &texts)
{
    for (const std::uint32_t text : texts)
        if (shared_[text]++ == 0)
            met_.push_back(text);
}

std::vector<std::uint32_t> likeness_index::likeliest(const compared_text &wanted)
{
    // Rare runs tell most, and are cheap; these bounds make the work the same for any source.
    constexpr std::size_t most_looked_at = 6000;
    constexpr std::size_t most_compared = 24;
    using list = const std::vector<std::uint32_t> *;
    std::vector<list> lists;
    for (const std::uint32_t feature : wanted.features())
        if (const auto found = by_feature_.find(feature); found != by_feature_.end())
            lists.push_back(&found->second);
    std::stable_sort(lists.begin(), lists.end(),
                     [](list a, list b) { return a->size() < b->size(); });
    met_.clear();
    std::size_t looked_at = 0;
    for (const list one : lists) {
        looked_at += one->size();
        if (looked_at > most_looked_at && !met_.empty())
            break;
        count(*one);
    }
    const auto end = met_.begin() + static_cast<long>(std::min(met_.size(), most_compared));
    std::partial_sort(met_.begin(), end, met_.end(), [&](std::uint32_t a, std::uint32_t b) {
        return shared_[a] != shared_[b] ? shared_[a] > shared_[b] : a < b;
    });
    for (const std::uint32_t text : met_)
        shared_[text] = 0;
    return {met_.begin(), end};
}

} // namespace zel::kit
