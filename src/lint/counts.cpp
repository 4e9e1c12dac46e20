#include "lint/counts.h"

#include "lint/item-case.h"
#include "source/entry.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

namespace zel::lint {

namespace {

// What a byte of UTF-8 does to the counts.
enum byte_kind : unsigned char { begins_word, middle, space, wide, perhaps_wide };

constexpr std::array<byte_kind, 256> make_byte_kinds()
{
    std::array<byte_kind, 256> byte_kinds{};
    for (unsigned c = 0; c < byte_kinds.size(); ++c)
        byte_kinds[c] = c <= ' ' ? space : (c & 0xC0) == 0x80 ? middle : begins_word;
    for (unsigned c = 0xE4; c <= 0xE9; ++c) // U+4000 to U+9FFF
        byte_kinds[c] = wide;
    byte_kinds[0xE3] = perhaps_wide; // U+3000 to U+3FFF, of which the first 64 are punctuation
    return byte_kinds;
}
constexpr auto byte_kinds = make_byte_kinds();
static_assert(std::endian::native == std::endian::little, "the byte before is the one below");

// Byte by byte.
// Where a script sets no blanks every character counts as a word.
amount measure_wide(std::string_view text)
{
    amount found;
    bool in_word = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const byte_kind kind = byte_kinds[static_cast<unsigned char>(text[i])];
        if (kind == middle)
            continue;
        ++found.characters;
        if (kind == begins_word) {
            found.words += in_word ? 0U : 1U;
            in_word = true;
            continue;
        }
        in_word = false;
        const bool punctuation =
            kind == perhaps_wide && i + 1 < text.size() && text[i + 1] == '\x80';
        found.words += kind != space && !punctuation ? 1U : 0U;
    }
    return found;
}

// Counts what an item has in its languages, in one walk over its entries.
class counter {
public:
    explicit counter(const LangSource *source);
    void add(const item_t *item);
    source_counts counts;

private:
    void take_reference(const item_t *item);
    void count(std::size_t i, std::string_view own, const item_t *item);

    language_list languages_;
    std::vector<std::size_t> seen_in_; // of each language the last item that had it, from 1
    const char *default_lang_;
    std::string reference_buffer_;
    std::string buffer_;
    std::string_view reference_;
    amount reference_amount_;
};

bool is_blank_text(std::string_view bytes)
{
    for (const char c : bytes)
        if (!is_blank(c))
            return false;
    return true;
}

counter::counter(const LangSource *source) : default_lang_(source->default_lang)
{
    for (const lang_t *lang : each<lang_t>(source->langs)) {
        const bool is_default = same_language(lang->name, default_lang_);
        languages_.push_back({lang, lang->name == nullptr ? "" : lang->name, is_default, true});
        language_counts &added = counts.languages.emplace_back();
        added.language = lang;
        added.is_reference = is_default;
    }
    seen_in_.resize(languages_.size());
}

// The default language's text, else the item's name.
void counter::take_reference(const item_t *item)
{
    reference_ = name_of(item->name);
    for (const lang_entry_t *entry : each<lang_entry_t>(item->langs))
        if (same_language(entry->lang, default_lang_)) {
            const std::string_view text = look_at_text(entry->texts, reference_buffer_);
            if (!is_blank_text(text))
                reference_ = text;
            break;
        }
    reference_amount_ = measure(reference_);
}

void counter::count(std::size_t i, std::string_view own, const item_t *item)
{
    language_counts &language = counts.languages[i];
    // Where there is nothing to say, nothing is missing.
    if (is_blank_text(own) && !is_blank_text(reference_)) {
        ++language.empty;
        language.left.add(reference_amount_);
        return;
    }
    // A text that equals the reference is measured already; many are, in a new language.
    ++language.translated;
    const bool same = own == reference_;
    language.same += same && !language.is_reference ? 1U : 0U;
    language.ready += item->ready != 0 ? 1U : 0U;
    language.done.add(same ? reference_amount_ : measure(own));
}

void counter::add(const item_t *item)
{
    ++counts.items;
    if (item->used == 0)
        return;
    ++counts.used;
    take_reference(item);
    std::size_t guess = 0;
    for (const lang_entry_t *entry : each<lang_entry_t>(item->langs)) {
        const std::size_t i = languages_.find(entry->lang, guess);
        guess = i + 1;
        if (i == languages_.size() || seen_in_[i] == counts.used)
            continue;
        seen_in_[i] = counts.used;
        count(i, look_at_text(entry->texts, buffer_), item);
    }
    for (std::size_t i = 0; i < languages_.size(); ++i)
        // Numbers of items instead of a flag: nothing has to be cleared between two items.
        if (seen_in_[i] != counts.used) {
            ++counts.languages[i].missing;
            counts.languages[i].left.add(reference_amount_);
        }
}

} // namespace

amount measure(std::string_view text)
{
    // Eight bytes at a time, as long as no character may be wide: the last ones are filled up with
    // blanks, which begin no word.
    constexpr std::uint64_t ones = 0x0101010101010101U;
    constexpr std::uint64_t tops = ones << 7;
    const auto count = [](std::uint64_t marks) { // how many of the top bits are set
        return static_cast<std::size_t>((marks >> 7) * ones >> 56);
    };
    amount found;
    std::uint64_t blank_before = 0x80; // in the lowest byte: the byte before the eight is a blank
    for (std::size_t at = 0; at < text.size(); at += 8) {
        const std::size_t there = std::min<std::size_t>(8, text.size() - at);
        std::uint64_t x = ones * ' ';
        if (there == sizeof x)
            std::memcpy(&x, text.data() + at, sizeof x);
        else
            std::memcpy(&x, text.data() + at, there);
        // A lead byte from 0xE3 on may begin a wide character: then the slow way decides.
        const std::uint64_t from_e0 = x & x << 1 & x << 2 & tops;
        if ((from_e0 & (x << 3 | x << 4 | x << 5 | (x << 6 & x << 7))) != 0)
            return measure_wide(text);
        // Bytes 10xxxxxx continue a character, so they are none of their own.
        const std::uint64_t middles = x & ~(x << 1) & tops;
        // Every byte above a blank, also those with the top bit, belongs to a word.
        const std::uint64_t words = (((x & ~tops) + ones * (0x7F - ' ')) | x) & tops;
        const std::uint64_t blanks = ~words & tops;
        found.characters += there - count(middles);
        // A word begins where the byte before it is a blank.
        found.words += count(words & (blanks << 8 | blank_before));
        blank_before = blanks >> 56;
    }
    return found;
}

source_counts count_texts(const LangSource *source)
{
    counter all(source);
    for (const edit_t *group : each<edit_t>(source->groups))
        for (const item_t *item : each<item_t>(group->items))
            all.add(item);
    return std::move(all.counts);
}

} // namespace zel::lint
