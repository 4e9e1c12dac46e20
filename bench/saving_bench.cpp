// What saving costs per key and per language, for few and for many: it grows with their number and
// nothing else.

#include <filesystem>
#include <fstream>
#include <string>

#include <benchmark/benchmark.h>

#include "compiler/split.h"
#include "config/lang-cfg.h"
#include "scratch.h"
#include "source/model.h"
#include "support/string-copy.h"

namespace {

namespace fs = std::filesystem;

// Reads a file of so many keys that nobody bound, and writes it again.
void settings_keys(benchmark::State &state)
{
    const scratch here;
    {
        std::ofstream file("a.ini");
        file << "[section]\n";
        for (std::int64_t n = 0; n < state.range(0); ++n)
            file << "key number " << n << "=value " << n << '\n';
    }
    for (auto _ : state) {
        const lang_cfg_guard store(lang_cfg_new("a.ini"));
        if (lang_cfg_open(store.get(), 0) != 0 || lang_cfg_write(store.get()) != 0)
            state.SkipWithError("cannot read or write the settings");
        lang_cfg_close(store.get());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

source_guard source_of(std::int64_t languages)
{
    constexpr int items = 20;
    source_guard source(lang_alloc_group());
    edit_t *group = lang_alloc_edit();
    group->name = zel_strdup("group");
    source->groups = g_list_append(nullptr, group);
    for (int i = 0; i < items; ++i) {
        item_t *item = alloc_item();
        item->name = zel_strdup(("item " + std::to_string(i)).c_str());
        item->used = 1;
        group->items = g_list_prepend(group->items, item);
    }
    for (std::int64_t n = 0; n < languages; ++n) {
        lang_t *lang = alloc_lang();
        lang->name = zel_strdup(("language " + std::to_string(n)).c_str());
        lang->file = zel_strdup("texts");
        source->langs = g_list_prepend(source->langs, lang);
        for (item_t *item : zel::each<item_t>(group->items)) {
            lang_entry_t *entry = alloc_lang_entry(lang->name);
            entry->texts = g_list_append(nullptr, zel_strdup("a text in this language"));
            item->langs = g_list_prepend(item->langs, entry);
        }
    }
    return source;
}

// A source of so many languages, compiled.
void compile_languages(benchmark::State &state)
{
    const scratch here;
    fs::create_directory("out");
    const source_guard source = source_of(state.range(0));
    for (auto _ : state)
        if (split_file(source.get(), "out") != 0)
            state.SkipWithError("cannot compile");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(settings_keys)->Arg(5000)->Arg(40000)->Unit(benchmark::kMillisecond);
BENCHMARK(compile_languages)->Arg(500)->Arg(4000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
