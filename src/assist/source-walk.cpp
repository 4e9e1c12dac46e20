#include "assist/source-walk.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace zel::assist {

namespace {

constexpr std::uint32_t pieces_at_once = 32; // items, between two looks at the clock

// Opens regular files only, so that neither a pipe waits nor a device does something. The path may
// be exchanged between looking and opening, which is why the open file is looked at again.
int open_regular(const std::string &path, struct stat &status)
{
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return -1;
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd >= 0 && (fstat(fd, &status) != 0 || !S_ISREG(status.st_mode))) {
        close(fd);
        return -1;
    }
    return fd;
}

// Reads as many bytes as the file had when it was opened: one that grows meanwhile would keep us
// for ever.
bool read_whole(int fd, std::string &text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t got = read(fd, text.data() + done, text.size() - done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        done += static_cast<std::size_t>(got);
    }
    return true;
}

read_how how_to_read(std::string_view text, source_walk::keeps kept)
{
    read_how how;
    how.text = text;
    how.keeps = std::move(kept);
    return how;
}

} // namespace

std::string folder_of(const std::string &path)
{
    const std::size_t end = path.rfind('/');
    return end == std::string::npos ? std::string() : path.substr(0, end + 1);
}

std::optional<std::string> read_regular(const std::string &path,
                                        const std::function<bool(const struct stat &)> &wanted)
{
    struct stat status {};
    const int fd = open_regular(path, status);
    if (fd < 0)
        return std::nullopt;
    const bool is_wanted = wanted(status);
    std::string text(is_wanted ? static_cast<std::size_t>(status.st_size) : 0, '\0');
    const bool is_read = is_wanted && read_whole(fd, text);
    close(fd);
    if (!is_read)
        return std::nullopt;
    return text;
}

source_walk::source_walk(const std::string &name, std::string text, keeps kept)
    : text_(std::move(text)), reading_(name.c_str(), how_to_read(text_, std::move(kept)))
{
}

bool source_walk::step(const take &one)
{
    if (!is_read_) {
        if (reading_.step(pieces_at_once))
            return true;
        is_read_ = true;
        source_ = reading_.answer().source;
        group_ = source_ ? source_->groups : nullptr;
        return group_ != nullptr;
    }
    auto *group = static_cast<edit_t *>(group_->data);
    for (unsigned count = 0; count < pieces_at_once && group->items != nullptr; ++count) {
        // Released one by one: all at once would take longer than one waits for a key.
        const item_guard item(static_cast<item_t *>(group->items->data));
        group->items = g_list_delete_link(group->items, group->items);
        one(*source_, *group, item.get());
    }
    if (group->items == nullptr)
        group_ = group_->next;
    return group_ != nullptr;
}

} // namespace zel::assist
