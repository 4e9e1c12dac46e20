#include "lint/item-case.h"
#include "lint/links.h"
#include "lint/name-set.h"
#include "lint/rule-list.h"

#include <algorithm>
#include <map>
#include <vector>

namespace zel::lint {

namespace {

// Whether the address or one below it is there.
bool has_page(const std::vector<std::string> &addresses, const std::string &one)
{
    const auto below = std::lower_bound(addresses.begin(), addresses.end(), one + "/");
    return std::binary_search(addresses.begin(), addresses.end(), one) ||
           (below != addresses.end() && below->starts_with(one + "/"));
}

// Whether one of the added addresses replaces that of the reference rightly: it is the same page in
// the other scheme, or the language's own page below it. Hosts of examples are nobody's, and people
// translate them.
bool stands_for(const std::vector<std::string> &added, const std::string &address)
{
    std::string other = address;
    if (other.starts_with("https:"))
        other.erase(4, 1);
    else if (other.starts_with("http:"))
        other.insert(4, "s");
    return address.find("example.") != std::string::npos || has_page(added, address) ||
           has_page(added, other);
}

// The address behind "http://" or "https://".
std::string without_scheme(const std::string &address)
{
    for (const std::string_view scheme : {"http://", "https://"})
        if (address.starts_with(scheme))
            return address.substr(scheme.size());
    return address;
}

// The word around the two positions.
std::string_view word_around(std::string_view text, std::size_t begin, std::size_t end)
{
    while (begin > 0 && is_ascii_letter(text[begin - 1]))
        --begin;
    while (end < text.size() && is_ascii_letter(text[end]))
        ++end;
    return text.substr(begin, end - begin);
}

// Whether one is the other with a slip of two characters, or its beginning; "/fr/" in the place of
// "/en/" is none, nor a folder in that of its index.
bool is_slip_of(std::string_view own, std::string_view reference)
{
    constexpr std::size_t most = 2;
    constexpr std::size_t code = 2; // letters that name a language
    const std::size_t shorter = std::min(own.size(), reference.size());
    std::size_t same = 0;
    while (same < shorter && own[same] == reference[same])
        ++same;
    std::size_t behind = 0;
    while (behind < shorter - same &&
           own[own.size() - 1 - behind] == reference[reference.size() - 1 - behind])
        ++behind;
    return (same == own.size() && !reference.substr(same).starts_with("/index.")) ||
           (std::max(own.size(), reference.size()) - same - behind <= most &&
            (word_around(own, same, own.size() - behind).size() != code ||
             word_around(reference, same, reference.size() - behind).size() != code));
}

// What a text lacks of its reference, and what it has that the reference has not.
struct difference {
    std::size_t language;
    links own;
    std::vector<std::string> gone_addresses;
    std::vector<std::string> added_addresses;
    std::vector<const number *> gone; // of the reference's
    std::vector<const number *> added;
};

// How often all texts of the item differ from the reference. Where many languages have another
// number, each puts its own; where several have the same address, the reference had that one
// before.
struct evidence {
    std::size_t texts = 0;
    std::map<std::string, std::size_t> addresses; // that were added
    std::map<const number *, std::size_t> gone;
    std::map<std::pair<const number *, std::string_view>, std::size_t> instead;

