#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/po-plural.h"
#include "exchange/po-remarks.h"
#include "exchange/xliff.h"
#include "exchange/xml-write.h"
#include "langlib/plural-rule.h"

#include <cstring>

namespace zel::exchange {

namespace {

struct head {
    std::string app;
    std::string source_code;
    std::string target_code;
    std::string language; // its name on one line
};

head head_of(const exporter &from, std::size_t at)
{
    const LangSource &source = from.source();
    head out;
    append_name(out.app, source.app == nullptr ? "unknown" : source.app);
    out.source_code = xml_code(code_of(view_of(source.default_lang)));
    out.target_code = xml_code(code_of(from.languages()[at]->name));
    append_name(out.language, from.languages()[at]->name);
    return out;
}

struct unit_parts;

// What one version of the format writes.
struct version {
    void (*append_head)(std::string &out, const head &one);
    void (*append_unit)(std::string &out, exporter &from, const outgoing_item &item,
                        const unit_parts &parts, std::size_t at, const plural_outlet &outlet);
    std::string_view note_start;
    std::string_view end;
    bool has_groups; // a plural is a group with a unit for each form
};

// Readers of catalogs' profile take a number in brackets at an id's end for a plural's form.
std::string id_1(std::string_view key)
{
    const std::size_t open = key.rfind('[');
    if (open == key.npos || !key.ends_with(']') || open + 2 == key.size() ||
        key.substr(open + 1, key.size() - open - 2).find_first_not_of("0123456789") != key.npos)
        return std::string(key);
    return std::string(key.substr(0, open)) + "\\x5b" + std::string(key.substr(open + 1));
}

// What is the same in a unit of every language.
struct unit_parts {
    std::string key;
    std::string id; // of version 1
    std::string source;
    std::string others; // the source of a plural's further forms
    bool is_plural = false;
    std::string description; // as a note, empty: none

