#pragma once

// What the rules say about a source: names of rules, their levels, and one finding.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

#include "source/model.h"

namespace zel::lint {

enum class level : std::uint8_t { error, warning, info };

// In the order of the table in lint/rules.cpp.
enum class rule_id : std::uint8_t {
    syntax,
    encoding,
    format,
    symbol,
    duplicate,
    undefined,
    adjacent,
    unknown,
    unread,
    max,
    missing,
    empty,
    markup,
    mnemonic,
    blank,
    item_end,
    ending,
    bidi,
    bracket,
    link,
    plural,
    same,
    length,
    repeated,
    consistency,
    collision,
    unused,
    not_ready,
    unasked,
    stale,
    term
};

// A set of rules, a bit each.
class rule_set {
public:
    constexpr rule_set() = default;
    static constexpr rule_set all() { return rule_set(~0U); }
    constexpr bool has(rule_id id) const { return (bits_ & bit(id)) != 0; }
    constexpr bool none() const { return bits_ == 0; }
    constexpr rule_set with(rule_id id) const { return rule_set(bits_ | bit(id)); }
    constexpr rule_set without(rule_id id) const { return rule_set(bits_ & ~bit(id)); }
    constexpr rule_set without(rule_set others) const { return rule_set(bits_ & ~others.bits_); }

private:
    constexpr explicit rule_set(std::uint32_t bits) : bits_(bits) {}
    static constexpr std::uint32_t bit(rule_id id) { return 1U << static_cast<unsigned>(id); }
    std::uint32_t bits_ = 0;
};

// One finding. Everything it points to belongs to the source or to whoever says it, for the length
// of the call.
struct finding {
    rule_id rule;
    const edit_t *group;  // or null
    const item_t *item;   // or null
    const char *language; // its name, or null
    const void *record;   // what it is about, as source_places knows it: a text or comment, the
                          // item for what is missing, a group, a language's definition
    std::string_view message;
};

using listener = std::function<void(const finding &)>;

// How wide a text is on the screen, in pixels.
using text_width = std::function<std::size_t(std::string_view)>;

} // namespace zel::lint
