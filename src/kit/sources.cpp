#include "kit/sources.h"

#include "source/lang-write.h"

#include <cstdio>
#include <ctime>
#include <vector>

namespace zel::kit {

namespace {

void say(const read_message &message)
{
    const read_message_row &row = *message.row;
    const char *level = row.after == outcome::go_on ? "warning" : "error";
    if (message.at.line == 0)
        std::fprintf(stderr, "%s: %s: %s [syntax]\n", message.path, level, row.meaning);
    else
        std::fprintf(stderr, "%s:%u:%u: %s: %s [syntax]\n", message.path, message.at.line,
                     message.at.column + 1, level, row.meaning);
}

} // namespace

source_guard read(const std::string &path, source_places *places)
{
    return std::move(read_source(path.c_str(), {std::time(nullptr), say, places}).source);
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
    // The writer says why on standard output, which belongs to results here.
    if (lang_write_file(to.path.c_str(), source) == 0)
        return true;
    std::fprintf(stderr, "lang-kit: %s: cannot be written\n", to.path.c_str());
    return false;
}

} // namespace zel::kit
