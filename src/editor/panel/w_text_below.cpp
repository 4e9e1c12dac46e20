#include "editor/panel/w_text_below.h"

#include "config/ini.h"
#include "editor/panel/w_text_checks.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/kept.h"
#include "editor/toolkit/text-places.h"
#include "editor/toolkit/theme.h"
#include "editor/toolkit/ui-text.h"
#include "source/misc.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace zel {

namespace {

constexpr int gap = 6;
constexpr int least_width = 40;
constexpr int longest_name = 10;    // letters; a longer one has dots
constexpr int most_measured = 2000; // letters, more than so many lines hold

static_assert(TEXT_TRANS1 == 0 && TEXT_TRANS2 == 1, "both number the choices");

text_below &below_of(Zeltext *text, int field) { return text->below[field]; }

const char *chosen(int field) { return ini_below(ini, static_cast<std::size_t>(field)); }

bool is_language(const LangSource *source, const char *name)
{
    for (const lang_t *lang : each<lang_t>(source->langs))
        if (g_strcmp0(lang->name, name) == 0)
            return true;
    return false;
}

// The language that is shown below the field; null for none.
const char *lang_below(Zeltext *text, int field)
{
    const char *name = chosen(field);
    const char *lang1 = nullptr;
    const char *lang2 = nullptr;
    if (name == nullptr || text->item == nullptr || text->*fields[field].entry == nullptr)
        return nullptr;
    misc_select_edit_lang(text->lang_source, &lang1, &lang2);
    // A text that is on the screen already is not shown twice. The second field gives way to the
    // first.
    const bool is_seen =
        g_strcmp0(name, lang1) == 0 || g_strcmp0(name, lang2) == 0 ||
        (field == TEXT_TRANS2 && g_strcmp0(name, lang_below(text, TEXT_TRANS1)) == 0);
    return !is_seen && is_language(text->lang_source, name) ? name : nullptr;
}

// Languages that may be chosen: those that are not shown elsewhere.
std::vector<std::string> languages_for(Zeltext *text, int field)
{
    std::vector<std::string> names;
    const char *lang1 = nullptr;
    const char *lang2 = nullptr;
    if (text->item == nullptr)
        return names;
    misc_select_edit_lang(text->lang_source, &lang1, &lang2);
    const char *other = lang_below(text, field == TEXT_TRANS1 ? TEXT_TRANS2 : TEXT_TRANS1);
    for (const lang_t *lang : each<lang_t>(text->lang_source->langs)) {
        const char *name = lang->name;
        if (name != nullptr && *name != '\0' && g_strcmp0(name, lang1) != 0 &&
            g_strcmp0(name, lang2) != 0 && g_strcmp0(name, other) != 0 &&
            std::find(names.begin(), names.end(), name) == names.end())
            names.emplace_back(name);
    }
    return names;
}

GdkColor mixed(const GdkColor &a, const GdkColor &b, unsigned parts_of_a, unsigned parts)
{
    const auto mix = [&](guint16 from, guint16 to) {
        return static_cast<guint16>((from * parts_of_a + to * (parts - parts_of_a)) / parts);
    };
    return {0, mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue)};
}

// Draws the view on the panel's ground, so that nobody takes it for a field. Some themes have
// another ground within a notebook: what scrolls the panel draws it.
void follow_view(GtkWidget *row, GtkStyle *, gpointer view)
{
    GtkWidget *panel = gtk_widget_get_ancestor(row, GTK_TYPE_VIEWPORT);
    const GtkStyle *style = gtk_widget_get_style(row);
    const GdkColor &ground =
        gtk_widget_get_style(panel == nullptr ? row : panel)->bg[GTK_STATE_NORMAL];
    // Less faint than the label beside it: this text is to be read.
    const GdkColor letters = mixed(style->fg[GTK_STATE_NORMAL], ground, 3, 4);
    for (const GtkStateType state : {GTK_STATE_NORMAL, GTK_STATE_INSENSITIVE})
        gtk_widget_modify_base(GTK_WIDGET(view), state, &ground);
    gtk_widget_modify_text(GTK_WIDGET(view), GTK_STATE_NORMAL, &letters);
}

// A click gives the view the keyboard, to copy by; Tab passes it by on the way to the next field.
gboolean pass_by(GtkWidget *view, GtkDirectionType, gpointer)
{
    g_signal_stop_emission_by_name(view, "focus");
    return FALSE;
}

