#include "compiler/split.h"

#include "app/global.h"
#include "compiler/build-time.h"
#include "compiler/entry-table.h"
#include "compiler/language-path.h"
#include "langlib/compiled-file.h"
#include "source/quote.h"
#include "support/dir_list.h"
#include "support/log-print.h"
#include "support/safe-file.h"
#include "support/text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace {

// One language's file while it is being written. A source may name more languages than the process
// has handles, so only the first files keep theirs between two writes.
struct language_file {
    language_file(const lang_t *of, zel::target_file at, zel::handle held)
        : lang(of), place(std::move(at)), how(held)
    {
    }

    const lang_t *lang;
    zel::target_file place;
    zel::handle how;
    zel::safe_file file;
    std::string text; // not written yet
    std::uint32_t slot = zel::entry_table::no_slot;
    int error = 0;

    // Writes the waiting text if it has at least so many bytes: few large writes are faster.
    int flush(std::size_t least = 0)
    {
        if (text.size() < least || text.empty())
            return 0;
        // On a full disk the failed file gives its space back, so that the others may still fit.
        if (error == 0 && (error = file.append(text)) != 0)
            file.drop();
        if (how == zel::handle::rests)
            file.rest();
        text.clear();
        return error;
    }

    // Completes the file without syncing it, which would take longer than compiling: after a power
    // cut the file can be compiled again from its source.
    int finish()
    {
        flush();
        return error = error != 0 ? error : file.finish(zel::synced::no);
    }
};
using language_file_ptr = std::unique_ptr<language_file>;

void say_cause(const std::string &path, const char *cause)
{
    std::fprintf(stderr, "lang: %s cannot be written: %s\n", path.c_str(), cause);
}

void keep_first(zel::compile_answer &answer, const std::string &path, int error)
{
    if (answer.code == 0)
        answer = {1, path, error};
}

// Returns null, after the messages, when the file cannot be made; the answer then says why. The
// lines on standard output end with the first such file.
language_file_ptr open_language(const lang_t *lang, const char *destination, zel::handle how,
                                zel::compile_answer &answer)
{
    const zel::language_path path = zel::path_of_language(lang, destination);
    auto opened = std::make_unique<language_file>(
        lang, zel::find_target(path.path.c_str(), zel::links::follow), how);
    const char *file = zel::or_empty(lang->file);
    int error = path.is_allowed ? opened->place.refusal : EACCES;
    if (error == 0)
        error = opened->file.create_output(opened->place, how);
    if (error != 0) {
        LogPrint(1, "open_lang_files: ERROR open lang file ->%s<-\n", path.path.c_str());
        if (answer.code == 0)
            std::printf("ERROR open lang file ->%s<-\n", file);
        // The line says enough of a destination that is missing, which is one fault for all files.
        if (error != ENOENT)
            say_cause(path.path, !path.is_allowed             ? "it leads out of the destination"
                                 : opened->place.refusal != 0 ? zel::refusal_text(error)
                                                              : std::strerror(error));
        keep_first(answer, path.path, error);
        return nullptr;
    }
    LogPrint(1, "open_lang_files: READY open lang file ->%s<-\n", path.path.c_str());
    if (answer.code == 0)
        std::printf("READY open lang file ->%s<-\n", file);
    if (how == zel::handle::rests)
        opened->file.rest();
    // A "*/" in the file's name must not end the comment in the first line.
    std::string name;
    zel::append_comment(name, file);
    zel::append_format(opened->text, zel::compiled_first_line, name.c_str());
    return opened;
}

bool has_text(const lang_entry_t *entry)
{
    for (const char *text : zel::each<char>(entry->texts))
        if (text != nullptr && *text != '\0')
            return true;
    return false;
}

void append_entry(std::string &out, const item_t *item, const lang_entry_t *entry, bool is_default,
                  bool posnr)
{
    if (!has_text(entry))
        return;
    zel::append_quoted(out, 0, item->name);
    out += zel::compiled_entry_open;
    if (is_default)
        out += zel::compiled_default;
    if (posnr) {
        std::string number;
        zel::append_format(number, zel::compiled_posnr_text, item->posnr);
        zel::append_quoted(out, 2, number.c_str());
    }
    for (const char *text : zel::each<char>(entry->texts))
        zel::append_quoted(out, 2, text);
    out += zel::compiled_entry_close;
}

