#include "editor/panel/w_text_checks.h"

#include "assist/pieces.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/scrolled-box.h"
#include "editor/toolkit/text-places.h"
#include "editor/toolkit/theme.h"
#include "editor/toolkit/ui-text.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace {

void colour_link(GtkWidget *view, GtkStyle *, gpointer tag)
{
    // A blue that can be read on the ground that the theme gives the view.
    g_object_set(tag, "foreground", zel::is_dark(view) ? "#8ab8ff" : "#1448a8", nullptr);
}

GtkTextTag *tag_of(GtkWidget *view)
{
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
    GtkTextTag *tag =
        gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), zel::text_piece_tag);
    if (tag != nullptr)
        return tag;
    tag = gtk_text_buffer_create_tag(buffer, zel::text_piece_tag, nullptr);
    colour_link(view, nullptr, tag);
    g_signal_connect(view, "style-set", G_CALLBACK(colour_link), tag);
    return tag;
}

std::string joined(const std::vector<zel::assist::remark> &told, const char *between)
{
    std::string out;
    for (const zel::assist::remark &one : told)
        out += (out.empty() ? "" : between) + zel::utf8_shown(one.text.c_str());
    return out;
}

void show_remarks(GtkWidget *label, GtkWidget *view, const std::vector<zel::assist::remark> &all)
{
    // A screen reader says the remarks with the field, which has the keyboard, not with the label.
    zel::set_accessible_description(view, joined(all, "; ").c_str());
    std::vector<zel::assist::remark> told;
    std::copy_if(all.begin(), all.end(), std::back_inserter(told),
                 [](const zel::assist::remark &one) { return !one.is_of_room; });
    const std::string text = joined(told, "; ");
    // Called after every key: as a rule nothing has changed, and setting a label lays out the
    // panel.
    if (text == gtk_label_get_text(GTK_LABEL(label)))
        return;
    bool counts = false;
    for (const zel::assist::remark &one : told)
        counts = counts || one.counts;
    PangoAttrList *attributes = pango_attr_list_new();
    // Bold for what counts; hints stay plain.
    pango_attr_list_insert(attributes,
                           pango_attr_weight_new(counts ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL));
    gtk_label_set_attributes(GTK_LABEL(label), attributes);
    pango_attr_list_unref(attributes);
    gtk_label_set_text(GTK_LABEL(label), text.c_str());
    gtk_widget_set_tooltip_text(label, text.empty() ? nullptr : joined(told, "\n").c_str());
    gtk_widget_set_visible(label, !text.empty());
}

// "8 left", "3 too many", "12 px left"; empty where there is no limit.
std::string room_left(const zel::assist::room &of)
{
    if (of.most == 0)
        return {};
    const bool fits = of.used <= of.most;
    return std::to_string(fits ? of.most - of.used : of.used - of.most) + " " +
           (of.in_pixels ? zel::ui_text("text", "px") + std::string(" ") : "") +
           (fits ? zel::ui_text("text", "left") : zel::ui_text("text", "too many"));
}

void show_room(GtkWidget *label, GtkWidget *view, const zel::assist::room &of)
{
    const std::string text = room_left(of);
    if (text == gtk_label_get_text(GTK_LABEL(label)))
        return;
    PangoAttrList *attributes = pango_attr_list_new();
    if (of.used > of.most) {
        pango_attr_list_insert(attributes, zel::red_letters(view));
        pango_attr_list_insert(attributes, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
    }
    gtk_label_set_attributes(GTK_LABEL(label), attributes);
    pango_attr_list_unref(attributes);
    gtk_label_set_text(GTK_LABEL(label), text.c_str());
    const std::string whole =
        std::to_string(of.used) + " " + zel::ui_text("text", "of") + " " + std::to_string(of.most) +
        " " + (of.in_pixels ? zel::ui_text("text", "pixels") : zel::ui_text("text", "characters"));
    gtk_widget_set_tooltip_text(label, whole.c_str());
    zel::set_accessible_description(label, whole.c_str());
    gtk_widget_set_visible(label, !text.empty());
}

// The remarks are shown in full below each other, as soon as one of the labels is cut.
void findings_placed(GtkWidget *, GtkAllocation *, gpointer data)
{
    Zeltext *text = ZEL_TEXT(data);
    bool is_cut = false;
    for (GtkWidget *label : {text->finding1_label, text->finding2_label})
        is_cut = is_cut || (gtk_widget_get_visible(label) != 0 &&
                            pango_layout_is_ellipsized(gtk_label_get_layout(GTK_LABEL(label))));
    gtk_widget_set_visible(text->all_findings, is_cut);
}

GtkWidget *label_of_findings(const Zeltext *text)
{
    return gtk_bin_get_child(GTK_BIN(gtk_bin_get_child(GTK_BIN(text->all_findings))));
}

// All of them are as high as their text, up to some lines. The toolkit asks only while they are
// seen: at each letter that would be half of its time.
void findings_asked(GtkWidget *, GtkRequisition *asked, gpointer data)
{
    constexpr int most_lines = 6; // the rest is scrolled to
    GtkWidget *label = label_of_findings(ZEL_TEXT(data));
    PangoLayout *line = gtk_widget_create_pango_layout(label, "x");
    int height = 0;
    pango_layout_get_pixel_size(line, nullptr, &height);
    g_object_unref(line);
    GtkRequisition whole{};
    gtk_widget_size_request(label, &whole);
    asked->height = std::min(whole.height, most_lines * height);
}

void show_all_findings(Zeltext *text, const zel::assist::remarks &told)
{
    GtkWidget *label = label_of_findings(text);
    std::string all;
    for (const int number : {TEXT_TRANS1, TEXT_TRANS2}) {
        const auto &of_field = told[static_cast<std::size_t>(number)];
        const lang_entry_t *entry = text->*zel::fields[number].entry;
        if (of_field.empty() || entry == nullptr)
            continue;
        all += (all.empty() ? "" : "\n") + zel::utf8_shown(entry->lang) + ": " +
               joined(of_field, "; ");
    }
    if (all.empty())
        gtk_widget_hide(text->all_findings);
    if (all == gtk_label_get_text(GTK_LABEL(label)))
        return;
    gtk_label_set_text(GTK_LABEL(label), all.c_str());
    gtk_widget_queue_resize(text->all_findings);
}

} // namespace

