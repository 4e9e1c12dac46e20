#include "compiler/language-path.h"

#include "langlib/compiled-file.h"
#include "support/dir_list.h"
#include "support/file-call.h"
#include "support/gen_path.h"
#include "support/text.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

// Bytes of a language's name. A longer one would be cut on its way and name another folder.
constexpr std::size_t name_limit = 2038;

bool has_step_up(std::string_view path)
{
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        if (path.substr(at, end - at) == "..")
            return true;
        at = end + 1;
    }
    return false;
}

// Whether cre_dir would take a part of the name for a drive or a network share, that is, for a
// place outside the destination.
bool has_root(const std::string &directory)
{
    std::vector<char> token(directory.size() + 3);
    const char *cursor = directory.c_str();
    for (;;) {
        switch (cd_next_token(&cursor, token.data())) {
        case CD_END:
            return false;
        case CD_DRIVE:
        case CD_NETWORK:
            return true;
        default:
            break;
        }
    }
}

// Whether a part of the path below the destination is somebody else's symbolic link.
bool has_foreign_link_below(std::size_t destination, const std::string &path)
{
    for (std::size_t end = destination; end != std::string::npos;) {
        end = path.find('/', end + 1);
        if (zel::is_foreign_link(path.substr(0, end).c_str()))
            return true;
    }
    return false;
}

// Whether the path stays inside the destination once its links are resolved, or leaves it by the
// user's own links alone. Parts that do not exist yet are taken as they stand.
bool stays_below(const std::string &destination, const std::string &path)
{
    if (!has_foreign_link_below(destination.size(), path))
        return true;
    std::error_code error;
    const fs::path root = fs::canonical(destination, error);
    const fs::path real = error ? fs::path() : fs::weakly_canonical(path, error);
    return !error &&
           std::mismatch(root.begin(), root.end(), real.begin(), real.end()).first == root.end();
}

void end_once(std::string &path)
{
    // Sources name the file with or without its ending: either way the file has it once.
    constexpr std::string_view ending = zel::compiled_ending;
    if (path.ends_with(ending))
        path.resize(path.size() - ending.size());
    path.append(ending);
}

zel::language_path path_below(const char *destination, const lang_t *lang)
{
    const std::string name = zel::or_empty(lang->name);
    const std::string directory = name + "-edit";
    const char *file = zel::or_empty(lang->file);
    std::vector<char> path(std::strlen(destination) + directory.size() + std::strlen(file) + 8);
    gen_path(path.data(), 0, destination, directory.c_str(), file, nullptr);
    zel::language_path result{path.data(), false};
    end_once(result.path);
    // All of this is checked before the folder is made: a hostile source must not make folders
    // elsewhere.
    const std::string folder = std::string(destination) + "/" + directory;
    if (name.size() > name_limit || has_step_up(directory) || has_step_up(file) ||
        has_root(directory) || !stays_below(destination, folder))
        return result;
    cre_dir(destination, directory.c_str());
    // Checked again with the file's own name: that may be a link, and somebody may have put one in
    // the folder's place meanwhile.
    result.is_allowed = stays_below(destination, result.path);
    return result;
}

} // namespace

namespace zel {

language_path path_of_language(const lang_t *lang, const char *destination)
{
    if (destination != nullptr)
        return path_below(destination, lang);
    // Without a destination the path is the source's own, and no folder confines it.
    language_path result{zel::or_empty(lang->file)};
    end_once(result.path);
    return result;
}

} // namespace zel