struct compiler {
    const LangSource *source;
    const zel::compile_how &how;
    std::vector<language_file_ptr> files;
    zel::entry_table entries;
    std::uint32_t default_slot = zel::entry_table::no_slot;
    bool is_told = true; // whether items without a text are reported

    void open(const char *destination, zel::compile_answer &answer);
    void write();
    void append_head(language_file &out) const;
    void write_group(const edit_t *group);
    void append_item(language_file &out, const item_t *item) const;
    void put(zel::compile_answer &answer);
};

// How many files may keep their handle: half of those that the process may open. The log, the
// libraries and the files without a handle of their own need the rest.
std::size_t handles_to_hold()
{
    rlimit most{};
    return getrlimit(RLIMIT_NOFILE, &most) == 0 ? most.rlim_cur / 2 : 0;
}

void compiler::open(const char *destination, zel::compile_answer &answer)
{
    const std::size_t handles = handles_to_hold();
    for (const lang_t *lang : zel::each<lang_t>(source->langs)) {
        const zel::handle held = files.size() < handles ? zel::handle::kept : zel::handle::rests;
        language_file_ptr opened = open_language(lang, destination, held, answer);
        if (opened == nullptr)
            continue;
        opened->slot = entries.add_language(zel::or_empty(lang->name));
        files.push_back(std::move(opened));
    }
    // The default language may have no file: its texts still serve the others.
    default_slot = entries.add_language(source->default_lang);
    // The lines on standard output end with the first failed file; warnings would follow it.
    is_told = answer.code == 0;
}

void compiler::append_head(language_file &out) const
{
    const char *format = source->format == LANG_SOURCE_ASCII  ? zel::compiled_ascii
                         : source->format == LANG_SOURCE_UTF8 ? zel::compiled_utf8
                                                              : "";
    zel::append_format(out.text, zel::compiled_format, format);
    std::string name;
    zel::append_escaped(name, out.lang->name);
    zel::append_format(out.text, zel::compiled_language, name.c_str());
    if (how.posnr)
        out.text += zel::compiled_posnr;
    zel::append_format(out.text, zel::compiled_ctime, static_cast<unsigned>(how.now));
    zel::append_format(out.text, zel::compiled_src_mtime, static_cast<unsigned>(source->mtime));
}

void compiler::append_item(language_file &out, const item_t *item) const
{
    // The language's own entry wins even if it is empty. Only an item without one gets the default
    // language's texts, marked as such.
    if (const lang_entry_t *entry = entries.find(out.slot))
        append_entry(out.text, item, entry, false, how.posnr);
    else if (const lang_entry_t *fallback = entries.find(default_slot))
        append_entry(out.text, item, fallback, true, how.posnr);
    else if (source->default_lang == nullptr && is_told)
        std::printf("WARNING: no entry for lang \"%s\" item \"%s\"\n",
                    zel::or_empty(out.lang->name), zel::or_empty(item->name));
}

void compiler::write_group(const edit_t *group)
{
    // Caps the memory of all waiting texts together, however many languages there are.
    constexpr std::size_t waiting = 32 * 1024 * 1024;
    constexpr std::size_t worth_a_write = 256 * 1024;
    const std::size_t least =
        std::min(worth_a_write, waiting / std::max<std::size_t>(1, files.size()));
    std::string name;
    zel::append_escaped(name, group->name);
    for (const language_file_ptr &out : files)
        zel::append_format(out->text, zel::compiled_group, name.c_str());
    for (const item_t *item : zel::each<item_t>(group->items)) {
        if (item->used == 0)
            continue;
        // One walk over the source serves all languages: an item's entries are looked up once.
        entries.load(item);
        for (const language_file_ptr &out : files) {
            append_item(*out, item);
            out->flush(least);
        }
    }
}

void compiler::write()
{
    for (const language_file_ptr &out : files)
        append_head(*out);
    for (const edit_t *group : zel::each<edit_t>(source->groups))
        write_group(group);
}

