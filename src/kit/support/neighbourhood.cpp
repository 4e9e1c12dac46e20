#include "kit/support/neighbourhood.h"

#include "source/entry.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <string_view>
#include <tuple>

namespace zel::kit {

namespace {

// How many neighbours count on each side. One is not enough: it often has other places, too.
constexpr std::size_t most_beside = 2;

struct code_place {
    std::string_view file;
    unsigned long line;
    const item_t *item;
};

// "00140:src/note.c"; line 0 where it has none.
code_place read_place(std::string_view place, const item_t *item)
{
    const std::size_t colon = std::min(place.find(':'), place.size());
    unsigned long line = 0;
    std::from_chars(place.data(), place.data() + colon, line);
    return {place.substr(colon), line, item};
}

} // namespace

neighbourhood::neighbourhood(const LangSource *source,
                             bool (*is_translated)(const LangSource *, const item_t *))
{
    for (const edit_t *group : each<edit_t>(source->groups))
        for (const item_t *item : each<item_t>(group->items))
            stays_[item] = item->used != 0 && is_translated(source, item);
    read_groups(source);
    read_code(source);
    for (auto &[item, around] : around_) {
        std::sort(around.begin(), around.end(), std::less<>());
        around.erase(std::unique(around.begin(), around.end()), around.end());
    }
}

void neighbourhood::read_groups(const LangSource *source)
{
    for (const edit_t *group : each<edit_t>(source->groups)) {
        std::vector<const item_t *> row;
        for (const item_t *item : each<item_t>(group->items))
            if (item->used == 0 || stays_[item])
                row.push_back(item);
        add_around(row);
    }
}

void neighbourhood::read_code(const LangSource *source)
{
    std::vector<code_place> places;
    for (const edit_t *group : each<edit_t>(source->groups))
        for (const item_t *item : each<item_t>(group->items))
            for (const char *text : each<char>(item->used == 0 ? nullptr : item->used_in))
                if (const code_place place = read_place(view_of(text), item); place.line != 0)
                    places.push_back(place);
    std::stable_sort(places.begin(), places.end(), [](const code_place &a, const code_place &b) {
        return std::tie(a.file, a.line) < std::tie(b.file, b.line);
    });
    std::vector<const item_t *> row;
    for (std::size_t at = 0; at < places.size(); ++at) {
        row.push_back(places[at].item);
        if (at + 1 < places.size() && places[at + 1].file == places[at].file)
            continue;
        add_around(row);
        row.clear();
    }
}

// Gives those of the row that do not stay the nearest ones that do, on both sides.
void neighbourhood::add_around(const std::vector<const item_t *> &row)
{
    const auto go = [this](auto begin, auto end) {
        std::vector<const item_t *> last;
        for (auto at = begin; at != end; ++at)
            if (!stays_[*at]) {
                std::vector<const item_t *> &known = around_[*at];
                known.insert(known.end(), last.begin(), last.end());
            } else {
                if (last.size() == most_beside)
                    last.erase(last.begin());
                last.push_back(*at);
            }
    };
    go(row.begin(), row.end());
    go(row.rbegin(), row.rend());
}

unsigned neighbourhood::shared(const item_t *used, const item_t *unused) const
{
    const auto one = around_.find(used);
    const auto other = around_.find(unused);
    if (one == around_.end() || other == around_.end())
        return 0;
    const std::vector<const item_t *> &among = one->second;
    return static_cast<unsigned>(
        std::count_if(other->second.begin(), other->second.end(), [&](const item_t *item) {
            return std::binary_search(among.begin(), among.end(), item, std::less<>());
        }));
}

} // namespace zel::kit
