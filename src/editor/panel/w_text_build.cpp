#include "editor/panel/w_text_build.h"

#include "app/global.h"
#include "editor/panel/key-offer.h"
#include "editor/panel/text-signs.h"
#include "editor/panel/w_text_below.h"
#include "editor/panel/w_text_checks.h"
#include "editor/panel/w_text_panes.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/measure.h"
#include "editor/toolkit/scrolled-box.h"
#include "editor/toolkit/text-pieces.h"
#include "editor/toolkit/text-runs.h"
#include "editor/toolkit/theme.h"
#include "editor/toolkit/ui-text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

using zel::field_t;
using zel::fields;

constexpr int used_in_width = 220;
constexpr int margin = 6;
constexpr int between_panes = 2;
constexpr int above_lines = 2;
constexpr int least_width = 40; // of a field, whose text wraps; its own would move the divider

GtkWidget *make_caption(GtkWidget *view)
{
    GtkWidget *label = gtk_label_new(nullptr);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_START); // the language is its end
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), view);
    return label;
}

GtkWidget *make_text_view(int height)
{
    GtkWidget *view = gtk_text_view_new();
    GtkTextView *text_view = GTK_TEXT_VIEW(view);
    gtk_text_view_set_wrap_mode(text_view, GTK_WRAP_WORD_CHAR);
    gtk_text_view_set_left_margin(text_view, margin);
    gtk_text_view_set_right_margin(text_view, margin);
    gtk_text_view_set_pixels_above_lines(text_view, above_lines);
    // Tab leads to the next field, which is what people do after each text.
    gtk_text_view_set_accepts_tab(text_view, FALSE);
    // Before anything is inserted: these look at every text from the first one on.
    zel::keep_in_pieces(gtk_text_view_get_buffer(text_view));
    zel::take_plain_line_ends(gtk_text_view_get_buffer(text_view));
    zel::keep_runs_whole(text_view, zel::text_piece_tag);
    zel::show_signs(text_view);
    gtk_widget_set_size_request(view, -1, height);
    return view;
}

// The view scrolls in its frame, so that long texts fit and a small window may be lower than the
// views ask for.
GtkWidget *make_view_frame(GtkWidget *view)
{
    GtkWidget *scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER,
                                   GTK_POLICY_AUTOMATIC);
    gtk_container_add(GTK_CONTAINER(scrolled), view);
    GtkWidget *frame = zel::make_line_frame();
    gtk_container_add(GTK_CONTAINER(frame), scrolled);
    return frame;
}

// A line's height is asked of the font, not of the text: an empty field has none.
int line_height(GtkWidget *view)
{
    return PANGO_PIXELS_CEIL(zel::font_size_of(view).line) + above_lines;
}

GtkWidget *scrolled_of(Zeltext *text, int number)
{
    return gtk_widget_get_parent(text->*fields[number].view);
}

int requested_height(GtkWidget *widget)
{
    gint height = 0;
    gtk_widget_get_size_request(widget, nullptr, &height);
    return std::max(height, 0);
}

using below_heights = std::array<zel::below_height, 2>;

// Each text below a translation gets one line; what is left is shared out among them. What the
// shorter one does not need goes to the other.
void share_below(Zeltext *text, const below_heights &heights, int left)
{
    // The shorter one first: only then is known what it leaves.
    std::array<std::size_t, 2> order{0, 1};
    if (heights[0].most > heights[1].most)
        std::swap(order[0], order[1]);
    int count = (heights[0].most != 0 ? 1 : 0) + (heights[1].most != 0 ? 1 : 0);
    for (const std::size_t number : order) {
        const auto [least, most] = heights[number];
        if (most == 0)
            continue;
        const int more = std::clamp(count > 1 ? left / 2 : left, 0, most - least);
        --count;
        left -= more;
        GtkWidget *scrolled = zel::text_below_scrolled(text, static_cast<int>(number));
        if (requested_height(scrolled) != least + more)
            gtk_widget_set_size_request(scrolled, -1, least + more);
        // A scroll bar of one line's height is of no use.
        gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER,
                                       more < least ? GTK_POLICY_NEVER : GTK_POLICY_AUTOMATIC);
        gtk_widget_set_has_tooltip(text->below[number].view, least + more < most);
    }
}

