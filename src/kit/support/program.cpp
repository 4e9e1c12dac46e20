#include "kit/support/program.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <glib.h>

namespace zel::kit {

namespace {

struct glib_free {
    void operator()(char *text) const noexcept { g_free(text); }
};
using glib_text = std::unique_ptr<char, glib_free>;

constexpr const char *own_name = "lang-kit";
constexpr int none_ran = 127; // the status, as a shell has it

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

enum class reading { whole, too_much, failed };

// Reads both pipes to their ends, each as soon as it has something.
reading read_both(const int (&from)[2], std::string (&to)[2], std::size_t most)
{
    std::vector<char> piece(1U << 16);
    pollfd ends[] = {{from[0], POLLIN, 0}, {from[1], POLLIN, 0}};
    while (ends[0].fd >= 0 || ends[1].fd >= 0) {
        if (poll(ends, 2, -1) < 0) {
            if (errno != EINTR)
                return reading::failed;
            continue;
        }
        for (pollfd &end : ends) {
            if (end.fd < 0 || end.revents == 0)
                continue;
            const ssize_t got = ::read(end.fd, piece.data(), piece.size());
            if (got < 0 && errno != EINTR)
                return reading::failed;
            std::string &text = to[&end - ends];
            text.append(piece.data(), got < 0 ? 0 : static_cast<std::size_t>(got));
            if (text.size() > most)
                return reading::too_much;
            if (got == 0)
                end.fd = -1; // is passed over from here on
        }
    }
    return reading::whole;
}

} // namespace

program_run run_program(const std::vector<std::string> &words, const std::string &folder,
                        std::size_t most)
{
    std::vector<char *> argv;
    argv.reserve(words.size() + 1);
    for (const std::string &word : words)
        argv.push_back(const_cast<char *>(word.c_str())); // not written to
    argv.push_back(nullptr);
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD);
    GPid child = 0;
    int ends[] = {-1, -1};
    GError *error = nullptr;
    // No shell stands between, so that words with blanks or quotes stay whole.
    if (g_spawn_async_with_pipes(folder.empty() ? nullptr : folder.c_str(), argv.data(), nullptr,
                                 flags, nullptr, nullptr, &child, nullptr, &ends[0], &ends[1],
                                 &error) == FALSE) {
        const bool is_there = g_error_matches(error, G_SPAWN_ERROR, G_SPAWN_ERROR_NOENT) == FALSE;
        program_run none{false, none_ran, {}, is_there ? error->message : ""};
        g_error_free(error);
        return none;
    }
    std::string said[2];
    const reading how = read_both(ends, said, most);
    const int read_error = errno;
    for (const int end : ends)
        close(end);
    if (how != reading::whole)
        kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (how == reading::failed)
        return {false, none_ran, {}, std::strerror(read_error)};
    return {true, status_of(status), said[0].c_str(), said[1].c_str(), how == reading::too_much};
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
