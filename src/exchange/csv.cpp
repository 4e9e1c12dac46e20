#include "exchange/csv.h"

#include "exchange/language-code.h"
#include "exchange/tbx.h"

#include <algorithm>
#include <cstring>

namespace zel::exchange {

namespace {

constexpr std::string_view comment_word = "comment ";

// Signs by which a spreadsheet takes a cell for a formula, also in their wide forms, and the sign
// that prevents it.
constexpr std::string_view formula_signs[] = {"=",
                                              "+",
                                              "-",
                                              "@",
                                              "\t",
                                              "\r",
                                              "\n",
                                              "\xEF\xBC\x9D",
                                              "\xEF\xBC\x8B",
                                              "\xEF\xBC\x8D",
                                              "\xEF\xBC\xA0",
                                              "'"};

bool begins_formula(std::string_view text)
{
    constexpr std::string_view first_bytes = "=+-@\t\r\n\xEF'";
    return !text.empty() && first_bytes.find(text.front()) != first_bytes.npos &&
           std::any_of(std::begin(formula_signs), std::end(formula_signs),
                       [&](std::string_view sign) { return text.starts_with(sign); });
}

bool needs_quotes(std::string_view text)
{
    return text.starts_with(' ') || text.ends_with(' ') ||
           std::any_of(text.begin(), text.end(), [](char c) {
               // In some locales spreadsheets separate the cells by semicolons.
               return c == ',' || c == ';' || c == '"' || c == '\n';
           });
}

enum class cells { guarded, plain };

void append_cell(std::string &out, std::string_view text, cells kind)
{
    // Few texts are carried: only these are copied.
    std::string carried;
    if (must_carry(text, holds::cells)) {
        append_carried(carried, text, holds::cells);
        text = carried;
    }
    // A hostile text must not be calculated by the translator's spreadsheet.
    const std::string_view sign = kind == cells::guarded && begins_formula(text) ? "'" : "";
    if (!needs_quotes(text)) {
        out.append(sign).append(text);
        return;
    }
    out.append(1, '"').append(sign);
    // A quote inside of quotes is written twice.
    for (std::string_view rest = text;;) {
        const std::size_t plain = std::min(rest.find('"'), rest.size());
        out.append(rest.substr(0, plain)) += '"';
        rest.remove_prefix(plain);
        if (rest.empty())
            return;
        out += '"';
        rest.remove_prefix(1);
    }
}

cells cells_of(const exporter &from)
{
    return from.request().plain || from.request().glossary ? cells::plain : cells::guarded;
}

void append_head(std::string &out, const exporter &from)
{
    out += "group,item,description";
    for (const lang_t *lang : from.languages()) {
        out += ',';
        append_cell(out, lang->name, cells_of(from));
    }
    if (from.request().comments)
        for (const lang_t *lang : from.languages()) {
            out += ',';
            append_cell(out, std::string(comment_word) + lang->name, cells_of(from));
        }
    out += "\r\n";
}

void append_row(std::string &out, const exporter &from, const outgoing_item &item)
{
    const cells kind = cells_of(from);
    append_cell(out, item.group, kind);
    for (const std::string_view cell : {item.name, description_of(item.item)}) {
        out += ',';
        append_cell(out, cell, kind);
    }
    for (const auto &one : item.texts) {
        out += ',';
        append_cell(out, one.text, kind);
    }
    if (from.request().comments)
        for (const auto &one : item.texts) {
            out += ',';
            append_cell(out, one.comment, kind);
        }
    out += "\r\n";
}

// "term,de,pt-BR"; a language without a code has its name.
void append_glossary_head(std::string &out, const exporter &from)
{
    out += "term";
    for (const lang_t *lang : from.languages()) {
        const std::string code = code_of(lang->name);
        out += ',';
        append_cell(out, code.empty() ? lang->name : xml_code(code), cells::plain);
    }
    out += "\r\n";
}

// Where a term has several words in a language, each of them has a row.
void append_glossary_rows(std::string &out, const exporter &from, const outgoing_item &item)
{
    const std::string_view term = without_end(item.reference);
    std::vector<std::vector<std::string_view>> columns(item.texts.size());
    std::size_t rows = 0;
    for (std::size_t at = 0; at < columns.size(); ++at) {
        if (from.is_pair(item, at))
            columns[at] = glossary_terms(item.texts[at].text, term);
        rows = std::max(rows, columns[at].size());
    }
    for (std::size_t row = 0; row < rows; ++row) {
        append_cell(out, term, cells::plain);
        for (const auto &column : columns) {
            out += ',';
            append_cell(out, row < column.size() ? column[row] : "", cells::plain);
        }
        out += "\r\n";
    }
}

constexpr std::size_t most_columns = 2000;

// Takes one record after another.
struct record_reader {
    std::string_view rest;
    char separator = ',';
    std::uint32_t line = 1;         // of what is taken next
    std::vector<std::string> cells; // of the record; a prefix of them is in use
    std::size_t count = 0;
    std::uint32_t record_line = 1;
    fault wrong;

