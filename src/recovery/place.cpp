#include "recovery/place.h"

#include "app/global.h"
#include "support/file-call.h"
#include "support/log-print.h"
#include "support/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <glib.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

// The log says why there is no folder; the editor goes on without recovery files.
std::string refuse(const std::string &folder, const char *why)
{
    LogPrint(1, "recovery: ERROR no recovery files in >%s<: %s\n", folder.c_str(), why);
    return {};
}

// 0 or errno.
int make_folder(const std::string &path)
{
    return mkdir(path.c_str(), 0700) == 0 || errno == EEXIST ? 0 : errno;
}

} // namespace

namespace zel {

std::string absolute_path(const char *source)
{
    std::error_code error;
    std::filesystem::path path = std::filesystem::weakly_canonical(or_empty(source), error);
    // A folder on the way that cannot be searched: the name as it was typed will have to do.
    if (error)
        path = std::filesystem::absolute(or_empty(source), error);
    return error ? std::string(or_empty(source)) : path.string();
}

std::string recovery_folder()
{
    const std::string home = lang_get_home();
    std::string folder = home + "/recovery";
    const char *user = std::getenv("HOME");
    if (user == nullptr || *user != '/')
        return refuse(folder, "HOME is no absolute path");
    // A link of somebody else's could lead our texts into a folder that others read.
    if (crosses_foreign_link(folder.c_str()))
        return refuse(folder, "it is behind somebody else's link");
    int error = make_folder(home);
    if (error == 0)
        error = make_folder(folder);
    struct stat status {};
    if (error == 0 && lstat(folder.c_str(), &status) != 0)
        error = errno;
    if (error != 0)
        return refuse(folder, std::strerror(error));
    if (!S_ISDIR(status.st_mode))
        return refuse(folder, "it is no folder");
    // The folder of another user could be exchanged or read by its owner at any time.
    if (status.st_uid != geteuid())
        return refuse(folder, "it is somebody else's");
    // Texts that nobody has published yet are no business of other users.
    if ((status.st_mode & 0077) != 0 && chmod(folder.c_str(), 0700) != 0)
        return refuse(folder, std::strerror(errno));
    return folder;
}

std::string name_of_source(const std::string &absolute)
{
    // The hash tells sources of one name in different folders apart, the tail is for people.
    constexpr std::size_t hash_digits = 16;
    constexpr std::size_t longest_tail = 60;
    gchar *hash = g_compute_checksum_for_string(G_CHECKSUM_SHA256, absolute.c_str(), -1);
    std::string name(hash, hash_digits);
    g_free(hash);
    std::string tail = absolute.substr(absolute.rfind('/') + 1);
    if (tail.ends_with(".lang-src"))
        tail.resize(tail.size() - std::strlen(".lang-src"));
    tail.resize(std::min(tail.size(), longest_tail));
    for (char &c : tail)
        c = is_letter(c) || is_digit(c) || c == '-' || c == '_' ? c : '_';
    return name + "-" + tail;
}

} // namespace zel
