#pragma once

// The text of a language source file, as its writer puts it together: piece by piece, so that it
// may be done beside other work.

#include <cstddef>
#include <functional>
#include <string>

#include "source/model.h"

namespace zel {

struct text_how {
    const char *name = nullptr;        // the path for the last line
    const char *only_lang_1 = nullptr; // both given: these languages and no other
    const char *only_lang_2 = nullptr;
    bool trim = true; // white space at the end of texts is removed, from the source as well; else
                      // the source is only read
    std::function<bool(const lang_entry_t *)> leaves_out; // entries of no text that are not written
};

// Between two pieces texts of the source may change, and entries, items and groups may be added;
// what has been written is not looked at again. No group or item may be removed.
class source_text {
public:
    // Copies nothing: source and names must outlive this object.
    source_text(const LangSource *source, text_how how);

    // Appends the next pieces with that many items, or to the end: false when that was appended.
    bool append(std::string &out, std::size_t items);

private:
    bool is_selected(const char *lang) const;
    void append_head(std::string &out) const;
    void append_languages(std::string &out) const;
    void append_attributes(std::string &out, const item_t *item) const;
    void append_entries(std::string &out, const char *keyword, GList *entries) const;
    void append_item(std::string &out, const edit_t *group, const item_t *item) const;
    bool append_next(std::string &out, std::size_t &items);

    const LangSource *source_;
    text_how how_;
    bool selected_only_;         // the two languages and no other
    bool begun_ = false;         // the head is written
    GList *group_ = nullptr;     // to be written, or being written
    bool inside_ = false;        // the group's head is written
    GList *last_item_ = nullptr; // the last one of it that was looked at
};

} // namespace zel
