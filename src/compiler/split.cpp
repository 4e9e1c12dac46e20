#include "compiler/split.h"

#include "app/global.h"
#include "langlib/compiled-file.h"
#include "source/quote.h"
#include "support/dir_list.h"
#include "support/file-call.h"
#include "support/gen_path.h"
#include "support/log-print.h"
#include "support/text.h"

#include <cstring>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t language_directory_limit = 2038; // bytes of the name before "-edit"

const char *text_of(const char *text) { return text == nullptr ? "" : text; }

// ---- File names

// DESTINATION/language-edit/file; the language's directory is created.
std::string path_below(const char *destination, const lang_t *lang)
{
    std::string directory(text_of(lang->name));
    directory = directory.substr(0, language_directory_limit) + "-edit";
    cre_dir(destination, directory.c_str());
    const char *file = text_of(lang->file);
    std::vector<char> path(std::strlen(destination) + directory.size() + std::strlen(file) + 8);
    gen_path(path.data(), 0, destination, directory.c_str(), file, nullptr);
    return path.data();
}

std::string path_of(const lang_t *lang, const char *destination)
{
    std::string path = destination == nullptr ? text_of(lang->file) : path_below(destination, lang);
    constexpr std::string_view ending = zel::compiled_ending;
    if (path.ends_with(ending))
        path.resize(path.size() - ending.size());
    return path.append(ending);
}

bool open_lang_file(lang_t *lang, const char *destination)
{
    const std::string path = path_of(lang, destination);
    const char *file = text_of(lang->file);
    lang->stream = zel_fopen(path.c_str(), "w+");
    if (lang->stream == nullptr) {
        std::printf("ERROR open lang file ->%s<-\n", file);
        LogPrint(1, "open_lang_files: ERROR open lang file ->%s<-\n", path.c_str());
        return false;
    }
    std::printf("READY open lang file ->%s<-\n", file);
    LogPrint(1, "open_lang_files: READY open lang file ->%s<-\n", path.c_str());
    std::string name;
    zel::append_comment(name, file);
    std::fprintf(lang->stream, zel::compiled_first_line, name.c_str());
    return true;
}

// ---- The text

// Letters of two cases differ in one bit: names that differ in another are told apart here.
bool may_be_equal(char a, char b) { return ((a ^ b) & ~0x20) == 0; }

lang_entry_t *find_entry(item_t *item, const char *lang)
{
    if (lang == nullptr)
        return nullptr;
    for (lang_entry_t *entry : zel::each<lang_entry_t>(item->langs))
        if (entry->lang != nullptr && may_be_equal(*entry->lang, *lang) &&
            zel::compare_nocase(entry->lang, lang) == 0)
            return entry;
    return nullptr;
}

bool has_text(const lang_entry_t *entry)
{
    for (const char *text : zel::each<char>(entry->texts))
        if (text != nullptr && *text != '\0')
            return true;
    return false;
}

int append_entry(std::string &out, const char *lang, item_t *item, bool is_default)
{
    const lang_entry_t *entry = find_entry(item, lang);
    if (entry == nullptr)
        return 1;
    if (!has_text(entry))
        return 0;
    zel::append_quoted(out, 0, item->name);
    out += zel::compiled_entry_open;
    if (is_default)
        out += zel::compiled_default;
    if (lang_global.posnr != 0) {
        std::string number;
        zel::append_format(number, zel::compiled_posnr_text, item->posnr);
        zel::append_quoted(out, 2, number.c_str());
    }
    for (const char *text : zel::each<char>(entry->texts))
        zel::append_quoted(out, 2, text);
    out += zel::compiled_entry_close;
    return 0;
}

// One language's file under construction: the stream gets it in large pieces.
struct output {
    const lang_t *lang;
    std::string text;
};

