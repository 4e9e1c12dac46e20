#include "compiler/excel.h"

#include "support/misc-error.h"
#include "support/safe-file.h"
#include "support/text.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <string>

namespace {

constexpr std::size_t KEY_SIZE = 1024; // with the closing NUL

void append_escaped(std::string &out, const char *text)
{
    for (const char *at = text; *at != '\0';) {
        const std::size_t plain = std::strcspn(at, "\"\n\r\t");
        out.append(at, plain);
        at += plain;
        if (*at == '"')
            out += "\"\"";
        else if (*at == '\t')
            out += ' ';
        else if (*at != '\0')
            out += "\x1b :";
        at += *at != '\0' ? 1 : 0;
    }
}

void append_cell(std::string &out, const char *key)
{
    out += '"';
    append_escaped(out, key);
    out += "\"\t";
}

void append_record(std::string &out, const edit_t *group, const item_t *item)
{
    std::array<char, KEY_SIZE> key;
    // A longer key is cut.
    if (std::snprintf(key.data(), key.size(), "%s.%s", zel::or_empty(group->name),
                      zel::or_empty(item->name)) < 0)
        key[0] = '\0';
    append_cell(out, key.data());
    append_cell(out, key.data());
    out += '\r';
}

// Null when the file can be made, else why not.
const char *create(zel::safe_file &file, const zel::target_file &old)
{
    if (old.refusal != 0)
        return zel::refusal_text(old.refusal);
    int error = zel::write_obstacle(old);
    if (error == 0)
        error = file.create_beside(old);
    return error == 0 ? nullptr : std::strerror(error);
}

// 0 or errno.
int write_records(zel::safe_file &file, const LangSource *source)
{
    constexpr std::size_t worth_a_write = 256 * 1024;
    std::string out;
    for (const edit_t *group : zel::each<edit_t>(source->groups)) {
        for (const item_t *item : zel::each<item_t>(group->items)) {
            append_record(out, group, item);
            if (out.size() < worth_a_write)
                continue;
            file.append(out);
            out.clear();
        }
    }
    file.append(out);
    return file.finish(zel::synced::no);
}

} // namespace

int write_str(std::FILE *stream, const char *text)
{
    std::string out;
    append_escaped(out, zel::or_empty(text));
    std::fwrite(out.data(), 1, out.size(), stream);
    return 0;
}

int to_excel_unicode_text(LangSource *source, const char *path, const char * /*lang*/,
                          const char * /*comment_lang*/)
{
    std::puts("to_excel_unicode_text: entry");
    const zel::target_file old = zel::find_target(path, zel::links::follow);
    zel::safe_file file;
    if (const char *cause = create(file, old)) {
        std::printf("ERROR open excel unicode text file file ->%s<-\n", path);
        std::fprintf(stderr, "lang: %s: %s\n", path, cause);
        return 1;
    }
    int error = write_records(file, source);
    if (error == 0)
        error = file.put(old);
    if (error != 0) {
        _zel_error("excel", __LINE__, "to_excel_unicode_text: the file is not complete");
        std::fprintf(stderr, "lang: %s: %s\n", path, std::strerror(error));
    }
    std::puts("to_excel_unicode_text: exit");
    return error == 0 ? 0 : 1;
}
