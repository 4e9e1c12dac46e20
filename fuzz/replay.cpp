// Runs a target over files, and over every file of folders: replay [--broken] TARGET PATH...
// With --broken over each file cut at every byte, and with each byte changed: one of its bits, all
// of them cleared, all of them turned. Status 0 when it came through all of them; what does not
// hold ends the process.

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

#define TARGET(name, function) extern "C" int function(const std::uint8_t *data, std::size_t size);
#include "targets.inc"
#undef TARGET

namespace {

namespace fs = std::filesystem;

struct target {
    const char *name;
    int (*run)(const std::uint8_t *data, std::size_t size);
};
#define TARGET(name, function) {name, function},
constexpr target targets[] = {
#include "targets.inc"
};
#undef TARGET

std::vector<fs::path> files_at(const fs::path &path)
{
    if (!fs::is_directory(path))
        return {path};
    std::vector<fs::path> all;
    for (const auto &entry : fs::recursive_directory_iterator(path))
        if (entry.is_regular_file())
            all.push_back(entry.path());
    std::sort(all.begin(), all.end());
    return all;
}

using bytes = std::vector<std::uint8_t>;

bytes bytes_of(const fs::path &file)
{
    std::ifstream in(file, std::ios::binary);
    bytes all{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in.good() && !in.eof()) {
        std::fprintf(stderr, "%s: cannot be read\n", file.c_str());
        std::exit(2);
    }
    return all;
}

void replay(const target &row, const fs::path &file)
{
    std::fprintf(stderr, "%s\n", file.c_str()); // the last one named is the one that ended it
    // In a block of its own size, so that a read behind the end is noticed.
    const bytes all = bytes_of(file);
    row.run(all.data(), all.size());
}

// What was broken how, told when it ends the process.
struct {
    const char *file;
    std::size_t at;
    int change; // of the byte there, xor; 0 where the file was cut
} trial;

void tell_trial()
{
    std::fprintf(stderr, "replay: %s, byte %zu ", trial.file, trial.at);
    if (trial.change == 0)
        std::fputs("cut off\n", stderr);
    else
        std::fprintf(stderr, "xor 0x%02x\n", static_cast<unsigned>(trial.change));
}

void end_by_signal(int number)
{
    tell_trial();
    std::signal(number, SIG_DFL);
    std::raise(number);
}

constexpr unsigned longest = 20; // seconds for one input

void try_bytes(const target &row, const bytes &broken, std::size_t at, int change)
{
    trial.at = at;
    trial.change = change;
    alarm(longest);
    row.run(broken.data(), broken.size());
    alarm(0);
}

// Returns the number of runs.
std::size_t break_bytes(const target &row, const fs::path &file)
{
    const bytes whole = bytes_of(file);
    trial.file = file.c_str();
    std::size_t runs = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        try_bytes(row, bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(at)), at,
                  0);
        ++runs;
        for (const int change : {1, 2, 4, 8, 16, 32, 64, 128, +whole[at], whole[at] ^ 0xFF}) {
            if (change == 0)
                continue;
            bytes broken = whole;
            broken[at] = static_cast<std::uint8_t>(broken[at] ^ change);
            try_bytes(row, broken, at, change);
            ++runs;
        }
    }
    return runs;
}

// There with a sanitizer, which ends the process in its own way.
extern "C" [[gnu::weak]] void __sanitizer_set_death_callback(void (*callback)());

void tell_of_ends()
{
    for (const int number : {SIGABRT, SIGALRM, SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        if (number == SIGABRT || number == SIGALRM || __sanitizer_set_death_callback == nullptr)
            std::signal(number, end_by_signal);
    if (__sanitizer_set_death_callback != nullptr)
        __sanitizer_set_death_callback(tell_trial);
}

} // namespace

int main(int argc, char **argv)
{
    const bool breaks = argc > 1 && std::strcmp(argv[1], "--broken") == 0;
    argc -= breaks ? 1 : 0;
    argv += breaks ? 1 : 0;
    const target *row = std::find_if(std::begin(targets), std::end(targets), [&](const auto &one) {
        return argc > 1 && std::strcmp(one.name, argv[1]) == 0;
    });
    if (row == std::end(targets) || argc < 3) {
        std::fputs("usage: replay [--broken] TARGET PATH...\n", stderr);
        return 2;
    }
    std::vector<fs::path> files;
    for (int at = 2; at < argc; ++at)
        for (const fs::path &file : files_at(argv[at]))
            files.push_back(fs::absolute(file));
    if (files.empty() || std::freopen("/dev/null", "w", stdout) == nullptr) {
        std::fputs("replay: nothing to replay\n", stderr);
        return 2;
    }
    std::size_t runs = 0;
    if (breaks)
        tell_of_ends();
    for (const fs::path &file : files)
        if (breaks)
            runs += break_bytes(*row, file);
        else
            replay(*row, file);
    std::fprintf(stderr, "%zu files, broken in %zu ways\n", files.size(), runs);
    return 0;
}
