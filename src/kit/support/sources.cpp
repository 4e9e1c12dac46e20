#include "kit/support/sources.h"

#include "source/lang-write.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <set>
#include <system_error>

namespace zel::kit {

namespace {

void say(const read_message &message, bool loss)
{
    const read_message_row &row = *message.row;
    const char *level = loss ? "error" : "warning";
    if (const char *why = read_failure(message))
        std::fprintf(stderr, "%s: %s: %s: %s [syntax]\n", message.path, level, row.meaning, why);
    else if (message.at.line == 0)
        std::fprintf(stderr, "%s: %s: %s [syntax]\n", message.path, level, row.meaning);
    else
        std::fprintf(stderr, "%s:%u:%u: %s: %s [syntax]\n", message.path, message.at.line,
                     message.at.column + 1, level, row.meaning);
}

bool is_readable(const std::string &path)
{
    if (!is_named_pipe(path))
        return true;
    std::fprintf(stderr, "lang-kit: %s: it is a pipe\n", path.c_str());
    return false;
}

// Whether two paths lead to one file.
bool is_same_file(const std::string &a, const std::string &b)
{
    struct stat first {};
    struct stat second {};
    return a == b || (stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 &&
                      id_of(first) == id_of(second));
}

// Whether nobody has saved to the path what the source would undo.
bool may_replace(const std::string &path, const std::vector<seen_file> &from)
{
    return std::none_of(from.begin(), from.end(), [&](const seen_file &seen) {
        return is_same_file(seen.path, path) && has_changed(seen.path.c_str(), seen.stamp);
    });
}

} // namespace

void keep_each_once(std::vector<std::string> &paths)
{
    std::set<std::string> known;
    std::erase_if(paths, [&](const std::string &path) {
        std::error_code error;
        const std::string whole = std::filesystem::canonical(path, error).string();
        return !known.insert(error ? path : whole).second;
    });
}

bool is_named_pipe(const std::string &path)
{
    struct stat status {};
    std::error_code error;
    if (stat(path.c_str(), &status) != 0 || !S_ISFIFO(status.st_mode))
        return false;
    // A pipe that a shell made has no path of its own.
    return !std::filesystem::canonical(path, error).empty();
}

bool is_absent(const std::string &path)
{
    struct stat status {};
    return stat(path.c_str(), &status) != 0 && errno == ENOENT;
}

source_guard read(const std::string &path, source_places *places)
{
    if (!is_readable(path))
        return nullptr;
    const auto hear = [](const read_message &message) {
        say(message, message.row->after != outcome::go_on);
    };
    return std::move(read_source(path.c_str(), {std::time(nullptr), hear, places}).source);
}

source_guard read_text(const std::string &name, const std::string &text)
{
    const auto hear = [](const read_message &message) {
        say(message, message.row->after != outcome::go_on);
    };
    return std::move(read_source(name.c_str(), {std::time(nullptr), hear, nullptr, text}).source);
}

source_file read_whole(const std::string &path, std::int64_t now, const std::string &shown)
{
    source_file file{nullptr, {seen_file(path)}};
    if (!is_readable(path))
        return file;
    bool whole = true;
    const auto hear = [&](read_message message) {
        if (!shown.empty())
            message.path = shown.c_str();
        say(message, is_loss(*message.row));
        whole = whole && !is_loss(*message.row);
    };
    file.source = std::move(read_source(path.c_str(), {now, hear, nullptr}).source);
    // A source with gaps is not handed out: writing it would delete what was not understood.
    if (!whole)
        file.source.reset();
    return file;
}

void keep_to_the_end(source_guard source)
{
    // Never freed, but always known: freeing a large source takes longer than ending the process.
    static auto *const kept = new std::vector<LangSource *>;
    kept->push_back(source.release());
}

bool write(const destination &to, LangSource *source, const std::vector<seen_file> &from)
{
    if (to.dry_run)
        return true;
    write_how how;
    how.now = std::time(nullptr);
    how.keep_mtime = to.merged;
    how.name = to.name.empty() ? nullptr : to.name.c_str();
    how.backup = to.backup;
    how.messages = stderr; // standard output belongs to results
    how.may_replace = [&] { return may_replace(to.path, from); };
    const int code = write_source(to.path.c_str(), source, how).code;
    if (code == 0)
        return true;
    std::fprintf(stderr, "lang-kit: %s: %s\n", to.path.c_str(),
                 code == write_not_allowed
                     ? "changed by another program meanwhile; it is as that left it"
                     : "cannot be written");
    return false;
}

} // namespace zel::kit
