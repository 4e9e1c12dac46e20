#include "support/info.h"

#include "support/log-print.h"
#include "support/string-copy.h"

#include <cstdlib>

namespace {

char *text_or_unknown(const char *text) { return zel_strdup2(text == nullptr ? "unknown" : text); }

template <class Function>
void each_entry(const zel_info_t *info, Function &&function)
{
    for (const zel_list *node = info == nullptr ? nullptr : info->entries; node != nullptr;
         node = node->next)
        function(*static_cast<const zel_info_entry_t *>(node->data));
}

bool is_whole(const zel_info_entry_t &entry)
{
    return entry.modul != nullptr && entry.activity != nullptr && entry.msg != nullptr &&
           entry.o_activity != nullptr && entry.o_msg != nullptr;
}

void free_entry(void *entry) { zel_info_entry_free(static_cast<zel_info_entry_t *>(entry)); }

} // namespace

zel_info_t *zel_info_new() { return static_cast<zel_info_t *>(std::calloc(1, sizeof(zel_info_t))); }

zel_info_entry_t *zel_info_entry_new(std::uint32_t level, std::uint32_t code, const char *modul,
                                     const char *activity, const char *msg, const char *o_activity,
                                     const char *o_msg)
{
    auto *entry = static_cast<zel_info_entry_t *>(std::calloc(1, sizeof(zel_info_entry_t)));
    if (entry == nullptr)
        return nullptr;
    entry->level = level;
    entry->code = code;
    entry->modul = text_or_unknown(modul);
    entry->activity = text_or_unknown(activity);
    entry->msg = text_or_unknown(msg);
    entry->o_activity = text_or_unknown(o_activity);
    entry->o_msg = text_or_unknown(o_msg);
    if (is_whole(*entry))
        return entry;
    zel_info_entry_free(entry);
    return nullptr;
}

int zel_info_add_entry(zel_info_t *info, zel_info_entry_t *entry)
{
    if (info == nullptr || entry == nullptr)
        return 1;
    zel::list_end end(info->entries, info->last);
    // 0 even without memory: the caller would release the entry again.
    if (!end.append(entry))
        zel_info_entry_free(entry);
    info->entries = end.head;
    info->last = end.last;
    return 0;
}

zel_info_t *zel_info_move(zel_info_t **info)
{
    zel_info_t *moved = *info;
    *info = nullptr;
    return moved;
}

void zel_info_fprint(std::FILE *stream, const zel_info_t *info)
{
    each_entry(info, [stream](const zel_info_entry_t &entry) {
        std::fprintf(stream, "activity: %s\n", entry.activity);
        std::fprintf(stream, "modul   : %s\n", entry.modul);
        std::fprintf(stream, "msg     : %s\n", entry.msg);
        std::fputs("\n\n", stream);
    });
}

void zel_info_log_print(const zel_info_t *info)
{
    LogPrint(1, "zel_info_log_print: start ----------------\n");
    each_entry(info, [](const zel_info_entry_t &entry) {
        LogPrint(1, "modul     : %s\n", entry.modul);
        LogPrint(1, "activity  : %s\n", entry.activity);
        LogPrint(1, "msg       : %s\n", entry.msg);
        LogPrint(1, "o_activity: %s\n", entry.o_activity);
        LogPrint(1, "o_msg     : %s\n", entry.o_msg);
        LogPrint(1, "\n\n");
    });
    LogPrint(1, "zel_info_log_print: end   ----------------\n");
}

void zel_info_cleanup(zel_info_t *info)
{
    if (info == nullptr)
        return;
    zel_list_free_full(info->entries, free_entry);
    *info = {};
}

void zel_info_entry_free(zel_info_entry_t *entry)
{
    if (entry == nullptr)
        return;
    std::free(entry->modul);
    std::free(entry->activity);
    std::free(entry->msg);
    std::free(entry->o_activity);
    std::free(entry->o_msg);
    std::free(entry);
}

void zel_info_free(zel_info_t *info)
{
    if (info == nullptr)
        return;
    // Whether anybody printed them or not, the messages are in the log.
    zel_info_log_print(info);
    zel_info_cleanup(info);
    std::free(info);
}
