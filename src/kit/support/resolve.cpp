#include "kit/support/resolve.h"

#include "kit/support/git-files.h"
#include "kit/support/merge-run.h"
#include "kit/support/output.h"
#include "kit/support/sources.h"
#include "kit/support/text-file.h"
#include "kit/support/word.h"
#include "lint/conflict.h"
#include "support/file_mem.h"
#include "support/held-file.h"
#include "support/safe-file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unordered_set>

namespace zel::kit {

namespace {

constexpr const char *word_start = "lang-kit git";
constexpr const char *version_names[] = {"base", "ours", "theirs"};

std::vector<std::string_view> lines_of(std::string_view text)
{
    std::vector<std::string_view> out;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        out.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return out;
}

// Reads a file. False, with errno, where it cannot be read: it must not count as empty.
bool read_file(const std::string &path, std::string &text)
{
    char *data = nullptr;
    std::int64_t size = 0;
    const bool good = zel::read_whole(path.c_str(), data, size) == GOOD;
    text.assign(good && data != nullptr ? data : "", good ? static_cast<std::size_t>(size) : 0);
    std::free(data);
    return good;
}

// One file: its versions, and what is in the working tree.
class conflicted {
public:
    conflicted(const std::string &top, const unmerged_file &file)
        : top_(top), file_(file), path_(top + "/" + file.path)
    {
    }

    int resolve(bool dry_run)
    {
        if (!take_versions() || !may_replace())
            return status_;
        // git's own merge starts from nothing where both sides have added the file.
        merge_job job;
        job.base = folder_ / version_names[0];
        job.ours = folder_ / version_names[1];
        job.theirs = folder_ / version_names[2];
        job.driver = file_.path;
        job.are_own = true;
        for (int i = 0; i < 3; ++i)
            if (const int error = replace_file((folder_ / version_names[i]).c_str(), versions_[i]))
                return fail(std::strerror(error));
        status_ = merge_files(job);
        if (status_ == status_fault)
            say("one of its versions cannot be read, and it stays in conflict");
        else if (!dry_run && !write(job.ours))
            status_ = status_fault;
        else if (status_ == status_fine)
            add(dry_run);
        return status_;
    }

private:
    void say(const std::string &what) const
    {
        std::fprintf(stderr, "%s: %s: %s\n", word_start, file_.path.c_str(), what.c_str());
    }
    int fail(const std::string &what)
    {
        say(what);
        return status_ = status_fault;
    }
    bool leave(const std::string &what)
    {
        say(what);
        status_ = status_found;
        return false;
    }

    bool take_versions()
    {
        if (!folder_)
            return fail(std::strerror(errno)) == status_fine;
        if (!file_.is_regular)
            return leave("it is no ordinary file on both sides, and stays");
        // Only a person can say whether what one side changed and the other removed is wanted.
        if (!file_.has[1] || !file_.has[2])
            return leave(file_.has[0]
                             ? std::string("removed ") + (file_.has[1] ? "there" : "here") +
                                   " and changed " + (file_.has[1] ? "here" : "there") +
                                   ": keep it with git add, or let it go with git rm"
                             : "only one side has it: keep it with git add, or let it go "
                               "with git rm");
        std::string why;
        for (int i = 0; i < 3; ++i) {
            if (!file_.has[i])
                continue;
            const std::string name = ":" + std::to_string(i + 1) + ":" + file_.path;
            const std::optional<std::string> text = kept_text(name, top_, why);
            if (!text)
                return fail(std::string(version_names[i]) + ": " + why) == status_fine;
            versions_[i] = *text;
        }
        return true;
    }

    // Whoever has merged it by hand, or by the driver with conflicts, must not lose that.
    bool may_replace()
    {
        if (!read_file(path_, present_))
            return errno == ENOENT || fail(std::strerror(errno)) == status_fine;
        if (present_ == versions_[1] || present_ == versions_[2] ||
            !lint::find_conflict_markers(present_).empty())
            return true;
        return leave("somebody has merged it already, for it has no conflict markers: git add "
                     "takes it, git checkout -m begins again");
    }

    // Whether the file in the working tree has a line that is neither a marker nor any version's.
    bool is_edited() const
    {
        std::unordered_set<std::string_view> known;
        for (const std::string &version : versions_)
            for (const std::string_view line : lines_of(version))
                known.insert(line);
        for (const lint::conflict_marker &marker : lint::find_conflict_markers(present_))
            known.insert(marker.line);
        const auto lines = lines_of(present_);
        return !std::all_of(lines.begin(), lines.end(), [&](std::string_view line) {
            if (line.ends_with('\r'))
                line.remove_suffix(1);
            return known.contains(line) || known.contains(std::string(line) + "\r");
        });
    }

    bool write(const std::string &merged)
    {
        std::string text;
        if (!read_file(merged, text))
            return fail(std::strerror(errno)) == status_fine;
        // From the last look at the file until it is replaced, other programs wait.
        const folder_turn turn(path_);
        if (turn.error() != 0)
            say(std::string("nobody can be waited for: ") + std::strerror(turn.error()));
        std::string now;
        if (!read_file(path_, now) && errno != ENOENT)
            return fail(std::strerror(errno)) == status_fine;
        if (now != present_)
            return fail("changed by another program meanwhile; it is as that left it") ==
                   status_fine;
        if (is_edited()) {
            text_file kept;
            if (!kept.create(path_))
                return false;
            kept.append(text);
            return kept.finish() && kept.put_in_place();
        }
        // git has all of what stood there.
        const int error = replace_file(path_.c_str(), text);
        return error == 0 || fail(std::strerror(error)) == status_fine;
    }

    void add(bool dry_run)
    {
        if (!dry_run) {
            const program_run run =
                run_git_program({"--literal-pathspecs", "add", "--", file_.path}, top_);
            if (run.status != 0) {
                fail(first_line(run.err));
                return;
            }
        }
        std::printf("%s: merged and added\n", file_.path.c_str());
    }

    const std::string &top_;
    const unmerged_file &file_;
    std::string path_;
    private_folder folder_;
    std::string versions_[3];
    std::string present_;
    int status_ = status_fine;
};

} // namespace

int resolve_conflicts(const std::vector<std::string> &names, bool dry_run)
{
    const std::string top = find_top(word_start);
    if (top.empty())
        return status_fault;
    int status = status_fine;
    bool any = false;
    std::string why;
    const std::vector<unmerged_file> files = unmerged_files(top, names, why);
    // Without the list nobody knows whether there is nothing to do.
    if (!why.empty()) {
        std::fprintf(stderr, "%s: %s\n", word_start, why.c_str());
        return status_fault;
    }
    for (const unmerged_file &file : files) {
        if (!file.path.ends_with(".lang-src"))
            continue;
        any = true;
        status = std::max(status, conflicted(top, file).resolve(dry_run));
    }
    for (const std::string &name : names)
        if (is_absent(name) && unmerged_files(top, {name}, why).empty()) {
            std::fprintf(stderr, "%s: %s: there is no such file\n", word_start, name.c_str());
            status = status_fault;
        }
    if (!any && status == status_fine)
        std::puts("nothing to do");
    return status;
}

} // namespace zel::kit
