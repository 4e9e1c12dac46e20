#include "lint/glossary.h"

#include "lint/item-case.h"
#include "lint/markup.h"
#include "lint/text.h"
#include "source/entry.h"
#include "support/cut.h"

#include <algorithm>
#include <memory>

namespace zel::lint {

namespace {

struct term_word {
    std::string letters; // small ones
    std::size_t from;
    std::size_t to;
    bool is_next;  // only blanks stand between it and the word before
    bool is_whole; // it is no part of a path, an option or the like
};

void put_char(std::string &out, char32_t c)
{
    char bytes[6];
    out.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(c, bytes)));
}

bool is_in_word(char32_t c) { return is_letter(c) || is_digit(c) || c == '_'; }

// Whether a sign there ties the word before it to the one behind it.
bool ties(std::string_view text, std::size_t at)
{
    constexpr std::string_view signs = "-./\\@%=:'";
    if (at >= text.size() || signs.find(text[at]) == std::string_view::npos)
        return false;
    return ++at < text.size() && is_in_word(next_char(text, at));
}

class word_reader {
public:
    explicit word_reader(std::string_view text) : text_(text)
    {
        while (at_ < text_.size())
            step();
    }
    std::vector<term_word> words() { return std::move(words_); }

private:
    void step()
    {
        if (const std::size_t tag = text_[at_] == '<' ? tag_length(text_.substr(at_)) : 0) {
            at_ += tag;
            is_next_ = false;
            return;
        }
        std::size_t behind = at_;
        if (is_in_word(next_char(text_, behind))) {
            read_word();
            return;
        }
        is_next_ = is_next_ && is_blank(text_[at_]);
        at_ = behind;
    }
    void read_word()
    {
        constexpr std::string_view before = "-./\\@%$=";
        term_word found{{}, at_, at_, is_next_, true};
        found.is_whole = at_ == 0 || before.find(text_[at_ - 1]) == std::string_view::npos;
        for (std::size_t at = at_; at < text_.size(); found.to = at) {
            const char32_t c = next_char(text_, at);
            if (!is_in_word(c))
                break;
            if (c != '_') // a mnemonic
                put_char(found.letters, g_unichar_tolower(c));
        }
        at_ = found.to;
        found.is_whole = found.is_whole && !ties(text_, at_);
        is_next_ = true;
        if (!found.letters.empty())
            words_.push_back(std::move(found));
    }

    std::string_view text_;
    std::size_t at_ = 0;
    bool is_next_ = false;
    std::vector<term_word> words_;
};

// Small letters without accents, which inflection changes, and without mnemonics.
std::string bare(std::string_view text)
{
    std::string small;
    for (std::size_t at = 0; at < text.size();)
        if (const char32_t c = next_char(text, at); c != '_')
            put_char(small, g_unichar_tolower(c));
    const std::unique_ptr<char, decltype(&g_free)> apart(
        g_utf8_normalize(small.data(), static_cast<gssize>(small.size()), G_NORMALIZE_NFD),
        &g_free);
    if (apart == nullptr)
        return small;
    std::string out;
    const std::string_view all = apart.get();
    for (std::size_t at = 0; at < all.size();)
        if (const char32_t c = next_char(all, at); g_unichar_ismark(c) == FALSE)
            put_char(out, c);
    return out;
}

// Whether the word stands in the text, both bare: anywhere if it is long enough to be no chance,
// else where a word of the text begins.
bool has_part(const std::string &text, std::string_view word)
{
    constexpr std::size_t long_enough = 4;
    std::size_t first = 0;
    const bool anywhere = count_chars(word) >= long_enough || is_wide(next_char(word, first));
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        std::size_t before = at;
        if (anywhere || at == 0 || !is_in_word(last_char(text, before)))
            return true;
    }
    return false;
}

// The part of a word that inflection leaves.
std::string_view stem_of(std::string_view word)
{
    constexpr std::size_t least = 3;
    const std::size_t chars = count_chars(word);
    std::size_t end = 0;
    for (std::size_t i = 0; i < std::min(chars, std::max(least, (2 * chars + 2) / 3)); ++i)
        next_char(word, end);
    return word.substr(0, end);
}

