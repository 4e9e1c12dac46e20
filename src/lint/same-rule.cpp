#include "langlib/plural-rule.h"
#include "lint/item-case.h"
#include "lint/rule-list.h"

#include <algorithm>

namespace zel::lint {

namespace {

constexpr std::string_view kept[] = {"©", "(C)", "[<", "[-"};

// A piece between blanks, without the signs around it and the mark of a mnemonic.
struct piece {
    bool is_empty = true;
    std::size_t letters = 0;
    bool small = true;    // all letters
    bool is_word = true;  // of letters alone; "file1", "blob)->" and "byte/s" are none
    bool is_open = false; // a sign stands behind a letter
};

void read_char(piece &of, char32_t c)
{
    constexpr std::u32string_view around = U".,:;!?()\"'“”‘’…";
    const bool joins = of.letters > 0 && (c == '-' || c == '\'' || c == U'’');
    of.is_empty = false;
    if (is_letter(c)) {
        of.is_word = of.is_word && !of.is_open;
        of.small = of.small && g_unichar_islower(c) != FALSE;
        ++of.letters;
    } else if (!joins && around.find(c) != std::u32string_view::npos) {
        of.is_open = of.letters > 0;
    } else if (!joins && c != '_' && c != '&') {
        of.is_word = false;
    }
}

struct word_count {
    std::size_t pieces = 0;
    std::size_t ordinary = 0; // that one would translate: of three small letters or more
    std::size_t names = 0;    // with a capital, but for the first word
};

// Of the first form, where it has forms for numbers.
word_count count_words(const text &of)
{
    constexpr std::size_t least = 3;
    const std::string_view bytes =
        of.bytes.substr(0, of.has(has_forms) ? of.bytes.find(plural_sign) : of.bytes.size());
    word_count found;
    piece now;
    bool is_first = true;
    const auto end_piece = [&] {
        found.pieces += now.is_empty ? 0U : 1U;
        if (now.is_word && now.letters >= least && now.small)
            ++found.ordinary;
        else if (now.letters > 0 && !now.small && !is_first)
            ++found.names;
        is_first = is_first && now.letters == 0;
        now = {};
    };
    for (std::size_t at = 0; at < bytes.size();) {
        const char32_t c = next_char(bytes, at);
        if (c < 0x80 && is_blank(static_cast<char>(c)))
            end_piece();
        else
            read_char(now, c);
    }
    end_piece();
    return found;
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

// Few others leave a text by mistake as well. Where there are few languages, they tell less.
bool is_left_by_mistake(std::size_t same, std::size_t all, std::size_t languages)
{
    constexpr std::size_t some = 6;
    constexpr std::size_t few = 30;
    if (languages < some)
        return all <= 2 || 2 * same <= all;
    return same == 1 ? all >= some : few * same <= all;
}

bool is_translation(const item_case &at, std::size_t i)
{
    return at.slots[i].entry != nullptr && !at.languages[i].is_default &&
           !at.slots[i].own.is_blank() && !at.languages[i].is_variant;
}

std::size_t count_foreign(const language_list &languages)
{
    const auto all = languages.all();
    return static_cast<std::size_t>(std::count_if(all.begin(), all.end(), [](const language &one) {
        return !one.is_default && !one.is_variant;
    }));
}

} // namespace

// Names are the same in most languages, single words and terms of two in some: only what reads like
// a phrase is taken for untranslated, and only where nearly all other languages translate it.
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
    if (same == 0 || is_notice_or_name(reference, name_of(at.source->app)) ||
        !is_left_by_mistake(same, all, count_foreign(at.languages)))
        return;
    const word_count words = count_words(at.reference);
    if (words.pieces < 3 || words.ordinary < 2 || words.ordinary < words.names)
        return;
    for (std::size_t i = 0; i < at.slots.size(); ++i)
        if (is_translation(at, i) && at.slots[i].own.bytes == reference)
            at.found.say(rule_id::same, at.languages[i].name, at.slots[i].entry,
                         "the text is that of the reference");
}

} // namespace zel::lint
