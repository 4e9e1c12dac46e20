#pragma once

// A text that is put together piece by piece, and says so when memory runs out.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace zel {

class growing_text {
public:
    growing_text() = default;
    ~growing_text() { std::free(data_); }
    growing_text(const growing_text &) = delete;
    growing_text &operator=(const growing_text &) = delete;

    // False without memory; the text is then as it was. Linear over all appends.
    bool append(std::string_view part)
    {
        if (length_ + part.size() + 1 >= room_ && !grow(length_ + part.size() + 2))
            return false;
        std::memcpy(data_ + length_, part.data(), part.size());
        length_ += part.size();
        data_[length_] = '\0';
        return true;
    }

    // Takes off what stands behind that length; the room stays.
    void cut(std::size_t length)
    {
        length_ = length;
        if (data_ != nullptr)
            data_[length] = '\0';
    }

    // Null while nothing was appended; ended with a NUL.
    const char *data() const { return data_; }
    std::size_t length() const { return length_; }

    // Hands the text over, to be released with free, and begins again with none.
    char *release()
    {
        char *text = data_;
        data_ = nullptr;
        room_ = length_ = 0;
        return text;
    }

private:
    bool grow(std::size_t needed)
    {
        const std::size_t wanted = std::max(needed, room_ * 2);
        char *grown = static_cast<char *>(std::realloc(data_, wanted));
        if (grown == nullptr)
            return false;
        data_ = grown;
        room_ = wanted;
        return true;
    }

    char *data_ = nullptr;
    std::size_t room_ = 0;
    std::size_t length_ = 0;
};

} // namespace zel
