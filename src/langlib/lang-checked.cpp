// Requests whose text printf may have in the item's place.

#include "langlib/lang-locale.h"

#include "langlib/lang-fit.h"
#include "langlib/lang-lookup.h"
#include "langlib/lang-plural.h"
#include "langlib/lang-table.h"
#include "langlib/plural-rule.h"

#include <cstring>

namespace {

// What was found out about a text is kept in its entry: comparing two formats takes several times
// as long as finding the text. The key holds the group too, so the item is known only with the
// group's length.
constexpr std::uint32_t form_bits = 8; // from bit 0: the form fits
constexpr std::uint32_t forms_known = 1U << 8;
constexpr std::uint32_t text_known = 1U << 9;
constexpr std::uint32_t text_fits = 1U << 10;
constexpr unsigned length_from = 11; // the group's length, up to key_too_long
constexpr std::uint32_t length_mask = zel::key_too_long - (1U << length_from);
static_assert(zel::lang_key::limit <= length_mask >> length_from);

// Null where nothing can be kept: the item of a key that was cut may have gone on.
std::uint32_t *state_of(const zel::asked_text &asked)
{
    if (asked.home->index == nullptr)
        return nullptr;
    const auto key_size = static_cast<std::size_t>(asked.text->value - asked.text->key) - 2;
    return key_size < zel::lang_key::limit ? &zel::entry_of(asked.text)->state : nullptr;
}

std::uint32_t length_bits(const char *group)
{
    return static_cast<std::uint32_t>(std::strlen(group)) << length_from;
}

// What is known, with this bit in it, or what the function finds out. Several threads may come here
// at once: all of them find the same.
template <class FindOut>
std::uint32_t look_up(const zel::asked_text &asked, const char *group, std::uint32_t known,
                      FindOut find_out)
{
    std::uint32_t *state = state_of(asked);
    if (state == nullptr)
        return find_out();
    const std::uint32_t length = length_bits(group);
    std::uint32_t old = __atomic_load_n(state, __ATOMIC_RELAXED);
    if ((old & length_mask) == length && (old & known) != 0)
        return old;
    const std::uint32_t found = find_out() | known;
    std::uint32_t kept = 0;
    do
        kept = found | length | ((old & length_mask) == length ? old : old & zel::key_too_long);
    while (
        !__atomic_compare_exchange_n(state, &old, kept, true, __ATOMIC_RELAXED, __ATOMIC_RELAXED));
    return found;
}

// Every form of an item is printed with the same arguments, so what fits one of them cannot break
// the others' call: "One note" may stand where "%d notes" does.
bool fits_a_form(std::string_view form, std::string_view forms)
{
    const std::size_t count = zel::count_text_forms(forms);
    for (std::size_t i = count; i > 0; --i)
        if (zel::format_fits(form, zel::text_form(forms, i - 1)))
            return true;
    return false;
}

// A bit for each form of a text that fits.
std::uint32_t fitting_forms(std::string_view text, std::size_t count, std::string_view forms)
{
    std::uint32_t fitting = 0;
    for (std::size_t i = 0; i < count; ++i)
        if (fits_a_form(zel::text_form(text, i), forms))
            fitting |= 1U << i;
    return fitting;
}

// The form of a text that was found; null where the item's must be taken.
const char *fitting_form(const zel::asked_text &asked, const char *group, const char *forms,
                         std::int64_t number)
{
    const std::string_view text(asked.text->value);
    const std::size_t count = zel::count_text_forms(text);
    const std::size_t position = count == 1 ? 0 : zel::form_position(asked, count, number);
    // No language has as many forms as there are bits.
    if (count > form_bits || asked.home->index == nullptr)
        return nullptr;
    const std::uint32_t fitting =
        look_up(asked, group, forms_known, [&] { return fitting_forms(text, count, forms); });
    if ((fitting >> position & 1) == 0)
        return nullptr;
    if (count == 1)
        return text.data();
    // Behind the text each of its forms stands again, with an end of its own.
    return zel::text_form(text, position).data() + text.size() + 1;
}

} // namespace

const char *_lang_text(lang_handle_t *handle, const char *group, const char *item, const char *file,
                       int line)
{
    const zel::asked_text asked = zel::ask(handle, group, item, file, line);
    if (asked.text == nullptr)
        return item == nullptr ? "" : item;
    const char *text = asked.text->value;
    const std::uint32_t known = look_up(asked, group, text_known, [&] {
        return lang_format_or(text, item) == text ? text_fits : 0U;
    });
    return (known & text_fits) != 0 ? text : item;
}

const char *_lang_count(lang_handle_t *handle, const char *group, const char *forms,
                        std::int64_t number, const char *file, int line)
{
    if (forms == nullptr)
        return "";
    const zel::asked_text asked = zel::ask(handle, group, forms, file, line);
    const char *form = asked.text == nullptr ? nullptr : fitting_form(asked, group, forms, number);
    return form == nullptr ? lang_plural_of(handle, forms, number) : form;
}
