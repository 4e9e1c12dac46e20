#include "source/lang-write.h"

#include "app/global.h"
#include "source/last-line.h"
#include "source/misc.h"
#include "source/quote.h"
#include "support/log-print.h"
#include "support/safe-file.h"
#include "support/text.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>

namespace {

constexpr const char *temporary = "lang.tmp";

// ---- The text

struct source_writer {
    zel::safe_file &file;
    const LangSource *source;
    const zel::write_how &how;
    bool selected_only; // the two languages and no other
    std::string out;

    source_writer(zel::safe_file &into, const LangSource *root, const zel::write_how &wanted)
        : file(into), source(root), how(wanted),
          selected_only(wanted.only_lang_1 != nullptr && wanted.only_lang_2 != nullptr)
    {
    }

    bool is_selected(const char *lang) const;
    void write(const char *path);
    void flush(std::size_t least);
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
    return !selected_only || (lang != nullptr && (std::strcmp(lang, how.only_lang_1) == 0 ||
                                                  std::strcmp(lang, how.only_lang_2) == 0));
}

// Hands the collected text on once there is that much of it.
void source_writer::flush(std::size_t least)
{
    if (out.size() < least)
        return;
    file.append(out);
    out.clear();
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
    constexpr std::size_t worth_a_write = 256 * 1024;
    flush(worth_a_write);
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
    out += '\n';
    zel::append_last_line(out, how.name == nullptr ? path : how.name);
    flush(0);
}

// ---- The files

std::FILE *messages_of(const zel::write_how &how)
{
    return how.messages == nullptr ? stdout : how.messages;
}

int say_not_backed_up(std::FILE *to, const char *path, const std::string &backup, int error)
{
    std::fprintf(to, "lang_write_file(1): error(%d) rename %s to %s\n", error, path,
                 backup.c_str());
    return 1;
}

int say_no_temporary_file(std::FILE *to, const char *path)
{
    std::fprintf(to, "ERROR open output file lang.tmp %s\n", path);
    return -1;
}

int say_not_renamed(std::FILE *to, const char *path, int error)
{
    std::fprintf(to, "lang_write_file(3): error(%d) rename %s to %s\n", error, temporary, path);
    return 1;
}

// Whether the source itself bears the name of the temporary file.
bool is_temporary_file(const zel::target_file &old)
{
    return old.is_file() && zel::is_named(temporary, zel::id_of(old.status));
}

// Writes the whole text to a new file and the disk.
bool write_new_file(zel::safe_file &file, const LangSource *source, const char *path,
                    const zel::write_how &how, const zel::target_file &old)
{
    const int made = is_temporary_file(old) ? file.create_beside(old) : file.create(temporary, old);
    if (made == 0)
        source_writer(file, source, how).write(path);
    const int error = file.finish(zel::synced::yes);
    if (error != 0)
        LogPrint(1, "lang_write_file: ERROR(%d) %s write %s\n", error, std::strerror(error),
                 temporary);
    return error == 0;
}

// Keeps the old file and lets the new one take its place.
zel::write_answer replace(zel::safe_file &file, const char *path, const zel::write_how &how,
                          const zel::target_file &old)
{
    std::FILE *to = messages_of(how);
    // What can fail for want of room comes before anything happens to the old file.
    if (const int error = file.approach(old)) {
        file.keep();
        return {say_not_renamed(to, path, error), {}};
    }
    zel::backup_file kept;
    if (how.backup)
        kept = zel::make_backup(old, how.now);
    if (kept.error != 0)
        return {say_not_backed_up(to, path, kept.path, kept.error), {}};
    if (const int error = file.put(old)) {
        if (how.backup)
            zel::undo_backup(kept, old);
        file.keep();
        return {say_not_renamed(to, path, error), {}};
    }
    return {0, std::move(kept.path)};
}

} // namespace

namespace zel {

write_answer write_source(const char *given, LangSource *source, const write_how &how)
{
    if (source == nullptr)
        return {};
    const char *path = or_empty(given);
    std::FILE *to = messages_of(how);
    const target_file old = find_target(path, links::follow);
    if (old.refusal != 0) {
        std::fprintf(stderr, "lang: %s is no regular file: nothing is written there\n", path);
        return {say_not_backed_up(to, path, backup_name(old, how.now), old.refusal), {}};
    }
    const std::int64_t mtime = source->mtime;
    if (!how.keep_mtime)
        source->mtime = how.now;
    safe_file file;
    write_answer answer = write_new_file(file, source, path, how, old)
                              ? replace(file, path, how, old)
                              : write_answer{say_no_temporary_file(to, path), {}};
    if (answer.code != 0)
        source->mtime = mtime;
    else if (old.status.st_nlink > 1)
        std::fprintf(stderr, "lang: %s has other names, which keep the old text\n", path);
    return answer;
}

} // namespace zel

int lang_write_file(const char *path, LangSource *source)
{
    const bool selected = lang_global.save_selected_only != 0;
    return zel::write_source(path, source,
                             {selected ? lang_global.output_lang_1 : nullptr,
                              selected ? lang_global.output_lang_2 : nullptr, std::time(nullptr)})
        .code;
}
