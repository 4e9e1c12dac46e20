#include "lint/markup.h"

#include "lint/name-set.h"
#include "lint/rule-list.h"

#include <algorithm>
#include <array>
#include <vector>

namespace zel::lint {

namespace {

enum class tag_kind { open, close, whole };

struct tag {
    std::string name; // in lower case
    tag_kind kind;
    bool has_attributes;
    bool counts; // a tag, and no word between angle brackets
};

struct entities {
    std::vector<std::string_view> named; // with "&" and ";"
    bool bare = false;                   // an ampersand that begins none
};

// Names that are tags wherever they stand; others are words between angle brackets unless they are
// closed. The second ones need no end.
constexpr std::string_view known_tags[] = {"b",  "big", "i",    "s",    "sub", "sup", "small",
                                           "tt", "u",   "span", "font", "a",   "em",  "strong"};
constexpr std::string_view open_tags[] = {"br", "hr", "img", "p", "li"};

template <class List>
bool is_in(const List &list, std::string_view name)
{
    return std::find(std::begin(list), std::end(list), name) != std::end(list);
}

// "<" ["/"] NAME [ATTRIBUTE...] ["/"] ">" at the start of the text: its length, 0 for none.
std::size_t read_tag(std::string_view text, tag &found)
{
    std::size_t at = 1;
    const bool closes = at < text.size() && text[at] == '/';
    at += closes ? 1 : 0;
    const std::size_t start = at;
    while (at < text.size() &&
           (is_ascii_letter(text[at]) ||
            (at > start && (is_ascii_digit(text[at]) || text[at] == '_' || text[at] == '-'))))
        ++at;
    if (at == start || at == text.size())
        return 0;
    found.name.assign(text.substr(start, at - start));
    std::transform(found.name.begin(), found.name.end(), found.name.begin(),
                   [](char c) { return g_ascii_tolower(c); });
    const std::size_t end = text.find_first_of("<>", at);
    if (end == std::string_view::npos || text[end] != '>')
        return 0;
    const std::string_view rest = text.substr(at, end - at);
    const bool whole = rest.ends_with('/');
    found.has_attributes = rest.find('=') != std::string_view::npos;
    const bool plain = std::all_of(rest.begin(), rest.end() - (whole ? 1 : 0), is_blank);
    if (!plain && !(found.has_attributes && is_blank(rest.front())))
        return 0;
    found.kind = closes ? tag_kind::close : whole ? tag_kind::whole : tag_kind::open;
    return end + 1;
}

std::vector<tag> read_tags(std::string_view text)
{
    std::vector<tag> out;
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at)) {
        tag found{};
        const std::size_t length = read_tag(text.substr(at), found);
        if (length != 0)
            out.push_back(std::move(found));
        at += std::max<std::size_t>(length, 1);
    }
    return out;
}

name_set closed_names(const std::vector<tag> &tags)
{
    std::vector<std::string_view> names;
    for (const tag &one : tags)
        if (one.kind == tag_kind::close)
            names.push_back(one.name);
    return name_set(std::move(names));
}

// Leaves the tags of the text, and no words between angle brackets.
void drop_words(std::vector<tag> &tags, const std::vector<tag> &reference)
{
    const name_set closed = closed_names(tags);
    const name_set closed_there = closed_names(reference);
    for (tag &one : tags)
        one.counts = one.kind == tag_kind::whole || is_in(known_tags, one.name) ||
                     is_in(open_tags, one.name) || closed.has(one.name) ||
                     closed_there.has(one.name);
    std::erase_if(tags, [](const tag &one) { return !one.counts; });
}

entities read_entities(std::string_view text)
{
    entities out;
    for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&', at)) {
        std::size_t end = at + 1;
        if (end < text.size() && text[end] == '#')
            ++end;
        const std::size_t start = end;
        while (end < text.size() && (is_ascii_letter(text[end]) || is_ascii_digit(text[end])))
            ++end;
        if (end > start && end < text.size() && text[end] == ';')
            out.named.push_back(text.substr(at, end + 1 - at));
        else
            out.bare = true;
        at = end;
    }
    return out;
}

std::vector<std::string> written(const std::vector<tag> &tags)
{
    std::vector<std::string> out;
    out.reserve(tags.size());
    for (const tag &one : tags)
        out.push_back((one.kind == tag_kind::close ? "</" : "<") + one.name +
                      (one.kind == tag_kind::whole ? "/>" : ">"));
    std::sort(out.begin(), out.end());
    return out;
}

// The tag that is not closed, or closes what is not open; empty when all is well.
std::string find_open(const std::vector<tag> &tags)
{
    std::vector<std::string_view> open;
    for (const tag &one : tags) {
        if (one.kind == tag_kind::whole || is_in(open_tags, one.name))
            continue;
        if (one.kind == tag_kind::open) {
            open.push_back(one.name);
        } else if (open.empty() || open.back() != one.name) {
            return "</" + one.name + ">";
        } else {
            open.pop_back();
        }
    }
    return open.empty() ? std::string() : "<" + std::string(open.back()) + ">";
}

} // namespace

std::size_t tag_length(std::string_view text)
{
    tag found{};
    return text.starts_with('<') ? read_tag(text, found) : 0;
}

bool judge_markup(const text_case &at, std::string &message)
{
    if (!at.own.has(has_angle | has_ampersand) && !at.reference.has(has_angle | has_ampersand))
        return false;
    if (at.own.is_blank())
        return false;
    std::vector<tag> own = read_tags(at.own.bytes);
    std::vector<tag> reference = read_tags(at.reference.bytes);
    drop_words(own, reference);
    drop_words(reference, reference);
    if (!at.reference.bytes.empty()) {
        const auto own_tags = written(own);
        const auto reference_tags = written(reference);
        if (const auto gone = lacking(reference_tags, own_tags); !gone.empty())
            message = "the tag " + gone.front() + " of the reference is missing";
        else if (const auto added = lacking(own_tags, reference_tags); !added.empty())
            message = "the reference has no tag " + added.front();
    }
    if (message.empty() && find_open(reference).empty())
        if (const std::string open = find_open(own); !open.empty())
            message = "the tag " + open + " has no other half";
    if (!message.empty())
        return true;
    const entities own_entities = read_entities(at.own.bytes);
    const entities reference_entities = read_entities(at.reference.bytes);
    const bool is_markup = !reference.empty() || !reference_entities.named.empty();
    if (is_markup && own_entities.bare && !reference_entities.bare)
        message = "an ampersand begins no entity; write \"&amp;\" for the sign itself";
    else if (!is_markup && !at.reference.bytes.empty() && !own_entities.named.empty())
        message = "the reference has no entity " + std::string(own_entities.named.front());
    return !message.empty();
}

} // namespace zel::lint
