#include "langlib/lang-load.h"

#include "langlib/compiled-file.h"
#include "langlib/form-store.h"
#include "langlib/lang-symbols.h"
#include "langlib/lang-table.h"
#include "langlib/lang-trace.h"
#include "langlib/lang-watch.h"
#include "langlib/plural-rule.h"
#include "support/dir_list.h"
#include "support/file-call.h"
#include "support/gen_path.h"
#include "support/growing-text.h"
#include "support/guard.h"
#include "support/log-print.h"
#include "support/string-copy.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

// Prints a message for debugging and writes it to the log.
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

// Key and value of the entry that is being read, one behind the other. The key's group stays from
// entry to entry, the memory from file to file.
class entry_text {
public:
    // Null or empty means no group. False without memory.
    bool set_group(const char *group)
    {
        text_.cut(0);
        group_end_ = 0;
        if (group == nullptr || *group == '\0')
            return true;
        if (!text_.append(group) || !text_.append(":"))
            return false;
        group_end_ = text_.length();
        return true;
    }
    bool has_group() const { return group_end_ != 0; }

    // Begins an entry with its key. False without memory.
    bool start(const char *name)
    {
        constexpr std::string_view nul("\0\0", 2); // behind the key, and the value's mark
        text_.cut(group_end_);
        is_default = 0;
        if (!text_.append(name) || !text_.append(nul))
            return false;
        value_ = text_.length();
        return true;
    }

    // Adds to the value; false without memory.
    bool append(const char *part) { return text_.append(part); }

    // Makes a new entry in the store; null without memory.
    zel::lang_entry *make(lang_index *store) const
    {
        const std::size_t length = text_.length();
        const char *value = text_.data() + value_;
        const bool forms = std::memchr(value, zel::plural_sign, length - value_) != nullptr;
        const std::size_t copy = forms ? length + 1 - value_ : 0;
        auto *entry = static_cast<zel::lang_entry *>(
            zel::lang_store_allocate(store, sizeof(zel::lang_entry) + length + 1 + copy));
        if (entry == nullptr)
            return nullptr;
        char *strings = reinterpret_cast<char *>(entry + 1);
        std::memcpy(strings, text_.data(), length + 1);
        // rule_for in lang-plural looks for the mark just before the value.
        strings[value_ - 1] = is_default == 0 ? '\0' : zel::stand_in_mark;
        entry->text.is_default = is_default;
        entry->text.key = strings;
        entry->text.value = length == value_ ? nullptr : strings + value_;
        entry->hash = zel::lang_key_hash(zel::lang_key(strings));
        entry->state = value_ - 2 > zel::lang_key::limit ? zel::key_too_long : 0;
        std::replace_copy(strings + value_, strings + value_ + copy, strings + length + 1,
                          zel::plural_sign, '\0');
        return entry;
    }

    std::int32_t is_default = 0;

private:
    zel::growing_text text_;
    std::size_t group_end_ = 0; // behind the colon; 0 for no group
    std::size_t value_ = 0;     // where it starts
};

// What reading needs and what it leaves behind: statements change the handle, entries go to the
// list.
struct reader {
    lang_handle_t *handle;
    zel_lex_t *lex;
    zel::list_end entries;
    entry_text text;
    zel::lang_store_guard store; // holds the entries
};

enum class outcome { goes_on, ends_file };

outcome without_memory(const char *what)
{
    LogPrint(1, "_lang_load: ERROR not enough memory (%s)\n", what);
    return outcome::ends_file;
}

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
outcome read_group(reader &in)
{
    const zel_token_t *token = zel_next_token(in.lex);
    if (!is_name(token)) {
        const int line = static_cast<int>(token->line);
        dbg_printf("_lang_load: ERROR: line %d expected STRING\n", line);
        LogPrint(1, "_lang_load: ERROR: line %d expected STRING\n", line);
        return outcome::goes_on;
    }
    return in.text.set_group(token->lexeme) ? outcome::goes_on : without_memory("name");
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
    in.handle->ctime =
        static_cast<std::uint32_t>(std::strtoull(zel_next_token(in.lex)->lexeme, nullptr, 10));
}

// "12:", which the compiler puts first when it is asked for positions.
bool is_position(const char *text)
{
    const std::size_t length = std::strlen(text);
    return length >= 2 && text[length - 1] == ':';
}

