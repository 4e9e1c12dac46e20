#include "exchange/xliff.h"

#ifdef LANG_HAVE_LIBXML

#include "exchange/key.h"
#include "exchange/language-code.h"
#include "support/guard.h"

#include <memory>

#include <glib.h>
#include <libxml/xmlreader.h>

namespace zel::exchange {

namespace {

using xml_guard = std::unique_ptr<xmlTextReader, release<xmlFreeTextReader>>;

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

constexpr std::size_t most_depth = 100;

// Whether a document type stands before the first element.
bool has_document_type(std::string_view bytes)
{
    for (;;) {
        bytes.remove_prefix(std::min(bytes.find('<'), bytes.size()));
        const std::string_view end = bytes.starts_with("<?")     ? "?>"
                                     : bytes.starts_with("<!--") ? "-->"
                                                                 : "";
        if (end.empty())
            return bytes.starts_with("<!");
        bytes.remove_prefix(std::min(bytes.find(end), bytes.size()));
    }
}

// Goes on to the next such sign, from that many bytes on; to the end when there is none.
void skip_to(std::string_view &bytes, std::string_view sign, std::size_t from)
{
    bytes.remove_prefix(std::min(bytes.find(sign, from), bytes.size()));
}

// Counts the values that an element has between its name and its end; leaves bytes there.
std::size_t count_values(std::string_view &bytes)
{
    for (std::size_t count = 0;; ++count) {
        bytes.remove_prefix(std::min(bytes.find_first_of("\"'>"), bytes.size()));
        if (bytes.empty() || bytes[0] == '>')
            return count;
        skip_to(bytes, bytes.substr(0, 1), 1);
        bytes.remove_prefix(std::min<std::size_t>(1, bytes.size()));
    }
}

// Finds an element with more attributes than any tool writes. The library compares each with each,
// so a hostile file could keep it busy for hours.
fault find_crowded_element(std::string_view bytes)
{
    constexpr std::size_t most_attributes = 1000;
    const char *const whole = bytes.data();
    for (skip_to(bytes, "<", 0); !bytes.empty(); skip_to(bytes, "<", 1)) {
        const char *start = bytes.data();
        if (bytes.starts_with("<!--"))
            skip_to(bytes, "-->", 4);
        else if (bytes.starts_with("<![CDATA["))
            skip_to(bytes, "]]>", 9);
        else if (bytes.starts_with("<?"))
            skip_to(bytes, "?>", 2);
        else if (count_values(bytes) > most_attributes)
            return {1 + static_cast<std::uint32_t>(std::count(whole, start, '\n')),
                    "an element with more than 1,000 attributes"};
    }
    return {};
}

struct xliff_reader {
    xmlTextReaderPtr xml;
    encoding good;
    const text_listener &hear;
    fault wrong;
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