// An empty line of a suggestion or of the description stays, so that the fields do not jump from
// item to item; it is folded to one pixel when the fields lack the room. Returns the height that
// everything but the fields asks for.
int fold_empty_lines(Zeltext *text, int others, int room)
{
    int saved = 0;
    const std::array labels{text->suggestion1_label, text->suggestion2_label,
                            text->description_label};
    const auto is_empty = [](GtkWidget *label) {
        return gtk_widget_get_visible(label) != 0 && *gtk_label_get_text(GTK_LABEL(label)) == '\0';
    };
    for (GtkWidget *label : labels) {
        if (!is_empty(label))
            continue;
        int height = 0;
        pango_layout_get_pixel_size(gtk_label_get_layout(GTK_LABEL(label)), nullptr, &height);
        GtkRequisition now{};
        gtk_widget_get_child_requisition(label, &now);
        // A line that is folded now is counted as if it stood: else it would come and go in turn.
        others += height - now.height;
        saved += height - 1;
    }
    const bool folds = others > room;
    for (GtkWidget *label : labels) {
        const int wanted = folds && is_empty(label) ? 1 : 0;
        if (requested_height(label) != wanted)
            g_object_set(label, "height-request", wanted == 0 ? -1 : wanted, nullptr);
    }
    return folds ? others - saved : others;
}

// Shares the panel's height out among the fields.
void share_height(GtkWidget *viewport, GtkAllocation *place, gpointer data)
{
    Zeltext *text = ZEL_TEXT(data);
    GtkRequisition wanted{};
    gtk_widget_size_request(gtk_bin_get_child(GTK_BIN(viewport)), &wanted);
    const int languages = (gtk_widget_get_visible(text->lang1_frame) != 0 ? 1 : 0) +
                          (gtk_widget_get_visible(text->lang2_frame) != 0 ? 1 : 0);
    const int line = line_height(text->trans1_view);
    if (languages == 0)
        return;
    // The heights that the fields of one language have now; what else is wanted is for other
    // things.
    const int comment_now = requested_height(scrolled_of(text, TEXT_COMMENT1));
    const int trans_now = requested_height(scrolled_of(text, TEXT_TRANS1));
    const below_heights below{zel::text_below_height(text, TEXT_TRANS1),
                              zel::text_below_height(text, TEXT_TRANS2)};
    // The texts below may have changed since their heights were set.
    int below_more = below[0].least + below[1].least; // than they have now
    for (const int number : {TEXT_TRANS1, TEXT_TRANS2})
        if (below[static_cast<std::size_t>(number)].most != 0)
            below_more -= requested_height(zel::text_below_scrolled(text, number));
    const field_t &comment = fields[TEXT_COMMENT1];
    const field_t &trans = fields[TEXT_TRANS1];
    const int others =
        fold_empty_lines(text, wanted.height - languages * (comment_now + trans_now) + below_more,
                         place->height - languages * (comment.lines + trans.lines) * line);
    // Translations take the rest, since they expand: only the comments' height is calculated, and
    // the least of a translation.
    const int room = (place->height - others) / languages - trans.height;
    const int comment_height =
        std::clamp(room, comment.lines * line, std::max(comment.height, comment.lines * line));
    for (int number = 0; number < TEXT_FIELDS; ++number) {
        const bool is_comment = number == TEXT_COMMENT1 || number == TEXT_COMMENT2;
        const int height = is_comment ? comment_height : trans.lines * line;
        GtkWidget *scrolled = scrolled_of(text, number);
        if (requested_height(scrolled) != height)
            gtk_widget_set_size_request(scrolled, -1, height);
    }
    share_below(text, below, place->height - others - languages * (comment_height + trans.height));
}

GtkWidget *label_of(Zeltext *text, GtkWidget *view)
{
    const auto *field = std::find_if(std::begin(fields), std::end(fields),
                                     [&](const field_t &one) { return text->*one.view == view; });
    return text->*field->label;
}

// Scrolls to the field with the keyboard, with its caption and what is below it.
void show_whole_field(Zeltext *text, GtkWidget *view)
{
    GtkWidget *box = gtk_widget_get_ancestor(view, GTK_TYPE_VIEWPORT);
    GtkWidget *content = gtk_bin_get_child(GTK_BIN(box));
    GtkAdjustment *seen = gtk_viewport_get_vadjustment(GTK_VIEWPORT(box));
    const auto place_of = [content](GtkWidget *widget) {
        GtkAllocation place{};
        gtk_widget_get_allocation(widget, &place);
        gtk_widget_translate_coordinates(widget, content, 0, 0, &place.x, &place.y);
        return place;
    };
    const GtkAllocation field = place_of(view);
    GtkAllocation last = field;
    for (const int number : {TEXT_TRANS1, TEXT_TRANS2}) {
        GtkWidget *label =
            number == TEXT_TRANS1 ? text->suggestion1_label : text->suggestion2_label;
        for (GtkWidget *below : {label, text->below[number].row})
            if (text->*fields[number].view == view && gtk_widget_get_visible(below) != 0)
                last = place_of(below);
    }
    const int top = place_of(label_of(text, view)).y;
    // First the whole, then the field itself: the last call wins where both do not fit.
    gtk_adjustment_clamp_page(seen, top, last.y + last.height);
    gtk_adjustment_clamp_page(seen, top, field.y + field.height + margin);
}

