#include "kit/support/difference.h"

#include "exchange/key.h"
#include "kit/support/output.h"
#include "support/text.h"

namespace zel::kit {

namespace {

// Sign and word of each change, in the order of its enum.
constexpr struct {
    char sign;
    const char *word;
} changes[] = {{'+', "added"}, {'-', "removed"}, {'~', "changed"}};

bool is_whole(std::string_view field)
{
    return field == "language" || field == "group" || field == "item";
}

void append_json_value(std::string &out, const field_value &value)
{
    if (value.is == field_value::none)
        out += "null";
    else if (value.is == field_value::number)
        out += value.shown;
    else
        append_json(out, std::string_view(value.shown));
}

} // namespace

void append_subject(std::string &out, const char *group, const char *item, const char *language,
                    const char *field)
{
    const std::string_view what = field;
    if (group == nullptr && language == nullptr)
        out += "source";
    else if (group == nullptr)
        out += "language";
    else
        exchange::append_key(out, group, or_empty(item));
    if (what == "comment")
        out += " comment";
    if (language != nullptr) {
        out += ' ';
        exchange::append_name(out, language);
    }
    if (!is_whole(what) && what != "text" && what != "comment")
        out.append(" ") += what;
}

std::string value_text(const field_value &value)
{
    return value.is == field_value::text ? quoted(value.shown) : value.shown;
}

void append_text_line(std::string &out, const difference &one)
{
    out.append(1, changes[static_cast<int>(one.how)].sign) += ' ';
    append_subject(out, one.group, one.item, one.language, one.field);
    const bool before = one.before.is != field_value::none;
    const bool after = one.after.is != field_value::none;
    if (before || after)
        out += ": ";
    if (before)
        out += value_text(one.before);
    if (before && after)
        out += " -> ";
    if (after)
        out += value_text(one.after);
    out += '\n';
}

void append_json_object(std::string &out, const difference &one)
{
    out += "{\"change\": ";
    append_json(out, changes[static_cast<int>(one.how)].word);
    const struct {
        const char *name, *value;
    } parts[] = {
        {"group", one.group}, {"item", one.item}, {"language", one.language}, {"field", one.field}};
    for (const auto &part : parts) {
        out.append(", \"").append(part.name) += "\": ";
        append_json(out, part.value);
    }
    out += ", \"old\": ";
    append_json_value(out, one.before);
    out += ", \"new\": ";
    append_json_value(out, one.after);
    out += '}';
}

} // namespace zel::kit
