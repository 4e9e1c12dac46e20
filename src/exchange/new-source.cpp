#include "exchange/new-source.h"

#include "exchange/carry.h"
#include "exchange/item-finder.h"
#include "exchange/key.h"
#include "exchange/keyed-file.h"
#include "exchange/language-code.h"
#include "exchange/plural-text.h"
#include "exchange/po-read.h"
#include "exchange/po-remarks.h"
#include "exchange/ts.h"
#include "langlib/plural-rule.h"
#include "source/entry.h"
#include "support/string-copy.h"

#include <algorithm>

namespace zel::exchange {

namespace {

constexpr char context_end = '\x04'; // as compiled catalogs have it

source_guard empty_source(const new_request &request)
{
    source_guard source(lang_alloc_group());
    source->format = LANG_SOURCE_UTF8;
    source->ctime = request.now;
    replace_string(source->default_lang, zel_strdup(request.default_language.c_str()));
    return source;
}

// Writes a place as sources have it: the line in five digits before the file.
std::string place_of(std::string_view reference)
{
    const auto [file, line] = split_reference(reference);
    std::string place(line.size() < 5 ? 5 - line.size() : 0, '0');
    return place.append(line).append(1, ':').append(file);
}

std::string told_lines(const std::vector<std::string> &lines)
{
    std::string out;
    for (const std::string &line : lines)
        if (!line.starts_with("xgettext:"))
            // What somebody has written is no mark of ours.
            out.append(out.empty() ? "" : "\n").append(is_mark(line) ? "# " : "").append(line);
    return out;
}

// The program's name in a header's "notes 1.4"; empty for what nobody has filled in.
std::string_view app_of(std::string_view project)
{
    if (project == "PACKAGE VERSION")
        return {};
    const std::size_t blank = project.rfind(' ');
    const bool has_version = blank != std::string_view::npos &&
                             project.find_first_of("0123456789", blank) != std::string_view::npos;
    return has_version || project.ends_with(" VERSION") ? project.substr(0, blank) : project;
}

// The ids of a plural as one text; those that hold the sign between forms, or nothing, cannot be.
bool has_apart_ids(const po_id &id)
{
    return id.text->find(plural_sign) != std::string::npos ||
           id.plural->find(plural_sign) != std::string::npos || without_end(*id.text).empty() ||
           without_end(*id.plural).empty();
}

// Makes the text a language's comment, below the line of flags if it has one.
void put_comment(item_t *item, const std::string &language, std::string text)
{
    const std::string before = text_of(find_entry(item->comments, language.c_str()));
    if (const auto flags = flags_of(before))
        text.insert(0, flags_line(*flags) + "\n");
    put_text(item->comments, language.c_str(), text);
}

} // namespace

new_source::new_source(const new_request &request)
    : request_(request), source_(empty_source(request)), items_(source_.get())
{
    add_language(request.default_language);
    codes_[request.default_language] = code_of(request.default_language);
}

void new_source::add_language(const std::string &name)
{
    lang_t *lang = alloc_lang();
    lang->name = zel_strdup(name.c_str());
    std::string file = name;
    // A slash would lead the file into another folder.
    std::replace(file.begin(), file.end(), '/', '-');
    lang->file = zel_strdup((file + ".lang").c_str());
    lang->edit = source_->lang_count < 2 ? 1 : 0; // the first two are the ones shown
    ++source_->lang_count;
    source_->langs = g_list_append(source_->langs, lang);
}

// The language's name: the header's own; else a word for its code, or the code where no word means
// just that; else the file's. A file that is named by a longer code of the same language knows
// better than its header: sr@latin, zh_TW.
std::pair<std::string, std::string> new_source::name_language(const std::string &path,
                                                              const said_language &said)
{
    std::string name = said.name;
    std::string code = said.code;
    if (const std::string own = code_of_file(path);
        name.empty() && (code.empty() || is_as_close(own, code)))
        code = own;
    // Of a word that it does not know the library could not tell how the language counts.
    const std::string_view word = name_of_code(code);
    if (name.empty())
        name = code == code_of(word) && has_plural_rule(word) == has_plural_rule(code)
                   ? std::string(word)
                   : code;
    if (name.empty())
        name = stem_of(path);
    return {name, code};
}

// Two files of one language are two languages that somebody has called by one name; but one name in
// two folders is one language in two parts of a project.
fault new_source::choose_language(catalog &of, const said_language &said)
{
    const auto [name, code] = name_language(of.path, said);
    of.language = name;
    if (codes_.emplace(name, code).second)
        add_language(name);
    of.met = &met_[of.language];
    if (reading_ == from::catalogs)
        of.met->reserve(source_->item_count);
    const auto &[language, first] = *files_.emplace(of.language, of.path).first;
    if (first == of.path || (stem_of(first) == stem_of(of.path)))
        return {};
    return {0, "of the language \"" + language + "\", and so is " + first};
}

fault new_source::take_header(catalog &of, std::string_view bytes, const po_message &message)
{
    const std::string &header = message.texts.front();
    of.own = po_header_field(header, "X-Generator") == "lang-kit";
    said_language said;
    read_name(po_header_field(header, "X-Language-Name"), said.name);
    said.code = po_language_code(header);
    fault wrong = choose_language(of, said);
    if (is_of_several(header))
        note(of, 0, std::string(several_headers));
    of.plurals.open(of.language, po_header_field(header, plural_field), plural_line(bytes));
    const std::string app(app_of(po_header_field(header, "Project-Id-Version")));
    if (!app.empty())
        replace_string(source_->app, zel_strdup(app.c_str()));
    return wrong;
}

std::string new_source::group_of(const po_message &message) const
{
    if (message.id.context)
        return message.group ? *message.group : *message.id.context;
    if (!request_.group.empty())
        return request_.group;
    if (message.group)
        return *message.group;
    return group_of_place(message.references);
}

// Makes an item. A message without a context may have the name of another one in a group of the
// same name: then the group gets a number.
item_t *new_source::make_item(const std::string &group, const std::string &name,
                              const po_message &message)
{
    int &number = numbers_[group + context_end + name];
    const auto numbered = [&] {
        return number < 2 ? group : std::string(group).append("-").append(std::to_string(number));
    };
    std::string free_group = numbered();
    for (; items_.find(free_group.c_str(), name.c_str()) != nullptr; free_group = numbered())
        number = number < 2 ? 2 : number + 1;
    indexed_item *added = items_.insert(free_group.c_str(), name.c_str());
    item_t *item = added->item;
    item->used = reading_ == from::catalogs_behind_one ? 0 : 1;
    item->typ = 1;
    item->ctime = request_.now;
    for (const std::string &reference : message.references)
        add_use(*added, place_of(reference).c_str());
    replace_string(item->description, zel_strdup(told_lines(message.extracted).c_str()));
    ++source_->item_count;
    return item;
}

// A text of a catalog. Only lang-kit's own catalogs carry bytes.
std::string new_source::came(const catalog &of, std::string text)
{
    if (of.own)
        uncarry(text, encoding::utf8);
    return text;
}

// Keeps a message's flags where its text alone does not tell them, and whether it is a plural.
void new_source::put_flags(const catalog &of, item_t *item, const po_message &message,
                           std::string_view text, bool is_plural)
{
    std::vector<std::string> flags = message.flags;
    const bool is_usual =
        (flags.empty() && !of.flags) ||
        flags == usual_flags(message.id.plural ? *message.id.plural : *message.id.text);
    const bool is_marked = (is_plural || of.tells_plurals) && is_plural != is_plural_text(text);
    if (is_marked)
        flags.emplace(flags.begin(), is_plural ? plural_flag : no_plural_flag);
    if (is_marked || !is_usual)
        put_text(item->comments, request_.default_language.c_str(), flags_line(flags));
}

// The item for a message's part; made if no catalog has had it before.
item_t *new_source::item_of(const catalog &of, const po_message &message, const part &one)
{
    std::string group;
    std::string item_name;
    const bool keyed =
        of.own && message.id.context && split_key(*message.id.context, group, item_name);
    // Catalogs tell messages apart by context and id together. A text that was no plural in an
    // older one stays another item: its request is another, too.
    std::string identity = message.id.context ? *message.id.context + context_end : std::string();
    if (!message.told_apart.empty())
        identity += message.told_apart + context_end;
    if (!keyed)
        identity += one.plural ? *message.id.text + context_end : one.name;
    item_t *&item = known_[identity];
    if (item != nullptr)
        return item;
    item = keyed ? make_item(group, item_name, message)
                 : make_item(group_of(message), one.name, message);
    // An own catalog's item has a reference text besides its name.
    const std::string text = one.instead.empty() ? one.name : one.instead;
    if (keyed || text != one.name)
        put_text(item->langs, request_.default_language.c_str(), came(of, text));
    put_flags(of, item, message, text, one.plural);
    return item;
}

void new_source::take_part(const catalog &of, const po_message &message, const part &one)
{
    item_t *item = item_of(of, message, one);
    if (reading_ == from::a_template)
        return;
    if (reading_ == from::catalogs)
        of.met->insert(item);
    std::string remarks = told_lines(message.remarks);
    if (message.fuzzy && !one.text.empty())
        remarks = fuzzy_line(message.previous) + (remarks.empty() ? "" : "\n") + remarks;
    remarks.append(remarks.empty() || one.remark.empty() ? "" : "\n").append(one.remark);
    if (!remarks.empty())
        put_comment(item, of.language, came(of, remarks));
    if (one.text.empty())
        return;
    put_translation(of, message, item, came(of, one.text));
}

void new_source::put_translation(const catalog &of, const po_message &message, item_t *item,
                                 const std::string &text)
{
    std::uint32_t &count = texts_[of.language];
    lang_entry_t *entry = find_entry(item->langs, of.language.c_str());
    if (entry == nullptr) {
        // Not put_text, which would look for the entry once more.
        entry = alloc_lang_entry(of.language.c_str());
        item->langs = g_list_append(item->langs, entry);
        set_text(entry, text);
        ++count;
        return;
    }
    const std::string before = text_of(entry);
    // The default language has the ids until its catalog comes.
    const bool had_id = of.language == request_.default_language && translated_.insert(item).second;
    const bool is_first = before.empty() || had_id;
    if (!is_first && without_end(before) != without_end(text)) {
        std::string shown;
        append_name(shown, before);
        note(of, message.line, "takes the place of \"" + shown + "\"");
    }
    set_text(entry, text);
    count += is_first ? 1 : 0;
}

fault new_source::take_message(catalog &of, const po_message &message)
{
    const bool is_guess = message.fuzzy && !request_.guesses;
    if (is_guess && std::any_of(message.texts.begin(), message.texts.end(),
                                [](const std::string &text) { return !text.empty(); }))
        ++guesses_;
    if (message.id.plural)
        return take_plural(of, message, is_guess);
    part one{*message.id.text, is_guess ? std::string() : message.texts.front(), {}};
    one.instead = message.reference;
    take_part(of, message, one);
    return {};
}

fault new_source::take_plural(catalog &of, const po_message &message, bool is_guess)
{
    plural_reader::answer forms;
    if (!is_guess)
        forms = message.cases.empty() ? of.plurals.join(message.texts, message.line)
                                      : of.plurals.join_cases(message.cases, message.texts);
    if (forms.wrong)
        return forms.wrong;
    if (has_apart_ids(message.id)) {
        take_apart(of, message, forms);
        return {};
    }
    if (forms.what == plural_reader::outcome::apart)
        note(of, message.line, "a plural form with \"|\": all forms kept as remarks");
    part one{*message.id.text + plural_sign + *message.id.plural, forms.text, forms.remark, true};
    // Sources keep no white space at the end of a text, so no form has any.
    one.instead = std::string(without_end(*message.id.text)) + plural_sign;
    one.instead += without_end(*message.id.plural);
    // What an application asks for by one id is its item, and the default language shows that it is
    // a plural.
    if (*message.id.plural == *message.id.text) {
        one.name = *message.id.text;
        const std::string form(
            without_end(message.reference.empty() ? one.name : message.reference));
        const std::string_view rule = plural_rule_of(request_.default_language);
        one.instead = form;
        for (std::size_t more = count_plural_forms(rule).everyday; more > 1; --more)
            one.instead += plural_sign + form;
    }
    take_part(of, message, one);
    return {};
}

// A plural whose ids cannot stand in one text.
void new_source::take_apart(const catalog &of, const po_message &message,
                            const plural_reader::answer &forms)
{
    note(of, message.line, "a plural's id with \"|\", or without a text: two items");
    take_part(of, message, {*message.id.text, forms.one, forms.remark});
    if (*message.id.plural != *message.id.text)
        take_part(of, message, {*message.id.plural, forms.others, {}});
    if (forms.what == plural_reader::outcome::untranslated)
        return;
    forms_ += message.texts.size() > 2 ? static_cast<std::uint32_t>(message.texts.size()) - 2 : 0;
}

void new_source::note(const catalog &of, std::uint32_t line, const std::string &text)
{
    notes_.push_back(of.path + (line == 0 ? "" : ":" + std::to_string(line)) + ": " + text);
}

std::map<std::string, std::uint32_t> new_source::lacking() const
{
    std::map<std::string, std::uint32_t> lacking;
    for (const auto &[language, items] : met_)
        if (reading_ == from::catalogs && items.size() < source_->item_count)
            lacking[language] = source_->item_count - static_cast<std::uint32_t>(items.size());
    return lacking;
}

fault new_source::take_template(const std::string &path, std::string_view bytes)
{
    po_reader reader(bytes);
    po_message message;
    catalog of;
    of.path = path;
    of.flags = bytes.find("-format") != bytes.npos;
    reading_ = from::a_template;
    fault wrong;
    while (!wrong && reader.next(message)) {
        if (message.obsolete || message.is_header())
            continue;
        // A template has no translations: some tools put the ids there, and no header says how to
        // count.
        message.texts.assign(1, {});
        wrong = take_message(of, message);
    }
    reading_ = from::catalogs_behind_one;
    return wrong ? wrong : reader.wrong();
}

fault new_source::take(const std::string &path, std::string_view bytes)
{
    po_reader reader(bytes);
    po_message message;
    catalog of;
    of.path = path;
    of.flags = bytes.find("-format") != bytes.npos;
    fault wrong;
    while (!wrong && reader.next(message)) {
        // Of several headers, as in catalogs that were joined, the first one counts.
        if (message.is_header() && of.language.empty()) {
            wrong = take_header(of, bytes, message);
            continue;
        }
        if (of.language.empty()) {
            wrong = choose_language(of, {});
            of.plurals.open(of.language, {}, 0);
        }
        obsolete_ += message.obsolete ? 1 : 0;
        if (!wrong && !message.obsolete && !message.is_header())
            wrong = take_message(of, message);
    }
    finish(of);
    return wrong ? wrong : reader.wrong();
}

// Says what became of a catalog's plurals.
void new_source::finish(const catalog &of)
{
    for (const std::string &line : of.plurals.told(true))
        note(of, 0, line);
}

fault new_source::take_ts(const std::string &path, std::string_view bytes)
{
    ts_file file;
    if (fault wrong = read_ts_file(bytes, file))
        return wrong;
    catalog of;
    of.path = path;
    of.own = file.own;
    of.flags = std::any_of(file.messages.begin(), file.messages.end(),
                           [](const po_message &one) { return !one.flags.empty(); });
    // Of the name's code and a longer one in the file, whoever named the file knew which it needs.
    if (const std::string named = code_of_file(path);
        !named.empty() && file.language.code.starts_with(named + "_"))
        file.language.code = named;
    fault wrong = take_messages(of, file.language, file.plural_field, file.messages);
    for (std::size_t i = 0; i < file.notes.size(); ++i)
        if (file.places != 0 && i == file.places_note)
            note_places(of, file.places);
        else
            note(of, 0, file.notes[i]);
    obsolete_ += file.obsolete;
    return wrong;
}

// Files of one project say the same of themselves: they share a line, where the first one stood.
void new_source::note_places(const catalog &of, std::size_t texts)
{
    places_ += texts;
    if (++files_with_places_ == 1) {
        places_note_ = notes_.size();
        return note(of, 0, places_line(texts));
    }
    notes_[places_note_] = counted_words(files_with_places_, "file") + ": " + places_line(places_);
}

fault new_source::take_language(const std::string &path, const said_language &language,
                                const std::vector<po_message> &messages)
{
    catalog of;
    of.path = path;
    of.tells_plurals = false;
    return take_messages(of, language, {}, messages);
}

fault new_source::take_messages(catalog &of, const said_language &language,
                                const std::string &field, const std::vector<po_message> &messages)
{
    fault wrong = choose_language(of, language);
    of.plurals.open(of.language, field, 0);
    for (const po_message &message : messages)
        if (!wrong)
            wrong = take_message(of, message);
    finish(of);
    return wrong;
}

} // namespace zel::exchange