gboolean field_entered(GtkWidget *view, GdkEventFocus *, gpointer data)
{
    show_whole_field(ZEL_TEXT(data), view);
    return FALSE;
}

// What is below a field is shown after the field was given the keyboard, and moves it. While the
// keyboard is elsewhere, in the list say, the translation is what one wants to see.
void content_placed(GtkWidget *, GtkAllocation *, gpointer data)
{
    Zeltext *text = ZEL_TEXT(data);
    GtkWidget *seen =
        gtk_widget_get_visible(text->lang2_frame) != 0 ? text->trans2_view : text->trans1_view;
    for (const field_t &field : fields)
        if (gtk_widget_is_focus(text->*field.view))
            seen = text->*field.view;
    show_whole_field(text, seen);
}

// A caption, and beside it what is wrong with the text.
GtkWidget *make_caption_row(Zeltext *text, int number, GtkWidget *caption)
{
    GtkWidget *finding = zel::text_finding_label_new();
    GtkWidget *row = zel::text_caption_row_new(caption, finding, margin);
    (number == TEXT_TRANS1 ? text->finding1_label : text->finding2_label) = finding;
    GtkWidget *room = zel::text_room_label_new();
    gtk_box_pack_end(GTK_BOX(row), room, FALSE, FALSE, 0);
    (number == TEXT_TRANS1 ? text->room1_label : text->room2_label) = room;
    GtkWidget *box = gtk_event_box_new(); // labels get no clicks
    gtk_event_box_set_visible_window(GTK_EVENT_BOX(box), FALSE);
    gtk_container_add(GTK_CONTAINER(box), row);
    return box;
}

GtkWidget *make_suggestion(Zeltext *text, int number)
{
    GtkWidget *label = gtk_label_new(nullptr);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
    gtk_widget_set_no_show_all(label, TRUE);
    (number == TEXT_TRANS1 ? text->suggestion1_label : text->suggestion2_label) = label;
    return label;
}

void make_field(Zeltext *text, int number, GtkWidget *box)
{
    const field_t &field = fields[number];
    const bool is_comment = number == TEXT_COMMENT1 || number == TEXT_COMMENT2;
    GtkWidget *view = make_text_view(field.height);
    gtk_widget_set_size_request(view, least_width, field.height);
    GtkWidget *label = make_caption(view);
    text->*field.view = view;
    text->*field.label = label;
    g_signal_connect(view, "focus-in-event", G_CALLBACK(field_entered), text);
    GtkWidget *caption = is_comment ? label : make_caption_row(text, number, label);
    gtk_box_pack_start(GTK_BOX(box), caption, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), make_view_frame(view), is_comment ? FALSE : TRUE, TRUE, 0);
    if (is_comment)
        return;
    gtk_box_pack_start(GTK_BOX(box), make_suggestion(text, number), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), zel::text_below_new(text, number, make_text_view(-1)), FALSE,
                       FALSE, 0);
    zel::text_below_offer(text, number, caption);
}

GtkWidget *make_language_frame(Zeltext *text, int comment, int trans)
{
    GtkWidget *box = gtk_vbox_new(FALSE, 2);
    make_field(text, comment, box);
    make_field(text, trans, box);
    GtkWidget *frame = gtk_frame_new(nullptr);
    zel::make_bare(frame);
    gtk_container_add(GTK_CONTAINER(frame), box);
    return frame;
}

// An entry asks for few letters and fills the panel: its text must not move the divider.
GtkWidget *make_name_entry()
{
    GtkWidget *entry = gtk_entry_new();
    gtk_entry_set_width_chars(GTK_ENTRY(entry), 8);
    zel::set_accessible_name(entry, zel::ui_text("tab-edit", "Item"));
    zel::draw_line_in_dark(entry);
    return entry;
}

