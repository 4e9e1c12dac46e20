#include "editor/frame/read-report.h"

#include "editor/toolkit/ui-text.h"
#include "lint/question.h"

namespace {

std::string counted(std::size_t count, const char *one, const char *many)
{
    return std::to_string(count) + " " + zel::ui_text("status", count == 1 ? one : many);
}

std::size_t used_items(const LangSource *source)
{
    std::size_t count = 0;
    for (const edit_t *group : zel::each<edit_t>(source->groups))
        for (const item_t *item : zel::each<item_t>(group->items))
            count += item->used != 0 ? 1 : 0;
    return count;
}

std::string with_place(const zel::read_message &message)
{
    std::string text;
    if (message.at.line != 0) {
        // The reader counts columns from 0, people from 1.
        text += std::string(zel::ui_text("status", "line")) + " " +
                std::to_string(message.at.line) + ", " + zel::ui_text("status", "column") + " " +
                std::to_string(message.at.column + 1) + ": ";
    }
    return text + zel::ui_text("reader", message.row->meaning);
}

} // namespace

namespace zel {

read_report::read_report(const char *path) : path_(utf8_shown(path)) {}

void read_report::hear(const read_message &message)
{
    if (const char *failure = read_failure(message))
        failure_ = failure;
    std::string &kept = message.row->after == outcome::go_on ? warning_ : error_;
    // The first message is the cause; what follows it is often only its consequence.
    if (kept.empty())
        kept = with_place(message);
}

std::string read_report::cause(read_cause why) const
{
    // A syntax error tells its place and needs no other words.
    if (why == read_cause::syntax && !error_.empty())
        return error_;
    if (why == read_cause::absent)
        return ui_text("reader", "there is no such file");
    if (why == read_cause::memory)
        return ui_text("reader", "not enough memory");
    if (failure_.empty() && !warning_.empty()) // it reads, but would lose a text by a save
        return warning_;
    const std::string text = ui_text("reader", "the file cannot be read");
    return failure_.empty() ? text : text + ": " + utf8_shown(failure_.c_str());
}

std::string read_report::text(const read_answer &answer) const
{
    if (answer.source == nullptr)
        return path_ + ": " + cause(answer.cause);
    const LangSource *source = answer.source.get();
    std::string text = path_ + ": " + counted(used_items(source), "item", "items") + ", " +
                       counted(g_list_length(source->langs), "language", "languages");
    if (const std::size_t questions = lint::count_open_questions(source); questions != 0)
        text += ", " + counted(questions, "open question", "open questions");
    // What was not read matters more than what was only noticed.
    const std::string &noticed = error_.empty() ? warning_ : error_;
    return noticed.empty() ? text : text + "; " + noticed;
}

} // namespace zel
