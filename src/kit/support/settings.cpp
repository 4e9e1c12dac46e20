#include "kit/support/settings.h"

#include <cstdio>
#include <cstring>
#include <memory>

#include <glib.h>

namespace zel::kit {

namespace {

constexpr const char *file_name = "lang-kit.ini";

struct key_file_release {
    void operator()(GKeyFile *file) const noexcept { g_key_file_free(file); }
};
using key_file = std::unique_ptr<GKeyFile, key_file_release>;

struct strings_release {
    void operator()(gchar **list) const noexcept { g_strfreev(list); }
};
using strings = std::unique_ptr<gchar *, strings_release>;

// One line of the file, and where its value goes.
struct row {
    const char *section;
    const char *key;
    std::vector<std::string> settings::*list = nullptr;
    std::string settings::*text = nullptr;
};
constexpr row rows[] = {
    {"project", "code", &settings::code},
    {"project", "keywords", &settings::keywords},
    {"project", "group", nullptr, &settings::group},
    {"project", "languages", &settings::languages},
    {"lint", "fail-on", nullptr, &settings::fail_on},
    {"lint", "without", &settings::without},
    {"lint", "baseline", nullptr, &settings::baseline},
};

const row *find_row(const char *section, const char *key)
{
    for (const row &one : rows)
        if (std::strcmp(one.section, section) == 0 && std::strcmp(one.key, key) == 0)
            return &one;
    return nullptr;
}

bool complain(const std::string &path, const std::string &text)
{
    std::fprintf(stderr, "lang-kit: %s: %s\n", path.c_str(), text.c_str());
    return false;
}

// Takes one value. The rules of "without" may stand between commas, as in the option.
void take(GKeyFile *file, const row &to, settings &out)
{
    if (to.text != nullptr) {
        gchar *value = g_key_file_get_string(file, to.section, to.key, nullptr);
        out.*to.text = value == nullptr ? "" : value;
        g_free(value);
        return;
    }
    const bool commas = to.list == &settings::without;
    // The separator belongs to the whole file, so it is set before each list.
    g_key_file_set_list_separator(file, commas ? ',' : ';');
    const strings list(g_key_file_get_string_list(file, to.section, to.key, nullptr, nullptr));
    for (gchar **one = list.get(); one != nullptr && *one != nullptr; ++one)
        if (*g_strstrip(*one) != '\0')
            (out.*to.list).emplace_back(*one);
}

bool take_all(const std::string &path, GKeyFile *file, settings &out)
{
    const strings sections(g_key_file_get_groups(file, nullptr));
    for (gchar **section = sections.get(); *section != nullptr; ++section) {
        const strings keys(g_key_file_get_keys(file, *section, nullptr, nullptr));
        for (gchar **key = keys.get(); key != nullptr && *key != nullptr; ++key) {
            const row *to = find_row(*section, *key);
            // A misspelt setting must not stay unnoticed.
            if (to == nullptr)
                return complain(path, std::string("there is no setting \"") + *key + "\" in [" +
                                          *section + "]");
            take(file, *to, out);
        }
    }
    return true;
}

} // namespace

bool read_settings(const std::string &source, settings &out)
{
    // The file lies beside the source: wherever the command runs, it finds the same settings.
    const std::size_t slash = source.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : source.substr(0, slash + 1);
    const std::string path = folder + file_name;
    const key_file file(g_key_file_new());
    GError *error = nullptr;
    if (g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_NONE, &error) == FALSE) {
        const std::string why = error->message;
        const bool absent = g_error_matches(error, G_FILE_ERROR, G_FILE_ERROR_NOENT) != FALSE;
        g_error_free(error);
        return absent || complain(path, why);
    }
    if (!take_all(path, file.get(), out))
        return false;
    // Relative to the settings' folder, wherever the command runs.
    for (std::string &code : out.code)
        if (code.front() != '/')
            code.insert(0, folder);
    if (!out.baseline.empty() && out.baseline.front() != '/')
        out.baseline.insert(0, folder);
    return true;
}

} // namespace zel::kit
