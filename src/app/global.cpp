#include "app/global.h"

#include "app/memory.h"
#include "support/file-call.h"
#include "support/log.h"
#include "support/string-copy.h"
#include "support/string.h"
#include "support/text.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <system_error>

lang_global_t lang_global;

namespace {

// Folder in the user's home, not a version: under another name the settings and the log would not
// be found again.
constexpr const char *home_name = "Morvalix 6.00";
constexpr std::size_t log_path_size = 2048; // with the NUL; a longer path is cut

char *lang_home;

// As built, lang-data lies beside the program. As installed, the way from the program to its data
// was fixed when it was built.
std::string data_directory()
{
    const std::string program = zel::program_directory();
    std::error_code ignored;
    std::string built = program + "lang-data";
    if (std::filesystem::exists(built, ignored))
        return built;
    return std::filesystem::path(program + LANG_DATA_FROM_PROGRAM).lexically_normal();
}

// Opens the program log, unless its path had to be cut: the cut path would name another file.
void open_log(const char *path, bool is_cut)
{
    if (is_cut)
        std::fputs("lang: the path of HOME is too long: there is no log\n", stderr);
    else if (zel::crosses_foreign_link(path))
        // Opening empties the file: behind somebody else's link that may be any of the user's.
        std::fprintf(stderr, "lang: %s is behind somebody else's link: there is no log\n", path);
    LogOpen(is_cut ? nullptr : path, LOG_OPEN_NEW, "ZEL Language editor");
}

// Frees what an earlier call filled in: lang_global_init may be called again.
void clear_record()
{
    std::free(lang_global.doc_base_dir);
    std::free(lang_global.doc_dir);
    std::free(lang_global.log_file);
    lang_global = {};
}

} // namespace

std::string zel::program_directory()
{
    // argv[0] would not do: it may be a bare word that the shell found in PATH.
    std::error_code ignored;
    const std::string program = std::filesystem::read_symlink("/proc/self/exe", ignored);
    return program.substr(0, program.rfind('/') + 1);
}

void lang_global_init()
{
    clear_record();
    // Beyond the size limit a write then fails, like on a full disk, instead of a signal that ends
    // the program in the middle of a save.
    std::signal(SIGXFSZ, SIG_IGN);
    lang_global.start_time = std::time(nullptr);
    std::string log_path = std::string(lang_get_home()) + "/log/lang.log";
    const bool is_cut = log_path.size() >= log_path_size;
    if (is_cut)
        log_path.resize(log_path_size - 1);
    lang_global.log_file = zel_strdup(log_path.c_str());
    open_log(log_path.c_str(), is_cut);
    lang_global.doc_base_dir = zel_strdup(data_directory().c_str());
    lang_global.doc_dir = zel_strdup_printf("%s/doc", zel::or_empty(lang_global.doc_base_dir));
}

const char *lang_get_home()
{
    // HOME is read once: a later change of the environment does not move the files.
    if (lang_home == nullptr) {
        const char *home = std::getenv("HOME");
        lang_home = zel_strdup_printf("%s/%s", zel::or_empty(home), home_name);
        if (lang_home == nullptr)
            zel::end_for_memory();
    }
    return lang_home;
}

void lang_home_free() { zel::replace_string(lang_home, nullptr); }

void lang_exit(int status) { std::exit(status); }
