#include "source/lang-write.h"

#include "app/global.h"
#include "source/misc.h"
#include "source/quote.h"
#include "support/file-call.h"
#include "support/log-print.h"
#include "support/safe-file.h"
#include "support/time.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char *temporary = "lang.tmp";
constexpr std::size_t backup_name_size = 2048;
using backup_name = std::array<char, backup_name_size>;

// ---- The text

struct source_writer {
    std::FILE *stream;
    const LangSource *source;
    bool selected_only; // the two output languages and no other
    std::string out;

    source_writer(std::FILE *file, const LangSource *root)
        : stream(file), source(root), selected_only(lang_global.save_selected_only != 0 &&
                                                    lang_global.output_lang_1 != nullptr &&
                                                    lang_global.output_lang_2 != nullptr)
    {
    }

    bool is_selected(const char *lang) const;
    void write(const char *path);
    void write_statement(const char *before, const char *text, const char *after);
    void write_head();
    void write_languages();
    void write_group(const edit_t *group);
    void write_item(const edit_t *group, const item_t *item);
    void write_attributes(const item_t *item);
    void write_strings(GList *strings);
    void write_entries(const char *keyword, GList *entries);
};

bool source_writer::is_selected(const char *lang) const
{
    return !selected_only ||
           (lang != nullptr && (std::strcmp(lang, lang_global.output_lang_1) == 0 ||
                                std::strcmp(lang, lang_global.output_lang_2) == 0));
}

// A text between two literals, escaped like every quoted string.
void source_writer::write_statement(const char *before, const char *text, const char *after)
{
    out += before;
    zel::append_escaped(out, text);
    out += after;
}

void source_writer::write_head()
{
    out += "/* !!!! DO NOT EDIT !!!!! */\n\nversion 1\n";
    if (source->create_date != nullptr)
        write_statement("create_date \"", source->create_date, "\"\n");
    zel::append_format(out, "whatsnew %u\nctime %u\nmtime %u\n",
                       static_cast<unsigned>(source->whatsnew),
                       static_cast<unsigned>(source->ctime), static_cast<unsigned>(source->mtime));
    out += "define format ";
    out += source->format == LANG_SOURCE_UTF8 ? "utf8\n" : "ascii\n";
    write_statement("app \"", source->app == nullptr ? "unknown" : source->app, "\"\n");
    write_statement("default lang \"",
                    source->default_lang == nullptr ? "english" : source->default_lang, "\"\n");
    out += "\n\n";
}

void source_writer::write_languages()
{
    for (const lang_t *lang : zel::each<lang_t>(source->langs)) {
        if (!is_selected(lang->name))
            continue;
        write_statement("define file \"", lang->file, "\" lang \"");
        write_statement("", lang->name, "\"");
        zel::append_format(out, " %d %d %d\n", lang->value_1, lang->value_2,
                           selected_only ? 1 : lang->edit);
    }
    zel::append_format(out, "\n\ncolwidth group %d\ncolwidth item  %d\ncolwidth ctrl  %d\n\n\n",
                       source->colwidth_group, source->colwidth_item, source->colwidth_ctrl);
}

void source_writer::write_strings(GList *strings)
{
    for (const char *text : zel::each<char>(strings)) {
        zel::append_quoted(out, 6, text);
        out += '\n';
    }
}

void source_writer::write_entries(const char *keyword, GList *entries)
{
    for (lang_entry_t *entry : zel::each<lang_entry_t>(entries)) {
        if (!is_selected(entry->lang))
            continue;
        misc_remove_empty_lines(entry);
        out.append("    ").append(keyword) += ' ';
        zel::append_quoted(out, 0, entry->lang);
        out += " {\n";
        write_strings(entry->texts);
        out += "    }\n";
    }
}

void source_writer::write_attributes(const item_t *item)
{
    write_statement("    DESCRIPTION  \"",
                    item->description == nullptr ? "none" : item->description, "\"\n");
    zel::append_format(out,
                       "    TYP       %d\n"
                       "    ROWHEIGHT %d\n"
                       "    CTIME     %d\n"
                       "    VISIBLE   %d\n"
                       "    READY     %d\n",
                       item->typ, item->rowheight, static_cast<std::int32_t>(item->ctime),
                       item->visible, item->ready);
    if (item->changed != 0)
        out += "    CHANGED\n";
    if (item->used == 0) {
        out += "    USED NO\n";
        return;
    }
    out += "    USED YES {\n";
    write_strings(item->used_in);
    out += "    }\n";
}

void source_writer::write_item(const edit_t *group, const item_t *item)
{
    out += "\n  ITEM ";
    zel::append_quoted(out, 0, item->name);
    out += "  { /* group  =";
    std::string quoted;
    zel::append_quoted(quoted, 0, group->name);
    zel::append_comment(out, quoted);
    out += " */\n";
    write_attributes(item);
    write_entries("LANG", item->langs);
    write_entries("COMMENT", item->comments);
    out += "  }\n";
    zel::flush_large_text(out, stream);
}

