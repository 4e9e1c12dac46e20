#pragma once

// What a percent sign begins in a text: a conversion of printf, a symbol, %NAME%, or nothing. All
// rules have it from here.

#include <string>
#include <string_view>
#include <vector>

namespace zel::lint {

// What a conversion takes from the arguments.
enum class argument : unsigned char {
    none, // not used by any conversion
    whole,
    whole_unsigned,
    real,
    character,
    string,
    pointer,
    written // %n: the place where a number is stored
};

// Length modifiers that differ; what printf does not tell apart is one here.
enum class width : unsigned char { plain, hh, h, l, ll, j, z, t, L };

struct taken {
    argument kind = argument::none;
    width size = width::plain;
    bool operator==(const taken &) const = default;
};

struct percents {
    std::vector<std::string_view> conversions; // as they are written, without %%
    std::vector<taken> arguments;              // by their position
    std::vector<int> reaches; // of the same: how many bytes of a string are read, or one of these
    static constexpr int to_the_end = -1, by_argument = -2;
    std::vector<std::string_view> symbols; // their names
    bool mixed = false;                    // some conversions have positions, some not
    bool writes = false;                   // there is a %n
    bool stray = false;                    // a percent sign begins nothing
    bool spaced = false; // all conversions have a blank behind the sign, as in "50% off"

    // A text for printf: it has conversions and nothing that printf does not know.
    bool is_format() const { return !conversions.empty() && !stray && !spaced; }
};

// Reads a text. Where a name between percent signs might as well be a conversion ("%dx%d"), it is a
// symbol when the known ones (which may be null) have it.
percents read_percents(std::string_view text, const percents *known = nullptr);

// Whether a word stands between two percent signs, which alone may be a symbol.
bool may_have_symbol(std::string_view text);

// The conversions that an item's description names for the arguments, "formater=%25s,%25d"; none
// without such a description.
percents described(const char *description);

// Whether printf would read more of a string for the text than for the item: "%s" in the place of
// "%.4s". Both have the same arguments.
bool reads_more(const percents &own, const percents &expected);

// The conversions, with a blank between them; "nothing" when there are none.
std::string shown(const percents &found);

} // namespace zel::lint
