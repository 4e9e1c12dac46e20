#pragma once

// A source that is read and gone through in pieces, by whoever has time. Nothing is locked or
// written, and neither a pipe nor a device is waited for.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>

#include "source/lang-read.h"
#include "source/model.h"

namespace zel::assist {

// With the separator at its end; empty for the current folder.
[[nodiscard]] std::string folder_of(const std::string &path);

// The bytes of a regular file, of which wanted says true; none of any other.
std::optional<std::string> read_regular(const std::string &path,
                                        const std::function<bool(const struct stat &)> &wanted);

class source_walk {
public:
    using take = std::function<void(const LangSource &source, const edit_t &group, item_t *item)>;

    // The items have entries of the languages that are kept and of no other: a backup of ten
    // languages is three times as large as those of two. The name is for the log.
    using keeps = std::function<bool(std::string_view language)>;
    source_walk(const std::string &name, std::string text, keeps kept);
    source_walk(const source_walk &) = delete;
    source_walk &operator=(const source_walk &) = delete;

    // Reads some of it, or hands out some items of one group, used or not, each of which is gone
    // afterwards; false once there are none left, as in a text that is no source.
    bool step(const take &one);

private:
    std::string text_;
    source_reading reading_;
    source_guard source_;    // once it is read
    GList *group_ = nullptr; // whose items come next
    bool is_read_ = false;
};

} // namespace zel::assist
