#include "editor/frame/recovery-ask.h"

#include "editor/toolkit/accessible.h"
#include "editor/toolkit/popup.h"
#include "editor/toolkit/ui-text.h"
#include "merge/compare.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

// Fields that the editor writes by itself beside a change that somebody made: nobody is asked about
// them.
constexpr std::string_view not_told[] = {"changed", "colwidth group", "colwidth item",
                                         "colwidth ctrl", "rowheight"};
constexpr std::string_view texts[] = {"text", "comment", "item"};

template <class Words>
bool is_one_of(const Words &words, std::string_view word)
{
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

std::string where_of(const zel::difference &one)
{
    std::string where;
    if (one.group != nullptr)
        where += one.group;
    if (one.item != nullptr)
        where.append(":").append(one.item);
    const std::string_view field = one.field;
    // These fields are the usual ones, and say nothing more than the item's name.
    if (field != "text" && field != "item" && field != "group" && field != "language")
        where.append(where.empty() ? "" : ", ").append(field);
    if (one.language != nullptr)
        where.append(where.empty() ? "" : ", ").append(one.language);
    return where;
}

std::string shown(const zel::field_value &value, bool there)
{
    return value.is != zel::field_value::none ? value.shown
           : there                            ? std::string("+")
                                              : std::string();
}

// A number with the word that fits it, as in "3 texts differ".
std::string told_count(std::size_t count, const char *one, const char *many)
{
    return std::to_string(count) + " " + zel::ui_text("recovery", count == 1 ? one : many);
}

struct unit {
    std::int64_t seconds;
    const char *one;
    const char *many;
};
constexpr unit units[] = {{24 * 60 * 60, "day ago", "days ago"},
                          {60 * 60, "hour ago", "hours ago"},
                          {60, "minute ago", "minutes ago"},
                          {1, "second ago", "seconds ago"}};

std::string age_of(std::int64_t seconds)
{
    seconds = std::max<std::int64_t>(seconds, 1); // the clock may have been set back
    for (const unit &row : units)
        if (seconds >= row.seconds)
            return told_count(static_cast<std::size_t>(seconds / row.seconds), row.one, row.many);
    return {};
}

std::string details_of(const zel::recovery_question &question)
{
    const auto &all = question.differences;
    const auto count = static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [](const auto &one) { return one.is_text; }));
    std::string text = zel::utf8_shown(question.path.c_str()) + "\n" +
                       zel::ui_text("recovery", "Last changed") + " " + age_of(question.age) +
                       "; " + told_count(count, "text differs", "texts differ") + ".";
    if (all.size() > count)
        text += " " + told_count(all.size() - count, "other difference", "other differences") + ".";
    if (question.source_changed)
        text += std::string("\n\n") +
                zel::ui_text("recovery", "The source itself has been changed since. What is "
                                         "recovered does not have those changes.");
    text += "\n\n";
    text += question.declined
                ? zel::ui_text("recovery", "No removes them: they were offered before.")
                : zel::ui_text("recovery", "No leaves the source as it is; the changes are offered "
                                           "once more at the next start.");
    return text;
}

constexpr int show_list = 1; // a response

constexpr int least_list_width = 600;
constexpr int least_list_height = 220;
constexpr int where_width = 140; // the texts share the rest

// Wraps the text at the width that its column has now, so that all of it is shown in as many lines
// as it takes.
void wrap_at_width(GtkTreeViewColumn *column, GParamSpec *, gpointer cell)
{
    constexpr int margin = 8;
    const int width = std::max(gtk_tree_view_column_get_width(column) - margin, 1);
    int before = 0;
    g_object_get(cell, "wrap-width", &before, nullptr);
    // Setting the width asks for another layout, which sends this signal again.
    if (before == width)
        return;
    g_object_set(cell, "wrap-width", width, nullptr);
    gtk_tree_view_column_queue_resize(column);
}

