#include "editor/table/w_tab_suggest.h"

#include "assist/pieces.h"
#include "assist/plural-line.h"
#include "editor/panel/w_text.h"
#include "editor/panel/w_text_below.h"
#include "editor/state/edit-state.h"
#include "editor/table/w_tab_plural.h"
#include "editor/toolkit/text-places.h"
#include "editor/toolkit/text-runs.h"
#include "editor/toolkit/ui-text.h"
#include "lint/plural.h"
#include "source/entry.h"
#include "source/misc.h"

#include <gdk/gdkkeysyms.h>

#include <string>

namespace zel {

namespace {

// Indexing comes after the judging of the rows, whose marks the user sees at once.
constexpr int before_indexing = 300; // milliseconds
constexpr int between_indexing = 8;
constexpr gint64 indexing_time = 4000; // microseconds
constexpr std::uint32_t rows_indexed_at_once = 16;
static_assert(TEXT_TRANS1 == 0 && TEXT_TRANS2 == 1, "arrays have a place for each of them");

GtkWidget *label_of(Zeltext *panel, int field)
{
    return field == TEXT_TRANS1 ? panel->suggestion1_label : panel->suggestion2_label;
}

// Returns the text in one line, as a label shows it.
std::string flat(const std::string &text)
{
    std::string out = utf8_shown(text.c_str());
    for (char &c : out)
        c = c == '\n' || c == '\r' ? ' ' : c;
    return out;
}

// Puts the text in as if it was typed, so that it counts as an edit and is one step to undo.
void put(GtkWidget *view, const std::string &text, bool instead)
{
    GtkTextBuffer *buffer = buffer_of(view);
    GtkTextIter start;
    GtkTextIter end;
    // One action: the undo takes back both the removal and the insertion.
    gtk_text_buffer_begin_user_action(buffer);
    if (instead) {
        gtk_text_buffer_get_bounds(buffer, &start, &end);
        gtk_text_buffer_delete_interactive(buffer, &start, &end, TRUE);
    } else {
        gtk_text_buffer_delete_selection(buffer, TRUE, TRUE);
    }
    gtk_text_buffer_insert_interactive_at_cursor(buffer, text.c_str(), -1, TRUE);
    gtk_text_buffer_end_user_action(buffer);
    // The caret may be out of sight after a long text.
    gtk_text_view_scroll_mark_onscreen(GTK_TEXT_VIEW(view), gtk_text_buffer_get_insert(buffer));
    gtk_widget_grab_focus(view);
}

} // namespace

tab_suggest::tab_suggest(std::shared_ptr<tab_rows> rows, Zeltext *panel, GtkWidget *ready_button)
    : rows_(std::move(rows)), panel_(panel), ready_button_(ready_button),
      index_([this](std::uint32_t row) { return reference_of(row); }),
      neighbours_(
          [this] {
              suggest_all();
              then_();
          },
          [this] { suggest_all(); }),
      terms_(panel)
{
    add_keys();
    for (const int field : {TEXT_TRANS1, TEXT_TRANS2})
        // A move of the caret changes which plural form is bold.
        for (const char *signal : {"changed", "notify::cursor-position"})
            g_signal_connect_swapped(buffer_of(panel_->*fields[field].view), signal,
                                     G_CALLBACK(typed), this);
}

void tab_suggest::stop()
{
    indexing_.stop();
    keys_.clear();
    neighbours_.stop();
    index_.reset(0);
    unused_.clear();
    row_ = -1;
}

const std::string *tab_suggest::lang_of(int field) const
{
    return (field == TEXT_TRANS1 ? rows_->lang1 : rows_->lang2).get();
}

// Whether the field is translated into: it shows a language which is not the source's own.
bool tab_suggest::is_translated_into(int field) const
{
    const std::string *lang = lang_of(field);
    return lang != nullptr && rows_->source != nullptr &&
           g_strcmp0(lang->c_str(), rows_->source->default_lang) != 0;
}

// The translation that has the keyboard, else the one that is translated into; -1 for none.
int tab_suggest::field_to_fill() const
{
    const int focused = text_focused_field(panel_);
    if (row_ < 0 || focused == TEXT_TRANS1 || focused == TEXT_TRANS2)
        return row_ < 0 ? -1 : focused;
    if (is_translated_into(TEXT_TRANS2) || rows_->lang1 == nullptr)
        return rows_->lang2 == nullptr ? -1 : TEXT_TRANS2;
    return TEXT_TRANS1;
}

void tab_suggest::collect_unused()
{
    unused_.clear();
    if (rows_->source == nullptr)
        return;
    for (const edit_t *group : each<edit_t>(rows_->source->groups))
        for (item_t *item : each<item_t>(group->items))
            if (item->used == 0 && item->langs != nullptr)
                unused_.push_back({group, item});
}

item_t *tab_suggest::item_of(std::uint32_t number) const
{
    const std::size_t rows = rows_->rows.size();
    return number < rows ? rows_->rows[number].item : unused_[number - rows].item;
}

const char *tab_suggest::group_of(std::uint32_t number) const
{
    const std::size_t rows = rows_->rows.size();
    return or_empty(number < rows ? rows_->rows[number].group->name
                                  : unused_[number - rows].group->name);
}

std::string tab_suggest::reference_of(std::uint32_t number) const
{
    return reference_text(*rows_->source, item_of(number));
}

lang_entry_t *tab_suggest::translation(std::uint32_t number, int field) const
{
    const std::string *lang = lang_of(field);
    return lang == nullptr ? nullptr : misc_select_lang_entry(item_of(number), lang->c_str());
}

void tab_suggest::rows_changed()
{
    neighbours_.leave_source();
    collect_unused();
    index_.reset(rows_->rows.size() + unused_.size());
    // Slices begin again with the first row.
    next_row_ = 0;
    // Nothing is indexed by now, so the row that was shown is not added to the new index.
    item_shown(-1);
    indexing_.begin(before_indexing);
}

int tab_suggest::index_slice()
{
    const bool complete = work_for(indexing_time, rows_indexed_at_once, [this] {
        if (next_row_ >= index_.count())
            return false;
        index_.add(next_row_++);
        return true;
    });
    if (!complete)
        return between_indexing;
    // The item is shown before the index is complete: what was found for it may be better now.
    suggest_all();
    // The neighbours come last, since their texts count less and their files must be read.
    read_neighbours();
    return slices::finished;
}

void tab_suggest::read_neighbours()
{
    // Neighbours are found by the source's folder, and compared in its own language.
    if (rows_->source == nullptr || def_file == nullptr || rows_->source->default_lang == nullptr)
        return;
    assist::neighbour_texts::query wanted{def_file, rows_->source->default_lang, {}};
    for (const int field : {TEXT_TRANS1, TEXT_TRANS2})
        if (is_translated_into(field))
            wanted.langs[static_cast<std::size_t>(field)] = *lang_of(field);
    neighbours_.begin(wanted, *rows_->source);
}

std::optional<assist::suggestion> tab_suggest::own_suggestion(std::uint32_t row, int field) const
{
    // What is translated was nothing else before.
    const std::size_t wanted = misc_search_empty_in_lang_entry(translation(row, field)) != 0
                                   ? index_.count()
                                   : rows_->rows.size();
    const auto best = index_.best(row, [&](std::uint32_t other) {
        return other < wanted && misc_search_empty_in_lang_entry(translation(other, field)) == 0;
    });
    if (!best)
        return std::nullopt;
    return assist::suggestion{text_of(translation(best->item, field)), group_of(best->item),
                              reference_of(best->item), best->likeness,
                              best->item >= rows_->rows.size()};
}

// The better of the two suggestions; the source's own wins where both are equally alike.
std::optional<assist::suggestion> tab_suggest::suggestion(std::uint32_t row, int field) const
{
    auto own = own_suggestion(row, field);
    // A text that is the same cannot be beaten: the neighbours are not asked.
    if (own && own->likeness >= 1)
        return own;
    auto other = neighbours_.best(reference_of(row), static_cast<std::size_t>(field));
    return other && (!own || other->likeness > own->likeness) ? other : own;
}

void tab_suggest::suggest(int field)
{
    offer &made = offers_[static_cast<std::size_t>(field)];
    made = {};
    const bool is_filled = row_ >= 0 && is_translated_into(field);
    gtk_widget_set_visible(label_of(panel_, field), is_filled);
    if (is_filled) {
        made.is_plural = lint::has_plural_forms(reference_of(static_cast<std::uint32_t>(row_)));
        if (const auto best = suggestion(static_cast<std::uint32_t>(row_), field)) {
            made.text = utf8_shown(best->text.c_str());
            made.is_same = best->likeness >= 1;
            made.line =
                shown_in_runs(flat(best->text)) + " (" + utf8_shown(best->origin.c_str()) + ")";
            if (best->was && best->likeness < 1) {
                made.was =
                    was_line_of(best->reference, reference_of(static_cast<std::uint32_t>(row_)));
                made.line = made.was.text;
            } else if (best->likeness < 1) {
                made.line += " ~ " + shown_in_runs(flat(best->reference));
            }
        }
        tell_earlier(static_cast<std::uint32_t>(row_), field);
    }
    show(field);
}

// What the original was when it was translated so, which is no text to take. It comes before what
// is only like it, and behind the same text.
void tab_suggest::tell_earlier(std::uint32_t row, int field)
{
    offer &made = offers_[static_cast<std::size_t>(field)];
    const bool has_same = !made.line.empty() && made.is_same;
    if (row >= rows_->rows.size() || has_same)
        return;
    const tab_row &of = rows_->rows[row];
    const std::string before =
        neighbours_.earlier().of(*of.group, *of.item, static_cast<std::size_t>(field));
    if (before.empty())
        return;
    made.text.clear();
    made.was = was_line_of(before, std::string(without_end(reference_of(row))));
    made.line = made.was.text;
}

// Called with each letter that is typed: most texts are told apart by their lengths.
bool tab_suggest::is_there_already(int field) const
{
    const std::string &text = offers_[static_cast<std::size_t>(field)].text;
    GtkTextBuffer *buffer = buffer_of(panel_->*fields[field].view);
    // No text has fewer bytes than characters.
    const auto most = static_cast<std::size_t>(gtk_text_buffer_get_char_count(buffer));
    return !text.empty() && most <= text.size() &&
           g_utf8_strlen(text.c_str(), -1) == static_cast<glong>(most) &&
           buffer_text(buffer) == text;
}

std::string_view tab_suggest::rule_of(int field) const
{
    const std::string *lang = lang_of(field);
    for (const lang_t *one : each<lang_t>(rows_->source->langs))
        if (lang != nullptr && g_strcmp0(one->name, lang->c_str()) == 0)
            return lint::plural_rule_of(*one);
    return {};
}

plural_line tab_suggest::plural_of(int field) const
{
    GtkWidget *view = panel_->*fields[field].view;
    if (row_ < 0 || !is_translated_into(field))
        return {};
    if (!offers_[static_cast<std::size_t>(field)].is_plural &&
        !lint::has_plural_forms(buffer_text(buffer_of(view))))
        return {};
    return plural_line_of(view, label_of(panel_, field), rule_of(field));
}

void tab_suggest::show(int field)
{
    offer &made = offers_[static_cast<std::size_t>(field)];
    GtkWidget *label = label_of(panel_, field);
    // What stands in the field already is no suggestion.
    const std::string line = is_there_already(field) ? "" : made.line;
    plural_line forms = plural_of(field);
    const char *between = forms.text.empty() || line.empty() ? "" : "    ";
    std::string text = forms.text + between + line;
    const bool has_room = text.empty();
    if (has_room)
        text = terms_shown(field).line;
    std::string &marks = marks_[static_cast<std::size_t>(field)];
    if (text == gtk_label_get_text(GTK_LABEL(label)) && forms.marks == marks)
        return;
    marks = forms.marks;
    std::string tooltip = forms.tooltip;
    if (!line.empty())
        tooltip += (tooltip.empty() ? "" : "\n") + line;
    if (!line.empty() && !made.text.empty())
        tooltip += "\n" + (made.was.text.empty() ? "" : shown_in_runs(made.text) + "\n") +
                   ui_text("tab-edit", "Take it (Ctrl+Space)");
    if (!line.empty() && !made.was.parts.empty()) {
        if (forms.attributes == nullptr)
            forms.attributes.reset(pango_attr_list_new());
        mark_was_line(forms.attributes.get(), made.was, text.size() - line.size());
    }
    if (has_room && !text.empty())
        tooltip = text + "\n" + ui_text("tab-edit", "Insert one (Ctrl+Space, Ctrl and its number)");
    gtk_label_set_text(GTK_LABEL(label), text.c_str());
    gtk_label_set_attributes(GTK_LABEL(label), forms.attributes.get());
    gtk_widget_set_tooltip_text(label, tooltip.empty() ? nullptr : tooltip.c_str());
}

// The terms under a field in which nothing else stands, with the numbers behind those of the other
// text's pieces.
tab_terms::offer tab_suggest::terms_shown(int field) const
{
    if (row_ < 0 || !terms_.any() || !is_translated_into(field))
        return {};
    const bool has_line =
        !offers_[static_cast<std::size_t>(field)].line.empty() && !is_there_already(field);
    if (has_line || !plural_of(field).text.empty())
        return {};
    const int other = field == TEXT_TRANS1 ? TEXT_TRANS2 : TEXT_TRANS1;
    const std::string text = buffer_text(buffer_of(panel_->*fields[other].view));
    return terms_.lacking(*lang_of(field), buffer_text(buffer_of(panel_->*fields[field].view)),
                          assist::pieces_of(text).size() + 1);
}

void tab_suggest::underline_terms()
{
    GtkWidget *reference = nullptr;
    for (const int field : {TEXT_TRANS1, TEXT_TRANS2})
        if (lang_of(field) != nullptr && !is_translated_into(field))
            reference = panel_->*fields[field].view;
    terms_.underline(reference);
}

void tab_suggest::typed(gpointer data)
{
    auto *self = static_cast<tab_suggest *>(data);
    for (const int field : {TEXT_TRANS1, TEXT_TRANS2})
        if (self->row_ >= 0)
            self->show(field);
    if (self->row_ >= 0)
        self->underline_terms();
}

void tab_suggest::suggest_all()
{
    suggest(TEXT_TRANS1);
    suggest(TEXT_TRANS2);
}

void tab_suggest::item_shown(int row)
{
    // A row that the slices have still to come to is left to them.
    if (row_ >= 0 && static_cast<std::size_t>(row_) < index_.count() && row != row_ &&
        static_cast<std::uint32_t>(row_) < next_row_)
        index_.add(static_cast<std::uint32_t>(row_)); // its text may have changed
    row_ = row >= 0 && static_cast<std::size_t>(row) < index_.count() ? row : -1;
    terms_.item_shown(*rows_, row_, row_ < 0 ? "" : reference_of(static_cast<std::uint32_t>(row_)));
    underline_terms();
    suggest_all();
}

void tab_suggest::take_suggestion()
{
    int field = field_to_fill();
    // The field of the source's own language has no suggestion: the key acts on the other one.
    if (field >= 0 && !is_translated_into(field))
        field = field == TEXT_TRANS1 ? TEXT_TRANS2 : TEXT_TRANS1;
    const std::string text = field < 0 ? "" : offers_[static_cast<std::size_t>(field)].text;
    // The user has pressed a key, and must see why nothing happens.
    if (text.empty() || is_there_already(field)) {
        const tab_terms::offer terms = field < 0 ? tab_terms::offer{} : terms_shown(field);
        if (terms.texts.empty())
            edit_status(ui_text("tab-edit", "No suggestion"));
        else
            put(panel_->*fields[field].view, terms.texts.front(), false);
        return;
    }
    if (!offers_[static_cast<std::size_t>(field)].was.text.empty())
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(ready_button_), FALSE);
    put(panel_->*fields[field].view, text, true);
}

