#pragma once

// Takes texts from outside into a source: only texts (and comments where wanted), only of items and
// languages that it has. A text that the file lacks changes nothing. What is there and differs is
// replaced, the item counts as changed and loses its ready mark, unless the file says that the text
// is final; a guess is left out unless wanted.

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "exchange/formats.h"
#include "exchange/item-finder.h"
#include "exchange/plural-reader.h"
#include "source/item-index.h"
#include "source/model.h"

namespace zel::exchange {

enum class import_kind {
    text,     // a text was replaced
    comment,  // a comment was
    unfit,    // a plural whose forms cannot stand in one text
    outdated, // with the text: it translates another text than the source has now
    unknown_item,
    ambiguous,       // several items may be meant, whose keys are told
    unknown_language // said once for each language of a file
};

struct import_event {
    import_kind kind;
    const text_unit *unit;
    std::string_view language; // as the source names it, or for an unknown one as the file does
    std::string before;        // text or comment; for an outdated one what was translated
    std::string after;
};

struct import_request {
    bool comments = false;
    bool guesses = false; // fuzzy ones too
    ready_mark ready =
        ready_mark::as_is; // which texts count as final: those that say so, all, none
    std::string language;  // every file is of this language, whatever it says; empty: as it says
    std::function<void(const import_event &)> hear;
};

class importer {
public:
    importer(LangSource *source, const import_request &request);

    // Reads a file's bytes. After a fault the source may be changed in part: it is of no use then.
    fault take(const format &row, const std::string &path, std::string_view bytes);

    // So far: texts and comments that were replaced, and guesses that were left out.
    std::uint32_t changed() const { return changed_; }
    std::uint32_t guesses() const { return guesses_; }

    // Of the last file, a line each: what its format says of it; what became of plurals, of which
    // those without a text for each form count as untranslated.
    const std::vector<std::string> &notes() const { return notes_; }
    std::vector<std::string> plural_notes() const;

private:
    const char *language_of(const file_texts &file, const text_unit &unit, std::string_view path);
    bool join(const char *language, text_unit &unit);
    std::vector<item_finder::found> items_of(const char *language, text_unit &unit, bool at_end);
    void count_as(const char *language, const std::string &field, std::uint32_t line);
    void find_rivals();
    void take_deferred();
    bool have_one_text(const std::vector<item_finder::found> &all, const char *language) const;
    void take_unit(const char *language, text_unit &unit, bool at_end = false);
    bool is_same_text(const char *language, const text_unit &unit, std::string_view before) const;
    bool is_outdated(const text_unit &unit, std::string_view reference) const;
    void take_text(item_t *item, const char *language, const text_unit &unit);
    void confirm(item_t *item, const char *language, const text_unit &unit);
    void take_comment(item_t *item, const char *language, const text_unit &unit);
    void say(import_kind kind, const text_unit &unit, std::string_view language,
             std::string before = {}, std::string after = {});

    using unit_name = std::pair<std::uint32_t, std::string_view>; // its language and reference

    LangSource *source_;
    import_request request_;
    item_index items_;
    item_finder finder_;
    std::vector<const char *> resolved_; // of the file's languages; null: not known
    std::vector<text_unit> deferred_;    // of the file, which several items may be meant by
    std::set<unit_name> rivals_;         // of these, by reference
    plural_reader plurals_;              // of the file, for the language that is counted
    const char *counted_ = nullptr;
    std::vector<std::string> plural_notes_; // of the file's languages before that one
    std::vector<std::string> notes_;        // of the file
    fault wrong_;
    bool confirmed_ = false; // the text that was taken last; it was a guess
    std::uint32_t changed_ = 0;
    std::uint32_t guesses_ = 0;
};

// The language that a file means, as the source names it: by the name it says, else by the file's
// own name (an empty path for a file of several languages), else by its code, which one language
// must have alone. Null when that is none. What somebody says of the file counts in place of all
// that.
const char *find_language(const LangSource &source, const said_language &said,
                          std::string_view path, const std::string &instead = {});

// Joins the forms of a plural to its text, for the language that the reader was opened for; what
// has no place is added to the note. A text without forms stays what it is.
plural_reader::answer join_forms(plural_reader &plurals, text_unit &unit);

// What a message calls such a language.
std::string_view shown_name(const said_language &said, std::string_view path);

// The encoding of a source's texts.
encoding encoding_of(const LangSource &source);

} // namespace zel::exchange
