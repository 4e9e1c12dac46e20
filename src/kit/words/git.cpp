#include "kit/support/git-files.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/program.h"
#include "kit/support/resolve.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "support/file_mem.h"
#include "support/safe-file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include <glib.h>

namespace zel::kit {

namespace {

// What is configured for this clone. "@" stands for the command that starts this program; where
// percent signs have a meaning, those of its path are doubled.
constexpr struct {
    const char *key, *value;
    bool percents;
} git_settings[] = {
    {"merge.lang-src.name", "language sources, by group, item and language", false},
    {"merge.lang-src.driver", "@ merge --driver=%P %O %A %B", true},
    {"diff.lang-src.textconv", "@ show --or-file --", false},
    // In a source and in what "show" prints of one.
    {"diff.lang-src.xfuncname", "^[ \t]*((ITEM|GROUP|LANGUAGE)[ \t].*)$", false},
};

// What every clone gets through the repository's own files.
constexpr const char *attributes[] = {"diff", "merge"};
constexpr const char *attribute_value = "lang-src";
constexpr const char *sources = "*.lang-src";
constexpr struct {
    const char *pattern, *example;
} ignored[] = {
    {"*.lang-src-*.bak", "app.lang-src-2024-01-31-12-00-00.bak"},
    {"*.lang-src.????????", "app.lang-src.0a1b2c3d"}, // left where a program was killed
    {"lang.tmp", "lang.tmp"},
    {".lang.lock", ".lang.lock"},        // the turn of a save
    {"lang.lang-ini*", "lang.lang-ini"}, // the editor's settings, their lock and the like
};

constexpr const char *hook_mark = "# lang-kit git --hook";
constexpr const char *hook_text =
    "#!/bin/sh\n"
    "# lang-kit git --hook: no commit with a language source in which lint finds an error, nor,\n"
    "# where a lang-kit.ini names the code, with code that asks for what the source lacks.\n"
    "# It judges what will be committed, not the files beside it.\n"
    "folder=$(mktemp -d) || exit 1\n"
    "trap 'rm -rf \"$folder\"' EXIT\n"
    "git diff --cached --name-only -z --diff-filter=ACMRT -- '*.lang-src' |\n"
    "    git checkout-index -z --stdin --prefix=\"$folder/\" || exit 1\n"
    "(cd \"$folder\" && find . -type f -name '*.lang-src' -exec @ lint \\\n"
    "    --without unused,not-ready,same {} +) || exit 1\n"
    "git grep -q --cached -e '^code *=' -- lang-kit.ini '*/lang-kit.ini' || exit 0\n"
    "git checkout-index -a -f --prefix=\"$folder/\" || exit 1\n"
    "cd \"$folder\" && find . -type f -name lang-kit.ini -exec sh -c 'for ini do\n"
    "    grep -q \"^code *=\" \"$ini\" || continue\n"
    "    for source in \"${ini%/*}\"/*.lang-src; do\n"
    "        [ -f \"$source\" ] || continue\n"
    "        \"$0\" check --dry-run --fail-on new,unread \"$source\" >&2 || exit 1\n"
    "    done\n"
    "done' @ {} +\n";

std::string with_own_command(std::string text, bool percents = false)
{
    std::string command = own_command();
    for (std::size_t at = 0; percents && (at = command.find('%', at)) != std::string::npos; at += 2)
        command.insert(at, 1, '%');
    for (std::size_t at = 0; (at = text.find('@', at)) != std::string::npos; at += command.size())
        text.replace(at, 1, command);
    return text;
}

// The set-up of one repository. Each step does what is not done yet, says so on standard output,
// and returns false after a line on standard error.
class repository {
public:
    explicit repository(bool dry_run) : dry_run_(dry_run) {}

    bool find();
    bool may_write_files() const;
    bool configure();
    bool set_attributes();
    bool ignore_files();
    bool set_hook();

