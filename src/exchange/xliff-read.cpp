#include "exchange/xliff.h"

#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/plural-header.h"
#include "exchange/po-message.h"
#include "exchange/xml-read.h"
#include "langlib/plural-rule.h"

#include <glib.h>

namespace zel::exchange {

namespace {

// The elements that mean something. Of any other, only what it holds is looked at.
enum class element {
    other,
    xliff,
    file,
    header,
    notes,
    note,
    group,
    unit,
    alternative,
    segment,
    ignorable,
    source,
    target
};

constexpr struct {
    std::string_view name;
    element kind;
} elements[] = {
    {"xliff", element::xliff},
    {"file", element::file},
    {"header", element::header},
    {"notes", element::notes},
    {"note", element::note},
    {"unit", element::unit},
    {"group", element::group},
    {"trans-unit", element::unit},
    {"alt-trans", element::alternative},
    {"segment", element::segment},
    {"ignorable", element::ignorable},
    {"source", element::source},
    {"target", element::target},
};

struct xliff_reader final : xml_walker {
    encoding good;
    const text_listener &hear;
    int version = 0; // 1 or 2
    file_texts file;
    std::vector<element> path; // from the root to the element that is open
    text_unit unit;
    std::string file_code; // of the root, for all files

    // About the open unit. In version 2.1 its text is in segments, and between them stands what is
    // the same in every language. A text of which a segment is missing is none.
    std::string comment;
    std::string remarks;
    std::size_t segments = 0;
    std::size_t final_segments = 0;
    bool partial = false;
    std::string segment_source;
    bool has_target = false;  // the segment, or in version 1 the unit
    bool is_left_out = false; // what its makers keep from translation
    bool is_header = false;   // of a catalog
    bool is_approved = false;
    std::size_t form_number = 0;            // in a group
    std::optional<std::string> alternative; // somebody's guess at the target
    // Of version 2.2, whose segments may be the forms of a plural.
    bool has_cases = false;
    std::string segment_case;

    // A group of version 1 whose units are the forms of a plural.
    struct plural {
        std::size_t depth = 0; // 0: none is open
        bool approved = false;
        bool is_left_out = false;
        std::size_t units = 0;
        std::size_t approved_units = 0;
        std::size_t final_units = 0;
        bool fuzzy = false;
        std::string one; // the sources
        std::string others;
        std::vector<std::string> forms;
        std::string id;
        std::uint32_t line = 0;
    };
    plural group;
    struct context {
        std::size_t depth;
        std::string name;
    };
    std::vector<context> contexts; // groups that name one

    // About the open source, target or note.
    std::string text;
    std::size_t text_depth = 0; // 0: none is
    std::string note_kind;

