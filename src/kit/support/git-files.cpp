#include "kit/support/git-files.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <glib.h>

namespace zel::kit {

std::string first_line(const std::string &text) { return text.substr(0, text.find('\n')); }

namespace {

// A path as git prints it: in quotes with the escapes of C where it holds odd bytes.
std::string read_path(std::string_view shown)
{
    if (!shown.starts_with('"') || shown.size() < 2)
        return std::string(shown);
    const std::string inner(shown.substr(1, shown.size() - 2));
    char *read = g_strcompress(inner.c_str());
    std::string out = read;
    g_free(read);
    return out;
}

// One line of the list: "100644 SHA STAGE<tab>PATH".
void take_line(std::string_view line, std::vector<unmerged_file> &out)
{
    const std::size_t tab = line.find('\t');
    if (tab == std::string_view::npos || tab == 0)
        return;
    const std::string path = read_path(line.substr(tab + 1));
    const int stage = line[tab - 1] - '1';
    if (stage < 0 || stage > 2)
        return;
    // The stages of a file stand one behind the other.
    if (out.empty() || out.back().path != path) {
        out.emplace_back();
        out.back().path = path;
    }
    out.back().has[stage] = true;
    out.back().is_regular = out.back().is_regular && line.starts_with("100");
}

// Why git could not be run.
std::string reason_of(const program_run &run)
{
    return run.err.empty() ? "git is not installed" : first_line(run.err);
}

} // namespace

program_run run_git_program(std::vector<std::string> words, const std::string &folder)
{
    words.insert(words.begin(), "git");
    return run_program(words, folder);
}

std::string find_top(const std::string &start)
{
    const program_run run = run_git_program({"rev-parse", "--show-toplevel"});
    if (run.started && run.status == 0)
        return run.out.substr(0, run.out.rfind('\n'));
    std::fprintf(stderr, "%s: %s\n", start.c_str(),
                 run.started ? "this is no working tree of a repository" : reason_of(run).c_str());
    return {};
}

std::optional<std::string> kept_text(const std::string &name, const std::string &folder,
                                     std::string &why)
{
    const program_run size = run_git_program({"cat-file", "-s", name}, folder);
    program_run text = run_git_program({"cat-file", "blob", name}, folder);
    if (!size.started || !text.started)
        why = reason_of(size.started ? text : size);
    else if (size.status != 0 || text.status != 0)
        why = first_line(size.status != 0 ? size.err : text.err);
    // What a program prints is had up to its first zero byte only.
    else if (std::to_string(text.out.size()) != first_line(size.out))
        why = "it holds a zero byte";
    else
        return std::move(text.out);
    return std::nullopt;
}

std::vector<unmerged_file> unmerged_files(const std::string &top,
                                          const std::vector<std::string> &names, std::string &why)
{
    std::vector<std::string> words{
        "--literal-pathspecs", "-c", "core.quotePath=false", "ls-files", "--unmerged",
        "--full-name",         "--"};
    words.insert(words.end(), names.begin(), names.end());
    const program_run run = run_git_program(words, names.empty() ? top : "");
    if (run.status != 0)
        why = reason_of(run);
    std::vector<unmerged_file> out;
    for (std::string_view rest = run.out; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        take_line(rest.substr(0, end), out);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return out;
}

private_folder::private_folder()
{
    std::string pattern = std::string(g_get_tmp_dir()) + "/lang-kit-XXXXXX";
    if (mkdtemp(pattern.data()) != nullptr)
        path_ = pattern;
}

private_folder::~private_folder()
{
    std::error_code ignored;
    if (!path_.empty())
        std::filesystem::remove_all(path_, ignored);
}

} // namespace zel::kit
