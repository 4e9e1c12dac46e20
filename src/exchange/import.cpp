#include "exchange/import.h"

#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/po-plural.h"
#include "exchange/po-remarks.h"
#include "langlib/plural-rule.h"
#include "source/entry.h"

#include <algorithm>
#include <map>

namespace zel::exchange {

namespace {

bool same_text(std::string_view a, const char *b) { return b != nullptr && a == b; }

std::string_view language_part(std::string_view code)
{
    return code.substr(0, code.find_first_of("_@"));
}

// Whether the file has the same text as the source: as bytes, or, where these are not UTF-8, as
// they travel.
bool is_same(std::string_view before, std::string_view after)
{
    if (without_end(before) == without_end(after))
        return true;
    if (!must_carry(before, holds::xml))
        return false;
    for (const holds what : {holds::utf8, holds::xml}) {
        std::string carried;
        append_carried(carried, without_end(before), what);
        if (carried == without_end(after))
            return true;
    }
    return false;
}

// The languages of a source that have a code, or the same language in it.
struct code_match {
    const char *whole = nullptr;
    const char *part = nullptr;
    int wholes = 0;
    int parts = 0;
};

code_match match_code(const LangSource &source, const std::string &code)
{
    code_match found;
    for (const lang_t *lang : each<lang_t>(source.langs)) {
        const std::string own = lang->name == nullptr ? "" : code_of(lang->name);
        if (own.empty() || language_part(own) != language_part(code))
            continue;
        found.part = lang->name;
        ++found.parts;
        if (own == code) {
            found.whole = lang->name;
            ++found.wholes;
        }
    }
    return found;
}

bool has_text(const text_unit &unit)
{
    return !unit.text.empty() || std::any_of(unit.forms.begin(), unit.forms.end(),
                                             [](const std::string &form) { return !form.empty(); });
}

} // namespace

encoding encoding_of(const LangSource &source)
{
    return source.format == LANG_SOURCE_UTF8 ? encoding::utf8 : encoding::any;
}

const char *find_language(const LangSource &source, const said_language &said,
                          std::string_view path, const std::string &instead)
{
    if (!instead.empty())
        return find_language(source, {instead, {}}, {});
    // A name counts more than a code: two languages may have one code.
    for (const std::string_view wanted : {std::string_view(said.name), stem_of(path)})
        for (const lang_t *lang : each<lang_t>(source.langs))
            if (!wanted.empty() && same_text(wanted, lang->name))
                return lang->name;
    const std::string own = code_of_file(path);
    const std::string code = said.code.empty() ? own : said.code;
    // A file that is named by a longer code knows better than its header: sr@latin, zh_TW.
    if (is_as_close(own, code))
        if (const code_match longer = match_code(source, own); longer.wholes == 1)
            return longer.whole;
    const code_match found = match_code(source, code);
    // Only one language may fit: a wrong guess would overwrite another one's texts.
    return found.wholes == 1                       ? found.whole
           : found.wholes == 0 && found.parts == 1 ? found.part
                                                   : nullptr;
}

std::string_view shown_name(const said_language &said, std::string_view path)
{
    return !said.name.empty()   ? std::string_view(said.name)
           : !said.code.empty() ? std::string_view(said.code)
                                : stem_of(path);
}

plural_reader::answer join_forms(plural_reader &plurals, text_unit &unit)
{
    plural_reader::answer answer;
    if (unit.forms.empty())
        return answer;
    answer = unit.cases.empty() ? plurals.join(unit.forms, unit.line)
                                : plurals.join_cases(unit.cases, unit.forms);
    unit.text = answer.text;
    if (!answer.remark.empty())
        unit.note.text += (unit.note.text.empty() ? "" : "\n") + answer.remark;
    return answer;
}

importer::importer(LangSource *source, const import_request &request)
    : source_(source), request_(request), items_(source), finder_(source)
{
}

// The unit's language as the source names it; null, said once, for a language that the source
// lacks.
const char *importer::language_of(const file_texts &file, const text_unit &unit,
                                  std::string_view path)
{
    // Each language is looked up, and reported, once for a file.
    while (resolved_.size() <= unit.language) {
        const said_language &said = file.languages[resolved_.size()];
        resolved_.push_back(find_language(*source_, said, path, request_.language));
        if (resolved_.back() == nullptr)
            say(import_kind::unknown_language, unit,
                request_.language.empty() ? shown_name(said, path) : request_.language);
    }
    return resolved_[unit.language];
}

fault importer::take(const format &row, const std::string &path, std::string_view bytes)
{
    resolved_.clear();
    plurals_ = {};
    counted_ = nullptr;
    plural_notes_.clear();
    wrong_ = {};
    finder_.forget();
    deferred_.clear();
    notes_.clear();
    // The name of a file with all languages says nothing about any of them.
    const std::string_view named =
        row.writes == files::per_language && !row.by_code ? path : std::string_view();
    const char *before = nullptr;
    fault wrong =
        row.read(bytes, encoding_of(*source_), [&](const file_texts &file, text_unit &unit) {
            if (resolved_.empty())
                notes_ = file.notes;
            const char *language = wrong_ ? nullptr : language_of(file, unit, named);
            // An item that was meant in one language is offered again in another.
            if (unit.loose && language != before)
                finder_.forget();
            before = language;
            if (language != nullptr && !unit.forms.empty() && language != counted_)
                count_as(language, file.plural_field, file.plural_line);
            if (language != nullptr)
                take_unit(language, unit);
        });
    if (!wrong && !wrong_ && !deferred_.empty())
        take_deferred();
    return wrong_ ? wrong_ : wrong;
}

// Forms are counted in another language from here on.
void importer::count_as(const char *language, const std::string &field, std::uint32_t line)
{
    for (std::string &told : plurals_.told(request_.comments))
        plural_notes_.push_back(std::move(told));
    plurals_.open(language, field, line);
    counted_ = language;
}

// Units of one reference that say different things: nobody knows which item each of them is for.
void importer::find_rivals()
{
    rivals_.clear();
    std::map<unit_name, const text_unit *> first;
    for (const text_unit &unit : deferred_) {
        const auto [at, is_new] = first.emplace(unit_name(unit.language, unit.reference), &unit);
        if (!is_new && (at->second->text != unit.text || at->second->forms != unit.forms))
            rivals_.insert(at->first);
    }
}

void importer::take_deferred()
{
    find_rivals();
    for (text_unit &unit : deferred_) {
        const char *language = resolved_[unit.language];
        if (!unit.forms.empty() && language != counted_)
            count_as(language, {}, 0);
        take_unit(language, unit, true);
    }
}

std::vector<std::string> importer::plural_notes() const
{
    std::vector<std::string> lines = plural_notes_;
    for (std::string &told : plurals_.told(request_.comments))
        lines.push_back(std::move(told));
    return lines;
}

// Puts a plural's forms into one text. False where that cannot be, which is said.
bool importer::join(const char *language, text_unit &unit)
{
    // A guess that will be left out needs no check: its forms are only joined.
    if (unit.forms.empty() || (unit.fuzzy && !request_.guesses)) {
        for (const std::string &form : unit.forms)
            unit.text.append(unit.text.empty() ? "" : "|").append(form);
        return true;
    }
    const plural_reader::answer answer = join_forms(plurals_, unit);
    if (answer.wrong)
        wrong_ = answer.wrong;
    if (answer.what == plural_reader::outcome::apart)
        say(import_kind::unfit, unit, language);
    return !answer.wrong;
}

void importer::take_unit(const char *language, text_unit &unit, bool at_end)
{
    // An empty text never deletes one.
    if (!has_text(unit) && (!request_.comments || unit.note.text.empty())) {
        // But no other message of the file means its item.
        if (unit.loose && !unit.in_group)
            finder_.find(unit.context, unit.reference, unit.code_group, true);
        return;
    }
    const std::vector<item_finder::found> all = items_of(language, unit, at_end);
    if (all.empty() || !join(language, unit))
        return;
    for (const item_finder::found &one : all) {
        // What a foreign catalog does not name is told by its key from here on.
        if (unit.loose) {
            unit.keyed = true;
            unit.group = one.group;
            unit.item = view_of(one.item->name);
        }
        take_text(one.item, language, unit);
        if (request_.comments)
            take_comment(one.item, language, unit);
    }
}

// The items that a unit is for: none, which is said, one, or some with the same text until now.
std::vector<item_finder::found> importer::items_of(const char *language, text_unit &unit,
                                                   bool at_end)
{
    const indexed_item *keyed =
        unit.keyed ? items_.find(unit.group.c_str(), unit.item.c_str()) : nullptr;
    if (keyed != nullptr) {
        unit.loose = false;
        return {{keyed->item, unit.group}};
    }
    std::vector<item_finder::found> all;
    if (unit.loose)
        all = finder_.find(unit.context, unit.reference, unit.code_group, unit.in_group);
    // Both ids of a plural may be one, but no plural is a text without forms.
    if (!unit.forms.empty())
        std::erase_if(all, [&](const item_finder::found &one) {
            return reference_text(*source_, one.item).find(plural_sign) == std::string::npos;
        });
    if (all.empty())
        say(import_kind::unknown_item, unit, language);
    // Some of them may turn out to be other messages of the file.
    if (all.size() > 1 && !at_end) {
        deferred_.push_back(unit);
        return {};
    }
    if (all.size() < 2 ||
        (have_one_text(all, language) && !rivals_.contains({unit.language, unit.reference})))
        return all;
    std::string keys;
    for (const item_finder::found &one : all) {
        keys += keys.empty() ? "" : ", ";
        append_key(keys, one.group, view_of(one.item->name));
    }
    say(import_kind::ambiguous, unit, language, {}, keys);
    return {};
}

bool importer::have_one_text(const std::vector<item_finder::found> &all, const char *language) const
{
    const std::string first = text_of(find_entry(all.front().item->langs, language));
    return std::all_of(all.begin(), all.end(), [&](const item_finder::found &one) {
        return without_end(text_of(find_entry(one.item->langs, language))) == without_end(first);
    });
}

// Whether a text is what the source has. One that came back with more forms or fewer may show the
// same.
bool importer::is_same_text(const char *language, const text_unit &unit,
                            std::string_view before) const
{
    return is_same(before, unit.text) ||
           (!unit.forms.empty() &&
            (shows_the_same(language, without_end(before), without_end(unit.text)) ||
             (unit.cases.empty() && !without_end(before).empty() &&
              plurals_.is_written_as(without_end(before), unit.forms))));
}

bool importer::is_outdated(const text_unit &unit, std::string_view reference) const
{
    if (unit.reference.empty() || unit.by_id || is_same(reference, unit.reference))
        return false;
    if (unit.forms.empty() || reference.find(plural_sign) == reference.npos)
        return true;
    const plural_ids ids = ids_of_plural(reference, view_of(source_->default_lang));
    return !is_same(std::string(ids.one) + plural_sign + std::string(ids.others), unit.reference);
}

void importer::take_text(item_t *item, const char *language, const text_unit &unit)
{
    confirmed_ = false;
    const lang_entry_t *entry = find_entry(item->langs, language);
    std::string buffer;
    const std::string_view own =
        entry == nullptr ? std::string_view() : look_at_text(entry->texts, buffer);
    if (without_end(unit.text).empty())
        return;
    const bool same = is_same_text(language, unit, own);
    if (!unit.fuzzy && !(same && unit.may_be_guess))
        confirm(item, language, unit);
    if (same)
        return;
    if (unit.fuzzy && !request_.guesses) {
        ++guesses_;
        return;
    }
    std::string before(own);
    // Asked before the text changes, which may be the reference itself.
    const std::string reference = reference_text(*source_, item);
    const std::string after(without_end(unit.text));
    put_text(item->langs, language, after);
    item->changed = 1;
    // Somebody has to look at a new text, unless the file says that somebody has.
    if (request_.ready == ready_mark::as_is ? !unit.final : request_.ready == ready_mark::none)
        item->ready = 0;
    ++changed_;
    say(import_kind::text, unit, language, std::move(before), after);
    if (is_outdated(unit, reference))
        say(import_kind::outdated, unit, language, unit.reference, reference);
}

// Takes the mark of a guess off, as somebody has looked at the text.
void importer::confirm(item_t *item, const char *language, const text_unit &unit)
{
    po_id ignored;
    lang_entry_t *comment = find_entry(item->comments, language);
    std::string before = text_of(comment);
    if (!read_fuzzy(before, ignored))
        return;
    std::string after = without_fuzzy(before);
    confirmed_ = true;
    set_text(comment, after);
    ++changed_;
    say(import_kind::comment, unit, language, std::move(before), std::move(after));
}

// Takes a remark. A new one goes below those that are there.
void importer::take_comment(item_t *item, const char *language, const text_unit &unit)
{
    std::string before = text_of(find_entry(item->comments, language));
    std::string note(without_end(unit.note.text));
    if (const std::string marks = unit.note.lacks_marks ? marks_of(before) : ""; !marks.empty())
        note = note.empty() ? note : marks + "\n" + note;
    else if (confirmed_)
        note = without_fuzzy(note);
    if (note.empty() || is_same(before, note))
        return;
    std::string after = note;
    if (!unit.note.replaces && !before.empty()) {
        // Importing a file twice must not repeat its remarks.
        if (before.find(note) != std::string::npos)
            return;
        after = std::string(without_end(before)) + "\n" + after;
    }
    put_text(item->comments, language, after);
    ++changed_;
    say(import_kind::comment, unit, language, std::move(before), std::move(after));
}

void importer::say(import_kind kind, const text_unit &unit, std::string_view language,
                   std::string before, std::string after)
{
    if (request_.hear)
        request_.hear({kind, &unit, language, std::move(before), std::move(after)});
}

} // namespace zel::exchange
