#include "editor/w_tab_shot.h"

#include "app/global.h"
#include "editor/accessible.h"
#include "support/string-copy.h"

#include <gtk/gtk.h>

#include <cstdio>
#include <cstring>

namespace {

constexpr std::size_t path_size = 2048;

void shot_path(char *path, const char *group)
{
    if (lang_global.src_dir != nullptr)
        g_snprintf(path, path_size, "%s/%s/%s.jpg", lang_global.src_dir, "ScreenShots", group);
    else
        g_snprintf(path, path_size, "%s/%s.jpg", "ScreenShots", group);
}

} // namespace

namespace zel {

void tab_drop_shot()
{
    if (lang_global.shot_image != nullptr)
        gtk_widget_destroy(lang_global.shot_image);
    lang_global.shot_image = nullptr;
}

void tab_show_shot(char *&last_group, const char *group)
{
    if (lang_global.shot_window == nullptr || group == nullptr ||
        std::strcmp(group, last_group) == 0)
        return;
    tab_drop_shot();
    char path[path_size];
    shot_path(path, group);
    std::printf("file >%s<\n", path);
    GtkWidget *image = gtk_image_new_from_file(path);
    lang_global.shot_image = image;
    // The page may go before the table does.
    g_signal_connect(image, "destroy", G_CALLBACK(gtk_widget_destroyed), &lang_global.shot_image);
    zel::set_accessible_name(image, "Screen Shot");
    gtk_scrolled_window_add_with_viewport(GTK_SCROLLED_WINDOW(lang_global.shot_window), image);
    gtk_widget_show(image);
    replace_string(last_group, zel_strdup2(group));
}

} // namespace zel
