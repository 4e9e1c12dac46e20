// Popup, message box, choosers, and the toolkit layer's own additions.

#include "editor/frame/dir_file_sel.h"
#include "editor/frame/path-field.h"
#include "editor/frame/recent.h"
#include "editor/toolkit/gtk-compat.h"
#include "editor/toolkit/lang-box.h"
#include "editor/toolkit/popup.h"
#include "gui-support.h"

#include <gdk/gdkkeysyms.h>
#include <gmock/gmock.h>

#include <filesystem>

using namespace gui;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

class Dialogs : public Test {
protected:
    static std::string box(GtkWidget *parent, const char *text, answer_fn answer)
    {
        answer_next(std::move(answer));
        return zel_test::capture_stdout([&] { lang_msg_box(parent, text); });
    }
    static std::string taken(char *path) { return zel_test::take(path); }
};

} // namespace

TEST_F(Dialogs, MessageBoxShowsItsTextUntilItIsAnswered)
{
    std::string seen;
    EXPECT_EQ(box(nullptr, nullptr, see(&seen, press("Ok"))),
              "msg_box_ok: msg_box: g_main_loop_quit\n");
    EXPECT_EQ(seen, "Info\nOk");
    EXPECT_EQ(winMsg, nullptr);
    EXPECT_EQ(box(nullptr, "bad \xff byte", see(&seen, close_window())),
              "destroy_event: msg_box: g_main_loop_quit\n");
    EXPECT_EQ(seen, "bad \xef\xbf\xbd byte\nOk");
    for (const guint end : {guint{GDK_KEY_Return}, guint{GDK_KEY_Escape}}) {
        box(nullptr, "keys", [end](GtkWidget *dialog) {
            settle();
            key(dialog, end);
        });
    }
}

TEST_F(Dialogs, MessageBoxBelongsToTheWindowOfItsParent)
{
    GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    GtkWidget *button = gtk_button_new();
    gtk_container_add(GTK_CONTAINER(window), button);
    gtk_widget_show_all(window);
    gtk_window_set_modal(GTK_WINDOW(window), FALSE);
    box(button, "one", [&](GtkWidget *dialog) {
        EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(dialog)), GTK_WINDOW(window));
        EXPECT_TRUE(ZEL_IS_POPUP(dialog));
        press("Ok")(dialog);
    });
    EXPECT_FALSE(gtk_window_get_modal(GTK_WINDOW(window)));
    box(button, "goes with it", [&](GtkWidget *) { gtk_widget_destroy(window); });
    EXPECT_EQ(winMsg, nullptr);
}

TEST_F(Dialogs, PopupTakesOneIcon)
{
    GtkWidget *popup = zel_popup_new();
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(popup)), " ");
    EXPECT_TRUE(gtk_widget_get_realized(popup));
    GtkWidget *first = gtk_image_new();
    GtkWidget *second = gtk_image_new();
    EXPECT_EQ(zel_popup_set_icon(popup, first), 0);
    EXPECT_EQ(zel_popup_set_icon(popup, second), 0);
    EXPECT_THAT(find_all(ZEL_POPUP(popup)->icon_box, GTK_TYPE_IMAGE), ElementsAre(second));
    EXPECT_EQ(zel_popup_set_icon(popup, nullptr), 0);
    EXPECT_EQ(ZEL_POPUP(popup)->icon, nullptr);
    EXPECT_EQ(zel_popup_set_icon(nullptr, nullptr), 1);
    EXPECT_EQ(zel_popup_set_icon(ZEL_POPUP(popup)->frame, nullptr), 1);
    ASSERT_EQ(warnings().size(), 2U);
    EXPECT_THAT(warnings()[0], testing::HasSubstr("assertion 'widget != NULL' failed"));
    EXPECT_THAT(warnings()[1], testing::HasSubstr("assertion 'ZEL_IS_POPUP(widget)' failed"));
    warnings().clear();
    gtk_widget_destroy(popup);
}

