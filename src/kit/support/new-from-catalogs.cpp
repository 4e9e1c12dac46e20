#include "kit/support/new-from-catalogs.h"

#include "kit/support/output.h"
#include "kit/support/word.h"

#include <cstdio>

namespace zel::kit {

namespace {

void print_summary(const exchange::new_source &made, const std::string &path)
{
    const LangSource *source = made.source();
    std::printf("%s: %s in %s\n", path.c_str(), counted(source->item_count, "item").c_str(),
                counted(g_list_length(source->groups), "group").c_str());
    for (const auto &[language, texts] : made.texts())
        std::printf("%s: %u\n", language.c_str(), texts);
    if (made.guesses() != 0)
        std::fprintf(stderr, "left out %s\n", counted(made.guesses(), "fuzzy text").c_str());
    if (made.obsolete() != 0)
        std::fprintf(stderr, "left out %s\n", counted(made.obsolete(), "obsolete message").c_str());
    if (made.forms() != 0)
        std::fprintf(stderr, "left out %s between the first and the last\n",
                     counted(made.forms(), "plural form").c_str());
    for (const auto &[language, items] : made.lacking())
        std::fprintf(stderr, "%s lacks %s that others have\n", language.c_str(),
                     counted(items, "item").c_str());
    for (const std::string &line : made.notes())
        std::fprintf(stderr, "%s\n", line.c_str());
}

bool take_file(const std::string &path, exchange::new_source &into, const take_catalog &take)
{
    std::string bytes;
    exchange::fault wrong = exchange::read_input(path, bytes);
    if (!wrong)
        wrong = take(into, path, bytes);
    if (wrong)
        say_fault(path, wrong);
    return !wrong;
}

} // namespace

void say_fault(const std::string &path, const exchange::fault &wrong)
{
    const std::string line = wrong.line == 0 ? "" : ":" + std::to_string(wrong.line);
    std::fprintf(stderr, "%s%s: error: %s\n", path.c_str(), line.c_str(), wrong.text.c_str());
}

int make_from_catalogs(const exchange::new_request &request, const take_catalog &take,
                       const std::string &pot, const std::vector<std::string> &catalogs,
                       const destination &to, const seen_file &before)
{
    exchange::new_source made(request);
    if (!pot.empty() && !take_file(pot, made, &exchange::new_source::take_template))
        return status_fault;
    // One bad catalog ends the run: a source that lacks a language would look complete.
    for (const std::string &path : catalogs)
        if (!take_file(path, made, take))
            return status_fault;
    print_summary(made, to.path);
    return write(to, made.source(), {before}) ? status_fine : status_fault;
}

int make_from_keys(const exchange::new_request &request, exchange::keyed_reader read,
                   const std::vector<std::string> &files, const destination &to,
                   const seen_file &before)
{
    exchange::new_source made(request);
    exchange::keyed_source keys(made, request.default_language);
    std::string path;
    exchange::fault wrong;
    for (std::size_t at = 0; at < files.size() && !wrong; ++at) {
        path = files[at];
        std::string bytes;
        wrong = exchange::read_input(path, bytes);
        if (!wrong)
            wrong = keys.take(read, path, bytes);
    }
    if (!wrong)
        wrong = keys.finish(path);
    if (wrong) {
        say_fault(path, wrong);
        return status_fault;
    }
    print_summary(made, to.path);
    return write(to, made.source(), {before}) ? status_fine : status_fault;
}

} // namespace zel::kit
