// A translation that is to stand for a format, in parts item and text: where it is taken, printf
// asks it for the item's arguments, as the C library itself says; and its forms lie in it. The same
// for what the checked requests give from a file with that text.

#include "support.h"

#include <algorithm>
#include <array>
#include <printf.h>

#include "langlib/lang-load.h"
#include "langlib/lang-locale.h"
#include "langlib/plural-rule.h"
#include "source/quote.h"

namespace {

using types = std::array<int, 64>;

std::size_t types_of(const char *format, types &found)
{
    found.fill(0);
    return parse_printf_format(format, found.size(), found.data());
}

constexpr std::int64_t numbers[] = {INT64_MIN, -1, 0, 1, 2, 5, 21, 1000000, INT64_MAX};

// Whether printf asks both for the same, and writes nothing.
bool fits(const char *text, const char *item)
{
    types wanted;
    types asked;
    return types_of(item, wanted) == types_of(text, asked) && asked == wanted &&
           std::none_of(wanted.begin(), wanted.end(),
                        [](int type) { return (type & PA_FLAG_PTR) != 0; });
}

bool fits_a_form(const char *text, std::string_view forms)
{
    for (std::size_t i = 0; i < zel::count_text_forms(forms); ++i)
        if (fits(text, std::string(zel::text_form(forms, i)).c_str()))
            return true;
    return false;
}

void look_at_requests(const char *item, const char *text)
{
    std::string file = "LANGUAGE russian GROUP g ";
    zel::append_quoted(file, 0, item);
    zel::append_quoted(file += " {", 0, text);
    file += " }";
    lang_locale_memory(nullptr, "ru", file.data(), file.size());
    // Twice: the second time the answer is known.
    for (int i = 0; i < 2; ++i) {
        const char *answer = lang_text("g", item);
        fuzz::require(answer == item || fits(answer, item), "a checked text fits");
        for (const std::int64_t number : numbers) {
            const char *form = lang_count("g", item, number);
            fuzz::require(std::string_view(form) == lang_plural(item, number) ||
                              fits_a_form(form, item),
                          "a checked form fits");
        }
    }
}

void look_at_forms(const char *text)
{
    for (const std::int64_t number : numbers) {
        const char *form = lang_plural(text, number);
        fuzz::require(form != nullptr && std::string_view(text).find(form) != std::string::npos,
                      "a form is a piece of its text");
    }
}

} // namespace

extern "C" int FUZZ_TARGET(format_or)(const std::uint8_t *data, std::size_t size)
{
    const std::vector<std::string> part = fuzz::parts(fuzz::bytes_of(data, size), 2);
    const char *item = part[0].c_str();
    const char *text = part[1].c_str();
    const char *answer = lang_format_or(text, item);
    fuzz::require(answer == item || answer == text, "one of the two");
    if (answer == text)
        fuzz::require(fits(text, item), "the same arguments, and nothing is written through");
    look_at_forms(text);
    look_at_requests(item, text);
    lang_de_init();
    return 0;
}
