#include "kit/support/donor.h"

#include "exchange/import.h"
#include "exchange/po-read.h"
#include "exchange/po.h"
#include "kit/support/new-from-catalogs.h"
#include "kit/support/output.h"
#include "kit/support/sources.h"
#include "lint/text.h"
#include "source/entry.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace zel::kit {

namespace {

std::uint32_t key_hash(std::string_view group, std::string_view item)
{
    return hash_of(item) ^ hash_of(group) * 0x85EBCA6BU;
}

// Format of a file that is not a source; null for a source.
const char *format_of(std::string_view path)
{
    constexpr struct {
        std::string_view ending;
        const char *format;
    } endings[] = {{".po", "po"},   {".xliff", "xliff"}, {".xlf", "xliff"}, {".ts", "ts"},
                   {".tmx", "tmx"}, {".tbx", "tbx"},     {".csv", "csv"}};
    for (const auto &row : endings)
        if (path.ends_with(row.ending))
            return row.format;
    return nullptr;
}

bool is_ascii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

} // namespace

donor::~donor() { keep_to_the_end(std::move(source_)); }

bool donor::read(const std::string &path, const LangSource &source, const std::string &language)
{
    path_ = path;
    const char *format = format_of(path);
    if (format == nullptr) {
        source_ = kit::read(path);
        if (!source_)
            return false;
        same_encoding_ = exchange::encoding_of(*source_) == exchange::encoding_of(source);
        entries_.emplace(source_.get());
        return true;
    }
    exchange::read_answer answer =
        exchange::read_file_texts(format, path, exchange::encoding_of(source));
    if (answer.wrong)
        say_fault(path, answer.wrong);
    file_ = std::move(answer.file);
    const bool is_read = !answer.wrong && (std::string_view(format) != "po" || take_obsolete());
    // Only where a file holds one language may the file's name tell which.
    const bool by_name = file_.languages.size() == 1 && !exchange::find_format(format)->by_code;
    const std::string_view named = by_name ? path : std::string_view();
    for (const exchange::said_language &said : file_.languages)
        languages_.push_back(view_of(exchange::find_language(source, said, named, language)));
    return is_read && join_plurals();
}

// Adds the messages of a catalog that its program no longer has. False after a line on standard
// error.
bool donor::take_obsolete()
{
    std::string bytes;
    exchange::fault wrong = exchange::read_input(path_, bytes);
    exchange::po_reader reader(bytes);
    exchange::po_message message;
    file_.languages.resize(1); // no message in use has told it in a catalog that has none
    while (!wrong && reader.next(message)) {
        if (message.is_header() && !message.obsolete)
            exchange::take_po_header(message, bytes, file_);
        if (!message.obsolete || message.is_header() || message.fuzzy)
            continue;
        exchange::text_unit unit;
        unit.reference = *message.id.text;
        unit.line = message.line;
        if (message.id.plural) {
            unit.reference.append(1, '|').append(*message.id.plural);
            unit.forms = message.texts;
        } else {
            unit.text = message.texts.front();
        }
        file_.units.push_back(std::move(unit));
    }
    if (!wrong)
        wrong = reader.wrong();
    if (wrong)
        say_fault(path_, wrong);
    return !wrong;
}

// Puts the forms of each plural into one text. False after a line on standard error.
bool donor::join_plurals()
{
    exchange::plural_reader plurals;
    if (!languages_.empty())
        plurals.open(languages_.front(), file_.plural_field, file_.plural_line);
    for (exchange::text_unit &unit : file_.units)
        if (const exchange::fault wrong = exchange::join_forms(plurals, unit).wrong) {
            say_fault(path_, wrong);
            return false;
        }
    return true;
}

bool donor::knows_language() const
{
    if (source_ || std::any_of(languages_.begin(), languages_.end(),
                               [](std::string_view name) { return !name.empty(); }))
        return true;
    std::string names;
    for (const exchange::said_language &said : file_.languages)
        names += (names.empty() ? " " : ", ") + shown(exchange::shown_name(said, path_));
    std::fprintf(stderr, "%s: unknown language%s\n", path_.c_str(), names.c_str());
    return false;
}