// Draws dots over the end of the last line that is seen, where the text is cut; on the side that
// the text runs to.
gboolean draw_dots(GtkWidget *view, GdkEventExpose *event, gpointer)
{
    GtkTextView *text = GTK_TEXT_VIEW(view);
    GdkWindow *window = gtk_text_view_get_window(text, GTK_TEXT_WINDOW_TEXT);
    GdkRectangle seen{};
    GdkRectangle end{};
    GtkTextIter last;
    gtk_text_view_get_visible_rect(text, &seen);
    gtk_text_buffer_get_end_iter(gtk_text_view_get_buffer(text), &last);
    gtk_text_view_get_iter_location(text, &last, &end);
    // The whole text is seen, or the event is for another window of the view.
    if (event->window != window || end.y < seen.y + seen.height)
        return FALSE;
    PangoLayout *dots = gtk_widget_create_pango_layout(view, "\u2026");
    GdkRectangle place{};
    pango_layout_get_pixel_size(dots, &place.width, &place.height);
    const bool ends_left =
        pango_find_base_dir(zel::buffer_text(gtk_text_view_get_buffer(text)).c_str(), -1) ==
        PANGO_DIRECTION_RTL;
    place.x = ends_left ? 0 : seen.width - place.width;
    place.y = seen.height - place.height;
    GtkStyle *style = gtk_widget_get_style(view);
    cairo_t *cairo = gdk_cairo_create(window);
    gdk_cairo_set_source_color(cairo, &style->base[gtk_widget_get_state(view)]);
    gdk_cairo_rectangle(cairo, &place);
    cairo_fill(cairo);
    gdk_cairo_set_source_color(cairo, &style->text[gtk_widget_get_state(view)]);
    cairo_move_to(cairo, place.x, place.y);
    pango_cairo_show_layout(cairo, dots);
    cairo_destroy(cairo);
    g_object_unref(dots);
    return FALSE;
}

void show_language(text_below &below, const char *name)
{
    const std::string shown = utf8_shown(name);
    GtkLabel *label = GTK_LABEL(below.label);
    const bool is_long = g_utf8_strlen(shown.c_str(), -1) > longest_name;
    gtk_label_set_text(label, shown.c_str());
    // A label that may be cut asks for no width of its own: it gets a fixed one.
    gtk_label_set_ellipsize(label, is_long ? PANGO_ELLIPSIZE_END : PANGO_ELLIPSIZE_NONE);
    gtk_label_set_width_chars(label, is_long ? longest_name : -1);
    gtk_widget_set_tooltip_text(below.label, is_long ? shown.c_str() : nullptr);
    const std::string caption = std::string(ui_text("text", "Translation")) + " \"" + shown + "\"";
    set_accessible_name(below.view, caption.c_str());
}

int baseline_of(GtkWidget *widget, const char *text)
{
    PangoLayout *layout = gtk_widget_create_pango_layout(widget, text);
    const int baseline = PANGO_PIXELS(pango_layout_get_baseline(layout));
    g_object_unref(layout);
    return baseline;
}

// What is measured of the view's text: a long one would be laid out as a whole.
std::string measured_text(GtkWidget *view)
{
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_start_iter(buffer, &start);
    gtk_text_buffer_get_iter_at_offset(buffer, &end, most_measured);
    gchar *text = gtk_text_buffer_get_text(buffer, &start, &end, FALSE);
    std::string out = text;
    g_free(text);
    return out;
}

// Puts the label level with the text's first line, whose letters may come from a font with higher
// lines.
void level_label(const text_below &below)
{
    const std::string text = measured_text(below.view);
    const int lower = baseline_of(below.view, text.substr(0, text.find('\n')).c_str()) -
                      baseline_of(below.label, gtk_label_get_text(GTK_LABEL(below.label)));
    gtk_misc_set_padding(GTK_MISC(below.label), 0, std::max(lower, 0));
}

void show_text(text_below &below, lang_entry_t *entry)
{
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(below.view));
    const bool is_missing = misc_search_empty_in_lang_entry(entry) != 0;
    std::string all;
    for (const char *line : each<char>(is_missing ? nullptr : entry->texts))
        all += utf8_shown(line);
    gtk_text_buffer_set_text(buffer, is_missing ? ui_text("text", "none") : all.c_str(), -1);
    text_colour_pieces_of(below.view);
    gtk_widget_set_tooltip_text(below.view, all.c_str());
    gtk_widget_set_sensitive(below.view, is_missing ? FALSE : TRUE);
    // The text of the item before may have been scrolled.
    GtkTextIter start;
    gtk_text_buffer_get_start_iter(buffer, &start);
    gtk_text_buffer_place_cursor(buffer, &start);
    gtk_adjustment_set_value(
        gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(gtk_widget_get_parent(below.view))),
        0);
}

