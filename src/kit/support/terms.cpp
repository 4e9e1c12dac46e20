#include "kit/support/terms.h"

#include "source/entry.h"
#include "support/text.h"

#include <algorithm>
#include <set>

namespace zel::kit {

namespace {

constexpr std::size_t most_words = 3;

// In small letters, without signs; an underscore marks a key of a menu.
std::vector<std::string> words_of(std::string_view text)
{
    std::vector<std::string> out(1);
    for (const char c : text)
        if (is_letter(c) || is_digit(c) || (c & 0x80) != 0)
            out.back() += static_cast<char>(lower(c));
        else if (c != '_' && !out.back().empty())
            out.emplace_back();
    if (out.back().empty())
        out.pop_back();
    return out;
}

std::string joined_words(const std::vector<std::string> &words, std::size_t begin,
                         std::size_t count)
{
    std::string out;
    for (std::size_t at = begin; at < begin + count; ++at)
        out.append(out.empty() ? "" : " ").append(words[at]);
    return out;
}

} // namespace

term_list::term_list(const LangSource *source, const entry_index &entries, const char *language)
{
    for (const edit_t *group : each<edit_t>(source->groups))
        for (const item_t *item : each<item_t>(group->items)) {
            const std::string text = text_of(entries.find(item, language));
            const std::string reference = reference_text(*source, item);
            const std::vector<std::string> words = words_of(reference);
            if (words.empty() || words.size() > most_words || without_end(text).empty())
                continue;
            terms_.try_emplace(joined_words(words, 0, words.size()), term{reference, text});
        }
}

std::vector<std::pair<std::string, std::string>> term_list::in(std::string_view text) const
{
    std::vector<std::pair<std::string, std::string>> out;
    std::set<std::string_view> known;
    const std::vector<std::string> words = words_of(text);
    for (std::size_t begin = 0; begin < words.size(); ++begin)
        for (std::size_t count = std::min(most_words, words.size() - begin); count > 0; --count) {
            const auto found = count == words.size()
                                   ? terms_.end()
                                   : terms_.find(joined_words(words, begin, count));
            if (found != terms_.end() && known.insert(found->first).second)
                out.emplace_back(found->second.reference, found->second.text);
        }
    return out;
}

} // namespace zel::kit
