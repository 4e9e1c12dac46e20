// An application's code: whatever requests are found in it, the source stays one that can be
// written and read.

#include "support.h"

#include "checker/c-scan.h"
#include "source/lang-read.h"

extern "C" int FUZZ_TARGET(c_code)(const std::uint8_t *data, std::size_t size)
{
    source_guard source = fuzz::small_source();
    {
        const symtab_guard symbols(symtab_new());
        const zel_lex_guard lex(zel::new_check_scanner());
        const zel_lex_buf_guard buf(zel_lex_buf_mem_new(data, static_cast<std::uint32_t>(size)));
        zel_lex_set_buf(lex.get(), buf.get());
        fuzz::require(check_parse(source.get(), symbols.get(), lex.get(), "f.c") == 0,
                      "a scan comes to its end");
    }
    fuzz::written(source.get());
    fuzz::require(zel::read_source("written", {1}).source != nullptr, "what was found reads");
    return 0;
}
