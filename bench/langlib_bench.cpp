// Asking for texts and loading them, beside gettext, GLib's hash table and the standard library's,
// with the same texts. Names are job/who/size.

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <libintl.h>
#include <malloc.h>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <unordered_map>
#include <vector>

#include <benchmark/benchmark.h>
#include <glib.h>

#include "langlib/lang-locale.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t per_group = 100;
constexpr std::int64_t sizes[] = {300, 5000, 100000};

struct request {
    std::string group;
    std::string item;
    std::string text;
};

// Where the catalogs stand while the program runs; a given folder has them already.
struct scratch {
    explicit scratch(const char *given)
    {
        if (given != nullptr) {
            folder = given;
            return;
        }
        owned = true;
        std::string name = (fs::temp_directory_path() / "lang-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            std::abort();
        folder = name;
    }
    ~scratch()
    {
        if (owned)
            fs::remove_all(folder);
    }
    scratch(const scratch &) = delete;
    scratch &operator=(const scratch &) = delete;
    fs::path folder;
    bool owned = false;
};

const scratch &work(const char *given = nullptr)
{
    static const scratch here(given);
    return here;
}

// Some thirty bytes that begin differently from text to text.
std::string make_text(std::mt19937 &random, std::size_t number)
{
    static constexpr std::array words = {"open", "file",  "close", "window", "print", "page",
                                         "of",   "error", "the",   "image",  "layer", "colour"};
    std::string text;
    for (std::size_t n = random() % 5 + 2; n > 0; --n)
        text += std::string(words[random() % words.size()]) + " ";
    return text + std::to_string(number);
}

// The texts of one size, each once, and the order in which they are asked.
struct texts {
    explicit texts(std::size_t size)
    {
        std::mt19937 random(static_cast<unsigned>(size));
        for (std::size_t i = 0; i < size; ++i)
            all.push_back({"dialog_" + std::to_string(i / per_group), make_text(random, i),
                           make_text(random, i + 7)});
        compiled = (work().folder / (std::to_string(all.size()) + ".lang")).string();
        domain = "bench-" + std::to_string(all.size());
        if (work().owned) {
            write_compiled();
            write_catalog();
        }
        bindtextdomain(domain.c_str(), work().folder.c_str());
        bind_textdomain_codeset(domain.c_str(), "UTF-8");
        asked = all;
        std::shuffle(asked.begin(), asked.end(), random);
        missing = asked;
        for (request &one : missing)
            one.item += '?';
    }

    std::vector<request> all, asked, missing;
    std::string compiled; // path of the compiled file
    std::string domain;   // of the catalog

private:
    void write_compiled()
    {
        std::ofstream out(compiled);
        out << "/* automatically generated file, do not edit bench */\n\nFORMAT UTF8\n"
               "LANGUAGE \"bench\"\nCTIME 1700000000\nSRC_MTIME 1700000000\n";
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (i % per_group == 0)
                out << "\n\nGROUP \"" << all[i].group << "\"\n";
            out << "  \"" << all[i].item << "\" {\n    \"" << all[i].text << "\"    }\n";
        }
    }

    void write_catalog()
    {
        const fs::path folder = work().folder / "xx" / "LC_MESSAGES";
        const fs::path source = work().folder / (domain + ".po");
        fs::create_directories(folder);
        std::ofstream out(source);
        out << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
        for (const request &one : all)
            out << "\nmsgctxt \"" << one.group << "\"\nmsgid \"" << one.item << "\"\nmsgstr \""
                << one.text << "\"\n";
        out.close();
        const std::string command =
            "msgfmt -o '" + (folder / (domain + ".mo")).string() + "' '" + source.string() + "'";
        if (std::system(command.c_str()) != 0)
            std::abort();
    }
};

const texts &of_size(std::int64_t size)
{
    static std::map<std::int64_t, texts> made;
    return made.try_emplace(size, static_cast<std::size_t>(size)).first->second;
}

