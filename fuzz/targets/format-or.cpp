// A translation that is to stand for a format, in parts item and text: where it is taken, printf
// asks it for the item's arguments, as the C library itself says; and its forms lie in it.

#include "support.h"

#include <algorithm>
#include <array>
#include <printf.h>

#include "langlib/lang-load.h"
#include "langlib/lang-locale.h"

namespace {

using types = std::array<int, 64>;

std::size_t types_of(const char *format, types &found)
{
    found.fill(0);
    return parse_printf_format(format, found.size(), found.data());
}

void look_at_forms(const char *text)
{
    for (const std::int64_t number : {INT64_MIN, INT64_C(-1), INT64_C(0), INT64_C(1), INT64_C(2),
                                      INT64_C(5), INT64_C(1000000), INT64_MAX}) {
        const char *form = lang_plural(text, number);
        fuzz::require(form != nullptr && std::string_view(text).find(form) != std::string::npos,
                      "a form is a piece of its text");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::vector<std::string> part = fuzz::parts(fuzz::bytes_of(data, size), 2);
    const char *item = part[0].c_str();
    const char *text = part[1].c_str();
    const char *answer = lang_format_or(text, item);
    fuzz::require(answer == item || answer == text, "one of the two");
    if (answer == text) {
        types wanted;
        types asked;
        const std::size_t count = types_of(item, wanted);
        fuzz::require(types_of(text, asked) == count && asked == wanted, "the same arguments");
        fuzz::require(std::none_of(wanted.begin(), wanted.end(),
                                   [](int type) { return (type & PA_FLAG_PTR) != 0; }),
                      "nothing is written through");
    }
    look_at_forms(text);
    lang_de_init();
    return 0;
}
