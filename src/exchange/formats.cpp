#include "exchange/formats.h"

#include "exchange/csv.h"
#include "exchange/json.h"
#include "exchange/po.h"
#include "exchange/tbx.h"
#include "exchange/tmx.h"
#include "exchange/ts.h"
#include "exchange/xliff.h"

#include <algorithm>

namespace zel::exchange {

namespace {

// A file without a named format is read by the first row that has its ending. What is not written
// stands at the end.
constexpr format table[] = {
    {"po", ".po", files::per_language, write_po, read_po},
    {"pot", ".pot", files::one, write_pot, read_po},
    {"ts", ".ts", files::per_language, write_ts, read_ts, true},
    {"xliff", ".xliff", files::per_language, write_xliff, read_xliff, true},
    {"xliff2", ".xliff", files::per_language, write_xliff2, read_xliff, true},
    {"tmx", ".tmx", files::per_language, write_tmx, read_tmx, false, nullptr, true},
    {"tbx", ".tbx", files::per_language, write_tbx, read_tbx, false, nullptr, true},
    {"csv", ".csv", files::one, write_csv, read_csv},
    {"json", ".json", files::one, write_json, nullptr, false, read_keyed_json},
    {"ini", ".ini", files::per_language, nullptr, nullptr, false, read_ini},
    {"rc", ".rc", files::per_language, nullptr, nullptr, false, read_rc},
};

const format *format_of_path(std::string_view path)
{
    const auto *found = std::find_if(std::begin(table), std::end(table), [&](const format &row) {
        return row.read != nullptr && path.ends_with(row.ending);
    });
    return found == std::end(table) ? nullptr : found;
}

} // namespace

std::span<const format> formats() { return table; }

std::vector<const char *> format_names()
{
    std::vector<const char *> names;
    for (const format &row : table)
        names.push_back(row.name);
    return names;
}

std::vector<const char *> written_format_names()
{
    std::vector<const char *> names = format_names();
    names.resize(static_cast<std::size_t>(
        std::count_if(std::begin(table), std::end(table),
                      [](const format &row) { return row.write != nullptr; })));
    return names;
}

const format *find_format(std::string_view name)
{
    const auto *found = std::find_if(std::begin(table), std::end(table),
                                     [&](const format &row) { return row.name == name; });
    return found == std::end(table) ? nullptr : found;
}

read_answer read_file_texts(const char *format_name, const std::string &path, encoding good)
{
    read_answer answer;
    const format *row = format_name == nullptr ? format_of_path(path) : find_format(format_name);
    if (row == nullptr || row->read == nullptr) {
        answer.wrong = {0, "not in a format that holds texts"};
        return answer;
    }
    std::string bytes;
    answer.wrong = read_input(path, bytes);
    if (!answer.wrong)
        answer.wrong = row->read(bytes, good, [&](const file_texts &file, text_unit &unit) {
            answer.file.languages = file.languages;
            answer.file.plural_field = file.plural_field;
            answer.file.plural_line = file.plural_line;
            answer.file.notes = file.notes;
            answer.file.units.push_back(unit);
        });
    return answer;
}

} // namespace zel::exchange
