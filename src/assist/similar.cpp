#include "assist/similar.h"

#include "assist/fold.h"
#include "support/hash-index.h"

#include <algorithm>

namespace zel::assist {

namespace {

constexpr double least_likeness = 0.6;
constexpr std::size_t longest = 400;       // bytes; a longer text is compared as a whole only
constexpr std::size_t most_compared = 500; // texts
constexpr std::size_t fewest = 12;         // items that a list has room for; malloc gives no less

// The different trigrams, in order. The text's ends count as blanks, so that short texts have some.
std::vector<std::uint32_t> trigrams(std::string_view text)
{
    std::vector<std::uint32_t> out;
    if (text.size() > longest)
        return out;
    std::uint32_t last = ' ' << 8 | ' ';
    const auto take = [&](char c) {
        last = (last << 8 | static_cast<unsigned char>(c)) & 0xffffffU;
        out.push_back(last);
    };
    for (const char c : fold(text))
        take(c);
    take(' ');
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    return out;
}

std::size_t common(const std::vector<std::uint32_t> &a, const std::vector<std::uint32_t> &b)
{
    std::size_t found = 0;
    for (auto i = a.begin(), j = b.begin(); i != a.end() && j != b.end();) {
        if (*i == *j)
            ++found;
        const bool step_a = *i <= *j;
        // Decided before either side moves: both step where the two are equal.
        j += *j <= *i ? 1 : 0;
        i += step_a ? 1 : 0;
    }
    return found;
}

double likeness(const std::vector<std::uint32_t> &a, const std::vector<std::uint32_t> &b)
{
    const std::size_t all = a.size() + b.size();
    return all == 0 ? 0 : 2.0 * static_cast<double>(common(a, b)) / static_cast<double>(all);
}

std::uint32_t known_hash_of(std::string_view text)
{
    // 0 stands for an item whose text is not known yet.
    return std::max<std::uint32_t>(hash_of(text), 1);
}

// The list of a trigram for the items from a number on, which is a multiple of similar_texts'
// numbers.
std::uint64_t list_of(std::uint32_t trigram, std::size_t first)
{
    return std::uint64_t{first} << 32 | trigram;
}

} // namespace

void similar_texts::reset(std::size_t items)
{
    hashes_.assign(items, 0);
    by_trigram_.clear();
}

void similar_texts::add(std::uint32_t item)
{
    const std::string text = text_(item);
    const std::uint32_t hash = known_hash_of(text);
    if (item >= hashes_.size())
        hashes_.resize(item + 1);
    if (hashes_[item] == hash)
        return;
    // An item whose text has changed stays in the lists of its old one: best() compares the texts
    // that the items have now.
    hashes_[item] = hash;
    for (const std::uint32_t trigram : trigrams(text)) {
        std::vector<short_number> &items = by_trigram_[list_of(trigram, item / numbers * numbers)];
        // By a quarter, where a vector would double: these lists are most of the index.
        if (items.size() == items.capacity())
            items.reserve(items.size() + items.size() / 4 + fewest);
        items.push_back(static_cast<short_number>(item % numbers));
    }
}

std::optional<similar_texts::match>
similar_texts::same(const std::string &text, const std::function<bool(std::uint32_t)> &wanted) const
{
    // The first one in the source. All hashes are gone through, which takes less time than the
    // trigrams do, and no memory.
    const std::uint32_t hash = known_hash_of(text);
    auto at = std::find(hashes_.begin(), hashes_.end(), hash);
    for (; at != hashes_.end(); at = std::find(at + 1, hashes_.end(), hash)) {
        const auto other = static_cast<std::uint32_t>(at - hashes_.begin());
        if (wanted(other) && text_(other) == text)
            return match{other, 1};
    }
    return std::nullopt;
}

std::optional<similar_texts::match>
similar_texts::best(std::uint32_t item, const std::function<bool(std::uint32_t)> &wanted) const
{
    return best(text_(item), [&](std::uint32_t other) { return other != item && wanted(other); });
}

std::optional<similar_texts::match>
similar_texts::best(const std::string &text, const std::function<bool(std::uint32_t)> &wanted) const
{
    std::optional<match> found = same(text, wanted);
    // The same text is as good as it gets, and a text that is too long has no trigrams.
    const std::vector<std::uint32_t> own = trigrams(text);
    if (found || own.empty())
        return found;

    std::vector<std::uint16_t> shared(hashes_.size());
    for (std::size_t first = 0; first < shared.size(); first += numbers)
        for (const std::uint32_t trigram : own) {
            const auto items = by_trigram_.find(list_of(trigram, first));
            if (items == by_trigram_.end())
                continue;
            for (const short_number other : items->second)
                ++shared[first + other];
        }
    // An item that shares n trigrams is at best made of just these: an upper bound that needs no
    // text. The likeliest come first, so that few texts are compared.
    const auto limit = [&](std::uint32_t other) {
        return 2.0 * shared[other] / static_cast<double>(own.size() + shared[other]);
    };
    std::vector<std::uint32_t> others;
    for (std::uint32_t other = 0; other < shared.size(); ++other)
        if (limit(other) >= least_likeness)
            others.push_back(other);
    // The first of equally good items in the source wins.
    const auto is_before = [&](std::uint32_t a, std::uint32_t b) {
        return shared[a] != shared[b] ? shared[a] > shared[b] : a < b;
    };
    // A common text has thousands of them: only those that are compared are put in order.
    if (others.size() > most_compared) {
        std::nth_element(others.begin(), others.begin() + most_compared, others.end(), is_before);
        others.resize(most_compared);
    }
    std::sort(others.begin(), others.end(), is_before);
    for (const std::uint32_t other : others) {
        if (found && limit(other) <= found->likeness)
            break;
        const double like = likeness(own, trigrams(text_(other)));
        // Asked last, since it may look at the other item's translations.
        if (like >= least_likeness && (!found || like > found->likeness) && wanted(other))
            found = {other, like};
    }
    return found;
}

} // namespace zel::assist