// A key of two names, as every peer needs it: put together anew for each request.
struct key {
    key(const request &one, char between)
    {
        std::memcpy(text, one.group.c_str(), one.group.size());
        text[one.group.size()] = between;
        std::memcpy(text + one.group.size() + 1, one.item.c_str(), one.item.size() + 1);
        length = one.group.size() + 1 + one.item.size();
    }
    std::string_view view() const { return {text, length}; }
    char text[2048];
    std::size_t length;
};

// Who answers requests. Each is made from the texts of one size.
struct ours {
    explicit ours(const texts &given) { lang_load_file(given.compiled.c_str()); }
    ~ours() { lang_de_init(); }
    const char *ask(const request &one) const
    {
        return lang_get_string(one.group.c_str(), one.item.c_str());
    }
};

struct gettext_catalog {
    explicit gettext_catalog(const texts &given) : domain(given.domain.c_str()) {}
    const char *ask(const request &one) const
    {
        const key wanted(one, '\004');
        const char *text = dgettext(domain, wanted.text);
        return text == wanted.text ? one.item.c_str() : text;
    }
    const char *domain;
};

struct ghashtable {
    explicit ghashtable(const texts &given)
        : table(g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_free))
    {
        for (const request &one : given.all)
            g_hash_table_insert(table, g_strdup(key(one, ':').text), g_strdup(one.text.c_str()));
    }
    ~ghashtable() { g_hash_table_destroy(table); }
    ghashtable(const ghashtable &) = delete;
    ghashtable &operator=(const ghashtable &) = delete;
    const char *ask(const request &one) const
    {
        const void *text = g_hash_table_lookup(table, key(one, ':').text);
        return text == nullptr ? one.item.c_str() : static_cast<const char *>(text);
    }
    GHashTable *table;
};

struct view_hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const
    {
        return std::hash<std::string_view>{}(text);
    }
};

struct unordered_map {
    explicit unordered_map(const texts &given)
    {
        for (const request &one : given.all)
            table.emplace(key(one, ':').view(), one.text);
    }
    const char *ask(const request &one) const
    {
        const auto found = table.find(key(one, ':').view());
        return found == table.end() ? one.item.c_str() : found->second.c_str();
    }
    std::unordered_map<std::string, std::string, view_hash, std::equal_to<>> table;
};

// One request after another, all texts in turn.
template <class Who>
void ask(benchmark::State &state, const texts &given, const std::vector<request> &asked, bool hits)
{
    const Who who(given);
    for (const request &one : asked)
        if ((who.ask(one) != one.item.c_str()) != hits) {
            state.SkipWithError("wrong answer");
            return;
        }
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(who.ask(asked[next]));
        next = next + 1 == asked.size() ? 0 : next + 1;
    }
}

template <class Who>
void hit(benchmark::State &state)
{
    const texts &given = of_size(state.range(0));
    ask<Who>(state, given, given.asked, true);
}

template <class Who>
void miss(benchmark::State &state)
{
    const texts &given = of_size(state.range(0));
    ask<Who>(state, given, given.missing, false);
}

template <class Who>
void load(benchmark::State &state)
{
    const texts &given = of_size(state.range(0));
    for (auto _ : state) {
        const Who *who = new Who(given);
        state.PauseTiming(); // giving the memory back is not loading
        delete who;
        state.ResumeTiming();
    }
}

// What a loader cannot do without: reading the file and looking at each byte.
void load_byte_count(benchmark::State &state)
{
    std::array<unsigned char, 256> is_space{};
    for (const char c : {' ', '\t', '\n', '\r'})
        is_space[static_cast<unsigned char>(c)] = 1;
    const texts &given = of_size(state.range(0));
    for (auto _ : state) {
        std::FILE *file = std::fopen(given.compiled.c_str(), "rb");
        char block[8192];
        std::size_t spaces = 0;
        while (const std::size_t size = std::fread(block, 1, sizeof block, file))
            for (std::size_t i = 0; i < size; ++i)
                spaces += is_space[static_cast<unsigned char>(block[i])];
        std::fclose(file);
        benchmark::DoNotOptimize(spaces);
    }
}

