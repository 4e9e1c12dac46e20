#include "exchange/key.h"
#include "exchange/keyed-file.h"
#include "exchange/language-code.h"
#include "exchange/tbx.h"
#include "exchange/xliff.h"
#include "exchange/xml-read.h"
#include "source/entry.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace zel::exchange {

namespace {

struct entry_language {
    std::string code;
    std::vector<std::string> terms;
    std::vector<std::string> notes;
    bool is_kept = false;
};

struct term_entry {
    std::string id;
    std::uint32_t line = 0;
    std::vector<std::string> descriptions;
    std::vector<entry_language> languages;

    // The one in that language, or in a variant of it; null where there is none with a term.
    const entry_language *in(std::string_view code) const
    {
        const entry_language *variant = nullptr;
        for (const entry_language &one : languages) {
            if (!one.terms.empty() && one.code == code)
                return &one;
            if (!one.terms.empty() && variant == nullptr &&
                one.code.substr(0, one.code.find('_')) == code.substr(0, code.find('_')))
                variant = &one;
        }
        return variant;
    }
};

// Line ends and indents of a file are blanks in a term.
std::string on_one_line(std::string_view text)
{
    std::string out;
    for (const char c : text)
        if (std::string_view(" \t\r\n").find(c) == std::string_view::npos)
            out += c;
        else if (!out.empty() && out.back() != ' ')
            out += ' ';
    return std::string(without_end(out));
}

std::string joined_terms(const entry_language &one)
{
    if (one.is_kept)
        return "keep";
    std::string out;
    for (const std::string &term : one.terms)
        out.append(out.empty() ? "" : "/").append(term);
    return out;
}

bool is_bad(std::string_view status)
{
    constexpr std::string_view words[] = {"forbidden",  "deprecated",     "superseded",
                                          "obsolete",   "notRecommended", "unacceptable",
                                          "notAdmitted"};
    return std::any_of(std::begin(words), std::end(words),
                       [&](std::string_view word) { return status.find(word) != status.npos; });
}

class tbx_reader final : public xml_walker {
public:
    using listener = std::function<void(const tbx_reader &file, const term_entry &entry)>;
    explicit tbx_reader(const listener &hear) : hear_(hear) {}

    const std::string &source() const { return source_; } // code
    const std::string &name() const { return name_; }     // of the language, in own files
    bool is_own() const { return is_own_; }
    std::size_t bad() const { return bad_; }
    std::size_t unsplit() const { return unsplit_; }

private:
    bool open(std::string_view name) override
    {
        path_.emplace_back(name);
        if (path_.size() == 1) {
            source_ = code_of_xml(attribute("xml:lang"));
            return name == "martif" || name == "tbx" || fail_at(element_line(), "no TBX");
        }
        // Inside a text there are only tags.
        if (text_depth_ != 0)
            return true;
        if (name == "termEntry" || name == "conceptEntry") {
            entry_ = {};
            entry_.id = attribute("id");
            entry_.line = element_line();
            is_in_entry_ = true;
        } else if (name == "langSet" || name == "langSec") {
            entry_.languages.push_back({code_of_xml(attribute("xml:lang")), {}, {}});
        } else if (name == "tig" || name == "ntig" || name == "termSec") {
            open_term();
        } else if (is_text(name)) {
            type_ = attribute("type");
            text_.clear();
            text_depth_ = path_.size();
        }
        return true;
    }

    bool is_text(std::string_view name) const
    {
        if (name == "p")
            return path_[path_.size() - 2] == "sourceDesc";
        return is_in_entry_ &&
               (name == "term" || name == "descrip" || name == "definition" || name == "note" ||
                name == "termNote" || name == "administrativeStatus");
    }

    void open_term()
    {
        is_in_term_ = !entry_.languages.empty();
        is_bad_ = false;
        terms_before_ = is_in_term_ ? entry_.languages.back().terms.size() : 0;
    }

    bool close() override
    {
        const std::string name = std::move(path_.back());
        path_.pop_back();
        if (path_.size() + 1 == text_depth_) {
            text_depth_ = 0;
            take_text(name);
        } else if (text_depth_ == 0 && (name == "tig" || name == "ntig" || name == "termSec")) {
            close_term();
        } else if (text_depth_ == 0 && (name == "termEntry" || name == "conceptEntry")) {
            is_in_entry_ = false;
            hear_(*this, entry_);
            entry_ = {};
        }
        return true;
    }

    bool add(std::string_view text) override
    {
        if (text_depth_ != 0)
            text_ += text;
        return text_.size() <= largest_text || fail("a text of more than 8 MB");
    }

