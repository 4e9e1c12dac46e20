#pragma once

// A catalog's message, and how it is written.
//
//   # a translator's remark
//   #. a programmer's remark
//   #: src/window.c:31
//   #, fuzzy, c-format
//   #| msgid "what the text was translated from"
//   msgctxt "menu:_Open"
//   msgid "_Open"
//   msgid_plural "..."          (plurals only; then msgstr[0], msgstr[1] ...)
//   msgstr "_Öffnen"
//
// A "#~" in front of its lines marks a message as obsolete. Texts are UTF-8.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel::exchange {

// What a message translates.
struct po_id {
    std::optional<std::string> context;
    std::optional<std::string> text;
    std::optional<std::string> plural;
};

struct po_message {
    std::vector<std::string> remarks;    // lines
    std::vector<std::string> extracted;  // lines
    std::vector<std::string> references; // "src/window.c:31"
    std::vector<std::string> flags;      // but "fuzzy"
    bool fuzzy = false;
    bool obsolete = false;
    po_id previous;
    po_id id;
    std::vector<std::string> texts; // one, or one for each plural form
    std::uint32_t line = 0;         // of its first word
    // Of a format that says more than catalogs do, else empty: the item's group where it is not the
    // context, what tells the message apart besides context and id, and the text that its id names.
    std::optional<std::string> group;
    std::string told_apart;
    std::string reference;
    std::vector<std::string> cases; // of a plural's texts, by name, where the file names them

    bool is_header() const { return !id.context && id.text && id.text->empty(); }
    void clear();
};

// The value of a field of the header's text, "Language"; empty when it is not there.
std::string_view po_header_field(std::string_view header, std::string_view name);

// Whether tools have joined several catalogs' headers; the fields are those of the first.
bool is_of_several(std::string_view header);
constexpr std::string_view several_headers =
    "the headers of several catalogs: the first one counts";

// The code of the language that a header names; some tools write "pt-BR", or a field of their own.
std::string po_language_code(std::string_view header);

// Remarks, a line each, as one text.
std::string joined(const std::vector<std::string> &lines);

// Appends the message, but not the empty line between two.
void append_po_message(std::string &out, const po_message &message);

void append_po_flags(std::string &out, bool fuzzy, const std::vector<std::string> &flags);
void append_po_id(std::string &out, std::string_view prefix, const po_id &id);

// Append the parts of a message. A prefix "#~ " stands before each line of a text.
void append_po_text(std::string &out, std::string_view prefix, std::string_view keyword,
                    std::string_view text);
void append_po_comment(std::string &out, std::string_view sign, std::string_view line);
void append_po_references(std::string &out, const std::vector<std::string> &references);

} // namespace zel::exchange
