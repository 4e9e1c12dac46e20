#include "editor/frame/recent.h"

#include "support/guard.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <ctime>
#include <memory>

namespace {

constexpr std::size_t most_sources = 10;

// The group by which our sources are found among the files of other programs.
char group[] = "lang-source";

using glib_string = std::unique_ptr<gchar, zel::release<g_free>>;

struct opened {
    std::time_t when;
    std::string path;
};

} // namespace

namespace zel {

void remember_source(const char *path)
{
    const glib_string here(g_get_current_dir());
    const glib_string whole(g_path_is_absolute(path) ? g_strdup(path)
                                                     : g_build_filename(here.get(), path, nullptr));
    const glib_string uri(g_filename_to_uri(whole.get(), nullptr, nullptr));
    if (!uri)
        return;
    // The toolkit's record takes writable texts.
    char mime[] = "application/x-lang-source";
    char name[] = "lang";
    char command[] = "lang edit %f";
    char *groups[] = {group, nullptr};
    const GtkRecentData data{nullptr, nullptr, mime, name, command, groups, FALSE};
    gtk_recent_manager_add_full(gtk_recent_manager_get_default(), uri.get(), &data);
}

std::vector<std::string> recent_sources()
{
    std::vector<opened> all;
    GList *items = gtk_recent_manager_get_items(gtk_recent_manager_get_default());
    for (GList *node = items; node != nullptr; node = node->next) {
        auto *info = static_cast<GtkRecentInfo *>(node->data);
        const glib_string path(
            g_filename_from_uri(gtk_recent_info_get_uri(info), nullptr, nullptr));
        // A file that has been deleted stays in the desktop's list.
        if (path && gtk_recent_info_has_group(info, group) != 0 &&
            gtk_recent_info_exists(info) != 0)
            all.push_back({gtk_recent_info_get_modified(info), path.get()});
        gtk_recent_info_unref(info);
    }
    g_list_free(items);
    // Stable: two files of one second keep the order of the list.
    std::stable_sort(all.begin(), all.end(),
                     [](const opened &a, const opened &b) { return a.when > b.when; });
    std::vector<std::string> paths;
    for (std::size_t at = 0; at < std::min(all.size(), most_sources); ++at)
        paths.push_back(all[at].path);
    return paths;
}

} // namespace zel
