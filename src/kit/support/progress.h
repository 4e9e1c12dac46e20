#pragma once

// How far a long run is, for somebody who watches: one line on standard error that is written over
// and is gone at the end. Only on a terminal, and only once a run has taken half a second.

#include <cstddef>
#include <cstdint>
#include <string>

namespace zel::kit {

class progress {
public:
    // The line is "what done of total", or only "what" without a total.
    explicit progress(std::string what, std::size_t total = 0);
    ~progress();
    progress(const progress &) = delete;
    progress &operator=(const progress &) = delete;

    // Tells that so many are done. Cheap, since most calls only count.
    void at(std::size_t done)
    {
        if (watched_ && ++calls_ % 64 == 0)
            show(done);
    }

private:
    void show(std::size_t done);

    std::string what_;
    std::size_t total_;
    bool watched_;
    unsigned calls_ = 0;
    std::int64_t next_;     // when the line is written next, in milliseconds
    std::size_t shown_ = 0; // columns of it on the terminal
};

} // namespace zel::kit
