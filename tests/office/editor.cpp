// One who works in a source: the editor's operations without its window, in the order in which the
// window calls them. What is typed, kept and saved is told on standard output, a line for each, as
// soon as it is done.
//
//   office-editor work SOURCE NAME SEED TEXTS   types that many texts as NAME, and saves now and
//   then office-editor list SOURCE                   tells all texts office-editor ask SOURCE
//   COMPILED           tells what the library answers for each item

#include "langlib/lang-load.h" // first: it gives a name of the log its linkage

#include "app/global.h"
#include "recovery/file-state.h"
#include "recovery/place.h"
#include "recovery/recovery-file.h"
#include "recovery/source-lock.h"
#include "source/lang-read.h"
#include "source/lang-write.h"
#include "support/string-copy.h"
#include "support/text.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <unistd.h>

namespace {

using key = std::tuple<std::string, std::string, std::string>; // group, item, language
using texts = std::map<key, std::string>;

[[gnu::format(printf, 1, 2)]] void tell(const char *format, ...)
{
    va_list list;
    va_start(list, format);
    std::vprintf(format, list);
    va_end(list);
    std::putchar('\n');
    std::fflush(stdout);
}

void tell(const char *what, const key &where, const std::string &text)
{
    const auto &[group, item, language] = where;
    tell("%s\t%s\t%s\t%s\t%s", what, group.c_str(), item.c_str(), language.c_str(), text.c_str());
}

std::string text_of(const lang_entry_t *entry)
{
    std::string text;
    for (const char *line : zel::each<const char>(entry->texts))
        text += zel::or_empty(line);
    return text;
}

template <class Hear>
void each_text(const LangSource *source, Hear &&hear)
{
    for (const edit_t *group : zel::each<edit_t>(source->groups))
        for (item_t *item : zel::each<item_t>(group->items))
            for (lang_entry_t *entry : zel::each<lang_entry_t>(item->langs))
                hear(key{zel::or_empty(group->name), item->name, zel::or_empty(entry->lang)}, item,
                     entry);
}

source_guard read(const char *path)
{
    zel::read_answer answer = zel::read_source(
        path, {std::time(nullptr),
               [](const zel::read_message &message) {
                   tell("message\t%d\t%s", message.row->number, message.row->meaning);
               },
               nullptr});
    if (!answer.source)
        tell("unread\t%s\t%d", path, static_cast<int>(answer.cause));
    return std::move(answer.source);
}

class worker {
public:
    worker(const char *path, const char *name, unsigned seed)
        : path_(path), name_(name), random_(seed), absolute_(zel::absolute_path(path)),
          folder_(zel::recovery_folder())
    {
    }

    int work(int count)
    {
        if (!load())
            return 1;
        tell(lock_.take(folder_, absolute_) ? "alone" : "locked");
        take_recovered();
        if (!folder_.empty())
            recovery_ = zel::recovery_path(folder_, absolute_, std::time(nullptr));
        for (int n = 0; n < count; ++n) {
            type_something(n);
            if (pick(4) == 0)
                keep();
            if (pick(6) == 0 && !save())
                return 1;
        }
        const bool good = save();
        lock_.release();
        return good ? 0 : 1;
    }

private:
    std::size_t pick(std::size_t below) { return random_() % below; }

    // As the file is now; what was typed and not saved is typed again.
    bool load()
    {
        state_ = zel::state_of(path_);
        source_ = read(path_);
        if (!source_)
            return false;
        entries_.clear();
        each_text(source_.get(), [this](const key &where, item_t *item, lang_entry_t *entry) {
            if (std::get<2>(where) != "pseudo") // nobody types what is made
                entries_[where] = {item, entry};
        });
        const texts again = typed_;
        for (const auto &[where, text] : again)
            put(where, text);
        return true;
    }

    void put(const key &where, const std::string &text)
    {
        const auto found = entries_.find(where);
        if (found == entries_.end()) {
            tell("gone", where, text);
            typed_.erase(where);
            return;
        }
        auto [item, entry] = found->second;
        free_lang_entry_text(entry->texts);
        const std::size_t half = text.size() / 2;
        entry->texts = g_list_append(nullptr, zel_strdup(text.substr(0, half).c_str()));
        entry->texts = g_list_append(entry->texts, zel_strdup(text.substr(half).c_str()));
        item->changed = 1;
        typed_[where] = text;
    }

