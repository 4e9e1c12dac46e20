// A source that reads: what is written of it reads, holds what was read at first, and is written
// the same again. (An item made at no time counts as made when it is read; here that is no time,
// too.)

#include "support.h"

#include "source/lang-read.h"
#include "support/text.h"

namespace {

// Every name and text, and in how many pieces it is; blanks at a text's end belong to nobody.
std::string content_of(const LangSource *source)
{
    std::string content;
    const auto add = [&](const char *name) { content.append(name == nullptr ? "" : name) += '\n'; };
    const auto add_text = [&](const lang_entry_t *entry) {
        add(entry->lang);
        std::string text;
        for (const char *line : zel::each<char>(entry->texts))
            text += line;
        while (!text.empty() && zel::is_space(text.back()))
            text.pop_back();
        content += std::to_string(g_list_length(entry->texts)) + " ";
        add(text.c_str());
    };
    for (const lang_t *lang : zel::each<lang_t>(source->langs))
        add(lang->name);
    for (const edit_t *group : zel::each<edit_t>(source->groups)) {
        add(group->name);
        for (const item_t *item : zel::each<item_t>(group->items)) {
            add(item->name);
            for (GList *entries : {item->langs, item->comments})
                for (const lang_entry_t *entry : zel::each<lang_entry_t>(entries))
                    add_text(entry);
        }
    }
    return content;
}

} // namespace

extern "C" int FUZZ_TARGET(source_again)(const std::uint8_t *data, std::size_t size)
{
    const char *path = fuzz::as_file("in", fuzz::bytes_of(data, size));
    const zel::read_answer first = zel::read_source(path, {});
    if (first.source == nullptr)
        return 0;
    const std::string content = content_of(first.source.get());
    const std::string once = fuzz::written(first.source.get());
    const zel::read_answer second = zel::read_source(fuzz::as_file("again", once), {});
    fuzz::require(second.source != nullptr, "what was written reads");
    fuzz::require(content_of(second.source.get()) == content, "and is the same");
    fuzz::require(fuzz::written(second.source.get()) == once, "and is written the same");
    return 0;
}
