#pragma once

// Locales for tests, made with localedef where the system has their definitions, and found by the
// test and the programs it starts through LOCPATH. Those in which a careless program stumbles: the
// Turkish "i" is no small "I", and German numbers have a comma.

#include <array>
#include <clocale>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

namespace zel_test {

struct test_locale {
    const char *name;
    const char *language;
    const char *charset;
};
inline constexpr std::array test_locales = {
    test_locale{"tr_TR.UTF-8", "tr_TR", "UTF-8"},
    test_locale{"tr_TR.ISO-8859-9", "tr_TR", "ISO-8859-9"},
    test_locale{"de_DE.UTF-8", "de_DE", "UTF-8"},
};

// The folder of the locales, made on first need for all test programs of the build; empty where
// they cannot be made. Several programs may come here at once: one makes them, the others wait.
inline std::string make_locales(const std::string &folder)
{
    namespace fs = std::filesystem;
    std::error_code ignored;
    const int turn = open((folder + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    flock(turn, LOCK_EX); // it takes long, and is made once
    const std::string own = folder + "." + std::to_string(getpid());
    if (!fs::exists(folder, ignored)) {
        fs::create_directories(own, ignored);
        for (const test_locale &one : test_locales) {
            const std::string command = std::string("localedef -i ") + one.language + " -f " +
                                        one.charset + " '" + own + "/" + one.name +
                                        "' >/dev/null 2>&1";
            static_cast<void>(std::system(command.c_str())); // warnings end it with 1
        }
        fs::rename(own, folder, ignored);
        fs::remove_all(own, ignored);
    }
    close(turn);
    for (const test_locale &one : test_locales)
        if (!fs::exists(folder + "/" + one.name + "/LC_CTYPE", ignored))
            return {};
    return folder;
}

// False where there are no such locales; a test that gets it skips itself.
inline bool find_locales()
{
    static const std::string folder = make_locales(LANG_TEST_LOCALES);
    if (folder.empty())
        return false;
    setenv("LOCPATH", folder.c_str(), 1);
    return true;
}

// The process is in the locale while this lives.
class in_locale {
public:
    explicit in_locale(const char *name) : good_(std::setlocale(LC_ALL, name) != nullptr) {}
    ~in_locale() { std::setlocale(LC_ALL, "C"); }
    in_locale(const in_locale &) = delete;
    in_locale &operator=(const in_locale &) = delete;
    explicit operator bool() const { return good_; }

private:
    bool good_;
};

// Calls the function with the name of each locale, the process being in it. False where there are
// none.
template <class Function>
bool in_each_locale(Function &&function)
{
    if (!find_locales())
        return false;
    for (const test_locale &one : test_locales)
        if (const in_locale there(one.name); there)
            function(one.name);
        else
            return false;
    return true;
}

} // namespace zel_test
