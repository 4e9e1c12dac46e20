#include "config/lang-cfg.h"

#include "config/lang-cfg-read.h"
#include "config/lang-cfg-write.h"
#include "support/file-call.h"
#include "support/log-print.h"
#include "support/safe-file.h"
#include "support/string-copy.h"
#include "support/string.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <unistd.h>

namespace {

void close_stream(std::FILE *&stream)
{
    if (stream != nullptr)
        std::fclose(stream);
    stream = nullptr;
}

void close_streams(lang_cfg_t *store)
{
    close_stream(store->fp_cfg);
    close_stream(store->fp_lock);
    close_stream(store->fp_tmp);
}

void free_names(lang_cfg_t *store)
{
    for (char **name :
         {&store->tmp, &store->lock, &store->name, &store->path, &store->cfg, &store->file})
        zel::replace_string(*name, nullptr);
}

bool set_names(lang_cfg_t *store, const char *file)
{
    free_names(store);
    store->cfg = zel_strdup(file);
    store->tmp = zel_strdup_printf("%s.tmp", file);
    store->lock = zel_strdup_printf("%s.lock", file);
    zel_split_path_file(file, &store->path, &store->file);
    store->name = zel_strdup2(store->file);
    if (store->name != nullptr)
        zel_del_file_ext(store->name);
    // A file without a folder has no path, which is no lack of memory.
    return store->cfg != nullptr && store->tmp != nullptr && store->lock != nullptr;
}

// Frees what a key's data owns: its own text, or the string that its variable points to.
void free_key(void *record)
{
    auto *key = static_cast<cfg_entry_t *>(record);
    if (key->type == CFG_VOID)
        std::free(key->data);
    else if (key->type == CFG_STR && key->data != nullptr)
        std::free(*static_cast<char **>(key->data));
    std::free(key->name);
    std::free(key);
}

void free_section(void *record)
{
    auto *section = static_cast<cfg_entry_t *>(record);
    zel_list_free_full(zel::cfg_keys(section), free_key);
    std::free(section->name);
    std::free(section);
}

int fail(lang_cfg_t *store, int status)
{
    store->status = status;
    return status;
}

int fail_locked(lang_cfg_t *store, const char *message)
{
    LogPrint(1, "%s", message);
    return fail(store, CFG_LOCKED);
}

// Prints a message with errno on standard output and in the log; returns the result.
int fail_write(const char *what, int error, int result)
{
    zel::print_and_log(1, "cfg_write: ERROR %s errno %d\n", what, error);
    return result;
}

int fail_without_lock(lang_cfg_t *store)
{
    const int error = errno;
    LogPrint(1, "cfg_open: ERROR create lockfile errno %d\n", error);
    std::fprintf(stderr, "lang: %s cannot be made: %s; the settings are not used\n", store->lock,
                 std::strerror(error));
    return fail(store, CFG_LOCKED);
}

// Makes the lock file. Without a test, whatever has its name is removed, unread and unwritten.
// Returns null with errno.
std::FILE *make_lock(const char *path, bool test)
{
    constexpr int most_tries = 100; // other processes may make theirs meanwhile
    int fd = -1;
    for (int tries = 0; fd < 0 && tries < most_tries; ++tries) {
        const bool free = test || unlink(path) == 0 || errno == ENOENT;
        fd = zel::open_fresh(path, 0666);
        if (test || !free || (fd < 0 && errno != EEXIST))
            break;
    }
    std::FILE *lock = zel::stream_of(fd, "w+");
    if (lock == nullptr && fd >= 0)
        unlink(path);
    return lock;
}

// Makes the lock file. With a test there must be none yet, and nobody else may hold it.
int take_lock(lang_cfg_t *store, bool test)
{
    std::FILE *lock = make_lock(store->lock, test);
    if (lock == nullptr)
        return test && errno == EEXIST
                   ? fail_locked(store, "cfg_open: ERROR cfg locked by lockfile\n")
                   : fail_without_lock(store);
    // Another process may have opened the file between its creation and this lock.
    if (test && flock(fileno(lock), LOCK_EX | LOCK_NB) != 0) {
        std::fclose(lock);
        return fail_locked(store, "cfg_open: ERROR cfg locked by flock\n");
    }
    close_stream(store->fp_lock);
    store->fp_lock = lock;
    return CFG_OK;
}

// Whether the lock file is this store's own, as far as that can be told.
bool owns_lock(const lang_cfg_t *store)
{
    struct stat status {};
    // Without the file only the status tells: CFG_LOCKED says that it is another store's.
    if (store->fp_lock == nullptr)
        return store->status != CFG_LOCKED;
    return fstat(fileno(store->fp_lock), &status) == 0 &&
           zel::is_named(store->lock, zel::id_of(status));
}

int open_file(lang_cfg_t *store, bool create)
{
    // A link that leads nowhere counts as a file, too: open_plain refuses it.
    if (zel::is_there(store->cfg)) {
        store->fp_cfg = zel::stream_of(zel::open_plain(store->cfg, O_RDWR), "r+");
        if (store->fp_cfg != nullptr)
            return CFG_OK;
        const int error = errno;
        LogPrint(1, "cfg_open: ERROR open fp_cfg  errno %d\n", error);
        std::fprintf(stderr, "lang: %s cannot be used: %s\n", store->cfg, std::strerror(error));
        return CFG_NOT_OPENED;
    }
    if (!create)
        return CFG_OK;
    LogPrint(1, "cfg_open: create cfg file \n");
    store->fp_cfg = zel::stream_of(zel::open_fresh(store->cfg, 0666), "w+");
    if (store->fp_cfg == nullptr) {
        LogPrint(1, "cfg_open: ERROR create fp_cfg  errno %d\n", errno);
        return CFG_NOT_CREATED;
    }
    return CFG_OK;
}

// Reads the file. Returns CFG_NOT_OPENED where the system does not give all of it: the next write
// would lose the rest.
int read_file(lang_cfg_t *store)
{
    // The message below names errno, which then comes from a failed reading.
    errno = 0;
    zel_lex_buf_file_set_fp(store->buf, store->fp_cfg);
    zel_lex_set_buf(store->lex, store->buf);
    store->version_key = store->version;
    store->open_end = nullptr;
    zel::cfg_read_statements(store);
    store->version = static_cast<std::uint32_t>(store->version_key);
    if (store->open_end != nullptr)
        std::fprintf(stderr, "lang: %s: the file ends inside %s; it may have been cut\n",
                     store->cfg, store->open_end);
    // Asked before the stream is closed: afterwards nothing tells.
    const bool failed = zel_lex_buf_read_failed(store->buf) != 0;
    if (failed)
        std::fprintf(stderr, "lang: %s cannot be read: %s\n", store->cfg, std::strerror(errno));
    close_stream(store->fp_cfg);
    zel_lex_buf_file_set_fp(store->buf, nullptr);
    return failed ? CFG_NOT_OPENED : CFG_OK;
}

// Builds the whole text of the file; false without memory.
bool make_text(lang_cfg_t *store, std::string &text)
{
    char *area = nullptr;
    std::size_t size = 0;
    // The writers print to a stream, safe_file takes a text.
    store->fp_tmp = open_memstream(&area, &size);
    if (store->fp_tmp == nullptr)
        return false;
    store->version_key = store->version;
    zel::cfg_write_sections(store->fp_tmp, store->sections);
    const bool whole = std::ferror(store->fp_tmp) == 0;
    const bool closed = std::fclose(store->fp_tmp) == 0;
    store->fp_tmp = nullptr;
    if (whole && closed)
        text.assign(area, size);
    std::free(area);
    return whole && closed;
}

// Fills the temporary file and puts it in the file's place.
int write_file(lang_cfg_t *store, zel::safe_file &file, const zel::target_file &old)
{
    std::string text;
    if (!make_text(store, text))
        return fail_write("write fp_tmp", ENOMEM, CFG_NOT_WRITTEN);
    file.append(text);
    if (const int error = file.finish(zel::synced::yes))
        return fail_write("write fp_tmp", error, CFG_NOT_WRITTEN);
    std::printf("lang_write_cfg: >%s<>%s<\n", store->tmp, store->cfg);
    // A place that takes no file is told only now, like one whose renaming fails: callers know both
    // as CFG_NOT_RENAMED.
    const int error = old.refusal != 0 ? old.refusal : file.put(old);
    return error == 0 ? CFG_OK : fail_write("rename fp_tmp", error, CFG_NOT_RENAMED);
}

} // namespace

