#include "kit/support/predecessors.h"

#include "kit/support/likeness.h"
#include "kit/support/neighbourhood.h"
#include "merge/fields.h"
#include "source/entry.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <tuple>

namespace zel::kit {

namespace {

// Nobody can tell two apart whose likeness is that near.
constexpr unsigned too_near = 5;

// A neighbour that both have is evidence like some points of likeness, and three are enough.
constexpr unsigned points_of_neighbour = 2;
constexpr unsigned most_neighbours = 3;

// Of two texts that are so much alike, one is as good as the other.
constexpr unsigned as_good = 80;

struct old_item {
    const edit_t *group;
    const item_t *item;
    compared_text text;
};

struct candidate {
    std::uint32_t at; // of the old items
    unsigned likeness;
    unsigned points; // likeness and what its neighbours tell
    bool nearly;
    bool same_group;
    bool same_file;

    // The same text wherever it is, then near ones, then those of the neighbourhood.
    auto rank() const { return std::tuple(nearly, same_group && same_file, same_group); }
    bool is_better(const candidate &other) const
    {
        return std::tuple(rank(), points) > std::tuple(other.rank(), other.points);
    }
    bool is_rival(const candidate &other) const
    {
        return rank() == other.rank() && points - other.points <= too_near;
    }
};

struct new_item {
    const edit_t *group;
    item_t *item;
    std::vector<candidate> candidates; // the best first
};

bool has_translation(const LangSource *source, const item_t *item)
{
    const std::string_view reference = view_of(source->default_lang);
    std::string buffer;
    for (const lang_entry_t *entry : each<lang_entry_t>(item->langs))
        if (view_of(entry->lang) != reference &&
            !without_end(look_at_text(entry->texts, buffer)).empty())
            return true;
    return false;
}

// "00140:src/note.c" without the line.
std::string_view file_of(const item_t *item)
{
    if (item->used_in == nullptr)
        return {};
    const std::string_view place = view_of(static_cast<const char *>(item->used_in->data));
    return place.substr(std::min(place.find(':'), place.size()));
}

// The next entry whose text is not just the item's name.
GList *next_text(GList *node, const item_t *item)
{
    std::string buffer;
    while (node != nullptr && look_at_text(static_cast<lang_entry_t *>(node->data)->texts,
                                           buffer) == view_of(item->name))
        node = node->next;
    return node;
}

bool are_alike(GList *texts, GList *others)
{
    if (same_written_text(texts, others))
        return true;
    std::string buffer;
    std::string other_buffer;
    const compared_text one(look_at_text(texts, buffer));
    const compared_text other(look_at_text(others, other_buffer));
    return one.likeness(other, as_good) >= as_good;
}

// Whether it does not matter which of two a text is taken from.
bool have_same_texts(const item_t *a, const item_t *b)
{
    GList *left = next_text(a->langs, a);
    GList *right = next_text(b->langs, b);
    while (left != nullptr && right != nullptr) {
        const auto *one = static_cast<const lang_entry_t *>(left->data);
        const auto *other = static_cast<const lang_entry_t *>(right->data);
        if (view_of(one->lang) != view_of(other->lang) || !are_alike(one->texts, other->texts))
            return false;
        left = next_text(left->next, a);
        right = next_text(right->next, b);
    }
    return left == right;
}

class search {
public:
    search(const std::vector<grouped_item> &among, const neighbourhood &around, unsigned at_least)
        : around_(around), at_least_(at_least)
    {
        for (const grouped_item &one : among) {
            old_.push_back({one.group, one.item, compared_text(view_of(one.item->name))});
            index_.add(static_cast<std::uint32_t>(old_.size() - 1), old_.back().text);
        }
    }

    std::vector<succession> find(const std::vector<grouped_item> &items)
    {
        for (const grouped_item &one : items)
            look_for(one.group, one.item);
        find_heirs();
        std::vector<succession> out;
        for (const new_item &one : new_)
            out.push_back(decide(one));
        return out;
    }

private:
    // Groups of two sources are the same by their names.
    bool are_one(const edit_t *a, const edit_t *b) const
    {
        return a == b || view_of(a->name) == view_of(b->name);
    }

    void look_for(const edit_t *group, item_t *item)
    {
        const compared_text text(view_of(item->name));
        const std::string_view file = file_of(item);
        new_item found{group, item, {}};
        for (const std::uint32_t at : index_.likeliest(text)) {
            const old_item &old = old_[at];
            const unsigned evidence =
                points_of_neighbour * std::min(around_.shared(item, old.item), most_neighbours);
            const unsigned least = at_least_ - std::min(at_least_ - 1, evidence);
            const unsigned likeness = text.likeness(old.text, least);
            if (likeness >= least)
                found.candidates.push_back({at, likeness, likeness + evidence,
                                            text.is_nearly(old.text), are_one(old.group, group),
                                            !file.empty() && file == file_of(old.item)});
        }
        if (found.candidates.empty())
            return;
        std::sort(found.candidates.begin(), found.candidates.end(),
                  [](const candidate &a, const candidate &b) {
                      return a.is_better(b) || (!b.is_better(a) && a.at < b.at);
                  });
        new_.push_back(std::move(found));
    }

    // The best match of each old item among those items that it is the best for, too.
    void find_heirs()
    {
        heirs_.resize(old_.size());
        for (const new_item &one : new_) {
            const candidate &best = one.candidates.front();
            std::optional<candidate> &heir = heirs_[best.at];
            if (!heir || best.is_better(*heir))
                heir = best;
        }
    }

    succession decide(const new_item &one) const
    {
        succession out{one.group, one.item, {}};
        const candidate &best = one.candidates.front();
        for (const candidate &other : one.candidates) {
            // Another item that is more like it makes it no rival; the same texts make none either.
            const bool is_best = other.at == best.at;
            const std::optional<candidate> &heir = heirs_[other.at];
            const old_item &old = old_[other.at];
            if (!is_best && (!best.is_rival(other) || (heir && heir->is_better(other)) ||
                             old.text.is_nearly(old_[best.at].text) ||
                             have_same_texts(old_[best.at].item, old.item)))
                continue;
            out.candidates.push_back(
                {old.group, old.item, other.likeness, other.nearly, other.likeness < at_least_});
        }
        return out;
    }

    const neighbourhood &around_;
    unsigned at_least_;
    std::deque<old_item> old_;
    likeness_index index_;
    std::vector<new_item> new_;
    std::vector<std::optional<candidate>> heirs_; // of the old items
};

} // namespace

std::vector<succession> find_predecessors(const std::vector<grouped_item> &items,
                                          const std::vector<grouped_item> &among, unsigned at_least)
{
    return search(among, neighbourhood(), at_least).find(items);
}

std::vector<succession> find_predecessors(const LangSource *source, unsigned at_least)
{
    std::vector<grouped_item> items;
    std::vector<grouped_item> among;
    for (const edit_t *group : each<edit_t>(source->groups))
        for (item_t *item : each<item_t>(group->items))
            if ((item->used != 0) != has_translation(source, item))
                (item->used != 0 ? items : among).push_back({group, item});
    return search(among, neighbourhood(source, has_translation), at_least).find(items);
}

} // namespace zel::kit
