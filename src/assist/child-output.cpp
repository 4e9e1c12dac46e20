#include "assist/child-output.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <glib.h>

namespace zel::assist {

namespace {

constexpr std::chrono::milliseconds long_pause{300};
constexpr std::size_t piece_size = 1U << 16;
constexpr int pipe_size = 1 << 20; // bytes; who looks rarely gets much at a time

// The words as the system wants them, which are not written to.
std::vector<char *> words_of(const std::vector<std::string> &words)
{
    std::vector<char *> out;
    out.reserve(words.size() + 1);
    for (const std::string &word : words)
        out.push_back(const_cast<char *>(word.c_str()));
    out.push_back(nullptr);
    return out;
}

} // namespace

child_output::child_output(const std::vector<std::string> &words, const std::string &folder,
                           const std::vector<std::string> &environment, const limits &most)
    : most_(most), read_(std::chrono::steady_clock::now()), last_(read_ + most.time)
{
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_DO_NOT_REAP_CHILD |
                                                G_SPAWN_STDERR_TO_DEV_NULL | G_SPAWN_CLOEXEC_PIPES);
    if (g_spawn_async_with_pipes(folder.empty() ? nullptr : folder.c_str(), words_of(words).data(),
                                 words_of(environment).data(), flags, nullptr, nullptr, &pid_,
                                 nullptr, &fd_, nullptr, nullptr) == FALSE) {
        pid_ = 0;
        fd_ = -1;
        return;
    }
    fcntl(fd_, F_SETPIPE_SZ, pipe_size); // else it stays as it is
    // A read that waits would hold up the window.
    if (const int flags_now = fcntl(fd_, F_GETFL);
        flags_now == -1 || fcntl(fd_, F_SETFL, flags_now | O_NONBLOCK) == -1)
        end();
}

void child_output::close_pipe()
{
    if (fd_ >= 0)
        close(fd_);
    fd_ = -1;
}

void child_output::end()
{
    close_pipe();
    if (pid_ == 0)
        return;
    kill(pid_, SIGKILL);
    // One in the midst of a slow disk's work goes later: the main loop takes its status then.
    if (waitpid(pid_, nullptr, WNOHANG) == 0)
        g_child_watch_add(
            pid_, [](GPid, gint, gpointer) {}, nullptr);
    pid_ = 0;
}

child_news child_output::look_after_end()
{
    int status = 0;
    const pid_t gone = pid_ == 0 ? -1 : waitpid(pid_, &status, WNOHANG);
    if (gone == 0)
        return child_news::waits;
    pid_ = 0;
    return gone > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0 ? child_news::done
                                                                     : child_news::failed;
}

child_news child_output::read()
{
    const auto now = std::chrono::steady_clock::now();
    // A program whose output nobody takes cannot go on.
    if (now - read_ > long_pause)
        last_ += now - read_;
    read_ = now;
    if (fd_ >= 0) {
        char piece[piece_size];
        const ssize_t got = ::read(fd_, piece, sizeof(piece));
        if (got > 0 && text_.size() + static_cast<std::size_t>(got) <= most_.bytes) {
            text_.append(piece, static_cast<std::size_t>(got));
            return child_news::came;
        }
        if (got > 0)
            end(); // of too much, nothing is wanted
        else if (got == 0 || (errno != EAGAIN && errno != EINTR))
            close_pipe();
    }
    const child_news news = fd_ >= 0 ? child_news::waits : look_after_end();
    if (news != child_news::waits || now < last_)
        return news;
    end();
    return child_news::failed;
}

} // namespace zel::assist
