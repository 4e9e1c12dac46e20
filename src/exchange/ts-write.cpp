#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/po-plural.h"
#include "exchange/po-remarks.h"
#include "exchange/ts.h"
#include "exchange/xml-write.h"
#include "langlib/plural-rule.h"

#include <algorithm>
#include <unordered_set>

namespace zel::exchange {

namespace {

bool is_unknown_control(char c) { return c >= 0 && c < ' ' && c != '\n' && c != '\t'; }

// Control characters have an element of their own.
void append_ts_text(std::string &out, std::string_view text)
{
    while (!text.empty()) {
        std::size_t end = 0;
        while (end < text.size() && !is_unknown_control(text[end]))
            ++end;
        append_xml(out, text.substr(0, end));
        text.remove_prefix(end);
        if (text.empty())
            return;
        constexpr char digits[] = "0123456789abcdef";
        out.append("<byte value=\"x");
        if (text.front() >= 16)
            out += '1';
        out.append(1, digits[text.front() & 15]).append("\"/>");
        text.remove_prefix(1);
    }
}

void append_ts_element(std::string &out, std::string_view indent, std::string_view name,
                       std::string_view text)
{
    out.append(indent).append(1, '<').append(name).append(1, '>');
    append_ts_text(out, text);
    out.append("</").append(name).append(">\n");
}

constexpr std::string_view in_message = "        ";

void append_ts_head(std::string &out, const LangSource &source, const lang_t *lang)
{
    out += "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!DOCTYPE TS>\n<TS version=\"2.1\"";
    if (const std::string code = code_of(lang->name); !code.empty())
        append_attribute(out, "language", code);
    if (const std::string code = code_of(view_of(source.default_lang)); !code.empty())
        append_attribute(out, "sourcelanguage", code);
    out += ">\n";
    std::string name;
    append_name(name, lang->name);
    append_ts_element(out, "    ", "extra-language-name", name);
}

// What is the same in a message of every language.
struct ts_shared {
    std::string start; // with the context where that is another than before
    std::string remarks;
    std::string end;
    bool is_plural = false;

    void fill(const outgoing_item &item, const exporter &from);

private:
    void append_places(const item_t *item);
    void append_remarks(const outgoing_item &item, std::string_view default_language);