TEST_F(Dialogs, ChoosersGiveTheChosenPathOrNothing)
{
    write_file(path("a.lang"), "");
    write_file(path("b.lang"), "");
    fs::create_directory("sub");
    answer_next(respond(GTK_RESPONSE_CANCEL));
    EXPECT_EQ(file_sel_read(nullptr, "read", nullptr, nullptr), nullptr);
    answer_next(close_window());
    EXPECT_EQ(dir_sel(nullptr, "folder", nullptr), nullptr);

    answer_next(choose(path("sub")));
    EXPECT_EQ(taken(dir_sel(nullptr, "folder", folder.c_str())), path("sub"));
    answer_next(type_name(folder, "new name"));
    EXPECT_EQ(taken(file_sel_write(nullptr, "write", nullptr, nullptr)), path("new name"));

    // The preset is what comes out when the user only accepts; backslashes are turned in place. A
    // name alone is one of the start folder, not of the current one.
    write_file(path("sub/a.lang"), "");
    std::string preset = path("a.lang");
    preset[folder.size()] = '\\';
    std::string unborn = path("unborn");
    std::string start = path("sub");
    std::string name = "a.lang";
    std::string other = "unborn";
    const struct {
        char *(*select)(GtkWidget *, const char *, char *, char *);
        char *folder;
        char *name;
        std::string chosen;
    } rows[] = {{file_sel_read, nullptr, preset.data(), path("a.lang")},
                {file_sel_write, nullptr, preset.data(), path("a.lang")},
                {file_sel_write, nullptr, unborn.data(), unborn},
                {file_sel_read, start.data(), name.data(), path("sub/a.lang")},
                {file_sel_write, start.data(), name.data(), path("sub/a.lang")},
                {file_sel_write, start.data(), other.data(), path("sub/unborn")},
                {file_sel_write, start.data(), unborn.data(), unborn}};
    for (const auto &row : rows) {
        answer_next(accept(row.chosen));
        EXPECT_EQ(taken(row.select(nullptr, "preset", row.folder, row.name)), row.chosen);
    }
    EXPECT_EQ(preset, path("a.lang"));
}

TEST_F(Dialogs, TheFirstFilterIsForTheEndingAndThePreset)
{
    for (const char *name : {"a.lang", "b.lang-src", "b.lang-src-2024-03-04-10-11-12.bak"})
        write_file(path(name), "");
    const std::string preset = path("b.lang-src");
    answer_next([&](GtkWidget *dialog) {
        GtkFileChooser *chooser = GTK_FILE_CHOOSER(dialog);
        const auto passes = [&](const std::string &name) {
            GtkFileFilterInfo info{};
            info.contains = static_cast<GtkFileFilterFlags>(GTK_FILE_FILTER_DISPLAY_NAME |
                                                            GTK_FILE_FILTER_FILENAME);
            const std::string whole = path(name);
            info.display_name = name.c_str();
            info.filename = whole.c_str();
            return gtk_file_filter_filter(gtk_file_chooser_get_filter(chooser), &info) != 0;
        };
        settle(300);
        EXPECT_TRUE(passes("a.lang"));
        EXPECT_TRUE(passes("b.lang-src")) << "the preset";
        EXPECT_FALSE(passes("c.lang-src"));
        EXPECT_FALSE(passes("b.lang-src-2024-03-04-10-11-12.bak"));
        EXPECT_EQ(taken(gtk_file_chooser_get_filename(chooser)), preset);
        GSList *filters = gtk_file_chooser_list_filters(chooser);
        ASSERT_EQ(g_slist_length(filters), 2U);
        gtk_file_chooser_set_filter(chooser, GTK_FILE_FILTER(filters->next->data));
        g_slist_free(filters);
        EXPECT_TRUE(passes("b.lang-src-2024-03-04-10-11-12.bak"));
        gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
    });
    EXPECT_EQ(zel::select_to_read(nullptr, "read", preset.c_str(), "lang"), nullptr);
}

