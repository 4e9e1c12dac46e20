#include "exchange/po.h"

#include "exchange/c-format.h"
#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/po-message.h"
#include "exchange/po-read.h"

#include <cstring>
#include <ctime>

namespace zel::exchange {

namespace {

constexpr std::string_view name_field = "X-Language-Name";

// A value of the header, which must stay on one line.
std::string one_line(std::string_view text)
{
    std::string out;
    append_name(out, text);
    return out;
}

std::string stamp(std::int64_t seconds)
{
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    char text[64] = "";
    if (gmtime_r(&time, &parts) == nullptr ||
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M+0000", &parts) == 0)
        return "1970-01-01 00:00+0000";
    return text;
}

void append_head(std::string &out, const LangSource &source, const lang_t *lang)
{
    const std::string name = one_line(lang->name);
    const std::string code = code_of(lang->name);
    const std::string app = source.app == nullptr ? "unknown" : one_line(source.app);
    const std::string header = "Project-Id-Version: " + app +
                               "\nPO-Revision-Date: " + stamp(source.mtime) +
                               "\nLast-Translator: none\nLanguage-Team: " + name +
                               "\nLanguage: " + (code.empty() ? "und" : code) +
                               "\nMIME-Version: 1.0\nContent-Type: text/plain; charset=UTF-8\n"
                               "Content-Transfer-Encoding: 8bit\nX-Generator: lang-kit\n" +
                               std::string(name_field) + ": " + name + "\n";
    append_po_text(out, {}, "msgid", {});
    append_po_text(out, {}, "msgstr", header);
}

// Appends each line of a text as a programmer's remark, behind a label.
void append_remark(std::string &out, std::string_view label, std::string_view text)
{
    if (text.empty())
        return;
    std::string carried(label);
    append_carried(carried, text);
    for (std::string_view rest = carried; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find_first_of("\n\r"));
        append_po_comment(out, "#.", line);
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
}

// Writes a place of use, "00031:src/window.c", as catalogs have it.
std::string reference_of(std::string_view place)
{
    const std::size_t colon = place.find(':');
    std::string_view line;
    if (colon != std::string_view::npos && place.find_first_not_of("0123456789") == colon) {
        line = place.substr(0, colon);
        place.remove_prefix(colon + 1);
        line.remove_prefix(std::min(line.find_first_not_of('0'), line.size()));
    }
    std::string name;
    append_name(name, place);
    // A backslash at the end of the line would join the next line to it.
    if (name.find_first_of(" \t") != std::string::npos || name.ends_with('\\'))
        name = "\xE2\x81\xA8" + name + "\xE2\x81\xA9";
    return line.empty() ? name : name + ":" + std::string(line);
}

// What is the same in a message of every language.
struct shared_parts {
    std::string remarks;
    std::string references;
    std::string ids;
    bool is_format = false;
    std::vector<std::string_view> arguments;

    void fill(const outgoing_item &from);
};

void shared_parts::fill(const outgoing_item &from)
{
    remarks.clear();
    append_remark(remarks, {}, description_of(from.item));
    references.clear();
    std::vector<std::string> places;
    for (const char *place : each<char>(from.item->used_in))
        if (place != nullptr)
            places.push_back(reference_of(place));
    append_po_references(references, places);
    ids.clear();
    std::string text;
    append_key(text, from.group, from.name);
    append_po_text(ids, {}, "msgctxt", text);
    text.clear();
    append_carried(text, from.reference);
    append_po_text(ids, {}, "msgid", text);
    is_format = false;
    // Most texts have no percent sign, and this look is cheap.
    if (from.reference.find('%') != std::string::npos)
        if (auto found = c_format_arguments(from.reference); found && !found->empty()) {
            is_format = true;
            arguments = *found;
        }
}

bool fits(const shared_parts &shared, std::string_view reference, std::string_view text)
{
    // Tools for catalogs refuse a text whose line ends at either end are not the original's.
    if (reference.starts_with('\n') != text.starts_with('\n') ||
        reference.ends_with('\n') != text.ends_with('\n'))
        return false;
    return !shared.is_format || c_format_arguments(text) == shared.arguments;
}

void append_message(std::string &out, const exporter &from, const outgoing_item &item,
                    const shared_parts &shared, std::size_t language)
{
    const outgoing_item::translation &one = item.texts[language];
    const char *name = from.languages()[language]->name;
    const bool is_default =
        from.source().default_lang != nullptr && std::strcmp(name, from.source().default_lang) == 0;
    out += '\n';
    out += shared.remarks;
    if (!is_default)
        append_remark(out, one_line(view_of(from.source().default_lang)) + ": ",
                      item.default_comment);
    append_remark(out, one_line(name) + ": ", one.comment);
    out += shared.references;
    // A text that does not fit is marked, so that somebody looks at it.
    const bool fuzzy = !one.text.empty() && ((from.request().fuzzy && item.item->ready == 0) ||
                                             !fits(shared, item.reference, one.text));
    if (fuzzy || shared.is_format)
        out.append("#, ")
            .append(fuzzy ? "fuzzy" : "")
            .append(fuzzy && shared.is_format ? ", " : "")
            .append(shared.is_format ? "c-format\n" : "\n");
    out += shared.ids;
    // Few texts are carried: only these are copied.
    if (must_carry(one.text, holds::utf8)) {
        std::string carried;
        append_carried(carried, one.text);
        append_po_text(out, {}, "msgstr", carried);
    } else {
        append_po_text(out, {}, "msgstr", one.text);
    }
}

said_language language_of(const po_message &header)
{
    const std::string &text = header.texts.front();
    said_language said;
    read_name(po_header_field(text, name_field), said.name);
    said.code = po_header_field(text, "Language");
    return said;
}

void take_message(po_message &message, text_unit &unit, encoding good)
{
    unit.group.clear();
    unit.item.clear();
    unit.keyed = message.id.context && split_key(*message.id.context, unit.group, unit.item);
    unit.reference = *message.id.text;
    unit.text = message.texts.front();
    uncarry(unit.reference, good);
    uncarry(unit.text, good);
    unit.fuzzy = message.fuzzy;
    unit.note.text = joined(message.remarks);
    uncarry(unit.note.text, good);
    unit.line = message.line;
}

} // namespace

void write_po(exporter &from, std::vector<outgoing_file> &to)
{
    for (std::size_t at = 0; at < to.size(); ++at)
        append_head(to[at].text, from.source(), from.languages()[at]);
    shared_parts shared;
    from.each_item([&](const outgoing_item &item) {
        shared.fill(item);
        for (std::size_t at = 0; at < to.size(); ++at) {
            append_message(to[at].text, from, item, shared, at);
            to[at].flush_large();
        }
    });
    for (outgoing_file &file : to)
        file.flush();
}

fault read_po(std::string_view bytes, encoding good, const text_listener &hear)
{
    po_reader reader(bytes);
    po_message message;
    file_texts file{{{}}, {}};
    text_unit unit;
    while (reader.next(message)) {
        // An obsolete message translates what the catalog's program no longer has.
        if (message.obsolete)
            continue;
        if (message.is_header()) {
            file.languages.front() = language_of(message);
            continue;
        }
        take_message(message, unit, good);
        hear(file, unit);
    }
    return reader.wrong();
}

} // namespace zel::exchange
