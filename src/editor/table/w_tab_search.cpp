#include "editor/table/w_tab_search.h"

#include "app/global.h"
#include "editor/state/edit-state.h"
#include "editor/state/key-set.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/text-places.h"
#include "editor/toolkit/theme.h"
#include "editor/toolkit/ui-text.h"

#include <gdk/gdkkeysyms.h>

#include <string>

namespace zel {

namespace {

constexpr int spacing = 6;
constexpr const char *hit_tag = "search-hit";

GtkWidget *make_icon_button(const char *stock, GtkIconSize size, const char *tooltip)
{
    GtkWidget *button = gtk_button_new();
    gtk_container_add(GTK_CONTAINER(button), gtk_image_new_from_stock(stock, size));
    gtk_widget_set_tooltip_text(button, tooltip);
    set_accessible_name(button, tooltip);
    return button;
}

void follow_style(GtkWidget *view, GtkStyle *, gpointer tag)
{
    // The letters keep their colour, so the ground must suit light and dark ones.
    g_object_set(tag, "background", is_dark(view) ? "#6b5900" : "#ffe680", nullptr);
}

void mark(GtkWidget *view, const assist::folded_words &words)
{
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
    GtkTextTag *tag = gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), hit_tag);
    // Most items are shown without a search: their views need no tag.
    if (tag == nullptr && words.empty())
        return;
    if (tag == nullptr) {
        tag = gtk_text_buffer_create_tag(buffer, hit_tag, nullptr);
        follow_style(view, nullptr, tag);
        g_signal_connect(view, "style-set", G_CALLBACK(follow_style), tag);
    }
    const std::string text = buffer_text(buffer);
    tag_places(buffer, tag, places_of(text, words.hits(text)));
}

} // namespace

void tab_turn_to(GtkWidget *table)
{
    GtkWidget *page = table;
    for (GtkWidget *parent = gtk_widget_get_parent(page); parent != nullptr;
         page = parent, parent = gtk_widget_get_parent(page)) {
        // The table may lie on pages within pages: each of them is turned to.
        if (GTK_IS_NOTEBOOK(parent))
            gtk_notebook_set_current_page(GTK_NOTEBOOK(parent),
                                          gtk_notebook_page_num(GTK_NOTEBOOK(parent), page));
    }
}

tab_search::tab_search(tab_search_parts parts) : parts_(std::move(parts))
{
    make_row();
    g_signal_connect(parts_.view, "key-press-event", G_CALLBACK(list_key), this);
    for (GtkWidget *view : {parts_.panel->trans1_view, parts_.panel->trans2_view})
        g_signal_connect(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)), "changed",
                         G_CALLBACK(typed), this);
}

void tab_search::make_row()
{
    row_ = gtk_hbox_new(FALSE, spacing);
    GtkWidget *find = make_icon_button(GTK_STOCK_FIND, GTK_ICON_SIZE_LARGE_TOOLBAR,
                                       ui_text("common", "Find (Ctrl+F)"));
    g_signal_connect(find, "clicked", G_CALLBACK(find_clicked), this);
    add_button_key(find, GDK_KEY_f, GDK_CONTROL_MASK);

    entry_ = gtk_entry_new();
    draw_line_in_dark(entry_);
    set_accessible_name(entry_, ui_text("common", "Find (Ctrl+F)"));
    g_signal_connect(entry_, "changed", G_CALLBACK(+[](GtkEditable *, gpointer self) {
                         static_cast<tab_search *>(self)->parts_.changed();
                     }),
                     this);
    g_signal_connect(entry_, "activate", G_CALLBACK(+[](GtkEntry *, gpointer self) {
                         static_cast<tab_search *>(self)->parts_.activate();
                     }),
                     this);
    g_signal_connect(entry_, "key-press-event", G_CALLBACK(entry_key), this);

    GtkWidget *clear = make_icon_button(GTK_STOCK_CANCEL, GTK_ICON_SIZE_SMALL_TOOLBAR,
                                        ui_text("common", "Clear search string"));
    g_signal_connect(clear, "clicked", G_CALLBACK(clear_clicked), this);

    gtk_box_pack_start(GTK_BOX(row_), find, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(row_), entry_, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(row_), clear, FALSE, FALSE, 0);
}

void tab_search::find_clicked(GtkButton *, gpointer data)
{
    auto *self = static_cast<tab_search *>(data);
    tab_turn_to(self->parts_.table);
    gtk_widget_grab_focus(self->entry_);
}

void tab_search::clear_clicked(GtkButton *, gpointer data)
{
    auto *self = static_cast<tab_search *>(data);
    gtk_entry_set_text(GTK_ENTRY(self->entry_), "");
    gtk_widget_grab_focus(self->entry_);
}

void tab_search::begin(int selected)
{
    const char *text = gtk_entry_get_text(GTK_ENTRY(entry_));
    // Only the beginning of a search remembers the row: later letters come with a hit selected.
    if (!is_searching_ && *text != '\0' && selected >= 0)
        before_ = selected;
    is_searching_ = *text != '\0';
    words_ = assist::folded_words(text);
}

void tab_search::come_back()
{
    gtk_entry_set_text(GTK_ENTRY(entry_), "");
    // A row that the user has selected among the hits is the one that is wanted.
    if (before_ >= 0 && !parts_.has_selection())
        parts_.go_to_row(before_);
}

gboolean tab_search::entry_key(GtkWidget *, GdkEventKey *event, gpointer self)
{
    if (event->keyval != GDK_KEY_Escape)
        return FALSE;
    static_cast<tab_search *>(self)->come_back();
    return TRUE;
}

gboolean tab_search::list_key(GtkWidget *, GdkEventKey *event, gpointer data)
{
    constexpr guint others =
        GDK_CONTROL_MASK | GDK_MOD1_MASK | GDK_SUPER_MASK | GDK_HYPER_MASK | GDK_META_MASK;
    auto *self = static_cast<tab_search *>(data);
    const gunichar letter = gdk_keyval_to_unicode(event->keyval);
    // Letters with these keys are commands of the window.
    if (letter == 0 || !g_unichar_isgraph(letter) || (event->state & others) != 0)
        return FALSE;
    gtk_widget_grab_focus(self->entry_);
    // The entry selects its text when it gets the keyboard, and the letter would replace that.
    gtk_editable_set_position(GTK_EDITABLE(self->entry_), -1);
    // The entry gets the key as if it had been pressed there.
    return gtk_widget_event(self->entry_, reinterpret_cast<GdkEvent *>(event));
}

void tab_search::typed(GtkTextBuffer *, gpointer self)
{
    // While the panel fills its fields nothing is marked; the table asks for it afterwards.
    if (lang_global.text_lock == 0)
        static_cast<tab_search *>(self)->mark_hits();
}

void tab_search::mark_hits()
{
    mark(parts_.panel->trans1_view, words_);
    mark(parts_.panel->trans2_view, words_);
}

} // namespace zel