// { [DEFAULT] "text" ... }, behind the brace that opens it
outcome read_body(reader &in)
{
    for (bool first = true;;) {
        const zel_token_t *token = zel_next_token(in.lex);
        const int line = static_cast<int>(token->line);
        switch (token->id) {
        case TOKEN_STRING:
            // Only the first string may be a position: another one that looks like it is a text.
            if (!(first && in.handle->posnr == 1 && is_position(token->lexeme)) &&
                !in.text.append(token->lexeme))
                return without_memory("entry");
            first = false;
            break;
        case zel::KEY_DEFAULT:
            in.text.is_default = 1;
            break;
        case '}':
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
    if (!in.text.has_group()) {
        say("_lang_load: ERROR in language file missing group\n");
        if (name->lexeme[0] != '\0')
            say_text("_lang_load: token->lexeme >%s<\n", name->lexeme);
        return outcome::goes_on;
    }
    if (!in.text.start(name->lexeme))
        return without_memory("name");
    const zel_token_t *brace = zel_next_token(in.lex);
    if (brace->id != '{') {
        LogPrint(1, "_lang_load: ERROR: line %d '%c' expected (%d)\n",
                 static_cast<int>(brace->line), '{', brace->id);
        return outcome::ends_file;
    }
    if (read_body(in) == outcome::ends_file)
        return outcome::ends_file;
    zel::lang_entry *entry = in.text.make(in.store.get());
    return entry != nullptr && in.entries.append(entry) ? outcome::goes_on
                                                        : without_memory("entry");
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
        return read_group(in);
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

// Call at the end of a file, which may have come too early.
void log_end(const reader &in, const char *path)
{
    if (zel_lex_buf_read_failed(zel_lex_get_buf(in.lex)) != 0)
        LogPrint(1, "_lang_load: ERROR read file ->%s<-\n", path);
    if (zel_lex_open_comment(in.lex) != 0)
        LogPrint(1, "_lang_load: WARNING file ->%s<- ends inside a comment, it may have been cut\n",
                 path);
    LogPrint(1, "_lang_load: close file ->%s<-\n", path);
}

void read_buffer(reader &in, zel_lex_buf_t *buf, const char *path)
{
    zel_lex_set_buf(in.lex, buf);
    // The group of the file before does not reach into this one.
    in.text.set_group(nullptr);
    outcome result = outcome::goes_on;
    const zel_token_t *token = zel_next_token(in.lex);
    while (token->id != TOKEN_EOF && result == outcome::goes_on) {
        result = read_statement(in, token);
        if (result == outcome::goes_on)
            token = zel_next_token(in.lex);
    }
    if (result == outcome::goes_on)
        log_end(in, path);
    zel_lex_free_buf(in.lex);
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
    read_buffer(in, buf, path);
}

void read_memory(reader &in, const char *name, std::string_view data)
{
    LogPrint(1, "_lang_load: read memory >%s<\n", name);
    zel_lex_buf_t *buf = zel_lex_buf_mem_new(data.data(), static_cast<std::uint32_t>(data.size()));
    if (buf == nullptr)
        LogPrint(1, "_lang_load: ERROR not enough memory\n");
    else
        read_buffer(in, buf, name);
}

// Returns the kind of file, or 0 when there is no such file.
mode_t kind_of(const char *path)
{
    struct stat status;
    return zel_stat(path, &status) == 0 ? status.st_mode & S_IFMT : 0;
}

// Reading a pipe or a device in a directory of texts might never end.
bool may_be_endless(const char *path)
{
    const mode_t kind = kind_of(path);
    return kind == S_IFIFO || kind == S_IFCHR || kind == S_IFBLK || kind == S_IFSOCK;
}

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
        // A path that does not fit is not read: once cut, it would name another file.
        if (gen_path_ext(file, 0, sizeof file, path, dir_list_file(name), nullptr) == 0 &&
            !may_be_endless(file))
            read_file(in, file);
        else
            LogPrint(1, "_lang_load: ERROR open file ->%s/%s<-\n", path, dir_list_file(name));
    }
    return true;
}

// Reads the data, or where it has no address the file or the directory's files. False, logged, when
// that gives no entry.
bool read_path(reader &in, const char *path, std::string_view data)
{
    if (data.data() != nullptr) {
        read_memory(in, path, data);
    } else if (kind_of(path) == S_IFDIR) {
        if (!read_directory(in, path))
            return false;
    } else {
        LogPrint(1, "_lang_load: read file >%s<\n", path);
        read_file(in, path);
    }
    if (in.entries.head == nullptr)
        LogPrint(1, "_lang_load: ERROR language list null ptr\n");
    return in.entries.head != nullptr;
}

// Frees the handles that a chain owns. Their stores are emptied one by one, so that no chain,
// however long, makes the recursion deep.
void free_chain(lang_index *store)
{
    while (store != nullptr && zel::link_of(store).owns_next) {
        lang_handle_t *handle = zel::link_of(store).next;
        zel::link_of(store).owns_next = false;
        lang_index *rest = handle->index;
        if (rest != nullptr) {
            zel::link_of(store).next = zel::link_of(rest).next;
            zel::link_of(store).owns_next = zel::link_of(rest).owns_next;
            zel::link_of(rest).owns_next = false;
        }
        zel_list_free(handle->entries);
        zel::lang_store_free(rest);
        std::free(handle->language);
        std::free(handle);
    }
}

void free_table_and_entries(lang_handle_t *handle)
{
    free_chain(handle->index);
    zel_list_free(handle->entries);
    zel::lang_store_free(handle->index);
    handle->entries = nullptr;
    handle->index = nullptr;
    handle->lang = nullptr;
    handle->count = 0;
}

} // namespace

