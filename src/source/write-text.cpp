#include "source/write-text.h"

#include "source/last-line.h"
#include "source/misc.h"
#include "source/quote.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>
#include <utility>

namespace {

// A text between two literals, escaped like every quoted string.
void append_statement(std::string &out, const char *before, const char *text, const char *after)
{
    out += before;
    zel::append_escaped(out, text);
    out += after;
}

// A line of its own. Each item has five, so that they are not written by a format.
void append_number(std::string &out, std::string_view name, std::int32_t number)
{
    char digits[16];
    const char *end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    out.append(name).append(digits, static_cast<std::size_t>(end - digits)) += '\n';
}

void append_strings(std::string &out, GList *strings)
{
    for (const char *text : zel::each<char>(strings)) {
        // With the two blanks of append_quoted the strings stand in column 8, behind their LANG.
        zel::append_quoted(out, 6, text);
        out += '\n';
    }
}

// append_quoted puts the two blanks between SCREEN_SHOT and its value.
void append_group_head(std::string &out, const edit_t *group)
{
    append_statement(out, "\n\nGROUP \"", group->name, "\" {\n");
    zel::append_format(out, "  VISIBLE      %d\n  SCREEN_SHOT", group->visible);
    zel::append_quoted(out, 0, group->screen_shot);
    out += '\n';
}

void append_group_end(std::string &out, const edit_t *group)
{
    out += "}  /* end GROUP \"";
    // A "*/" in the name must not end the comment.
    std::string name;
    zel::append_escaped(name, group->name);
    zel::append_comment(out, name);
    out += "\" */\n";
}

bool is_written(const item_t *item)
{
    const bool only_used = item->source != nullptr && item->source->only_used != 0;
    return !only_used || item->used != 0;
}

} // namespace

namespace zel {

source_text::source_text(const LangSource *source, text_how how)
    : source_(source), how_(std::move(how)),
      selected_only_(how_.only_lang_1 != nullptr && how_.only_lang_2 != nullptr)
{
}

// An entry without a language belongs to no selection, so a file of two languages lacks it.
bool source_text::is_selected(const char *lang) const
{
    return !selected_only_ || (lang != nullptr && (std::strcmp(lang, how_.only_lang_1) == 0 ||
                                                   std::strcmp(lang, how_.only_lang_2) == 0));
}

void source_text::append_head(std::string &out) const
{
    out += "/* !!!! DO NOT EDIT !!!!! */\n\nversion 1\n";
    if (source_->create_date != nullptr)
        append_statement(out, "create_date \"", source_->create_date, "\"\n");
    // The times of the head have 32 bits and no sign, which lasts until 2106.
    append_format(out, "whatsnew %u\nctime %u\nmtime %u\n",
                  static_cast<unsigned>(source_->whatsnew), static_cast<unsigned>(source_->ctime),
                  static_cast<unsigned>(source_->mtime));
    out += "define format ";
    out += source_->format == LANG_SOURCE_UTF8 ? "utf8\n" : "ascii\n";
    append_statement(out, "app \"", source_->app == nullptr ? "unknown" : source_->app, "\"\n");
    append_statement(out, "default lang \"",
                     source_->default_lang == nullptr ? "english" : source_->default_lang, "\"\n");
    out += "\n\n";
}

void source_text::append_languages(std::string &out) const
{
    for (const lang_t *lang : each<lang_t>(source_->langs)) {
        if (!is_selected(lang->name))
            continue;
        append_statement(out, "define file \"", lang->file, "\" lang \"");
        append_statement(out, "", lang->name, "\"");
        // A selection has two languages, and the editor shows both of them.
        append_format(out, " %d %d %d\n", lang->value_1, lang->value_2,
                      selected_only_ ? 1 : lang->edit);
    }
    append_format(out, "\n\ncolwidth group %d\ncolwidth item  %d\ncolwidth ctrl  %d\n\n\n",
                  source_->colwidth_group, source_->colwidth_item, source_->colwidth_ctrl);
}

void source_text::append_entries(std::string &out, const char *keyword, GList *entries) const
{
    for (lang_entry_t *entry : each<lang_entry_t>(entries)) {
        if (!is_selected(entry->lang))
            continue;
        if (entry->texts == nullptr && how_.leaves_out && how_.leaves_out(entry))
            continue;
        // Trims the model itself, so that it agrees with the file after a save.
        if (how_.trim)
            misc_remove_empty_lines(entry);
        out.append("    ").append(keyword) += ' ';
        append_quoted(out, 0, entry->lang);
        out += " {\n";
        append_strings(out, entry->texts);
        out += "    }\n";
    }
}

void source_text::append_attributes(std::string &out, const item_t *item) const
{
    append_statement(out, "    DESCRIPTION  \"",
                     item->description == nullptr ? "none" : item->description, "\"\n");
    append_number(out, "    TYP       ", item->typ);
    append_number(out, "    ROWHEIGHT ", item->rowheight);
    // CTIME has a sign, so from 2038 on a minus; read_item_ctime turns that back.
    append_number(out, "    CTIME     ", static_cast<std::int32_t>(item->ctime));
    append_number(out, "    VISIBLE   ", item->visible);
    append_number(out, "    READY     ", item->ready);
    if (item->changed != 0)
        out += "    CHANGED\n";
    if (item->used == 0) {
        // The list of places belongs to USED YES: an item that is not used loses its places here.
        out += "    USED NO\n";
        return;
    }
    out += "    USED YES {\n";
    append_strings(out, item->used_in);
    out += "    }\n";
}

void source_text::append_item(std::string &out, const edit_t *group, const item_t *item) const
{
    out += "\n  ITEM ";
    append_quoted(out, 0, item->name);
    out += "  { /* group  =";
    std::string quoted;
    append_quoted(quoted, 0, group->name);
    append_comment(out, quoted);
    out += " */\n";
    // In this order, because read_item_body takes no attribute behind the first entry.
    append_attributes(out, item);
    append_entries(out, "LANG", item->langs);
    append_entries(out, "COMMENT", item->comments);
    out += "  }\n";
}

// Appends an item, or the end of its group. Looks for the end of the lists only when it gets there:
// they may have grown meanwhile.
bool source_text::append_next(std::string &out, std::size_t &items)
{
    const auto *group = static_cast<const edit_t *>(group_->data);
    if (!inside_) {
        append_group_head(out, group);
        inside_ = true;
        last_item_ = nullptr;
    }
    GList *next = last_item_ == nullptr ? group->items : last_item_->next;
    if (next != nullptr) {
        last_item_ = next;
        const auto *item = static_cast<const item_t *>(next->data);
        if (is_written(item))
            append_item(out, group, item);
        // Items that are left out count, too: that bounds the time of a step.
        --items;
        return true;
    }
    append_group_end(out, group);
    inside_ = false;
    group_ = group_->next;
    return group_ != nullptr;
}

bool source_text::append(std::string &out, std::size_t items)
{
    if (!begun_) {
        append_head(out);
        append_languages(out);
        group_ = source_->groups;
        begun_ = true;
    }
    bool more = group_ != nullptr;
    while (more && items > 0)
        more = append_next(out, items);
    if (more)
        return true;
    out += '\n';
    append_last_line(out, how_.name);
    return false;
}

} // namespace zel
