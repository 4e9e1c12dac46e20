#include "editor/w_text_checks.h"

#include "assist/pieces.h"
#include "editor/accessible.h"
#include "editor/text-places.h"
#include "editor/ui-text.h"

#include <string>

namespace {

GtkTextBuffer *buffer_of(GtkWidget *view) { return gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)); }

void follow_style(GtkWidget *view, GtkStyle *, gpointer tag)
{
    g_object_set(tag, "foreground", zel::is_dark(view) ? "#8ab8ff" : "#1448a8", nullptr);
}

GtkTextTag *tag_of(GtkWidget *view)
{
    GtkTextBuffer *buffer = buffer_of(view);
    GtkTextTag *tag =
        gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), zel::text_piece_tag);
    if (tag != nullptr)
        return tag;
    tag = gtk_text_buffer_create_tag(buffer, zel::text_piece_tag, nullptr);
    follow_style(view, nullptr, tag);
    g_signal_connect(view, "style-set", G_CALLBACK(follow_style), tag);
    return tag;
}

void colour(GtkWidget *view)
{
    GtkTextBuffer *buffer = buffer_of(view);
    const std::string text = zel::buffer_text(buffer);
    zel::tag_places(buffer, tag_of(view), zel::places_of(text, zel::assist::pieces_of(text)));
}

std::string joined(const std::vector<zel::assist::remark> &told, const char *between)
{
    std::string out;
    for (const zel::assist::remark &one : told)
        out += (out.empty() ? "" : between) + zel::utf8_shown(one.text.c_str());
    return out;
}

void show_remarks(GtkWidget *label, GtkWidget *view, const std::vector<zel::assist::remark> &told)
{
    const std::string text = joined(told, "; ");
    if (text == gtk_label_get_text(GTK_LABEL(label)))
        return;
    bool counts = false;
    for (const zel::assist::remark &one : told)
        counts = counts || one.counts;
    PangoAttrList *attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes,
                           pango_attr_weight_new(counts ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL));
    gtk_label_set_attributes(GTK_LABEL(label), attributes);
    pango_attr_list_unref(attributes);
    gtk_label_set_text(GTK_LABEL(label), text.c_str());
    gtk_widget_set_tooltip_text(label, text.empty() ? nullptr : joined(told, "\n").c_str());
    gtk_widget_set_visible(label, !text.empty());
    zel::set_accessible_description(view, text.c_str());
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

std::vector<assist::typed_text> text_typed(Zeltext *text)
{
    std::vector<assist::typed_text> out;
    for (int number = 0; number < TEXT_FIELDS; ++number) {
        const lang_entry_t *entry = text->*fields[number].entry;
        if (entry != nullptr && text->dirty[number] != 0)
            out.push_back({entry->lang, fields[number].entries,
                           buffer_text(buffer_of(text->*fields[number].view))});
    }
    return out;
}

void text_show_remarks(Zeltext *text, const assist::remarks &told)
{
    show_remarks(text->finding1_label, text->trans1_view, told[0]);
    show_remarks(text->finding2_label, text->trans2_view, told[1]);
}

void text_colour_pieces(Zeltext *text)
{
    colour(text->trans1_view);
    colour(text->trans2_view);
}

} // namespace zel
