#include "family/info.h"

#include "support/log-print.h"

namespace {

void log_message(const char *format, std::va_list args, void *) { vfLogPrint(1, format, args); }

zel_info_msg_cb msg_callback = log_message;
void *msg_data;

} // namespace

zel_info_t *zel_info_add(zel_info_t **info, std::uint32_t level, std::uint32_t code,
                         const char *modul, const char *activity, const char *msg,
                         const char *o_activity, const char *o_msg)
{
    if (*info == nullptr)
        *info = zel_info_new();
    if (*info == nullptr)
        return nullptr;
    auto *entry = zel_info_entry_new(level, code, modul, activity, msg, o_activity, o_msg);
    // Without memory the message is lost; the record stays usable.
    const zel_list *last = (*info)->last;
    if (zel_info_add_entry(*info, entry) != 0 || (*info)->last == last)
        return *info;
    // Of several entries with the same level the first one stays the worst.
    if (level > static_cast<std::uint32_t>((*info)->level)) {
        (*info)->level = static_cast<std::int32_t>(level);
        (*info)->code = code;
        (*info)->worst = entry;
    }
    return *info;
}

zel_info_t *zel_info_add_entry_and_move(zel_info_t **info, zel_info_entry_t *entry)
{
    if (zel_info_add_entry(*info, entry) != 0)
        zel_info_entry_free(entry);
    return zel_info_move(info);
}

void zel_info_set_internal_msg_cb(zel_info_msg_cb callback, void *data)
{
    msg_callback = callback == nullptr ? log_message : callback;
    msg_data = data;
}

void zel_info_msg(const char *format, std::va_list args) { msg_callback(format, args, msg_data); }
