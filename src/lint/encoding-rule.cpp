#include "lint/item-case.h"
#include "lint/rule-list.h"
#include "source/entry.h"

#include <cstdio>

namespace zel::lint {

namespace {

std::string code_point(char32_t c)
{
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(c));
    return name;
}

bool is_control(char32_t c)
{
    return (c < ' ' && c != '\t' && c != '\n' && c != '\r') || (c >= 0x7f && c < 0xa0);
}

// The first control character that the other text does not have; 0 when there is none.
char32_t find_control(std::string_view bytes, std::string_view other)
{
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t start = at;
        const char32_t c = next_char(bytes, at);
        if (is_control(c) && other.find(bytes.substr(start, at - start)) == std::string_view::npos)
            return c;
    }
    return 0;
}

bool is_utf8(std::string_view bytes)
{
    return g_utf8_validate(bytes.data(), static_cast<gssize>(bytes.size()), nullptr) != FALSE;
}

// What is wrong with the bytes, or nothing. A source in "ascii" has bytes of the application's own
// encoding.
std::string fault_of(const item_t *item, const text &own, std::string_view reference)
{
    const bool utf8 = item->source == nullptr || item->source->format != LANG_SOURCE_ASCII;
    if (utf8 && own.has(has_high) && !is_utf8(own.bytes))
        return "bytes that are no UTF-8";
    // In UTF-8 all control characters beyond ASCII begin with this byte.
    const bool beyond = utf8 && own.has(has_high) && own.bytes.find('\xC2') != std::string::npos;
    if (!own.has(has_control) && !beyond)
        return {};
    const char32_t c = find_control(own.bytes, reference);
    return c == 0 ? std::string() : "the control character " + code_point(c);
}

void judge_name(const item_case &at, const char *name, const char *what)
{
    if (name == nullptr)
        return;
    const text own = look_at(name);
    if (!own.has(has_control | has_high))
        return;
    if (const std::string fault = fault_of(at.item, own, {}); !fault.empty())
        at.found.say(rule_id::encoding, nullptr, at.item, std::string(what) + " holds " + fault);
}

void judge_entries(const item_case &at, GList *entries, const char *what)
{
    std::string buffer;
    for (const lang_entry_t *entry : each<lang_entry_t>(entries)) {
        const std::string fault =
            fault_of(at.item, look_at(look_at_text(entry->texts, buffer)), {});
        if (!fault.empty())
            at.found.say(rule_id::encoding, entry->lang, entry,
                         std::string(what) + " holds " + fault);
    }
}

} // namespace

bool judge_encoding(const text_case &at, std::string &message)
{
    if (!at.own.has(has_control | has_high))
        return false;
    const std::string fault = fault_of(at.item, at.own, at.reference.bytes);
    if (!fault.empty())
        message = "the text holds " + fault;
    return !fault.empty();
}

void judge_item_encoding(const item_case &at)
{
    judge_name(at, at.item->name, "the item's name");
    judge_name(at, at.item->description, "the description");
    judge_entries(at, at.item->comments, "the comment");
    if (at.item->used == 0) // those of a used one are judged one by one
        judge_entries(at, at.item->langs, "the text");
}

} // namespace zel::lint
