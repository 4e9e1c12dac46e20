#include "kit/support/like-catalogs.h"

#include "exchange/import.h"
#include "exchange/po-like.h"
#include "kit/support/new-from-catalogs.h"
#include "kit/support/output.h"
#include "kit/support/text-file.h"
#include "kit/support/word.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace zel::kit {

namespace {

void print_notes(const std::string &path, const exchange::like_result &made)
{
    for (const std::string &line : made.ambiguous)
        std::fprintf(stderr, "%s: %s\n", path.c_str(), line.c_str());
    if (made.unknown != 0)
        std::fprintf(stderr, "%s: %s not in the source, left as they are\n", path.c_str(),
                     counted(made.unknown, "message").c_str());
    if (made.missing != 0)
        std::fprintf(stderr, "%s: left out %s that it lacks; --context adds them\n", path.c_str(),
                     counted(made.missing, "item").c_str());
}

// The catalog with the source's texts; false after a line on standard error.
bool make_catalog(exchange::export_request request, const std::string &path, std::string &text)
{
    std::string bytes;
    exchange::known_catalog like;
    exchange::fault wrong = exchange::read_input(path, bytes);
    if (!wrong)
        wrong = exchange::read_known(bytes, like);
    const char *language =
        wrong ? nullptr : exchange::find_language(*request.source, like.language, path);
    if (!wrong && language == nullptr)
        wrong.text = "unknown language " + shown(exchange::shown_name(like.language, path));
    if (!wrong) {
        request.languages = {std::string(language == nullptr ? "" : language)};
        exchange::exporter from(request);
        exchange::like_result made = exchange::write_like(from, like);
        print_notes(path, made);
        wrong = made.wrong;
        text = std::move(made.text);
    }
    if (wrong)
        say_fault(path, wrong);
    return !wrong;
}

bool make_folder(const std::string &folder)
{
    std::error_code error;
    if (!folder.empty())
        std::filesystem::create_directories(folder, error);
    if (error)
        std::fprintf(stderr, "lang-kit: %s: %s\n", folder.c_str(), error.message().c_str());
    return !error;
}

} // namespace

int write_like_catalogs(const exchange::export_request &request,
                        const std::vector<std::string> &catalogs, const std::string &folder,
                        bool dry_run)
{
    if (!dry_run && !make_folder(folder))
        return status_fault;
    std::vector<text_file> files(catalogs.size());
    for (std::size_t at = 0; at < catalogs.size(); ++at) {
        std::string text;
        if (!make_catalog(request, catalogs[at], text))
            return status_fault;
        const std::string name = catalogs[at].substr(catalogs[at].rfind('/') + 1);
        std::string path = folder;
        path.append(folder.empty() ? "" : "/").append(name);
        if (dry_run) {
            std::printf("%s\n", path.c_str());
            continue;
        }
        if (!files[at].create(path))
            return status_fault;
        files[at].append(text);
    }
    return dry_run || finish_all(files) ? status_fine : status_fault;
}

} // namespace zel::kit
