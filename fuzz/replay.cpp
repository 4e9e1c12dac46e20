// Runs a target over files, and over every file of folders: replay TARGET PATH...
// Status 0 when it came through all of them; what does not hold ends the process.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
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

void replay(const target &row, const fs::path &file)
{
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in.good() && !in.eof()) {
        std::fprintf(stderr, "%s: cannot be read\n", file.c_str());
        std::exit(2);
    }
    std::fprintf(stderr, "%s\n", file.c_str()); // the last one named is the one that ended it
    // In a block of its own size, so that a read behind the end is noticed.
    const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
    row.run(exact.data(), exact.size());
}

} // namespace

int main(int argc, char **argv)
{
    const target *row = std::find_if(std::begin(targets), std::end(targets), [&](const auto &one) {
        return argc > 1 && std::strcmp(one.name, argv[1]) == 0;
    });
    if (row == std::end(targets) || argc < 3) {
        std::fputs("usage: replay TARGET PATH...\n", stderr);
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
    for (const fs::path &file : files)
        replay(*row, file);
    std::fprintf(stderr, "%zu files\n", files.size());
    return 0;
}
