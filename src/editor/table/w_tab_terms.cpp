#include "editor/table/w_tab_terms.h"

#include "assist/term-list.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/text-places.h"
#include "editor/toolkit/text-runs.h"
#include "editor/toolkit/ui-text.h"
#include "lint/item-case.h"
#include "support/text.h"

#include <algorithm>
#include <ctime>

namespace zel {

namespace {

void say(const std::string &text) { edit_status(text.c_str()); }

std::string quoted_as_shown(const std::string &text)
{
    return "\"" + utf8_shown(text.c_str()) + "\"";
}

// Behind what the status line tells of the source that has just been loaded.
void tell_fault(const assist::list_fault &fault)
{
    std::string text = edit_status_text();
    text += (text.empty() ? "" : "; ") + std::string(lint::glossary_file) + ": ";
    // The reader counts columns from 0, people from 1.
    if (fault.at.line != 0)
        text += std::string(ui_text("status", "line")) + " " + std::to_string(fault.at.line) +
                ", " + ui_text("status", "column") + " " + std::to_string(fault.at.column + 1) +
                ": ";
    say(text + ui_text("reader", fault.meaning));
}

// What is selected, in one line without the blanks at its ends and the mark of a mnemonic.
std::string selection_of(GtkWidget *field)
{
    GtkTextBuffer *buffer = buffer_of(field);
    GtkTextIter start;
    GtkTextIter end;
    if (gtk_text_buffer_get_selection_bounds(buffer, &start, &end) == 0)
        return {};
    char *selected = gtk_text_buffer_get_text(buffer, &start, &end, TRUE);
    std::string out;
    for (const char *at = selected; *at != '\0'; ++at)
        if (const char c = *at == '\n' || *at == '\r' || *at == '\t' ? ' ' : *at; c != '_')
            out += c;
    g_free(selected);
    out.erase(0, std::min(out.find_first_not_of(' '), out.size()));
    out.resize(out.find_last_not_of(' ') + 1);
    return out;
}

} // namespace

tab_terms::tab_terms(Zeltext *panel) : panel_(panel)
{
    for (GtkWidget *view : {panel_->trans1_view, panel_->trans2_view}) {
        g_signal_connect(view, "notify::is-focus", G_CALLBACK(focus_moved), this);
        g_signal_connect_swapped(buffer_of(view), "changed", G_CALLBACK(+[](gpointer self) {
                                     static_cast<tab_terms *>(self)->left_selection_.clear();
                                 }),
                                 this);
    }
}

void tab_terms::focus_moved(GtkWidget *view, GParamSpec *, gpointer data)
{
    auto *self = static_cast<tab_terms *>(data);
    if (gtk_widget_is_focus(view))
        return;
    self->left_ = view;
    self->left_selection_ = selection_of(view);
}

void tab_terms::item_shown(const tab_rows &rows, int row, const std::string &reference)
{
    const item_t *item = row < 0 ? nullptr : rows.rows[static_cast<std::size_t>(row)].item;
    if (item != item_) {
        term_.clear();
        translation_.clear();
        left_selection_.clear();
    }
    item_ = item;
    hits_.clear();
    if (item == nullptr || def_file == nullptr || rows.source->default_lang == nullptr)
        return;
    const std::string path = lint::glossary_path(def_file);
    const file_stamp stamp = path.empty() ? file_stamp{} : stamp_of(path.c_str());
    if (path != path_ || !(stamp == stamp_) || reference_language_ != rows.source->default_lang) {
        path_ = path;
        stamp_ = stamp;
        reference_language_ = rows.source->default_lang;
        assist::list_fault fault;
        const source_guard list = path.empty() ? nullptr : assist::read_terms(path, fault);
        if (fault.meaning != nullptr)
            tell_fault(fault);
        list_ = list == nullptr
                    ? nullptr
                    : std::make_unique<lint::glossary>(*list, rows.source->default_lang);
    }
    if (list_ != nullptr)
        hits_ = list_->in(reference);
}

void tab_terms::underline(GtkWidget *field)
{
    for (GtkWidget *view : {panel_->trans1_view, panel_->trans2_view}) {
        GtkTextBuffer *buffer = buffer_of(view);
        GtkTextTag *tag =
            gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), term_tag);
        if (tag == nullptr && (list_ == nullptr || view != field))
            continue;
        if (tag == nullptr)
            tag = gtk_text_buffer_create_tag(buffer, term_tag, "underline", PANGO_UNDERLINE_SINGLE,
                                             nullptr);
        const std::string text = buffer_text(buffer);
        std::vector<assist::piece> terms;
        if (view == field && list_ != nullptr && item_ != nullptr)
            for (const lint::glossary::hit &hit : list_->in(text))
                terms.push_back({hit.from, hit.to - hit.from});
        tag_places(buffer, tag, places_of(text, terms));
    }
}