lang_cfg_t *lang_cfg_new(const char *file)
{
    if (file == nullptr || file[0] == '\0')
        return nullptr;
    lang_cfg_guard store(static_cast<lang_cfg_t *>(std::calloc(1, sizeof(lang_cfg_t))));
    if (!store || !set_names(store.get(), file))
        return nullptr;
    store->index = zel::cfg_index_new();
    store->buf = zel_lex_buf_file_new(nullptr);
    store->lex = zel_lex_new(nullptr, LEX_ESCAPES);
    if (store->index == nullptr || store->buf == nullptr || store->lex == nullptr)
        return nullptr;
    store->buf->read_context = store.get(); // the tokenizer finds the store there
    zel_lex_set_buf(store->lex, store->buf);
    zel_lex_set_get_token(store->lex, zel::cfg_get_token);
    lang_cfg_add_entry(store.get(), nullptr, "version", CFG_LONG, &store->version_key);
    return store.release();
}

int lang_cfg_add_entry(lang_cfg_t *store, const char *section, const char *key, int type,
                       void *address)
{
    if (store == nullptr || key == nullptr)
        return CFG_OK;
    cfg_entry_t *home = zel::cfg_section(store, section == nullptr ? "" : section);
    cfg_entry_t *entry = home == nullptr ? nullptr : zel::cfg_key(store, home, key);
    if (entry == nullptr || address == nullptr)
        return CFG_OK;
    if (entry->type != CFG_VOID) {
        entry->data = address;
        return CFG_OK;
    }
    // A value that was read before its key was bound moves into the variable.
    const zel::string_guard text(entry->data == address ? nullptr
                                                        : static_cast<char *>(entry->data));
    entry->type = type;
    entry->data = address;
    if (text && type != CFG_VOID)
        zel::cfg_set_entry(entry, text.get());
    return CFG_OK;
}

