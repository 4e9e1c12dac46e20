#include "assist/earlier.h"

#include "assist/revisions.h"
#include "assist/source-walk.h"
#include "source/entry.h"
#include "support/target-file.h"
#include "support/text.h"

#include <iterator>
#include <optional>

namespace zel::assist {

namespace {

constexpr std::string_view backup_ending = ".bak";
constexpr std::string_view date_form = "-0000-00-00-00-00-00"; // 0: a digit
constexpr std::size_t length_of_day = 11;                      // "-2024-05-01"
constexpr std::size_t most_backups = 1000;                     // the newest ones
constexpr unsigned items_at_once = 32;
constexpr std::size_t names_at_once = 500; // entries

std::string key_of(const edit_t &group, const item_t &item)
{
    return std::string(or_empty(group.name)) + '\0' + or_empty(item.name);
}

// Whether a backup's name may end like this, behind the name of its source.
bool is_dated(std::string_view rest)
{
    if (rest.size() != date_form.size() + backup_ending.size() || !rest.ends_with(backup_ending))
        return false;
    for (std::size_t i = 0; i < date_form.size(); ++i)
        if (date_form[i] == '0' ? rest[i] < '0' || rest[i] > '9' : rest[i] != date_form[i])
            return false;
    return true;
}

} // namespace

earlier_texts::earlier_texts(earlier_limits limits) : limits_(limits) {}
earlier_texts::~earlier_texts() = default;

void earlier_texts::stop()
{
    // An answer that is not complete is not kept: the empty query makes the next begin() start
    // again.
    if (source_ != nullptr)
        query_ = {};
    source_ = nullptr;
    folder_.reset();
    file_.reset();
    versions_.reset();
    waits_ = false;
    names_.clear();
    group_ = nullptr;
    // Not cleared: that would keep the memory of its buckets.
    decltype(rows_)().swap(rows_);
}

void earlier_texts::begin(const neighbour_texts::query &wanted, const LangSource &source)
{
    if (wanted == query_)
        return;
    stop();
    query_ = wanted;
    found_.clear();
    files_ = bytes_ = 0;
    source_ = &source;
    // Backups lie beside the file itself, which the path may be a link to.
    prefix_ = find_target(wanted.path.c_str(), links::follow).path;
    const std::string folder = folder_of(prefix_);
    folder_.reset(opendir(folder.empty() ? "." : folder.c_str()));
}

void earlier_texts::list_some()
{
    const std::string_view own = std::string_view(prefix_).substr(folder_of(prefix_).size());
    for (std::size_t count = 0; count < names_at_once; ++count) {
        const dirent *entry = readdir(folder_.get());
        if (entry == nullptr) {
            folder_.reset();
            return choose();
        }
        const std::string_view name = entry->d_name;
        if (name.starts_with(own) && is_dated(name.substr(own.size())))
            names_.emplace(name.substr(own.size()));
        if (names_.size() > most_backups)
            names_.erase(std::prev(names_.end()));
    }
}

void earlier_texts::collect_from(GList *group)
{
    group_ = group;
    item_ = group == nullptr ? nullptr : static_cast<edit_t *>(group->data)->items;
}

void earlier_texts::collect_some()
{
    const auto &group = *static_cast<const edit_t *>(group_->data);
    for (unsigned count = 0; count < items_at_once && item_ != nullptr; ++count) {
        const auto *item = static_cast<const item_t *>(item_->data);
        if (item->used != 0)
            rows_.try_emplace(key_of(group, *item),
                              held{item, {!query_.langs[0].empty(), !query_.langs[1].empty()}});
        item_ = item_->next;
    }
    if (item_ == nullptr)
        collect_from(group_->next);
}

// Keeps the backups that are to be read: of each day that is past only one.
void earlier_texts::choose()
{
    std::size_t chosen = 0;
    std::string day;
    for (auto name = names_.begin(); name != names_.end();) {
        const bool is_wanted =
            chosen < limits_.files && (chosen < limits_.newest || !name->starts_with(day));
        chosen += is_wanted ? 1U : 0U;
        day = name->substr(0, length_of_day);
        name = is_wanted ? std::next(name) : names_.erase(name);
    }
    // Most sources have no backup: nothing is collected for them.
    if (!names_.empty())
        collect_from(source_->groups);
}

void earlier_texts::open_next()
{
    const std::string path = prefix_ + names_.extract(names_.begin()).value();
    std::optional<std::string> text = read_regular(path, [this](const struct stat &status) {
        const auto size = static_cast<std::size_t>(status.st_size);
        return size != 0 && size <= limits_.bytes_of_one && bytes_ + size <= limits_.bytes;
    });
    if (!text)
        return;
    bytes_ += text->size();
    begin_file(path, std::move(*text));
}

// Only the languages that are asked for are kept.
void earlier_texts::begin_file(const std::string &name, std::string text)
{
    file_ = std::make_unique<source_walk>(
        name, std::move(text), [this](std::string_view language) { return query_.has(language); });
}

// Blank lines at the end are no part of a text: storing drops them.
std::string earlier_texts::text_in(const item_t &item, const std::string &lang) const
{
    return std::string(without_end(text_of(find_entry(item.langs, lang.c_str()))));
}

void earlier_texts::compare(held &now, const std::string &key, const item_t *before,
                            std::size_t lang)
{
    const std::string translation = text_in(*now.item, query_.langs[lang]);
    const bool is_same = !translation.empty() &&
                         translation == text_in(*before, query_.langs[lang]) &&
                         (now.item->ready == 0 || before->ready != 0);
    now.is_open[lang] = is_same;
    const std::string reference = text_in(*before, query_.reference);
    // Without a text in the default language there is no original that could have changed.
    if (!is_same || reference.empty())
        return;
    if (reference != text_in(*now.item, query_.reference))
        found_[key][lang] = {reference, translation, before->ready != 0};
    else if (const auto at = found_.find(key); at != found_.end())
        at->second[lang] = {}; // it was changed, and changed back
}

void earlier_texts::compare(const LangSource &backup, const edit_t &group, const item_t *before)
{
    // The backup's originals are in another language: none can be compared.
    if (or_empty(backup.default_lang) != query_.reference)
        return;
    const std::string key = key_of(group, *before);
    const auto at = rows_.find(key);
    if (at == rows_.end())
        return;
    held &now = at->second;
    for (std::size_t lang = 0; lang < now.is_open.size(); ++lang)
        if (now.is_open[lang])
            compare(now, key, before, lang);
}

void earlier_texts::read_some()
{
    const auto take = [this](const LangSource &backup, const edit_t &group, const item_t *item) {
        compare(backup, group, item);
    };
    if (file_->step(take))
        return;
    file_.reset();
    ++files_;
}

// Asks git for the texts that no backup has told of: a backup is nearer.
void earlier_texts::ask_git()
{
    for (const auto &[key, texts] : found_)
        for (std::size_t lang = 0; lang < texts.size(); ++lang)
            if (const auto at = rows_.find(key);
                at != rows_.end() && !texts[lang].reference.empty())
                at->second.is_open[lang] = false;
    versions_ = std::make_unique<revisions>(prefix_, limits_.versions, limits_.bytes_of_one);
}

bool earlier_texts::read_version()
{
    std::string text;
    const revision_news news = versions_->step(text);
    waits_ = news == revision_news::waits;
    if (news != revision_news::text)
        return news != revision_news::over;
    begin_file(prefix_, std::move(text));
    if (rows_.empty())
        collect_from(source_->groups);
    return true;
}

bool earlier_texts::do_piece()
{
    if (folder_ != nullptr)
        list_some();
    else if (group_ != nullptr)
        collect_some();
    else if (file_ != nullptr)
        read_some();
    else if (!names_.empty())
        open_next();
    else if (versions_ == nullptr)
        ask_git();
    else
        return read_version();
    return true;
}

bool earlier_texts::step(std::chrono::steady_clock::time_point until)
{
    do {
        if (do_piece())
            continue;
        source_ = nullptr; // complete
        stop();
        return false;
    } while (!waits_ && std::chrono::steady_clock::now() < until);
    return true;
}

std::string earlier_texts::of(const edit_t &group, const item_t &item, std::size_t lang) const
{
    const auto at = found_.find(key_of(group, item));
    if (at == found_.end())
        return {};
    const found &before = at->second[lang];
    const bool is_seen = item.ready != 0 && !before.is_ready;
    const bool is_same = is_seen || before.translation != text_in(item, query_.langs[lang]) ||
                         before.reference == text_in(item, query_.reference);
    return is_same ? std::string() : before.reference;
}

} // namespace zel::assist