void show(Zeltext *text, int field)
{
    text_below &below = below_of(text, field);
    const char *name = lang_below(text, field);
    gtk_widget_set_visible(below.row, name != nullptr);
    if (name == nullptr) {
        gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(below.view)), "", -1);
        return;
    }
    show_language(below, name);
    show_text(below, misc_select_lang_entry(text->item, name));
    level_label(below);
    gtk_widget_queue_resize(below.row); // the text may want another height
}

struct place {
    Zeltext *text;
    int field;
};

struct choice {
    place at;
    std::string lang; // empty for none
};

void choose(GtkCheckMenuItem *item, gpointer data)
{
    const auto *made = static_cast<const choice *>(data);
    // Both the old and the new entry of the group send the signal: only the one that is switched on
    // counts.
    if (gtk_check_menu_item_get_active(item) == 0)
        return;
    ini_set_below(ini, static_cast<std::size_t>(made->at.field), made->lang.c_str());
    text_below_show(made->at.text);
}

void append(GtkMenuShell *menu, GtkWidget *item)
{
    gtk_menu_shell_append(menu, item);
    gtk_widget_show(item);
}

// Appends "None", then the languages; the one that is shown is marked.
void append_choices(GtkMenuShell *menu, const place &at, const std::vector<std::string> &names)
{
    const char *now = lang_below(at.text, at.field);
    GSList *group = nullptr;
    // No name stands for none, also in the settings.
    std::vector<std::string> all{""};
    all.insert(all.end(), names.begin(), names.end());
    for (const std::string &name : all) {
        const std::string label = name.empty() ? ui_text("text", "None") : utf8_shown(name.c_str());
        GtkWidget *item = gtk_radio_menu_item_new_with_label(group, label.c_str());
        group = gtk_radio_menu_item_get_group(GTK_RADIO_MENU_ITEM(item));
        // Before the handler is connected: marking is no choice.
        if (now != nullptr && name == now)
            gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(item), TRUE);
        auto *made = new choice{at, name};
        zel::keep_at(item, "zel-choice", made);
        append(menu, item);
        g_signal_connect(item, "toggled", G_CALLBACK(choose), made);
    }
}

// Appends the choice to a field's own menu.
void fill_menu(GtkTextView *, GtkMenu *menu, gpointer data)
{
    const place &at = *static_cast<const place *>(data);
    const std::vector<std::string> names = languages_for(at.text, at.field);
    if (names.empty())
        return;
    GtkWidget *entry = gtk_menu_item_new_with_label(ui_text("text", "Show below"));
    gtk_widget_set_tooltip_text(entry, "Ctrl+L, Shift+Ctrl+L");
    GtkWidget *choices = gtk_menu_new();
    append_choices(GTK_MENU_SHELL(choices), at, names);
    gtk_menu_item_set_submenu(GTK_MENU_ITEM(entry), choices);
    append(GTK_MENU_SHELL(menu), gtk_separator_menu_item_new());
    append(GTK_MENU_SHELL(menu), entry);
}

gboolean caption_pressed(GtkWidget *caption, GdkEventButton *event, gpointer data)
{
    constexpr guint secondary = 3;
    const place &at = *static_cast<const place *>(data);
    const std::vector<std::string> names = languages_for(at.text, at.field);
    if (event->type != GDK_BUTTON_PRESS || event->button != secondary || names.empty())
        return FALSE;
    GtkWidget *menu = gtk_menu_new();
    GtkWidget *title = gtk_menu_item_new_with_label(ui_text("text", "Show below"));
    gtk_widget_set_sensitive(title, FALSE);
    append(GTK_MENU_SHELL(menu), title);
    append_choices(GTK_MENU_SHELL(menu), at, names);
    // Attached, so that the menu is on the caption's screen and is destroyed with it.
    gtk_menu_attach_to_widget(GTK_MENU(menu), caption, nullptr);
    g_signal_connect(menu, "selection-done", G_CALLBACK(gtk_widget_destroy), nullptr);
    gtk_menu_popup(GTK_MENU(menu), nullptr, nullptr, nullptr, nullptr, event->button, event->time);
    return TRUE;
}

} // namespace

