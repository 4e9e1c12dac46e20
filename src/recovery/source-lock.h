#pragma once

// Which editor works on a source: each takes an advisory lock on a file in the recovery folder that
// holds its host and its process, and whoever comes second is told.

#include <string>

namespace zel {

class source_lock {
public:
    source_lock() = default;
    ~source_lock() { release(); }
    source_lock(const source_lock &) = delete;
    source_lock &operator=(const source_lock &) = delete;

    // Takes the lock of the source in the folder. False when another editor, which is alive, holds
    // it: holder() tells which. The lock of an editor that has died is taken over. Where no lock is
    // to be had at all nobody is known to work on the source: true, and the log tells.
    bool take(const std::string &folder, const std::string &absolute);

    // "host, process 123", or empty.
    const std::string &holder() const { return holder_; }

    // Removes the lock file, if it is ours.
    void release();

private:
    bool take_open(int fd);

    std::string path_;
    std::string holder_;
    int fd_ = -1; // open, and locked, while the lock is ours
};

} // namespace zel
