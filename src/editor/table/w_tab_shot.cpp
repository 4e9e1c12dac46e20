#include "editor/table/w_tab_shot.h"

#include "app/global.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/kept.h"
#include "editor/toolkit/ui-text.h"
#include "source/picture-index.h"
#include "support/file-call.h"
#include "support/log-print.h"
#include "support/string-copy.h"

#include <gdk/gdkkeysyms.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <tuple>
#include <utility>

namespace {

constexpr std::size_t path_size = 2048;

void shot_path(char *path, const char *group)
{
    // A source that is named without a folder has its pictures below the current one.
    if (lang_global.src_dir != nullptr)
        g_snprintf(path, path_size, "%s/%s/%s.jpg", lang_global.src_dir, "ScreenShots", group);
    else
        g_snprintf(path, path_size, "%s/%s.jpg", "ScreenShots", group);
}

// The folder of the pictures, by the same rule.
std::string shot_folder()
{
    const std::string name(zel::picture_folder);
    return lang_global.src_dir == nullptr ? name : lang_global.src_dir + ("/" + name);
}

// The path of the text's own picture; empty without one. The index is read again when the file has
// been replaced, as lang-kit shots does.
std::string text_shot_path(const char *group, const char *item)
{
    static std::pair<std::string, zel::file_stamp> read_from;
    static std::map<zel::text_key, std::string> pictures;
    const std::string folder = shot_folder();
    const std::string index = folder + "/" + std::string(zel::picture_index_name);
    if (item == nullptr)
        return {};
    std::pair now{folder, zel::stamp_of(index.c_str())};
    if (now != read_from) {
        read_from = std::move(now);
        pictures = zel::pictures_by_text(zel::read_picture_index(folder));
    }
    const auto found = pictures.find({group, item});
    return found == pictures.end() ? std::string() : folder + "/" + found->second;
}

constexpr int between_pictures = 4;

// A group's picture in its image widget. The file is read only when the user looks at the page,
// since most pictures are never seen, and made small enough for the page unless the user asks for
// all of it.
struct shot {
    GtkWidget *image;
    std::string path;
    GdkPixbuf *picture = nullptr; // as it is in the file; null before and without
    bool is_read = false;
    bool is_full = false;
    int width = 0; // of the page that it was made small for
    int height = 0;
    guint waiting = 0; // the idle handler that shows it again

