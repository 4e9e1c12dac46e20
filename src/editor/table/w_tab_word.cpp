#include "editor/table/w_tab_word.h"

#include "editor/panel/w_text.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/text-places.h"
#include "editor/toolkit/text-runs.h"
#include "editor/toolkit/ui-text.h"
#include "source/entry.h"

#include <cstring>

namespace zel {

namespace {

constexpr int translations[] = {TEXT_TRANS1, TEXT_TRANS2};

const std::string *language_of(const tab_rows &rows, int field)
{
    return (field == TEXT_TRANS1 ? rows.lang1 : rows.lang2).get();
}

// Whether the field's language is the one that translations are made from.
bool is_reference(const tab_rows &rows, int field)
{
    const std::string *lang = field < 0 ? nullptr : language_of(rows, field);
    return lang != nullptr && rows.source != nullptr && rows.source->default_lang != nullptr &&
           *lang == rows.source->default_lang;
}

std::string selected_in(GtkWidget *view)
{
    GtkTextIter start;
    GtkTextIter end;
    if (gtk_text_buffer_get_selection_bounds(buffer_of(view), &start, &end) == 0)
        return "";
    gchar *text = gtk_text_buffer_get_text(buffer_of(view), &start, &end, TRUE);
    std::string out = text;
    g_free(text);
    return out;
}

std::string word_at_caret(GtkWidget *view)
{
    GtkTextBuffer *buffer = buffer_of(view);
    GtkTextIter caret;
    gtk_text_buffer_get_iter_at_mark(buffer, &caret, gtk_text_buffer_get_insert(buffer));
    const std::string text = buffer_text(buffer);
    const char *place = g_utf8_offset_to_pointer(text.c_str(), gtk_text_iter_get_offset(&caret));
    return assist::word_at(text, static_cast<std::size_t>(place - text.c_str()));
}

int field_of_view(Zeltext *panel, const GtkWidget *view)
{
    for (const int field : translations)
        if (panel->*fields[field].view == view)
            return field;
    return -1;
}

std::string in_quotes(const std::string &word) { return "\"" + word + "\""; }

} // namespace

asked_word word_asked_for(Zeltext *panel, const tab_rows &rows)
{
    GtkWidget *window = gtk_widget_get_toplevel(GTK_WIDGET(panel));
    GtkWidget *focus = GTK_IS_WINDOW(window) ? gtk_window_get_focus(GTK_WINDOW(window)) : nullptr;
    std::vector<GtkWidget *> views;
    if (focus != nullptr && GTK_IS_TEXT_VIEW(focus)) {
        views = {focus};
    } else if (panel->item != nullptr) {
        views = {panel->trans1_view, panel->trans2_view};
        if (is_reference(rows, TEXT_TRANS2))
            std::swap(views[0], views[1]);
    }
    for (GtkWidget *view : views)
        if (std::string text = selected_in(view); !text.empty())
            return {std::move(text), field_of_view(panel, view), true};
    for (GtkWidget *view : views)
        if (std::string word = word_at_caret(view); !word.empty())
            return {std::move(word), field_of_view(panel, view), false};
    return {};
}

// As in a suggestion, the item is the text where the source's own language has none.
std::string tab_word::text_of_row(std::size_t row, int field) const
{
    const std::string *lang = language_of(*parts_.rows, field);
    item_t *item = parts_.rows->rows[row].item;
    std::string text = lang == nullptr ? "" : text_of(find_entry(item->langs, lang->c_str()));
    if (is_reference(*parts_.rows, field) && without_end(text).empty())
        text = or_empty(item->name);
    return text;
}

std::string_view tab_word::text_of_neighbour(std::size_t row, int field) const
{
    const auto &rows = parts_.neighbours().rows();
    if (row >= rows.size()) // they are being read again
        return "";
    return is_reference(*parts_.rows, field) ? rows[row].reference
                                             : rows[row].texts[static_cast<std::size_t>(field)];
}

void tab_word::find()
{
    hits_.clear();
    std::string buffer;
    const tab_rows &rows = *parts_.rows;
    for (std::size_t row = 0; row < rows.rows.size(); ++row) {
        const item_t *item = rows.rows[row].item;
        for (const int field : translations) {
            const std::string *lang = is_looked_at(field) ? language_of(rows, field) : nullptr;
            if (lang == nullptr)
                continue;
            // Looked at where it is: a copy of every text would take longer than the search.
            const lang_entry_t *entry = find_entry(item->langs, lang->c_str());
            std::string_view text = look_at_text(entry == nullptr ? nullptr : entry->texts, buffer);
            if (without_end(text).empty() && is_reference(rows, field))
                text = or_empty(item->name);
            if (finder_.are_in(text)) {
                hits_.push_back({row, true});
                break;
            }
        }
    }
    for (std::size_t row = 0; row < parts_.neighbours().rows().size(); ++row)
        for (const int field : translations)
            if (is_looked_at(field) && finder_.are_in(text_of_neighbour(row, field))) {
                hits_.push_back({row, false});
                break;
            }
}

std::string tab_word::where(const hit &one) const
{
    if (one.is_own) {
        const char *group = parts_.rows->rows[one.number].group->name;
        return std::to_string(one.number + 1) + "\n" + utf8_shown(group);
    }
    // "GROUP, FILE": the file is what tells it from the source's own items.
    const auto &texts = parts_.neighbours();
    if (one.number >= texts.rows().size())
        return "";
    const std::string origin = utf8_shown(texts.origin_of(texts.rows()[one.number]).c_str());
    const std::size_t comma = origin.rfind(", ");
    return comma == std::string::npos ? origin
                                      : origin.substr(comma + 2) + "\n" + origin.substr(0, comma);
}

std::array<hit_line, 2> tab_word::lines(const hit &one) const
{
    std::array<hit_line, 2> out;
    for (const int field : translations) {
        hit_line &line = out[static_cast<std::size_t>(field)];
        const std::string text = one.is_own ? text_of_row(one.number, field)
                                            : std::string(text_of_neighbour(one.number, field));
        line.text = utf8_shown(text.c_str());
        if (is_looked_at(field))
            line.marked = finder_.hits(line.text);
    }
    return out;
}

void tab_word::look()
{
    const asked_word asked = word_asked_for(parts_.panel, *parts_.rows);
    // What is typed counts; the fields keep it.
    zel_text_update(GTK_WIDGET(parts_.panel));
    const bool by_stem = !asked.is_selected && is_reference(*parts_.rows, asked.field);
    word_ = by_stem ? assist::stem_of(asked.letters) : asked.letters;
    field_ = asked.field;
    finder_ = assist::word_finder(word_, assist::word_extent::beginning);
    if (finder_.empty()) {
        edit_status(ui_text("tab-edit", "No word is selected or at the caret"));
        return;
    }
    find();
    show();
}

void tab_word::show()
{
    std::size_t own = 0;
    for (const hit &one : hits_)
        own += one.is_own ? 1U : 0U;
    const std::string word = in_quotes(utf8_shown(word_.c_str()));
    std::string status =
        shown_in_line(word) + ": " + std::to_string(own) + " " + ui_text("tab-edit", "Items");
    if (own != hits_.size())
        status += ", " + std::to_string(hits_.size() - own) + " " +
                  ui_text("tab-edit", "in other sources");
    status += std::string(" (") + ui_text("tab-edit", "Escape: back to the list") + ")";
    edit_status(status.c_str());

    hit_rows rows;
    rows.name = std::string(ui_text("tab-edit", "Items with the word")) + " " + word;
    for (const int field : translations) {
        const std::string *lang = language_of(*parts_.rows, field);
        if (lang != nullptr)
            rows.title += (rows.title.empty() ? "" : " / ") + utf8_shown(lang->c_str());
    }
    rows.count = hits_.size();
    rows.where = [this](std::size_t row) { return where(hits_[row]); };
    rows.lines = [this](std::size_t row) { return lines(hits_[row]); };
    rows.open = [this](std::size_t row) {
        const hit one = hits_[row];
        if (!one.is_own)
            return;
        end();
        parts_.go_to_row(static_cast<int>(one.number));
    };
    is_shown_ = true;
    parts_.hits->show(std::move(rows));
}

void tab_word::end()
{
    if (!is_shown_)
        return;
    is_shown_ = false;
    parts_.hits->hide();
    edit_status(nullptr);
}

void tab_word::neighbours_are_read()
{
    if (!is_shown_)
        return;
    find();
    show();
}

} // namespace zel