    void add(const difference &one)
    {
        for (const std::string &address : one.added_addresses)
            ++addresses[without_scheme(address)];
        for (const number *number : one.gone) {
            ++gone[number];
            for (const auto *other : one.added)
                ++instead[{number, other->value()}];
        }
    }
};

void tell(std::string &message, std::string_view what, std::string_view gone,
          const std::string *added)
{
    message.append("the ").append(what).append(" ").append(gone);
    if (added == nullptr)
        message.append(" of the reference is missing");
    else
        message.append(" is ").append(*added);
}

void find_addresses(difference &of, const std::vector<std::string> &reference)
{
    of.gone_addresses = lacking(reference, of.own.addresses);
    of.added_addresses = lacking(of.own.addresses, reference);
    std::erase_if(of.gone_addresses,
                  [&](const std::string &one) { return stands_for(of.added_addresses, one); });
    if (of.gone_addresses.empty())
        return;
    // An address that the reference has in the other scheme replaces none that is missing.
    std::vector<std::string> known(reference.size());
    std::transform(reference.begin(), reference.end(), known.begin(), without_scheme);
    std::sort(known.begin(), known.end());
    std::erase_if(of.added_addresses, [&](const std::string &one) {
        return std::binary_search(known.begin(), known.end(), without_scheme(one));
    });
}

// Another address is a mistake where it is a slip of the reference's, or what the reference had
// before; else it is the language's own page or its translators' own mailbox.
bool judge_addresses(const difference &of, const evidence &all, std::string &message)
{
    constexpr std::size_t most = 8; // more are a list, which is not looked through
    constexpr std::size_t some = 3;
    if (of.gone_addresses.empty())
        return false;
    const std::span gone =
        std::span(of.gone_addresses).first(std::min(of.gone_addresses.size(), most));
    const std::span added =
        std::span(of.added_addresses).first(std::min(of.added_addresses.size(), most));
    if (added.empty()) {
        tell(message, "address", gone.front(), nullptr);
        return true;
    }
    for (const std::string &one : gone)
        for (const std::string &other : added)
            if (is_slip_of(other, one) || all.addresses.at(without_scheme(other)) >= some) {
                tell(message, "address", one, &other);
                return true;
            }
    return false;
}

bool judge_paths(const links &own, const links &reference, std::string &message)
{
    const auto gone = lacking(reference.paths, own.paths);
    if (gone.empty())
        return false;
    const auto added = lacking(own.paths, reference.paths);
    tell(message, "path", gone.front(), added.empty() ? nullptr : &added.front());
    return true;
}

std::vector<std::string_view> names_of(const std::vector<number> &numbers)
{
    std::vector<std::string_view> out;
    for (const number &one : numbers) {
        out.emplace_back(one.digits);
        if (one.value() != one.digits)
            out.push_back(one.value());
    }
    return out;
}

std::string all_digits(const std::vector<number> &numbers)
{
    std::string out;
    for (const number &one : numbers)
        out += one.digits;
    return out;
}

// Small ones are written as words.
bool is_small(std::string_view digits)
{
    return digits.size() == 1 || digits == "10" || digits == "11" || digits == "12";
}

// The first two numbers whose digits do not follow each other in the others, however those are
// grouped. So many that are grouped in other ways are a table, which is not looked through.
std::vector<const number *> find_others(const std::vector<number> &numbers, const links &others,
                                        bool with_small)
{
    constexpr int most_searches = 50;
    const std::string digits = all_digits(others.numbers) + others.named;
    const name_set known(names_of(others.numbers));
    int searches = 0;
    const auto is_there = [&](std::string_view one) {
        return (!with_small && is_small(one)) || known.has(one) || ++searches > most_searches ||
               digits.find(one) != std::string::npos;
    };
    std::vector<const number *> found;
    for (const number &one : numbers)
        if (found.size() < 2 && (with_small || !is_small(one.value())) && !known.has(one.value()) &&
            !is_there(one.digits) &&
            !(one.parts.size() > 1 && std::all_of(one.parts.begin(), one.parts.end(), is_there)))
            found.push_back(&one);
    return found;
}

// "1970" is "70", too.
bool is_year(std::string_view digits, const std::vector<number> &others)
{
    return digits.size() == 4 && std::any_of(others.begin(), others.end(), [&](const number &one) {
               return one.digits.size() == 2 && digits.ends_with(one.digits);
           });
}

// "16k" is "十六开", too.
bool has_numerals(std::string_view bytes)
{
    constexpr std::u32string_view numerals = U"〇一二三四五六七八九十百千万萬";
    for (std::size_t at = 0; at < bytes.size();)
        if (numerals.find(next_char(bytes, at)) != std::u32string_view::npos)
            return true;
    return false;
}

// "calendar:week_start:0" is a setting, which a language may have otherwise.
bool is_setting(std::string_view bytes)
{
    const std::size_t colon = bytes.find(':');
    return colon != std::string_view::npos && colon > 0 && is_ascii_letter(bytes[colon - 1]) &&
           std::none_of(bytes.begin(), bytes.end(), is_blank);
}

// "(e.g., 12/31/99)": people put their own.
bool is_example(std::string_view bytes, const number &one)
{
    constexpr std::string_view beginnings[] = {"e.g.", "xample", "such as", " like "};
    std::size_t begin = std::string_view::npos;
    const std::string_view before = bytes.substr(0, one.begin);
    for (const std::string_view word : beginnings)
        if (const std::size_t at = before.rfind(word); at != std::string_view::npos)
            begin = begin == std::string_view::npos ? at : std::max(begin, at);
    if (begin == std::string_view::npos)
        return false;
    const std::string_view between = before.substr(begin);
    const auto has = [&](std::string_view end) {
        return between.find(end, 4) != std::string_view::npos;
    };
    return !has(")") && !has(";") && !has(". ") && !has(".\n") && !has("\n\n");
}

// A text that has the reference's other numbers alone may say a round or a small one in words, if
// it is long enough for them.
bool may_be_in_words(const number &one, const links &own, const links &reference, bool is_long)
{
    const bool has_words = one.end - one.begin == one.digits.size() &&
                           (one.digits.size() <= 2 || one.digits.back() == '0');
    const name_set known(names_of(reference.numbers));
    return has_words && is_long &&
           std::all_of(own.numbers.begin(), own.numbers.end(),
                       [&](const number &other) { return known.has(other.digits); });
}

// A number in the place of another is about as long. Not every language counts from zero.
bool may_be_instead(const number &one, const number &other)
{
    return one.digits != "0" && std::max(one.digits.size(), other.digits.size()) -
                                        std::min(one.digits.size(), other.digits.size()) <=
                                    1;
}

// Whether a tenth of the languages, and not one alone, has something else for it, or nothing.
bool is_free(const difference &of, const evidence &all)
{
    std::size_t others = all.gone.at(of.gone.front());
    others -= of.added.empty() ? 1 : all.instead.at({of.gone.front(), of.added.front()->value()});
    return others >= 2 && 10 * others > all.texts;
}

bool judge_numbers(const difference &of, const links &expected, std::string_view own,
                   std::string_view reference, const evidence &all, std::string &message)
{
    // Where more than one is another, it is an example that is put in the language's own way: a
    // date, a time zone.
    if (of.gone.size() != 1 || of.added.size() > 1)
        return false;
    const number &gone = *of.gone.front();
    const number *added = of.added.empty() ? nullptr : of.added.front();
    if (is_year(gone.digits, of.own.numbers) || is_example(reference, gone) || is_free(of, all) ||
        (added == nullptr ? may_be_in_words(gone, of.own, expected,
                                            4 * count_chars(own) >= 3 * count_chars(reference))
                          : !may_be_instead(gone, *added)) ||
        has_numerals(own))
        return false;
    tell(message, "number", gone.shown, added == nullptr ? nullptr : &added->shown);
    return true;
}

class item_links {
public:
    explicit item_links(const item_case &at)
        : at_(at), reference_(read_links(at.reference.bytes)),
          has_numbers_(!is_setting(at.reference.bytes))
    {
        if (!has_numbers_)
            reference_.numbers.clear();
    }