    std::optional<std::string> group_;
    std::unordered_set<std::string> sources_; // of the group
};

void ts_shared::append_places(const item_t *item)
{
    for (const char *place : each<char>(item->used_in)) {
        std::string_view file = view_of(place);
        const std::string_view line = file.substr(0, file.find(':'));
        const bool has_line =
            line.size() < file.size() && line.find_first_not_of("0123456789") == line.npos;
        if (has_line)
            file.remove_prefix(line.size() + 1);
        start.append(in_message).append("<location");
        append_attribute(start, "filename", file);
        if (const std::size_t digits = line.find_first_not_of('0'); has_line && digits != line.npos)
            append_attribute(start, "line", line.substr(digits));
        start += "/>\n";
    }
}

void ts_shared::append_remarks(const outgoing_item &item, std::string_view default_language)
{
    std::string text(description_of(item.item));
    const std::string comment = without_marks(item.default_comment);
    if (!comment.empty()) {
        text.append(text.empty() ? "" : "\n");
        append_name(text, default_language);
        text.append(": ").append(comment);
    }
    if (!text.empty())
        append_ts_element(remarks, in_message, "extracomment", text);
}

void ts_shared::fill(const outgoing_item &item, const exporter &from)
{
    start.clear();
    remarks.clear();
    end.clear();
    if (group_ != item.group) {
        start += group_ ? "</context>\n" : "";
        start += "<context>\n";
        append_ts_element(start, "    ", "name", item.group);
        group_ = item.group;
        sources_.clear();
    }
    is_plural = exchange::is_plural(item.reference, item.default_comment);
    plural_ids ids{item.reference, {}};
    std::string usual = item.reference; // the name that the source alone says
    if (is_plural) {
        ids = ids_of_plural(item.reference, view_of(from.source().default_lang));
        usual = ids.one;
        if (ids.others != ids.one)
            usual.append(1, plural_sign).append(ids.others);
    }
    start += is_plural ? "    <message numerus=\"yes\">\n" : "    <message>\n";
    append_places(item.item);
    append_ts_element(start, in_message, "source", ids.one);
    // A comment is there also where the toolkit would take two messages for one.
    if (usual != item.name || !sources_.insert(std::string(ids.one)).second)
        append_ts_element(start, in_message, "comment", item.name);
    append_remarks(item, view_of(from.source().default_lang));
    if (is_plural && ids.others != ids.one)
        append_ts_element(end, in_message, "extra-po-msgid_plural", ids.others);
    end += "    </message>\n";
}

// Says which forms of a text the toolkit has no number for.
void note_lost(exporter &from, const outgoing_item &item, std::size_t language,
               const plural_outlet::forms &forms)
{
    const std::string_view text = without_end(item.texts[language].text);
    for (std::size_t form = 0; form < count_text_forms(text); ++form) {
        const std::string_view one = text_form(text, form);
        if (std::find(forms.texts.begin(), forms.texts.end(), one) != forms.texts.end())
            continue;
        std::string line;
        append_key(line, item.group, item.name);
        line.append(1, ' ').append(from.languages()[language]->name).append(": no place for \"");
        append_name(line, one);
        from.lost.push_back(line + "\"");
    }
}

// "<translation type="unfinished">...", in one text or in its forms.
void append_translation(std::string &out, bool finished, std::string_view text,
                        const plural_outlet::forms *forms)
{
    out.append(in_message).append(finished ? "<translation" : "<translation type=\"unfinished\"");
    if (forms == nullptr) {
        out += '>';
        append_ts_text(out, text);
        out += "</translation>\n";
        return;
    }
    out += ">\n";
    for (const std::string_view form : forms->texts)
        append_ts_element(out, "            ", "numerusform", form);
    out.append(in_message).append("</translation>\n");
}

void append_ts_message(std::string &out, exporter &from, const outgoing_item &item,
                       const ts_shared &shared, const plural_outlet &outlet, std::size_t language)
{
    const outgoing_item::translation &one = item.texts[language];
    plural_outlet::forms forms;
    if (shared.is_plural) {
        outlet.split(language, without_end(one.text), forms);
        from.plurals.uneven += forms.fits ? 0 : 1;
        from.plurals.partly += forms.is_whole ? 0 : 1;
        if (forms.is_whole)
            note_lost(from, item, language, forms);
    }
    po_id previous;
    const bool is_guess = !one.comment.empty() && read_fuzzy(one.comment, previous);
    const bool is_ready = from.request().ready == ready_mark::all ||
                          (from.request().ready == ready_mark::as_is && item.item->ready != 0);
    out += shared.start;
    if (previous.text)
        append_ts_element(out, in_message, "oldsource", *previous.text);
    if (previous.context)
        append_ts_element(out, in_message, "oldcomment", *previous.context);
    out += shared.remarks;
    if (const std::string comment = without_marks(one.comment); !comment.empty())
        append_ts_element(out, in_message, "translatorcomment", comment);
    append_translation(out,
                       is_ready && !is_guess && !one.text.empty() && forms.fits && forms.is_whole,
                       one.text, shared.is_plural ? &forms : nullptr);
    out += shared.end;
}

std::string ts_field_of(std::string_view language) { return ts_plural_field(code_of(language)); }

} // namespace

void write_ts(exporter &from, std::vector<outgoing_file> &to)
{
    const plural_outlet outlet(from, ts_field_of);
    for (std::size_t at = 0; at < to.size(); ++at)
        append_ts_head(to[at].text, from.source(), from.languages()[at]);
    ts_shared shared;
    bool any = false;
    from.each_item([&](const outgoing_item &item) {
        any = true;
        shared.fill(item, from);
        for (std::size_t at = 0; at < to.size(); ++at) {
            append_ts_message(to[at].text, from, item, shared, outlet, at);
            to[at].flush_large();
        }
    });
    for (outgoing_file &file : to) {
        file.text += any ? "</context>\n</TS>\n" : "</TS>\n";
        file.flush();
    }
}

} // namespace zel::exchange
