#include "lint/question.h"

#include "lint/carried.h"
#include "source/entry.h"
#include "support/cut.h"

#include <algorithm>

namespace zel::lint {

namespace {

// Without blanks around it.
std::string_view core_of(std::string_view line)
{
    constexpr std::string_view blanks = " \t\r\n";
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    return line.substr(0, line.find_last_not_of(blanks) + 1);
}

// Takes the sign that a question begins with, in the scripts that have one of their own too.
bool take_sign(std::string_view &comment)
{
    for (const std::string_view sign : {"?", "\xEF\xBC\x9F", "\xD8\x9F"})
        if (comment.starts_with(sign)) {
            comment.remove_prefix(sign.size());
            return true;
        }
    return false;
}

bool is_of_a_program(std::string_view line)
{
    return line.starts_with("lint:") || line.starts_with("flags:") || line.starts_with("fuzzy:");
}

} // namespace

std::optional<question> read_question(std::string_view comment)
{
    comment = core_of(comment);
    if (!take_sign(comment))
        return std::nullopt;
    const std::string written = without_carried(comment);
    std::string_view rest = written;
    question found{std::string(core_of(cut_at(rest, '\n'))), {}};
    while (!rest.empty()) {
        const std::string_view line = core_of(cut_at(rest, '\n'));
        if (!line.empty() && !is_of_a_program(line))
            found.answer.append(found.answer.empty() ? "" : "\n").append(line);
    }
    return found;
}

bool is_open_question(const lang_entry_t *comment)
{
    if (comment == nullptr)
        return false;
    std::string buffer;
    const auto found = read_question(look_at_text(comment->texts, buffer));
    return found && found->answer.empty();
}

std::size_t count_open_questions(const LangSource *source)
{
    std::size_t count = 0;
    for (const edit_t *group : each<edit_t>(source->groups))
        for (const item_t *item : each<item_t>(group->items))
            if (item->used != 0)
                for (const lang_entry_t *comment : each<lang_entry_t>(item->comments))
                    count += is_open_question(comment) ? 1U : 0U;
    return count;
}

} // namespace zel::lint