// What the process has used of a processor; unlike the time of day it does not count the others.
double cpu_seconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Loading and asking for every text once, in seconds.
template <class Who>
double first_use(const texts &given)
{
    const double begin = cpu_seconds();
    const Who who(given);
    for (const request &one : given.asked)
        benchmark::DoNotOptimize(who.ask(one));
    return cpu_seconds() - begin;
}

// The same in a process of its own for each round: gettext reads a catalog once in a process, and
// nobody starts with the memory that another one has left.
void load_and_ask(benchmark::State &state, const char *who)
{
    of_size(state.range(0));
    const std::string command = "/proc/self/exe";
    for (auto _ : state) {
        int channel[2];
        if (pipe(channel) != 0)
            std::abort();
        const std::string size = std::to_string(state.range(0));
        const std::string out = std::to_string(channel[1]);
        const pid_t child = vfork();
        if (child == 0) {
            execl(command.c_str(), "first-use", who, size.c_str(), work().folder.c_str(),
                  out.c_str(), nullptr);
            _exit(1);
        }
        close(channel[1]);
        double seconds = 0;
        if (read(channel[0], &seconds, sizeof seconds) != sizeof seconds)
            state.SkipWithError("no answer");
        close(channel[0]);
        waitpid(child, nullptr, 0);
        state.SetIterationTime(seconds);
    }
}

// What a request costs on average while it is traced: all of them are the first ones for their
// texts, or have been asked a hundred times since.
double traced_request(const texts &given, bool first)
{
    setenv("LANG_TRACE", (work().folder / "trace").c_str(), 1);
    const ours who(given);
    const int rounds = first ? 1 : 100;
    if (!first)
        for (const request &one : given.asked)
            benchmark::DoNotOptimize(who.ask(one));
    const double begin = cpu_seconds();
    for (int i = 0; i < rounds; ++i)
        for (const request &one : given.asked)
            benchmark::DoNotOptimize(who.ask(one));
    return (cpu_seconds() - begin) / static_cast<double>(given.asked.size()) / rounds;
}

// What that process does.
int answer_first_use(char **words)
{
    work(words[3]);
    const texts &given = of_size(std::atol(words[2]));
    if (std::strncmp(words[1], "traced", 6) == 0) {
        const double seconds = traced_request(given, std::strcmp(words[1], "traced_first") == 0);
        return write(std::atoi(words[4]), &seconds, sizeof seconds) == sizeof seconds ? 0 : 1;
    }
    const double seconds = std::strcmp(words[1], "ours") == 0 ? first_use<ours>(given)
                                                              : first_use<gettext_catalog>(given);
    return write(std::atoi(words[4]), &seconds, sizeof seconds) == sizeof seconds ? 0 : 1;
}

// Lists that grow by one symbol, by the elements of one short message, by one info entry.
void append_symbols(benchmark::State &state)
{
    for (auto _ : state) {
        zel_list *list = nullptr;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            list = lang_sym_set(list, ("NAME" + std::to_string(i)).c_str(), "value", 0);
        state.PauseTiming();
        lang_sym_free(list);
        state.ResumeTiming();
    }
}

void append_messages(benchmark::State &state)
{
    for (auto _ : state) {
        zel_list *list = nullptr;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            list = min_lex_split_msg(list, "id=value", ';', '=');
        state.PauseTiming();
        min_lex_split_msg_free(list);
        state.ResumeTiming();
    }
}

void append_info(benchmark::State &state)
{
    for (auto _ : state) {
        zel_info_t *record = nullptr;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            record = lang_get_info(nullptr, &record, 1, 2, "group", "activity", "message");
        state.PauseTiming();
        zel_info_free(record);
        state.ResumeTiming();
    }
}

// A short text that stands for its item, and the form of one in Russian.
void format_or(benchmark::State &state)
{
    const char *item = "%d of %d notes";
    const char *text = "%2$d заметок, из них %1$d";
    for (auto _ : state) {
        benchmark::DoNotOptimize(text);
        benchmark::DoNotOptimize(lang_format_or(text, item));
    }
}

