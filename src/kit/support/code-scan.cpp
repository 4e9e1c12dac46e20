#include "kit/support/code-scan.h"

#include "checker/scan-tree.h"
#include "kit/support/output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace zel::kit {

bool make_wrappers(const std::vector<std::string> &keywords, const std::string &group,
                   std::unique_ptr<wrapper_words> &out)
{
    std::vector<wrapper> wrappers;
    for (const std::string &keyword : keywords) {
        const std::optional<wrapper> one = parse_wrapper(keyword);
        const char *fault = !one                               ? "is no keyword, as \"my_text:1\""
                            : one->group == 0 && group.empty() ? "has no group; --group names one"
                                                               : nullptr;
        if (fault != nullptr) {
            std::fprintf(stderr, "lang-kit: \"%s\" %s\n", keyword.c_str(), fault);
            return false;
        }
        wrappers.push_back(*one);
    }
    if (!wrappers.empty())
        out = std::make_unique<wrapper_words>(std::move(wrappers), group);
    return true;
}

bool scan_code(item_index &index, const std::vector<std::string> &paths, const scan_how &how)
{
    // A file that cannot be read does not end the walk: one run tells of all of them.
    bool good = true;
    const auto complain = [&](const char *path) {
        std::fprintf(stderr, "lang-kit: %s: cannot be read: %s\n", path, std::strerror(errno));
        good = false;
    };
    const auto scan = [&](const char *file) {
        if (check_file(index, file, how) != 0)
            complain(file);
        return 0;
    };
    for (const std::string &path : paths)
        scan_path(path.c_str(), {scan, complain, complain});
    return good;
}

std::string message_of(const unread_request &found)
{
    static constexpr const char *names[] = {"group", "item", "description", "symbol",
                                            "application's name"}; // in the order of enum piece
    const std::string name = names[static_cast<int>(found.of)];
    switch (found.cause) {
    case unread_cause::goes_on:
        return "only a part of the " + name + " is read";
    case unread_cause::two_values:
        return "the name that stands for the " + name + " has more than one value";
    case unread_cause::no_literal:
        break;
    }
    return "this request is not read: the " + name + " is no literal";
}

// Says what such a request means for the application.
std::string message_of(const adjacent_request &found)
{
    const std::string whole = shown(found.whole);
    switch (found.of) {
    case piece::item:
        return "the application asks for " + whole + ", of which only " + shown(found.read) +
               " is read: write it in one piece, or as lang_get";
    case piece::group:
        return "the group " + whole + " is in pieces, so the request is not read";
    default:
        return "the description " + whole + " is in pieces, so the request is not read";
    }
}

} // namespace zel::kit
