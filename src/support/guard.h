#pragma once

// Owners for the project's records: a std::unique_ptr that calls the record's own destructor.
// Each record's header names its guard under the destructor; this file knows no record.

#include <memory>

namespace zel {

// For destructors that take the pointer.
template <auto Free>
struct release {
    template <class T>
    void operator()(T *p) const noexcept
    {
        Free(p);
    }
};

// For destructors that take the address of the pointer and set it to null.
template <auto Free>
struct release_at {
    template <class T>
    void operator()(T *p) const noexcept
    {
        Free(&p);
    }
};

// Sets a re-entry flag for the life of a scope.
struct flag_guard {
    explicit flag_guard(int &flag) : flag_(flag) { flag_ = 1; }
    ~flag_guard() { flag_ = 0; }
    flag_guard(const flag_guard &) = delete;
    flag_guard &operator=(const flag_guard &) = delete;

private:
    int &flag_;
};

} // namespace zel
