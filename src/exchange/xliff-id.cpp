#include "exchange/xliff.h"

namespace zel::exchange {

namespace {

constexpr std::string_view digits = "0123456789ABCDEF";

bool is_plain(char c)
{
    // An underscore begins an escape, so it cannot stand for itself.
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '-' || c == ':';
}

} // namespace

std::string xliff_id(std::string_view key)
{
    std::string id;
    for (const char c : key) {
        const auto byte = static_cast<unsigned char>(c);
        if (is_plain(c))
            id += c;
        else
            id.append(1, '_').append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
    }
    return id;
}

bool read_xliff_id(std::string_view id, std::string &key)
{
    key.clear();
    for (std::size_t at = 0; at < id.size(); ++at) {
        if (id[at] != '_') {
            key += id[at];
            continue;
        }
        const std::size_t high = at + 2 < id.size() ? digits.find(id[at + 1]) : digits.npos;
        const std::size_t low = high == digits.npos ? high : digits.find(id[at + 2]);
        // No key holds a zero byte.
        if (low == digits.npos || high + low == 0)
            return false;
        key += static_cast<char>(high * 16 + low);
        at += 2;
    }
    return true;
}

} // namespace zel::exchange