void tab_suggest::copy_other()
{
    const int field = field_to_fill();
    if (field < 0)
        return;
    const int other = field == TEXT_TRANS1 ? TEXT_TRANS2 : TEXT_TRANS1;
    const std::string text = buffer_text(buffer_of(panel_->*fields[other].view));
    GtkWidget *view = panel_->*fields[field].view;
    if (text.empty())
        edit_status(ui_text("tab-edit", "The other text is empty"));
    else if (gtk_text_buffer_get_char_count(buffer_of(view)) == 0 && lint::has_plural_forms(text))
        put(view, assist::needed_forms(rule_of(field), text, rule_of(other)), true);
    else
        put(view, text, true);
}

void tab_suggest::go_to_form(int direction)
{
    const int field = text_focused_field(panel_);
    if ((field == TEXT_TRANS1 || field == TEXT_TRANS2) &&
        !plural_go_to_form(panel_->*fields[field].view, direction))
        edit_status(direction > 0 ? ui_text("tab-edit", "No plural form behind this one")
                                  : ui_text("tab-edit", "No plural form before this one"));
}

void tab_suggest::show_below(int direction)
{
    const int field = field_to_fill();
    if (field >= 0 && !text_below_step(panel_, field, direction))
        edit_status(ui_text("tab-edit", "No other language to show below"));
}

