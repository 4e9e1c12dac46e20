#include "lint/conversions.h"
#include "lint/item-case.h"
#include "lint/rule-list.h"

#include <algorithm>

namespace zel::lint {

namespace {

constexpr std::string_view kept[] = {"©", "(C)", "[<", "[-"};

// Words that one would translate: of three small letters or more.
std::size_t count_small_words(std::string_view bytes)
{
    constexpr std::size_t least = 3;
    std::size_t words = 0;
    std::size_t letters = 0;
    bool small = true;
    for (std::size_t at = 0; at < bytes.size();) {
        const char32_t c = next_char(bytes, at);
        if (c == '_') // a mnemonic
            continue;
        if (is_letter(c)) {
            small = small && g_unichar_islower(c) != FALSE;
            ++letters;
        }
        if (!is_letter(c) || at == bytes.size()) {
            words += small && letters >= least ? 1U : 0U;
            letters = 0;
            small = true;
        }
    }
    return words;
}

// Notices of rights, how a command is written ("tea brew [<options>]", "tea pour" of the
// application "tea"), and what has no blank, as names of files and lists of search words, keep what
// they have in most languages.
bool is_notice_or_name(std::string_view bytes, std::string_view app)
{
    return std::none_of(bytes.begin(), bytes.end(), is_blank) ||
           (!app.empty() && bytes.size() > app.size() && bytes[app.size()] == ' ' &&
            g_ascii_strncasecmp(bytes.data(), app.data(), app.size()) == 0) ||
           std::any_of(std::begin(kept), std::end(kept), [&](std::string_view sign) {
               return bytes.find(sign) != std::string_view::npos;
           });
}

bool is_translation(const item_case &at, std::size_t i)
{
    return at.slots[i].entry != nullptr && !at.languages[i].is_default &&
           !at.slots[i].own.is_blank() && !at.languages[i].is_variant;
}

} // namespace

// Names are the same in most languages, and single words in some: only what reads like a phrase is
// taken for untranslated, and not when most languages leave it.
void judge_same(const item_case &at)
{
    const std::string_view reference = at.reference.bytes;
    std::size_t all = 0;
    std::size_t same = 0;
    for (std::size_t i = 0; i < at.slots.size(); ++i)
        if (is_translation(at, i)) {
            ++all;
            same += at.slots[i].own.bytes == reference ? 1U : 0U;
        }
    if (same == 0)
        return;
    if (count_small_words(reference) < 2 || is_notice_or_name(reference, name_of(at.source->app)) ||
        (all > 2 && 2 * same > all))
        return;
    for (std::size_t i = 0; i < at.slots.size(); ++i)
        if (is_translation(at, i) && at.slots[i].own.bytes == reference)
            at.found.say(rule_id::same, at.languages[i].name, at.slots[i].entry,
                         "the text is that of the reference");
}

} // namespace zel::lint