void append_head(output &out, const LangSource *source, std::time_t now)
{
    const char *format = source->format == LANG_SOURCE_ASCII  ? zel::compiled_ascii
                         : source->format == LANG_SOURCE_UTF8 ? zel::compiled_utf8
                                                              : "";
    zel::append_format(out.text, zel::compiled_format, format);
    std::string name;
    zel::append_escaped(name, out.lang->name);
    zel::append_format(out.text, zel::compiled_language, name.c_str());
    if (lang_global.posnr != 0)
        out.text += zel::compiled_posnr;
    zel::append_format(out.text, zel::compiled_ctime, static_cast<unsigned>(now));
    zel::append_format(out.text, zel::compiled_src_mtime, static_cast<unsigned>(source->mtime));
}

void append_item(output &out, const LangSource *source, item_t *item)
{
    if (append_entry(out.text, out.lang->name, item, false) != 0) {
        if (source->default_lang != nullptr)
            append_entry(out.text, source->default_lang, item, true);
        else
            std::printf("WARNING: no entry for lang \"%s\" item \"%s\"\n", text_of(out.lang->name),
                        text_of(item->name));
    }
    zel::flush_large_text(out.text, out.lang->stream);
}

void write_group(std::vector<output> &outputs, const LangSource *source, const edit_t *group)
{
    std::string name;
    zel::append_escaped(name, group->name);
    for (output &out : outputs)
        zel::append_format(out.text, zel::compiled_group, name.c_str());
    for (item_t *item : zel::each<item_t>(group->items)) {
        if (item->used == 0)
            continue;
        for (output &out : outputs)
            append_item(out, source, item);
    }
}

void write_files(const LangSource *source)
{
    std::vector<output> outputs;
    const std::time_t now = std::time(nullptr);
    for (const lang_t *lang : zel::each<lang_t>(source->langs)) {
        outputs.push_back({lang, {}});
        append_head(outputs.back(), source, now);
    }
    for (const edit_t *group : zel::each<edit_t>(source->groups))
        write_group(outputs, source, group);
    for (output &out : outputs)
        zel::flush_text(out.text, out.lang->stream);
}

void log_directory(const char *destination)
{
    LogPrint(1, "split_file: language directory >%s<\n", text_of(destination));
    if (destination == nullptr)
        return;
    zel_list *names = dir_list(nullptr, destination, nullptr);
    for (const zel_list *node = names; node != nullptr; node = node->next)
        LogPrint(1, "split_file: >%s<\n", static_cast<const char *>(node->data));
    dir_list_free(names);
}

} // namespace

int open_lang_files(GList *langs, const char *destination)
{
    for (lang_t *lang : zel::each<lang_t>(langs))
        if (!open_lang_file(lang, destination))
            return -1;
    return 0;
}

void close_lang_files(GList *langs)
{
    for (lang_t *lang : zel::each<lang_t>(langs)) {
        if (lang->stream == nullptr)
            continue;
        const bool failed = std::ferror(lang->stream) != 0;
        if (std::fclose(lang->stream) != 0 || failed)
            LogPrint(1, "close_lang_files: ERROR write lang file ->%s<-\n", text_of(lang->file));
        lang->stream = nullptr;
    }
}

int write_lang_entry_by_name(std::FILE *stream, const char *lang, item_t *item, int is_default)
{
    std::string text;
    const int result = append_entry(text, lang, item, is_default != 0);
    zel::flush_text(text, stream);
    return result;
}

int split_file(LangSource *source, const char *destination)
{
    if (source == nullptr) {
        LogPrint(1, "split_file: group null ptr\n");
        return 0;
    }
    LogPrint(1, "split_file: entry\n");
    if (open_lang_files(source->langs, destination) != 0) {
        close_lang_files(source->langs);
        LogPrint(1, "split_file: ERROR write languages files\n");
        return 1;
    }
    write_files(source);
    close_lang_files(source->langs);
    log_directory(destination);
    LogPrint(1, "split_file: exit\n");
    return 0;
}
