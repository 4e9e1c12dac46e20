#pragma once

// Words that are replaced in the texts of one language, in all items that the list shows: fields
// beside the search field, and in the place of the list each text before and after. Single ones are
// taken out, and one step of undo takes all of it back.

#include <gtk/gtk.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "assist/word-finder.h"
#include "editor/panel/w_text_panel.h"
#include "editor/table/w_tab_hits.h"
#include "editor/table/w_tab_model.h"

namespace zel {

// The parts of the table that this works with. They outlive it.
struct tab_replace_parts {
    std::shared_ptr<tab_rows> rows;
    Zeltext *panel;
    tab_hits *hits;
    GtkEntry *search;
    // The rows that the list shows; without the words of the search field those that the filters
    // leave.
    std::function<std::vector<std::uint32_t>(bool with_words)> shown;
};

class tab_replace {
public:
    explicit tab_replace(tab_replace_parts parts);
    tab_replace(const tab_replace &) = delete;
    tab_replace &operator=(const tab_replace &) = delete;

    GtkWidget *fields_row() const { return box_; } // hidden until it is opened

    // With what is selected in the fields, or searched for, as what is to be replaced.
    void open(std::string words, int field);
    void end();
    bool is_open() const { return gtk_widget_get_visible(box_) != 0; }

    // Call when the list shows other rows.
    void preview();

private:
    void make_fields();
    GtkWidget *add_entry(const char *caption);
    void fill_languages(int field);
    const std::string *language() const;
    std::string text_of_row(std::uint32_t row) const;
    assist::word_replacer replacer() const;
    void find(const assist::word_replacer &replacer);
    std::array<hit_line, 2> lines(std::uint32_t row) const;
    std::size_t chosen() const { return hits_.size() - out_.size(); }
    void keep_out();
    void show_count();
    void toggle(std::uint32_t row);
    void replace_all();

    tab_replace_parts parts_;
    GtkWidget *box_ = nullptr;
    GtkWidget *words_ = nullptr;
    GtkWidget *others_ = nullptr;
    GtkWidget *languages_ = nullptr;
    GtkWidget *button_ = nullptr;
    std::vector<std::uint32_t> hits_; // rows whose texts change
    std::set<std::uint32_t> out_;     // of these, those that are left as they are
    std::string found_;               // what was replaced in the last preview, and in what language
    int filling_ = 0;                 // the fields are set, which is no change of the user's
};

} // namespace zel