// Moves the files to their places after each has been completed as far as possible: a file that
// could not be written does not keep the others from theirs.
void compiler::put(zel::compile_answer &answer)
{
    for (const language_file_ptr &out : files)
        out->finish();
    for (const language_file_ptr &out : files) {
        const int error = out->error != 0 ? out->error : out->file.put(out->place);
        if (error == 0)
            continue;
        std::printf("ERROR write lang file ->%s<-\n", zel::or_empty(out->lang->file));
        LogPrint(1, "split_file: ERROR(%d) write lang file ->%s<-\n", error,
                 out->place.path.c_str());
        say_cause(out->place.path, std::strerror(error));
        keep_first(answer, out->place.path, error);
    }
}

void log_directory(const char *destination)
{
    LogPrint(1, "split_file: language directory >%s<\n", zel::or_empty(destination));
    if (destination == nullptr)
        return;
    zel_list *names = dir_list(nullptr, destination, nullptr);
    for (const zel_list *node = names; node != nullptr; node = node->next)
        LogPrint(1, "split_file: >%s<\n", static_cast<const char *>(node->data));
    dir_list_free(names);
}

ssize_t write_to_language(void *cookie, const char *data, std::size_t size)
{
    auto *out = static_cast<language_file *>(cookie);
    out->text.append(data, size);
    // A cookie's writer reports an error as 0 bytes, never as a negative number.
    errno = out->flush();
    return errno == 0 ? static_cast<ssize_t>(size) : 0;
}

int close_language(void *cookie)
{
    // The stream owns the language's file. Closing the stream completes the file and puts it in
    // place, so the caller learns of a full disk from fclose.
    const language_file_ptr out(static_cast<language_file *>(cookie));
    errno = out->finish();
    if (errno == 0)
        errno = out->file.put(out->place);
    return errno == 0 ? 0 : EOF;
}

std::FILE *stream_of(language_file_ptr out)
{
    cookie_io_functions_t calls{};
    calls.write = write_to_language;
    calls.close = close_language;
    std::FILE *stream = fopencookie(out.get(), "w", calls);
    if (stream != nullptr)
        static_cast<void>(out.release()); // the stream's now
    return stream;
}

} // namespace

namespace zel {

compile_answer compile_source(LangSource *source, const char *destination, const compile_how &how)
{
    compile_answer answer;
    if (source == nullptr) {
        LogPrint(1, "split_file: group null ptr\n");
        return answer;
    }
    LogPrint(1, "split_file: entry\n");
    compiler work{source, how, {}, {}};
    work.open(destination, answer);
    work.write();
    work.put(answer);
    if (answer.code != 0) {
        LogPrint(1, "split_file: ERROR write languages files\n");
        return answer;
    }
    log_directory(destination);
    LogPrint(1, "split_file: exit\n");
    return answer;
}

} // namespace zel

int split_file(LangSource *source, const char *destination)
{
    return zel::compile_source(source, destination, {lang_global.posnr != 0, zel::build_time()})
        .code;
}

int open_lang_files(GList *langs, const char *destination)
{
    zel::compile_answer answer;
    for (lang_t *lang : zel::each<lang_t>(langs)) {
        // Nobody knows how many streams the caller opens, so none keeps a handle.
        language_file_ptr opened = open_language(lang, destination, zel::handle::rests, answer);
        if (opened == nullptr)
            return -1;
        lang->stream = stream_of(std::move(opened));
        if (lang->stream == nullptr)
            // The streams that are open already stay so: close_lang_files closes them.
            return -1;
    }
    return 0;
}

void close_lang_files(GList *langs)
{
    for (lang_t *lang : zel::each<lang_t>(langs)) {
        if (lang->stream == nullptr)
            continue;
        if (std::fclose(lang->stream) != 0)
            LogPrint(1, "close_lang_files: ERROR write lang file ->%s<-\n",
                     zel::or_empty(lang->file));
        lang->stream = nullptr;
    }
}

int write_lang_entry_by_name(std::FILE *stream, const char *lang, item_t *item, int is_default)
{
    zel::entry_table entries;
    const std::uint32_t slot = entries.add_language(zel::or_empty(lang));
    entries.load(item);
    const lang_entry_t *entry = entries.find(slot);
    if (entry == nullptr)
        return 1;
    std::string text;
    append_entry(text, item, entry, is_default != 0, lang_global.posnr != 0);
    zel::flush_text(text, stream);
    return 0;
}
