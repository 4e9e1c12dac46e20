#include "exchange/carry.h"
#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/tbx.h"
#include "exchange/xliff.h"
#include "exchange/xml-write.h"
#include "source/entry.h"
#include "support/cut.h"

#include <algorithm>

namespace zel::exchange {

namespace {

void append_term(std::string &out, std::string_view term, bool is_kept)
{
    out += "<tig>";
    append_element(out, "<term", "term", term);
    out.pop_back();
    out += is_kept ? "<note>keep</note></tig>\n" : "</tig>\n";
}

void open_language(std::string &out, const std::string &code, std::string_view note)
{
    out += "<langSet";
    append_attribute(out, "xml:lang", code);
    out += ">\n";
    if (!note.empty())
        append_element(out, "<note", "note", note);
}

constexpr std::string_view keep_word = "keep";

class glossary_writer {
public:
    glossary_writer(exporter &from, std::vector<outgoing_file> &to)
        : from_(from), to_(to), reference_code_(xml_code(code_of(default_language())))
    {
    }

    void write()
    {
        for (std::size_t at = 0; at < to_.size(); ++at)
            append_head(to_[at].text, view_of(from_.languages()[at]->name));
        from_.each_item([&](const outgoing_item &item) {
            for (std::size_t at = 0; at < to_.size(); ++at) {
                append_entry(item, at);
                to_[at].flush_large();
            }
        });
        for (outgoing_file &file : to_) {
            file.text += "</body>\n</text>\n</martif>\n";
            file.flush();
        }
    }

private:
    std::string_view default_language() const { return view_of(from_.source().default_lang); }

    void append_head(std::string &out, std::string_view language) const
    {
        out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<martif type=\"TBX\"";
        append_attribute(out, "xml:lang", reference_code_);
        out += ">\n<martifHeader>\n<fileDesc>\n<sourceDesc>\n";
        std::string name;
        append_name(name, language);
        append_element(out, "<p", "p", "lang-kit " + name);
        out += "</sourceDesc>\n</fileDesc>\n</martifHeader>\n<text>\n<body>\n";
    }

    void append_entry(const outgoing_item &item, std::size_t at)
    {
        if (!from_.is_pair(item, at))
            return;
        const outgoing_item::translation &one = item.texts[at];
        const std::string_view description = description_of(item.item);
        for (const std::string_view text :
             {std::string_view(one.text), std::string_view(one.comment),
              std::string_view(item.reference), std::string_view(item.default_comment),
              description})
            if (must_carry(text, holds::xml)) {
                ++from_.unheld;
                return;
            }
        std::string &out = to_[at].text;
        std::string key;
        append_key(key, item.group, item.name);
        out += "<termEntry";
        append_attribute(out, "id", "t" + xliff_id(key));
        out += ">\n";
        if (!description.empty())
            append_element(out, "<descrip type=\"definition\"", "descrip", description);
        open_language(out, reference_code_, without_end(item.default_comment));
        append_term(out, without_end(item.reference), false);
        out += "</langSet>\n";
        open_language(out, xml_code(code_of(view_of(from_.languages()[at]->name))),
                      without_end(one.comment));
        const std::string_view term = without_end(item.reference);
        for (const std::string_view other : glossary_terms(one.text, term))
            append_term(out, other, without_end(one.text) == keep_word);
        out += "</langSet>\n</termEntry>\n";
    }

    exporter &from_;
    std::vector<outgoing_file> &to_;
    std::string reference_code_;
};

} // namespace

std::vector<std::string_view> glossary_terms(std::string_view text, std::string_view term)
{
    if (without_end(text) == keep_word)
        return {term};
    std::vector<std::string_view> found;
    while (!text.empty()) {
        std::string_view one = without_end(cut_at(text, '/'));
        one.remove_prefix(std::min(one.find_first_not_of(" \t\r\n"), one.size()));
        if (!one.empty())
            found.push_back(one);
    }
    return found;
}

void write_tbx(exporter &from, std::vector<outgoing_file> &to)
{
    glossary_writer(from, to).write();
}

} // namespace zel::exchange