GtkWidget *text_below_new(Zeltext *text, int field, GtkWidget *view)
{
    text_below &below = below_of(text, field);
    below.view = view;
    gtk_text_view_set_editable(GTK_TEXT_VIEW(view), FALSE);
    gtk_text_view_set_cursor_visible(GTK_TEXT_VIEW(view), FALSE);
    gtk_text_view_set_pixels_above_lines(GTK_TEXT_VIEW(view), 0); // level with the label
    gtk_widget_set_size_request(view, least_width, -1);           // not its text's, which wraps
    g_signal_connect(view, "focus", G_CALLBACK(pass_by), nullptr);
    g_signal_connect_after(view, "expose-event", G_CALLBACK(draw_dots), nullptr);
    set_accessible_name(view, ui_text("text", "Translation"));
    GtkWidget *scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER,
                                   GTK_POLICY_AUTOMATIC);
    gtk_widget_set_can_focus(scrolled, FALSE); // it would take what its view passes by
    gtk_container_add(GTK_CONTAINER(scrolled), view);
    below.label = gtk_label_new(nullptr);
    gtk_misc_set_alignment(GTK_MISC(below.label), 0.0F, 0.0F);
    show_faint(below.label, true);
    below.row = gtk_hbox_new(FALSE, gap);
    g_signal_connect(below.row, "style-set", G_CALLBACK(follow_view), view);
    gtk_box_pack_start(GTK_BOX(below.row), below.label, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(below.row), scrolled, TRUE, TRUE, 0);
    gtk_widget_show_all(below.row);
    // The panel's show_all must not show a row that has no language.
    gtk_widget_set_no_show_all(below.row, TRUE);
    gtk_widget_hide(below.row);
    return below.row;
}

void text_below_offer(Zeltext *text, int field, GtkWidget *caption_row)
{
    auto *at = new place{text, field};
    zel::keep_at(caption_row, "zel-place", at);
    gtk_widget_add_events(caption_row, GDK_BUTTON_PRESS_MASK);
    g_signal_connect(caption_row, "button-press-event", G_CALLBACK(caption_pressed), at);
    for (GtkWidget *view : {text->*fields[field].view, below_of(text, field).view})
        g_signal_connect(view, "populate-popup", G_CALLBACK(fill_menu), at);
}

void text_below_show(Zeltext *text)
{
    show(text, TEXT_TRANS1);
    show(text, TEXT_TRANS2);
}

bool text_below_step(Zeltext *text, int field, int direction)
{
    const std::vector<std::string> names = languages_for(text, field);
    if (names.empty())
        return false;
    const char *now = lang_below(text, field);
    const auto found = std::find(names.begin(), names.end(), now == nullptr ? "" : now);
    // None, which stands before the first name, is also what comes behind the last one.
    const auto places = static_cast<int>(names.size()) + 1;
    const int from = found == names.end() ? 0 : static_cast<int>(found - names.begin()) + 1;
    const int to = (from + direction + places) % places;
    ini_set_below(ini, static_cast<std::size_t>(field),
                  to == 0 ? "" : names[static_cast<std::size_t>(to - 1)].c_str());
    text_below_show(text);
    return true;
}

GtkWidget *text_below_scrolled(Zeltext *text, int field)
{
    return gtk_widget_get_parent(below_of(text, field).view);
}

// Measures the text itself, since letters of other scripts may come from a font with higher lines.
below_height text_below_height(Zeltext *text, int field)
{
    const text_below &below = below_of(text, field);
    if (gtk_widget_get_visible(below.row) == 0)
        return {0, 0};
    GtkTextView *view = GTK_TEXT_VIEW(below.view);
    PangoLayout *layout =
        gtk_widget_create_pango_layout(below.view, measured_text(below.view).c_str());
    GtkAllocation place{};
    gtk_widget_get_allocation(below.view, &place);
    const int width =
        place.width - gtk_text_view_get_left_margin(view) - gtk_text_view_get_right_margin(view);
    pango_layout_set_width(layout, std::max(width, 1) * PANGO_SCALE);
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    // Before the view has its place its width says nothing, and one letter a line would be
    // measured.
    const int lines = place.width <= 1 ? 1 : pango_layout_get_line_count(layout);
    below_height height{0, 0};
    for (int line = 0; line < std::min(lines, below_lines); ++line) {
        PangoRectangle extents{};
        pango_layout_line_get_pixel_extents(pango_layout_get_line_readonly(layout, line), nullptr,
                                            &extents);
        height.most += extents.height + gtk_text_view_get_pixels_above_lines(view);
        height.least = line == 0 ? height.most : height.least;
    }
    g_object_unref(layout);
    return height;
}

} // namespace zel
