#include "exchange/po.h"

#include "exchange/c-format.h"
#include "exchange/item-finder.h"
#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/po-message.h"
#include "exchange/po-plural.h"
#include "exchange/po-read.h"
#include "exchange/po-remarks.h"
#include "langlib/plural-rule.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <unordered_map>

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

void append_head(std::string &out, const LangSource &source, const lang_t *lang,
                 const std::string &plural_header)
{
    const std::string name = one_line(lang->name);
    const std::string code = code_of(lang->name);
    const std::string app = source.app == nullptr ? "unknown" : one_line(source.app);
    const std::string header =
        "Project-Id-Version: " + app + "\nPO-Revision-Date: " + stamp(source.mtime) +
        // What is not known is no value: an editor takes the code "und" for a mistake.
        "\nLast-Translator: \nLanguage-Team: " + (code.empty() ? "" : "\nLanguage: ") + code +
        "\nMIME-Version: 1.0\nContent-Type: text/plain; charset=UTF-8\n"
        "Content-Transfer-Encoding: 8bit\nX-Generator: lang-kit\n" +
        (plural_header.empty() ? "" : std::string(plural_field) + ": ") + plural_header +
        (plural_header.empty() ? "" : "\n") + std::string(name_field) + ": " + name + "\n";
    append_po_text(out, {}, "msgid", {});
    append_po_text(out, {}, "msgstr", header);
}

