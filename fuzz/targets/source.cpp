// A language source, good or broken: a whole model comes back or none, and a reason why.

#include "support.h"

#include <cstring>

#include "source/lang-read.h"

namespace {

void look_at_entries(GList *entries, const zel::source_places &places)
{
    for (const lang_entry_t *entry : zel::each<lang_entry_t>(entries)) {
        fuzz::require(places.of(entry).line != 0, "an entry has its place");
        for (const char *text : zel::each<const char>(entry->texts))
            fuzz::require(text == nullptr || std::strlen(text) < 1U << 20, "a line can be read");
    }
}

void look_at(const LangSource *source, const zel::source_places &places)
{
    std::uint32_t items = 0;
    for (const edit_t *group : zel::each<edit_t>(source->groups)) {
        fuzz::require(places.of(group).line != 0, "a group has its place");
        for (const item_t *item : zel::each<item_t>(group->items)) {
            ++items;
            fuzz::require(item->source == source, "an item knows its source");
            look_at_entries(item->langs, places);
            look_at_entries(item->comments, places);
        }
    }
    fuzz::require(items == source->item_count, "items are counted");
}

} // namespace

extern "C" int FUZZ_TARGET(source)(const std::uint8_t *data, std::size_t size)
{
    const char *path = fuzz::as_file("in", fuzz::bytes_of(data, size));
    zel::source_places places;
    zel::read_how how;
    how.places = &places;
    const zel::read_answer answer = zel::read_source(path, how);
    const bool good = answer.result == zel::read_result::good;
    fuzz::require(good == (answer.source != nullptr), "a source when it is good");
    fuzz::require(good == (answer.cause == zel::read_cause::none), "a cause when it is not");
    if (good)
        look_at(answer.source.get(), places);
    return 0;
}