    xliff_reader(xmlTextReaderPtr from, encoding bytes, const text_listener &listener)
        : xml(from), good(bytes), hear(listener)
    {
    }
    bool fail(const std::string &what);
    std::string attribute(const char *name) const;
    element parent(std::size_t up) const
    {
        return path.size() > up ? path[path.size() - 1 - up] : element::other;
    }
    bool read();
    bool open(element kind);
    bool open_root();
    bool open_inline(std::string_view name);
    void open_unit();
    void open_segment(element kind);
    void open_target();
    void close();
    void close_text();
    void close_note();
    void close_segment(element kind);
    void close_unit();
};

bool xliff_reader::fail(const std::string &what)
{
    if (!wrong)
        wrong = {static_cast<std::uint32_t>(xmlTextReaderGetParserLineNumber(xml)), what};
    return false;
}

std::string xliff_reader::attribute(const char *name) const
{
    xmlChar *value = xmlTextReaderGetAttribute(xml, reinterpret_cast<const xmlChar *>(name));
    std::string out = value == nullptr ? "" : reinterpret_cast<const char *>(value);
    xmlFree(value);
    return out;
}

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
    unit.line = static_cast<std::uint32_t>(xmlTextReaderGetParserLineNumber(xml));
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
        return xmlTextReaderIsEmptyElement(xml) == 0 || name == "mrk" || name == "sm" ||
               name == "em" || fail("a placeholder, which no text of a source has");
    char character[8] = "";
    const gint64 code = g_ascii_strtoll(attribute("hex").c_str(), nullptr, 16);
    if (code <= 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
        return fail("a code point that is none");
    text.append(character, static_cast<std::size_t>(
                               g_unichar_to_utf8(static_cast<gunichar>(code), character)));
    return true;
}

// Call when an element begins; the path does not have it yet.
bool xliff_reader::open(element kind)
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

// Call when the innermost element ends.
void xliff_reader::close()
{
    if (path.size() == text_depth)
        close_text();
    else if (path.back() == element::unit)
        close_unit();
    else if (path.back() == element::segment || path.back() == element::ignorable)
        close_segment(path.back());
    path.pop_back();
}

bool xliff_reader::read()
{
    const int type = xmlTextReaderNodeType(xml);
    const char *value = reinterpret_cast<const char *>(xmlTextReaderConstValue(xml));
    switch (type) {
    case XML_READER_TYPE_ELEMENT: {
        const std::string_view name =
            reinterpret_cast<const char *>(xmlTextReaderConstLocalName(xml));
        const element kind = kind_of(name);
        if (path.size() == most_depth)
            return fail("elements deeper than any such file has");
        if (!(text_depth != 0 ? open_inline(name) : open(kind)))
            return false;
        path.push_back(text_depth != 0 && text_depth != path.size() + 1 ? element::other : kind);
        if (xmlTextReaderIsEmptyElement(xml) != 0)
            close();
        return true;
    }
    case XML_READER_TYPE_END_ELEMENT:
        close();
        return true;
    case XML_READER_TYPE_TEXT:
    case XML_READER_TYPE_CDATA:
    case XML_READER_TYPE_WHITESPACE:
    case XML_READER_TYPE_SIGNIFICANT_WHITESPACE:
        if (text_depth != 0 && value != nullptr)
            text += value;
        // Many small pieces can add up, so the whole is measured.
        return text.size() <= largest_text || fail("a text of more than 8 MB");
    case XML_READER_TYPE_ENTITY_REFERENCE:
        // Entities are never expanded: a few of them could grow without end.
        return fail("an entity that is not defined");
    default:
        return true;
    }
}

// Keeps the first error, the cause of all others.
void note_error(void *reader, xmlErrorPtr error)
{
    auto &self = *static_cast<xliff_reader *>(reader);
    if (self.wrong || error->level == XML_ERR_WARNING)
        return;
    std::string what = error->message == nullptr ? "no XML" : error->message;
    while (!what.empty() && what.back() == '\n')
        what.pop_back();
    self.wrong = {static_cast<std::uint32_t>(error->line), what};
}

} // namespace

fault read_xliff(std::string_view bytes, encoding good, const text_listener &hear)
{
    if (fault wrong = check_utf8(bytes))
        return wrong;
    drop_mark(bytes);
    if (has_document_type(bytes))
        return {1, "a document type, which may bring texts from elsewhere"};
    if (fault wrong = find_crowded_element(bytes))
        return wrong;
    // No entity is expanded, nothing is loaded from elsewhere, and the library's limits hold.
    const xml_guard xml(xmlReaderForMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr,
                                           "UTF-8", XML_PARSE_NONET | XML_PARSE_IGNORE_ENC));
    if (!xml)
        return {0, "not enough memory"};
    xliff_reader reader(xml.get(), good, hear);
    xmlTextReaderSetStructuredErrorHandler(xml.get(), note_error, &reader);
    int more = xmlTextReaderRead(xml.get());
    while (more == 1 && reader.read() && !reader.wrong)
        more = xmlTextReaderRead(xml.get());
    if (more != 0)
        reader.fail("no XML");
    return reader.wrong;
}

} // namespace zel::exchange

#else

namespace zel::exchange {

fault read_xliff(std::string_view, encoding, const text_listener &)
{
    return {0, "this lang-kit was built without libxml2 and reads no XLIFF"};
}

} // namespace zel::exchange

#endif
