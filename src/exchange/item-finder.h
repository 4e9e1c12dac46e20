#pragma once

// Finds the item of a message from somebody else's catalog: one without a key, or with a context
// that is none. The context is the item's group; without one the group is named after a code file,
// as for a new source, or the name is the only one of its kind.

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "source/model.h"

namespace zel::exchange {

class item_finder {
public:
    // What stays the caller's: it is looked through when the first item is asked for.
    explicit item_finder(LangSource *source) : source_(source) {}

    struct found {
        item_t *item;
        std::string_view group;
    };

    // The items that a message may mean: none, one, or several that cannot be told apart; none,
    // too, where more than a hundred bear the text. Its text is the id, or both of a plural with
    // the sign between forms. A file's messages are asked for one after the other, and an item that
    // one of them alone has meant is not offered again. The group that is meant may be the only
    // one that counts.
    std::vector<found> find(const std::optional<std::string> &context, const std::string &text,
                            std::string_view group, bool only_there = false);

    // Before another file.
    void forget() { taken_.clear(); }

private:
    void fill();
    void add(const edit_t *group, item_t *item, std::string_view text);
    const found *in_group(const std::string &text, const std::vector<found> &all,
                          std::string_view group) const;

    LangSource *source_;
    bool filled_ = false;
    std::unordered_map<std::string, std::vector<found>> by_text_; // by name and by reference text
    std::unordered_map<std::string, found> by_group_;             // by text and group
    std::unordered_set<const item_t *> taken_;
};

// The group of a message without a context: the name of the code file that uses it first, or
// "messages".
std::string group_of_place(const std::vector<std::string> &references);

// "src/window.c:31" in its two parts; the line is empty where there is none.
struct reference_parts {
    std::string_view file;
    std::string_view line;
};
reference_parts split_reference(std::string_view reference);

} // namespace zel::exchange
