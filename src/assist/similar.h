#pragma once

// Which items have the same reference text, or one much like it: the same ones by a hash, similar
// ones by the runs of three bytes (trigrams) that they share. Built item by item.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zel::assist {

class similar_texts {
public:
    using text_of = std::function<std::string(std::uint32_t item)>;

    struct match {
        std::uint32_t item;
        double likeness; // 1: the same text
    };

    // The texts of items are asked for when they are compared; so they may change, and are found by
    // their new text once they have been added again.
    explicit similar_texts(text_of text) : text_(std::move(text)) {}

    // So many items, of which none is known.
    void reset(std::size_t items);
    std::size_t count() const { return hashes_.size(); }

    // Adds an item, which may be one more, or, when its text has changed, adds it again.
    void add(std::uint32_t item);

    // The item that is most like this one among those for which wanted says true, the first of
    // several; none when there is none of at least three fifths of its trigrams.
    std::optional<match> best(std::uint32_t item,
                              const std::function<bool(std::uint32_t)> &wanted) const;

    // The same for a text that is no item's.
    std::optional<match> best(const std::string &text,
                              const std::function<bool(std::uint32_t)> &wanted) const;

private:
    std::optional<match> same(const std::string &text,
                              const std::function<bool(std::uint32_t)> &wanted) const;

    // Some ten thousand texts share a few thousand trigrams: an item's number takes two bytes in
    // their lists, which are kept apart for each 65,536 items.
    using short_number = std::uint16_t;
    static constexpr std::uint32_t numbers = 0x10000;

    text_of text_;
    std::vector<std::uint32_t> hashes_; // of each item's text; 0 while it is unknown
    std::unordered_map<std::uint64_t, std::vector<short_number>> by_trigram_;
};

} // namespace zel::assist
