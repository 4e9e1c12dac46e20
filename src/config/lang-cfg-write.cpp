#include "config/lang-cfg-write.h"

#include "lex/lex-misc.h"
#include "support/log-print.h"

#include <algorithm>
#include <cinttypes>
#include <glib.h>
#include <string_view>

namespace {

std::uint32_t low_bits(const cfg_entry_t *key)
{
    // Both formats show 32 bits, whatever the variable holds.
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

// Writes six decimals, with a decimal point in every locale.
void write_double(std::FILE *stream, const cfg_entry_t *key)
{
    // The largest number has 309 digits before the point.
    gchar text[512];
    g_ascii_formatd(text, sizeof text, "%f", *static_cast<double *>(key->data));
    std::fprintf(stream, "%s\n", text);
}

// Whether the reader returns this text unchanged when it stands without quotes. Behind a minus sign
// it may begin with more of them. In step with scan_word, skip_blanks and scan_token in
// lang-cfg-read.cpp.
bool reads_back(std::string_view text, bool behind_sign)
{
    if (text.find_first_of("=\"\\\n") != std::string_view::npos)
        return false;
    if (behind_sign)
        text.remove_prefix(std::min(text.find_first_not_of('-'), text.size()));
    constexpr std::string_view not_first = ";[- \t";
    constexpr std::string_view not_last = " \t";
    return !text.empty() && not_first.find(text.front()) == std::string_view::npos &&
           not_last.find(text.back()) == std::string_view::npos;
}

// Writes a word so that the reader returns it unchanged: in quotes where it must be.
void write_word(std::FILE *stream, const char *text, bool behind_sign)
{
    if (reads_back(text, behind_sign)) {
        std::fputs(text, stream);
        return;
    }
    std::fputc('"', stream);
    for (; *text != '\0'; ++text) {
        if (*text == '"' || *text == '\\')
            std::fputc('\\', stream);
        std::fputc(*text, stream);
    }
    std::fputc('"', stream);
}

void write_text(std::FILE *stream, const cfg_entry_t *key)
{
    // The reader keeps the sign apart from the text (read_value in lang-cfg-read.cpp).
    if (key->negative != 0)
        std::fputc('-', stream);
    write_word(stream, static_cast<const char *>(key->data), key->negative != 0);
    std::fputc('\n', stream);
}

using print_fn = void (*)(std::FILE *, const cfg_entry_t *);

// Writer of each type of key; the section's row is empty.
constexpr print_fn write_value[] = {nullptr,      write_hex,    write_octal, write_long,
                                    write_string, write_double, write_text};
static_assert(std::size(write_value) == CFG_VOID + 1);

bool known_type(const cfg_entry_t *key) { return key->type >= CFG_HEX && key->type <= CFG_VOID; }

void warn_type(const cfg_entry_t *key)
{
    LogPrint(1, "_cfg_file_write: WARNING unknown entry typ %d\n", key->type);
}

void list_name(const char *format_name, const char *name)
{
    if (name != nullptr)
        zel::print_and_log(1, "cfg_print_all: %s ->%s<-\n", format_name, name);
}

void list_value(const cfg_entry_t *key)
{
    switch (key->type) {
    case CFG_HEX:
        return zel::print_and_log(0, "(hex)0x%08x\n", low_bits(key));
    case CFG_OCTAL:
        return zel::print_and_log(0, "(octal)%o\n", low_bits(key));
    case CFG_LONG:
        return zel::print_and_log(0, "%d\n",
                                  static_cast<int>(*static_cast<std::int64_t *>(key->data)));
    case CFG_STR: {
        const char *text = *static_cast<char **>(key->data);
        return zel::print_and_log(0, "(str)->%s<-\n", text == nullptr ? "" : text);
    }
    case CFG_DOUBLE: {
        gchar text[512];
        g_ascii_formatd(text, sizeof text, "%f", *static_cast<double *>(key->data));
        return zel::print_and_log(0, "(double)%s\n", text);
    }
    default:
        return zel::print_and_log(0, "(void)->%s%s<-\n", key->negative != 0 ? "-" : "",
                                  static_cast<const char *>(key->data));
    }
}

void list_key(const cfg_entry_t *key)
{
    if (key->data == nullptr)
        return;
    if (!known_type(key)) {
        zel::print_and_log(1, "_cfg_file_write: WARNING unknown entry typ %d\n", key->type);
        return;
    }
    zel::print_and_log(1, "cfg_print_all: %s = ", key->name);
    list_value(key);
}

void write_key(std::FILE *stream, const cfg_entry_t *key)
{
    // The file named the key without a value, or nobody has given it one.
    if (key->data == nullptr)
        return;
    if (!known_type(key)) {
        warn_type(key);
        return;
    }
    write_word(stream, key->name, false);
    std::fputc('=', stream);
    write_value[key->type](stream, key);
}

} // namespace

namespace zel {

void cfg_write_sections(std::FILE *stream, zel_list *sections)
{
    for (const zel_list *node = sections; node != nullptr; node = node->next) {
        const auto *section = static_cast<const cfg_entry_t *>(node->data);
        // The section without a name comes first, since lang_cfg_new makes it: its keys must stand
        // above the first heading, or they would be read as that section's.
        if (section->name[0] != '\0')
            std::fprintf(stream, "\n[%s]\n", section->name);
        for (const zel_list *key = cfg_keys(section); key != nullptr; key = key->next)
            write_key(stream, static_cast<const cfg_entry_t *>(key->data));
    }
}

void cfg_print_store(lang_cfg_t *store)
{
    store->version_key = store->version;
    zel::print_and_log(1, "cfg_print_all:---------------------------------------------\n");
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
            zel::print_and_log(1, "cfg_print_all: ------->[%s]\n", section->name);
        else
            // The mixed languages are deliberate: the text is an interface.
            zel::print_and_log(1, "cfg_print_all: ------->File ebene\n");
        for (const zel_list *key = cfg_keys(section); key != nullptr; key = key->next)
            list_key(static_cast<const cfg_entry_t *>(key->data));
    }
    zel::print_and_log(1, "cfg_print_all: exit\n");
}

} // namespace zel