void source_writer::write_group(const edit_t *group)
{
    write_statement("\n\nGROUP \"", group->name, "\" {\n");
    zel::append_format(out, "  VISIBLE      %d\n  SCREEN_SHOT", group->visible);
    zel::append_quoted(out, 0, group->screen_shot);
    out += '\n';
    for (const item_t *item : zel::each<item_t>(group->items)) {
        const bool only_used = item->source != nullptr && item->source->only_used != 0;
        if (!only_used || item->used != 0)
            write_item(group, item);
    }
    out += "}  /* end GROUP \"";
    std::string name;
    zel::append_escaped(name, group->name);
    zel::append_comment(out, name);
    out += "\" */\n";
}

void source_writer::write(const char *path)
{
    write_head();
    write_languages();
    for (const edit_t *group : zel::each<edit_t>(source->groups))
        write_group(group);
    out += "\n\n/* EOF ";
    zel::append_comment(out, path);
    out += " */\n";
    zel::flush_text(out, stream);
}

// ---- The files

void make_backup_name(const char *path, backup_name &name)
{
    std::array<char, 64> stamp;
    sprintf_date(stamp.data(), "%Y-%m-%d-%H-%M-%S", std::time(nullptr));
    std::snprintf(name.data(), name.size(), "%s-%s.bak", path, stamp.data());
}

// Finds a backup name that is free, waiting for the next second's stamp. False where the stamp does
// not show, because the name is cut before it.
bool find_free_backup_name(const char *path, backup_name &name)
{
    constexpr int tries_in_three_seconds = 60;
    make_backup_name(path, name);
    const backup_name first = name;
    for (int tries = 0; zel_access(name.data(), F_OK) == 0; ++tries) {
        if (tries > tries_in_three_seconds && std::strcmp(first.data(), name.data()) == 0)
            return false;
        usleep(50 * 1000);
        make_backup_name(path, name);
    }
    return true;
}

// Moves the file at the path to its backup name. A missing file is no error.
bool back_up(const char *path)
{
    if (zel_access(path, F_OK) != 0)
        return true;
    backup_name name;
    if (!find_free_backup_name(path, name))
        errno = EEXIST;
    else if (zel_rename(path, name.data()) == 0)
        return true;
    std::printf("lang_write_file(1): error(%d) rename %s to %s\n", errno, path, name.data());
    return false;
}

int say_no_temporary_file(const char *path)
{
    std::printf("ERROR open output file lang.tmp %s\n", path);
    return -1;
}

// Writes the whole text to the fresh temporary file and the disk.
bool write_temporary_file(zel::safe_file &file, LangSource *source, const char *path)
{
    source->mtime = std::time(nullptr);
    source_writer(file.stream, source).write(path);
    const int error = zel::safe_file_finish(file);
    if (error != 0)
        LogPrint(1, "lang_write_file: ERROR(%d) %s write %s\n", error, std::strerror(error),
                 temporary);
    return error == 0;
}

// Whether the path names the temporary file itself.
bool is_temporary_file(const char *path)
{
    struct stat ours {};
    struct stat theirs {};
    return lstat(path, &theirs) == 0 && lstat(temporary, &ours) == 0 &&
           ours.st_ino == theirs.st_ino && ours.st_dev == theirs.st_dev;
}

int put_in_place(zel::safe_file &file, const char *path)
{
    if (!is_temporary_file(path) && zel_unlink(path) != 0)
        std::printf("lang_write_file(2): error(%d) unlink %s\n", errno, path);
    const int error = zel::safe_file_move(file, path);
    if (error == 0)
        return 0;
    std::printf("lang_write_file(3): error(%d) rename %s to %s\n", error, temporary, path);
    return 1;
}

} // namespace

int lang_write_file(const char *path, LangSource *source)
{
    if (source == nullptr)
        return 0;
    // Making the temporary file would remove the old text where that bears its name.
    const bool backed_up = is_temporary_file(path);
    if (backed_up && !back_up(path))
        return 1;
    const std::int64_t mtime = source->mtime;
    zel::safe_file file = zel::safe_file_create(temporary);
    if (file.stream == nullptr)
        return back_up(path) ? say_no_temporary_file(path) : 1;
    int result = 0;
    if (!write_temporary_file(file, source, path))
        result = say_no_temporary_file(path);
    else if (!backed_up && !back_up(path))
        result = 1;
    if (result != 0) {
        source->mtime = mtime;
        zel::safe_file_abandon(file);
        return result;
    }
    result = put_in_place(file, path);
    zel::safe_file_release(file);
    return result;
}