void donor::choose(const char *language)
{
    offers_.clear();
    are_compared_ = false;
    compared_.clear();
    compared_offers_.clear();
    alike_ = {};
    joined_.clear();
    keys_ = {};
    references_ = {};
    if (source_)
        offer_source(language);
    else
        offer_units(language);
}

// A text in one piece; copied only if it has several strings.
std::string_view donor::joined(GList *texts)
{
    if (texts == nullptr)
        return {};
    if (texts->next == nullptr)
        return view_of(static_cast<const char *>(texts->data));
    append_texts(joined_.emplace_back(), texts);
    return joined_.back();
}

void donor::offer_source(const char *language)
{
    for (const edit_t *group : each<edit_t>(source_->groups))
        for (const item_t *item : each<item_t>(group->items)) {
            const lang_entry_t *entry = entries_->find(item, language);
            if (entry == nullptr)
                continue;
            const lang_entry_t *reference = entries_->find(item, source_->default_lang);
            const std::string_view name = view_of(item->name);
            add({true, view_of(group->name), name,
                 reference == nullptr ? name : joined(reference->texts), joined(entry->texts)});
        }
}

void donor::offer_units(const char *language)
{
    for (const exchange::text_unit &unit : file_.units)
        // A fuzzy text is a guess, and no guess is filled in.
        if (languages_[unit.language] == language && !unit.fuzzy)
            add({unit.keyed, unit.group, unit.item, unit.reference, unit.text});
}

// Adds an offer. Of several texts for one key or reference, the first one counts.
void donor::add(const offer &one)
{
    if (lint::look_at(one.text).is_blank())
        return;
    // In another encoding the bytes are other characters; only ASCII is the same everywhere.
    if (!same_encoding_ && !is_ascii(one.text)) {
        ++foreign_;
        return;
    }
    const auto at = static_cast<std::uint32_t>(offers_.size());
    const bool new_key = one.keyed && by_key(one.group, one.item).empty();
    const bool new_reference = !one.reference.empty() && by_reference(one.reference).empty();
    offers_.push_back(one);
    if (new_key)
        keys_.add(key_hash(one.group, one.item), at);
    if (new_reference)
        references_.add(hash_of(one.reference), at);
}

std::string_view donor::by_key(std::string_view group, std::string_view item) const
{
    const std::uint32_t at = keys_.find(key_hash(group, item), [&](std::uint32_t candidate) {
        return offers_[candidate].group == group && offers_[candidate].item == item;
    });
    return at == hash_index::none ? std::string_view() : offers_[at].text;
}

std::string_view donor::by_reference(std::string_view reference) const
{
    const std::uint32_t at = references_.find(hash_of(reference), [&](std::uint32_t candidate) {
        return offers_[candidate].reference == reference;
    });
    return at == hash_index::none ? std::string_view() : offers_[at].text;
}

void donor::compare_references()
{
    are_compared_ = true;
    for (std::uint32_t at = 0; at < offers_.size(); ++at) {
        // Of several texts for one reference the first one counts.
        if (offers_[at].reference.empty() ||
            by_reference(offers_[at].reference).data() != offers_[at].text.data())
            continue;
        const auto place = static_cast<std::uint32_t>(compared_.size());
        compared_.emplace_back(offers_[at].reference);
        compared_offers_.push_back(at);
        alike_.add(place, compared_.back());
    }
}

donor::near_text donor::by_likeness(const compared_text &reference, unsigned at_least)
{
    if (!are_compared_)
        compare_references();
    near_text best;
    for (const std::uint32_t place : alike_.likeliest(reference)) {
        const unsigned wanted = std::max(at_least, best.likeness + 1);
        const unsigned likeness = reference.likeness(compared_[place], wanted);
        const offer &one = offers_[compared_offers_[place]];
        if (likeness >= wanted)
            best = {one.reference, one.text, likeness};
    }
    return best;
}

} // namespace zel::kit
