#include "support.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <unistd.h>

#include "source/lang-read.h"
#include "source/lang-write.h"

namespace fuzz {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t now = 1700000000;

// In memory where there is such a place: a run writes several files.
class own_folder {
public:
    own_folder()
    {
        std::error_code none;
        const fs::path memory = "/dev/shm";
        std::string pattern =
            (fs::is_directory(memory, none) ? memory : fs::temp_directory_path()) /
            "lang-fuzz-XXXXXX";
        back_ = fs::current_path(none);
        require(mkdtemp(pattern.data()) != nullptr && chdir(pattern.c_str()) == 0, "a folder");
        path_ = pattern;
        setenv("HOME", path_.c_str(), 1);
    }
    ~own_folder()
    {
        std::error_code ignored;
        fs::current_path(back_, ignored);
        fs::remove_all(path_, ignored);
    }
    own_folder(const own_folder &) = delete;
    own_folder &operator=(const own_folder &) = delete;
    const std::string &path() const { return path_; }

private:
    std::string path_;
    fs::path back_;
};

const std::string &folder()
{
    static const own_folder made;
    return made.path();
}

} // namespace

void require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

const char *as_file(const char *name, std::string_view bytes)
{
    folder();
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    require(out.good(), "room for a file");
    return name;
}

std::string file_text(const char *name)
{
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void empty_folder()
{
    for (const auto &entry : fs::directory_iterator(folder()))
        fs::remove_all(entry.path());
}

std::vector<std::string> parts(std::string_view bytes, std::size_t count)
{
    constexpr std::string_view line = "\n====\n";
    std::vector<std::string> all;
    while (all.size() + 1 < count) {
        const std::size_t end = bytes.find(line);
        all.emplace_back(bytes.substr(0, end));
        bytes.remove_prefix(end == bytes.npos ? bytes.size() : end + line.size());
    }
    all.emplace_back(bytes);
    return all;
}

source_guard small_source()
{
    const char *path =
        as_file("small.lang-src",
                "define format utf8\ndefine file \"english.lang\" lang \"english\" 200 200 1\n"
                "define file \"german.lang\" lang \"german\" 200 200 1\n"
                "group \"menu\" { item \"_Open\" { used yes lang \"english\" { \"_Open\" }\n"
                "lang \"german\" { \"_Oeffnen\" } comment \"german\" { \"note\" } } }\n"
                "group \"g:h\" { item \"%s\\n\" { used yes } item \"\" { used yes } }\n");
    source_guard source = std::move(zel::read_source(path, {now}).source);
    require(source != nullptr, "the small source reads");
    return source;
}

std::string written(LangSource *source)
{
    zel::write_how how;
    how.now = now;
    how.keep_mtime = true;
    how.name = "w";
    how.backup = false;
    require(zel::write_source("written", source, how).code == 0, "the source can be written");
    return file_text("written");
}

} // namespace fuzz
