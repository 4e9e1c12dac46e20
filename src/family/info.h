#pragma once

// Info records, as in support/info.h: what only other applications of the family call.

#include <cstdarg>

#include "support/info.h"

// Makes an entry and adds it to the record, which is made when the pointer is null; level, code
// and worst of the record follow a level that is higher, both taken as unsigned. Returns the
// record, without memory as it was.
zel_info_t *zel_info_add(zel_info_t **info, std::uint32_t level, std::uint32_t code,
                         const char *modul, const char *activity, const char *msg,
                         const char *o_activity, const char *o_msg);

// Appends an entry (where there is no record it is released) and hands the record over as
// zel_info_move does.
[[nodiscard]] zel_info_t *zel_info_add_entry_and_move(zel_info_t **info, zel_info_entry_t *entry);

// Where internal messages go: a function that is called with a format, its arguments and the data
// stored with it. Null restores the first one, which logs them.
using zel_info_msg_cb = void (*)(const char *format, std::va_list args, void *data);
void zel_info_set_internal_msg_cb(zel_info_msg_cb callback, void *data);
void zel_info_msg(const char *format, std::va_list args) __attribute__((format(printf, 1, 0)));
