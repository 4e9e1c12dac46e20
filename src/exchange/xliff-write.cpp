#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/xliff.h"
#include "exchange/xml-write.h"

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

// What is the same in a unit of every language.
struct unit_parts {
    std::string key;
    std::string source;
    std::string description; // as a note, empty: none

    void fill(const outgoing_item &item, std::string_view note_start)
    {
        key.clear();
        append_key(key, item.group, item.name);
        source.clear();
        append_element(source, "<source", "source", item.reference);
        description.clear();
        if (const std::string_view text = description_of(item.item); !text.empty())
            append_element(description, std::string(note_start) + "\"description\"", "note", text);
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

void append_unit_1(std::string &out, const exporter &from, const outgoing_item &item,
                   const unit_parts &parts, std::size_t at)
{
    const std::string &text = item.texts[at].text;
    // Without a target there is nothing to approve.
    const bool final = item.item->ready != 0 && !text.empty();
    out += "<trans-unit";
    append_attribute(out, "id", parts.key);
    out.append(final ? " approved=\"yes\"" : "").append(" xml:space=\"preserve\">\n");
    out += parts.source;
    if (!text.empty())
        append_element(out, final ? "<target state=\"final\"" : "<target state=\"translated\"",
                       "target", text);
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

void append_unit_2(std::string &out, const exporter &from, const outgoing_item &item,
                   const unit_parts &parts, std::size_t at)
{
    const std::string &text = item.texts[at].text;
    out += "<unit";
    append_attribute(out, "id", xliff_id(parts.key));
    append_attribute(out, "name", parts.key);
    out += " xml:space=\"preserve\">\n";
    std::string notes;
    append_notes(notes, from, item, parts, at, note_2);
    if (!notes.empty())
        out.append("<notes>\n").append(notes).append("</notes>\n");
    out.append("<segment state=\"")
        .append(text.empty()            ? "initial"
                : item.item->ready != 0 ? "final"
                                        : "translated")
        .append("\">\n")
        .append(parts.source);
    if (!text.empty())
        append_element(out, "<target", "target", text);
    out += "</segment>\n</unit>\n";
}

// What one version of the format writes.
struct version {
    void (*append_head)(std::string &out, const head &one);
    void (*append_unit)(std::string &out, const exporter &from, const outgoing_item &item,
                        const unit_parts &parts, std::size_t at);
    std::string_view note_start;
    std::string_view end;
};

void write(exporter &from, std::vector<outgoing_file> &to, const version &how)
{
    for (std::size_t at = 0; at < to.size(); ++at)
        how.append_head(to[at].text, head_of(from, at));
    unit_parts parts;
    from.each_item([&](const outgoing_item &item) {
        parts.fill(item, how.note_start);
        for (std::size_t at = 0; at < to.size(); ++at) {
            how.append_unit(to[at].text, from, item, parts, at);
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
    write(from, to, {append_head_1, append_unit_1, note_1, "</body>\n</file>\n</xliff>\n"});
}

void write_xliff2(exporter &from, std::vector<outgoing_file> &to)
{
    write(from, to, {append_head_2, append_unit_2, note_2, "</file>\n</xliff>\n"});
}

} // namespace zel::exchange
