#include "exchange/carry.h"
#include "exchange/key.h"
#include "exchange/keyed-file.h"
#include "exchange/language-code.h"
#include "exchange/plural-header.h"
#include "exchange/ts.h"
#include "exchange/xml-read.h"
#include "langlib/plural-rule.h"
#include "support/cut.h"

#include <algorithm>
#include <unordered_map>

#include <glib.h>

namespace zel::exchange {

namespace {

enum class ts_part {
    other,
    ts,
    context,
    message,
    location,
    byte,
    // Those that hold a text.
    language_name,
    name,
    source,
    old_source,
    comment,
    old_comment,
    extra_comment,
    translator_comment,
    translation,
    numerus_form,
    length_variant,
    plural_id,
    flags
};

constexpr struct {
    std::string_view name;
    ts_part kind;
    ts_part parent;
} ts_parts[] = {
    {"TS", ts_part::ts, ts_part::other},
    {"extra-language-name", ts_part::language_name, ts_part::ts},
    {"context", ts_part::context, ts_part::other},
    {"name", ts_part::name, ts_part::context},
    {"message", ts_part::message, ts_part::other},
    {"location", ts_part::location, ts_part::message},
    {"source", ts_part::source, ts_part::message},
    {"oldsource", ts_part::old_source, ts_part::message},
    {"comment", ts_part::comment, ts_part::message},
    {"oldcomment", ts_part::old_comment, ts_part::message},
    {"extracomment", ts_part::extra_comment, ts_part::message},
    {"translatorcomment", ts_part::translator_comment, ts_part::message},
    {"translation", ts_part::translation, ts_part::message},
    {"numerusform", ts_part::numerus_form, ts_part::translation},
    {"lengthvariant", ts_part::length_variant, ts_part::other},
    {"extra-po-msgid_plural", ts_part::plural_id, ts_part::message},
    {"extra-po-flags", ts_part::flags, ts_part::message},
    {"byte", ts_part::byte, ts_part::other},
};

ts_part ts_part_of(std::string_view name, ts_part parent)
{
    for (const auto &row : ts_parts)
        if (row.name == name)
            return row.parent == ts_part::other || row.parent == parent ? row.kind : ts_part::other;
    return ts_part::other;
}

// A message as it stands there.
struct raw_message {
    po_message message;
    std::string context;
    std::optional<std::string> comment;
    std::string id;
    bool numerus = false;
};

void append_lines(std::vector<std::string> &lines, std::string_view text)
{
    while (!text.empty())
        lines.emplace_back(cut_at(text, '\n'));
}

struct ts_reader final : xml_walker {
    std::string code;
    std::optional<std::string> language_name;
    std::vector<raw_message> messages;
    std::uint32_t obsolete = 0;
    std::uint32_t variants_left_out = 0;

    std::vector<ts_part> path; // from the root to the element that is open
    std::vector<std::string> contexts;
    raw_message raw;
    bool is_obsolete = false;
    std::vector<std::string> variants; // of the open text, by length
    std::string text;
    std::size_t text_depth = 0; // 0: no text is open
    // Lines may be told by how far they are from the last one of their file.
    std::unordered_map<std::string, std::int64_t> last_lines;
    std::string first_file; // of the last message that names one
    std::string file;       // of the last place