void make_identity(Zeltext *text, GtkWidget *box)
{
    text->description_label = gtk_label_new(nullptr);
    // A long description must not make the panel wider: it is cut, and whole in its tooltip.
    gtk_widget_set_size_request(text->description_label, 60, -1);
    gtk_misc_set_alignment(GTK_MISC(text->description_label), 0.0F, 0.5F);
    gtk_label_set_ellipsize(GTK_LABEL(text->description_label), PANGO_ELLIPSIZE_END);
    gtk_box_pack_start(GTK_BOX(box), text->description_label, FALSE, FALSE, 0);

    text->name_entry = make_name_entry();
    gtk_editable_set_editable(GTK_EDITABLE(text->name_entry), FALSE);
    gtk_box_pack_start(GTK_BOX(box), text->name_entry, FALSE, FALSE, 0);

    if (lang_global.editor_mode != 2)
        return;
    text->name_edit_entry = make_name_entry();
    gtk_box_pack_start(GTK_BOX(box), text->name_edit_entry, FALSE, FALSE, 0);
}

void used_in_placed(GtkWidget *, GtkAllocation *place, gpointer text)
{
    const int scroll_bar = 20;
    zel::text_wrap_findings(ZEL_TEXT(text), std::max(place->width - scroll_bar, 1));
}

GtkWidget *make_used_in(Zeltext *text, GtkWidget *panes)
{
    const char *title = zel::ui_text("text", "Used in");
    text->used_in_view = make_text_view(-1);
    gtk_widget_set_sensitive(text->used_in_view, FALSE);
    zel::set_accessible_name(text->used_in_view, title);
    GtkWidget *scrolled = zel::scrolled_box_new(text->used_in_view);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_AUTOMATIC,
                                   GTK_POLICY_AUTOMATIC);
    GtkWidget *line = zel::make_line_frame();
    gtk_container_add(GTK_CONTAINER(line), scrolled);
    GtkWidget *label = make_caption(text->used_in_view);
    gtk_label_set_text(GTK_LABEL(label), title);
    text->used_in_label = label;
    // What it holds decides on its width, of which its viewport tells nobody.
    g_signal_connect_object(gtk_text_view_get_buffer(GTK_TEXT_VIEW(text->used_in_view)), "changed",
                            G_CALLBACK(gtk_widget_queue_resize), panes, G_CONNECT_SWAPPED);
    GtkWidget *box = gtk_vbox_new(FALSE, 2);
    gtk_box_pack_start(GTK_BOX(box), label, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), line, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), zel::text_all_findings_new(text), FALSE, FALSE, 0);
    GtkWidget *frame = gtk_frame_new(nullptr);
    zel::make_bare(frame);
    gtk_widget_set_size_request(frame, used_in_width, -1);
    g_signal_connect(frame, "size-allocate", G_CALLBACK(used_in_placed), text);
    gtk_container_add(GTK_CONTAINER(frame), box);
    return frame;
}

} // namespace

namespace zel {

void build_text_panel(Zeltext *text)
{
    make_bare(GTK_WIDGET(text));
    const bool has_places = lang_global.editor_mode != 0;
    GtkWidget *panes =
        has_places ? zel::text_panes_new(text, between_panes) : gtk_hbox_new(FALSE, between_panes);
    gtk_container_set_border_width(GTK_CONTAINER(panes), 2);
    GtkWidget *box = gtk_vbox_new(FALSE, 2);
    make_identity(text, box);
    text->lang1_frame = make_language_frame(text, TEXT_COMMENT1, TEXT_TRANS1);
    text->lang2_frame = make_language_frame(text, TEXT_COMMENT2, TEXT_TRANS2);
    gtk_box_pack_start(GTK_BOX(box), text->lang1_frame, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), text->lang2_frame, TRUE, TRUE, 0);
    // The box scrolls only when even the least heights do not fit.
    GtkWidget *scrolled = zel::scrolled_box_new(box);
    g_signal_connect(gtk_bin_get_child(GTK_BIN(scrolled)), "size-allocate",
                     G_CALLBACK(share_height), text);
    // After the toolkit's own handler: only then are the fields where they will be drawn.
    g_signal_connect_after(box, "size-allocate", G_CALLBACK(content_placed), text);
    gtk_box_pack_start(GTK_BOX(panes), scrolled, TRUE, TRUE, 0);
    if (has_places)
        gtk_box_pack_start(GTK_BOX(panes), make_used_in(text, panes), FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(text), panes);
    gtk_widget_show_all(panes);
    offer_keys(text);
}

} // namespace zel