// The header that tools know a template by.
void append_template_head(std::string &out, const LangSource &source, bool has_plurals)
{
    out += "#, fuzzy\n";
    append_po_text(out, {}, "msgid", {});
    append_po_text(out, {}, "msgstr",
                   "Project-Id-Version: " + (source.app == nullptr ? "" : one_line(source.app)) +
                       "\nPOT-Creation-Date: " + stamp(source.mtime) +
                       "\nPO-Revision-Date: YEAR-MO-DA HO:MI+ZONE\n"
                       "Last-Translator: \nLanguage-Team: \nLanguage: \nMIME-Version: 1.0\n"
                       "Content-Type: text/plain; charset=UTF-8\n"
                       "Content-Transfer-Encoding: 8bit\nX-Generator: lang-kit\n" +
                       (has_plurals ? "Plural-Forms: nplurals=INTEGER; plural=EXPRESSION;\n" : ""));
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

// Few texts are carried: only these are copied.
void append_carried_text(std::string &out, std::string_view keyword, std::string_view text)
{
    if (!must_carry(text, holds::utf8)) {
        append_po_text(out, {}, keyword, text);
        return;
    }
    std::string carried;
    append_carried(carried, text);
    append_po_text(out, {}, keyword, carried);
}

// What is the same in a message of every language.
struct shared_parts {
    std::string remarks;
    std::string references;
    std::string ids;
    bool is_plural = false;
    std::string_view id; // the reference text, or the last form of a plural's
    std::vector<std::string> flags;
    std::optional<message_check> check;
    std::string default_comment; // for people

    void fill(const outgoing_item &from, const exporter &by);
};

void shared_parts::fill(const outgoing_item &from, const exporter &by)
{
    const message_context context = by.request().context.value_or(message_context::key);
    const std::string_view default_language = view_of(by.source().default_lang);
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
    if (context == message_context::key)
        append_key(text, from.group, from.name);
    else
        append_carried(text, from.group);
    if (context != message_context::none)
        append_po_text(ids, {}, "msgctxt", text);
    is_plural = exchange::is_plural(from.reference, from.default_comment);
    default_comment = without_marks(from.default_comment);
    id = from.reference;
    if (is_plural) {
        const plural_ids both = ids_of_plural(from.reference, default_language);
        append_carried_text(ids, "msgid", both.one);
        append_carried_text(ids, "msgid_plural", both.others);
        id = both.others;
    } else {
        append_carried_text(ids, "msgid", id);
    }
    const auto said = flags_of(from.default_comment);
    flags = said ? *said : usual_flags(id);
    std::erase(flags, plural_flag);
    std::erase(flags, no_plural_flag);
    check.emplace(id, flags);
}

// Whether a text and its ids would pass the check of whoever compiles the catalog.
bool forms_fit(const shared_parts &shared, const plural_outlet &outlet, std::size_t language,
               const plural_outlet::forms &forms)
{
    for (std::size_t form = 0; form < forms.texts.size(); ++form)
        if (!shared.check->fits(forms.texts[form], outlet.is_rare(language, form)))
            return false;
    return forms.fits;
}

void append_forms(std::string &out, const shared_parts &shared, std::string_view text,
                  const plural_outlet::forms &forms)
{
    if (!shared.is_plural)
        append_carried_text(out, "msgstr", text);
    else
        for (std::size_t form = 0; form < forms.texts.size(); ++form)
            append_carried_text(out, "msgstr[" + std::to_string(form) + "]", forms.texts[form]);
}

void append_message(std::string &out, exporter &from, const outgoing_item &item,
                    const shared_parts &shared, const plural_outlet &outlet, std::size_t language)
{
    const outgoing_item::translation &one = item.texts[language];
    const char *name = from.languages()[language]->name;
    const bool is_default =
        from.source().default_lang != nullptr && std::strcmp(name, from.source().default_lang) == 0;
    out += '\n';
    out += shared.remarks;
    if (!is_default && !shared.default_comment.empty())
        append_remark(out, one_line(view_of(from.source().default_lang)) + ": ",
                      shared.default_comment);
    po_id previous;
    const bool is_guess = !one.comment.empty() && read_fuzzy(one.comment, previous);
    if (!one.comment.empty())
        append_remark(out, one_line(name) + ": ", without_marks(one.comment));
    out += shared.references;
    plural_outlet::forms forms;
    if (shared.is_plural) {
        outlet.split(language, without_end(one.text), forms);
        from.plurals.uneven += forms.fits ? 0 : 1;
        from.plurals.partly += forms.is_whole ? 0 : 1;
    }
    // A text that does not fit is marked, so that somebody looks at it.
    const bool fuzzy = !one.text.empty() && forms.is_whole &&
                       (is_guess || (from.request().fuzzy && item.item->ready == 0) ||
                        !(shared.is_plural ? forms_fit(shared, outlet, language, forms)
                                           : shared.check->fits(one.text, false)));
    append_po_flags(out, fuzzy, shared.flags);
    if (is_guess)
        append_po_id(out, "#| ", previous);
    out += shared.ids;
    append_forms(out, shared, one.text, forms);
}

said_language language_of(const po_message &header)
{
    const std::string &text = header.texts.front();
    said_language said;
    read_name(po_header_field(text, name_field), said.name);
    said.code = po_language_code(text);
    return said;
}

// Makes the message a unit, which takes its texts.
void take_message(po_message &message, text_unit &unit, encoding good, bool own)
{
    unit.group.clear();
    unit.item.clear();
    unit.keyed = message.id.context && split_key(*message.id.context, unit.group, unit.item);
    unit.loose = true;
    // What looks like a key may be a group of two words, but no item without both has its text.
    unit.in_group = own && unit.keyed;
    unit.code_group = message.id.context ? std::string() : group_of_place(message.references);
    unit.context = std::move(message.id.context);
    unit.reference = std::move(*message.id.text);
    unit.text.clear();
    unit.forms.clear();
    if (message.id.plural) {
        unit.reference += plural_sign + *message.id.plural;
        unit.forms = std::move(message.texts);
    } else {
        unit.text = std::move(message.texts.front());
    }
    for (std::string &form : unit.forms)
        uncarry(form, good);
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
    const plural_outlet outlet(from);
    for (std::size_t at = 0; at < to.size(); ++at)
        append_head(to[at].text, from.source(), from.languages()[at], outlet.header(at));
    shared_parts shared;
    from.each_item([&](const outgoing_item &item) {
        shared.fill(item, from);
        for (std::size_t at = 0; at < to.size(); ++at) {
            append_message(to[at].text, from, item, shared, outlet, at);
            to[at].flush_large();
        }
    });
    for (outgoing_file &file : to)
        file.flush();
}

void write_pot(exporter &from, std::vector<outgoing_file> &to)
{
    std::string &out = to.front().text;
    const plural_outlet outlet(from);
    append_template_head(out, from.source(), outlet.any());
    shared_parts shared;
    from.each_item([&](const outgoing_item &item) {
        shared.fill(item, from);
        out += '\n';
        out += shared.remarks;
        append_remark(out, {}, shared.default_comment);
        out += shared.references;
        append_po_flags(out, false, shared.flags);
        out += shared.ids;
        out += shared.is_plural ? "msgstr[0] \"\"\nmsgstr[1] \"\"\n" : "msgstr \"\"\n";
        to.front().flush_large();
    });
    to.front().flush();
}

std::vector<std::string> colliding_keys(exporter &from)
{
    std::vector<std::string> lines;
    std::unordered_map<std::string, std::string> first;
    const bool has_context = from.request().context == message_context::group;
    from.each_item([&](const outgoing_item &item) {
        std::string key;
        append_key(key, item.group, item.name);
        std::string id = has_context ? std::string(item.group) : std::string();
        id += '\0'; // no text holds one
        id += is_plural(item.reference, item.default_comment)
                  ? ids_of_plural(item.reference, view_of(from.source().default_lang)).one
                  : std::string_view(item.reference);
        const auto &[known, added] = first.emplace(std::move(id), key);
        if (!added)
            lines.push_back(known->second + ", " + key);
    });
    return lines;
}

void append_po_items(std::string &out, exporter &from, const plural_outlet &outlet,
                     const std::function<bool(const item_t *)> &is_wanted)
{
    shared_parts shared;
    from.each_item([&](const outgoing_item &item) {
        if (!is_wanted(item.item))
            return;
        shared.fill(item, from);
        append_message(out, from, item, shared, outlet, 0);
    });
}

void take_po_header(const po_message &header, std::string_view bytes, file_texts &file)
{
    file.languages.assign(1, language_of(header));
    file.plural_field = po_header_field(header.texts.front(), plural_field);
    file.plural_line = plural_line(bytes);
    if (is_of_several(header.texts.front()))
        file.notes.emplace_back(several_headers);
}

fault read_po(std::string_view bytes, encoding good, const text_listener &hear)
{
    po_reader reader(bytes);
    po_message message;
    file_texts file;
    file.languages.emplace_back();
    text_unit unit;
    while (reader.next(message)) {
        // An obsolete message translates what the catalog's program no longer has.
        if (message.obsolete)
            continue;
        if (message.is_header()) {
            take_po_header(message, bytes, file);
            continue;
        }
        take_message(message, unit, good, !file.languages.front().name.empty());
        hear(file, unit);
    }
    return reader.wrong();
}

} // namespace zel::exchange