    void fill(const exporter &from, const outgoing_item &item, const version &how)
    {
        key.clear();
        append_key(key, item.group, item.name);
        if (how.has_groups)
            id = id_1(key);
        is_plural = exchange::is_plural(item.reference, item.default_comment);
        plural_ids ids{item.reference, {}};
        if (is_plural && how.has_groups)
            ids = ids_of_plural(item.reference, view_of(from.source().default_lang));
        source.clear();
        append_element(source, "<source", "source", ids.one);
        others.clear();
        append_element(others, "<source", "source", ids.others);
        description.clear();
        if (const std::string_view text = description_of(item.item); !text.empty())
            append_element(description, std::string(how.note_start) + "\"description\"", "note",
                           text);
    }
};

bool is_default(const exporter &from, std::size_t at)
{
    return from.source().default_lang != nullptr &&
           std::strcmp(from.languages()[at]->name, from.source().default_lang) == 0;
}

// The notes of one language's unit.
void append_notes(std::string &out, const exporter &from, const outgoing_item &item,
                  const unit_parts &parts, std::size_t at, std::string_view note_start)
{
    out += parts.description;
    if (!item.default_comment.empty() && !is_default(from, at))
        append_element(out, std::string(note_start) + "\"default comment\"", "note",
                       item.default_comment);
    if (!item.texts[at].comment.empty())
        append_element(out, std::string(note_start) + "\"comment\"", "note",
                       item.texts[at].comment);
}

constexpr std::string_view note_1 = "<note from=";

void append_head_1(std::string &out, const head &one)
{
    out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<xliff version=\"1.2\" xmlns=\"urn:oasis:names:tc:xliff:document:1.2\">\n<file";
    append_attribute(out, "original", one.app);
    append_attribute(out, "source-language", one.source_code);
    append_attribute(out, "target-language", one.target_code);
    append_attribute(out, "datatype", "plaintext");
    out += ">\n<header>\n";
    append_element(out, std::string(note_1) + "\"language\"", "note", one.language);
    out += "</header>\n<body>\n";
}

struct state {
    bool final = false;
    bool guess = false;
};

state state_of(const exporter &from, const outgoing_item &item, std::size_t at)
{
    po_id previous;
    state out;
    out.guess = !item.texts[at].comment.empty() && read_fuzzy(item.texts[at].comment, previous);
    // Without a target there is nothing to approve.
    out.final = !out.guess && !item.texts[at].text.empty() && from.is_final(item.item);
    return out;
}

void append_target_1(std::string &out, const state &how, std::string_view text)
{
    if (!text.empty())
        append_element(out,
                       how.guess   ? "<target state=\"needs-translation\""
                       : how.final ? "<target state=\"final\""
                                   : "<target state=\"translated\"",
                       "target", text);
}

void append_start_1(std::string &out, std::string_view element, std::string_view id, bool final)
{
    out.append(1, '<').append(element);
    append_attribute(out, "id", id);
    out.append(final ? " approved=\"yes\"" : "");
}

// A plural, with a unit for each form of the language.
void append_group_1(std::string &out, exporter &from, const outgoing_item &item,
                    const unit_parts &parts, std::size_t at, const plural_outlet &outlet)
{
    plural_outlet::forms forms;
    outlet.split(at, without_end(item.texts[at].text), forms);
    from.plurals.uneven += forms.fits ? 0 : 1;
    from.plurals.partly += forms.is_whole ? 0 : 1;
    state how = state_of(from, item, at);
    how.guess = how.guess || !forms.fits;
    how.final = how.final && forms.fits && forms.is_whole;
    append_start_1(out, "group", parts.id, how.final);
    out += " restype=\"x-gettext-plurals\">\n";
    for (std::size_t form = 0; form < forms.texts.size(); ++form) {
        append_start_1(out, "trans-unit", parts.id + "[" + std::to_string(form) + "]", how.final);
        out += " xml:space=\"preserve\">\n";
        out += form == 0 ? parts.source : parts.others;
        append_target_1(out, how, forms.texts[form]);
        if (form == 0)
            append_notes(out, from, item, parts, at, note_1);
        out += "</trans-unit>\n";
    }
    out += "</group>\n";
}

void append_unit_1(std::string &out, exporter &from, const outgoing_item &item,
                   const unit_parts &parts, std::size_t at, const plural_outlet &outlet)
{
    if (parts.is_plural) {
        append_group_1(out, from, item, parts, at, outlet);
        return;
    }
    const state how = state_of(from, item, at);
    append_start_1(out, "trans-unit", parts.id, how.final);
    out += " xml:space=\"preserve\">\n";
    out += parts.source;
    append_target_1(out, how, item.texts[at].text);
    append_notes(out, from, item, parts, at, note_1);
    out += "</trans-unit>\n";
}

constexpr std::string_view note_2 = "<note category=";

void append_head_2(std::string &out, const head &one)
{
    out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<xliff version=\"2.1\" xmlns=\"urn:oasis:names:tc:xliff:document:2.0\"";
    append_attribute(out, "srcLang", one.source_code);
    append_attribute(out, "trgLang", one.target_code);
    out += ">\n<file id=\"texts\"";
    append_attribute(out, "original", one.app);
    out += ">\n<notes>\n";
    append_element(out, std::string(note_2) + "\"language\"", "note", one.language);
    out += "</notes>\n";
}

// "forms: one|few|many", as the text or the language has them.
std::string told_forms(const char *language, std::string_view text)
{
    const std::string_view rule = plural_rule_of(language);
    const plural_forms count = count_plural_forms(rule);
    const std::size_t wanted = count_text_forms(text) == count.all ? count.all : count.everyday;
    std::string out = "forms: ";
    std::size_t told = 0;
    for (std::size_t form = 0; form < count.all; ++form) {
        // Those that begin at a million are not said where the text does without them.
        if (wanted != count.all && is_rare_form(rule, form))
            continue;
        out.append(told++ == 0 ? "" : "|").append(plural_form_name(rule, form));
    }
    return out;
}

void append_unit_2(std::string &out, exporter &from, const outgoing_item &item,
                   const unit_parts &parts, std::size_t at, const plural_outlet &)
{
    const std::string &text = item.texts[at].text;
    out += "<unit";
    append_attribute(out, "id", xliff_id(parts.key));
    append_attribute(out, "name", parts.key);
    out += " xml:space=\"preserve\">\n";
    std::string notes;
    append_notes(notes, from, item, parts, at, note_2);
    if (parts.is_plural)
        append_element(notes, std::string(note_2) + "\"plural\"", "note",
                       told_forms(from.languages()[at]->name, text));
    if (!notes.empty())
        out.append("<notes>\n").append(notes).append("</notes>\n");
    const state how = state_of(from, item, at);
    out.append("<segment state=\"")
        .append(text.empty() || how.guess ? "initial"
                : how.final               ? "final"
                                          : "translated")
        .append("\">\n")
        .append(parts.source);
    if (!text.empty())
        append_element(out, "<target", "target", text);
    out += "</segment>\n</unit>\n";
}

void write(exporter &from, std::vector<outgoing_file> &to, const version &how)
{
    const plural_outlet outlet(from);
    for (std::size_t at = 0; at < to.size(); ++at)
        how.append_head(to[at].text, head_of(from, at));
    unit_parts parts;
    from.each_item([&](const outgoing_item &item) {
        parts.fill(from, item, how);
        for (std::size_t at = 0; at < to.size(); ++at) {
            how.append_unit(to[at].text, from, item, parts, at, outlet);
            to[at].flush_large();
        }
    });
    for (outgoing_file &file : to) {
        file.text += how.end;
        file.flush();
    }
}

} // namespace

void write_xliff(exporter &from, std::vector<outgoing_file> &to)
{
    write(from, to, {append_head_1, append_unit_1, note_1, "</body>\n</file>\n</xliff>\n", true});
}

void write_xliff2(exporter &from, std::vector<outgoing_file> &to)
{
    write(from, to, {append_head_2, append_unit_2, note_2, "</file>\n</xliff>\n", false});
}

} // namespace zel::exchange
