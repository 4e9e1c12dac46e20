#pragma once

// How alike two short texts of a program are, for finding what a text was before it changed: by the
// characters and by the words that they share in their order, whatever their case; letters and
// digits count more than signs.

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zel::kit {

// A text as it is compared: made once, compared often.
class compared_text {
public:
    explicit compared_text(std::string_view text);

    // In percent; 100 is the same text. Where it cannot be so much, 0 will do.
    unsigned likeness(const compared_text &other, unsigned at_least) const;

    // Whether they differ in case, blanks, the sign at the end or a mnemonic alone.
    bool is_nearly(const compared_text &other) const { return core_ == other.core_; }

    // Hashes of the runs of characters by which an index finds it; of a long text a sample, the
    // same one in every text that has them.
    std::vector<std::uint32_t> features() const;

private:
    struct counted_word {
        std::uint32_t hash;
        std::uint32_t weight;
        bool operator<(const counted_word &other) const { return hash < other.hash; }
    };

    unsigned likeness_of_words(const compared_text &other) const;

    std::string text_;
    std::string folded_; // in small letters, without marks of mnemonics, one blank for several
    std::string core_;   // the same without blanks and signs at its ends
    std::vector<counted_word> words_; // in the order of their hashes
    unsigned words_weight_ = 0;       // of all of them
    unsigned weight_ = 0;             // of all characters of folded_
};

// Finds the texts that may be most like another one, in time that does not depend on their number.
class likeness_index {
public:
    void add(std::uint32_t text, const compared_text &compared);

    // The likeliest ones, the best first; each must still be compared.
    std::vector<std::uint32_t> likeliest(const compared_text &wanted);

private:
    void count(const std::vector<std::uint32_t> &texts);

    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> by_feature_;
    std::vector<std::uint32_t> shared_; // of each text with the one that is looked for: else 0
    std::vector<std::uint32_t> met_;    // texts that share something
};

} // namespace zel::kit