int lang_cfg_open(lang_cfg_t *store, unsigned flags)
{
    if (store == nullptr)
        return CFG_NULL;
    if (const int locked = take_lock(store, (flags & CFG_OPEN_LOCK) != 0))
        return locked;
    close_stream(store->fp_cfg);
    int failed = open_file(store, (flags & CFG_OPEN_CREATE) != 0);
    if (failed == CFG_OK && store->fp_cfg != nullptr)
        failed = read_file(store);
    if (failed != CFG_OK)
        return fail(store, failed);
    store->status = CFG_OK;
    return CFG_OK;
}

int lang_cfg_write(lang_cfg_t *store)
{
    if (store == nullptr) {
        std::puts("lang_write_cfg: error 1");
        return CFG_NULL;
    }
    // Settings that were never read must not replace the file: they are only defaults.
    if (store->status != CFG_OK) {
        std::puts("lang_write_cfg: error 2");
        return CFG_BAD_STATUS;
    }
    // A link in the file's place is replaced and not followed.
    const zel::target_file old = zel::find_target(store->cfg, zel::links::replace);
    zel::safe_file file;
    if (const int error = file.create(store->tmp, old)) {
        if (error != EAGAIN)
            zel_unlink(store->tmp); // says what stands in the way
        return fail_write("open fp_tmp", error, CFG_NOT_WRITTEN);
    }
    return write_file(store, file, old);
}

int lang_cfg_get_long(lang_cfg_t *store, std::int64_t *result, std::int64_t fallback,
                      const char *section, const char *key)
{
    if (result != nullptr)
        *result = fallback;
    if (store == nullptr || result == nullptr || key == nullptr)
        return 1;
    store->version_key = store->version;
    const cfg_entry_t *home = zel::cfg_find_section(store, section == nullptr ? "" : section);
    const cfg_entry_t *entry = home == nullptr ? nullptr : zel::cfg_find_key(store, home, key);
    if (entry == nullptr)
        return 1;
    if (entry->type == CFG_LONG && entry->data != nullptr) {
        *result = *static_cast<std::int64_t *>(entry->data);
    } else if (entry->type == CFG_VOID) {
        cfg_entry_t number{CFG_LONG, 0, nullptr, result, nullptr};
        if (entry->data != nullptr)
            zel::cfg_set_entry(&number, static_cast<const char *>(entry->data));
        // The sign is the entry's own: number has none.
        if (entry->negative != 0)
            *result = static_cast<std::int64_t>(0 - static_cast<std::uint64_t>(*result));
    }
    return 0;
}

int lang_cfg_close(lang_cfg_t *store)
{
    if (store == nullptr)
        return CFG_NULL;
    // Asked while the lock is open: afterwards nothing tells whose file that is.
    const bool own = owns_lock(store);
    close_streams(store);
    if (own)
        zel_unlink(store->lock);
    zel_unlink(store->tmp);
    return CFG_OK;
}

int lang_cfg_del(lang_cfg_t *store)
{
    if (store == nullptr)
        return CFG_NULL;
    close_streams(store);
    zel_unlink(store->lock);
    zel_unlink(store->tmp);
    zel_unlink(store->cfg);
    return CFG_OK;
}

int lang_cfg_set_file_name(lang_cfg_t *store, const char *file)
{
    if (store == nullptr || file == nullptr || file[0] == '\0')
        return 1;
    const std::string name = file; // may be one of the names that set_names frees
    lang_cfg_close(store);
    return set_names(store, name.c_str()) ? 0 : 1;
}

int lang_cfg_free(lang_cfg_t *store)
{
    if (store == nullptr)
        return CFG_NULL;
    close_streams(store);
    free_names(store);
    if (store->lex != nullptr)
        _zel_lex_free(store->lex);
    if (store->buf != nullptr)
        zel_lex_buf_free(store->buf);
    zel_list_free_full(store->sections, free_section);
    zel::cfg_index_free(store->index);
    std::free(store);
    return CFG_OK;
}

int lang_cfg_print_all(lang_cfg_t *store)
{
    if (store == nullptr)
        return CFG_NULL;
    zel::cfg_print_store(store);
    return CFG_OK;
}
