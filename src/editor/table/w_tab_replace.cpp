#include "editor/table/w_tab_replace.h"

#include "assist/fold.h"
#include "editor/panel/edit-record.h"
#include "editor/panel/w_text.h"
#include "editor/state/edit-history.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/operation.h"
#include "editor/toolkit/theme.h"
#include "editor/toolkit/ui-text.h"
#include "source/entry.h"

#include <algorithm>
#include <utility>

namespace zel {

namespace {

constexpr int between_fields = 6;
constexpr int entry_chars = 7;
constexpr int languages_width = 96; // where there is no room for more
constexpr int longest_name = 10;
constexpr int in_themes = 3; // letters that a box with borders cuts of a name

const char *entry_text_of(GtkWidget *entry) { return gtk_entry_get_text(GTK_ENTRY(entry)); }

// Gives a box room for names of so many letters, unless the words need the room of a narrow window.
void set_letters(GtkWidget *box, int letters)
{
    PangoLayout *layout = gtk_widget_create_pango_layout(box, "nnnnnnnn");
    int eight = 0;
    pango_layout_get_pixel_size(layout, &eight, nullptr);
    g_object_unref(layout);
    GtkAllocation window{};
    gtk_widget_get_allocation(gtk_widget_get_toplevel(box), &window);
    const bool has_room = window.width > 10 * eight;
    GList *cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(box));
    g_object_set(cells->data, "ellipsize", PANGO_ELLIPSIZE_END, "width-chars",
                 has_room ? std::min(letters, longest_name) + in_themes : -1, nullptr);
    g_list_free(cells);
    gtk_widget_set_size_request(box, has_room ? -1 : languages_width, -1);
}

// A box for the languages, which gets no wider than a usual name.
GtkWidget *languages_new()
{
    GtkWidget *box = gtk_combo_box_text_new();
    set_letters(box, 0);
    const char *caption = ui_text("tab-edit", "Language whose texts are changed");
    gtk_widget_set_tooltip_text(box, caption);
    set_accessible_name(box, caption);
    // The keyboard is on the button in it.
    gtk_container_forall(
        GTK_CONTAINER(box),
        [](GtkWidget *part, gpointer name) {
            set_accessible_name(part, static_cast<const char *>(name));
        },
        const_cast<char *>(caption));
    return box;
}

text_place place_in(item_t *item, const std::string &lang) { return {item, &item_t::langs, lang}; }

} // namespace

tab_replace::tab_replace(tab_replace_parts parts) : parts_(std::move(parts)) { make_fields(); }

GtkWidget *tab_replace::add_entry(const char *caption)
{
    GtkWidget *label = gtk_label_new(ui_text("tab-edit", caption));
    GtkWidget *entry = gtk_entry_new();
    gtk_entry_set_width_chars(GTK_ENTRY(entry), entry_chars);
    draw_line_in_dark(entry);
    set_accessible_name(entry, ui_text("tab-edit", caption));
    g_signal_connect_swapped(
        entry, "changed",
        G_CALLBACK(+[](gpointer self) { static_cast<tab_replace *>(self)->preview(); }), this);
    gtk_box_pack_start(GTK_BOX(box_), label, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box_), entry, TRUE, TRUE, 0);
    return entry;
}

void tab_replace::make_fields()
{
    box_ = gtk_hbox_new(FALSE, between_fields);
    words_ = add_entry("Replace");
    others_ = add_entry("with");
    gtk_widget_set_name(box_, "replace");
    gtk_widget_set_name(words_, "replaced words");
    gtk_widget_set_name(others_, "other words");
    // Return goes on: from what is replaced to what replaces it, and from there to doing it.
    g_signal_connect_swapped(words_, "activate", G_CALLBACK(gtk_widget_grab_focus), others_);
    g_signal_connect_swapped(
        others_, "activate",
        G_CALLBACK(+[](gpointer self) { static_cast<tab_replace *>(self)->replace_all(); }), this);

    languages_ = languages_new();
    g_signal_connect_swapped(
        languages_, "changed",
        G_CALLBACK(+[](gpointer self) { static_cast<tab_replace *>(self)->preview(); }), this);
    button_ = gtk_button_new_with_label("");
    g_signal_connect_swapped(
        button_, "clicked",
        G_CALLBACK(+[](gpointer self) { static_cast<tab_replace *>(self)->replace_all(); }), this);
    gtk_box_pack_start(GTK_BOX(box_), languages_, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box_), button_, FALSE, FALSE, 0);
    gtk_widget_show_all(box_);
    gtk_widget_hide(box_);
    gtk_widget_set_no_show_all(box_, TRUE);
}

