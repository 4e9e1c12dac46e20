#include "editor/table/w_tab_plural.h"

#include "assist/plural-line.h"
#include "editor/toolkit/text-places.h"
#include "editor/toolkit/theme.h"
#include "editor/toolkit/ui-text.h"
#include "langlib/plural-rule.h"

#include <algorithm>
#include <vector>

namespace zel {

namespace {

constexpr std::string_view between_forms = " | ";

// The form with the caret: as many signs stand before it.
std::size_t form_at_caret(GtkTextBuffer *buffer)
{
    GtkTextIter start;
    GtkTextIter caret;
    gtk_text_buffer_get_start_iter(buffer, &start);
    gtk_text_buffer_get_iter_at_mark(buffer, &caret, gtk_text_buffer_get_insert(buffer));
    gchar *before = gtk_text_buffer_get_text(buffer, &start, &caret, TRUE);
    const std::size_t form = count_text_forms(before) - 1;
    g_free(before);
    return form;
}

void add(PangoAttrList *list, PangoAttribute *attribute, std::size_t from, std::size_t to)
{
    attribute->start_index = static_cast<guint>(from);
    attribute->end_index = static_cast<guint>(to);
    pango_attr_list_insert(list, attribute);
}

// Half way between the label's letters and its ground.
PangoAttribute *faint(GtkWidget *label)
{
    const GtkStyle *style = gtk_widget_get_style(label);
    const GdkColor &letters = style->fg[GTK_STATE_NORMAL];
    const GdkColor &ground = style->bg[GTK_STATE_NORMAL];
    const auto middle = [](guint16 a, guint16 b) { return static_cast<guint16>((a + b) / 2); };
    return pango_attr_foreground_new(middle(letters.red, ground.red),
                                     middle(letters.green, ground.green),
                                     middle(letters.blue, ground.blue));
}

// "1 file, 21 files": nothing for a form that is missing or that no number takes.
std::string examples(const std::string &text, std::size_t number, const assist::number_form &form)
{
    std::string out;
    if (form.is_missing)
        return out;
    for (const std::uint64_t sample : form.samples) {
        const std::string one = assist::with_number(text_form(text, number), sample);
        if (one != out) // a form without its number is the same for all of them
            out += (out.empty() ? "" : ", ") + one;
    }
    return out;
}

} // namespace

plural_line plural_line_of(GtkWidget *view, GtkWidget *label, std::string_view rule)
{
    const std::string text = buffer_text(buffer_of(view));
    const std::vector<assist::number_form> forms = assist::number_forms(rule, text);
    const std::size_t caret = form_at_caret(buffer_of(view));
    plural_line line;
    line.attributes.reset(pango_attr_list_new());
    PangoAttrList *attributes = line.attributes.get();
    for (std::size_t i = 0; i < forms.size(); ++i) {
        line.text += i == 0 ? "" : between_forms;
        const std::size_t start = line.text.size();
        // A form that no number takes is there, too.
        line.text += forms[i].numbers.empty() ? "\u2013" : forms[i].numbers;
        const bool is_bold = i == caret;
        if (is_bold)
            add(attributes, pango_attr_weight_new(PANGO_WEIGHT_BOLD), start, line.text.size());
        line.marks += is_bold ? 'b' : ' ';
        line.marks += forms[i].is_missing ? 'r' : ' ';
    }
    add(attributes, faint(label), 0, line.text.size());
    for (std::size_t i = 0, start = 0; i < forms.size(); ++i) {
        const std::size_t end = std::min(line.text.find(between_forms, start), line.text.size());
        if (forms[i].is_missing) // later attributes win
            add(attributes, red_letters(view), start, end);
        start = end + between_forms.size();
    }
    if (caret < forms.size())
        line.tooltip = utf8_shown(examples(text, caret, forms[caret]).c_str());
    return line;
}

bool plural_go_to_form(GtkWidget *view, int direction)
{
    GtkTextBuffer *buffer = buffer_of(view);
    const std::string text = buffer_text(buffer);
    const std::size_t caret = form_at_caret(buffer);
    if (direction < 0 ? caret == 0 : caret + 1 >= count_text_forms(text))
        return false;
    const std::string_view form = text_form(text, direction < 0 ? caret - 1 : caret + 1);
    const auto at = static_cast<std::size_t>(form.data() - text.data());
    const std::vector<char_span> place = places_of(text, {{at, form.size()}});
    GtkTextIter start;
    GtkTextIter end;
    const auto first = static_cast<int>(g_utf8_pointer_to_offset(text.c_str(), form.data()));
    gtk_text_buffer_get_iter_at_offset(buffer, &start, first);
    gtk_text_buffer_get_iter_at_offset(buffer, &end, place.empty() ? first : place.front().end);
    // The caret at the end of what is selected: typing replaces the form, and the other keys go on
    // from there.
    gtk_text_buffer_select_range(buffer, &end, &start);
    gtk_text_view_scroll_mark_onscreen(GTK_TEXT_VIEW(view), gtk_text_buffer_get_insert(buffer));
    return true;
}

} // namespace zel
