#pragma once

// Compiled files in a fresh directory, and handles over them.

#include <memory>
#include <string>
#include <string_view>

#include "langlib/lang-load.h"
#include "langlib/lang.h"
#include "working-dir.h"

namespace langlib_test {

struct free_handle {
    void operator()(lang_handle_t *handle) const { lang_free(handle, 1); }
};
using handle_guard = std::unique_ptr<lang_handle_t, free_handle>;

// Writes the text as a compiled file and loads it.
inline handle_guard load(const std::string &text, int import_mode = 0)
{
    zel_test::write_file("test.lang", text);
    return handle_guard(_lang_new("test.lang", import_mode));
}

// The table: "key=value", "key" without a value, a star behind the text of the default language.
inline std::string table(const lang_handle_t *handle)
{
    std::string text;
    for (int slot = 1; slot < handle->count - 1; ++slot) {
        const lang_text_t &one = handle->lang[slot];
        text += (text.empty() ? "" : " | ") + std::string(one.key);
        if (one.value != nullptr)
            text += "=" + std::string(one.value);
        if (one.is_default == 1)
            text += "*";
    }
    return text;
}

inline std::string table_of(const std::string &text, int import_mode = 0)
{
    return table(load(text, import_mode).get());
}

// What is logged while the text is loaded, without the lines that every load writes.
inline std::string complaints(const std::string &text)
{
    zel_test::log_capture log;
    load(text);
    std::string all = log.text();
    std::string rest;
    for (std::size_t start = 0; start < all.size();) {
        const std::size_t end = all.find('\n', start) + 1;
        const std::string_view line = std::string_view(all).substr(start, end - start);
        if (line.find("ERROR") != line.npos || line.find("lexeme") != line.npos)
            rest += line;
        start = end;
    }
    return rest;
}

// A directory of its own, and the process-wide handle empty before and after.
class loading : public zel_test::working_dir {
protected:
    ~loading() override { lang_de_init(); }

    static void load_process_wide(const std::string &text)
    {
        zel_test::write_file("app.lang", text);
        ASSERT_EQ(lang_load_file("app.lang"), 0);
    }
};

} // namespace langlib_test
