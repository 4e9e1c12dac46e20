#include "source/lang-write.h"

#include "app/global.h"
#include "source/write-text.h"
#include "support/log-print.h"
#include "support/safe-file.h"
#include "support/text.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>

namespace {

constexpr const char *temporary = "lang.tmp";

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

void append_source(zel::safe_file &file, const LangSource *source, const char *path,
                   const zel::write_how &how)
{
    constexpr std::size_t worth_a_write = 256 * 1024;
    zel::source_text text(source, {how.name == nullptr ? path : how.name, how.only_lang_1,
                                   how.only_lang_2, true, nullptr});
    std::string out;
    while (text.append(out, 1)) {
        if (out.size() < worth_a_write)
            continue;
        file.append(out);
        out.clear();
    }
    file.append(out);
}

// Writes the whole text to a new file and the disk.
bool write_new_file(zel::safe_file &file, const LangSource *source, const char *path,
                    const zel::write_how &how, const zel::target_file &old)
{
    const int made = is_temporary_file(old) ? file.create_beside(old) : file.create(temporary, old);
    if (made == 0)
        append_source(file, source, path, how);
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
    const zel::folder_turn turn(old.path);
    if (!turn.is_mine())
        return {say_no_temporary_file(to, path), {}};
    if (how.may_replace && !how.may_replace())
        return {zel::write_not_allowed, {}};
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
    return {0, std::move(kept.path), file.id()};
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
        if (old.refusal == EACCES)
            std::fprintf(stderr,
                         "lang: %s is behind somebody else's link: nothing is written there\n",
                         path);
        else
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
