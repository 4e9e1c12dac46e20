#include "lint/switch.h"

#include "lint/rules.h"
#include "lint/text.h"
#include "source/entry.h"
#include "support/cut.h"

namespace zel::lint {

namespace {

// The word at the start of the text, behind blanks; it is taken.
std::string_view take_word(std::string_view &text)
{
    std::size_t start = 0;
    while (start < text.size() && is_blank(text[start]))
        ++start;
    std::size_t end = start;
    while (end < text.size() && (is_word_byte(text[end]) || text[end] == '-'))
        ++end;
    const std::string_view word = text.substr(start, end - start);
    text.remove_prefix(end);
    return word;
}

// Tells what follows each "lint:" of a comment.
template <class To>
void each_remark(const lang_entry_t *comment, To to)
{
    constexpr std::string_view mark = "lint:";
    std::string buffer;
    std::string_view text = look_at_text(comment->texts, buffer);
    for (auto at = text.find(mark); at != std::string_view::npos; at = text.find(mark)) {
        text.remove_prefix(at + mark.size());
        to(text);
    }
}

// Of "20", "120px" or "120 px", what stands at the start of the text.
length_limit take_limit(std::string_view text)
{
    constexpr std::size_t most_digits = 6;
    std::string_view word = take_word(text);
    std::size_t digits = 0;
    length_limit limit;
    for (; digits < word.size() && is_ascii_digit(word[digits]); ++digits)
        if (digits < most_digits)
            limit.most = limit.most * 10 + static_cast<std::uint32_t>(word[digits] - '0');
    word.remove_prefix(digits);
    limit.in_pixels = word == "px" || (word.empty() && take_word(text) == "px");
    limit.is_wrong = limit.most == 0 || digits > most_digits || !(word.empty() || limit.in_pixels);
    if (limit.is_wrong)
        limit.most = 0;
    return limit;
}

} // namespace

catalog_flags read_flags(const lang_entry_t *comment)
{
    catalog_flags found;
    std::string buffer;
    std::string_view text = look_at_text(comment->texts, buffer);
    while (!text.empty()) {
        std::string_view line = cut_at(text, '\n');
        if (!line.starts_with("flags:"))
            continue;
        line.remove_prefix(line.find(':') + 1);
        while (!line.empty()) {
            std::string_view flag = cut_at(line, ',');
            flag.remove_prefix(std::min(flag.find_first_not_of(' '), flag.size()));
            const bool is_other = !flag.starts_with("no-") && !flag.starts_with("possible-");
            found.plural = found.plural || flag == "plural";
            found.no_plural = found.no_plural || flag == "no-plural";
            found.no_c_format = found.no_c_format || flag == "no-c-format" ||
                                (is_other && flag != "c-format" && flag.ends_with("-format"));
        }
    }
    return found;
}

rule_set read_switches(const lang_entry_t *comment)
{
    rule_set off;
    each_remark(comment, [&off](std::string_view text) {
        const rule *named = find_rule(take_word(text));
        if (named != nullptr && take_word(text) == "off")
            off = off.with(named->id);
    });
    return off;
}

length_limit read_limit(const lang_entry_t *comment)
{
    length_limit first;
    each_remark(comment, [&first](std::string_view text) {
        if (first.most != 0 || take_word(text) != "max")
            return;
        std::string_view behind = text;
        if (take_word(behind) != "off")
            first = take_limit(text);
    });
    return first;
}

} // namespace zel::lint
