#include "exchange/xliff.h"

#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/xml-read.h"

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
    unit,
    segment,
    ignorable,
    source,
    target
};

constexpr struct {
    std::string_view name;
    element kind;
} elements[] = {
    {"xliff", element::xliff},     {"file", element::file},       {"header", element::header},
    {"notes", element::notes},     {"note", element::note},       {"unit", element::unit},
    {"trans-unit", element::unit}, {"segment", element::segment}, {"ignorable", element::ignorable},
    {"source", element::source},   {"target", element::target},
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
    bool has_target = false; // the segment

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
    bool open_inline(std::string_view name);
    void open_unit();
    void open_segment(element kind);
    void open_target();
    void close_text();
    void close_note();
    void close_segment(element kind);
    void close_unit();
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

void xliff_reader::open_unit()
{
    std::string key = attribute("id");
    unit.group.clear();
    unit.item.clear();
    // Version 1 takes any id. In version 2 an id is a name, so xliff_id has escaped it.
    if (version == 1)
        uncarry(key, encoding::any);
    unit.keyed = (version == 1 || read_xliff_id(attribute("id"), key)) &&
                 split_key(key, unit.group, unit.item);
    unit.line = line();
    unit.reference.clear();
    unit.text.clear();
    unit.fuzzy = false;
    unit.final = attribute("approved") == "yes";
    comment.clear();
    remarks.clear();
    segments = final_segments = 0;
    partial = false;
    if (file.languages.empty())
        file.languages.push_back({{}, file_code});
    unit.language = static_cast<std::uint32_t>(file.languages.size() - 1);
}

void xliff_reader::open_segment(element kind)
{
    has_target = false;
    segment_source.clear();
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
    unit.fuzzy = unit.fuzzy || state == "new" || state == "needs-translation";
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
    } else if (kind == element::unit) {
        open_unit();
    } else if ((kind == element::segment || kind == element::ignorable) &&
               around == element::unit) {
        open_segment(kind);
    } else if (kind == element::source || kind == element::target) {
        is_text = around == element::segment || around == element::ignorable ||
                  (around == element::unit && version == 1);
        if (is_text && kind == element::target)
            open_target();
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
    } else if (note_kind != "description" && note_kind != "default comment") {
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
    if (has_target)
        return;
    // What stands between segments is the same in every language.
    if (kind == element::ignorable)
        unit.text += segment_source;
    else
        partial = true;
}

void xliff_reader::close_unit()
{
    // A unit is final if all of its segments are.
    unit.final = unit.final || (segments != 0 && final_segments == segments);
    if (partial)
        unit.text.clear();
    unit.note.replaces = !comment.empty();
    unit.note.text = comment;
    if (!remarks.empty())
        unit.note.text.append(comment.empty() ? "" : "\n").append(remarks);
    uncarry(unit.reference, good);
    uncarry(unit.text, good);
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
    else if (path.back() == element::unit)
        close_unit();
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
