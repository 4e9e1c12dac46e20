#include "exchange/po-message.h"

#include "exchange/language-code.h"
#include "lex/lex-misc.h"

#include <array>

namespace zel::exchange {

namespace {

// The letter behind the backslash for each byte that is escaped; 0 for the others.
constexpr std::array<char, 256> make_escapes()
{
    std::array<char, 256> letters{};
    for (unsigned byte = 0; byte < letters.size(); ++byte)
        letters[byte] = escape_letter(static_cast<unsigned char>(byte));
    letters['\a'] = 'a';
    letters['\b'] = 'b';
    letters['\f'] = 'f';
    letters['\v'] = 'v';
    return letters;
}

constexpr auto escapes = make_escapes();

void append_escaped(std::string &out, std::string_view text)
{
    std::size_t plain = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char letter = escapes[static_cast<unsigned char>(text[at])];
        if (letter == '\0')
            continue;
        out.append(text.substr(plain, at - plain)).append(1, '\\') += letter;
        plain = at + 1;
    }
    out.append(text.substr(plain));
}

void append_quoted_line(std::string &out, std::string_view text)
{
    out += '"';
    append_escaped(out, text);
    out += "\"\n";
}

// Ends a remark. A backslash at its end would join the next line to it, so a blank follows it.
void end_remark(std::string &out) { out += out.ends_with('\\') ? " \n" : "\n"; }

} // namespace

void po_message::clear()
{
    remarks.clear();
    extracted.clear();
    references.clear();
    flags.clear();
    fuzzy = obsolete = false;
    previous = id = {};
    texts.clear();
    group.reset();
    told_apart.clear();
    reference.clear();
}

std::string_view po_header_field(std::string_view header, std::string_view name)
{
    while (!header.empty()) {
        const std::string_view line = header.substr(0, header.find('\n'));
        header.remove_prefix(std::min(header.size(), line.size() + 1));
        if (!line.starts_with(name) || line.substr(name.size(), 1) != ":")
            continue;
        const std::string_view value = line.substr(name.size() + 1);
        const std::size_t begin = value.find_first_not_of(' ');
        return begin == std::string_view::npos ? "" : value.substr(begin);
    }
    return {};
}

bool is_of_several(std::string_view header) { return header.find("#-#-#-#-#") != header.npos; }

std::string po_language_code(std::string_view header)
{
    std::string_view code = po_header_field(header, "Language");
    if (code.empty())
        code = po_header_field(header, "X-Language");
    code = code.substr(0, code.find_last_not_of(" \t\r") + 1);
    // Some people write "Deutsch" there.
    const bool is_word = code.size() > 3 && code.find_first_of("-_@") == code.npos;
    return is_word ? code_of(code) : code_of_xml(code);
}

// A text with a line end before its own end is written line by line, below an empty string.
void append_po_text(std::string &out, std::string_view prefix, std::string_view keyword,
                    std::string_view text)
{
    out.append(prefix).append(keyword) += ' ';
    std::size_t end = text.find('\n');
    if (end == std::string_view::npos || end + 1 == text.size()) {
        append_quoted_line(out, text);
        return;
    }
    out += "\"\"\n";
    while (!text.empty()) {
        out.append(prefix);
        const std::string_view line = text.substr(0, end == std::string_view::npos ? end : end + 1);
        append_quoted_line(out, line);
        text.remove_prefix(line.size());
        end = text.find('\n');
    }
}

void append_po_comment(std::string &out, std::string_view sign, std::string_view line)
{
    out.append(sign);
    if (!line.empty())
        out.append(1, ' ').append(line);
    end_remark(out);
}

void append_po_references(std::string &out, const std::vector<std::string> &references)
{
    constexpr std::size_t width = 79;
    std::size_t column = 0;
    for (const std::string &reference : references) {
        if (column == 0 || column + reference.size() + 1 > width) {
            if (column != 0)
                end_remark(out);
            out += "#:";
            column = 2;
        }
        out.append(1, ' ').append(reference);
        column += reference.size() + 1;
    }
    if (column != 0)
        end_remark(out);
}

std::string joined(const std::vector<std::string> &lines)
{
    std::string out;
    for (const std::string &line : lines)
        out.append(out.empty() ? "" : "\n").append(line);
    return out;
}

void append_po_flags(std::string &out, bool fuzzy, const std::vector<std::string> &flags)
{
    if (!fuzzy && flags.empty())
        return;
    out += fuzzy ? "#, fuzzy" : "#,";
    bool first = !fuzzy;
    for (const std::string &flag : flags) {
        out.append(first ? " " : ", ").append(flag);
        first = false;
    }
    end_remark(out);
}

void append_po_id(std::string &out, std::string_view prefix, const po_id &id)
{
    if (id.context)
        append_po_text(out, prefix, "msgctxt", *id.context);
    if (id.text)
        append_po_text(out, prefix, "msgid", *id.text);
    if (id.plural)
        append_po_text(out, prefix, "msgid_plural", *id.plural);
}

void append_po_message(std::string &out, const po_message &message)
{
    // In the order of other tools, so that their catalogs can be compared with these.
    for (const std::string &line : message.remarks)
        append_po_comment(out, "#", line);
    for (const std::string &line : message.extracted)
        append_po_comment(out, "#.", line);
    append_po_references(out, message.references);
    append_po_flags(out, message.fuzzy, message.flags);
    append_po_id(out, message.obsolete ? "#~| " : "#| ", message.previous);
    const std::string_view prefix = message.obsolete ? "#~ " : "";
    append_po_id(out, prefix, message.id);
    if (!message.id.plural) {
        append_po_text(out, prefix, "msgstr", message.texts.empty() ? "" : message.texts.front());
        return;
    }
    for (std::size_t form = 0; form < message.texts.size(); ++form)
        append_po_text(out, prefix, "msgstr[" + std::to_string(form) + "]", message.texts[form]);
}

} // namespace zel::exchange
