#include "exchange/key.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "lint/lint.h"
#include "lint/question.h"
#include "source/entry.h"

#include <algorithm>
#include <cstdio>

namespace zel::kit {

namespace {

struct question_settings {
    std::string format = "text";
    std::vector<std::string> languages;
    bool answered = false;
};

struct asked {
    const std::string &file;
    place at;
    const edit_t *group;
    const item_t *item;
    const char *language;
    lint::question what;
};

// "app.lang-src:12:5: german: menu:_Open: Which menu?", and behind an arrow what was answered.
void print_text(const asked &one)
{
    std::string line;
    append_line(line, one.file);
    line += ":" + std::to_string(one.at.line) + ":" + std::to_string(one.at.column + 1) + ": " +
            or_empty(one.language) + ": ";
    std::string key;
    exchange::append_key(key, or_empty(one.group->name), or_empty(one.item->name));
    append_line(line, key);
    line += ": ";
    append_line(line, one.what.text.empty() ? "?" : one.what.text);
    if (!one.what.answer.empty())
        append_line(line += " -> ", one.what.answer);
    std::puts(line.c_str());
}

void append_object(std::string &out, const asked &one)
{
    out += "{\"file\": ";
    append_json(out, one.file);
    out += ", \"line\": " + std::to_string(one.at.line) +
           ", \"column\": " + std::to_string(one.at.column + 1);
    const std::pair<const char *, const char *> texts[] = {
        {"group", one.group->name},
        {"item", one.item->name},
        {"language", one.language},
        {"question", one.what.text.c_str()},
        {"answer", one.what.answer.empty() ? nullptr : one.what.answer.c_str()}};
    for (const auto &[name, text] : texts) {
        out.append(", \"").append(name).append("\": ");
        append_json(out, text);
    }
    out += '}';
}

// Tells the questions of one source after the other.
class question_run {
public:
    explicit question_run(const question_settings &given, bool json) : given_(given), json_(json) {}
    void tell(const std::string &path)
    {
        source_places places;
        source_guard source = read(path, &places);
        if (source == nullptr) {
            is_unread_ = true;
            return;
        }
        ++files_;
        knows_language_ = knows_language_ || given_.languages.empty();
        for (const std::string &name : given_.languages)
            knows_language_ = knows_language_ || lint::defines_language(source.get(), name);
        for (const edit_t *group : each<edit_t>(source->groups))
            for (const item_t *item : each<item_t>(group->items))
                if (item->used != 0)
                    tell_item(path, places, group, item);
        keep_to_the_end(std::move(source));
    }
    int end(const word &self)
    {
        if (json_)
            std::puts((objects_.empty() ? "[]" : objects_ + "\n]").c_str());
        std::fflush(stdout);
        if (files_ != 0 && !knows_language_)
            return wrong_use(self,
                             "no source defines the language \"" + given_.languages.front() + "\"");
        std::fprintf(stderr, "%s in %s\n", counted(open_, "open question").c_str(),
                     counted(files_, "file").c_str());
        return is_unread_ ? status_fault : open_ != 0 ? status_found : status_fine;
    }

private:
    bool is_wanted(const char *language) const
    {
        return given_.languages.empty() ||
               std::find(given_.languages.begin(), given_.languages.end(), or_empty(language)) !=
                   given_.languages.end();
    }
    void tell_item(const std::string &path, const source_places &places, const edit_t *group,
                   const item_t *item)
    {
        std::string buffer;
        for (const lang_entry_t *comment : each<lang_entry_t>(item->comments)) {
            auto found = lint::read_question(look_at_text(comment->texts, buffer));
            if (!found || !is_wanted(comment->lang) || (!found->answer.empty() && !given_.answered))
                continue;
            open_ += found->answer.empty() ? 1U : 0U;
            const asked one{path, places.of(comment), group, item, comment->lang, *found};
            if (!json_) {
                print_text(one);
                continue;
            }
            objects_ += objects_.empty() ? "[\n" : ",\n";
            append_object(objects_, one);
        }
    }

    const question_settings &given_;
    bool json_;
    bool is_unread_ = false;
    bool knows_language_ = false;
    std::size_t files_ = 0;
    std::size_t open_ = 0;
    std::string objects_;
};

} // namespace

int run_questions(const word &self, int argc, char **argv)
{
    question_settings given;
    const parsed line = parse(self, argc, argv,
                              {{.name = "format",
                                .argument = "NAME",
                                .help = "text or json (text)",
                                .text = &given.format},
                               {.name = "language",
                                .argument = "NAME",
                                .help = "only what is asked in this language; may be given again",
                                .list = &given.languages},
                               {.name = "answered",
                                .help = "also what was answered, with the answers",
                                .on = &given.answered}},
                              1, SIZE_MAX);
    if (line.ends)
        return line.status;
    const int format = choose(self, "format", given.format, {"text", "json"});
    if (format < 0)
        return status_fault;
    question_run run(given, format == 1);
    for (const std::string &path : line.files)
        run.tell(path);
    return run.end(self);
}

} // namespace zel::kit
