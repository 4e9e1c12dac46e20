#pragma once

// A source as the writers of the formats see it: the items and languages that go out, each text in
// one piece, the reference text beside it.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/input.h"
#include "source/entry.h"
#include "source/model.h"
#include "support/hash-index.h"

namespace zel::exchange {

enum class message_context { key, group, none };

// Which texts go out as final: those of items that are ready, all, or none.
enum class ready_mark { as_is, all, none };

struct export_request {
    LangSource *source = nullptr;
    std::vector<std::string> languages; // names; none: all that are defined
    bool unused = false;                // items too that the application does not use
    bool fuzzy = false;                 // items that are not ready are marked so
    // What tells a catalog's messages apart besides their texts; none said: the key.
    std::optional<message_context> context;
    ready_mark ready = ready_mark::as_is; // in formats that have states
    bool comments = false;                // in formats that have them only when wanted
    // Of tables.
    bool header = true;    // a first row that names the columns
    bool plain = false;    // for programs: no sign that keeps a spreadsheet from calculating a text
    bool glossary = false; // a column of terms, and one of each language by its code; plain
};

// One item on its way out. Texts are in one piece, bytes as the source has them.
struct outgoing_item {
    item_t *item;
    std::string_view group;
    std::string_view name;
    std::string reference; // the default language's text, or the item's name
    struct translation {
        bool there = false; // false: the item has no entry in the language
        std::string text;
        std::string comment;
    };
    std::vector<translation> texts; // one for each language of the export
    std::string default_comment;    // in the default language
};

// One file under construction: whoever keeps it gets the text in large pieces.
struct outgoing_file {
    std::function<void(std::string_view)> keep;
    std::string text;

    void flush();       // what is there
    void flush_large(); // the same once it is worth it
};

class exporter {
public:
    explicit exporter(const export_request &request);

    const export_request &request() const { return request_; }
    const LangSource &source() const { return *request_.source; }

    // The languages that go out, in the order of their definitions, each name once. A wanted
    // language that is not defined is the fault.
    const std::vector<const lang_t *> &languages() const { return languages_; }
    const fault &wrong() const { return wrong_; }

    // Items that are left out because another of that group and name stands before them.
    std::uint32_t repeated() const { return repeated_; }

    // Plurals that a format could not write as they are: with another number of forms than their
    // language, and those of which a form is empty, which are left out.
    struct plural_count {
        std::uint32_t uneven = 0;
        std::uint32_t partly = 0;
    };
    plural_count plurals;
    std::uint32_t unheld = 0; // texts that a format could not hold, and that are left out

    // Forms of texts for which a format's own way of counting has no number, a line each.
    std::vector<std::string> lost;

    // Whether an item's texts go out as final.
    bool is_final(const item_t *item) const
    {
        return request_.ready == ready_mark::as_is ? item->ready != 0
                                                   : request_.ready == ready_mark::all;
    }

    // Whether a memory or a glossary may hold an item's text in one of the languages: a
    // translation, and no guess.
    bool is_pair(const outgoing_item &item, std::size_t language) const;

    // Calls for each item, once per group and name; the record is good for the call.
    void each_item(const std::function<void(const outgoing_item &)> &write);

private:
    void fill(outgoing_item &out, const edit_t *group, item_t *item) const;
    std::uint32_t language_at(const char *name, std::uint32_t guess) const;

    export_request request_;
    std::vector<const lang_t *> languages_;
    hash_index names_; // of them
    fault wrong_;
    std::uint32_t repeated_ = 0;
};

// Writes the files of an export: one for each of the exporter's languages, or a single one.
using texts_writer = void (*)(exporter &from, std::vector<outgoing_file> &to);

} // namespace zel::exchange