zel_list *_lang_load_parse_file(lang_handle_t *handle, zel_list *list, zel_lex_t *lex,
                                const char *path)
{
    if (handle->index == nullptr)
        handle->index = zel::lang_store_new();
    if (handle->index == nullptr) {
        LogPrint(1, "_lang_load: ERROR not enough memory (entry)\n");
        return list;
    }
    reader in{handle, lex, zel::list_end(list), {}, zel::lang_store_guard(handle->index)};
    read_file(in, path);
    static_cast<void>(in.store.release()); // it stays the handle's
    return in.entries.head;
}

namespace {

int load_from(lang_handle_t *handle, const char *path, std::string_view data)
{
    zel::lang_symbols_make();
    if (handle->import_mode == 0)
        zel::trace_begin();
    // From here on requests get their items, and so they do after a failure.
    handle->loaded = 0;
    if (path == nullptr) {
        say("_lang_load: entry no file name given > exit\n");
        return 1;
    }
    LogPrint(1, "_lang_load: entry file >%s<\n", path);
    zel_lex_guard lex(zel_lex_new(zel::compiled_keywords, LEX_NUMBER_ONE_KIND | LEX_KEYWORD_NOCASE |
                                                              LEX_ESCAPES | LEX_NEWLINE_SPACE));
    reader in{handle,
              lex.get(),
              zel::list_end(nullptr),
              {},
              zel::lang_store_guard(zel::lang_store_new())};
    if (!lex || !in.store) {
        LogPrint(1, "_lang_load: ERROR not enough memory\n");
        return -1;
    }
    const bool read = read_path(in, path, data);
    zel_list_guard entries(in.entries.head);
    lex.reset();
    if (!read)
        return -1;

    // Built aside: without memory the handle keeps its old table.
    lang_handle_t built{};
    if (zel::lang_table_build(&built, in.store, entries.get()) != 0) {
        LogPrint(1, "_lang_load: ERROR not enough memory (entry)\n");
        return -1;
    }
    if (handle == &lang)
        zel::lang_drop_reloads();
    free_table_and_entries(handle);
    handle->entries = entries.release();
    handle->lang = built.lang;
    handle->index = built.index;
    handle->count = built.count;
    handle->loaded = 1;
    LogPrint(1, "_lang_load: exit OK\n");
    return 0;
}

lang_handle_t *new_from(const char *path, std::int32_t import_mode, std::string_view data)
{
    auto *handle = static_cast<lang_handle_t *>(std::calloc(1, sizeof(lang_handle_t)));
    if (handle == nullptr) {
        say("_lang_new: ERROR: not enough memory\n");
        return nullptr;
    }
    handle->import_mode = import_mode;
    // A handle without texts is returned, too: its requests get their items. The message is an
    // interface, whatever the cause.
    if (load_from(handle, path, data) < 0)
        say("_lang_new: ERROR: not enough memory\n");
    else
        handle->loaded = 1;
    return handle;
}

} // namespace

int _lang_load(lang_handle_t *handle, const char *path)
{
    return load_from(handle == nullptr ? &lang : handle, path, {});
}

int lang_load_file(const char *path) { return _lang_load(&lang, path); }

lang_handle_t *_lang_new(const char *path, std::int32_t import_mode)
{
    if (path == nullptr) {
        say("_lang_new: ERROR: no file name given\n");
        return nullptr;
    }
    return new_from(path, import_mode, {});
}

lang_handle_t *zel::lang_new_from(const char *name, std::string_view data)
{
    return new_from(name, 0, data);
}

lang_handle_t *lang_new(const char *path) { return _lang_new(path, 0); }

lang_handle_t *lang_import_new(const char *path) { return _lang_new(path, 1); }

void zel::lang_empty(lang_handle_t *handle)
{
    free_table_and_entries(handle);
    std::free(handle->language);
    *handle = {};
}

void zel::lang_drop_chain(lang_handle_t *handle)
{
    free_chain(handle->index);
    if (handle->index != nullptr)
        zel::link_of(handle->index).next = nullptr;
}

void zel::lang_move_in(lang_handle_t *to, lang_handle_t *from)
{
    free_table_and_entries(to);
    std::free(to->language);
    to->language = from->language;
    to->entries = from->entries;
    to->lang = from->lang;
    to->count = from->count;
    to->format = from->format;
    to->posnr = from->posnr;
    to->ctime = from->ctime;
    to->index = from->index;
    std::free(from);
    // Set last: a thread that sees it finds everything else in place.
    __atomic_store_n(&to->loaded, 1, __ATOMIC_RELEASE);
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

void zel::lang_drop_reloads()
{
    lang_handle_t *one = newest_handle(&lang);
    put_newest(nullptr);
    while (one != &lang) {
        lang_handle_t *before = link_of(one->index).before;
        lang_empty(one);
        std::free(one);
        one = before;
    }
}

void lang_de_init()
{
    zel::lang_drop_reloads();
    zel::news_end();
    lang_free(&lang, 0);
    std::free(lang.language);
    lang = {};
    zel::drop_forms();
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
