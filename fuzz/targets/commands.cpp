// The whole program over a source and code that lie in its folder: the first part names the command
// by a letter. Whatever they hold, the source's old text stays, in its place or as a backup.

#include "support.h"

#include <csetjmp>
#include <filesystem>

#include "app/global.h"
#include "cli/driver.h"
#include "family/argv.h"
#include "support/log.h"

namespace {

constexpr const char *lines[] = {
    "convert app.lang-src new.lang-src",
    "convert -only-used app.lang-src app.lang-src",
    "check app.lang-src code.c",
    "check app.lang-src .",
    "compile -dst-dir out app.lang-src",
    "compile app.lang-src",
    "excel unicode app.lang-src keys.slk",
    "-output-lang-1 english -output-lang-2 german convert app.lang-src app.lang-src",
};

std::jmp_buf at_end;

// What a command holds when it ends the process is no leak; both are there with a leak checker.
extern "C" [[gnu::weak]] void __lsan_disable();
extern "C" [[gnu::weak]] void __lsan_enable();

bool some_backup_holds(const std::string &text)
{
    for (const auto &entry : std::filesystem::directory_iterator("."))
        if (entry.path().extension() == ".bak" && fuzz::file_text(entry.path().c_str()) == text)
            return true;
    return false;
}

void run(const char *line)
{
    int count = 0;
    char **words = nullptr;
    gen_argv((std::string("lang ") + line).c_str(), &count, &words);
    gen_argv_add_null(&count, &words);
    if (__lsan_disable != nullptr)
        __lsan_disable();
    if (setjmp(at_end) == 0)
        lang_edit(count, words);
    if (__lsan_enable != nullptr)
        __lsan_enable();
    del_argv(&count, &words);
    LogClose();
    lang_home_free();
}

} // namespace

// In place of lang_exit: what ends the process ends a run here. The linker is told so.
extern "C" [[noreturn]] void __wrap__Z9lang_exiti(int) { std::longjmp(at_end, 1); }

extern "C" int FUZZ_TARGET(commands)(const std::uint8_t *data, std::size_t size)
{
    const std::vector<std::string> part = fuzz::parts(fuzz::bytes_of(data, size), 3);
    const unsigned char letter = part[0].empty() ? 'a' : static_cast<unsigned char>(part[0][0]);
    const char *line = lines[(letter - 'a') % std::size(lines)];
    const bool leads_out = part[1].find('/') != part[1].npos; // a definition names the file
    if (leads_out && line == lines[5])
        line = lines[4];
    fuzz::empty_folder();
    std::filesystem::create_directory("out");
    fuzz::as_file("app.lang-src", part[1]);
    fuzz::as_file("code.c", part[2]);
    run(line);
    fuzz::require(fuzz::file_text("app.lang-src") == part[1] || some_backup_holds(part[1]),
                  "the old text is there");
    return 0;
}
