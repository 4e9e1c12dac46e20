#pragma once

// What a source holds, as tables: every value of its records by which two sources can differ, each
// with the name that people know it by. Stamps, places and texts stand beside the tables, since
// comparing and merging treat them each in a way of its own.

#include <cstdint>
#include <string>
#include <string_view>

#include "source/entry.h"
#include "source/model.h"

namespace zel {

// Words for the values of a mark, the last one for all that are greater.
struct mark_words {
    const char *names[3];
    std::uint32_t last;
};
inline constexpr mark_words yes_no{{"no", "yes", nullptr}, 1};
inline constexpr mark_words encodings{{"ascii", "ascii", "utf8"}, LANG_SOURCE_UTF8};

// Whose a value is: when both sides of a merge change it, only what people decided is a conflict.
enum class origin {
    people,
    approval, // people's too, but worth nothing where texts are in conflict
    check     // found in the code, and found again by the next check
};

// One value of a record: a number, a mark or a text, whichever member is set.
template <class T>
struct field {
    const char *name;
    std::int32_t T::*number = nullptr;
    std::uint32_t T::*mark = nullptr;
    char *T::*text = nullptr;
    const mark_words *words = nullptr; // of the mark
    const char *without = "";          // what is written for a text that is null
    origin from = origin::people;
};

inline constexpr field<LangSource> source_fields[] = {
    {"format", nullptr, &LangSource::format, nullptr, &encodings},
    {"app", nullptr, nullptr, &LangSource::app, nullptr, "unknown"},
    {"default lang", nullptr, nullptr, &LangSource::default_lang, nullptr, "english"},
    {"colwidth group", &LangSource::colwidth_group},
    {"colwidth item", &LangSource::colwidth_item},
    {"colwidth ctrl", &LangSource::colwidth_ctrl},
};

inline constexpr field<lang_t> language_fields[] = {
    {"file", nullptr, nullptr, &lang_t::file},
    {"value 1", &lang_t::value_1},
    {"value 2", &lang_t::value_2},
    {"edit", &lang_t::edit},
};

inline constexpr field<edit_t> group_fields[] = {
    {"visible", &edit_t::visible},
    {"screen_shot", nullptr, nullptr, &edit_t::screen_shot},
};

inline constexpr field<item_t> item_fields[] = {
    {"description", nullptr, nullptr, &item_t::description, nullptr, "none"},
    {"typ", &item_t::typ, nullptr, nullptr, nullptr, "", origin::check},
    {"rowheight", &item_t::rowheight},
    {"visible", &item_t::visible},
    {"ready", &item_t::ready, nullptr, nullptr, nullptr, "", origin::approval},
    {"changed", nullptr, &item_t::changed, nullptr, &yes_no},
    {"used", nullptr, &item_t::used, nullptr, &yes_no, "", origin::check},
};

// A value as it is shown. None is one that is not there.
struct field_value {
    enum kind { none, number, word, text } is = none;
    std::string shown; // without quotes
};

template <class T>
std::string_view text_of(const field<T> &row, const T &record)
{
    const char *text = record.*row.text;
    return text == nullptr ? row.without : text;
}

template <class T>
const char *mark_of(const field<T> &row, const T &record)
{
    const std::uint32_t value = record.*row.mark;
    return row.words->names[value < row.words->last ? value : row.words->last];
}

// Whether two records agree in a value: what is written for both is the same.
template <class T>
bool agree(const field<T> &row, const T &a, const T &b)
{
    if (row.number != nullptr)
        return a.*row.number == b.*row.number;
    if (row.mark != nullptr)
        return std::string_view(mark_of(row, a)) == mark_of(row, b);
    return a.*row.text == b.*row.text || text_of(row, a) == text_of(row, b);
}

template <class T>
field_value value_of(const field<T> &row, const T &record)
{
    if (row.number != nullptr)
        return {field_value::number, std::to_string(record.*row.number)};
    if (row.mark != nullptr)
        return {field_value::word, mark_of(row, record)};
    return {field_value::text, std::string(text_of(row, record))};
}

// The whole text of an entry, which may be null.
field_value value_of(const lang_entry_t *entry);

// Whether two lists are one text. However it is cut into strings does not count.
bool same_text(GList *a, GList *b);

// The same, but for white space at the end, which is not written.
bool same_written_text(GList *a, GList *b);

// Whether two lists are the same strings.
bool same_strings(GList *a, GList *b);

} // namespace zel