// Offers the shown languages, of them that of the field, or else the one that is translated into.
void tab_replace::fill_languages(int field)
{
    const tab_rows &rows = *parts_.rows;
    gtk_list_store_clear(GTK_LIST_STORE(gtk_combo_box_get_model(GTK_COMBO_BOX(languages_))));
    int chosen_one = 0;
    int count = 0;
    int letters = 0;
    for (const auto &[number, lang] :
         {std::pair{TEXT_TRANS1, rows.lang1.get()}, std::pair{TEXT_TRANS2, rows.lang2.get()}}) {
        if (lang == nullptr)
            continue;
        const std::string name = utf8_shown(lang->c_str());
        gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(languages_), name.c_str());
        letters = std::max(letters, static_cast<int>(g_utf8_strlen(name.c_str(), -1)));
        const char *own = rows.source == nullptr ? nullptr : rows.source->default_lang;
        const bool is_translation = own == nullptr || *lang != own;
        if (field == number || (field < 0 && is_translation))
            chosen_one = count;
        ++count;
    }
    set_letters(languages_, letters);
    gtk_combo_box_set_active(GTK_COMBO_BOX(languages_), chosen_one);
}

const std::string *tab_replace::language() const
{
    const int place = gtk_combo_box_get_active(GTK_COMBO_BOX(languages_));
    const tab_rows &rows = *parts_.rows;
    if (place < 0)
        return nullptr;
    // The first one that is offered is the second language where there is no first.
    return place == 0 && rows.lang1 ? rows.lang1.get() : rows.lang2.get();
}

void tab_replace::open(std::string words, int field)
{
    if (is_open()) {
        gtk_widget_grab_focus(words_);
        return;
    }
    if (words.empty())
        words = gtk_entry_get_text(parts_.search);
    // What is typed counts, too; the fields keep it.
    zel_text_update(GTK_WIDGET(parts_.panel));
    {
        // The three fields are one change.
        const flag_guard filling(filling_);
        fill_languages(field);
        if (!words.empty())
            gtk_entry_set_text(GTK_ENTRY(words_), words.c_str());
    }
    out_.clear();
    gtk_widget_show(box_);
    gtk_widget_grab_focus(*entry_text_of(words_) == '\0' ? words_ : others_);
    preview();
}

void tab_replace::end()
{
    if (!is_open())
        return;
    GtkWidget *window = gtk_widget_get_toplevel(box_);
    GtkWidget *focus = GTK_IS_WINDOW(window) ? gtk_window_get_focus(GTK_WINDOW(window)) : nullptr;
    const bool had_keyboard = focus != nullptr && gtk_widget_is_ancestor(focus, box_);
    gtk_widget_hide(box_);
    parts_.hits->hide();
    edit_status(nullptr);
    if (had_keyboard)
        gtk_widget_grab_focus(parts_.hits->list());
}

std::string tab_replace::text_of_row(std::uint32_t row) const
{
    const std::string *lang = language();
    return lang == nullptr
               ? ""
               : text_of(zel::find_entry(parts_.rows->rows[row].item->langs, lang->c_str()));
}

assist::word_replacer tab_replace::replacer() const
{
    return {entry_text_of(words_), entry_text_of(others_)};
}

// Finds the rows whose texts change. While nothing is given to replace with, all that would.
void tab_replace::find(const assist::word_replacer &replacer)
{
    hits_.clear();
    const std::string *lang = language();
    if (replacer.finder().empty() || lang == nullptr)
        return;
    // The search finds bytes, and would hide a word with a mnemonic in it.
    const bool is_searched =
        assist::fold(entry_text_of(words_)) == assist::fold(gtk_entry_get_text(parts_.search));
    const bool is_given = !replacer.removes();
    std::string buffer;
    for (const std::uint32_t row : parts_.shown(!is_searched)) {
        const lang_entry_t *entry =
            zel::find_entry(parts_.rows->rows[row].item->langs, lang->c_str());
        const std::string_view text =
            look_at_text(entry == nullptr ? nullptr : entry->texts, buffer);
        if (!replacer.finder().are_in(text))
            continue;
        const assist::word_replacer::replaced after = replacer.in(text);
        if (after.any() && !(is_given && after.text == text))
            hits_.push_back(row);
    }
}

