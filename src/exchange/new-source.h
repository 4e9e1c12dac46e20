#pragma once

// A source from the catalogs of a project that comes over from them: one for each language, or
// several of one name in different folders.
//
// An item's name is the message's id; its group is the context, or without one the name of the
// code file that the first place of use names ("window" of src/window.c:31), else "messages".
// The default language's text is the id. A plural is the item "ID|PLURAL ID", whose texts hold
// their forms as lang_plural of liblang reads them (exchange/plural-reader.h); where both ids are
// the same, the item is that and the default language's text repeats it. Ids that hold the sign
// between forms make two items, with the first form and the last. Programmers' remarks are the
// description, translators' remarks a comment in their language, as is a form without a place;
// places are where it is used. Every item is used, none is ready; with a template, what that lacks
// is not used. Where lang-kit exported the
// catalog, its keys give group and item back.
//
// TS files are taken in the same way, as exchange/ts.h tells, and so are files with a text for each
// key, by the texts of the default language (exchange/keyed-source.h).

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "exchange/input.h"
#include "exchange/plural-reader.h"
#include "exchange/po-message.h"
#include "exchange/texts.h"
#include "source/item-index.h"
#include "source/model.h"

namespace zel::exchange {

struct new_request {
    std::string default_language = "english";
    std::string group;    // for messages without a context; empty: by their place of use
    bool guesses = false; // fuzzy texts too
    std::int64_t now = 0;
};

class new_source {
public:
    explicit new_source(const new_request &request);

    // Takes the messages of a project's template (a .pot), whose own texts count for nothing.
    // Before the catalogs.
    fault take_template(const std::string &path, std::string_view bytes);

    // Adds a catalog. After a fault the source is of no use.
    fault take(const std::string &path, std::string_view bytes);
    fault take_ts(const std::string &path, std::string_view bytes);

    // The same for one language of a file that somebody else has read.
    fault take_language(const std::string &path, const said_language &language,
                        const std::vector<po_message> &messages);

    // What the source calls a file's language, and its code.
    static std::pair<std::string, std::string> name_language(const std::string &path,
                                                             const said_language &said);

    // Adds a line that somebody should know.
    void tell(const std::string &line) { notes_.push_back(line); }

    LangSource *source() const { return source_.get(); }

    // What has no place in a source: fuzzy texts, obsolete messages, plural forms between the first
    // and the last.
    std::uint32_t guesses() const { return guesses_; }
    std::uint32_t obsolete() const { return obsolete_; }
    std::uint32_t forms() const { return forms_; }

    // How many items that others have no catalog of a language has, by the language's name. Empty
    // with a template, which says what there is.
    std::map<std::string, std::uint32_t> lacking() const;

    // What else somebody should know, a line each that begins with the catalog.
    const std::vector<std::string> &notes() const { return notes_; }

    // How many items have a text in each language, by the language's name.
    const std::map<std::string, std::uint32_t> &texts() const { return texts_; }

private:
    using item_set = std::unordered_set<const item_t *>;

    struct catalog {
        std::string path;
        std::string language;
        bool own = false;          // exported by lang-kit
        bool flags = false;        // says of any message that it is a format
        bool tells_plurals = true; // so that a text without forms is none
        plural_reader plurals;
        item_set *met = nullptr; // of its language
    };
    // A message's part of an item.
    struct part {
        std::string name;
        std::string text;
        std::string remark; // besides those of the message
        bool plural = false;
        std::string instead = {}; // the default language's text, where it is not the name
    };

    void add_language(const std::string &name);
    fault choose_language(catalog &of, const said_language &said);
    fault take_header(catalog &of, std::string_view bytes, const po_message &message);
    fault take_messages(catalog &of, const said_language &language, const std::string &field,
                        const std::vector<po_message> &messages);
    fault take_message(catalog &of, const po_message &message);
    void finish(const catalog &of);
    fault take_plural(catalog &of, const po_message &message, bool is_guess);
    void take_apart(const catalog &of, const po_message &message,
                    const plural_reader::answer &forms);
    void take_part(const catalog &of, const po_message &message, const part &one);
    void put_flags(const catalog &of, item_t *item, const po_message &message,
                   std::string_view text, bool is_plural);
    void put_translation(const catalog &of, const po_message &message, item_t *item,
                         const std::string &text);
    item_t *item_of(const catalog &of, const po_message &message, const part &one);
    void note(const catalog &of, std::uint32_t line, const std::string &text);
    void note_places(const catalog &of, std::size_t texts);
    item_t *make_item(const std::string &group, const std::string &name, const po_message &message);
    static std::string came(const catalog &of, std::string text);
    std::string group_of(const po_message &message) const;

    new_request request_;
    source_guard source_;
    item_index items_;
    std::unordered_map<std::string, item_t *> known_; // by context and id
    std::unordered_map<std::string, int> numbers_;    // of the last group of that name, by item
    std::map<std::string, item_set> met_;             // in each language's catalogs
    enum class from { catalogs, a_template, catalogs_behind_one } reading_ = from::catalogs;
    std::map<std::string, std::string> codes_;      // of the languages, by name
    std::unordered_set<const item_t *> translated_; // that the default language's catalog has had
    std::map<std::string, std::string> files_;      // the first one of each language
    std::map<std::string, std::uint32_t> texts_;
    std::uint32_t guesses_ = 0;
    std::uint32_t forms_ = 0;
    std::uint32_t obsolete_ = 0;
    std::vector<std::string> notes_;
    std::size_t places_ = 0; // texts with %n or %1, of all files
    std::size_t files_with_places_ = 0;
    std::size_t places_note_ = 0; // the line that tells them
};

} // namespace zel::exchange
