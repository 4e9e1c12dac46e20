#include "config/lang-cfg-write.h"

#include "lex/lex-misc.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/string.h"

#include <cinttypes>
#include <glib.h>

namespace {

std::uint32_t low_bits(const cfg_entry_t *key)
{
    return static_cast<std::uint32_t>(*static_cast<std::uint64_t *>(key->data));
}

void write_hex(std::FILE *stream, const cfg_entry_t *key)
{
    std::fprintf(stream, "0x%08x\n", low_bits(key));
}

void write_octal(std::FILE *stream, const cfg_entry_t *key)
{
    std::fprintf(stream, "%o\n", low_bits(key));
}

void write_long(std::FILE *stream, const cfg_entry_t *key)
{
    std::fprintf(stream, "%" PRIi64 "\n", *static_cast<std::int64_t *>(key->data));
}

void write_string(std::FILE *stream, const cfg_entry_t *key)
{
    const char *text = *static_cast<char **>(key->data);
    if (text == nullptr)
        std::fputc('\n', stream);
    else
        lex_write_split_str_by_sep(stream, 0, text, '\n', 1);
}

// Six decimals and a point whatever the locale says.
void write_double(std::FILE *stream, const cfg_entry_t *key)
{
    gchar text[512];
    g_ascii_formatd(text, sizeof text, "%f", *static_cast<double *>(key->data));
    std::fprintf(stream, "%s\n", text);
}

void write_text(std::FILE *stream, const cfg_entry_t *key)
{
    std::fprintf(stream, "%s%s\n", key->negative != 0 ? "-" : "",
                 static_cast<const char *>(key->data));
}

using print_fn = void (*)(std::FILE *, const cfg_entry_t *);

// How a key of each type is written, by type; the section's row is empty.
constexpr print_fn write_value[] = {nullptr,      write_hex,    write_octal, write_long,
                                    write_string, write_double, write_text};
static_assert(std::size(write_value) == CFG_VOID + 1);

bool known_type(const cfg_entry_t *key) { return key->type >= CFG_HEX && key->type <= CFG_VOID; }

void warn_type(const cfg_entry_t *key)
{
    LogPrint(1, "_cfg_file_write: WARNING unknown entry typ %d\n", key->type);
}

// A text of the listing, on standard output and in the log: level 1 starts a line.
void list_text(int level, const char *text)
{
    std::fputs(text, stdout);
    LogPrint(level, "%s", text);
}

void list_format(int level, const char *format, ...) __attribute__((format(printf, 2, 3)));
void list_format(int level, const char *format, ...)
{
    std::va_list args;
    va_start(args, format);
    const zel::string_guard text(zel_strdup_vprintf(format, args));
    va_end(args);
    list_text(level, text ? text.get() : "");
}

void list_name(const char *format_name, const char *name)
{
    if (name != nullptr)
        list_format(1, "cfg_print_all: %s ->%s<-\n", format_name, name);
}

void list_value(const cfg_entry_t *key)
{
    switch (key->type) {
    case CFG_HEX:
        return list_format(0, "(hex)0x%08x\n", low_bits(key));
    case CFG_OCTAL:
        return list_format(0, "(octal)%o\n", low_bits(key));
    case CFG_LONG:
        return list_format(0, "%d\n", static_cast<int>(*static_cast<std::int64_t *>(key->data)));
    case CFG_STR: {
        const char *text = *static_cast<char **>(key->data);
        return list_format(0, "(str)->%s<-\n", text == nullptr ? "" : text);
    }
    case CFG_DOUBLE: {
        gchar text[512];
        g_ascii_formatd(text, sizeof text, "%f", *static_cast<double *>(key->data));
        return list_format(0, "(double)%s\n", text);
    }
    default:
        return list_format(0, "(void)->%s%s<-\n", key->negative != 0 ? "-" : "",
                           static_cast<const char *>(key->data));
    }
}

void list_key(const cfg_entry_t *key)
{
    if (key->data == nullptr)
        return;
    if (!known_type(key)) {
        list_format(1, "_cfg_file_write: WARNING unknown entry typ %d\n", key->type);
        return;
    }
    list_format(1, "cfg_print_all: %s = ", key->name);
    list_value(key);
}

void write_key(std::FILE *stream, const cfg_entry_t *key)
{
    if (key->data == nullptr)
        return;
    if (!known_type(key)) {
        warn_type(key);
        return;
    }
    std::fprintf(stream, "%s=", key->name);
    write_value[key->type](stream, key);
}

} // namespace

namespace zel {

void cfg_write_sections(std::FILE *stream, zel_list *sections)
{
    for (const zel_list *node = sections; node != nullptr; node = node->next) {
        const auto *section = static_cast<const cfg_entry_t *>(node->data);
        if (section->name[0] != '\0')
            std::fprintf(stream, "\n[%s]\n", section->name);
        for (const zel_list *key = cfg_keys(section); key != nullptr; key = key->next)
            write_key(stream, static_cast<const cfg_entry_t *>(key->data));
    }
}

void cfg_print_store(lang_cfg_t *store)
{
    store->version_key = store->version;
    list_text(1, "cfg_print_all:---------------------------------------------\n");
    list_name("tmp ", store->tmp);
    list_name("lock", store->lock);
    list_name("cfg ", store->cfg);
    list_name("name", store->name);
    list_name("path", store->path);
    if (store->file != nullptr)
        LogPrint(1, "cfg_print_all: file ->%s<-\n", store->file);
    LogPrint(1, "cfg_print_all: list\n");
    for (const zel_list *node = store->sections; node != nullptr; node = node->next) {
        const auto *section = static_cast<const cfg_entry_t *>(node->data);
        if (section->name[0] != '\0')
            list_format(1, "cfg_print_all: ------->[%s]\n", section->name);
        else
            list_text(1, "cfg_print_all: ------->File ebene\n");
        for (const zel_list *key = cfg_keys(section); key != nullptr; key = key->next)
            list_key(static_cast<const cfg_entry_t *>(key->data));
    }
    list_text(1, "cfg_print_all: exit\n");
}

} // namespace zel