void tab_suggest::insert_piece(std::size_t number)
{
    const int field = field_to_fill();
    if (field < 0)
        return;
    const int other = field == TEXT_TRANS1 ? TEXT_TRANS2 : TEXT_TRANS1;
    const std::string text = buffer_text(buffer_of(panel_->*fields[other].view));
    const std::vector<assist::piece> pieces = assist::pieces_of(text);
    if (number > pieces.size()) {
        const tab_terms::offer terms = terms_shown(field);
        if (number - pieces.size() <= terms.texts.size())
            return put(panel_->*fields[field].view, terms.texts[number - pieces.size() - 1], false);
        edit_status(ui_text("tab-edit", "The other text has fewer conversions, symbols and tags"));
        return;
    }
    const auto &[at, length] = pieces[number - 1];
    put(panel_->*fields[field].view, text.substr(at, length), false);
}

void tab_suggest::add_term()
{
    const int field = text_focused_field(panel_);
    if (row_ < 0 || (field != TEXT_TRANS1 && field != TEXT_TRANS2) || lang_of(field) == nullptr)
        edit_status(ui_text("tab-edit", "Select a term, or its translation"));
    else if (const int other = field == TEXT_TRANS1 ? TEXT_TRANS2 : TEXT_TRANS1;
             terms_.take_selection(*rows_->source, {panel_->*fields[field].view, lang_of(field)},
                                   {panel_->*fields[other].view, lang_of(other)}))
        item_shown(row_);
}

