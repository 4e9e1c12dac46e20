#include "langlib/lang-load.h"

#include "langlib/compiled-file.h"
#include "langlib/lang-symbols.h"
#include "langlib/lang-table.h"
#include "support/dir_list.h"
#include "support/gen_path.h"
#include "support/guard.h"
#include "support/log-print.h"
#include "support/zel_malloc.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

lang_handle_t lang;

namespace {

// Messages that go to the debug print and to the log.
void say(const char *text)
{
    dbg_printf("%s", text);
    LogPrint(1, "%s", text);
}

void say_text(const char *format, const char *text) __attribute__((format(printf, 1, 0)));
void say_text(const char *format, const char *text)
{
    dbg_printf(format, text);
    LogPrint(1, format, text);
}

// ---- Entries ------------------------------------------------------------------------------------

void free_text(void *data) noexcept
{
    auto *text = static_cast<lang_text_t *>(data);
    std::free(text->key);
    std::free(text->value);
    std::free(text);
}

using text_guard = std::unique_ptr<lang_text_t, zel::release<free_text>>;

void free_entries(zel_list *entries)
{
    zel_list_free_full(entries, free_text);
}

using entries_guard = std::unique_ptr<zel_list, zel::release<free_entries>>;

// "group:name"
char *make_key(const char *group, const char *name)
{
    const std::size_t group_length = std::strlen(group);
    const std::size_t name_size = std::strlen(name) + 1;
    char *key = static_cast<char *>(std::malloc(group_length + 1 + name_size));
    if (key == nullptr)
        return nullptr;
    std::memcpy(key, group, group_length);
    key[group_length] = ':';
    std::memcpy(key + group_length + 1, name, name_size);
    return key;
}

text_guard new_text(const char *group, const char *name)
{
    text_guard text(static_cast<lang_text_t *>(std::calloc(1, sizeof(lang_text_t))));
    if (!text) {
        LogPrint(1, "_lang_load: ERROR not enough memory (entry)\n");
        return nullptr;
    }
    text->key = make_key(group, name);
    if (text->key == nullptr) {
        LogPrint(1, "_lang_load: ERROR not enough memory (name)\n");
        return nullptr;
    }
    return text;
}

// The strings of an entry, joined. Its room serves all entries of a load.
struct value_buffer {
    char *text = nullptr;
    std::size_t length = 0;
    std::size_t size = 0;

    value_buffer() = default;
    ~value_buffer() { std::free(text); }
    value_buffer(const value_buffer &) = delete;
    value_buffer &operator=(const value_buffer &) = delete;

    void append(const char *part)
    {
        const std::size_t part_length = std::strlen(part);
        if (length + part_length + 1 > size && !grow(length + part_length + 1))
            return;
        std::memcpy(text + length, part, part_length);
        length += part_length;
    }

