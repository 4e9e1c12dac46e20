// The scan of a file.

#include "checker/c-scan.h"

#include "app/global.h"
#include "checker/kept-scanner.h"
#include "source/item-index.h"

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr std::size_t read_size = 1 << 16;

// A message as the command prints it.
[[gnu::format(printf, 2, 3)]] void say(const zel::scan_how &how, const char *format, ...)
{
    if (how.messages == nullptr)
        return;
    std::va_list values;
    va_start(values, format);
    std::vfprintf(how.messages, format, values);
    va_end(values);
}

} // namespace

int check_c_file(LangSource *root, const char *path)
{
    zel::item_index index(root);
    if (zel::check_file(index, path, {lang_global.start_time, stdout, nullptr, nullptr}) != 0)
        lang_exit(0);
    return 0;
}

namespace zel {

zel_lex_t *new_check_scanner() { return zel_lex_new(check_words, check_flags); }

int check_file(item_index &index, const char *path, const scan_how &how)
{
    const char *shown = path == nullptr ? "(null)" : path;
    const symtab_guard symbols(symtab_new());
    say(how, "check c file >%s<\n", shown);
    kept_lex_guard lex;
    zel_lex_guard with_wrappers;
    if (how.wrappers == nullptr)
        lex = take_scanner();
    else
        // Its table has the project's own words, so nobody else can use it.
        with_wrappers.reset(how.wrappers->new_scanner());
    zel_lex_t *scanner = how.wrappers == nullptr ? lex.get() : with_wrappers.get();
    if (scanner == nullptr) {
        say(how, "ERROR(2): unable to init lexical scanner\n");
        return -1;
    }
    const zel_lex_buf_guard buffer(zel_lex_buf_file_new(path));
    if (buffer == nullptr) {
        say(how, "ERROR(3): unable to init lexical scanner\n");
        return -1;
    }
    if (zel_lex_buf_file_get_fp(buffer.get()) == nullptr) {
        say(how, "ERROR(4): unable to open file %s\n", shown);
        return -1;
    }
    // One area for all files: most are read with one call, and none allocates.
    static std::array<char, read_size> area;
    std::setvbuf(zel_lex_buf_file_get_fp(buffer.get()), area.data(), _IOFBF, area.size());
    zel_lex_set_buf(scanner, buffer.get());
    const int result = scan_tokens(index, symbols.get(), path, how, scanner);
    if (zel_lex_buf_read_failed(buffer.get()) == 0)
        return result;
    // Not all of its requests were found: their items would count as unused.
    if (how.messages != nullptr)
        std::fprintf(stderr, "check: %s cannot be read to its end: %s\n", shown,
                     std::strerror(errno));
    return -1;
}

} // namespace zel
