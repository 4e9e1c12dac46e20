#include "langlib/lang-rare.h"

lang_handle_t lang;

unsigned zel::rare_cases;

namespace {
lang_handle_t *newest; // null: the process-wide one
}

void zel::rare_begins(rare_case one) { __atomic_fetch_or(&rare_cases, one, __ATOMIC_RELEASE); }

void zel::rare_ends(rare_case one)
{
    __atomic_fetch_and(&rare_cases, ~static_cast<unsigned>(one), __ATOMIC_RELEASE);
}

const lang_handle_t *zel::newest_handle(const lang_handle_t *handle)
{
    if (handle != nullptr && handle != &lang)
        return handle;
    const lang_handle_t *found = __atomic_load_n(&newest, __ATOMIC_ACQUIRE);
    return found == nullptr ? &lang : found;
}

void zel::put_newest(lang_handle_t *handle)
{
    __atomic_store_n(&newest, handle, __ATOMIC_RELEASE);
    if (handle == nullptr)
        rare_ends(rare_reloaded);
    else
        rare_begins(rare_reloaded);
}
