#include "recovery/file-state.h"

#include "support/file-call.h"
#include "support/guard.h"
#include "support/target-file.h"
#include "support/time.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <glib.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using checksum_guard = std::unique_ptr<GChecksum, zel::release<g_checksum_free>>;

// Empty when the file cannot be read through.
std::string hash_of_file(int fd)
{
    const checksum_guard sum(g_checksum_new(G_CHECKSUM_SHA256));
    std::array<unsigned char, 128 * 1024> block;
    for (;;) {
        const ssize_t size = read(fd, block.data(), block.size());
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            return {};
        if (size == 0)
            return g_checksum_get_string(sum.get());
        g_checksum_update(sum.get(), block.data(), size);
    }
}

// Takes what the system tells of a file without reading it.
void take_stamps(zel::file_state &state, const struct stat &status)
{
    state.size = status.st_size;
    state.seconds = status.st_mtim.tv_sec;
    state.nanoseconds = status.st_mtim.tv_nsec;
    state.number = status.st_ino;
}

bool same_stamps(const zel::file_state &state, const struct stat &status)
{
    return state.size == status.st_size && state.seconds == status.st_mtim.tv_sec &&
           state.nanoseconds == status.st_mtim.tv_nsec && state.number == status.st_ino;
}

} // namespace

namespace zel {

file_state state_of(const char *path)
{
    file_state state;
    struct stat status {};
    // Follows links: the text behind the name is what the user works on.
    const int fd = open_plain(find_target(path, links::follow).path.c_str(), O_RDONLY);
    if (fd < 0)
        return state;
    if (fstat(fd, &status) == 0) {
        take_stamps(state, status);
        state.hash = hash_of_file(fd);
        state.is_there = !state.hash.empty();
    }
    close_quietly(fd);
    return state;
}

file_news news_of(const char *path, file_state &known)
{
    struct stat status {};
    // A file that cannot be looked at has no news: only one that is missing counts as gone.
    if (stat(path, &status) != 0)
        return known.is_there && errno == ENOENT ? file_news::gone : file_news::same;
    // The usual case: while the stamps are the same, nothing is read.
    if (known.is_there && same_stamps(known, status))
        return file_news::same;
    const file_state now = state_of(path);
    if (!now.is_there)
        return file_news::same; // whoever wants to use it will hear why it cannot be read
    // Other stamps with the same bytes are no news: a copy was put back, or somebody touched it.
    if (!known.same_text(now))
        return file_news::changed;
    known = now;
    return file_news::same;
}

std::string describe(const file_state &state)
{
    return std::to_string(state.size) + " bytes, " + date_text("%Y-%m-%d %H:%M:%S", state.seconds);
}

} // namespace zel
