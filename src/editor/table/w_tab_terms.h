#pragma once

// The folder's list of terms (lint/glossary) beside the texts: terms are underlined in the field of
// the source's own language, and what they are called in the other is offered under its field. A
// key adds to the list what is selected in the two fields, one after the other: the toolkit lets
// only one of them show its selection, but that of the field that was left last still counts, until
// something is typed.

#include <gtk/gtk.h>

#include <memory>
#include <string>
#include <vector>

#include "editor/panel/w_text_panel.h"
#include "editor/table/w_tab_model.h"
#include "lint/glossary.h"
#include "support/file-call.h"

namespace zel {

// Of the tag on the terms in a field's buffer.
constexpr const char *term_tag = "term";

class tab_terms {
public:
    explicit tab_terms(Zeltext *panel);

    // Reads the list where it is another one than before, and finds the terms of the row's item
    // (-1: none) in the reference.
    void item_shown(const tab_rows &rows, int row, const std::string &reference);

    // Underlines the terms in the field, which is of the source's own language; null: none is.
    void underline(GtkWidget *field);

    // What of the terms a text in the language lacks, and keys that insert it: "folder: 1 Ordner,
    // 2 Verzeichnis". The first number is given.
    struct offer {
        std::string line;
        std::vector<std::string> texts;
    };
    offer lacking(const std::string &language, const std::string &text, std::size_t first) const;
    bool any() const { return !hits_.empty(); }

    // A translation's field and its language, or null.
    struct field {
        GtkWidget *view;
        const std::string *language;
    };

    // Takes the field's selection for the list, together with that of the other field before. True
    // when the list has changed. The status line tells what came of it.
    bool take_selection(const LangSource &source, const field &own, const field &other);

private:
    static void focus_moved(GtkWidget *view, GParamSpec *, gpointer self);
    void take(const LangSource &source, const std::string &selected, const std::string &language);
    bool add(const LangSource &source);

    Zeltext *panel_;
    std::string path_; // of the list that was read
    std::string reference_language_;
    file_stamp stamp_{};
    std::unique_ptr<const lint::glossary> list_; // or null
    std::vector<lint::glossary::hit> hits_;      // in the shown item's reference
    const item_t *item_ = nullptr;               // that is shown
    GtkWidget *left_ = nullptr;                  // the field that was left last
    std::string left_selection_;                 // in it then
    std::string term_;                           // that was selected
    std::string translation_;
    std::string language_; // of the translation
};

} // namespace zel
