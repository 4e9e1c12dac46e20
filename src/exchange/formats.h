#pragma once

// The formats that texts are exchanged in: a row and a file each. Nothing here prints.

#include <span>
#include <string>

#include "exchange/export.h"
#include "exchange/keyed-file.h"
#include "exchange/texts.h"

namespace zel::exchange {

// What a format writes.
enum class files { per_language, one };

struct format {
    const char *name;   // "po", as options have it
    const char *ending; // of its files: ".po"
    files writes;
    texts_writer write;  // null for one that projects only come over from
    texts_reader read;   // the same, and for one that holds a whole source (exchange/json.h)
    bool states = false; // says of a text whether it is final
    keyed_reader keyed = nullptr; // of files to come over from, where they hold keys
    bool by_code = false;         // a file may hold any languages, whatever its own name is

    bool is_whole() const { return read == nullptr && write != nullptr; }
};

std::span<const format> formats();
std::vector<const char *> format_names();         // in the table's order
std::vector<const char *> written_format_names(); // the same, of those that are written
inline constexpr char format_help[] = "po, pot, ts, xliff, xliff2, tmx, tbx, csv or json";
inline constexpr char import_format_help[] =
    "po, pot, ts, xliff, xliff2, tmx, tbx, csv, json, ini or rc";
const format *find_format(std::string_view name); // null when there is none

// Reads all texts of a file, for whoever looks among them: the format is known by its name, or for
// a null one by the file's ending. The answer is complete, or the fault says why it is not.
struct read_answer {
    file_texts file;
    fault wrong;
};
read_answer read_file_texts(const char *format_name, const std::string &path,
                            encoding good = encoding::utf8);

} // namespace zel::exchange
