#pragma once

// What tests of several folders need: a temporary directory, whole files, and what a call prints.
// Failures of the helpers themselves end the test program: a test without its directory says
// nothing.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace zel_test {

inline void require(bool good, const char *what)
{
    if (!good) {
        std::perror(what);
        std::abort();
    }
}

// A fresh directory that is removed with everything in it. With enter::yes the process works in it
// until then.
class temp_dir {
public:
    enum class enter { no, yes };

    explicit temp_dir(enter how = enter::no)
    {
        std::string pattern = std::filesystem::temp_directory_path() / "lang-test-XXXXXX";
        require(mkdtemp(pattern.data()) != nullptr, "mkdtemp");
        path_ = pattern;
        if (how == enter::yes) {
            back_ = std::filesystem::current_path();
            require(chdir(path_.c_str()) == 0, "chdir");
        }
    }

    ~temp_dir()
    {
        std::error_code ignored;
        if (!back_.empty())
            std::filesystem::current_path(back_, ignored);
        std::filesystem::remove_all(path_, ignored);
    }

    temp_dir(const temp_dir &) = delete;
    temp_dir &operator=(const temp_dir &) = delete;

    const std::string &path() const { return path_; }

    // The path of a name in the directory.
    std::string operator/(const std::string &name) const { return path_ + "/" + name; }

private:
    std::string path_;
    std::string back_;
};

// The bytes of a file; empty when it cannot be read.
inline std::string read_file(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline void write_file(const std::string &path, const std::string &text)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    require(out.good(), path.c_str());
}

// Everything that goes to a file descriptor while the function runs, whichever way it is written;
// the stream is the one that buffers for that descriptor.
template <class Function>
std::string capture(int fd, std::FILE *stream, Function &&function)
{
    std::FILE *file = std::tmpfile();
    require(file != nullptr, "tmpfile");
    std::fflush(stream);
    const int saved = dup(fd);
    require(saved >= 0 && dup2(fileno(file), fd) >= 0, "dup2");
    std::forward<Function>(function)();
    std::fflush(stream);
    require(dup2(saved, fd) >= 0, "dup2");
    close(saved);

    std::string text;
    std::rewind(file);
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
        text.push_back(static_cast<char>(c));
    std::fclose(file);
    return text;
}

template <class Function>
std::string capture_stdout(Function &&function)
{
    return capture(STDOUT_FILENO, stdout, std::forward<Function>(function));
}

template <class Function>
std::string capture_stderr(Function &&function)
{
    return capture(STDERR_FILENO, stderr, std::forward<Function>(function));
}

// A malloc'd string as a value; a null pointer becomes "(null)", so that it shows in a comparison.
inline std::string take(char *owned)
{
    std::string text = owned == nullptr ? "(null)" : owned;
    std::free(owned);
    return text;
}

} // namespace zel_test
