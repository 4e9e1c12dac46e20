#include "assist/term-list.h"

#include "assist/fold.h"
#include "lint/item-case.h"
#include "source/entry.h"
#include "source/group.h"
#include "source/lang-read.h"
#include "source/lang-write.h"
#include "source/read-message.h"
#include "support/cut.h"
#include "support/file-call.h"
#include "support/string-copy.h"

#include <algorithm>
#include <sys/stat.h>

namespace zel::assist {

namespace {

source_guard read_list(const std::string &path, std::int64_t now, list_fault &fault)
{
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return nullptr;
    if (!S_ISREG(status.st_mode)) {
        fault.meaning = "it is no regular file";
        return nullptr;
    }
    const auto hear = [&](const read_message &message) {
        if (fault.meaning == nullptr && is_loss(*message.row))
            fault = {message.row->meaning, message.at};
    };
    return std::move(read_source(path.c_str(), {now, hear, nullptr}).source);
}

// Defines the language as the other source does, unless it is there.
void define_like(LangSource *list, const LangSource &like, const char *name)
{
    const auto find = [name](GList *langs) -> const lang_t * {
        for (const lang_t *one : each<lang_t>(langs))
            if (lint::same_language(one->name, name))
                return one;
        return nullptr;
    };
    const lang_t *known = find(like.langs);
    if (known == nullptr || find(list->langs) != nullptr)
        return;
    lang_t *made = alloc_lang();
    if (made == nullptr)
        return;
    made->edit = 1;
    made->value_1 = known->value_1;
    made->value_2 = known->value_2;
    made->name = zel_strdup(known->name);
    made->file = zel_strdup(known->file);
    list->langs = g_list_append(list->langs, made);
}

item_t *find_term(const LangSource *list, const char *reference, const std::string &term)
{
    const std::string wanted = fold(term);
    std::string buffer;
    for (const edit_t *group : each<edit_t>(list->groups))
        for (item_t *item : each<item_t>(group->items)) {
            const std::string_view own = lint::first_text(item, reference, buffer);
            if (item->used != 0 && fold(own.empty() ? or_empty(item->name) : own) == wanted)
                return item;
        }
    return nullptr;
}

// Null without memory.
item_t *make_term(LangSource *list, const char *reference, const std::string &term,
                  std::int64_t now)
{
    auto *group =
        list->groups == nullptr ? new_group("terms") : static_cast<edit_t *>(list->groups->data);
    if (group == nullptr)
        return nullptr;
    if (list->groups == nullptr)
        list->groups = g_list_append(nullptr, group);
    item_t *item = alloc_item();
    if (item == nullptr)
        return nullptr;
    item->name = zel_strdup(term.c_str());
    item->used = 1;
    item->ctime = now;
    item->source = list;
    put_text(item->langs, reference, term);
    group->used = 1;
    group->items = g_list_append(group->items, item);
    return item;
}

// Whether one of the texts between slashes is that.
bool has_part(std::string_view texts, std::string_view wanted)
{
    const std::string folded = fold(wanted);
    while (!texts.empty()) {
        std::string_view one = without_end(cut_at(texts, '/'));
        one.remove_prefix(std::min(one.find_first_not_of(' '), one.size()));
        if (fold(one) == folded)
            return true;
    }
    return false;
}

term_news put_pair(LangSource *list, const char *reference, const term_pair &pair, std::int64_t now)
{
    item_t *item = find_term(list, reference, pair.term);
    if (item == nullptr)
        item = make_term(list, reference, pair.term, now);
    if (item == nullptr)
        return term_news::failed;
    const std::string before = text_of(find_entry(item->langs, pair.language.c_str()));
    if (before == "keep")
        return term_news::kept;
    if (has_part(before, pair.translation))
        return term_news::known;
    put_text(item->langs, pair.language.c_str(),
             (before.empty() ? "" : before + "/") + pair.translation);
    return term_news::added;
}

source_guard new_list(const LangSource &like)
{
    source_guard list(lang_alloc_group());
    if (list == nullptr)
        return list;
    list->format = LANG_SOURCE_UTF8;
    replace_string(list->default_lang, zel_strdup(like.default_lang));
    return list;
}

} // namespace

source_guard read_terms(const std::string &path, list_fault &fault)
{
    return read_list(path, 0, fault);
}

term_answer add_term(const std::string &path, const LangSource &like, const term_pair &pair,
                     std::int64_t now)
{
    const file_stamp before = stamp_of(path.c_str());
    list_fault fault;
    const source_guard list = is_there(path.c_str()) ? read_list(path, now, fault) : new_list(like);
    if (list == nullptr || fault.meaning != nullptr)
        return {term_news::unreadable, {}};
    define_like(list.get(), like, like.default_lang);
    define_like(list.get(), like, pair.language.c_str());
    const term_news news = put_pair(list.get(), like.default_lang, pair, now);
    if (news != term_news::added)
        return {news, {}};
    write_how how;
    how.now = now;
    how.messages = stderr;
    how.may_replace = [&] { return !has_changed(path.c_str(), before); };
    const write_answer written = write_source(path.c_str(), list.get(), how);
    if (written.code == write_not_allowed)
        return {term_news::changed, {}};
    return {written.code == 0 ? term_news::added : term_news::failed, written.why};
}

} // namespace zel::assist