void plural(benchmark::State &state)
{
    const fs::path file = fs::temp_directory_path() / "lang-bench-plural.lang";
    std::ofstream(file) << "LANGUAGE \"russian\" GROUP g a { \"b\" }";
    lang_handle_t *handle = lang_new(file.c_str());
    std::int64_t number = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            lang_plural_of(handle, "%d заметка|%d заметки|%d заметок", ++number));
    lang_free(handle, 1);
    fs::remove(file);
}

// A request for a text, for one as a format, and for a form, in a language of three forms.
enum class what { plain, text, form };

void small_request(benchmark::State &state, what asked)
{
    const fs::path file = fs::temp_directory_path() / "lang-bench-checked.lang";
    std::ofstream(file) << "LANGUAGE \"russian\" GROUP g "
                           "\"%d note|%d notes\" { \"%d заметка|%d заметки|%d заметок\" } "
                           "\"%d of %s\" { \"%2$s: %1$d\" }";
    lang_load_file(file.c_str());
    std::int64_t number = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(asked == what::plain ? lang_get_string("g", "%d of %s")
                                 : asked == what::text
                                     ? lang_text("g", "%d of %s")
                                     : lang_count("g", "%d note|%d notes", ++number));
    lang_de_init();
    fs::remove(file);
}

void add(const char *job, const char *who, void (*function)(benchmark::State &))
{
    for (const std::int64_t size : sizes)
        benchmark::RegisterBenchmark((std::string(job) + "/" + who).c_str(), function)->Arg(size);
}

void add_load_and_ask(const char *who)
{
    for (const std::int64_t size : sizes)
        benchmark::RegisterBenchmark((std::string("load_and_ask/") + who).c_str(),
                                     [who](benchmark::State &state) { load_and_ask(state, who); })
            ->Arg(size)
            ->UseManualTime();
}

} // namespace

int main(int argc, char **argv)
{
    // Any locale but C makes gettext look at LANGUAGE.
    setenv("LANGUAGE", "xx", 1);
    unsetenv("LC_ALL");
    if (std::setlocale(LC_ALL, "C.UTF-8") == nullptr)
        std::abort();
    if (std::strcmp(argv[0], "first-use") == 0)
        return answer_first_use(argv);
    // Repeated loads use the same memory again: how long the system takes to hand out pages is
    // measured by load_and_ask, which begins with none.
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    add("hit", "ours", hit<ours>);
    add("hit", "dgettext", hit<gettext_catalog>);
    add("hit", "ghashtable", hit<ghashtable>);
    add("hit", "unordered_map", hit<unordered_map>);
    add("miss", "ours", miss<ours>);
    add("miss", "dgettext", miss<gettext_catalog>);
    add("miss", "ghashtable", miss<ghashtable>);
    add("miss", "unordered_map", miss<unordered_map>);
    add("load", "ours", load<ours>);
    add("load", "byte_count", load_byte_count);
    add("load", "ghashtable_insert", load<ghashtable>);
    add("load", "unordered_map_insert", load<unordered_map>);
    benchmark::RegisterBenchmark("format_or", format_or);
    benchmark::RegisterBenchmark("plural", plural);
    benchmark::RegisterBenchmark("lang_get_string", small_request, what::plain);
    benchmark::RegisterBenchmark("lang_text", small_request, what::text);
    benchmark::RegisterBenchmark("lang_count", small_request, what::form);
    // Each is a process of its own that tells the time of one request: so short that the benchmark
    // would start processes for hours to have enough of it.
    for (const char *who : {"traced_first", "traced_again"})
        benchmark::RegisterBenchmark(who, load_and_ask, who)
            ->Arg(sizes[1])
            ->UseManualTime()
            ->Iterations(10);
    for (const std::int64_t size : {sizes[1], sizes[2]}) {
        benchmark::RegisterBenchmark("append/symbols", append_symbols)->Arg(size);
        benchmark::RegisterBenchmark("append/messages", append_messages)->Arg(size);
        benchmark::RegisterBenchmark("append/info", append_info)->Arg(size);
    }
    add_load_and_ask("ours");
    add_load_and_ask("dgettext");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