    void close_term()
    {
        is_in_term_ = false;
        if (!is_bad_ || entry_.languages.empty())
            return;
        std::vector<std::string> &terms = entry_.languages.back().terms;
        bad_ += terms.size() - terms_before_;
        terms.resize(terms_before_);
    }

    void take_text(const std::string &name)
    {
        entry_language *in = entry_.languages.empty() ? nullptr : &entry_.languages.back();
        if (name == "p") {
            is_own_ = text_.starts_with("lang-kit ");
            if (is_own_)
                read_name(std::string_view(text_).substr(9), name_);
        } else if (name == "term") {
            const std::string term = on_one_line(text_);
            unsplit_ += term.find('/') == term.npos ? 0 : 1;
            if (in != nullptr && !term.empty())
                in->terms.push_back(term);
        } else if (name == "note") {
            take_note(in);
        } else if (name == "descrip" || name == "definition") {
            const bool is_plain = type_.empty() || type_ == "definition";
            add_line(entry_.descriptions, (is_plain ? "" : type_ + ": ") + text_);
        } else if (type_ == "administrativeStatus" || name == "administrativeStatus") {
            is_bad_ = is_bad_ || is_bad(text_);
        }
    }

    void take_note(entry_language *in)
    {
        if (in != nullptr && is_in_term_ && text_ == "keep")
            in->is_kept = true;
        else
            add_line(in == nullptr ? entry_.descriptions : in->notes, text_);
    }

    static void add_line(std::vector<std::string> &to, std::string_view text)
    {
        const std::string_view line = without_end(text);
        if (!line.empty())
            to.emplace_back(line);
    }

    const listener &hear_;
    std::string source_;
    std::string name_;
    bool is_own_ = false;
    std::vector<std::string> path_;
    std::string type_; // of the open text
    std::string text_;
    std::size_t text_depth_ = 0; // 0: none is open
    term_entry entry_;
    bool is_in_entry_ = false;
    bool is_in_term_ = false;
    bool is_bad_ = false; // the open term
    std::size_t terms_before_ = 0;
    std::size_t bad_ = 0;
    std::size_t unsplit_ = 0; // terms that look like two
};

// Puts blanks in the place of a document type that only names a file, which is never looked for.
std::string without_tbx_type(std::string_view bytes)
{
    std::string out(bytes);
    const std::size_t at = out.find("<!DOCTYPE ");
    const std::size_t end = out.find('>', at);
    if (at == out.npos || end == out.npos || at > std::min(out.find("<martif"), out.find("<tbx")))
        return out;
    const std::string_view type = std::string_view(out).substr(at, end + 1 - at);
    if ((type.starts_with("<!DOCTYPE martif ") || type.starts_with("<!DOCTYPE tbx ")) &&
        type.find_first_of("[<", 1) == type.npos)
        // Lines stay where they are.
        std::replace_if(
            out.begin() + static_cast<std::ptrdiff_t>(at),
            out.begin() + static_cast<std::ptrdiff_t>(end + 1), [](char c) { return c != '\n'; },
            ' ');
    return out;
}

// The entry's language that the others translate: the file's, or else the first.
const entry_language *source_of(const tbx_reader &file, const term_entry &entry)
{
    // Languages without a code look the same.
    if (file.is_own() && !entry.languages.empty())
        return entry.languages.data();
    const entry_language *found = file.source().empty() ? nullptr : entry.in(file.source());
    return found != nullptr || entry.languages.empty() ? found : entry.languages.data();
}

std::vector<std::string> notes_of(const tbx_reader &file)
{
    std::vector<std::string> notes;
    if (file.bad() != 0)
        notes.push_back("left out " + counted_words(file.bad(), "term") +
                        " that nobody should use");
    if (file.unsplit() != 0)
        notes.push_back(counted_words(file.unsplit(), "term") + " with \"/\", which stands between "
                                                                "terms in a text");
    return notes;
}

// The item of an entry, where lang-kit wrote it.
bool read_entry_key(const tbx_reader &file, const term_entry &entry, std::string &group,
                    std::string &item)
{
    std::string key;
    return file.is_own() && entry.id.starts_with('t') &&
           read_xliff_id(std::string_view(entry.id).substr(1), key) && split_key(key, group, item);
}

// The texts of an entry in all languages but its source's.
class unit_maker {
public:
    void add(const tbx_reader &reader, const term_entry &entry)
    {
        const entry_language *source = source_of(reader, entry);
        if (source == nullptr)
            return;
        text_unit unit;
        unit.line = entry.line;
        unit.keyed = read_entry_key(reader, entry, unit.group, unit.item);
        unit.loose = !reader.is_own();
        unit.note.replaces = reader.is_own();
        for (const entry_language &one : entry.languages) {
            if (&one == source || one.terms.empty())
                continue;
            unit.language = language_at(reader, one.code);
            unit.text = joined_terms(one);
            unit.note.text = joined(one.notes);
            // What one concept is called in several ways is called the same in all of them.
            for (const std::string &term : source->terms) {
                unit.reference = term;
                units_.push_back(unit);
            }
        }
    }

