#include "source/lang-write.h"

#include "app/global.h"
#include "source/write-text.h"
#include "support/held-file.h"
#include "support/log-print.h"
#include "support/safe-file.h"
#include "support/text.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>

namespace {

constexpr const char *temporary = "lang.tmp";

// Prints the messages of a save and builds the answer of one that fails. The texts and the numbers
// in them are an interface; the cause stands beside them, on standard error.
class telling {
public:
    telling(const char *path, const zel::write_how &how)
        : path_(path), to_(how.messages == nullptr ? stdout : how.messages)
    {
    }

    zel::write_answer not_backed_up(const std::string &backup, int error) const
    {
        std::fprintf(to_, "lang_write_file(1): error(%d) rename %s to %s\n", error, path_,
                     backup.c_str());
        return failed(1, error, std::strerror(error));
    }
    zel::write_answer refused(const zel::target_file &old, std::int64_t now) const
    {
        std::fprintf(to_, "lang_write_file(1): error(%d) rename %s to %s\n", old.refusal, path_,
                     zel::backup_name(old, now).c_str());
        return failed(1, old.refusal, zel::refusal_text(old.refusal));
    }
    zel::write_answer no_temporary_file(int error) const
    {
        std::fprintf(to_, "ERROR open output file lang.tmp %s\n", path_);
        return failed(-1, error,
                      error == EAGAIN ? "another program holds lang.tmp" : std::strerror(error));
    }
    zel::write_answer not_renamed(int error) const
    {
        std::fprintf(to_, "lang_write_file(3): error(%d) rename %s to %s\n", error, temporary,
                     path_);
        return failed(1, error, std::strerror(error));
    }
    void no_turn(int error) const
    {
        std::fprintf(stderr, "lang: %s was saved without waiting for others: %s\n", path_,
                     error == EAGAIN ? "their .lang.lock does not go" : std::strerror(error));
    }

private:
    zel::write_answer failed(int code, int error, const char *why) const
    {
        std::fprintf(stderr, "lang: %s cannot be saved: %s\n", path_, why);
        return {code, {}, {}, error, why};
    }

    const char *path_;
    std::FILE *to_;
};

// Whether the source itself bears the name of the temporary file, which would then overwrite it.
bool is_temporary_file(const zel::target_file &old)
{
    return old.is_file() && zel::is_named(temporary, zel::id_of(old.status));
}

void append_source(zel::safe_file &file, const LangSource *source, const char *path,
                   const zel::write_how &how)
{
    // A large source is never in memory as one text.
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

// Writes the whole text to a new file and syncs it. Returns 0 or errno.
int write_new_file(zel::safe_file &file, const LangSource *source, const char *path,
                   const zel::write_how &how, const zel::target_file &old)
{
    const int made = is_temporary_file(old) ? file.create_beside(old) : file.create(temporary, old);
    if (made == 0)
        append_source(file, source, path, how);
    const int error = file.finish(zel::synced::yes);
    if (error != 0)
        LogPrint(1, "lang_write_file: ERROR(%d) %s write %s\n", error, std::strerror(error),
                 temporary);
    return error;
}

// Backs up the old file and moves the new one to its place.
zel::write_answer replace(zel::safe_file &file, const telling &tell, const zel::write_how &how,
                          const zel::target_file &old)
{
    const auto may = [&how] { return !how.may_replace || how.may_replace(); };
    // Whatever needs space on the disk happens before anything happens to the old file.
    if (const int error = file.approach(old)) {
        file.keep();
        return tell.not_renamed(error);
    }
    // Until the end of this function, other programs that save into this folder wait.
    const zel::folder_turn turn(old.path);
    if (!may())
        return {zel::write_not_allowed, {}};
    zel::backup_file kept;
    if (how.backup)
        kept = zel::make_backup(old, how.now);
    if (kept.error != 0)
        return tell.not_backed_up(kept.path, kept.error);
    // Asks again: the backup may have waited a second for a free name, and the turn may have been
    // lost meanwhile.
    if (!kept.moved && !may()) {
        zel::undo_backup(kept, old);
        return {zel::write_not_allowed, {}};
    }
    if (const int error = file.put(old, kept.moved ? nullptr : how.may_replace)) {
        // First the old file gets its name back, then the failure is told.
        if (how.backup)
            zel::undo_backup(kept, old);
        if (error == ECANCELED)
            return {zel::write_not_allowed, {}};
        // The new text stays in its own file, so that the user does not lose it.
        file.keep();
        return tell.not_renamed(error);
    }
    if (turn.error() != 0)
        tell.no_turn(turn.error());
    return {0, std::move(kept.path), file.id()};
}

} // namespace

namespace zel {

write_answer write_source(const char *given, LangSource *source, const write_how &how)
{
    if (source == nullptr)
        return {};
    const char *path = or_empty(given);
    const telling tell(path, how);
    const target_file old = find_target(path, links::follow);
    if (old.refusal != 0)
        return tell.refused(old, how.now);
    // Asked before anything is done, and told rather than lang.tmp where neither can be.
    const int obstacle = how.backup ? backup_obstacle(old) : 0;
    if (obstacle != 0)
        return tell.not_backed_up(backup_name(old, how.now), obstacle);
    // The file's head bears the new time, so the model has it before the file is written. A save
    // that fails gives the model its old time back.
    const std::int64_t mtime = source->mtime;
    if (!how.keep_mtime)
        source->mtime = how.now;
    safe_file file;
    const int error = write_new_file(file, source, path, how, old);
    write_answer answer =
        error == 0 ? replace(file, tell, how, old) : tell.no_temporary_file(error);
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