    void type(const key &where, const std::string &text)
    {
        tell("typed", where, text);
        put(where, text);
    }

    void type_something(int n)
    {
        if (entries_.empty())
            return;
        const auto found = std::next(entries_.begin(), static_cast<long>(pick(entries_.size())));
        type(found->first, name_ + " " + std::to_string(std::time(nullptr)) + "." +
                               std::to_string(n) + " \xC3\xBC\xC4\xB1." +
                               std::string(pick(20) == 0 ? 3000 : pick(40), 'x') + ".");
    }

    // What a session before has left. Only what this one typed: the rest is older than the source.
    void take_recovered()
    {
        if (folder_.empty())
            return;
        for (const zel::recovery_file &file : zel::find_recovery_files(folder_, absolute_)) {
            const source_guard left = read(file.path.c_str());
            if (!left)
                continue;
            taken_.push_back(file.path);
            each_text(left.get(), [this](const key &where, item_t *, lang_entry_t *entry) {
                const std::string text = text_of(entry);
                const auto now = entries_.find(where);
                if (!text.starts_with(name_ + " ") || now == entries_.end())
                    return;
                tell("offered", where, text);
                if (text_of(now->second.second) != text)
                    type(where, text);
            });
        }
        tell("recovered");
    }

    void keep()
    {
        if (recovery_.empty())
            return;
        zel::recovery_writer writer;
        writer.begin(recovery_, absolute_, state_, std::time(nullptr), source_.get(), nullptr);
        for (int pieces = 0; pieces < 3; ++pieces)
            writer.step(5);
        const int error = writer.finish(true); // not in a thread, which has turns of its own
        tell(error == 0 ? "kept" : "not kept\t%d", error);
    }

    // True when it is saved, or there was no room for it, which another time has.
    bool save()
    {
        for (int tries = 0; tries < 5; ++tries) {
            const zel::file_news news = zel::news_of(path_, state_);
            if (news == zel::file_news::changed) {
                tell("changed");
                if (!load())
                    return false;
                continue;
            }
            tell("saving");
            zel::write_how how;
            how.now = std::time(nullptr);
            how.may_replace = [this] {
                return zel::news_of(path_, state_) != zel::file_news::changed;
            };
            const zel::write_answer written = zel::write_source(path_, source_.get(), how);
            if (written.code != 0) {
                tell("not saved");
                if (written.code == zel::write_not_allowed)
                    continue;
                return true;
            }
            tell("saved");
            state_ = zel::state_of(path_);
            if (state_.number != written.file.number)
                state_ = zel::file_state();
            typed_.clear();
            unlink(recovery_.c_str());
            for (const std::string &path : taken_)
                unlink(path.c_str());
            taken_.clear();
            return true;
        }
        return true;
    }

    const char *path_;
    std::string name_;
    std::mt19937 random_;
    std::string absolute_;
    std::string folder_;
    std::string recovery_;
    std::vector<std::string> taken_;
    zel::source_lock lock_;
    zel::file_state state_;
    source_guard source_;
    std::map<key, std::pair<item_t *, lang_entry_t *>> entries_;
    texts typed_; // and not saved
};

int list(const char *path)
{
    const source_guard source = read(path);
    if (!source)
        return 1;
    each_text(source.get(), [](const key &where, const item_t *, const lang_entry_t *entry) {
        tell("text", where, text_of(entry));
    });
    return 0;
}

int ask(const char *path, const char *compiled)
{
    const source_guard source = read(path);
    lang_handle_t *handle = lang_new(compiled);
    if (!source || handle == nullptr)
        return 1;
    for (const edit_t *group : zel::each<edit_t>(source->groups))
        for (const item_t *item : zel::each<item_t>(group->items))
            tell("text", {group->name, item->name, ""},
                 _lang_get_str(handle, group->name, item->name, "", 0));
    lang_free(handle, 1);
    return 0;
}

} // namespace

int main(int count, char **words)
{
    lang_global_init();
    const std::string word = count < 2 ? "" : words[1];
    if (word == "work" && count == 6)
        return worker(words[2], words[3], static_cast<unsigned>(std::stoul(words[4])))
            .work(std::stoi(words[5]));
    if (word == "list" && count == 3)
        return list(words[2]);
    if (word == "ask" && count == 4)
        return ask(words[2], words[3]);
    std::fprintf(stderr, "office-editor: wrong use\n");
    return 2;
}
