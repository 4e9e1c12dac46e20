#include "exchange/keyed-file.h"

#include "exchange/key.h"
#include "support/guard.h"

#include <memory>

#include <glib.h>

namespace zel::exchange {

fault keyed_part::add(keyed_text one)
{
    const auto &[before, added] = lines_.emplace(one.group + '\0' + one.key, one.line);
    if (!added) {
        std::string shown;
        append_name(shown, one.key);
        return {one.line,
                "the key \"" + shown + "\" is on line " + std::to_string(before->second) + ", too"};
    }
    texts.push_back(std::move(one));
    return {};
}

fault decode(std::string_view bytes, std::string &text)
{
    const bool is_little = bytes.starts_with("\xFF\xFE");
    if (!is_little && !bytes.starts_with("\xFE\xFF")) {
        drop_mark(bytes);
        text = bytes;
        return check_utf8(bytes);
    }
    bytes.remove_prefix(2);
    gsize written = 0;
    const std::unique_ptr<char, release<g_free>> made(
        g_convert(bytes.data(), static_cast<gssize>(bytes.size()), "UTF-8",
                  is_little ? "UTF-16LE" : "UTF-16BE", nullptr, &written, nullptr));
    if (made == nullptr)
        return {0, "bytes that are no UTF-16"};
    text.assign(made.get(), written);
    return check_utf8(text);
}

std::string counted_words(std::size_t count, const std::string &noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace zel::exchange