    // A new string; null for an empty one.
    char *copy() const
    {
        char *value = length == 0 ? nullptr : static_cast<char *>(std::malloc(length + 1));
        if (value != nullptr) {
            std::memcpy(value, text, length);
            value[length] = '\0';
        }
        return value;
    }

private:
    bool grow(std::size_t needed)
    {
        const std::size_t wanted = std::max(needed + 256, size * 2);
        char *grown = static_cast<char *>(std::realloc(text, wanted));
        if (grown == nullptr) {
            LogPrint(1, "_lang_load: ERROR not enough memory (entry)\n");
            return false;
        }
        text = grown;
        size = wanted;
        return true;
    }
};

// ---- One file -----------------------------------------------------------------------------------

// What reading needs and what it leaves: statements change the handle, entries go to the list.
struct reader {
    lang_handle_t *handle;
    zel_lex_t *lex;
    zel::list_end entries;
    value_buffer value;
    zel::string_guard group; // the current group, null for none
};

enum class outcome { goes_on, ends_file };

bool is_name(const zel_token_t *token)
{
    return token->id == TOKEN_IDENT || token->id == TOKEN_STRING;
}

// LANGUAGE name
void read_language(reader &in)
{
    const zel_token_t *token = zel_next_token(in.lex);
    if (!is_name(token)) {
        LogPrint(1, "_lang_load: ERROR: line %d expected STRING\n", static_cast<int>(token->line));
        return;
    }
    zel::replace_string(in.handle->language, zel_strdup(token->lexeme));
}

// FORMAT [ASCII | UTF8]
void read_format(reader &in)
{
    const int word = zel_token_look_ahead(in.lex, 1)->id;
    if (word != zel::KEY_ASCII && word != zel::KEY_UTF8)
        return;
    zel_next_token(in.lex);
    in.handle->format = word == zel::KEY_ASCII ? LANG_FORMAT_ASCII : LANG_FORMAT_UTF8;
}

// GROUP name
void read_group(reader &in)
{
    const zel_token_t *token = zel_next_token(in.lex);
    if (!is_name(token)) {
        const int line = static_cast<int>(token->line);
        dbg_printf("_lang_load: ERROR: line %d expected STRING\n", line);
        LogPrint(1, "_lang_load: ERROR: line %d expected STRING\n", line);
        return;
    }
    in.group.reset(zel_strdup(token->lexeme));
}

// CTIME seconds, SRC_MTIME seconds
void read_ctime(reader &in)
{
    const zel_token_t *token = zel_token_look_ahead(in.lex, 1);
    if (token->id != TOKEN_NUMBER && token->id != TOKEN_DEC) {
        LogPrint(1, "_lang_load: ERROR: id(%d) line %d expected NUMERIC\n", token->id,
                 static_cast<int>(token->line));
        return;
    }
    unsigned seconds = 0;
    if (std::sscanf(zel_next_token(in.lex)->lexeme, "%u", &seconds) == 1)
        in.handle->ctime = seconds;
}

// "12:", which the compiler puts first on request.
bool is_position(const char *text)
{
    const std::size_t length = std::strlen(text);
    return length >= 2 && text[length - 1] == ':';
}

// { [DEFAULT] "text" ... }, behind the brace that opens it
outcome read_body(reader &in, lang_text_t *text)
{
    in.value.length = 0;
    bool first = true;
    for (;;) {
        const zel_token_t *token = zel_next_token(in.lex);
        const int line = static_cast<int>(token->line);
        switch (token->id) {
        case TOKEN_STRING:
            if (!first || in.handle->posnr != 1 || !is_position(token->lexeme))
                in.value.append(token->lexeme);
            first = false;
            break;
        case zel::KEY_DEFAULT:
            text->is_default = 1;
            break;
        case '}':
            text->value = in.value.copy();
            return outcome::goes_on;
        case TOKEN_EOF:
            LogPrint(1, "_lang_load: ERROR: line %d unexpected end of file\n", line);
            return outcome::ends_file;
        default:
            LogPrint(1, "_lang_load: ERROR: line %d string expected (%d)\n", line, token->id);
            return outcome::ends_file;
        }
    }
}

// name { ... }, from its name on
outcome read_entry(reader &in, const zel_token_t *name)
{
    if (!in.group) {
        say("_lang_load: ERROR in language file missing group\n");
        if (name->lexeme[0] != '\0')
            say_text("_lang_load: token->lexeme >%s<\n", name->lexeme);
        return outcome::goes_on;
    }
    text_guard text = new_text(in.group.get(), name->lexeme);
    if (!text)
        return outcome::ends_file;
    const zel_token_t *brace = zel_next_token(in.lex);
    if (brace->id != '{') {
        LogPrint(1, "_lang_load: ERROR: line %d '%c' expected (%d)\n",
                 static_cast<int>(brace->line), '{', brace->id);
        return outcome::ends_file;
    }
    if (read_body(in, text.get()) == outcome::ends_file)
        return outcome::ends_file;
    if (in.entries.append(text.get()))
        static_cast<void>(text.release());
    return outcome::goes_on;
}

outcome read_statement(reader &in, const zel_token_t *token)
{
    switch (token->id) {
    case zel::KEY_LANGUAGE:
        read_language(in);
        break;
    case zel::KEY_FORMAT:
        read_format(in);
        break;
    case zel::KEY_GROUP:
        read_group(in);
        break;
    case zel::KEY_POSNR:
        in.handle->posnr = in.handle->import_mode != 0 ? 1 : 0;
        break;
    case zel::KEY_CTIME:
    case zel::KEY_SRC_MTIME:
        read_ctime(in);
        break;
    case TOKEN_IDENT:
    case TOKEN_STRING:
        return read_entry(in, token);
    default:
        LogPrint(1, "_lang_load: ERROR line %d illegal token %d\n", static_cast<int>(token->line),
                 token->id);
    }
    return outcome::goes_on;
}

void read_file(reader &in, const char *path)
{
    LogPrint(1, "_lang_load: open file ->%s<-\n", path);
    zel_lex_buf_t *buf = zel_lex_buf_file_new(path);
    if (buf == nullptr) {
        LogPrint(1, "_lang_load: ERROR open file ->%s<-\n", path);
        return;
    }
    if (zel_lex_buf_file_get_fp(buf) == nullptr) {
        LogPrint(1, "_lang_load: INFO(1) open file ->%s<-\n", path);
        zel_lex_buf_free(buf);
        return;
    }
    zel_lex_set_buf(in.lex, buf);
    in.group.reset();
    for (;;) {
        const zel_token_t *token = zel_next_token(in.lex);
        if (token->id == TOKEN_EOF) {
            zel_lex_free_buf(in.lex);
            LogPrint(1, "_lang_load: close file ->%s<-\n", path);
            return;
        }
        if (read_statement(in, token) == outcome::ends_file) {
            zel_lex_free_buf(in.lex);
            return;
        }
    }
}

// ---- Files and directories ----------------------------------------------------------------------

bool is_directory(const char *path)
{
    struct stat status;
    return zel_stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

using dir_list_guard = std::unique_ptr<zel_list, zel::release<dir_list_free>>;

// False when the directory holds no compiled file.
bool read_directory(reader &in, const char *path)
{
    constexpr std::size_t path_size = 2048;
    LogPrint(1, "_lang_load: read dir >%s<\n", path);
    const dir_list_guard names(dir_list(nullptr, path, zel::compiled_ending));
    if (!names) {
        LogPrint(1, "_lang_load: ERROR language list null ptr\n");
        return false;
    }
    for (zel_list *name = names.get(); name != nullptr; name = name->next) {
        char file[path_size];
        if (gen_path_ext(file, 0, sizeof file, path, dir_list_file(name), nullptr) == 0)
            read_file(in, file);
        else
            LogPrint(1, "_lang_load: ERROR open file ->%s/%s<-\n", path, dir_list_file(name));
    }
    return true;
}

// All entries of the file or of the directory's files; null, logged, when there are none.
entries_guard read_path(lang_handle_t *handle, zel_lex_t *lex, const char *path)
{
    reader in{handle, lex, zel::list_end(nullptr), {}, {}};
    if (is_directory(path)) {
        if (!read_directory(in, path))
            return nullptr;
    } else {
        LogPrint(1, "_lang_load: read file >%s<\n", path);
        read_file(in, path);
    }
    if (in.entries.head == nullptr)
        LogPrint(1, "_lang_load: ERROR language list null ptr\n");
    return entries_guard(in.entries.head);
}

void free_table_and_entries(lang_handle_t *handle)
{
    zel::lang_table_free(handle);
    free_entries(handle->entries);
    handle->entries = nullptr;
}

} // namespace

zel_list *_lang_load_parse_file(lang_handle_t *handle, zel_list *list, zel_lex_t *lex,
                                const char *path)
{
    reader in{handle, lex, zel::list_end(list), {}, {}};
    read_file(in, path);
    return in.entries.head;
}

int _lang_load(lang_handle_t *handle, const char *path)
{
    if (handle == nullptr)
        handle = &lang;
    zel::lang_symbols_make();
    handle->loaded = 0;
    if (path == nullptr) {
        say("_lang_load: entry no file name given > exit\n");
        return 1;
    }
    LogPrint(1, "_lang_load: entry file >%s<\n", path);
    zel_lex_guard lex(zel_lex_new(zel::compiled_keywords, LEX_NUMBER_ONE_KIND | LEX_KEYWORD_NOCASE |
                                                              LEX_ESCAPES | LEX_NEWLINE_SPACE));
    if (!lex) {
        LogPrint(1, "_lang_load: ERROR not enough memory\n");
        return -1;
    }
    entries_guard entries = read_path(handle, lex.get(), path);
    lex.reset();
    if (!entries)
        return -1;

    lang_handle_t built{};
    if (zel::lang_table_build(&built, entries.get()) != 0) {
        LogPrint(1, "_lang_load: ERROR not enough memory (entry)\n");
        return -1;
    }
    free_table_and_entries(handle);
    handle->entries = entries.release();
    handle->lang = built.lang;
    handle->index = built.index;
    handle->count = built.count;
    handle->loaded = 1;
    LogPrint(1, "_lang_load: exit OK\n");
    return 0;
}

int lang_load_file(const char *path)
{
    return _lang_load(&lang, path);
}

lang_handle_t *_lang_new(const char *path, std::int32_t import_mode)
{
    if (path == nullptr) {
        say("_lang_new: ERROR: no file name given\n");
        return nullptr;
    }
    auto *handle = static_cast<lang_handle_t *>(std::calloc(1, sizeof(lang_handle_t)));
    if (handle == nullptr) {
        say("_lang_new: ERROR: not enough memory\n");
        return nullptr;
    }
    handle->import_mode = import_mode;
    if (_lang_load(handle, path) < 0)
        say("_lang_new: ERROR: not enough memory\n");
    else
        handle->loaded = 1;
    return handle;
}

lang_handle_t *lang_new(const char *path)
{
    return _lang_new(path, 0);
}

lang_handle_t *lang_import_new(const char *path)
{
    return _lang_new(path, 1);
}

void lang_free(lang_handle_t *handle, int free_handle)
{
    if (handle != nullptr) {
        free_table_and_entries(handle);
        handle->loaded = 0;
        if (free_handle != 0) {
            std::free(handle->language);
            std::free(handle);
        }
    }
    zel::lang_symbols_drop();
}

void lang_de_init()
{
    lang_free(&lang, 0);
    std::free(lang.language);
    lang = {};
}

void lang_ref_inc(lang_handle_t *handle)
{
    if (handle != nullptr)
        ++handle->ref_count;
}

void lang_ref_dec(lang_handle_t *handle)
{
    if (handle != nullptr)
        --handle->ref_count;
}
