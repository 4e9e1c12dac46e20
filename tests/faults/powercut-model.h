#pragma once

// A disk whose power may go at any moment. It is told what a process did, call by call, and tells
// what may be found afterwards: what was written since a file was last synced is there in part, in
// full, as zeros, or not at all; and of the names that were made, changed and taken away since
// their folder was last synced, any may be there and any not. A renaming is done or not done.

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "system-calls.h"

namespace zel_test {

using disk_state = std::map<std::string, std::string>; // contents by path
using disk_key = std::pair<std::uint64_t, std::uint64_t>;

class disk {
public:
    // A piece that was being written may be cut at so many lengths between its ends.
    explicit disk(std::size_t cuts) : cuts_(cuts) {}

    // What is there and safe at first. Folders by their path, "." being the current one.
    void add_file(const std::string &path, disk_key key, std::string text);
    void add_folder(const std::string &path, disk_key key) { folders_[key] = path; }

    void take(const call_record &record, const std::string &data);

    // Every state that a power cut may leave now.
    void each_state(const std::function<void(const disk_state &)> &hear) const;

    // What a process that goes on sees.
    disk_state now() const;

private:
    struct change {
        std::int64_t offset; // of a truncation the length
        std::string data;
        bool is_truncation;
    };
    struct file {
        std::string safe;            // contents on the disk
        std::vector<change> changes; // on their way there
    };
    using names = std::map<std::string, std::size_t>; // of files_
    struct name_change {
        std::string folder; // whose syncing makes it safe
        std::vector<std::pair<std::string, std::size_t>> set;
    };
    static constexpr std::size_t no_file = SIZE_MAX;

    static std::string plain(const std::string &path);
    static std::string folder_of(const std::string &path);
    static void apply(std::string &text, const change &one, std::size_t bytes);
    static void apply(names &to, const name_change &one);
    static std::string whole(const file &one);
    std::vector<std::string> contents(const file &one) const;
    void change_names(const std::string &path,
                      std::vector<std::pair<std::string, std::size_t>> set);
    void sync(disk_key key);
    std::vector<names> namespaces() const;

    std::size_t cuts_;
    std::vector<file> files_;
    std::map<disk_key, std::size_t> by_key_;
    std::map<disk_key, std::string> folders_;
    names safe_names_;
    names names_;
    std::vector<name_change> name_changes_; // on their way
};

} // namespace zel_test
