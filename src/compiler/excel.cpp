#include "compiler/excel.h"

#include "support/misc-error.h"
#include "support/text.h"

#include <cstddef>
#include <cstring>

namespace {

constexpr std::size_t KEY_SIZE = 1024; // with the closing NUL
constexpr std::size_t OUTPUT_BUFFER = 1 << 18;

void write_cell(std::FILE *stream, const char *key)
{
    std::fputc('"', stream);
    write_str(stream, key);
    std::fputs("\"\t", stream);
}

void write_record(std::FILE *stream, const edit_t *group, const item_t *item)
{
    char key[KEY_SIZE];
    // A longer key is cut.
    if (std::snprintf(key, sizeof key, "%s.%s", zel::or_empty(group->name),
                      zel::or_empty(item->name)) < 0)
        key[0] = '\0';
    write_cell(stream, key);
    write_cell(stream, key);
    std::fputc('\r', stream);
}

} // namespace

int write_str(std::FILE *stream, const char *text)
{
    for (const char *at = zel::or_empty(text); *at != '\0';) {
        const std::size_t plain = std::strcspn(at, "\"\n\r\t");
        std::fwrite(at, 1, plain, stream);
        at += plain;
        if (*at == '"')
            std::fputs("\"\"", stream);
        else if (*at == '\t')
            std::fputc(' ', stream);
        else if (*at != '\0')
            std::fputs("\x1b :", stream);
        at += *at != '\0' ? 1 : 0;
    }
    return 0;
}

int to_excel_unicode_text(LangSource *source, const char *path, const char * /*lang*/,
                          const char * /*comment_lang*/)
{
    std::puts("to_excel_unicode_text: entry");
    std::FILE *stream = std::fopen(path, "w+");
    if (stream == nullptr) {
        std::printf("ERROR open excel unicode text file file ->%s<-\n", path);
        return 1;
    }
    std::setvbuf(stream, nullptr, _IOFBF, OUTPUT_BUFFER);
    for (const edit_t *group : zel::each<edit_t>(source->groups))
        for (const item_t *item : zel::each<item_t>(group->items))
            write_record(stream, group, item);

    errno = 0;
    const bool flushed = std::fflush(stream) == 0;
    const bool failed = !flushed || std::ferror(stream) != 0;
    const bool lost = std::fclose(stream) != 0;
    if (failed || lost) {
        const int error = errno;
        _zel_error("excel", __LINE__, "to_excel_unicode_text: the file is not complete");
        if (error != 0)
            std::fprintf(stderr, "lang: %s: %s\n", path, std::strerror(error));
    }
    std::puts("to_excel_unicode_text: exit");
    return failed || lost ? 1 : 0;
}
