#include "lint/mnemonics.h"

#include "lint/item-case.h"
#include "lint/text.h"
#include "source/entry.h"

#include <algorithm>
#include <string>
#include <vector>

namespace zel::lint {

namespace {

bool is_letter_before(std::string_view text, std::size_t &at)
{
    return at > 0 && is_letter(last_char(text, at));
}

bool is_letter_behind(std::string_view text, std::size_t &at)
{
    return at < text.size() && is_letter(next_char(text, at));
}

// Inside a long word; of a sentence, such a one is a name. "Re_center" and "Brows_e" are marks.
bool is_in_long_word(std::string_view text, std::size_t underscore)
{
    constexpr int letters = 3; // on both sides
    std::size_t before = underscore;
    std::size_t behind = underscore + 1;
    for (int i = 0; i < letters; ++i)
        if (!is_letter_before(text, before) || !is_letter_behind(text, behind))
            return false;
    return true;
}

// "FILE_NAME"
bool is_in_capitals(std::string_view text, std::size_t underscore)
{
    std::size_t before = underscore;
    std::size_t behind = underscore + 1;
    return before > 0 && behind < text.size() &&
           g_unichar_isupper(last_char(text, before)) != FALSE &&
           g_unichar_isupper(next_char(text, behind)) != FALSE && is_in_long_word(text, underscore);
}

// "_Open", "Save _as", "(_O)"; not "a_name" nor "__file".
bool has_marked_word(std::string_view text)
{
    for (std::size_t at = text.find('_'); at < text.size(); at = text.find('_', at + 1)) {
        std::size_t behind = at + 1;
        const char before = at == 0 ? ' ' : text[at - 1];
        if ((before == ' ' || before == '(') && is_letter_behind(text, behind))
            return true;
    }
    return false;
}

} // namespace

mnemonics read_mnemonics(std::string_view text)
{
    mnemonics found;
    // Labels are short: in a sentence an underscore belongs to a name.
    const bool sentence = std::count(text.begin(), text.end(), ' ') >= 3;
    for (std::size_t at = text.find('_'); at != std::string_view::npos; at = text.find('_', at)) {
        const bool name = (sentence && is_in_long_word(text, at)) || is_in_capitals(text, at);
        const std::size_t underscore = at;
        std::size_t before = at;
        if (++at == text.size())
            break;
        // Two underscores show one.
        const bool pair = text[at] == '_';
        const char32_t c = next_char(text, at);
        if (pair || !(is_letter(c) || is_digit(c)))
            continue;
        if (found.count++ == 0) {
            found.key = g_unichar_tolower(c);
            found.at = underscore;
        }
        // "X_2" is an X with a small 2.
        const bool lowered = is_digit(c) && is_letter_before(text, before);
        found.sure += name || lowered ? 0U : 1U;
    }
    return found;
}

bool may_use_mnemonics(const LangSource *source)
{
    constexpr std::size_t few = 50;
    std::size_t used = 0;
    for (const edit_t *group : each<edit_t>(source->groups))
        for (const item_t *item : each<item_t>(group->items))
            if (item->used != 0) {
                ++used;
                if (has_marked_word(reference_text(*source, item)))
                    return true;
            }
    return used < few;
}

bool may_be_window(const LangSource *source, const edit_t *group)
{
    constexpr std::size_t most = 20;
    std::vector<char32_t> used_keys;
    std::string buffer;
    for (const item_t *item : each<item_t>(group->items)) {
        const std::string_view text = first_text(item, source->default_lang, buffer);
        const mnemonics own = read_mnemonics(text.empty() ? name_of(item->name) : text);
        // What is not used is in no window.
        if (item->used != 0 && own.count == 1)
            used_keys.push_back(own.key);
    }
    std::sort(used_keys.begin(), used_keys.end());
    std::size_t twice = 0;
    for (std::size_t i = 1; i < used_keys.size(); ++i)
        twice += used_keys[i] == used_keys[i - 1] ? 1U : 0U;
    return used_keys.size() <= most && twice <= 1;
}

} // namespace zel::lint
