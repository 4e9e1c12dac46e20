// A request in a script, read from its tokens.

#include "support.h"

#include <cstdlib>

#include "langlib/lang-load.h"
#include "langlib/lang-request.h"

extern "C" int FUZZ_TARGET(request)(const std::uint8_t *data, std::size_t size)
{
    if (lang.loaded == 0)
        lang_load_file(fuzz::as_file("in.lang", "GROUP \"g\" \"i\" { \"text\" } \"n\" { }"));
    const zel_lex_guard lex(zel_lex_new(nullptr, LEX_ESCAPES | LEX_NEWLINE_SPACE));
    const zel_lex_buf_guard buf(zel_lex_buf_mem_new(data, static_cast<std::uint32_t>(size)));
    zel_lex_set_buf(lex.get(), buf.get());
    for (int times = 0; times < 3; ++times) {
        std::free(zel_lex_lang_get(lex.get()));
        std::free(zel_lex_lang_get_string(lex.get()));
    }
    return 0;
}