void add_column(GtkWidget *view, const char *title, int column, int width)
{
    GtkCellRenderer *cell = gtk_cell_renderer_text_new();
    g_object_set(cell, "wrap-mode", PANGO_WRAP_WORD_CHAR, "yalign", 0.0, nullptr);
    gtk_tree_view_insert_column_with_attributes(GTK_TREE_VIEW(view), -1, title, cell, "text",
                                                column, nullptr);
    GtkTreeViewColumn *made = gtk_tree_view_get_column(GTK_TREE_VIEW(view), column);
    g_signal_connect(made, "notify::width", G_CALLBACK(wrap_at_width), cell);
    gtk_tree_view_column_set_sizing(made, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_column_set_fixed_width(made, width);
    gtk_tree_view_column_set_resizable(made, TRUE);
    gtk_tree_view_column_set_expand(made, TRUE);
}

GtkWidget *make_list(const std::vector<zel::recovered_difference> &all)
{
    GtkListStore *store = gtk_list_store_new(3, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING);
    for (const zel::recovered_difference &one : all)
        gtk_list_store_insert_with_values(store, nullptr, -1, 0,
                                          zel::utf8_shown(one.where.c_str()).c_str(), 1,
                                          zel::utf8_shown(one.before.c_str()).c_str(), 2,
                                          zel::utf8_shown(one.after.c_str()).c_str(), -1);
    GtkWidget *view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(store));
    g_object_unref(store);
    gtk_widget_set_name(view, "recovered-texts");
    zel::set_accessible_name(view, zel::ui_text("recovery", "Texts that differ"));
    gtk_tree_view_set_rules_hint(GTK_TREE_VIEW(view), TRUE);
    constexpr int scroll_bar = 30;
    constexpr int text_width = (least_list_width - where_width - scroll_bar) / 2;
    add_column(view, zel::ui_text("recovery", "Item"), 0, where_width);
    add_column(view, zel::ui_text("recovery", "Source"), 1, text_width);
    add_column(view, zel::ui_text("recovery", "Recovered"), 2, text_width);
    return view;
}

// Shows the list below the question, which goes on.
void add_list(GtkWidget *dialog, int response, gpointer differences)
{
    if (response != show_list)
        return;
    // The dialog would take the button for an answer and end.
    g_signal_stop_emission_by_name(dialog, "response");
    const auto &all = *static_cast<const std::vector<zel::recovered_difference> *>(differences);
    GtkWidget *scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_AUTOMATIC,
                                   GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
    gtk_widget_set_size_request(scrolled, least_list_width, least_list_height);
    gtk_container_set_border_width(GTK_CONTAINER(scrolled), 6);
    gtk_container_add(GTK_CONTAINER(scrolled), make_list(all));
    gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(dialog))), scrolled, TRUE,
                       TRUE, 0);
    // Questions have a fixed size, and a list is worth a larger one.
    gtk_window_set_resizable(GTK_WINDOW(dialog), TRUE);
    gtk_widget_show_all(scrolled);
    // The button is greyed out, since one list is enough.
    gtk_dialog_set_response_sensitive(GTK_DIALOG(dialog), show_list, FALSE);
}

} // namespace

namespace zel {

std::vector<recovered_difference> differences_to(LangSource *before, LangSource *after)
{
    std::vector<recovered_difference> all;
    compare_sources(before, after, false, [&all](const difference &one) {
        if (is_one_of(not_told, one.field))
            return;
        all.push_back({where_of(one), shown(one.before, one.how == change::removed),
                       shown(one.after, one.how == change::added), is_one_of(texts, one.field)});
    });
    return all;
}

bool ask_recovery(GtkWidget *parent, const recovery_question &question)
{
    GtkWidget *dialog = gtk_message_dialog_new(
        window_of(parent), GTK_DIALOG_MODAL, GTK_MESSAGE_QUESTION, GTK_BUTTONS_NONE, "%s",
        ui_text("recovery", "There are changes of this source that were not saved.\n"
                            "Take them?"));
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s",
                                             details_of(question).c_str());
    gtk_dialog_add_buttons(GTK_DIALOG(dialog), ui_text("recovery", "Show them"), show_list,
                           GTK_STOCK_NO, GTK_RESPONSE_NO, GTK_STOCK_YES, GTK_RESPONSE_YES, nullptr);
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_YES);
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    // A copy, since the handler needs it to be writable data.
    auto differences = question.differences;
    g_signal_connect(dialog, "response", G_CALLBACK(add_list), &differences);
    const int answer = gtk_dialog_run(GTK_DIALOG(dialog));
    gtk_widget_destroy(dialog);
    return answer == GTK_RESPONSE_YES;
}

} // namespace zel