namespace zel {

GtkWidget *text_finding_label_new()
{
    GtkWidget *label = gtk_label_new(nullptr);
    gtk_misc_set_alignment(GTK_MISC(label), 1.0F, 0.5F);
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
    gtk_widget_set_no_show_all(label, TRUE);
    return label;
}

GtkWidget *text_room_label_new()
{
    GtkWidget *label = gtk_label_new(nullptr);
    gtk_widget_set_no_show_all(label, TRUE);
    return label;
}

void text_show_rooms(Zeltext *text, const assist::rooms &all)
{
    show_room(text->room1_label, text->trans1_view, all[0]);
    show_room(text->room2_label, text->trans2_view, all[1]);
}

lint::text_width text_width_in(Zeltext *text)
{
    return [label = text->trans1_label](std::string_view measured) {
        const std::string shown = utf8_shown(std::string(measured).c_str());
        PangoLayout *layout = gtk_widget_create_pango_layout(label, shown.c_str());
        int width = 0;
        pango_layout_get_pixel_size(layout, &width, nullptr);
        g_object_unref(layout);
        return static_cast<std::size_t>(std::max(width, 0));
    };
}

std::vector<assist::typed_text> text_typed(Zeltext *text)
{
    std::vector<assist::typed_text> out;
    for (int number = 0; number < TEXT_FIELDS; ++number) {
        const lang_entry_t *entry = text->*fields[number].entry;
        if (entry != nullptr && text->dirty[number] != 0)
            out.push_back(
                {entry->lang, fields[number].entries,
                 buffer_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(text->*fields[number].view)))});
    }
    return out;
}

void text_show_remarks(Zeltext *text, const assist::remarks &told)
{
    show_remarks(text->finding1_label, text->trans1_view, told[0]);
    show_remarks(text->finding2_label, text->trans2_view, told[1]);
    if (text->all_findings != nullptr)
        show_all_findings(text, told);
}

void text_wrap_findings(Zeltext *text, int width)
{
    GtkWidget *label = label_of_findings(text);
    int before = 0;
    gtk_widget_get_size_request(label, &before, nullptr);
    if (before == width)
        return;
    gtk_widget_set_size_request(label, width, -1);
    gtk_widget_queue_resize(text->all_findings);
}

GtkWidget *text_all_findings_new(Zeltext *text)
{
    GtkWidget *label = gtk_label_new(nullptr);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.0F);
    gtk_misc_set_padding(GTK_MISC(label), 4, 2);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    gtk_widget_show(label);
    text->all_findings = scrolled_box_new(label);
    g_signal_connect(text->all_findings, "size-request", G_CALLBACK(findings_asked), text);
    gtk_widget_show_all(text->all_findings);
    // The panel's show_all must not show it while it is empty.
    gtk_widget_set_no_show_all(text->all_findings, TRUE);
    gtk_widget_hide(text->all_findings);
    for (GtkWidget *finding : {text->finding1_label, text->finding2_label})
        // Only when a label has its place is it known whether it is cut.
        g_signal_connect(finding, "size-allocate", G_CALLBACK(findings_placed), text);
    return text->all_findings;
}

void text_colour_pieces_of(GtkWidget *view)
{
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
    const std::string text = buffer_text(buffer);
    tag_places(buffer, tag_of(view), places_of(text, assist::pieces_of(text)));
}

void text_colour_pieces(Zeltext *text)
{
    for (const field_t &field : fields)
        text_colour_pieces_of(text->*field.view);
}

} // namespace zel
