#include "merge/word-difference.h"

#include "support/text.h"

#include <algorithm>
#include <cstdint>

namespace zel {

namespace {

using words = std::vector<std::string_view>;

words split(std::string_view text)
{
    words out;
    for (std::size_t at = 0; at < text.size();) {
        while (at < text.size() && is_space(text[at]))
            ++at;
        const std::size_t start = at;
        while (at < text.size() && !is_space(text[at]))
            ++at;
        if (at > start)
            out.push_back(text.substr(start, at - start));
    }
    return out;
}

std::string_view without_start(std::string_view word)
{
    while (!word.empty() && is_space(word.front()))
        word.remove_prefix(1);
    return word;
}

bool is_same(std::string_view a, std::string_view b)
{
    return without_start(a) == without_start(b);
}

// Words and single signs, each with the blanks before it.
words split_all(std::string_view text)
{
    // Letters beyond ASCII belong to words.
    const auto is_in_word = [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return is_letter(byte) || is_digit(byte) || byte >= 0x80;
    };
    words out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        while (at < text.size() && is_space(text[at]))
            ++at;
        const std::size_t word = at;
        while (at < text.size() && is_in_word(text[at]))
            ++at;
        if (at == word && at < text.size())
            ++at;
        out.push_back(text.substr(start, at - start));
    }
    return out;
}

class run_list {
public:
    explicit run_list(const char *between) : between_(between) {}
    void add(word_change how, std::string_view word)
    {
        if (runs_.empty() || runs_.back().how != how)
            runs_.push_back({how, std::string(word)});
        else
            runs_.back().text.append(between_).append(word);
    }
    std::vector<word_run> take() { return std::move(runs_); }

private:
    const char *between_;
    std::vector<word_run> runs_;
};

// How many words the rests of both texts share, from each pair of positions on.
class shared_rests {
public:
    shared_rests(const words &a, const words &b)
        : columns_(b.size() + 1), counts_((a.size() + 1) * columns_)
    {
        for (std::size_t i = a.size(); i-- > 0;)
            for (std::size_t j = b.size(); j-- > 0;)
                counts_[i * columns_ + j] = is_same(a[i], b[j])
                                                ? at(i + 1, j + 1) + 1
                                                : std::max(at(i + 1, j), at(i, j + 1));
    }
    std::uint32_t at(std::size_t i, std::size_t j) const { return counts_[i * columns_ + j]; }

private:
    std::size_t columns_;
    std::vector<std::uint32_t> counts_;
};

std::vector<word_run> runs_of(const words &a, const words &b, const char *between)
{
    constexpr std::size_t most_pairs = 1000 * 1000;
    run_list out(between);
    std::size_t i = 0;
    std::size_t j = 0;
    if (a.size() * b.size() <= most_pairs) {
        const shared_rests rests(a, b);
        while (i < a.size() && j < b.size())
            if (is_same(a[i], b[j])) {
                out.add(word_change::none, b[j]);
                ++i;
                ++j;
            } else if (rests.at(i + 1, j) >= rests.at(i, j + 1)) {
                out.add(word_change::gone, a[i++]);
            } else {
                out.add(word_change::added, b[j++]);
            }
    }
    for (; i < a.size(); ++i)
        out.add(word_change::gone, a[i]);
    for (; j < b.size(); ++j)
        out.add(word_change::added, b[j]);
    return out.take();
}

} // namespace

std::vector<word_run> compare_words(std::string_view before, std::string_view after)
{
    return runs_of(split(before), split(after), " ");
}

std::vector<word_run> compare_pieces(std::string_view before, std::string_view after)
{
    return runs_of(split_all(before), split_all(after), "");
}

} // namespace zel