std::array<hit_line, 2> tab_replace::lines(std::uint32_t row) const
{
    const assist::word_replacer made = replacer();
    std::array<hit_line, 2> out;
    out[0].text = utf8_shown(text_of_row(row).c_str());
    out[0].marked = made.finder().hits(out[0].text);
    if (made.removes())
        return out;
    assist::word_replacer::replaced after = made.in(out[0].text);
    out[1].text = std::move(after.text);
    out[1].marked = std::move(after.places);
    return out;
}

void tab_replace::show_count()
{
    const std::string label =
        std::string(ui_text("tab-edit", "Replace")) + " " + std::to_string(chosen());
    gtk_button_set_label(GTK_BUTTON(button_), label.c_str());
    gtk_widget_set_sensitive(button_, !replacer().removes() && chosen() != 0);
}

void tab_replace::toggle(std::uint32_t row)
{
    if (out_.erase(row) == 0)
        out_.insert(row);
    show_count();
}

// Those that were taken out stay so while only the other words or the filter change.
void tab_replace::keep_out()
{
    const std::string *lang = language();
    std::string found = std::string(entry_text_of(words_)) + "\n" + (lang == nullptr ? "" : *lang);
    if (found != found_) {
        found_ = std::move(found);
        out_.clear();
    }
    std::set<std::uint32_t> still;
    for (const std::uint32_t row : hits_)
        if (out_.count(row) != 0)
            still.insert(row);
    out_ = std::move(still);
}

void tab_replace::preview()
{
    if (filling_ != 0 || !is_open())
        return;
    const assist::word_replacer made = replacer();
    find(made);
    keep_out();
    show_count();
    if (made.finder().empty()) {
        parts_.hits->hide();
        return;
    }
    hit_rows rows;
    rows.name = ui_text("tab-edit", "Texts before and after");
    rows.title = rows.name;
    rows.count = hits_.size();
    rows.where = [this](std::size_t row) {
        const std::uint32_t number = hits_[row];
        return std::to_string(number + 1) + "\n" +
               utf8_shown(parts_.rows->rows[number].group->name);
    };
    rows.lines = [this](std::size_t row) { return lines(hits_[row]); };
    rows.is_on = [this](std::size_t row) { return out_.count(hits_[row]) == 0; };
    rows.toggle = [this](std::size_t row) { toggle(hits_[row]); };
    parts_.hits->show(std::move(rows));
    edit_status(ui_text("tab-edit", "Space: leave a text as it is, Escape: back to the list"));
}

void tab_replace::replace_all()
{
    const std::string *shown_language = language();
    const assist::word_replacer made = replacer();
    if (shown_language == nullptr || made.removes() || chosen() == 0)
        return;
    const std::string lang = *shown_language;
    record_begin();
    // The panel shows no item while texts change beneath it; what is typed is stored.
    zel_text_set(GTK_WIDGET(parts_.panel), nullptr, nullptr, 1);
    std::vector<edit_change> changes;
    for (const std::uint32_t row : hits_) {
        item_t *item = parts_.rows->rows[row].item;
        lang_entry_t *entry = zel::find_entry(item->langs, lang.c_str());
        const std::string text = text_of(entry);
        const assist::word_replacer::replaced after = made.in(text);
        // The text may have been changed since the preview was made.
        if (out_.count(row) != 0 || !after.any() || after.text == text)
            continue;
        text_change change{place_in(item, lang), read_text(place_in(item, lang)), {}};
        set_text(entry, after.text);
        item->changed = 1;
        change.after = read_text(change.place);
        changes.emplace_back(std::move(change));
    }
    const std::size_t count = changes.size();
    if (count != 0) {
        source_history().add(std::move(changes));
        edit_set_modified(true);
    }
    end();
    edit_reload();
    const std::string status = std::to_string(count) + " " +
                               ui_text("tab-edit", "texts changed; Ctrl+Z takes all of it back");
    edit_status(status.c_str());
}

} // namespace zel