// The second one finds what the first has written into the toolkit's settings.
TEST_F(Dialogs, APathIsTypedInEveryChooserAndOneThatIsNotThereIsRefused)
{
    write_file(path("aaa"), ""); // what the toolkit selects
    write_file(path("notes.lang-src"), "");
    fs::create_directory("sub");
    const auto typed = [&](const char *piece, const char *whole) {
        return [=](GtkWidget *dialog) {
            settle(300);
            type(dialog, "nope");
            settle(300);
            key(dialog, GDK_KEY_Return);
            const auto is_refused = Contains(HasSubstr("nope: there is no such "));
            EXPECT_TRUE(
                wait_for([&] { return testing::Matches(is_refused)(label_texts(dialog)); }));
            key(dialog, GDK_KEY_a, GDK_CONTROL_MASK);
            type(dialog, piece);
            settle(300);
            key(dialog, GDK_KEY_Tab);
            GtkWidget *field = gtk_window_get_focus(GTK_WINDOW(dialog));
            EXPECT_TRUE(wait_for([&] {
                return g_strcmp0(gtk_entry_get_text(GTK_ENTRY(field)), whole) == 0;
            })) << gtk_entry_get_text(GTK_ENTRY(field));
            key(dialog, GDK_KEY_Return);
        };
    };
    for (int time = 0; time < 2; ++time) {
        answer_next(typed("no", "notes.lang-src"));
        EXPECT_EQ(taken(zel::select_source(nullptr, "open file")), path("notes.lang-src"));
        if (time == 1)
            break;
        answer_next(typed("no", "notes.lang-src"));
        EXPECT_EQ(taken(zel::select_to_read(nullptr, "read", path("aaa").c_str(), "lang")),
                  path("notes.lang-src"));
        answer_next(typed("su", "sub/"));
        EXPECT_EQ(taken(dir_sel(nullptr, "folder", nullptr)), path("sub"));
    }
    fs::remove(std::string(g_get_user_config_dir()) + "/gtk-2.0/gtkfilechooser.ini");
}

// Slow answers are played by holding the inside of the chooser as the toolkit's requests do.
TEST_F(Dialogs, AListThatIsReadWhenItsChooserIsClosedHarmsNothing)
{
    fs::create_directory("sub");
    GtkWidget *inner = nullptr;
    answer_next([&](GtkWidget *dialog) {
        settle(300);
        inner = GTK_WIDGET(g_object_ref(zel::inner_chooser(dialog)));
        gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), path("sub").c_str());
        EXPECT_TRUE(wait_for([&] {
            return taken(gtk_file_chooser_get_current_folder(GTK_FILE_CHOOSER(dialog))) ==
                   path("sub");
        }));
        gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
    });
    EXPECT_EQ(dir_sel(nullptr, "folder", nullptr), nullptr);
    settle(1500);
    EXPECT_NE(gtk_widget_get_parent(inner), nullptr) << "it is there until the answers have come";
    GtkWidget *dialog = gtk_widget_get_toplevel(inner);
    g_object_add_weak_pointer(G_OBJECT(dialog), reinterpret_cast<gpointer *>(&dialog));
    g_object_unref(inner);
    EXPECT_TRUE(wait_for([&] { return dialog == nullptr; }));
}

TEST_F(Dialogs, AnAnswerBeforeTheChooserIsSeenCounts)
{
    const auto cancel = [](gpointer) -> gboolean {
        GList *windows = gtk_window_list_toplevels();
        for (const GList *node = windows; node != nullptr; node = node->next)
            if (GTK_IS_FILE_CHOOSER(node->data))
                gtk_dialog_response(GTK_DIALOG(node->data), GTK_RESPONSE_CANCEL);
        g_list_free(windows);
        return FALSE;
    };
    g_idle_add_full(G_PRIORITY_HIGH, cancel, nullptr, nullptr);
    EXPECT_EQ(dir_sel(nullptr, "folder", nullptr), nullptr);
}

