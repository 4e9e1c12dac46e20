// The compiled files of a directory, and which of them the user wants.

#include "langlib/lang-locale.h"

#include "langlib/compiled-file.h"
#include "langlib/compiled-head.h"
#include "langlib/lang-load.h"
#include "langlib/lang-table.h"
#include "langlib/lang-trace.h"
#include "langlib/lang-watch.h"
#include "langlib/languages.h"
#include "support/cut.h"
#include "support/dir_list.h"
#include "support/file-call.h"
#include "support/growing-text.h"
#include "support/log-print.h"
#include "support/string-copy.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <new>
#include <pthread.h>
#include <string_view>
#include <unistd.h>

namespace {

using zel::language_row;
using zel::language_tag;

struct text_file {
    text_file *next;
    const char *path;
    const char *name;
    std::string_view data; // of one that lies in memory
    std::string_view stem; // of the path
    language_tag tag;      // empty for no known language
    language_row row;
    bool taken;      // it is in the chain already
    text_file *then; // the one that is asked after it
};

// The compiled files that were found, in the order of their paths.
struct text_files {
    zel::lang_store_guard store{zel::lang_store_new()};
    text_file *first = nullptr;
    text_file **end = &first;
    bool complete = store != nullptr; // false without memory
};

// Copies a text into a store; null without memory.
char *keep(lang_index *store, std::string_view text)
{
    auto *copy = static_cast<char *>(zel::lang_store_allocate(store, text.size() + 1));
    if (copy == nullptr)
        return nullptr;
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

std::string_view stem_of(std::string_view path)
{
    path.remove_prefix(path.rfind('/') + 1);
    path.remove_suffix(std::strlen(zel::compiled_ending));
    return path;
}

void add_file(text_files &files, std::string_view path, std::string_view data = {})
{
    void *memory = zel::lang_store_allocate(files.store.get(), sizeof(text_file));
    const char *kept = keep(files.store.get(), path);
    if (memory == nullptr || kept == nullptr) {
        files.complete = false;
        return;
    }
    // Never destroyed: the record owns nothing, and its memory goes back with the store.
    auto *file =
        new (memory) text_file{nullptr, kept, nullptr, data, stem_of(kept), {}, {}, false, nullptr};
    const zel::string_guard name(zel::read_language_name(kept, data));
    file->name = keep(files.store.get(), name ? std::string_view(name.get()) : file->stem);
    if (file->name == nullptr) {
        files.complete = false;
        return;
    }
    // The name inside the file counts more than the file's own name.
    if (!zel::read_language(file->name, file->tag, file->row))
        zel::read_language(file->stem, file->tag, file->row);
    *files.end = file;
    files.end = &file->next;
}

bool is_kind(const char *path, mode_t kind)
{
    struct stat status;
    return zel_stat(path, &status) == 0 && (status.st_mode & S_IFMT) == kind;
}

bool is_compiled(std::string_view name)
{
    return name.size() > std::strlen(zel::compiled_ending) && name.ends_with(zel::compiled_ending);
}

// Finds the files of a folder and, with below, of the folders in it. False when the folder cannot
// be read.
bool find_files(text_files &files, const char *folder, bool below)
{
    const dir_list_guard names(dir_list_sort(dir_list(nullptr, folder, nullptr)));
    if (!names) // an empty one has none either
        return access(folder, R_OK | X_OK) == 0 && is_kind(folder, S_IFDIR);
    zel::growing_text path;
    for (const zel_list *one = names.get(); one != nullptr; one = one->next) {
        const std::string_view name = dir_list_file(one);
        path.cut(0);
        if (!path.append(folder) || !path.append("/") || !path.append(name))
            files.complete = false;
        else if (is_compiled(name) && is_kind(path.data(), S_IFREG))
            add_file(files, {path.data(), path.length()});
        else if (below && is_kind(path.data(), S_IFDIR))
            // One level is enough, and no link can lead round and round.
            find_files(files, path.data(), false);
    }
    return true;
}

// Adds what a block of memory holds: one compiled file, or behind the mark several, each as "NAME
// SIZE", a line end, so many bytes and another line end. False when it is damaged.
bool add_memory(text_files &files, std::string_view data)
{
    constexpr std::string_view mark = "lang-texts 1\n";
    if (data.size() > UINT32_MAX)
        return false;
    if (!data.starts_with(mark)) {
        add_file(files, "memory.lang", data);
        return true;
    }
    data.remove_prefix(mark.size());
    while (!data.empty()) {
        const std::string_view line = zel::cut_at(data, '\n');
        const std::size_t blank = line.rfind(' ');
        std::size_t size = 0;
        if (blank == line.npos || !is_compiled(line.substr(0, blank)) ||
            std::from_chars(line.data() + blank + 1, line.data() + line.size(), size).ptr !=
                line.data() + line.size() ||
            size >= data.size())
            return false;
        add_file(files, line.substr(0, blank), data.substr(0, size));
        data.remove_prefix(size + 1);
    }
    return true;
}

bool same_letters(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

bool is_no_language(std::string_view name) { return name == "C" || name == "POSIX"; }

const char *setting(const char *name)
{
    const char *value = std::getenv(name);
    return value == nullptr ? "" : value;
}

// The list of languages that the environment names, as the C library finds it.
const char *wanted_languages()
{
    const char *locale = "";
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (locale[0] == '\0')
            locale = setting(name);
    // Without a locale the C library does not look at LANGUAGE either.
    if (locale[0] == '\0' || is_no_language(locale))
        return "";
    const char *list = setting("LANGUAGE");
    return list[0] != '\0' ? list : locale;
}

// The files that are taken, in the order in which they are asked.
struct chosen {
    text_file *first = nullptr;
    text_file **end = &first;

    void take(text_file *file)
    {
        if (!file->taken) {
            file->taken = true;
            *end = file;
            end = &file->then;
        }
    }
};

template <class Fits>
void take_first(const text_files &files, chosen &taken, Fits fits)
{
    for (text_file *file = files.first; file != nullptr; file = file->next)
        if (fits(*file)) {
            taken.take(file);
            return;
        }
}

// Whether a name consists of the parts, whatever the case of their letters.
bool is_joined(std::string_view name, std::initializer_list<std::string_view> parts)
{
    for (const std::string_view part : parts) {
        if (!same_letters(name.substr(0, part.size()), part))
            return false;
        name.remove_prefix(part.size());
    }
    return name.empty();
}

// A language that the table does not know is found by its name as it stands, and by what is left of
// "xx_YY@mod" without the territory, the modifier, or both.
void take_unknown(const text_files &files, std::string_view name, chosen &taken)
{
    const std::size_t sign = std::min(name.find('@'), name.size());
    const std::string_view modifier = name.substr(sign);
    name = name.substr(0, std::min(name.find('.'), sign));
    const std::string_view language = name.substr(0, name.rfind('_'));
    const std::string_view territory = name.substr(language.size());
    const std::string_view choices[][2] = {
        {territory, modifier}, {"", modifier}, {territory, ""}, {"", ""}};
    for (const auto &choice : choices)
        take_first(files, taken, [&](const text_file &file) {
            return file.tag.length == 0 &&
                   (is_joined(file.name, {language, choice[0], choice[1]}) ||
                    is_joined(file.stem, {language, choice[0], choice[1]}));
        });
}

// Takes the next name off a list of languages; empty at its end and at "C".
std::string_view next_name(std::string_view &list)
{
    list.remove_prefix(std::min(list.find_first_not_of(':'), list.size()));
    const std::string_view name = list.substr(0, list.find(':'));
    list.remove_prefix(name.size());
    return is_no_language(name) ? std::string_view() : name;
}

std::string_view code_of(const language_tag &tag)
{
    return tag.view().substr(0, tag.view().find_first_of("_@"));
}

// Whether the list names this language, or one that is near to it: then it is taken there.
bool comes_later(std::string_view list, std::string_view code)
{
    language_tag tag;
    language_row row;
    for (std::string_view name; !(name = next_name(list)).empty();)
        if (zel::read_language(name, tag, row) &&
            (code_of(tag) == code || zel::near_language(code_of(tag)) == code))
            return true;
    return false;
}

void take_language(const text_files &files, std::string_view name, std::string_view others,
                   chosen &taken)
{
    language_tag wanted;
    language_row row;
    if (!zel::read_language(name, wanted, row))
        return take_unknown(files, name, taken);
    const std::string_view near = zel::near_language(code_of(wanted));
    language_tag choice;
    // Every choice that has a file is taken: what one file lacks, the next one may have.
    for (unsigned i = 0; zel::next_choice(wanted, i, choice); ++i)
        // A near language that the user names later keeps its later place.
        if (near.empty() || choice.view() != near || !comes_later(others, near))
            take_first(files, taken, [&choice](const text_file &file) {
                return file.tag.view() == choice.view();
            });
}

void choose(const text_files &files, const char *languages, chosen &taken)
{
    std::string_view rest = languages == nullptr ? wanted_languages() : languages;
    for (std::string_view name; !(name = next_name(rest)).empty();)
        take_language(files, name, rest, taken);
    // The application's own choice for everybody else comes last.
    take_first(files, taken, [](const text_file &file) {
        return same_letters(file.stem, "default") || same_letters(file.name, "default");
    });
}

const char *keep_or_null(lang_index *store, std::string_view text)
{
    return text.empty() ? nullptr : keep(store, text);
}

// The record of a loaded file, in the store; null without memory.
lang_locale_t *describe(const text_file &file, const lang_handle_t &handle, lang_index *store)
{
    void *memory = zel::lang_store_allocate(store, sizeof(lang_locale_t));
    if (memory == nullptr)
        return nullptr;
    auto *made = new (memory) lang_locale_t{keep(store, file.path),
                                            keep(store, file.name),
                                            keep_or_null(store, file.tag.view()),
                                            keep_or_null(store, file.row.english),
                                            keep_or_null(store, file.row.own),
                                            0,
                                            0,
                                            nullptr};
    // The first and the last slot are sentinels.
    for (std::int32_t slot = 1; slot < handle.count - 1; ++slot) {
        made->texts += 1;
        made->defaults += handle.lang[slot].is_default;
    }
    const bool complete = made->path != nullptr && made->name != nullptr;
    return complete ? made : nullptr;
}

void release(lang_handle_t *handle)
{
    if (handle != nullptr)
        zel::lang_empty(handle);
    std::free(handle);
}

// Loads a file into a handle with its record; null when it cannot be read or without memory.
lang_handle_t *load(const text_file &file)
{
    lang_handle_t *handle = file.data.data() == nullptr ? lang_new(file.path)
                                                        : zel::lang_new_from(file.path, file.data);
    if (handle == nullptr || handle->loaded == 0 || handle->index == nullptr) {
        release(handle);
        return nullptr;
    }
    // The record goes into the handle's own store, and so lives as long as its texts.
    zel::lang_link &link = zel::link_of(handle->index);
    link.locale = describe(file, *handle, handle->index);
    if (!file.row.plural.empty())
        // A part of the table of languages, which is always there.
        link.plural = file.row.plural.data();
    if (link.locale == nullptr) {
        release(handle);
        return nullptr;
    }
    return handle;
}

// Chains the second handle behind the first, and the second one's record, if it has one.
void chain(lang_handle_t *first, lang_handle_t *second)
{
    zel::lang_link &link = zel::link_of(first->index);
    const bool recorded = second != nullptr && second->index != nullptr;
    link.next = second;
    if (link.locale != nullptr)
        link.locale->next = recorded ? zel::link_of(second->index).locale : nullptr;
}

// Loads the files, each chained to the next; null when none can be read.
lang_handle_t *load_chain(const chosen &taken)
{
    lang_handle_t *first = nullptr;
    lang_handle_t *last = nullptr;
    for (const text_file *file = taken.first; file != nullptr; file = file->then) {
        lang_handle_t *handle = load(*file);
        // A file that cannot be read leaves its place to the next one.
        if (handle == nullptr)
            continue;
        if (last == nullptr) {
            first = handle;
        } else {
            chain(last, handle);
            zel::link_of(last->index).owns_next = true;
        }
        last = handle;
    }
    return first;
}

lang_handle_t *load_chosen(const text_files &files, const char *languages)
{
    chosen taken;
    choose(files, languages, taken);
    return load_chain(taken);
}

lang_handle_t *load_directory(const char *directory, const char *languages)
{
    text_files files;
    if (directory == nullptr || !files.complete || !find_files(files, directory, true) ||
        !files.complete) {
        LogPrint(1, "lang_locale_load: ERROR read directory >%s<\n",
                 directory == nullptr ? "(null)" : directory);
        return nullptr;
    }
    lang_handle_t *handle = load_chosen(files, languages);
    if (handle == nullptr)
        LogPrint(1, "lang_locale_load: INFO no file for the language in >%s<\n", directory);
    return handle;
}

// The same with a block of memory behind the directory's files, so that these win.
lang_handle_t *load_memory(const char *directory, const char *languages, std::string_view data)
{
    text_files files;
    if (directory != nullptr && files.complete)
        find_files(files, directory, true);
    if (!files.complete || data.data() == nullptr || !add_memory(files, data) || !files.complete)
        LogPrint(1, "lang_locale_memory: ERROR read texts in memory\n");
    lang_handle_t *handle = files.store == nullptr ? nullptr : load_chosen(files, languages);
    if (handle == nullptr)
        LogPrint(1, "lang_locale_memory: INFO no texts for the language in memory\n");
    return handle;
}

pthread_mutex_t loading = PTHREAD_MUTEX_INITIALIZER;

} // namespace

lang_handle_t *lang_locale_new(const char *directory, const char *languages)
{
    zel::trace_begin();
    return load_directory(directory, languages);
}

namespace {

// Fills the process-wide handle. Several threads may come here at once: only the first one loads.
// The place is what a reload reads.
template <class Load>
const lang_locale_t *load_process_wide(const char *directory, const char *languages, Load load)
{
    zel::trace_begin();
    pthread_mutex_lock(&loading);
    lang_handle_t *handle = nullptr;
    if (__atomic_load_n(&lang.loaded, __ATOMIC_ACQUIRE) == 0) {
        // Also where nothing is there yet: it may come.
        zel::keep_home(directory, languages);
        handle = load();
    } else
        LogPrint(1, "lang_locale_load: ERROR the texts are loaded already\n");
    const lang_locale_t *taken = nullptr;
    if (handle != nullptr) {
        // Stays valid: the record stands in the store, which moves into lang as it is.
        taken = zel::link_of(handle->index).locale;
        zel::lang_move_in(&lang, handle);
    }
    pthread_mutex_unlock(&loading);
    return taken;
}

// What the application has chained to the process-wide handle goes on behind its new texts.
void keep_chain(lang_handle_t *before, lang_handle_t *handle)
{
    const zel::lang_link &link = zel::link_of(before->index);
    if (link.next == nullptr || link.owns_next)
        return;
    zel::lang_drop_chain(handle);
    chain(handle, link.next);
}

// The result of lang_locale_reload.
int reload()
{
    const zel::texts_home &home = zel::loaded_home();
    if (home.directory == nullptr) {
        LogPrint(1, "lang_locale_reload: ERROR the texts came from no directory\n");
        return -1;
    }
    if (!zel::news_came())
        return 0;
    lang_handle_t *handle = load_directory(home.directory, home.languages);
    if (handle == nullptr)
        return -1;
    if (__atomic_load_n(&lang.loaded, __ATOMIC_ACQUIRE) == 0) {
        zel::lang_move_in(&lang, handle);
        return 1;
    }
    // What it takes the place of stays: the application has texts of it.
    lang_handle_t *before = zel::newest_handle(&lang);
    keep_chain(before, handle);
    zel::link_of(handle->index).before = before;
    zel::put_newest(handle);
    return 1;
}

} // namespace

int lang_locale_watch(const char *directory)
{
    pthread_mutex_lock(&loading);
    if (directory == nullptr)
        directory = zel::loaded_home().directory;
    const int number = directory == nullptr ? -1 : zel::news_begin(directory);
    pthread_mutex_unlock(&loading);
    if (number < 0)
        LogPrint(1, "lang_locale_watch: ERROR watch directory >%s<\n",
                 directory == nullptr ? "(null)" : directory);
    return number;
}

int lang_locale_reload(void)
{
    pthread_mutex_lock(&loading);
    const int result = reload();
    pthread_mutex_unlock(&loading);
    return result;
}

void lang_trace_mark(const char *name) { zel::trace_mark(name); }

const lang_locale_t *lang_locale_choose(const char *directory, const char *languages)
{
    return load_process_wide(directory, languages,
                             [=] { return load_directory(directory, languages); });
}

const lang_locale_t *lang_locale_memory(const char *directory, const char *languages,
                                        const void *data, std::size_t size)
{
    // The block of memory need not be there at the time of a reload.
    return load_process_wide(nullptr, nullptr, [=] {
        return load_memory(directory, languages, {static_cast<const char *>(data), size});
    });
}

const lang_locale_t *lang_load_memory(const void *data, std::size_t size)
{
    return lang_locale_memory(nullptr, nullptr, data, size);
}

const lang_locale_t *lang_locale_load(const char *directory)
{
    return lang_locale_choose(directory, nullptr);
}

const lang_locale_t *lang_locale_of(const lang_handle_t *handle)
{
    handle = zel::newest_handle(handle);
    const bool loaded = __atomic_load_n(&handle->loaded, __ATOMIC_ACQUIRE) != 0;
    return loaded && handle->index != nullptr ? zel::link_of(handle->index).locale : nullptr;
}

int lang_locale_list(const char *directory, void (*function)(const lang_locale_t *file, void *user),
                     void *user)
{
    text_files files;
    if (directory == nullptr || !files.complete || !find_files(files, directory, true) ||
        !files.complete)
        return -1;
    int count = 0;
    for (const text_file *file = files.first; file != nullptr; file = file->next) {
        lang_handle_t *handle = load(*file);
        if (handle == nullptr)
            continue;
        ++count;
        if (function != nullptr)
            function(zel::link_of(handle->index).locale, user);
        release(handle);
    }
    return count;
}

int lang_locale_chain(lang_handle_t *first, lang_handle_t *second)
{
    first = zel::newest_handle(first);
    if (first->loaded == 0 || first->index == nullptr || first->import_mode != 0 ||
        (second != nullptr && second->import_mode != 0))
        return 1;
    // A chain that leads back to its start would never end.
    for (const lang_handle_t *one = second; one != nullptr;
         one = one->index == nullptr ? nullptr : zel::link_of(one->index).next)
        if (one == first)
            return 2;
    zel::lang_drop_chain(first);
    chain(first, second);
    return 0;
}
