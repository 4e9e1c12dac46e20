#pragma once

// A command of the user's that knows texts: a machine that translates, or a server that remembers.
// This program has no network and no key; the command may have both.
//
// It gets a line of JSON for each text that is wanted, on its standard input (here over several):
//
//   {"reference": "Open a file", "language": "german", "code": "de", "group": "menu",
//    "item": "Open a file", "description": "", "texts": {"french": "Ouvrir un fichier"},
//    "remarks": {"english": "in the title"}, "places": ["src/window.c:31"],
//    "terms": {"File": "Datei"}}
//
// and answers each with a line, in the same order: the text as a JSON string, "" or null for none.

#include <optional>
#include <string>
#include <vector>

#include "kit/support/entry-index.h"
#include "lint/glossary.h"
#include "source/model.h"

namespace zel::kit {

struct wanted_text {
    const edit_t *group;
    item_t *item;
    const char *language;
};

// A text for each that is wanted; those of a language stand side by side. Its terms are those of
// the list, which may be null, and of the source's short texts. Nothing, after a line on standard
// error, when the command cannot be run, fails, or answers anything else.
std::optional<std::vector<std::string>>
ask_command(const std::string &command, const LangSource *source, const entry_index &entries,
            const lint::glossary *list, const std::vector<wanted_text> &wanted);

} // namespace zel::kit
