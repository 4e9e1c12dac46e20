#include "kit/support/program.h"

#include <climits>
#include <cstdlib>
#include <memory>
#include <sys/wait.h>

#include <glib.h>

namespace zel::kit {

namespace {

struct glib_free {
    void operator()(char *text) const noexcept { g_free(text); }
};
using glib_text = std::unique_ptr<char, glib_free>;

constexpr const char *own_name = "lang-kit";

// Where a path leads; empty when it leads nowhere.
std::string real_path(const char *path)
{
    char found[PATH_MAX];
    return path != nullptr && realpath(path, found) != nullptr ? found : "";
}

int status_of(int wait_status)
{
    // After a signal, the status that a shell would give.
    return WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : 128 + WTERMSIG(wait_status);
}

} // namespace

program_run run_program(const std::vector<std::string> &words, const std::string &folder)
{
    std::vector<char *> argv;
    argv.reserve(words.size() + 1);
    for (const std::string &word : words)
        argv.push_back(const_cast<char *>(word.c_str())); // not written to
    argv.push_back(nullptr);
    char *out = nullptr;
    char *err = nullptr;
    int status = 0;
    GError *error = nullptr;
    // No shell stands between, so that words with blanks or quotes stay whole.
    const gboolean started =
        g_spawn_sync(folder.empty() ? nullptr : folder.c_str(), argv.data(), nullptr,
                     G_SPAWN_SEARCH_PATH, nullptr, nullptr, &out, &err, &status, &error);
    const glib_text out_guard(out);
    const glib_text err_guard(err);
    if (started == FALSE) {
        g_error_free(error);
        return {false, 0, {}, {}};
    }
    return {true, status_of(status), out, err};
}

std::string own_command()
{
    const std::string self = real_path("/proc/self/exe");
    const glib_text found(g_find_program_in_path(own_name));
    // The bare name will do only if the shell finds this very program by it.
    if (self.empty() || real_path(found.get()) == self)
        return own_name;
    const glib_text quoted(g_shell_quote(self.c_str()));
    return quoted.get();
}

} // namespace zel::kit
