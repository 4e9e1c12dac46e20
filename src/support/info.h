#pragma once

// Info records: the messages that an activity collects, and the worst of them. For applications of
// the family: of this program only the runtime library makes some, when it is asked to.

#include <cstdint>
#include <cstdio>
#include <memory>

#include "support/guard.h"
#include "support/list.h"

// One message. The strings are copies owned by the entry, "unknown" when not given.
struct zel_info_entry_t {
    std::uint32_t level;
    std::uint32_t code;
    char *modul;
    char *activity;
    char *msg;
    char *o_activity; // activity and message as the translator sees them
    char *o_msg;
};

struct zel_info_t {
    std::int32_t level;      // highest level added so far, 0 at first
    std::uint32_t code;      // code of that entry
    zel_info_entry_t *worst; // that entry, one of the list; null while none is above level 0
    zel_list *entries;       // of zel_info_entry_t, owned, in the order of adding
    zel_list *last;          // the node that was appended last; the record's own
};

// Null without memory, also when only one of the strings finds none.
[[nodiscard]] zel_info_t *zel_info_new();
[[nodiscard]] zel_info_entry_t *zel_info_entry_new(std::uint32_t level, std::uint32_t code,
                                                   const char *modul, const char *activity,
                                                   const char *msg, const char *o_activity,
                                                   const char *o_msg);

// Appends an entry, which the record owns from then on (without memory it is released, after a
// fatal error's report): 0, or 1 for a null record (or entry). Level and worst stay as they are.
int zel_info_add_entry(zel_info_t *info, zel_info_entry_t *entry);

// Hands the record over: the caller's pointer becomes null, the record is the result.
[[nodiscard]] zel_info_t *zel_info_move(zel_info_t **info);

// Activity, modul and message of each entry to the stream; everything of each entry to the log.
extern "C" void zel_info_fprint(std::FILE *stream, const zel_info_t *info);
void zel_info_log_print(const zel_info_t *info);

// Empties the record.
void zel_info_cleanup(zel_info_t *info);

void zel_info_entry_free(zel_info_entry_t *entry);

// Logs the record and releases it with its entries.
extern "C" void zel_info_free(zel_info_t *info);
using zel_info_guard = std::unique_ptr<zel_info_t, zel::release<zel_info_free>>;
