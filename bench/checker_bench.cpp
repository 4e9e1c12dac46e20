// The check inside the process: its scan of C text beside a pass that only counts bytes, and the
// cost of one request in sources of different sizes. Requests are read from a memory buffer, so no
// file is opened.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

#include <benchmark/benchmark.h>

#include "checker/c-scan.h"
#include "source/group.h"
#include "source/item-index.h"

namespace {

constexpr const char *code =
    "#ifndef PAGE_H\n#define PAGE_H 1\n#include <stdio.h>\n"
    "/*\n * The page is read once and kept until it has been printed, while other jobs wait.\n */\n"
    "static int\npage_count(struct page *p, int n)\n{\n    int i, sum = 0;\n\n"
    "    for (i = 0; i < p->count; i++)\n        sum += p->sizes[i] * n + 0x1f; // never rounded\n"
    "    if (p == NULL || p->next != NULL) {\n        fprintf(stderr, \"%s: \\\"%s\\\"\\n\", a, "
    "b);\n"
    "        return c == '\"' ? -1 : sum;\n    }\n    return sum;\n}\n#endif\n";

std::string repeat(const char *text, std::size_t size)
{
    std::string all;
    while (all.size() < size)
        all += text;
    return all;
}

void scan(LangSource *source, const std::string &text)
{
    const zel_lex_guard lex(zel::new_check_scanner());
    const zel_lex_buf_guard buffer(
        zel_lex_buf_mem_new(text.data(), static_cast<std::uint32_t>(text.size())));
    zel_lex_set_buf(lex.get(), buffer.get());
    const symtab_guard symbols(symtab_new());
    check_parse(source, symbols.get(), lex.get(), "page.c");
}

void scan_code(benchmark::State &state)
{
    const std::string text = repeat(code, 4 << 20);
    const source_guard source(lang_alloc_group());
    for ([[maybe_unused]] auto _ : state)
        scan(source.get(), text);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(scan_code);

void count_bytes(benchmark::State &state)
{
    const std::string text = repeat(code, 4 << 20);
    for ([[maybe_unused]] auto _ : state) {
        auto lines = std::count(text.begin(), text.end(), '\n');
        benchmark::DoNotOptimize(lines);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(count_bytes);

// As many requests as items, all found; what is printed goes nowhere.
void requests(benchmark::State &state)
{
    const source_guard source(lang_alloc_group());
    zel::item_index index(source.get());
    std::string text;
    for (std::int64_t n = 0; n < state.range(0); ++n) {
        const std::string group = "group-" + std::to_string(n / 400);
        const std::string item = "text of the page " + std::to_string(n);
        index.insert(group.c_str(), item.c_str());
        text.append("    puts(lang_get_string(\"").append(group).append("\", \"").append(item);
        text += "\"));\n";
    }
    std::FILE *const shown = stdout;
    stdout = std::fopen("/dev/null", "w");
    for ([[maybe_unused]] auto _ : state) {
        scan(source.get(), text);
        state.PauseTiming();
        clear_all_file_list(source.get());
        state.ResumeTiming();
    }
    std::fclose(stdout);
    stdout = shown;
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(requests)->Arg(5000)->Arg(20000)->Arg(100000);

} // namespace

BENCHMARK_MAIN();