    shot(GtkWidget *in, const char *at) : image(in), path(at) {}
    shot(const shot &) = delete;
    shot &operator=(const shot &) = delete;
    ~shot()
    {
        if (waiting != 0)
            g_source_remove(waiting);
        if (picture != nullptr)
            g_object_unref(picture);
    }
};

// The room that a page of this size leaves for a picture without scrollbars: all within the line
// that the theme draws around it.
std::pair<int, int> room_in(const GtkAllocation &page)
{
    const GtkStyle *style =
        gtk_widget_get_style(gtk_bin_get_child(GTK_BIN(lang_global.shot_window)));
    return {std::max(page.width - 2 * style->xthickness, 1),
            std::max(page.height - 2 * style->ythickness, 1)};
}

void measure_page(shot &of)
{
    GtkAllocation page{};
    gtk_widget_get_allocation(lang_global.shot_window, &page);
    std::tie(of.width, of.height) = room_in(page);
}

// The picture of a text stands beside its group's, in a box that is there from the first one on.
GtkWidget *text_image;

bool is_in_box(GtkWidget *image) { return GTK_IS_BOX(gtk_widget_get_parent(image)); }

shot &shot_of(GtkWidget *image)
{
    return *static_cast<shot *>(g_object_get_data(G_OBJECT(image), "zel-shot"));
}

void show_picture(shot &of)
{
    const int width = gdk_pixbuf_get_width(of.picture);
    const int height = gdk_pixbuf_get_height(of.picture);
    const int room =
        text_image == nullptr ? of.width : std::max((of.width - between_pictures) / 2, 1);
    const double part =
        std::min(static_cast<double>(room) / width, static_cast<double>(of.height) / height);
    // A small picture is not made larger.
    if (of.is_full || part >= 1) {
        gtk_image_set_from_pixbuf(GTK_IMAGE(of.image), of.picture);
        return;
    }
    GdkPixbuf *small =
        gdk_pixbuf_scale_simple(of.picture, std::max(static_cast<int>(width * part), 1),
                                std::max(static_cast<int>(height * part), 1), GDK_INTERP_BILINEAR);
    if (small == nullptr) // no memory for it
        return;
    gtk_image_set_from_pixbuf(GTK_IMAGE(of.image), small);
    g_object_unref(small);
}

gboolean show_anew(gpointer data)
{
    shot &of = *static_cast<shot *>(data);
    of.waiting = 0;
    measure_page(of);
    show_picture(of);
    return FALSE;
}

void page_is_seen(GtkWidget *, gpointer data)
{
    shot &of = *static_cast<shot *>(data);
    // Also a file that cannot be read is tried once only.
    if (!of.is_read) {
        of.is_read = true;
        of.picture = gdk_pixbuf_new_from_file(of.path.c_str(), nullptr);
        if (of.picture == nullptr) // the toolkit's sign for that
            gtk_image_set_from_file(GTK_IMAGE(of.image), of.path.c_str());
    }
    if (of.picture != nullptr)
        show_anew(&of);
}

// The page's size has changed. The picture follows from an idle handler, since the toolkit is
// giving out sizes just now, and a new picture would ask for another round.
void page_has_size(GtkWidget *, GtkAllocation *place, gpointer image)
{
    shot *of = &shot_of(GTK_WIDGET(image));
    const bool is_other = std::pair(of->width, of->height) != room_in(*place);
    // Only a picture that was made small depends on the page.
    if (of->picture != nullptr && !of->is_full && is_other && of->waiting == 0)
        of->waiting = g_idle_add(show_anew, of);
}

void change_size(GtkWidget *image)
{
    shot &of = shot_of(image);
    if (of.picture == nullptr)
        return;
    of.is_full = !of.is_full;
    show_anew(&of);
}

gboolean page_clicked(GtkWidget *page, GdkEventButton *event, gpointer image)
{
    if (event->button != 1 || event->type != GDK_BUTTON_PRESS)
        return FALSE;
    // The Return key acts on the page that was clicked last.
    gtk_widget_grab_focus(page);
    change_size(GTK_WIDGET(image));
    return TRUE;
}

gboolean page_key(GtkWidget *, GdkEventKey *event, gpointer image)
{
    if (event->keyval != GDK_KEY_Return && event->keyval != GDK_KEY_space)
        return FALSE;
    change_size(GTK_WIDGET(image));
    return TRUE;
}

GtkWidget *make_image(const char *path)
{
    GtkWidget *image = gtk_image_new();
    auto *made = new shot(image, path);
    zel::keep_at(image, "zel-shot", made);
    g_signal_connect(image, "map", G_CALLBACK(page_is_seen), made);
    zel::set_accessible_name(image, "Screen Shot");
    gtk_widget_set_tooltip_text(
        image,
        zel::ui_text("common", "A click or Return shows the whole picture, and the whole page"));
    return image;
}

// Connects the handlers of the page, which outlives its pictures: each is disconnected with its
// image.
void watch_page(GtkWidget *image)
{
    GtkWidget *viewport = gtk_bin_get_child(GTK_BIN(lang_global.shot_window));
    gtk_widget_add_events(viewport, GDK_BUTTON_PRESS_MASK);
    gtk_widget_set_can_focus(viewport, TRUE);
    zel::set_accessible_name(viewport, zel::ui_text("common", "Screen Shot"));
    g_signal_connect_object(viewport, "button-press-event", G_CALLBACK(page_clicked), image,
                            GConnectFlags{});
    g_signal_connect_object(viewport, "key-press-event", G_CALLBACK(page_key), image,
                            GConnectFlags{});
    g_signal_connect_object(lang_global.shot_window, "size-allocate", G_CALLBACK(page_has_size),
                            image, GConnectFlags{});
}

// Returns the box in which the group's picture stands, made around it.
GtkWidget *box_around(GtkWidget *image)
{
    GtkWidget *parent = gtk_widget_get_parent(image);
    if (is_in_box(image))
        return parent;
    GtkWidget *box = gtk_hbox_new(FALSE, between_pictures);
    g_object_ref(image);
    gtk_container_remove(GTK_CONTAINER(parent), image);
    gtk_box_pack_start(GTK_BOX(box), image, TRUE, TRUE, 0);
    g_object_unref(image);
    gtk_container_add(GTK_CONTAINER(parent), box);
    gtk_widget_show(box);
    return box;
}

void add_text_image(const std::string &path)
{
    LogPrint(1, "tab_show_shot: picture of the text >%s<\n", path.c_str());
    GtkWidget *box = box_around(lang_global.shot_image);
    text_image = make_image(path.c_str());
    g_signal_connect(text_image, "destroy", G_CALLBACK(gtk_widget_destroyed), &text_image);
    gtk_box_pack_start(GTK_BOX(box), text_image, TRUE, TRUE, 0);
    watch_page(text_image);
    gtk_widget_show(text_image);
}

// Shows the picture beside the group's; with an empty path that one is alone.
void show_text_image(const std::string &path)
{
    if (lang_global.shot_image == nullptr ||
        path == (text_image == nullptr ? std::string() : shot_of(text_image).path))
        return;
    if (text_image != nullptr)
        gtk_widget_destroy(text_image);
    if (!path.empty())
        add_text_image(path);
    // The group's picture has more room now, or less.
    shot &group = shot_of(lang_global.shot_image);
    if (group.picture != nullptr)
        show_anew(&group);
}

void show_group_image(char *&last_group, const char *group)
{
    zel::tab_drop_shot();
    char path[path_size];
    shot_path(path, group);
    std::printf("file >%s<\n", path);
    GtkWidget *image = make_image(path);
    lang_global.shot_image = image;
    // The page may be destroyed before the table is.
    g_signal_connect(image, "destroy", G_CALLBACK(gtk_widget_destroyed), &lang_global.shot_image);
    GtkScrolledWindow *page = GTK_SCROLLED_WINDOW(lang_global.shot_window);
    gtk_scrolled_window_add_with_viewport(page, image);
    // A picture that fits has nothing to scroll.
    gtk_scrolled_window_set_policy(page, GTK_POLICY_AUTOMATIC, GTK_POLICY_AUTOMATIC);
    watch_page(image);
    gtk_widget_show(image);
    // Set also when there is no such file: it is not looked for again at each row of the group.
    zel::replace_string(last_group, zel_strdup2(group));
}

} // namespace

void zel::tab_drop_shot()
{
    GtkWidget *image = lang_global.shot_image;
    if (image != nullptr)
        gtk_widget_destroy(is_in_box(image) ? gtk_widget_get_parent(image) : image);
    lang_global.shot_image = nullptr;
}

void zel::tab_show_shot(char *&last_group, const char *group, const char *item)
{
    if (lang_global.shot_window == nullptr || group == nullptr)
        return;
    if (std::strcmp(group, last_group) != 0)
        show_group_image(last_group, group);
    show_text_image(text_shot_path(group, item));
}
