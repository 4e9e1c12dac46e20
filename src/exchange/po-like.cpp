#include "exchange/po-like.h"

#include "exchange/carry.h"
#include "exchange/item-finder.h"
#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/plural-reader.h"
#include "exchange/po-plural.h"
#include "exchange/po-read.h"
#include "exchange/po-remarks.h"
#include "exchange/po.h"
#include "langlib/plural-rule.h"
#include "source/item-index.h"

#include <unordered_set>

namespace zel::exchange {

namespace {

// A message's id as a source has it.
std::string id_text(const po_id &id)
{
    std::string text(without_end(*id.text));
    return id.plural ? text.append(1, plural_sign).append(without_end(*id.plural)) : text;
}

class like_writer {
public:
    like_writer(exporter &from, const known_catalog &like);

    like_result write();

private:
    item_t *item_of(po_message &message, bool at_end);
    void take(po_message &message, bool at_end);
    fault take_text(po_message &message, item_t *item);
    fault has_text(const po_message &message, std::string_view text, bool &same);
    void put_text(po_message &message, std::string_view text) const;

    exporter &from_;
    const known_catalog &like_;
    const char *language_;
    item_index items_;
    item_finder finder_;
    plural_reader plurals_;
    plural_outlet outlet_;
    std::unordered_set<const item_t *> met_;
    std::vector<po_message *> deferred_; // that several items may be
    like_result result_;
};

like_writer::like_writer(exporter &from, const known_catalog &like)
    : from_(from), like_(like), language_(from.languages().front()->name),
      items_(from.request().source), finder_(from.request().source),
      outlet_(from, like.plural_field)
{
    plurals_.open(language_, like.plural_field, like.plural_line);
}

// The item that a message is, or null. Of several with one text it is the first.
item_t *like_writer::item_of(po_message &message, bool at_end)
{
    std::string group;
    std::string name;
    if (message.id.context && split_key(*message.id.context, group, name))
        if (const indexed_item *keyed = items_.find(group.c_str(), name.c_str()))
            return keyed->item;
    std::string text = *message.id.text;
    if (message.id.plural)
        text += plural_sign + *message.id.plural;
    const std::vector<item_finder::found> all =
        finder_.find(message.id.context, text, group_of_place(message.references));
    if (all.empty()) {
        ++result_.unknown;
        return nullptr;
    }
    std::string keys;
    bool same = true;
    const std::string first = text_of(find_entry(all.front().item->langs, language_));
    for (const item_finder::found &one : all) {
        keys += keys.empty() ? "" : ", ";
        append_key(keys, one.group, view_of(one.item->name));
        same = same && text_of(find_entry(one.item->langs, language_)) == first;
    }
    // Some of them may turn out to be other messages of the catalog.
    if (all.size() > 1 && !at_end) {
        deferred_.push_back(&message);
        return nullptr;
    }
    for (const item_finder::found &one : all)
        met_.insert(one.item);
    if (same)
        return all.front().item;
    std::string shown;
    append_name(shown, text);
    result_.ambiguous.push_back("ambiguous \"" + shown + "\": " + keys);
    return nullptr;
}

// Whether the message shows that text already.
fault like_writer::has_text(const po_message &message, std::string_view text, bool &same)
{
    if (!message.id.plural) {
        same = without_end(message.texts.front()) == text;
        return {};
    }
    const plural_reader::answer old = plurals_.join(message.texts, message.line);
    same = old.what == plural_reader::outcome::joined &&
           (old.text == text || shows_the_same(language_, old.text, text));
    return old.wrong;
}

void like_writer::put_text(po_message &message, std::string_view text) const
{
    const std::string &id = message.id.plural ? *message.id.plural : *message.id.text;
    plural_outlet::forms forms;
    forms.texts = {text};
    if (message.id.plural)
        outlet_.split(0, text, forms);
    const message_check check(id, message.flags);
    message.texts.clear();
    message.fuzzy = message.fuzzy || !forms.fits;
    for (const std::string_view form : forms.texts) {
        std::string &added = message.texts.emplace_back();
        append_carried(added, form);
        // Sources keep no line end at a text's own end.
        added += id.ends_with('\n') && !form.empty() ? "\n" : "";
        const bool is_rare = message.id.plural && outlet_.is_rare(0, message.texts.size() - 1);
        message.fuzzy = message.fuzzy || (!form.empty() && !check.fits(added, is_rare));
    }
}

fault like_writer::take_text(po_message &message, item_t *item)
{
    met_.insert(item);
    const std::string whole = text_of(find_entry(item->langs, language_));
    const std::string_view text = without_end(whole);
    if (text.empty())
        return {};
    // A catalog of the default language leaves out what is the id.
    if (language_ == view_of(from_.request().source->default_lang) &&
        message.texts.front().empty() && text == id_text(message.id))
        return {};
    bool same = false;
    if (fault wrong = has_text(message, text, same))
        return wrong;
    po_id previous;
    const bool is_guess = read_fuzzy(text_of(find_entry(item->comments, language_)), previous);
    if (same && message.fuzzy == is_guess)
        return {};
    ++result_.changed;
    message.fuzzy = is_guess;
    message.previous = is_guess ? previous : po_id();
    if (!same)
        put_text(message, text);
    return {};
}

void like_writer::take(po_message &message, bool at_end)
{
    if (result_.wrong || message.obsolete || message.is_header())
        return;
    if (item_t *item = item_of(message, at_end))
        result_.wrong = take_text(message, item);
}

like_result like_writer::write()
{
    std::vector<po_message> messages = like_.messages;
    for (po_message &message : messages)
        take(message, false);
    for (po_message *message : deferred_)
        take(*message, true);
    for (const po_message &message : messages) {
        result_.text += result_.text.empty() ? "" : "\n";
        append_po_message(result_.text, message);
    }
    const bool adds = from_.request().context.has_value();
    append_po_items(result_.text, from_, outlet_, [&](const item_t *item) {
        const bool is_new = !met_.contains(item);
        result_.missing += is_new && !adds ? 1 : 0;
        return is_new && adds;
    });
    return std::move(result_);
}

} // namespace

fault read_known(std::string_view bytes, known_catalog &out)
{
    po_reader reader(bytes, true);
    po_message message;
    while (reader.next(message)) {
        if (message.is_header() && out.plural_field.empty()) {
            const std::string &header = message.texts.front();
            read_name(po_header_field(header, "X-Language-Name"), out.language.name);
            out.language.code = po_language_code(header);
            out.plural_field = po_header_field(header, plural_field);
            out.plural_line = plural_line(bytes);
        }
        out.messages.push_back(message);
    }
    return reader.wrong();
}

like_result write_like(exporter &from, const known_catalog &like)
{
    return like_writer(from, like).write();
}

} // namespace zel::exchange
