#include "assist/revisions.h"

#include "assist/source-walk.h"
#include "support/text.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <unistd.h>

namespace zel::assist {

namespace {

constexpr std::chrono::seconds most_time{5}; // of one call
constexpr std::size_t bytes_of_list = 1U << 16;
constexpr std::string_view hex_digits = "0123456789abcdef";

// What leads git to another repository than that of the folder, as it is set in a hook, or is
// decided below.
constexpr std::string_view not_handed_on[] = {
    "GIT_DIR",
    "GIT_WORK_TREE",
    "GIT_COMMON_DIR",
    "GIT_INDEX_FILE",
    "GIT_OBJECT_DIRECTORY",
    "GIT_ALTERNATE_OBJECT_DIRECTORIES",
    "GIT_NAMESPACE",
    "GIT_PREFIX",
    "GIT_CONFIG_PARAMETERS",
    "GIT_ALLOW_PROTOCOL",
};

// Objects that a part of a repository lacks would be fetched, by programs that its settings name:
// no way to fetch is allowed.
constexpr const char *handed_on[] = {"GIT_ALLOW_PROTOCOL=none", "GIT_NO_LAZY_FETCH=1",
                                     "GIT_OPTIONAL_LOCKS=0", "GIT_TERMINAL_PROMPT=0"};

constexpr const char *settings[] = {"core.fsmonitor=false", "core.hooksPath=/dev/null",
                                    "safe.bareRepository=explicit"};

std::vector<std::string> environment_for_git()
{
    std::vector<std::string> out(std::begin(handed_on), std::end(handed_on));
    for (char **at = environ; *at != nullptr; ++at) {
        const std::string_view name =
            std::string_view(*at).substr(0, std::string_view(*at).find('='));
        if (std::find(std::begin(not_handed_on), std::end(not_handed_on), name) ==
            std::end(not_handed_on))
            out.emplace_back(*at);
    }
    return out;
}

// By its whole path: from a folder that is not named so, which may be that of the source, no
// program is taken.
std::string find_git()
{
    for (std::string_view rest = or_empty(std::getenv("PATH")); !rest.empty();) {
        const std::string folder(rest.substr(0, rest.find(':')));
        rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
        if (std::string path = folder + "/git";
            folder.starts_with('/') && access(path.c_str(), X_OK) == 0)
            return path;
    }
    return {};
}

// Whether a repository is in sight: without one no program needs to be run.
bool has_repository(const std::string &folder)
{
    std::error_code error;
    auto at = std::filesystem::canonical(folder.empty() ? "." : folder, error);
    for (; !error && at.has_relative_path(); at = at.parent_path())
        if (std::filesystem::exists(at / ".git", error))
            return true;
    return false;
}

} // namespace

revisions::revisions(const std::string &path, std::size_t count, std::size_t bytes_of_one)
    : folder_(folder_of(path)), name_("./" + path.substr(folder_.size())),
      bytes_of_one_(bytes_of_one)
{
    if (!has_repository(folder_) || (git_ = find_git()).empty())
        return;
    environment_ = environment_for_git();
    run({"rev-list", "--max-count=" + std::to_string(count), "HEAD", "--", name_}, bytes_of_list);
}

void revisions::run(const std::vector<std::string> &words, std::size_t bytes)
{
    std::vector<std::string> all{git_, "--no-pager", "--literal-pathspecs"};
    for (const char *setting : settings)
        all.insert(all.end(), {"-c", setting});
    all.insert(all.end(), words.begin(), words.end());
    child_ = std::make_unique<child_output>(all, folder_, environment_,
                                            child_output::limits{bytes, most_time});
}

// A list that was not finished in time is as good: the newest come first.
void revisions::take_list(const std::string &lines)
{
    for (std::size_t at = 0, end = 0; (end = lines.find('\n', at)) != lines.npos; at = end + 1)
        if (std::string id = lines.substr(at, end - at);
            id.find_first_not_of(hex_digits) == id.npos && !id.empty())
            commits_.push_back(std::move(id));
    std::reverse(commits_.begin(), commits_.end());
    is_listed_ = true;
}

revision_news revisions::step(std::string &text)
{
    if (child_ == nullptr) {
        if (commits_.empty())
            return revision_news::over;
        // The bytes as they are kept: no filter and no other form is asked for.
        run({"cat-file", "blob", commits_.back() + ":" + name_}, bytes_of_one_);
        commits_.pop_back();
        return revision_news::waits;
    }
    const child_news news = child_->read();
    if (news == child_news::waits)
        return revision_news::waits;
    if (news == child_news::came)
        return revision_news::came;
    std::string out = child_->take();
    child_.reset();
    if (!is_listed_) {
        take_list(out);
        return revision_news::came;
    }
    if (news == child_news::failed)
        return revision_news::came;
    text = std::move(out);
    return revision_news::text;
}

} // namespace zel::assist