bool has_words(const std::string &text, const std::string &wanted, bool whole)
{
    const std::vector<term_word> words = word_reader(wanted).words();
    return std::all_of(words.begin(), words.end(), [&](const term_word &word) {
        const std::string letters = bare(word.letters);
        return letters.empty() || has_part(text, letters) ||
               (!whole && has_part(text, stem_of(letters)));
    });
}

std::string_view trimmed(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\r"), text.size()));
    return without_end(text);
}

std::vector<std::string> split_text(std::string_view text)
{
    std::vector<std::string> out;
    while (!text.empty())
        if (const std::string_view one = trimmed(cut_at(text, '/')); !one.empty())
            out.emplace_back(one);
    return out;
}

std::string text_of_term(const LangSource &list, const item_t *item, const char *reference)
{
    std::string buffer;
    const std::string_view own = trimmed(first_text(item, reference, buffer));
    if (!own.empty() || !same_language(list.default_lang, reference))
        return std::string(own);
    return std::string(trimmed(name_of(item->name)));
}

} // namespace

std::string glossary_path(std::string_view source)
{
    const std::size_t folder = source.rfind('/') + 1; // 0 where there is none
    if (source.substr(folder) == glossary_file)
        return {};
    return std::string(source.substr(0, folder)).append(glossary_file);
}

glossary::glossary(const LangSource &list, const char *reference, std::size_t most_words)
{
    const auto add = [&](const item_t *item) {
        term made{text_of_term(list, item, reference), {}};
        std::string key;
        const std::vector<term_word> words = word_reader(made.text).words();
        for (const term_word &word : words)
            key.append(key.empty() ? "" : " ").append(word.letters);
        if (words.empty() || words.size() > most_words ||
            !places_.try_emplace(key, terms_.size()).second)
            return;
        longest_ = std::max(longest_, words.size());
        for (const lang_entry_t *entry : each<lang_entry_t>(item->langs)) {
            std::vector<std::string> any = split_text(text_of(entry));
            if (same_language(entry->lang, reference) || any.empty())
                continue;
            const bool is_kept = any.size() == 1 && any.front() == "keep";
            if (is_kept)
                any.front() = made.text;
            made.translations.push_back({or_empty(entry->lang), std::move(any), is_kept});
        }
        terms_.push_back(std::move(made));
    };
    for (const edit_t *group : each<edit_t>(list.groups))
        for (const item_t *item : each<item_t>(group->items))
            if (item->used != 0)
                add(item);
}

const glossary::translation *glossary::term::in(const char *language) const
{
    const auto found =
        std::find_if(translations.begin(), translations.end(), [&](const translation &one) {
            return same_language(one.language.c_str(), language);
        });
    return found == translations.end() ? nullptr : &*found;
}

std::vector<glossary::hit> glossary::in(std::string_view text) const
{
    std::vector<hit> out;
    const std::vector<term_word> words = word_reader(text).words();
    for (std::size_t begin = 0; begin < words.size();) {
        // The words from here on that may be one term, and the longest term that they are.
        std::string key;
        std::size_t end = begin;
        std::size_t taken = begin;
        while (end < words.size() && end - begin < longest_ && words[end].is_whole &&
               (end == begin || words[end].is_next)) {
            key.append(end == begin ? "" : " ").append(words[end].letters);
            ++end;
            const auto found = places_.find(key);
            if (found == places_.end())
                continue;
            if (taken != begin)
                out.pop_back();
            out.push_back({&terms_[found->second], words[begin].from, words[end - 1].to});
            taken = end;
        }
        begin = std::max(taken, begin + 1);
    }
    return out;
}

bool has_any(std::string_view text, const glossary::translation &wanted)
{
    const std::string own = bare(text);
    return std::any_of(wanted.any.begin(), wanted.any.end(),
                       [&](const std::string &one) { return has_words(own, one, wanted.is_kept); });
}

} // namespace zel::lint
