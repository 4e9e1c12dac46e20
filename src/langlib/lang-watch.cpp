#include "langlib/lang-watch.h"

#include "langlib/compiled-file.h"
#include "support/dir_list.h"
#include "support/growing-text.h"
#include "support/string-copy.h"

#include <algorithm>
#include <cstdlib>
#include <sys/inotify.h>
#include <unistd.h>

namespace {

zel::texts_home home;

// The watch. A folder that is put in the place of the watched one is told by the folder above it.
struct {
    int number = -1;
    char *directory = nullptr;
    int above = -1; // the watch of the folder above
} watch;

// A file counts when it is complete: while it is written, no half of it must be read.
constexpr std::uint32_t wanted = IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE | IN_ONLYDIR;

std::string_view without_slashes(std::string_view path)
{
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    return path;
}

std::string_view name_of(std::string_view path)
{
    path = without_slashes(path);
    return path.substr(path.rfind('/') + 1);
}

int watch_above()
{
    const std::string_view path = without_slashes(watch.directory);
    const std::size_t slash = path.rfind('/');
    zel::growing_text above;
    const bool complete = above.append(slash == path.npos ? "." : path.substr(0, slash + 1));
    return complete ? inotify_add_watch(watch.number, above.data(), IN_MOVED_TO | IN_CREATE) : -1;
}

// Watches the directory and what is a folder in it; what is watched already stays so. False when
// there is nothing to watch.
bool watch_folders()
{
    watch.above = watch_above();
    const int itself = inotify_add_watch(watch.number, watch.directory, wanted);
    const dir_list_guard names(dir_list(nullptr, watch.directory, nullptr));
    zel::growing_text path;
    for (const zel_list *one = names.get(); one != nullptr; one = one->next) {
        path.cut(0);
        // Refused for what is no folder.
        if (path.append(watch.directory) && path.append("/") && path.append(dir_list_file(one)))
            inotify_add_watch(watch.number, path.data(), wanted);
    }
    return itself >= 0 || watch.above >= 0;
}

void drop_watch()
{
    if (watch.number >= 0)
        close(watch.number);
    watch.number = -1;
    zel::replace_string(watch.directory, nullptr);
}

bool is_news(const inotify_event &event)
{
    if ((event.mask & IN_Q_OVERFLOW) != 0)
        return true;
    const std::string_view name = event.len == 0 ? "" : event.name;
    if (event.wd == watch.above)
        return name == name_of(watch.directory);
    if ((event.mask & IN_ISDIR) != 0)
        return true;
    return (event.mask & IN_CREATE) == 0 && name.ends_with(zel::compiled_ending);
}

// Reads all that the system has told.
bool read_news()
{
    alignas(inotify_event) char told[4096];
    bool news = false;
    for (ssize_t size = 0; (size = read(watch.number, told, sizeof told)) > 0;)
        for (const char *at = told; at < told + size;) {
            const auto *event = reinterpret_cast<const inotify_event *>(at);
            news = is_news(*event) || news;
            at += sizeof(inotify_event) + event->len;
        }
    return news;
}

} // namespace

const zel::texts_home &zel::loaded_home() { return home; }

void zel::keep_home(const char *directory, const char *languages)
{
    char *languages_copy = zel_strdup(languages);
    // Without the languages the next load would take others.
    const bool complete = languages == nullptr || languages_copy != nullptr;
    replace_string(home.languages, languages_copy);
    replace_string(home.directory, complete ? zel_strdup(directory) : nullptr);
}

int zel::news_begin(const char *directory)
{
    string_guard copy(zel_strdup(directory));
    drop_watch();
    if (!copy)
        return -1;
    watch.number = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (watch.number < 0)
        return -1;
    watch.directory = copy.release();
    if (!watch_folders())
        drop_watch();
    return watch.number;
}

bool zel::news_came()
{
    if (watch.number < 0)
        return true;
    if (!read_news())
        return false;
    // A folder may be new, or in another one's place.
    watch_folders();
    return true;
}

void zel::news_end()
{
    drop_watch();
    keep_home(nullptr, nullptr);
}