    bool has_changed() const { return changed_; }
    bool has_shared_changes() const { return shared_; }
    bool met_others() const { return others_; } // something of somebody else's was left as it is

private:
    program_run git(std::vector<std::string> words) const
    {
        return run_git_program(std::move(words), top_);
    }
    bool say(const std::string &text) const
    {
        std::fprintf(stderr, "lang-kit git: %s\n", text.c_str());
        return false;
    }
    bool may_write(const std::string &name, const std::string &path) const;
    bool may_write_own(const std::string &name) const;
    bool is_inside(const std::string &path) const;
    void report(const std::string &where, const std::string &what)
    {
        std::printf("%s: %s\n", where.c_str(), what.c_str());
        changed_ = true;
    }
    std::string attribute(const char *name) const;
    bool is_ignored(const char *name) const;
    bool add_line(const std::string &file, const std::string &line);
    bool write_hook(const std::string &path);

    const bool dry_run_; // what would be done is said and not done
    std::string top_;    // of the working tree
    bool changed_ = false;
    bool shared_ = false;
    bool others_ = false;
};

bool repository::find()
{
    top_ = find_top("lang-kit git");
    return !top_.empty();
}

bool repository::configure()
{
    for (const auto &row : git_settings) {
        const std::string value = with_own_command(row.value, row.percents);
        const program_run known = git({"config", "--local", "--get", row.key});
        if (known.out == value + "\n")
            continue;
        if (!dry_run_) {
            const program_run set = git({"config", "--local", "--replace-all", row.key, value});
            if (set.status != 0)
                return say(first_line(set.err));
        }
        report("git config " + std::string(row.key), value);
    }
    return true;
}

// What the repository says about an attribute of sources; empty for nothing.
std::string repository::attribute(const char *name) const
{
    const program_run run = git({"check-attr", name, "--", "app.lang-src"});
    const std::string before = "app.lang-src: " + std::string(name) + ": ";
    if (!run.out.starts_with(before))
        return {};
    const std::string value = first_line(run.out.substr(before.size()));
    return value == "unspecified" ? "" : value;
}

bool repository::is_ignored(const char *name) const
{
    // Only rules that others have, too.
    return git({"-c", "core.excludesFile=", "check-ignore", "-q", "--no-index", "--", name})
               .status == 0;
}

bool repository::may_write(const std::string &name, const std::string &path) const
{
    const int refusal = find_target(path.c_str(), links::follow).refusal;
    return refusal == 0 || say(name + ": " + refusal_text(refusal));
}

// git itself would wait for a pipe of that name, and does not follow a link.
bool repository::may_write_own(const std::string &name) const
{
    const std::string path = top_ + "/" + name;
    std::error_code error;
    if (std::filesystem::is_symlink(path, error))
        return say(name + ": it is a link, which git does not follow");
    return may_write(name, path);
}

bool repository::may_write_files() const
{
    return may_write_own(".gitattributes") && may_write_own(".gitignore");
}

// Whether a path leads into the working tree or what git itself keeps of this repository.
bool repository::is_inside(const std::string &path) const
{
    namespace fs = std::filesystem;
    std::error_code error;
    const std::string real = fs::weakly_canonical(path, error).string();
    const std::string own = first_line(git({"rev-parse", "--git-common-dir"}).out);
    for (const fs::path &folder : {fs::path(top_), fs::path(top_) / own})
        if (real.starts_with(fs::weakly_canonical(folder, error).string() + "/"))
            return true;
    return false;
}

// Appends a line to a file at the top of the working tree.
bool repository::add_line(const std::string &file, const std::string &line)
{
    const std::string path = top_ + "/" + file;
    std::string text;
    if (!is_absent(path)) {
        char *data = nullptr;
        const std::int64_t size = zel_read_file_to_mem(path.c_str(), &data);
        if (size < 0)
            return say(file + ": cannot be read: " + std::strerror(errno));
        text.assign(data, static_cast<std::size_t>(size));
        std::free(data);
    }
    // The user's last line may lack its end.
    if (!text.empty() && text.back() != '\n')
        text += '\n';
    text += line + "\n";
    // Never written in place: on a full disk half of the user's file would be lost.
    const int error = dry_run_ ? 0 : replace_file(path.c_str(), text);
    if (error != 0)
        return say(file + ": " + std::strerror(error));
    report(file, line);
    shared_ = true;
    return true;
}

bool repository::set_attributes()
{
    std::string line = sources;
    bool missing = false;
    for (const char *name : attributes) {
        const std::string value = attribute(name);
        if (value == attribute_value)
            continue;
        if (!value.empty()) {
            say(std::string(sources) + " has " + name + "=" + value + " already, which stays");
            others_ = true;
            continue;
        }
        line += std::string(" ") + name + "=" + attribute_value;
        missing = true;
    }
    return !missing || add_line(".gitattributes", line);
}

bool repository::ignore_files()
{
    return std::all_of(std::begin(ignored), std::end(ignored), [&](const auto &row) {
        // git is asked itself: a rule of the user's may cover the pattern already.
        return is_ignored(row.example) || add_line(".gitignore", row.pattern);
    });
}

bool repository::write_hook(const std::string &path)
{
    const std::string folder = path.substr(0, path.rfind('/'));
    constexpr mode_t everybody_runs = 0755;
    int error = 0;
    if (g_mkdir_with_parents(folder.c_str(), 0777) != 0)
        error = errno;
    if (error == 0)
        error = replace_file(path.c_str(), with_own_command(hook_text));
    if (error == 0 && chmod(path.c_str(), everybody_runs) != 0)
        error = errno;
    return error == 0 || say(path + ": " + std::strerror(error));
}

bool repository::set_hook()
{
    // Only git knows where hooks are: a setting may name another folder.
    const program_run run = git({"rev-parse", "--git-path", "hooks/pre-commit"});
    const std::string name = first_line(run.out);
    if (run.status != 0 || name.empty())
        return say(first_line(run.err));
    const std::string path = name.front() == '/' ? name : top_ + "/" + name;
    if (!may_write(name, path))
        return false;
    if (!is_inside(path)) {
        say(name + " is outside of the repository, so that others may use it, and stays; it may "
                   "call: lang-kit lint SOURCE...");
        others_ = true;
        return true;
    }
    if (is_there(path.c_str())) {
        char *data = nullptr;
        const std::int64_t size = zel_read_file_to_mem(path.c_str(), &data);
        const std::string text(data == nullptr ? "" : data, size < 0 ? 0 : std::size_t(size));
        std::free(data);
        if (text == with_own_command(hook_text))
            return true;
        // Without the mark the hook is somebody else's.
        if (text.find(hook_mark) == std::string::npos) {
            say(name + " is there already and stays; it may call: lang-kit lint SOURCE...");
            others_ = true;
            return true;
        }
    }
    if (!dry_run_ && !write_hook(path))
        return false;
    report(name, "lang-kit lint before every commit");
    return true;
}

} // namespace

int run_git(const word &self, int argc, char **argv)
{
    bool hook = false;
    bool resolve = false;
    bool dry_run = false;
    const parsed line =
        parse(self, argc, argv,
              {{.name = "hook",
                .help = "also lint the sources of every commit before it is made",
                .on = &hook},
               {.name = "resolve",
                .help = "merge the sources that git has left in conflict, all or those named",
                .on = &resolve},
               {.name = "dry-run", .help = "only say what would be set up", .on = &dry_run}},
              0, SIZE_MAX);
    if (line.ends)
        return line.status;
    if (resolve && hook)
        return wrong_use(self, "--hook and --resolve exclude each other");
    if (resolve)
        return resolve_conflicts(line.files, dry_run);
    if (!line.files.empty())
        return wrong_use(self, "one file too many: " + kit::quoted(line.files.front()));
    repository here(dry_run);
    // The files are looked at before anything is configured.
    if (!here.find() || !here.may_write_files() || !here.configure() || !here.set_attributes() ||
        !here.ignore_files() || (hook && !here.set_hook()))
        return status_fault;
    if (!here.has_changed())
        std::puts("nothing to do");
    if (here.has_shared_changes() && !dry_run)
        std::puts("now commit .gitattributes and .gitignore, and let every other clone run "
                  "lang-kit git once");
    return here.met_others() ? status_found : status_fine;
}

} // namespace zel::kit
