#pragma once

// How was this word translated? A list of the items that hold the word at the caret, and of the
// texts of the folder's other sources that do, with both texts. The item that is shown, the caret
// and what is selected stay as they are.

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "assist/neighbours.h"
#include "assist/word-finder.h"
#include "editor/panel/w_text_panel.h"
#include "editor/table/w_tab_hits.h"
#include "editor/table/w_tab_model.h"

namespace zel {

// The parts of the table that this works with. They outlive it.
struct tab_word_parts {
    std::shared_ptr<tab_rows> rows;
    Zeltext *panel;
    tab_hits *hits;
    std::function<const assist::neighbour_texts &()> neighbours;
    std::function<void(int row)> go_to_row;
};

// A word of a field that one works in.
struct asked_word {
    std::string letters;
    int field = -1; // TEXT_TRANS1 or TEXT_TRANS2; -1 for a text of another kind
    bool is_selected = false;
};

// What is selected in the field with the keyboard, else the word at its caret; without such a field
// those of the translations, the one first that the others are made from.
[[nodiscard]] asked_word word_asked_for(Zeltext *panel, const tab_rows &rows);

class tab_word {
public:
    explicit tab_word(tab_word_parts parts) : parts_(std::move(parts)) {}

    void look();
    void end();
    bool is_shown() const { return is_shown_; }

    // Call when the other sources have been read.
    void neighbours_are_read();

private:
    struct hit {
        std::size_t number; // of the row, or of the neighbours' row
        bool is_own;
    };

    std::string text_of_row(std::size_t row, int field) const;
    std::string_view text_of_neighbour(std::size_t row, int field) const;
    bool is_looked_at(int field) const { return field_ < 0 || field_ == field; }
    void find();
    void show();
    std::string where(const hit &one) const;
    std::array<hit_line, 2> lines(const hit &one) const;

    tab_word_parts parts_;
    std::string word_;
    int field_ = -1; // whose language is looked at; -1: both
    assist::word_finder finder_;
    std::vector<hit> hits_;
    bool is_shown_ = false;
};

} // namespace zel
