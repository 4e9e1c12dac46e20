#include "kit/support/sources.h"

#include "source/lang-write.h"
#include "support/file-call.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

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

// What was read to be written again, as it was before that.
struct seen_file {
    std::string path;
    file_stamp stamp;
};
std::vector<seen_file> seen_files;

bool is_as_read(const std::string &path)
{
    return std::none_of(seen_files.begin(), seen_files.end(), [&](const seen_file &seen) {
        return seen.path == path && has_changed(path.c_str(), seen.stamp);
    });
}

} // namespace

source_guard read(const std::string &path, source_places *places)
{
    const auto hear = [](const read_message &message) {
        say(message, message.row->after != outcome::go_on);
    };
    return std::move(read_source(path.c_str(), {std::time(nullptr), hear, places}).source);
}

source_guard read_whole(const std::string &path)
{
    bool whole = true;
    const auto hear = [&](const read_message &message) {
        say(message, is_loss(*message.row));
        whole = whole && !is_loss(*message.row);
    };
    seen_files.push_back({path, stamp_of(path.c_str())});
    source_guard source = std::move(read_source(path.c_str(), {0, hear, nullptr}).source);
    if (!whole)
        source.reset();
    return source;
}

void keep_to_the_end(source_guard source)
{
    static auto *const kept = new std::vector<LangSource *>;
    kept->push_back(source.release());
}

bool write(const destination &to, LangSource *source)
{
    if (to.dry_run)
        return true;
    write_how how;
    how.now = std::time(nullptr);
    how.keep_mtime = to.merged;
    how.name = to.name.empty() ? nullptr : to.name.c_str();
    how.backup = to.backup;
    how.messages = stderr; // standard output belongs to results
    how.may_replace = [&to] { return is_as_read(to.path); };
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
