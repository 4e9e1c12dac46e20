#include "exchange/xml-read.h"

#include <algorithm>
#include <memory>

#include <glib.h>

#ifdef LANG_HAVE_LIBXML
#include "support/guard.h"
#include "support/text.h"

#include <libxml/xmlreader.h>
#endif

namespace zel::exchange {

std::string text_of_code(std::int64_t code)
{
    char character[8] = "";
    if (code <= 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
        return {};
    return {character,
            static_cast<std::size_t>(g_unichar_to_utf8(static_cast<gunichar>(code), character))};
}

#ifdef LANG_HAVE_LIBXML

namespace {

using xml_guard = std::unique_ptr<xmlTextReader, release<xmlFreeTextReader>>;

constexpr std::size_t most_depth = 100;

// "<!DOCTYPE TS>" or "<!DOCTYPE TS []>", which brings nothing.
bool is_plain_type(std::string_view bytes, std::string_view name)
{
    constexpr std::string_view word = "<!DOCTYPE";
    const auto skip_blanks = [&] {
        while (!bytes.empty() && is_space(bytes.front()))
            bytes.remove_prefix(1);
    };
    if (name.empty() || !bytes.starts_with(word))
        return false;
    bytes.remove_prefix(word.size());
    skip_blanks();
    if (!bytes.starts_with(name))
        return false;
    bytes.remove_prefix(name.size());
    skip_blanks();
    bytes.remove_prefix(bytes.starts_with("[]") ? 2 : 0);
    skip_blanks();
    return bytes.starts_with('>');
}

// Whether a document type stands before the first element that says more than this name.
bool has_document_type(std::string_view bytes, std::string_view name)
{
    for (;;) {
        bytes.remove_prefix(std::min(bytes.find('<'), bytes.size()));
        const std::string_view end = bytes.starts_with("<?")     ? "?>"
                                     : bytes.starts_with("<!--") ? "-->"
                                                                 : "";
        if (end.empty())
            return bytes.starts_with("<!") && !is_plain_type(bytes, name);
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

// Keeps the library's error.
void note_error(void *walker, xmlErrorPtr error)
{
    if (error->level == XML_ERR_WARNING)
        return;
    std::string what = error->message == nullptr ? "no XML" : error->message;
    while (!what.empty() && what.back() == '\n')
        what.pop_back();
    static_cast<xml_walker *>(walker)->fail_at(static_cast<std::uint32_t>(error->line), what);
}

} // namespace

bool xml_walker::fail_at(std::uint32_t line, const std::string &what)
{
    if (!wrong_)
        wrong_ = {line, what};
    return false;
}

bool xml_walker::fail(const std::string &what) { return fail_at(element_line(), what); }

std::string xml_walker::attribute(const char *name) const
{
    xmlChar *value = xmlTextReaderGetAttribute(xml_, reinterpret_cast<const xmlChar *>(name));
    std::string out = value == nullptr ? "" : reinterpret_cast<const char *>(value);
    xmlFree(value);
    return out;
}

std::string xml_walker::attribute(const char *name, const char *name_space) const
{
    xmlChar *value = xmlTextReaderGetAttributeNs(xml_, reinterpret_cast<const xmlChar *>(name),
                                                 reinterpret_cast<const xmlChar *>(name_space));
    std::string out = value == nullptr ? "" : reinterpret_cast<const char *>(value);
    xmlFree(value);
    return out;
}

bool xml_walker::is_empty() const { return xmlTextReaderIsEmptyElement(xml_) != 0; }

std::uint32_t xml_walker::line() const
{
    return static_cast<std::uint32_t>(xmlTextReaderGetParserLineNumber(xml_));
}

std::uint32_t xml_walker::element_line() const
{
    // The tree counts no further than this.
    constexpr long most = 65534;
    const long number = xmlGetLineNo(xmlTextReaderCurrentNode(xml_));
    return number > 0 && number <= most ? static_cast<std::uint32_t>(number) : line();
}

bool xml_walker::step()
{
    switch (xmlTextReaderNodeType(xml_)) {
    case XML_READER_TYPE_ELEMENT: {
        if (depth_ == most_depth)
            return fail("elements deeper than any such file has");
        ++depth_;
        const bool has_end = xmlTextReaderIsEmptyElement(xml_) == 0;
        if (!open(reinterpret_cast<const char *>(xmlTextReaderConstLocalName(xml_))))
            return false;
        if (has_end)
            return true;
        --depth_;
        return close();
    }
    case XML_READER_TYPE_END_ELEMENT:
        --depth_;
        return close();
    case XML_READER_TYPE_TEXT:
    case XML_READER_TYPE_CDATA:
    case XML_READER_TYPE_WHITESPACE:
    case XML_READER_TYPE_SIGNIFICANT_WHITESPACE: {
        const xmlChar *value = xmlTextReaderConstValue(xml_);
        return value == nullptr || add(reinterpret_cast<const char *>(value));
    }
    case XML_READER_TYPE_ENTITY_REFERENCE:
        // Entities are never expanded: a few of them could grow without end.
        return fail("an entity that is not defined");
    default:
        return true;
    }
}

fault xml_walker::walk(std::string_view bytes, std::string_view format, std::string_view type)
{
    if (fault wrong = check_utf8(bytes))
        return wrong;
    drop_mark(bytes);
    if (std::all_of(bytes.begin(), bytes.end(), is_space))
        return {0, "no " + std::string(format) + ": the file is empty"};
    if (has_document_type(bytes, type))
        return {1, "a document type, which may bring texts from elsewhere"};
    if (fault wrong = find_crowded_element(bytes))
        return wrong;
    // No entity is expanded, nothing is loaded from elsewhere, and the library's limits hold.
    const xml_guard xml(xmlReaderForMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr,
                                           "UTF-8", XML_PARSE_NONET | XML_PARSE_IGNORE_ENC));
    if (!xml)
        return {0, "not enough memory"};
    xml_ = xml.get();
    xmlTextReaderSetStructuredErrorHandler(xml_, note_error, this);
    int more = xmlTextReaderRead(xml_);
    while (more == 1 && step() && !wrong_)
        more = xmlTextReaderRead(xml_);
    if (more != 0)
        fail("no XML");
    xml_ = nullptr;
    return wrong_;
}

#else

bool xml_walker::fail_at(std::uint32_t, const std::string &) { return false; }
bool xml_walker::fail(const std::string &) { return false; }
std::string xml_walker::attribute(const char *) const { return {}; }
std::string xml_walker::attribute(const char *, const char *) const { return {}; }
bool xml_walker::is_empty() const { return false; }
std::uint32_t xml_walker::line() const { return 0; }
std::uint32_t xml_walker::element_line() const { return 0; }

fault xml_walker::walk(std::string_view, std::string_view format, std::string_view)
{
    return {0, "this lang-kit was built without libxml2 and reads no " + std::string(format)};
}

#endif

} // namespace zel::exchange
