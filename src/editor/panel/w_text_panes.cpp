#include "editor/panel/w_text_panes.h"

#include "app/global.h"
#include "editor/toolkit/measure.h"

#include <algorithm>
#include <initializer_list>

namespace {

constexpr const char *panel_key = "zel-panel"; // where the box keeps the panel's record
constexpr int scroll_bar = 20;
constexpr int least_used_in = 110; // where it has something to show
constexpr int easy_letters = 40;   // of a line that reads well

int label_width(GtkWidget *label)
{
    return zel::width_in_line(label, gtk_label_get_text(GTK_LABEL(label)));
}

int letters_width(GtkWidget *view, int letters)
{
    return PANGO_PIXELS(letters * zel::font_size_of(view).letter);
}

// Whether an item is shown of which nothing is told beside its fields.
bool has_nothing_beside(const Zeltext *text)
{
    return text->item != nullptr && gtk_widget_get_visible(text->all_findings) == 0 &&
           gtk_text_buffer_get_char_count(
               gtk_text_view_get_buffer(GTK_TEXT_VIEW(text->used_in_view))) == 0;
}

// The width of "Used in" in a room for both. The fields want their captions whole.
int used_in_share(const Zeltext *text, GtkWidget *used_in, int room)
{
    int asked = 0;
    gtk_widget_get_size_request(used_in, &asked, nullptr);
    int wish = 0;
    for (GtkWidget *label :
         {text->comment1_label, text->trans1_label, text->comment2_label, text->trans2_label})
        wish = std::max(wish, label_width(label));
    int least = label_width(text->used_in_label);
    if (has_nothing_beside(text))
        wish = std::max(wish, letters_width(text->trans1_view, easy_letters));
    else
        least = std::max(least, least_used_in);
    return std::clamp(room - wish - scroll_bar, std::min(least, asked), asked);
}

// Gives two widgets one place, the first its width, at the side where lines begin.
void place_side_by_side(GtkWidget *first, int width, GtkWidget *second, GtkAllocation place,
                        int spacing)
{
    GtkAllocation one = place;
    GtkAllocation other = place;
    one.width = width;
    other.width = std::max(place.width - width - spacing, 1);
    const bool mirrored = gtk_widget_get_direction(first) == GTK_TEXT_DIR_RTL;
    (mirrored ? one : other).x += (mirrored ? other : one).width + spacing;
    gtk_widget_size_allocate(first, &one);
    gtk_widget_size_allocate(second, &other);
}

GtkWidget *child_at(GtkWidget *box, guint number)
{
    GList *children = gtk_container_get_children(GTK_CONTAINER(box));
    gpointer child = g_list_nth_data(children, number);
    g_list_free(children);
    return GTK_WIDGET(child);
}

void allocate_panes(GtkWidget *widget, GtkAllocation *place)
{
    gtk_widget_set_allocation(widget, place);
    const auto *text = static_cast<Zeltext *>(g_object_get_data(G_OBJECT(widget), panel_key));
    GtkWidget *used_in = child_at(widget, 1);
    const int border = static_cast<int>(gtk_container_get_border_width(GTK_CONTAINER(widget)));
    const int spacing = gtk_box_get_spacing(GTK_BOX(widget));
    const GtkAllocation inner{place->x + border, place->y + border,
                              std::max(place->width - 2 * border, 1),
                              std::max(place->height - 2 * border, 1)};
    const int room = std::max(inner.width - spacing, 1);
    const int fields = std::max(room - used_in_share(text, used_in, room), 1);
    place_side_by_side(child_at(widget, 0), fields, used_in, inner, spacing);
}

void allocate_caption_row(GtkWidget *row, GtkAllocation *place)
{
    gtk_widget_set_allocation(row, place);
    const int spacing = gtk_box_get_spacing(GTK_BOX(row));
    GtkWidget *caption = child_at(row, 0);
    GtkWidget *finding = child_at(row, 1);
    GtkWidget *end = child_at(row, 2);
    GtkAllocation inner = *place;
    if (end != nullptr && gtk_widget_get_visible(end) != 0) {
        GtkRequisition asked{};
        gtk_widget_get_child_requisition(end, &asked);
        GtkAllocation last = *place;
        last.width = asked.width;
        inner.width = std::max(place->width - asked.width - spacing, 1);
        const bool mirrored = gtk_widget_get_direction(row) == GTK_TEXT_DIR_RTL;
        (mirrored ? inner : last).x += (mirrored ? last : inner).width + spacing;
        gtk_widget_size_allocate(end, &last);
    }
    if (gtk_widget_get_visible(finding) == 0) {
        gtk_widget_size_allocate(caption, &inner);
        return;
    }
    const int parts = lang_global.editor_mode == 0 ? 2 : 5; // without and with "Used in"
    const int most = std::max(inner.width - inner.width / parts, 1);
    place_side_by_side(caption, std::min(label_width(caption), most), finding, inner, spacing);
}

// A horizontal box that gives its children their places in a way of its own.
template <void (*allocate)(GtkWidget *, GtkAllocation *)>
GtkWidget *box_new(const char *type_name, int spacing)
{
    static GType type = 0;
    if (type == 0) {
        GTypeInfo info{};
        info.class_size = sizeof(GtkHBoxClass);
        info.class_init = [](gpointer klass, gpointer) {
            GTK_WIDGET_CLASS(klass)->size_allocate = allocate;
        };
        info.instance_size = sizeof(GtkHBox);
        type = g_type_register_static(GTK_TYPE_HBOX, type_name, &info, GTypeFlags{});
    }
    return static_cast<GtkWidget *>(g_object_new(type, "spacing", spacing, nullptr));
}

} // namespace

namespace zel {

GtkWidget *text_panes_new(Zeltext *text, int spacing)
{
    GtkWidget *panes = box_new<allocate_panes>("ZelTextPanes", spacing);
    g_object_set_data(G_OBJECT(panes), panel_key, text);
    return panes;
}

GtkWidget *text_caption_row_new(GtkWidget *caption, GtkWidget *finding, int spacing)
{
    GtkWidget *row = box_new<allocate_caption_row>("ZelCaptionRow", spacing);
    gtk_box_pack_start(GTK_BOX(row), caption, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(row), finding, TRUE, TRUE, 0);
    return row;
}

} // namespace zel