TEST_F(Dialogs, SourcesOpenedLastAreOffered)
{
    for (const char *name : {"one.lang-src", "two.lang-src", "gone.lang-src"}) {
        write_file(path(name), "");
        zel::remember_source(path(name).c_str());
        if (std::string(name) == "one.lang-src")
            settle(1100); // the times are seconds
    }
    fs::remove("gone.lang-src");
    const std::vector<std::string> recent = zel::recent_sources();
    ASSERT_GE(recent.size(), 2U);
    EXPECT_EQ(recent[0], path("two.lang-src"));
    EXPECT_EQ(recent[1], path("one.lang-src"));
    answer_next([](GtkWidget *dialog) {
        GtkWidget *row = gtk_file_chooser_get_extra_widget(GTK_FILE_CHOOSER(dialog));
        settle(100);
        gtk_combo_box_set_active(GTK_COMBO_BOX(find_type(row, GTK_TYPE_COMBO_BOX)), 1);
        settle(100);
        press("gtk-open")(dialog);
    });
    EXPECT_EQ(taken(zel::select_source(nullptr, "open file")), path("one.lang-src"));
}

TEST_F(Dialogs, SeveralFilesAreFilteredByTheirPatterns)
{
    for (const char *name : {"a.one", "b.two", "c.three"})
        write_file(path(name), "");
    answer_next([](GtkWidget *dialog) {
        GtkFileChooser *chooser = GTK_FILE_CHOOSER(dialog);
        settle(300); // the folder comes in by and by
        EXPECT_TRUE(wait_for([chooser] {
            gtk_file_chooser_select_all(chooser);
            GSList *chosen = gtk_file_chooser_get_filenames(chooser);
            const guint count = g_slist_length(chosen);
            g_slist_free_full(chosen, g_free);
            return count == 2;
        }));
        gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT);
    });
    zel_list *paths = file_sel_multiple_unix(nullptr, "several", folder.c_str(), "*.one:*.two");
    std::vector<std::string> found;
    for (const zel_list *node = paths; node != nullptr; node = node->next)
        found.emplace_back(static_cast<const char *>(node->data));
    zel_list_free_with_data(paths);
    EXPECT_THAT(found, testing::UnorderedElementsAre(path("a.one"), path("b.two")));
}

TEST_F(Dialogs, ToolbarElementsOfEveryKind)
{
    int clicks = 0;
    const GCallback count = G_CALLBACK(+[](GtkWidget *, int *number) { ++*number; });
    GtkWidget *bar = gtk_toolbar_new();
    g_object_ref_sink(bar);
    EXPECT_EQ(zel_toolbar_append_element(nullptr, 1, nullptr, "x", "x", nullptr, count, nullptr),
              nullptr);
    GtkWidget *button =
        zel_toolbar_append_element(bar, 1, nullptr, "label", "tip", nullptr, count, &clicks);
    GtkWidget *toggle =
        zel_toolbar_append_element(bar, 2, nullptr, "t", "t", gtk_image_new(), count, &clicks);
    GtkWidget *radio1 =
        zel_toolbar_append_element(bar, 3, nullptr, "1", nullptr, nullptr, nullptr, nullptr);
    GtkWidget *radio2 =
        zel_toolbar_append_element(bar, 3, radio1, "2", nullptr, nullptr, nullptr, nullptr);
    GtkWidget *line = zel_toolbar_append_space(bar);
    EXPECT_TRUE(gtk_separator_tool_item_get_draw(GTK_SEPARATOR_TOOL_ITEM(line)));
    EXPECT_EQ(gtk_toolbar_get_n_items(GTK_TOOLBAR(bar)), 5);
    gchar *tip = gtk_widget_get_tooltip_text(gtk_bin_get_child(GTK_BIN(button)));
    EXPECT_STREQ(tip, "tip");
    g_free(tip);
    g_signal_emit_by_name(button, "clicked");
    gtk_toggle_tool_button_set_active(GTK_TOGGLE_TOOL_BUTTON(toggle), TRUE);
    EXPECT_EQ(clicks, 2);
    gtk_toggle_tool_button_set_active(GTK_TOGGLE_TOOL_BUTTON(radio2), TRUE);
    EXPECT_FALSE(gtk_toggle_tool_button_get_active(GTK_TOGGLE_TOOL_BUTTON(radio1)));
    zel_gtk_tree_path_free(nullptr);
    g_object_unref(bar);
}
