// The language source inside the process: scanning, reading, writing and compiling one file,
// beside what the machine can do with its bytes at all. LANG_BENCH_SOURCE names the file.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>

#include "compiler/split.h"
#include "lex/lex.h"
#include "scratch.h"
#include "source/lang-read.h"
#include "source/lang-write.h"
#include "source/model.h"

namespace {

namespace fs = std::filesystem;

// As many words as the reader of a source has, so that looking one up costs the same.
constexpr Keytab keywords[] = {
    {"", 0},          {"format", 1},       {"group", 2},        {"comment", 3},
    {"size", 4},      {"colwidth", 5},     {"rowheight", 6},    {"item", 7},
    {"lang", 8},      {"define", 9},       {"default", 10},     {"file", 11},
    {"version", 12},  {"ascii", 13},       {"utf8", 14},        {"used", 15},
    {"changed", 16},  {"ctrl", 17},        {"yes", 18},         {"no", 19},
    {"visible", 20},  {"ready", 21},       {"screen_shot", 22}, {"create_date", 23},
    {"category", 24}, {"description", 25}, {"typ", 26},         {"app", 27},
    {"whatsnew", 28}, {"ctime", 29},       {"mtime", 30},       {"", 0}};

std::string source_path()
{
    const char *named = std::getenv("LANG_BENCH_SOURCE");
    return named != nullptr ? named : LANG_SOURCE_ROOT "/examples/notes.lang-src";
}

const std::string &source_text()
{
    static const std::string text = [] {
        std::ostringstream all;
        all << std::ifstream(source_path(), std::ios::binary).rdbuf();
        return all.str();
    }();
    return text;
}

void count_bytes(benchmark::State &state)
{
    state.SetBytesProcessed(state.iterations() * std::int64_t(source_text().size()));
}

void limit_copy(benchmark::State &state)
{
    const std::string &text = source_text();
    std::string copy(text.size(), '\0');
    for (auto _ : state) {
        std::memcpy(copy.data(), text.data(), text.size());
        benchmark::ClobberMemory();
    }
    count_bytes(state);
}

void limit_count_class(benchmark::State &state)
{
    std::array<unsigned char, 256> is_space{};
    for (unsigned char c : {' ', '\t', '\n', '\r'})
        is_space[c] = 1;
    for (auto _ : state) {
        std::size_t spaces = 0;
        for (char c : source_text())
            spaces += is_space[static_cast<unsigned char>(c)];
        benchmark::DoNotOptimize(spaces);
    }
    count_bytes(state);
}

void scan(benchmark::State &state)
{
    const std::string &text = source_text();
    std::int64_t tokens = 0;
    for (auto _ : state) {
        zel_lex_guard lex(
            zel_lex_new(keywords, LEX_KEYWORD_NOCASE | LEX_ESCAPES | LEX_NEWLINE_SPACE));
        zel_lex_buf_guard buffer(
            zel_lex_buf_mem_new(text.data(), static_cast<std::uint32_t>(text.size())));
        zel_lex_set_buf(lex.get(), buffer.get());
        while (zel_next_token(lex.get())->id != TOKEN_EOF)
            ++tokens;
    }
    count_bytes(state);
    state.SetItemsProcessed(tokens);
}

void read_source(benchmark::State &state)
{
    const std::string path = source_path();
    for (auto _ : state) {
        source_guard source(lang_read_file(path.c_str()));
        if (!source) {
            state.SkipWithError("cannot read the source");
            break;
        }
        state.PauseTiming(); // giving the memory back is not reading
        source.reset();
        state.ResumeTiming();
    }
    count_bytes(state);
}

void read_and_release(benchmark::State &state)
{
    const std::string path = source_path();
    for (auto _ : state)
        source_guard source(lang_read_file(path.c_str()));
    count_bytes(state);
}

void write_source(benchmark::State &state)
{
    source_guard source(lang_read_file(fs::absolute(source_path()).c_str()));
    const scratch here;
    for (auto _ : state) {
        if (lang_write_file("app.lang-src", source.get()) != 0)
            state.SkipWithError("cannot write");
        state.PauseTiming(); // the next round makes no backup
        fs::remove("app.lang-src");
        state.ResumeTiming();
    }
    count_bytes(state);
}

void compile_source(benchmark::State &state)
{
    source_guard source(lang_read_file(fs::absolute(source_path()).c_str()));
    const scratch here;
    fs::create_directory("out");
    for (auto _ : state)
        if (split_file(source.get(), "out") != 0)
            state.SkipWithError("cannot compile");
    count_bytes(state);
}

BENCHMARK(limit_copy)->Unit(benchmark::kMillisecond);
BENCHMARK(limit_count_class)->Unit(benchmark::kMillisecond);
BENCHMARK(scan)->Unit(benchmark::kMillisecond);
BENCHMARK(read_source)->Unit(benchmark::kMillisecond);
BENCHMARK(read_and_release)->Unit(benchmark::kMillisecond);
BENCHMARK(write_source)->Unit(benchmark::kMillisecond);
BENCHMARK(compile_source)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
