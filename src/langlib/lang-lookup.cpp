// Requests for plain texts.

#include "langlib/lang-lookup.h"

#include "langlib/lang-load.h"
#include "langlib/lang-table.h"
#include "langlib/lang-trace.h"
#include "support/info.h"
#include "support/log-print.h"

#include <memory>

namespace {

const char *or_null(const char *text) { return text == nullptr ? "(null)" : text; }

void log_missing(const char *group, const char *item, const char *file, int line)
{
    LogPrint(1, "lang_get_string: INFO not translated file %s line %d missing ->%s<>%s<-\n",
             or_null(file), line, or_null(group), or_null(item));
}

// Returns the slot that answers, or null. A pair that lacks one of its names has none, and an entry
// without a text counts as missing.
const lang_text_t *find_text(const lang_handle_t *handle, const char *group, const char *item)
{
    if (group == nullptr || item == nullptr)
        return nullptr;
    const lang_text_t *text = zel::lang_table_find(handle, zel::lang_key(group, item));
    return text != nullptr && text->value != nullptr ? text : nullptr;
}

// Asks the chain of a handle for a text that the handle lacks, or has only as a stand-in from the
// default language. A stand-in is better than none.
zel::asked_text ask_chain(zel::asked_text stand_in, const char *group, const char *item)
{
    const lang_handle_t *handle = stand_in.home;
    while (handle->index != nullptr && (handle = zel::link_of(handle->index).next) != nullptr) {
        const lang_text_t *text = handle->loaded != 0 ? find_text(handle, group, item) : nullptr;
        if (text != nullptr && text->is_default == 0)
            return {handle, text};
        if (stand_in.text == nullptr)
            stand_in = {text == nullptr ? stand_in.home : handle, text};
    }
    return stand_in;
}

// Once this is set, everything in the handle is complete, whichever thread loaded it.
bool is_loaded(const lang_handle_t *handle)
{
    return __atomic_load_n(&handle->loaded, __ATOMIC_ACQUIRE) != 0;
}

// Out of the way of all other programs' requests.
[[gnu::noinline]] lang_handle_t *ask_rarely(lang_handle_t *handle, const char *group,
                                            const char *item)
{
    if ((zel::rare_now() & zel::rare_traced) != 0 && handle->import_mode == 0)
        zel::trace_request(group, item);
    return zel::newest_handle(handle);
}

// Returns the handle that is asked.
lang_handle_t *asked_handle(lang_handle_t *handle, const char *group, const char *item)
{
    if (handle == nullptr)
        handle = &lang;
    return __builtin_expect(zel::rare_now() == 0, 1) ? handle : ask_rarely(handle, group, item);
}

// A call of its own would be a part of each request that can be measured.
[[gnu::always_inline]] inline zel::asked_text ask_loaded(const lang_handle_t *handle,
                                                         const char *group, const char *item,
                                                         const char *file, int line)
{
    zel::asked_text found{handle, find_text(handle, group, item)};
    if ((found.text == nullptr || found.text->is_default != 0) && handle->import_mode == 0)
        found = ask_chain(found, group, item);
    if (found.text == nullptr)
        log_missing(group, item, file, line);
    return found;
}

// A request without an item still gets a text.
const char *untranslated(const char *item) { return item == nullptr ? "" : item; }

} // namespace

zel::asked_text zel::ask(lang_handle_t *handle, const char *group, const char *item,
                         const char *file, int line)
{
    handle = asked_handle(handle, group, item);
    if (!is_loaded(handle))
        return {handle, nullptr};
    return ask_loaded(handle, group, item, file, line);
}

const char *__lang_get_str(lang_handle_t *handle, const char *group, const char *item,
                           std::int32_t *found, const char *file, int line)
{
    handle = asked_handle(handle, group, item);
    if (!is_loaded(handle))
        return untranslated(item);
    const lang_text_t *text = ask_loaded(handle, group, item, file, line).text;
    if (text == nullptr) {
        if (handle->import_mode != 0)
            return nullptr;
        if (found != nullptr)
            *found = 0;
        return untranslated(item);
    }
    // An import takes only texts of the language itself.
    if (handle->import_mode != 0 && text->is_default == 1)
        return nullptr;
    if (found != nullptr)
        *found = 1;
    return text->value;
}

const char *_lang_get_str(lang_handle_t *handle, const char *group, const char *item,
                          const char *file, int line)
{
    return __lang_get_str(handle, group, item, nullptr, file, line);
}

const char *_lang_get_string(const char *group, const char *item, const char *file, int line)
{
    return __lang_get_str(&lang, group, item, nullptr, file, line);
}

const char *_lang_tooltip(const char *group, const char *item, const char *file, int line)
{
    return __lang_get_str(&lang, group, item, nullptr, file, line);
}

const char *_lang_str(const char *group, const char *item, const char *file, int line)
{
    return __lang_get_str(&lang, group, item, nullptr, file, line);
}

std::int32_t lang_check_string(const char *group, const char *item)
{
    const char *text = _lang_get_string(group, item, nullptr, 0);
    // Compares the pointers: a translation may read like its item.
    return item != nullptr && text != item ? 1 : 0;
}

std::uint64_t lang_get_ctime() { return zel::newest_handle(&lang)->ctime; }

zel_info_t *_lang_get_info(lang_handle_t *handle, zel_info_t **record, std::int32_t level,
                           std::int32_t code, const char *group, const char *activity,
                           const char *message, const char *file, int line)
{
    zel_info_t *info = record != nullptr && *record != nullptr ? *record : zel_info_new();
    if (info == nullptr)
        return nullptr;
    // The record belongs to whoever gets the answer.
    if (record != nullptr)
        *record = nullptr;
    const char *activity_text = _lang_get_str(handle, group, activity, file, line);
    const char *message_text = _lang_get_str(handle, group, message, file, line);
    zel_info_entry_t *entry =
        zel_info_entry_new(static_cast<std::uint32_t>(level), static_cast<std::uint32_t>(code),
                           group, activity_text, message_text, activity, message);
    if (entry != nullptr)
        zel_info_add_entry(info, entry);
    return info;
}
