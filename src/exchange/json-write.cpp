#include "exchange/carry.h"
#include "exchange/json.h"
#include "source/quote.h"

#include <algorithm>
#include <array>

namespace zel::exchange {

namespace {

// Which bytes are escaped. JSON allows the last one as it is, but terminals act on it.
constexpr auto json_escaped = [] {
    std::array<bool, 256> table{};
    for (unsigned char c = 0; c < ' '; ++c)
        table[c] = true;
    table['"'] = table['\\'] = table['\x7f'] = true;
    return table;
}();

void append_json_escape(std::string &out, char c)
{
    if (c == '"' || c == '\\')
        out.append(1, '\\') += c;
    else if (c == '\n')
        out += "\\n";
    else if (c == '\t')
        out += "\\t";
    else
        append_format(out, "\\u%04x", static_cast<unsigned>(c));
}

} // namespace

void append_json_signs(std::string &out, std::string_view text)
{
    const auto is_escaped = [](char c) { return json_escaped[static_cast<unsigned char>(c)]; };
    for (const char *at = text.data(), *end = at + text.size(); at != end;) {
        const char *sign = std::find_if(at, end, is_escaped);
        out.append(at, sign);
        if (sign != end)
            append_json_escape(out, *sign++);
        at = sign;
    }
}

namespace {

void append_string(std::string &out, std::string_view text)
{
    // JSON holds only UTF-8: other bytes are carried.
    std::string carried;
    append_carried(carried, text);
    out += '"';
    append_json_signs(out, carried);
    out += '"';
}

void append_string_or_null(std::string &out, const char *text)
{
    if (text == nullptr)
        out += "null";
    else
        append_string(out, text);
}

void append_member(std::string &out, const char *name, const char *text)
{
    out.append(name);
    append_string_or_null(out, text);
}

void append_number(std::string &out, const char *name, std::int64_t number)
{
    out.append(name).append(std::to_string(number));
}

void append_strings(std::string &out, const char *name, GList *strings)
{
    out.append(name) += '[';
    for (GList *node = strings; node != nullptr; node = node->next) {
        out.append(node == strings ? "" : ", ");
        append_string(out, view_of(static_cast<const char *>(node->data)));
    }
    out += ']';
}

void append_entries(std::string &out, const char *name, GList *entries)
{
    out.append(name) += '[';
    for (GList *node = entries; node != nullptr; node = node->next) {
        const auto *entry = static_cast<const lang_entry_t *>(node->data);
        out.append(node == entries ? "\n    { \"language\": " : ",\n    { \"language\": ");
        append_string_or_null(out, entry->lang);
        append_strings(out, ", \"lines\": ", entry->texts);
        out += " }";
    }
    out += ']';
}

// In step with the members that json-read.cpp knows.
void append_item(std::string &out, const item_t *item)
{
    append_member(out, "  { \"name\": ", item->name);
    append_member(out, ", \"description\": ", item->description);
    append_number(out, ", \"typ\": ", item->typ);
    append_number(out, ", \"rowheight\": ", item->rowheight);
    append_number(out, ", \"ctime\": ", item->ctime);
    append_number(out, ", \"visible\": ", item->visible);
    append_number(out, ", \"ready\": ", item->ready);
    out.append(item->changed != 0 ? ", \"changed\": true" : ", \"changed\": false");
    out.append(item->used != 0 ? ", \"used\": true" : ", \"used\": false");
    append_strings(out, ",\n    \"places\": ", item->used_in);
    append_entries(out, ",\n    \"texts\": ", item->langs);
    append_entries(out, ",\n    \"comments\": ", item->comments);
    out += " }";
}

void append_group(outgoing_file &file, const edit_t *group)
{
    std::string &out = file.text;
    append_member(out, "{ \"name\": ", group->name);
    append_number(out, ", \"visible\": ", group->visible);
    append_member(out, ", \"screen_shot\": ", group->screen_shot);
    out += ", \"items\": [";
    for (GList *node = group->items; node != nullptr; node = node->next) {
        out.append(node == group->items ? "\n" : ",\n");
        append_item(out, static_cast<const item_t *>(node->data));
        file.flush_large();
    }
    out += "] }";
}

void append_language(std::string &out, const lang_t *lang)
{
    append_member(out, "{ \"name\": ", lang->name);
    append_member(out, ", \"file\": ", lang->file);
    append_number(out, ", \"values\": [", lang->value_1);
    append_number(out, ", ", lang->value_2);
    append_number(out, "], \"edit\": ", lang->edit);
    out += " }";
}

const char *format_name(std::uint32_t kind)
{
    return kind == LANG_SOURCE_UTF8 ? "utf8" : kind == LANG_SOURCE_ASCII ? "ascii" : nullptr;
}

void append_head(std::string &out, const LangSource *source)
{
    out += "\"language_source\": 1";
    append_member(out, ",\n\"create_date\": ", source->create_date);
    append_number(out, ", \"whatsnew\": ", source->whatsnew);
    append_number(out, ", \"ctime\": ", source->ctime);
    append_member(out, ",\n\"format\": ", format_name(source->format));
    append_member(out, ", \"app\": ", source->app);
    append_member(out, ", \"default_language\": ", source->default_lang);
    append_number(out, ",\n\"column_widths\": { \"group\": ", source->colwidth_group);
    append_number(out, ", \"item\": ", source->colwidth_item);
    append_number(out, ", \"ctrl\": ", source->colwidth_ctrl);
    out += " },\n\"languages\": [";
    for (GList *node = source->langs; node != nullptr; node = node->next) {
        out.append(node == source->langs ? "\n" : ",\n");
        append_language(out, static_cast<const lang_t *>(node->data));
    }
    out += ']';
}

} // namespace

void write_json(exporter &from, std::vector<outgoing_file> &to)
{
    const LangSource *source = from.request().source;
    std::string &out = to.front().text;
    out = "{ ";
    append_head(out, source);
    append_number(out, ",\n\"mtime\": ", source->mtime);
    out += ",\n\"groups\": [";
    for (GList *node = source->groups; node != nullptr; node = node->next) {
        out.append(node == source->groups ? "\n" : ",\n");
        append_group(to.front(), static_cast<const edit_t *>(node->data));
    }
    out += "] }\n";
    to.front().flush();
}

} // namespace zel::exchange
