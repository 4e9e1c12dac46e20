#include "lint/rules.h"

#include "lint/rule-list.h"

#include <algorithm>
#include <array>

namespace zel::lint {

namespace {

using enum level;
using enum rule_id;

// id, name, level, meaning, which texts, the judge of a text, the judge of an item. A row without
// judges is found elsewhere: by the reader, in the code, or across items (lint/across).
constexpr rule table[] = {
    {syntax, "syntax", error, "the file does not read, or a merge left its markers in it",
     scope::alone, nullptr, nullptr},
    {encoding, "encoding", error, "bytes that are no UTF-8, control characters", scope::alone,
     judge_encoding, judge_item_encoding},
    {format, "format", error,
     "the conversions of printf differ from the item's in kind, number, size or order", scope::code,
     judge_format, nullptr},
    {symbol, "symbol", error, "a name between percent signs is missing or not the item's",
     scope::code, judge_symbol, nullptr},
    {duplicate, "duplicate", error,
     "two items of one group and name, two texts or definitions of one language", scope::alone,
     nullptr, nullptr},
    {undefined, "undefined", error, "a text in a language that has no definition", scope::alone,
     nullptr, judge_undefined},
    {adjacent, "adjacent", error,
     "a request in the code whose text is in pieces of which only the first is read (--code)",
     scope::alone, nullptr, nullptr},
    {unknown, "unknown", error, "the code asks for an item that the source does not have (--code)",
     scope::alone, nullptr, nullptr},
    {unread, "unread", error, "a request in the code that the check cannot read (--code)",
     scope::alone, nullptr, nullptr},
    {rule_id::max, "max", error,
     "longer than a comment allows: \"lint: max 20\" characters; what \"max 120px\" allows, only "
     "the "
     "editor can measure",
     scope::alone, nullptr, judge_max},
    {missing, "missing", warning, "there is no text in the language", scope::alone, nullptr,
     judge_missing},
    {empty, "empty", warning, "there is a text, but nothing in it", scope::alone, nullptr,
     judge_empty},
    {markup, "markup", warning, "tags or entities differ from the reference, or do not close",
     scope::alone, judge_markup, nullptr},
    {mnemonic, "mnemonic", warning,
     "an underscore before a letter where the reference has none, or none, or two",
     scope::reference, judge_mnemonic, nullptr},
    {blank, "blank", warning, "blanks and line ends at the two ends differ", scope::reference,
     judge_blank, nullptr},
    {item_end, "item-end", warning, "an item ends in white space, which its texts cannot",
     scope::alone, nullptr, judge_item_end},
    {ending, "ending", warning, "the sign at the end differs", scope::reference, judge_ending,
     nullptr},
    {bidi, "bidi", warning, "a character that turns the text around is not closed", scope::alone,
     judge_bidi, nullptr},
    {bracket, "bracket", warning, "a bracket without its other half", scope::alone, judge_bracket,
     nullptr},
    {link, "link", warning, "an address, a path or a number differs", scope::alone, nullptr,
     judge_link},
    {plural, "plural", warning,
     "\"%d note|%d notes\" with another count of forms than the language has", scope::alone,
     nullptr, judge_plural},
    {same, "same", info, "the text is the reference text", scope::reference, nullptr, judge_same},
    {length, "length", info, "over twice as long as a reference of more than ten characters",
     scope::reference, judge_length, nullptr},
    {repeated, "repeated", info, "a word stands there twice", scope::alone, judge_repeated,
     nullptr},
    {consistency, "consistency", info, "one reference text has two translations", scope::alone,
     nullptr, nullptr},
    {collision, "collision", info, "two texts of a group have the same mnemonic", scope::alone,
     nullptr, nullptr},
    {unused, "unused", info, "the application does not ask for the item", scope::alone, nullptr,
     judge_unused},
    {not_ready, "not-ready", info, "the item is not marked ready", scope::alone, nullptr,
     judge_not_ready},
    {unasked, "unasked", info, "no file of the code asks for the item (--code)", scope::alone,
     nullptr, nullptr},
    {stale, "stale", info, "a text was carried from a changed item, and nobody has looked at it",
     scope::alone, nullptr, judge_stale},
    {term, "term", info, "a term of terms.lang-src beside the source is another word (--only term)",
     scope::alone, nullptr, judge_term},
};

// Findings index the table by their id, and the list of "--rules" shows the gravest first.
constexpr bool is_good()
{
    for (std::size_t i = 0; i < std::size(table); ++i) {
        if (static_cast<std::size_t>(table[i].id) != i)
            return false;
        for (std::size_t j = 0; j < i; ++j)
            if (std::string_view(table[i].name) == table[j].name ||
                table[i].severity < table[j].severity)
                return false;
    }
    return true;
}
static_assert(is_good(), "rows stand in the order of their ids and levels, no name twice");
static_assert(std::size(table) == static_cast<std::size_t>(term) + 1);

} // namespace

const char *level_name(level of)
{
    static constexpr std::array names{"error", "warning", "info"};
    return names[static_cast<std::size_t>(of)];
}

std::span<const rule> rules() { return table; }

const rule *find_rule(std::string_view name)
{
    const rule *found = std::find_if(std::begin(table), std::end(table),
                                     [&](const rule &row) { return row.name == name; });
    return found == std::end(table) ? nullptr : found;
}

} // namespace zel::lint
