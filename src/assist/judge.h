#pragma once

// What an item still wants of a translator, in the two languages that are shown: asked for the item
// that is typed in at every key, and for all items to tell how far a source is. An item costs
// microseconds.

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "lint/finding.h"
#include "source/model.h"

namespace zel::assist {

constexpr std::size_t shown_languages = 2;

// What stands in a field and is not in the item yet.
struct typed_text {
    const char *lang;
    GList *item_t::*entries; // &item_t::langs, or &item_t::comments
    std::string text;
};

// Something that a rule has to say about a text. Only what is an error or a warning counts as a
// finding; the others are hints.
struct remark {
    std::string text; // in words, beginning in lower case unless it is a piece of the text
    bool counts;
    bool is_of_room; // the text is longer than its comment allows, which the room tells, too
};

struct item_state {
    std::array<bool, shown_languages> lacks{};            // no text, or a blank one
    std::array<std::uint8_t, shown_languages> findings{}; // that count; never more than 255
    std::array<bool, shown_languages> asks{};             // its comment is a question, still open
    bool is_complete() const { return !lacks[0] && !lacks[1]; }
    bool has_findings() const { return findings[0] != 0 || findings[1] != 0; }
    bool has_question() const { return asks[0] || asks[1]; }
    bool operator==(const item_state &) const = default;
};

// The room that a comment gives the text of a language.
struct room {
    std::size_t most = 0; // 0: as much as it likes
    std::size_t used = 0;
    bool in_pixels = false;
};
using rooms = std::array<room, shown_languages>;

using remarks = std::array<std::vector<remark>, shown_languages>;

// The languages' names may be null for one that is not shown; they and the source must outlive the
// judge, which takes the languages that are defined when it is made. Without a width no text is
// held to a limit in pixels.
class judge {
public:
    judge(const LangSource *source, const char *lang1, const char *lang2,
          lint::text_width width = nullptr);
    ~judge();
    judge(const judge &) = delete;
    judge &operator=(const judge &) = delete;

    // With the typed texts in place of the item's own. What is said goes into told, unless that is
    // null; what concerns the whole item is told with the first language.
    item_state look_at(const edit_t *group, const item_t *item,
                       std::span<const typed_text> typed = {}, remarks *told = nullptr);

    rooms rooms_of(const item_t *item, std::span<const typed_text> typed) const;

private:
    class work;
    std::unique_ptr<work> work_;
};

} // namespace zel::assist