    bool next();

private:
    bool take_cell();
    bool take_quoted(std::string &cell);
    bool take_line_end();
};

bool record_reader::take_quoted(std::string &cell)
{
    const std::uint32_t begin = line;
    rest.remove_prefix(1);
    for (;;) {
        const std::size_t end = rest.find('"');
        if (end == std::string_view::npos) {
            wrong = {begin, "a cell without its closing quote"};
            return false;
        }
        cell.append(rest.substr(0, end));
        line += static_cast<std::uint32_t>(
            std::count(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
        rest.remove_prefix(end + 1);
        if (!rest.starts_with('"'))
            return true;
        cell += '"';
        rest.remove_prefix(1);
    }
}

bool record_reader::take_cell()
{
    if (count == most_columns) {
        wrong = {line, "more than 2000 columns"};
        return false;
    }
    // The cells keep their memory from record to record.
    if (count == cells.size())
        cells.emplace_back();
    std::string &cell = cells[count++];
    cell.clear();
    if (rest.starts_with('"') && !take_quoted(cell))
        return false;
    const char ends[] = {separator, '\n', '\r', '\0'};
    const std::string_view plain = rest.substr(0, rest.find_first_of(ends));
    cell.append(plain);
    rest.remove_prefix(plain.size());
    if (cell.size() <= largest_text)
        return true;
    wrong = {record_line, "a text of more than 8 MB"};
    return false;
}

bool record_reader::take_line_end()
{
    // Some programs end lines with CR alone.
    const std::size_t length = rest.starts_with("\r\n") ? 2 : 1;
    rest.remove_prefix(std::min(length, rest.size()));
    ++line;
    return true;
}

// Takes the next record. False at the end and at a fault.
bool record_reader::next()
{
    count = 0;
    record_line = line;
    if (rest.empty())
        return false;
    while (take_cell()) {
        if (!rest.starts_with(separator))
            return take_line_end();
        rest.remove_prefix(1);
    }
    return false;
}

// The separator that stands most often in the first line.
char find_separator(std::string_view bytes)
{
    const std::string_view line = bytes.substr(0, bytes.find('\n'));
    char best = ',';
    for (const char candidate : std::string_view(",;\t"))
        if (std::count(line.begin(), line.end(), candidate) >
            std::count(line.begin(), line.end(), best))
            best = candidate;
    return best;
}

constexpr std::size_t no_column = static_cast<std::size_t>(-1);

// Which columns hold what.
struct columns {
    struct language_column {
        std::size_t first; // of its columns; ascending
        std::size_t text = no_column;
        std::size_t comment = no_column;
    };
    std::size_t group = no_column;
    std::size_t item = no_column;
    std::vector<language_column> languages; // in step with the file's
};

void take_formula_sign(std::string &cell)
{
    // Taken off only where append_cell has put it.
    if (cell.starts_with('\'') && begins_formula(std::string_view(cell).substr(1)))
        cell.erase(0, 1);
}

std::size_t language_at(file_texts &file, columns &found, const std::string &name,
                        std::size_t column)
{
    std::size_t at = 0;
    while (at < file.languages.size() && file.languages[at].name != name)
        ++at;
    if (at == file.languages.size()) {
        file.languages.push_back({name, code_of(name)});
        found.languages.push_back({column});
    }
    return at;
}

// Reads the first record. The first "group", "item" and "description" are the key; whatever else
// has a name is a language or its comments.
fault read_head(record_reader &reader, file_texts &file, columns &found)
{
    bool described = false;
    if (!reader.next())
        return reader.wrong ? reader.wrong : fault{1, "no columns"};
    for (std::size_t at = 0; at < reader.count; ++at) {
        std::string &name = reader.cells[at];
        take_formula_sign(name);
        uncarry(name, encoding::any);
        if (name == "group" && found.group == no_column)
            found.group = at;
        else if (name == "item" && found.item == no_column)
            found.item = at;
        else if (name == "description" && !described)
            described = true;
        else if (name.starts_with(comment_word))
            found.languages[language_at(file, found, name.substr(comment_word.size()), at)]
                .comment = at;
        else if (!name.empty())
            found.languages[language_at(file, found, name, at)].text = at;
    }
    if (found.group == no_column || found.item == no_column)
        return {1, "the columns \"group\" and \"item\" are missing"};
    return {};
}

// Takes the cell's text as the source has it; empty for a column that the record or the file lacks.
void take_cell(const record_reader &reader, std::size_t column, encoding good, std::string &text)
{
    text.clear();
    if (column >= reader.count)
        return;
    text = reader.cells[column];
    take_formula_sign(text);
    uncarry(text, good);
}

bool is_empty(const record_reader &reader)
{
    const auto end = reader.cells.begin() + static_cast<std::ptrdiff_t>(reader.count);
    return std::all_of(reader.cells.begin(), end, [](const auto &cell) { return cell.empty(); });
}

} // namespace

void write_csv(exporter &from, std::vector<outgoing_file> &to)
{
    outgoing_file &file = to.front();
    const bool is_glossary = from.request().glossary;
    // By the mark a spreadsheet knows that this is UTF-8.
    if (cells_of(from) == cells::guarded)
        file.text += "\xEF\xBB\xBF";
    if (from.request().header)
        (is_glossary ? append_glossary_head : append_head)(file.text, from);
    from.each_item([&](const outgoing_item &item) {
        (is_glossary ? append_glossary_rows : append_row)(file.text, from, item);
        file.flush_large();
    });
    file.flush();
}

fault read_csv(std::string_view bytes, encoding good, const text_listener &hear)
{
    if (fault wrong = check_utf8(bytes))
        return wrong;
    drop_mark(bytes);
    record_reader reader{bytes, find_separator(bytes), 1, {}, 0, 1, {}};
    file_texts file;
    columns found;
    if (fault wrong = read_head(reader, file, found))
        return wrong;
    const std::size_t width = reader.count;
    text_unit unit;
    unit.keyed = true;
    // The cell has the whole comment, so it replaces the one before.
    unit.note.replaces = true;
    unit.may_be_guess = true;
    while (reader.next()) {
        if (is_empty(reader))
            continue;
        if (reader.count > width)
            return {reader.record_line, "more cells than columns"};
        unit.line = reader.record_line;
        take_cell(reader, found.group, encoding::any, unit.group);
        take_cell(reader, found.item, encoding::any, unit.item);
        // A short record says nothing in the languages behind its end.
        for (std::uint32_t at = 0;
             at < found.languages.size() && found.languages[at].first < reader.count; ++at) {
            unit.language = at;
            take_cell(reader, found.languages[at].text, good, unit.text);
            take_cell(reader, found.languages[at].comment, good, unit.note.text);
            hear(file, unit);
        }
    }
    return reader.wrong;
}

} // namespace zel::exchange