    xliff_reader(encoding bytes, const text_listener &listener) : good(bytes), hear(listener) {}
    bool open(std::string_view name) override;
    bool close() override;
    bool add(std::string_view piece) override;
    element parent(std::size_t up) const
    {
        return path.size() > up ? path[path.size() - 1 - up] : element::other;
    }
    bool open_element(element kind);
    bool open_root();
    void open_group();
    void set_key(const std::string &id);
    bool open_inline(std::string_view name);
    bool open_unit();
    void open_segment(element kind);
    void open_target();
    void close_text();
    void close_note();
    void close_segment(element kind);
    bool close_unit();
    void close_header();
    bool add_form();
    bool has_one_form() const;
    void close_group();
    void tell();
};

element kind_of(std::string_view name)
{
    for (const auto &row : elements)
        if (row.name == name)
            return row.kind;
    return element::other;
}

bool xliff_reader::open_root()
{
    const std::string number = attribute("version");
    version = number.starts_with("1.") ? 1 : number.starts_with("2.") ? 2 : 0;
    file_code = code_of_xml(attribute("trgLang"));
    return version != 0 || fail("no XLIFF of version 1 or 2");
}

constexpr char plural_module[] = "urn:oasis:names:tc:xliff:pgs:1.0";
constexpr std::string_view plural_switch = "plural:";

// A target's states of version 1 that say that it is not done.
bool is_guess(std::string_view state) { return state == "new" || state.starts_with("needs-"); }

// The number in brackets at the end of a form's id; taken off. The guess where there is none.
std::size_t take_form_number(std::string &id, std::size_t guess)
{
    const std::size_t open = id.rfind('[');
    if (open == std::string::npos || !id.ends_with(']') || id.size() - open > 5)
        return guess;
    const auto number = g_ascii_strtoull(id.c_str() + open + 1, nullptr, 10);
    id.resize(open);
    return static_cast<std::size_t>(number);
}

void xliff_reader::open_group()
{
    if (version == 1 && group.depth == 0 && attribute("restype") == "x-gettext-plurals") {
        group = {};
        group.depth = path.size() + 1;
        group.id = attribute("id");
        group.approved = attribute("approved") == "yes";
        group.is_left_out = attribute("translate") == "no";
        group.line = element_line();
        comment.clear();
        remarks.clear();
    } else if (std::string name = attribute("resname"); !name.empty()) {
        contexts.push_back({path.size() + 1, std::move(name)});
    }
}

// Names the unit's item. What bears another's id is found by its source.
void xliff_reader::set_key(const std::string &id)
{
    std::string key = id;
    unit.group.clear();
    unit.item.clear();
    // Version 1 takes any id. In version 2 an id is a name, so xliff_id has escaped it.
    if (version == 1)
        uncarry(key, encoding::any);
    unit.keyed = (version == 1 || read_xliff_id(id, key)) && split_key(key, unit.group, unit.item);
    unit.loose = unit.by_id = !unit.keyed;
    unit.context.reset();
    if (!contexts.empty())
        unit.context = contexts.back().name;
}

bool xliff_reader::open_unit()
{
    std::string id = attribute("id");
    if (group.depth == 0) {
        set_key(id);
        comment.clear();
        remarks.clear();
    } else {
        form_number = take_form_number(id, group.forms.size());
        if (group.units == 0)
            set_key(group.id.empty() ? id : group.id);
    }
    unit.line = element_line();
    unit.reference.clear();
    unit.text.clear();
    unit.forms.clear();
    unit.cases.clear();
    unit.fuzzy = false;
    unit.final = is_approved = attribute("approved") == "yes";
    is_left_out = attribute("translate") == "no";
    is_header = attribute("restype") == "x-gettext-domain-header";
    alternative.reset();
    has_target = false;
    segments = final_segments = 0;
    partial = false;
    if (file.languages.empty())
        file.languages.push_back({{}, file_code});
    unit.language = static_cast<std::uint32_t>(file.languages.size() - 1);
    const std::string chosen = version == 1 ? "" : attribute("switch", plural_module);
    has_cases = !chosen.empty();
    return !has_cases ||
           (chosen.starts_with(plural_switch) && chosen.find_first_of(" ,;\t\n") == chosen.npos) ||
           fail_at(element_line(), "a unit whose text is chosen by more than a number");
}

void xliff_reader::open_segment(element kind)
{
    has_target = false;
    segment_source.clear();
    if (has_cases)
        segment_case = attribute("case", plural_module);
    if (kind == element::ignorable)
        return;
    const std::string state = attribute("state");
    ++segments;
    final_segments += state == "final" ? 1 : 0;
    unit.fuzzy = unit.fuzzy || state == "initial";
}

void xliff_reader::open_target()
{
    has_target = true;
    const std::string state = attribute("state");
    unit.final = unit.final || state == "final" || state == "signed-off";
    unit.fuzzy = unit.fuzzy || is_guess(state);
}

// Opens an element inside a text that stands for characters: only a code point of its own is known.
bool xliff_reader::open_inline(std::string_view name)
{
    if (name != "cp")
        return !is_empty() || name == "mrk" || name == "sm" || name == "em" ||
               fail("a placeholder, which no text of a source has");
    const std::string character =
        text_of_code(g_ascii_strtoll(attribute("hex").c_str(), nullptr, 16));
    text += character;
    return !character.empty() || fail("a code point that is none");
}

// Call when an element begins; the path does not have it yet.
bool xliff_reader::open_element(element kind)
{
    const element around = parent(0);
    bool is_text = false;
    if (path.empty() && (kind != element::xliff || !open_root()))
        return fail("no XLIFF");
    if (kind == element::file && around == element::xliff) {
        const std::string code = attribute("target-language");
        file.languages.push_back({{}, code.empty() ? file_code : code_of_xml(code)});
    } else if (kind == element::group) {
        open_group();
    } else if (kind == element::unit) {
        if (!open_unit())
            return false;
    } else if ((kind == element::segment || kind == element::ignorable) &&
               around == element::unit) {
        open_segment(kind);
    } else if (kind == element::source || kind == element::target) {
        is_text = around == element::segment || around == element::ignorable ||
                  (around == element::unit && version == 1);
        if (is_text && kind == element::target)
            open_target();
        is_text = is_text || (kind == element::target && around == element::alternative &&
                              parent(1) == element::unit && !alternative);
    } else if (kind == element::note) {
        is_text = around == element::unit || around == element::header || around == element::notes;
        note_kind = attribute(version == 1 ? "from" : "category");
    }
    if (is_text) {
        text.clear();
        // Elements may stand inside the text: the depth tells its own end.
        text_depth = path.size() + 1;
    }
    return true;
}

void xliff_reader::close_note()
{
    const bool of_file = parent(1) == element::header || parent(2) == element::file;
    if (of_file) {
        if (note_kind == "language" && !file.languages.empty())
            read_name(text, file.languages.back().name);
    } else if (note_kind == "comment") {
        comment = text;
    } else if (note_kind != "description" && note_kind != "default comment" &&
               note_kind != "plural") {
        remarks.append(remarks.empty() ? "" : "\n").append(text);
    }
}

void xliff_reader::close_text()
{
    switch (path.back()) {
    case element::source:
        unit.reference += text;
        segment_source = text;
        break;
    case element::target:
        if (parent(1) == element::alternative)
            alternative = text;
        else
            unit.text += text;
        break;
    default:
        close_note();
        break;
    }
    text_depth = 0;
}

void xliff_reader::close_segment(element kind)
{
    if (has_cases && kind == element::segment) {
        // Which of both ids a source is says its case, whatever stands before it.
        if (segment_case == "one" || (segment_case == "1" && group.one.empty()))
            group.one = segment_source;
        else if (segment_case == "other" || group.others.empty())
            group.others = segment_source;
        unit.cases.push_back(segment_case);
        unit.forms.push_back(has_target ? unit.text : std::string());
        unit.text.clear();
        return;
    }
    if (has_target)
        return;
    // What stands between segments is the same in every language.
    if (kind == element::ignorable)
        unit.text += segment_source;
    else
        partial = true;
}

// A catalog's header, which its converter has made a unit.
void xliff_reader::close_header()
{
    const std::string &header = unit.text.empty() ? unit.reference : unit.text;
    file.plural_field = po_header_field(header, plural_field);
    file.plural_line = unit.line;
    std::string &code = file.languages.back().code;
    if (code.empty())
        code = po_language_code(header);
}

bool xliff_reader::close_unit()
{
    if (is_left_out && has_cases)
        group = {};
    if (is_left_out)
        return true;
    if (is_header) {
        close_header();
        return true;
    }
    // A unit is final if all of its segments are, and what is not done is never.
    unit.final = unit.final || (segments != 0 && final_segments == segments);
    if (version == 1 && !has_target && alternative) {
        unit.text = std::move(*alternative);
        unit.fuzzy = true;
    }
    unit.final = unit.final && !unit.fuzzy;
    if (partial)
        unit.text.clear();
    if (group.depth != 0)
        return add_form();
    if (has_cases) {
        unit.reference = group.one.empty() ? group.others : group.one;
        if (!group.one.empty() && !group.others.empty())
            unit.reference += plural_sign + group.others;
        group = {};
    }
    tell();
    return true;
}

// Takes the unit for a form of the group.
bool xliff_reader::add_form()
{
    const std::size_t at = form_number;
    if (at >= most_plural_forms)
        return fail("more than 64 plural forms");
    if (at >= group.forms.size())
        group.forms.resize(at + 1);
    group.forms[at] = unit.text;
    (at == 0 ? group.one : group.others) = unit.reference;
    ++group.units;
    group.approved_units += is_approved ? 1 : 0;
    group.final_units += unit.final ? 1 : 0;
    group.fuzzy = group.fuzzy || unit.fuzzy;
    return true;
}

bool xliff_reader::has_one_form() const
{
    return file.plural_field.empty()
               ? count_plural_forms(plural_rule_of(file.languages.back().code)).all == 1
               : file.plural_field.starts_with("nplurals=1;");
}

// Tells a group's plural. Some tools mark only the later forms of one that is not done.
void xliff_reader::close_group()
{
    const plural whole = std::move(group);
    group = {};
    if (whole.is_left_out || whole.forms.empty())
        return;
    unit.line = whole.line;
    unit.text.clear();
    unit.forms = whole.forms;
    // A converter gives each source a unit, though the language has but one form.
    if (has_one_form())
        while (unit.forms.size() > 1 && unit.forms.back().empty())
            unit.forms.pop_back();
    unit.fuzzy = whole.fuzzy || (whole.approved_units != 0 && whole.approved_units != whole.units);
    unit.final = !unit.fuzzy && (whole.approved || whole.final_units == whole.units);
    unit.reference = whole.one;
    if (!whole.others.empty() && (unit.keyed || whole.others != whole.one))
        unit.reference += plural_sign + whole.others;
    tell();
}

void xliff_reader::tell()
{
    unit.note.replaces = !comment.empty();
    unit.note.text = comment;
    if (!remarks.empty())
        unit.note.text.append(comment.empty() ? "" : "\n").append(remarks);
    uncarry(unit.reference, good);
    uncarry(unit.text, good);
    for (std::string &form : unit.forms)
        uncarry(form, good);
    uncarry(unit.note.text, good);
    hear(file, unit);
}

bool xliff_reader::open(std::string_view name)
{
    const element kind = kind_of(name);
    if (!(text_depth != 0 ? open_inline(name) : open_element(kind)))
        return false;
    path.push_back(text_depth != 0 && text_depth != path.size() + 1 ? element::other : kind);
    return true;
}

bool xliff_reader::close()
{
    if (path.size() == text_depth)
        close_text();
    else if (path.back() == element::unit && !close_unit())
        return false;
    else if (path.size() == group.depth)
        close_group();
    else if (!contexts.empty() && path.size() == contexts.back().depth)
        contexts.pop_back();
    else if (path.back() == element::segment || path.back() == element::ignorable)
        close_segment(path.back());
    path.pop_back();
    return true;
}

bool xliff_reader::add(std::string_view piece)
{
    if (text_depth != 0)
        text += piece;
    // Many small pieces can add up, so the whole is measured.
    return text.size() <= largest_text || fail("a text of more than 8 MB");
}

} // namespace

fault read_xliff(std::string_view bytes, encoding good, const text_listener &hear)
{
    return xliff_reader(good, hear).walk(bytes, "XLIFF");
}

} // namespace zel::exchange