    void tell(const tbx_reader &reader, const text_listener &hear)
    {
        file_.notes = notes_of(reader);
        for (text_unit &unit : units_)
            hear(file_, unit);
    }

private:
    std::uint32_t language_at(const tbx_reader &reader, const std::string &code)
    {
        const auto next = static_cast<std::uint32_t>(file_.languages.size());
        const auto [found, added] = places_.emplace(code, next);
        if (added)
            file_.languages.push_back({reader.name(), code});
        return found->second;
    }

    file_texts file_;
    std::vector<text_unit> units_;
    std::unordered_map<std::string, std::uint32_t> places_; // of languages, by code
};

// The messages of each language, for a new source.
class message_maker {
public:
    explicit message_maker(std::string code) : code_(std::move(code)) {}

    void add(const tbx_reader &file, const term_entry &entry)
    {
        const entry_language *source = file.is_own() ? source_of(file, entry) : entry.in(code_);
        if (source == nullptr || source->terms.empty()) {
            ++without_;
            return;
        }
        for (const entry_language &one : entry.languages)
            for (const std::string &term : source->terms)
                if (&one != source && !one.terms.empty())
                    add_to(message_for(file, entry, one, term), entry, *source, one);
    }

    std::size_t without() const { return without_; }

    fault give(new_source &made, const std::string &path) const
    {
        for (const auto &[code, to] : targets_)
            if (fault wrong = made.take_language(path, to.said, to.messages))
                return wrong;
        return {};
    }

private:
    struct target {
        said_language said;
        std::vector<po_message> messages;
        std::unordered_map<std::string, std::size_t> places; // by group and reference term
    };

    po_message &message_for(const tbx_reader &file, const term_entry &entry,
                            const entry_language &one, const std::string &term)
    {
        target &to = targets_[one.code];
        to.said = {file.name(), one.code};
        std::string group = "terms";
        std::string item;
        read_entry_key(file, entry, group, item);
        const auto [at, added] = to.places.emplace(group + '\0' + term, to.messages.size());
        if (added) {
            po_message &fresh = to.messages.emplace_back();
            fresh.group = group;
            fresh.told_apart = group;
            fresh.id.text = term;
            fresh.line = entry.line;
            fresh.texts.emplace_back();
        }
        return to.messages[at->second];
    }

    static void add_to(po_message &message, const term_entry &entry, const entry_language &source,
                       const entry_language &one)
    {
        for (const auto *lines : {&entry.descriptions, &source.notes})
            message.extracted.insert(message.extracted.end(), lines->begin(), lines->end());
        message.remarks.insert(message.remarks.end(), one.notes.begin(), one.notes.end());
        std::string &text = message.texts.front();
        const std::string more = joined_terms(one);
        if (("/" + text + "/").find("/" + more + "/") == text.npos)
            text.append(text.empty() ? "" : "/").append(more);
    }

    std::string code_;                      // of the default language
    std::map<std::string, target> targets_; // by code
    std::size_t without_ = 0;
};

} // namespace

fault read_tbx(std::string_view bytes, encoding, const text_listener &hear)
{
    unit_maker units;
    const tbx_reader::listener take = [&](const tbx_reader &file, const term_entry &entry) {
        units.add(file, entry);
    };
    tbx_reader reader(take);
    fault wrong = reader.walk(without_tbx_type(bytes), "TBX");
    if (!wrong)
        units.tell(reader, hear);
    return wrong;
}

fault take_tbx(new_source &made, const std::string &path, std::string_view bytes)
{
    const std::string language(view_of(made.source()->default_lang));
    message_maker messages(code_of(language));
    const tbx_reader::listener take = [&](const tbx_reader &file, const term_entry &entry) {
        messages.add(file, entry);
    };
    tbx_reader reader(take);
    if (fault wrong = reader.walk(without_tbx_type(bytes), "TBX"))
        return wrong;
    for (const std::string &line : notes_of(reader))
        made.tell(std::string(path).append(": ").append(line));
    if (messages.without() != 0)
        made.tell(path + ": left out " + counted_words(messages.without(), "concept") +
                  " without a term in " + language);
    return messages.give(made, path);
}

} // namespace zel::exchange