    // Those of the languages that are wanted, or of the others.
    void find(bool wanted);
    bool is_clean() const { return found_.empty(); }
    void judge() const;

private:
    const item_case &at_;
    links reference_;
    bool has_numbers_;
    std::vector<difference> found_;
    evidence all_;
};

void item_links::find(bool wanted)
{
    for (std::size_t i = 0; i < at_.slots.size(); ++i) {
        if (at_.slots[i].entry == nullptr || at_.languages[i].is_default ||
            at_.languages[i].wanted != wanted || at_.slots[i].own.bytes.empty())
            continue;
        ++all_.texts;
        difference one{i, read_links(at_.slots[i].own.bytes), {}, {}, {}, {}};
        find_addresses(one, reference_.addresses);
        if (has_numbers_) {
            one.added = find_others(one.own.numbers, reference_, true);
            one.gone = find_others(reference_.numbers, one.own, !one.added.empty());
        }
        if (one.gone_addresses.empty() && one.gone.empty() &&
            lacking(reference_.paths, one.own.paths).empty())
            continue;
        all_.add(one);
        found_.push_back(std::move(one));
    }
}

void item_links::judge() const
{
    std::string message;
    for (const difference &one : found_) {
        if (!at_.languages[one.language].wanted)
            continue;
        const slot &of = at_.slots[one.language];
        message.clear();
        if (judge_addresses(one, all_, message) || judge_paths(one.own, reference_, message) ||
            judge_numbers(one, reference_, of.own.bytes, at_.reference.bytes, all_, message))
            at_.found.say(rule_id::link, at_.languages[one.language].name, of.entry, message);
    }
}

} // namespace

void judge_link(const item_case &at)
{
    if (!at.reference.has(has_digit | has_address))
        return;
    item_links links(at);
    links.find(true);
    if (links.is_clean())
        return;
    links.find(false);
    links.judge();
}

} // namespace zel::lint