    bool open(std::string_view name) override;
    bool close() override;
    bool add(std::string_view piece) override;
    bool open_in_text(ts_part kind);
    void open_message();
    void open_location();
    void close_text(ts_part kind);
    std::string take_text();
    void close_message();
};

void ts_reader::open_message()
{
    raw = {};
    raw.numerus = attribute("numerus") == "yes";
    raw.id = attribute("id");
    raw.message.line = element_line();
    raw.message.id.text.emplace();
    raw.context = contexts.empty() ? std::string() : contexts.back();
    is_obsolete = false;
    file = first_file;
}

void ts_reader::open_location()
{
    if (std::string named = attribute("filename"); !named.empty()) {
        file = std::move(named);
        if (raw.message.references.empty())
            first_file = file;
    }
    const std::string told = attribute("line");
    std::int64_t number = g_ascii_strtoll(told.c_str(), nullptr, 10);
    // Sums of hostile numbers stay in bounds, too.
    number = std::clamp<std::int64_t>(number, -1'000'000'000, 1'000'000'000);
    if (told.starts_with('+') || told.starts_with('-')) {
        std::int64_t &last = last_lines[file];
        last = std::clamp<std::int64_t>(last + number, 0, 1'000'000'000);
        number = last;
    }
    if (!file.empty())
        raw.message.references.push_back(
            told.empty() ? file : file + ":" + std::to_string(std::max<std::int64_t>(number, 0)));
}

// Inside a text stand characters, and a translation's forms and lengths.
bool ts_reader::open_in_text(ts_part kind)
{
    if (kind == ts_part::byte) {
        const std::string value = attribute("value");
        const bool is_hex = value.starts_with('x');
        const std::string character = text_of_code(
            g_ascii_strtoll(value.c_str() + (is_hex ? 1 : 0), nullptr, is_hex ? 16 : 10));
        text += character;
        return !character.empty() || fail("a byte that is none");
    }
    return kind == ts_part::numerus_form || kind == ts_part::length_variant ||
           fail("an element inside a text");
}

bool ts_reader::open(std::string_view name)
{
    const ts_part parent = path.empty() ? ts_part::other : path.back();
    const ts_part kind = ts_part_of(name, parent);
    if (path.empty() && kind != ts_part::ts)
        return fail("no TS");
    if (text_depth != 0 && !open_in_text(kind))
        return false;
    if (kind == ts_part::ts)
        code = attribute("language");
    else if (kind == ts_part::context)
        contexts.emplace_back();
    else if (kind == ts_part::message)
        open_message();
    else if (kind == ts_part::location)
        open_location();
    if (kind == ts_part::translation) {
        const std::string type = attribute("type");
        raw.message.fuzzy = type == "unfinished";
        is_obsolete = type == "obsolete" || type == "vanished";
    }
    path.push_back(kind);
    if (kind >= ts_part::language_name) {
        text.clear();
        text_depth = path.size();
    }
    if (kind == ts_part::translation || kind == ts_part::numerus_form)
        variants.clear();
    return true;
}

bool ts_reader::add(std::string_view piece)
{
    if (text_depth == path.size())
        text += piece;
    // Many small pieces can add up, so the whole is measured.
    return text.size() <= largest_text || fail("a text of more than 8 MB");
}

// The open text; of several lengths the first, which is the longest. The others are remarks.
std::string ts_reader::take_text()
{
    for (std::size_t at = 1; at < variants.size(); ++at) {
        raw.message.remarks.push_back("length variant: " + variants[at]);
        ++variants_left_out;
    }
    std::string out = variants.empty() ? std::move(text) : std::move(variants.front());
    variants.clear();
    text.clear();
    return out;
}

void ts_reader::close_text(ts_part kind)
{
    po_message &message = raw.message;
    if (kind == ts_part::language_name)
        language_name = std::move(text);
    else if (kind == ts_part::name && !contexts.empty())
        contexts.back() = std::move(text);
    else if (kind == ts_part::source)
        message.id.text = std::move(text);
    else if (kind == ts_part::old_source)
        message.previous.text = std::move(text);
    else if (kind == ts_part::comment)
        raw.comment = std::move(text);
    else if (kind == ts_part::old_comment)
        message.previous.context = std::move(text);
    else if (kind == ts_part::extra_comment)
        append_lines(message.extracted, text);
    else if (kind == ts_part::translator_comment)
        append_lines(message.remarks, text);
    else if (kind == ts_part::length_variant)
        variants.push_back(std::move(text));
    else if (kind == ts_part::numerus_form && message.texts.size() == most_plural_forms)
        fail("more than 64 plural forms");
    else if (kind == ts_part::numerus_form ||
             (kind == ts_part::translation && message.texts.empty()))
        message.texts.push_back(take_text());
    else if (kind == ts_part::plural_id)
        message.id.plural = std::move(text);
    else if (kind == ts_part::flags)
        for (std::string_view rest = text; !rest.empty();) {
            std::string_view flag = cut_at(rest, ',');
            flag.remove_prefix(std::min(flag.find_first_not_of(' '), flag.size()));
            if (!flag.empty())
                message.flags.emplace_back(flag);
        }
    text.clear();
}

void ts_reader::close_message()
{
    obsolete += is_obsolete ? 1 : 0;
    if (is_obsolete)
        return;
    std::vector<std::string> &texts = raw.message.texts;
    if (texts.empty() || !raw.numerus)
        texts.resize(1);
    if (!raw.numerus)
        raw.message.id.plural.reset();
    else if (!raw.message.id.plural)
        raw.message.id.plural = raw.message.id.text;
    messages.push_back(std::move(raw));
}

bool ts_reader::close()
{
    const ts_part kind = path.back();
    if (kind >= ts_part::language_name) {
        close_text(kind);
        text_depth = 0;
        // Behind a length's text its form may go on, and behind that the translation.
        if (kind == ts_part::length_variant || kind == ts_part::numerus_form)
            text_depth = path.size() - 1;
    } else if (kind == ts_part::message) {
        close_message();
    } else if (kind == ts_part::context && !contexts.empty()) {
        contexts.pop_back();
    }
    path.pop_back();
    return true;
}

// Whether a text has places for arguments, "%n" or "%1", which printf takes for something else.
bool has_places(std::string_view text)
{
    for (std::size_t at = text.find('%'); at != text.npos; at = text.find('%', at + 1)) {
        std::string_view rest = text.substr(at + 1);
        rest.remove_prefix(rest.starts_with('L') ? 1 : 0);
        const std::size_t digits = std::min(rest.find_first_not_of("0123456789"), rest.size());
        if (rest.starts_with('n') ||
            (digits != 0 && rest.front() != '0' && rest.substr(digits, 1) != "$"))
            return true;
    }
    return false;
}

// "de_DE" says no more than "de".
std::string short_code(const std::string &code)
{
    const std::size_t end = code.find('_');
    std::string country = end == code.npos ? "" : code.substr(end + 1);
    std::transform(country.begin(), country.end(), country.begin(), g_ascii_tolower);
    return country == code.substr(0, end) ? country : code;
}

// Gives each message its group and name, and its forms their number.
class resolver {
public:
    resolver(std::vector<raw_message> &all, ts_file &file) : all_(all), file_(file) {}
    fault run();

private:
    static bool is_by_id(const raw_message &raw)
    {
        return !raw.id.empty() && (raw.context.empty() || raw.message.id.text->empty());
    }
    static std::string place_of(const raw_message &raw)
    {
        return is_by_id(raw) ? "id" + ('\0' + raw.id)
                             : raw.context + '\0' + *raw.message.id.text + '\0';
    }
    fault find_equals();
    void name_own(raw_message &raw) const;
    void name(raw_message &raw);
    void count_forms();

    std::vector<raw_message> &all_;
    ts_file &file_;
    std::unordered_map<std::string, std::uint32_t> lines_;    // by context, source and comment
    std::unordered_map<std::string, std::uint32_t> together_; // of one context and source
    std::size_t told_apart_ = 0;
    std::size_t places_ = 0;
};

fault resolver::find_equals()
{
    for (const raw_message &raw : all_) {
        const std::string place = place_of(raw);
        ++together_[place];
        const auto &[before, added] = lines_.emplace(
            is_by_id(raw) ? place : place + raw.comment.value_or(""), raw.message.line);
        if (!added)
            return {raw.message.line,
                    std::string(is_by_id(raw) ? "the same id as on line "
                                              : "the same context, source and comment as "
                                                "on line ") +
                        std::to_string(before->second)};
    }
    return {};
}

void resolver::name_own(raw_message &raw) const
{
    po_id &id = raw.message.id;
    std::string item =
        id.plural && *id.plural != *id.text ? *id.text + plural_sign + *id.plural : *id.text;
    if (raw.comment)
        item = *raw.comment == ts_empty_name ? std::string() : *raw.comment;
    uncarry(raw.context, encoding::any);
    uncarry(item, encoding::any);
    append_key(id.context.emplace(), raw.context, item);
}

void resolver::name(raw_message &raw)
{
    po_message &message = raw.message;
    const std::string place = place_of(raw);
    places_ += has_places(*message.id.text) ? 1 : 0;
    if (!raw.context.empty())
        message.id.context = raw.context;
    else
        message.group = "messages";
    if (is_by_id(raw)) {
        message.reference = std::move(*message.id.text);
        message.id.text = raw.id;
        if (message.id.plural)
            message.id.plural = raw.id;
    } else if (!raw.id.empty()) {
        message.extracted.push_back("id: " + raw.id);
    }
    if (!raw.comment || raw.comment->empty())
        return;
    message.told_apart = *raw.comment;
    if (together_[place] == 1) {
        message.extracted.insert(message.extracted.begin(), *raw.comment);
        return;
    }
    ++told_apart_;
    message.group = (raw.context.empty() ? "messages" : raw.context) + "|" + *raw.comment;
}

// Makes all plurals have as many forms: what lacks is empty, and what the toolkit has no number for
// is kept, as forms that no number takes. One without these lacks nothing.
void resolver::count_forms()
{
    plural_header header;
    header.read(file_.plural_field);
    std::size_t count = header.count;
    for (const po_message &message : file_.messages)
        for (std::size_t at = 0; message.id.plural && at < message.texts.size(); ++at)
            if (!message.texts[at].empty())
                count = std::max(count, at + 1);
    if (count > header.count && header.count != 0)
        file_.plural_field.replace(0, file_.plural_field.find(';'),
                                   "nplurals=" + std::to_string(count));
    for (po_message &message : file_.messages)
        if (message.id.plural) {
            const bool is_whole = header.count != 0 && message.texts.size() >= header.count;
            const std::string rest = is_whole ? message.texts[header.count - 1] : std::string();
            message.texts.resize(std::max<std::size_t>(count, 1), rest);
        }
}

fault resolver::run()
{
    if (fault wrong = find_equals())
        return wrong;
    std::size_t nameless = 0;
    for (raw_message &raw : all_) {
        const bool is_nameless = !file_.own && raw.message.id.text->empty() && raw.id.empty();
        nameless += is_nameless ? 1 : 0;
        if (is_nameless)
            continue;
        if (file_.own)
            name_own(raw);
        else
            name(raw);
        file_.messages.push_back(std::move(raw.message));
    }
    count_forms();
    if (told_apart_ != 0)
        file_.notes.push_back(counted_words(told_apart_, "message") +
                              " told apart by a comment: the groups are \"context|comment\"");
    if (places_ != 0) {
        file_.places = places_;
        file_.places_note = file_.notes.size();
        file_.notes.push_back(places_line(places_));
    }
    if (nameless != 0)
        file_.notes.push_back("left out " + counted_words(nameless, "message") +
                              " without a source or an id");
    return {};
}

text_unit unit_of(po_message &&message, bool own, encoding good)
{
    text_unit unit;
    const po_id &id = message.id;
    const std::string base = id.context ? *id.context : "messages";
    if (own) {
        unit.keyed = split_key(base, unit.group, unit.item);
    } else {
        // Its place by name is looked at first, then who else has the text.
        unit.keyed = unit.loose = unit.by_id = true;
        unit.group = message.group ? *message.group : base;
        unit.item = *id.text;
        unit.context = base;
    }
    unit.reference = *id.text;
    if (id.plural && (own || *id.plural != *id.text))
        unit.reference += plural_sign + *id.plural;
    if (id.plural)
        unit.forms = std::move(message.texts);
    else
        unit.text = std::move(message.texts.front());
    unit.fuzzy = message.fuzzy;
    unit.final = !message.fuzzy;
    for (std::size_t at = 0; at < message.remarks.size(); ++at)
        unit.note.text.append(at == 0 ? "" : "\n").append(message.remarks[at]);
    unit.note.replaces = unit.note.lacks_marks = own;
    unit.line = message.line;
    for (std::string &form : unit.forms)
        uncarry(form, good);
    for (std::string *text : {&unit.reference, &unit.text, &unit.note.text})
        uncarry(*text, good);
    return unit;
}

} // namespace

std::string places_line(std::size_t texts)
{
    return counted_words(texts, "text") + " with %n or %1, which printf takes for something else";
}

fault read_ts_file(std::string_view bytes, ts_file &file)
{
    ts_reader reader;
    if (fault wrong = reader.walk(bytes, "TS", "TS"))
        return wrong;
    file.own = reader.language_name.has_value();
    if (file.own)
        read_name(*reader.language_name, file.language.name);
    file.language.code = short_code(code_of_xml(reader.code));
    file.plural_field = ts_plural_field(file.language.code);
    file.obsolete = reader.obsolete;
    if (reader.variants_left_out != 0)
        file.notes.push_back(counted_words(reader.variants_left_out, "shorter text") +
                             " beside the longest kept as remarks");
    return resolver(reader.messages, file).run();
}

fault read_ts(std::string_view bytes, encoding good, const text_listener &hear)
{
    ts_file whole;
    if (fault wrong = read_ts_file(bytes, whole))
        return wrong;
    file_texts file;
    file.languages.push_back(whole.language);
    file.plural_field = whole.plural_field;
    file.notes = whole.notes;
    for (po_message &message : whole.messages) {
        text_unit unit = unit_of(std::move(message), whole.own, good);
        hear(file, unit);
    }
    return {};
}

} // namespace zel::exchange