tab_terms::offer tab_terms::lacking(const std::string &language, const std::string &text,
                                    std::size_t first) const
{
    offer out;
    std::vector<const lint::glossary::term *> told;
    for (const lint::glossary::hit &hit : hits_) {
        const lint::glossary::translation *wanted = hit.what->in(language.c_str());
        if (wanted == nullptr || std::find(told.begin(), told.end(), hit.what) != told.end() ||
            lint::has_any(text, *wanted))
            continue;
        told.push_back(hit.what);
        out.line += (out.line.empty() ? "" : "; ") +
                    shown_in_runs(utf8_shown(hit.what->text.c_str())) + ":";
        for (const std::string &one : wanted->any) {
            out.line += (&one == wanted->any.data() ? " " : ", ") + std::to_string(first++) + " " +
                        shown_in_runs(utf8_shown(one.c_str()));
            out.texts.push_back(utf8_shown(one.c_str()));
        }
    }
    return out;
}

void tab_terms::take(const LangSource &source, const std::string &selected,
                     const std::string &language)
{
    if (lint::same_language(language.c_str(), source.default_lang)) {
        term_ = selected;
    } else {
        translation_ = selected;
        language_ = language;
    }
}

bool tab_terms::take_selection(const LangSource &source, const field &own, const field &other)
{
    const std::string selected = selection_of(own.view);
    if (selected.empty()) {
        say(ui_text("tab-edit", "Select a term, or its translation"));
        return false;
    }
    if (def_file == nullptr || lint::glossary_path(def_file).empty()) {
        say(ui_text("tab-edit", "This is the list of terms itself"));
        return false;
    }
    if (left_ == other.view && !left_selection_.empty() && other.language != nullptr)
        take(source, left_selection_, *other.language);
    take(source, selected, *own.language);
    if (!term_.empty() && !translation_.empty())
        return add(source);
    say(quoted_as_shown(selected) + ": " +
        (term_.empty() ? ui_text("tab-edit", "now select the term in the original, and Ctrl+T")
                       : ui_text("tab-edit", "now select its translation, and Ctrl+T")));
    return false;
}

bool tab_terms::add(const LangSource &source)
{
    const assist::term_answer answer =
        assist::add_term(lint::glossary_path(def_file), source, {term_, language_, translation_},
                         std::time(nullptr));
    std::string text = quoted_as_shown(term_);
    switch (answer.news) {
    case assist::term_news::added:
        text += std::string(" ") + ui_text("tab-edit", "is") + " " + quoted_as_shown(translation_);
        break;
    case assist::term_news::known:
        text += std::string(" ") + ui_text("tab-edit", "is there already");
        break;
    case assist::term_news::kept:
        text += std::string(" ") + ui_text("tab-edit", "is to stay as it is");
        break;
    case assist::term_news::unreadable:
        text = ui_text("tab-edit", "the list cannot be read; it is as it was");
        break;
    case assist::term_news::changed:
        text = ui_text("tab-edit", "changed by another program meanwhile; it is as that left it");
        break;
    case assist::term_news::failed:
        text = ui_text("tab-edit", "cannot be written");
        text += (answer.why.empty() ? "" : ": ") + answer.why;
        break;
    }
    say(std::string(lint::glossary_file) + ": " + text);
    term_.clear();
    translation_.clear();
    left_selection_.clear();
    return answer.news == assist::term_news::added;
}

} // namespace zel
