#include "kit/support/shown-texts.h"

#include "kit/support/output.h"
#include "source/entry.h"
#include "support/text.h"

#include <cstdio>

namespace zel::kit {

shown_texts count_shown(const LangSource *source, const trace &asked, std::set<text_key> &unknown)
{
    shown_texts out;
    for (const edit_t *group : each<edit_t>(source->groups))
        for (const item_t *item : each<item_t>(group->items)) {
            const text_key key(or_empty(group->name), or_empty(item->name));
            unknown.erase(key);
            if (item->used == 0)
                continue;
            ++out.used;
            if (asked.asked.contains(key))
                ++out.shown;
            else
                out.never.push_back({group, item});
        }
    return out;
}

void print_shown(const std::string &start, const shown_texts &texts)
{
    std::string line = start + "texts shown: " + with_commas(texts.shown) + " of " +
                       with_commas(texts.used) + (texts.never.empty() ? "" : ", never: ");
    const std::string below(columns_of(line), ' ');
    for (const shown_texts::row &one : texts.never) {
        append_line(line, or_empty(one.group->name));
        line += ':';
        append_line(line, or_empty(one.item->name));
        if (const std::string place = place_of(one.item); !place.empty())
            line += " (" + place + ")";
        if (&one != &texts.never.back())
            line += "\n" + below;
    }
    std::puts(line.c_str());
}

void append_shown(std::string &out, const std::string &path, const shown_texts &texts)
{
    out += "{\"file\": ";
    append_json(out, path);
    out += ", \"items\": " + std::to_string(texts.used) +
           ", \"shown\": " + std::to_string(texts.shown) + ", \"never\": [";
    for (const shown_texts::row &one : texts.never) {
        out += &one == texts.never.data() ? "\n  {\"group\": " : ",\n  {\"group\": ";
        append_json(out, or_empty(one.group->name));
        out += ", \"item\": ";
        append_json(out, or_empty(one.item->name));
        out += ", \"place\": ";
        append_json(out, std::string_view(place_of(one.item)));
        out += '}';
    }
    out += "]}";
}

} // namespace zel::kit
