#include "exchange/carry.h"
#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/po-plural.h"
#include "exchange/tmx.h"
#include "exchange/xml-write.h"
#include "langlib/plural-rule.h"
#include "source/entry.h"

namespace zel::exchange {

namespace {

void append_variant(std::string &out, const std::string &code, std::string_view text)
{
    out += "<tuv";
    append_attribute(out, "xml:lang", code);
    out += ">";
    append_element(out, "<seg", "seg", text);
    out.insert(out.size() - 1, "</tuv>");
}

class memory_writer {
public:
    memory_writer(exporter &from, std::vector<outgoing_file> &to)
        : from_(from), to_(to), reference_code_(xml_code(code_of(default_language())))
    {
        for (const lang_t *lang : from.languages())
            codes_.push_back(xml_code(code_of(view_of(lang->name))));
    }

    void write()
    {
        for (std::size_t at = 0; at < to_.size(); ++at)
            append_head(to_[at].text, at);
        from_.each_item([&](const outgoing_item &item) {
            for (std::size_t at = 0; at < to_.size(); ++at) {
                append_texts_of(item, at);
                to_[at].flush_large();
            }
        });
        for (outgoing_file &file : to_) {
            file.text += "</body>\n</tmx>\n";
            file.flush();
        }
    }

private:
    std::string_view default_language() const { return view_of(from_.source().default_lang); }

    void append_head(std::string &out, std::size_t at) const
    {
        out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<tmx version=\"1.4\">\n<header "
               "creationtool=\"lang-kit\" creationtoolversion=\"1\" segtype=\"block\" "
               "o-tmf=\"lang-src\" adminlang=\"en\"";
        append_attribute(out, "srclang", reference_code_);
        out += " datatype=\"plaintext\">\n";
        std::string name;
        append_name(name, view_of(from_.languages()[at]->name));
        append_element(out, "<prop type=\"x-language\"", "prop", name);
        out += "</header>\n<body>\n";
    }

    void append_texts_of(const outgoing_item &item, std::size_t at)
    {
        if (!from_.is_pair(item, at))
            return;
        const std::string &text = item.texts[at].text;
        if (must_carry(text, holds::xml) || must_carry(item.reference, holds::xml)) {
            ++from_.unheld;
            return;
        }
        std::string &out = to_[at].text;
        if (!is_plural(item.reference, item.default_comment)) {
            append_unit(out, item, at, item.reference, text, {});
            return;
        }
        const plural_ids ids = ids_of_plural(item.reference, default_language());
        const std::size_t count = count_text_forms(text);
        const std::size_t one =
            plural_form(plural_rule_of(view_of(from_.languages()[at]->name)), count, 1);
        for (std::size_t form = 0; form < count; ++form)
            append_unit(out, item, at, form == one && count > 1 ? ids.one : ids.others,
                        text_form(text, form), std::to_string(form));
    }

    void append_unit(std::string &out, const outgoing_item &item, std::size_t at,
                     std::string_view reference, std::string_view text, const std::string &form)
    {
        std::string key;
        append_key(key, item.group, item.name);
        out += "<tu";
        append_attribute(out, "tuid", key);
        out += ">\n";
        if (const std::string_view note = description_of(item.item); !note.empty())
            append_element(out, "<note", "note", note);
        append_element(out, "<prop type=\"context\"", "prop", item.group);
        if (!form.empty()) {
            append_element(out, "<prop type=\"x-form\"", "prop", form);
            append_element(out, "<prop type=\"x-reference\"", "prop", item.reference);
        }
        append_variant(out, reference_code_, reference);
        append_variant(out, codes_[at], text);
        out += "</tu>\n";
    }

    exporter &from_;
    std::vector<outgoing_file> &to_;
    std::string reference_code_;
    std::vector<std::string> codes_; // of the languages
};

} // namespace

void write_tmx(exporter &from, std::vector<outgoing_file> &to) { memory_writer(from, to).write(); }

} // namespace zel::exchange
