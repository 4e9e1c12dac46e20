#pragma once

// A language source in one line, for comparing: what differs from a fresh record, and all texts.
//   lang english english.lang 200 200 1  group main used=1 { item ok used=1 in ["a.c"]
//   LANG english ["OK"] COMMENT english [] }

#include <cstdint>
#include <cstdlib>
#include <string>

#include "app/global.h"
#include "source/lang-read.h"
#include "source/model.h"

namespace zel_test {

inline std::string word(const char *text)
{
    if (text == nullptr)
        return "(null)";
    std::string out;
    for (; *text != '\0'; text++)
        out += *text == '\n'   ? "\\n"
               : *text == '\t' ? "\\t"
               : *text == '\r' ? "\\r"
                               : std::string(1, *text);
    return out;
}

inline std::string strings(GList *list)
{
    std::string out = "[";
    for (GList *node = list; node != nullptr; node = node->next) {
        const auto *text = static_cast<const char *>(node->data);
        out += (node == list ? "" : " ") + (text == nullptr ? word(text) : '"' + word(text) + '"');
    }
    return out + "]";
}

inline void differs(std::string &out, const char *name, std::int64_t value, std::int64_t normal)
{
    if (value != normal)
        out += " " + std::string(name) + "=" + std::to_string(value);
}

inline std::string describe(const item_t *item)
{
    std::string out = "item " + word(item->name);
    if (item->description != nullptr)
        out += " description=" + word(item->description);
    differs(out, "typ", item->typ, 0);
    differs(out, "rowheight", item->rowheight, 20);
    differs(out, "ctime", item->ctime, 0);
    differs(out, "visible", item->visible, 1);
    differs(out, "ready", item->ready, 0);
    differs(out, "changed", item->changed, 0);
    differs(out, "used", item->used, 0);
    differs(out, "posnr", item->posnr, 0);
    if (item->used_in != nullptr)
        out += " in " + strings(item->used_in);
    for (const lang_entry_t *entry : zel::each<lang_entry_t>(item->langs))
        out += " LANG " + word(entry->lang) + " " + strings(entry->texts);
    for (const lang_entry_t *entry : zel::each<lang_entry_t>(item->comments))
        out += " COMMENT " + word(entry->lang) + " " + strings(entry->texts);
    return out;
}

inline std::string describe(const edit_t *group)
{
    std::string out = "group " + word(group->name);
    if (group->screen_shot != nullptr)
        out += " screen_shot=" + word(group->screen_shot);
    differs(out, "used", group->used, 0);
    differs(out, "visible", group->visible, 1);
    out += " {";
    for (const item_t *item : zel::each<item_t>(group->items))
        out += " " + describe(item);
    return out + " }";
}

// The counts, the version and mtime are left out unless asked for: what is written and read again
// may differ in them.
enum class counts { no, yes };

inline std::string describe(const LangSource *source, counts how = counts::no)
{
    if (source == nullptr)
        return "(null)";
    std::string out;
    if (how == counts::yes) {
        differs(out, "version", source->version, 0);
        differs(out, "langs", source->lang_count, 0);
        differs(out, "edit_langs", source->edit_lang_count, 0);
        differs(out, "items", source->item_count, 0);
        differs(out, "mtime", source->mtime, 0);
    }
    differs(out, "format", source->format, 0);
    differs(out, "colwidth_group", source->colwidth_group, 200);
    differs(out, "colwidth_item", source->colwidth_item, 200);
    differs(out, "colwidth_ctrl", source->colwidth_ctrl, 300);
    differs(out, "only_used", source->only_used, 0);
    differs(out, "whatsnew", source->whatsnew, 0);
    differs(out, "ctime", source->ctime, 0);
    if (word(source->app) != "unknown")
        out += " app=" + word(source->app);
    if (word(source->default_lang) != "english")
        out += " default=" + word(source->default_lang);
    if (source->create_date != nullptr)
        out += " created=" + word(source->create_date);
    for (const lang_t *lang : zel::each<lang_t>(source->langs))
        out += " lang " + word(lang->name) + " " + word(lang->file) + " " +
               std::to_string(lang->value_1) + " " + std::to_string(lang->value_2) + " " +
               std::to_string(lang->edit);
    for (const edit_t *group : zel::each<edit_t>(source->groups))
        out += " " + describe(group);
    return out.empty() ? out : out.substr(1);
}

// The process-wide record as it is at the start of a command, for the length of a test.
struct fresh_global {
    fresh_global() : before(lang_global)
    {
        lang_global = {};
        lang_global.start_time = 1700000000;
    }
    ~fresh_global()
    {
        std::free(lang_global.src_dir);
        lang_global = before;
    }
    fresh_global(const fresh_global &) = delete;
    fresh_global &operator=(const fresh_global &) = delete;
    lang_global_t before;
};

// Reads a file as a command does, but stays alive: what is printed goes to standard output, and
// the answer tells whether a command would have ended.
inline zel::read_answer read_printing(const char *path)
{
    zel::read_answer answer =
        zel::read_source(path, {lang_global.start_time, zel::print_read_message, nullptr});
    if (answer.result == zel::read_result::stopped)
        zel::say_stopped();
    return answer;
}

} // namespace zel_test
