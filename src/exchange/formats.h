#pragma once

// The formats that texts are exchanged in: a row and a file each. Nothing here prints.

#include <span>
#include <string>

#include "exchange/export.h"
#include "exchange/texts.h"

namespace zel::exchange {

// What a format writes.
enum class files { per_language, one };

struct format {
    const char *name;   // "po", as options have it
    const char *ending; // of its files: ".po"
    files writes;
    texts_writer write;
    texts_reader read;   // null for one that holds a whole source, not texts (exchange/json.h)
    bool states = false; // says of a text whether it is final

    bool is_whole() const { return read == nullptr; }
};

std::span<const format> formats();
std::vector<const char *> format_names();
inline constexpr char format_help[] = "po, pot, ts, xliff, xliff2, tmx, csv or json";
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