void tab_suggest::add_keys()
{
    constexpr std::size_t digits = 9;
    const auto add = [this](guint keyval, GdkModifierType modifier, std::function<void()> act) {
        keys_.add(keyval, modifier, [act = std::move(act)] {
            // The line of the last key would look like an answer to this one.
            edit_status(nullptr);
            act();
        });
    };
    add(GDK_KEY_Right, GDK_MOD1_MASK, [this] { go_to_form(1); });
    add(GDK_KEY_Left, GDK_MOD1_MASK, [this] { go_to_form(-1); });
    add(GDK_KEY_space, GDK_CONTROL_MASK, [this] { take_suggestion(); });
    add(GDK_KEY_b, GDK_CONTROL_MASK, [this] { copy_other(); });
    add(GDK_KEY_t, GDK_CONTROL_MASK, [this] { add_term(); });
    add(GDK_KEY_l, GDK_CONTROL_MASK, [this] { show_below(1); });
    add(GDK_KEY_l, static_cast<GdkModifierType>(GDK_CONTROL_MASK | GDK_SHIFT_MASK),
        [this] { show_below(-1); });
    for (std::size_t digit = 1; digit <= digits; ++digit)
        // Both rows of digits: the keys of the number pad have names of their own.
        for (const guint first : {guint{GDK_KEY_0}, guint{GDK_KEY_KP_0}})
            add(first + static_cast<guint>(digit), GDK_CONTROL_MASK,
                [this, digit] { insert_piece(digit); });
}

} // namespace zel
