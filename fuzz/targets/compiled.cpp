// A compiled file: loaded, asked for all that it holds and for more, and imported.

#include "support.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "langlib/lang-load.h"
#include "langlib/lang-table.h"
#include "source/lang-import.h"
#include "source/lang-read.h"

namespace {

// A request for a key, cut at its first colon: bisection, hash and request agree.
void ask(lang_handle_t *handle, const std::string &key)
{
    const zel::lang_key whole(key.c_str());
    const lang_text_t *found = zel::lang_table_find(handle, whole);
    fuzz::require(found == zel::lang_table_bisect(handle, whole.text), "both searches agree");
    const std::size_t colon = key.find(':');
    if (colon == key.npos)
        return;
    const std::string group = key.substr(0, colon);
    const std::string item = key.substr(colon + 1);
    const char *text = _lang_get_str(handle, group.c_str(), item.c_str(), "f", 1);
    if (handle->import_mode == 0) {
        fuzz::require(text != nullptr, "a request gives a text");
        if (found == nullptr || found->value == nullptr)
            fuzz::require(text == item.c_str(), "the item where there is none");
    }
    if (text != nullptr)
        fuzz::require(std::strlen(text) < 1U << 30, "a text can be read");
}

void ask_everything(lang_handle_t *handle)
{
    for (std::int32_t slot = 1; slot + 1 < handle->count; ++slot) {
        const std::string key = handle->lang[slot].key;
        ask(handle, key);
        ask(handle, key + "x");
        ask(handle, key.substr(0, key.size() / 2));
    }
    ask(handle, "g:missing");
    ask(handle, ":");
}

void import(const char *path)
{
    lang_handle_t *handle = lang_import_new(path);
    fuzz::require(handle != nullptr, "a handle");
    ask_everything(handle);
    source_guard source = fuzz::small_source();
    lang_import(source.get(), handle);
    lang_free(handle, 1);
    fuzz::written(source.get());
    fuzz::require(zel::read_source("written", {1}).source != nullptr, "what was imported reads");
}

} // namespace

extern "C" int FUZZ_TARGET(compiled)(const std::uint8_t *data, std::size_t size)
{
    const char *path = fuzz::as_file("in.lang", fuzz::bytes_of(data, size));
    lang_load_file(path);
    ask_everything(&lang);
    lang_check_string("g", "missing");
    lang_get_ctime();
    std::free(_lang_sym_get_str(nullptr, "g", "a %PERCENT% b", "f", 1));
    static std::FILE *const nowhere = std::fopen("/dev/null", "w");
    lang_debug_print(nowhere, nullptr);
    lang_load_file(path); // in its place
    ask_everything(&lang);
    lang_de_init();
    import(path);
    return 0;
}
