#include "gui-support.h"

#include "app/global.h"
#include "editor/panel/w_text.h"
#include "source/group.h"
#include "support/string-copy.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Text : public gui::Test {
protected:
    ~Text() override
    {
        gtk_widget_destroy(window);
        lang_free_group(&source);
    }

    void make(unsigned mode)
    {
        lang_global.editor_mode = mode;
        widget = zel_text_new();
        text = ZEL_TEXT(widget);
        gtk_container_add(GTK_CONTAINER(window), widget);
        gtk_widget_show_all(window);
        item = insert_group_item(source, "menu", "Open");
        other = insert_group_item(source, "menu", "Close");
    }

    void define(const char *name, int edit)
    {
        lang_t *lang = alloc_lang();
        lang->name = zel_strdup(name);
        lang->edit = edit;
        source->langs = g_list_append(source->langs, lang);
    }

    void show(item_t *shown)
    {
        zel_text_set_pos(widget, 7);
        zel_text_set_group_name(widget, "menu");
        zel_text_set(widget, source, shown, 1);
    }

    static void type_into(GtkWidget *view, const char *typed)
    {
        gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)), typed, -1);
    }

    static std::vector<std::string> lines(GList *entries, const char *lang)
    {
        std::vector<std::string> result;
        for (const char *line : zel::each<char>(zel_get_lang_list(entries, lang)))
            result.emplace_back(line);
        return result;
    }

    // What is stored after the text was typed and another item shown.
    std::vector<std::string> stored(const char *typed)
    {
        show(item);
        type_into(text->trans1_view, typed);
        show(other);
        return lines(item->langs, "english");
    }

    std::string identity() const { return gtk_entry_get_text(GTK_ENTRY(text->name_entry)); }
    static std::string caption(GtkWidget *label) { return gtk_label_get_text(GTK_LABEL(label)); }

    GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    LangSource *source = lang_alloc_group();
    GtkWidget *widget = nullptr;
    Zeltext *text = nullptr;
    item_t *item = nullptr;
    item_t *other = nullptr;
};

TEST_F(Text, ShowsTheItemAndMakesMissingEntries)
{
    make(2);
    define("english", 1);
    define("french", 0);
    define("german", 1);
    item->description = zel_strdup("of the file menu");
    item->used_in = g_list_append(item->used_in, zel_strdup("00001:a.c"));
    item->used_in = g_list_append(item->used_in, nullptr);
    show(item);
    EXPECT_EQ(caption(text->description_label), "of the file menu");
    EXPECT_EQ(identity(), "(7)  menu:Open");
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(text->name_edit_entry)), "Open");
    EXPECT_EQ(caption(text->trans1_label), "Translation \"english\"");
    EXPECT_EQ(caption(text->comment2_label), "Comment \"german\"");
    EXPECT_EQ(text_of(text->trans1_view), "Open");
    EXPECT_EQ(text_of(text->used_in_view), "00001:a.c\n\n");
    EXPECT_EQ(zel_get_lang_entry(item->comments, "english"), text->comment1_entry);
    EXPECT_EQ(zel_get_lang_entry(item->langs, "german"), text->trans2_entry);
    EXPECT_EQ(g_list_length(item->langs), 2U);
    EXPECT_EQ(g_list_length(item->comments), 2U);
    EXPECT_EQ(lang_global.modified, 0) << "filling is no edit";
    EXPECT_EQ(lang_global.text_lock, 0);

    zel_text_set_group_name(widget, nullptr);
    zel_text_set(widget, source, item, 1);
    EXPECT_EQ(identity(), "unknown group:Open");
    EXPECT_EQ(g_list_length(item->langs), 2U) << "no second entry";
    EXPECT_EQ(item->changed, 0U);

    zel_text_set(widget, nullptr, nullptr, 1);
    EXPECT_FALSE(gtk_widget_get_visible(text->trans1_view));
    EXPECT_FALSE(gtk_widget_get_visible(text->used_in_view));
    EXPECT_EQ(text_of(text->used_in_view), "");
    show(item);
    EXPECT_TRUE(gtk_widget_get_visible(text->trans1_view));
}

TEST_F(Text, NoOrOneLanguageBeingEdited)
{
    make(0);
    EXPECT_EQ(text->used_in_view, nullptr);
    EXPECT_EQ(text->name_edit_entry, nullptr);
    define("german", 0);
    show(item);
    EXPECT_EQ(identity(), "(7)  menu:Open");
    EXPECT_FALSE(gtk_widget_get_visible(text->lang1_frame));
    EXPECT_EQ(lang_global.text_lock, 0);
    define("english", 1);
    show(item);
    EXPECT_TRUE(gtk_widget_get_visible(text->lang1_frame));
    EXPECT_FALSE(gtk_widget_get_visible(text->lang2_frame));
    EXPECT_EQ(text->trans2_entry, nullptr);
}

TEST_F(Text, StoresLinesWithTheirEndsAndDropsBlankOnesAtTheEnd)
{
    make(1);
    define("english", 1);
    EXPECT_THAT(stored("abc\n\n\n   "), ElementsAre("abc"));
    EXPECT_EQ(item->changed, 1U);
    EXPECT_THAT(stored("a\nb"), ElementsAre("a\n", "b"));
    EXPECT_THAT(stored("a\n\n  b \n"), ElementsAre("a\n", "\n", "  b "));
    EXPECT_THAT(stored(" \t\n\v"), IsEmpty());
    EXPECT_THAT(stored(""), IsEmpty());
    EXPECT_THAT(stored("x\r\ny\r\n"), ElementsAre("x\r\n", "y"));
    show(item);
    EXPECT_EQ(text_of(text->trans1_view), "x\r\ny") << "lines are joined as they are stored";
    EXPECT_EQ(lang_global.modified, 1);
}

TEST_F(Text, OnlyFieldsThatWereTypedInAreWritten)
{
    make(1);
    define("english", 1);
    define("german", 1);
    show(item);
    GList *untouched = text->trans1_entry->texts;
    type_into(text->comment2_view, "please check");
    EXPECT_THAT(text->dirty, ElementsAre(0, 0, 0, 1));
    EXPECT_EQ(zel_text_update(widget), 1);
    EXPECT_EQ(text->trans1_entry->texts, untouched);
    EXPECT_THAT(lines(item->comments, "german"), ElementsAre("please check"));
    EXPECT_EQ(text->dirty[TEXT_COMMENT2], 1) << "the next item clears it";

    type_into(text->comment2_view, "dropped");
    zel_text_set(widget, source, other, 0);
    EXPECT_THAT(lines(item->comments, "german"), ElementsAre("please check"));
    EXPECT_THAT(text->dirty, ElementsAre(0, 0, 0, 0));
    zel_text_update(widget);
    EXPECT_EQ(other->changed, 0U);
}

TEST_F(Text, RefusesWhatIsNoPanel)
{
    make(0);
    EXPECT_EQ(zel_text_set(nullptr, source, item, 1), 0);
    EXPECT_EQ(zel_text_update(window), 0);
    EXPECT_EQ(zel_text_set_pos(nullptr, 1), 0);
    EXPECT_EQ(zel_text_set_group_name(window, "g"), 0);
    ASSERT_EQ(gui::warnings().size(), 4U);
    EXPECT_THAT(gui::warnings()[0], testing::HasSubstr("widget != NULL"));
    EXPECT_THAT(gui::warnings()[1], testing::HasSubstr("ZEL_IS_TEXT(widget)"));
    gui::warnings().clear();
}

TEST_F(Text, PastedLineEndsBecomeThisSystemsAndThoseOfTheSourceStay)
{
    make(0);
    define("english", 1);
    show(item);
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(text->trans1_view));
    GtkClipboard *clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
    gtk_clipboard_set_text(clipboard, "one\r\ntwo\rthree\n\r\n", -1);
    gtk_text_buffer_set_text(buffer, "a\r\n", -1);
    gtk_text_buffer_paste_clipboard(buffer, clipboard, nullptr, TRUE);
    gui::wait_for([&] { return gtk_text_buffer_get_char_count(buffer) > 10; });
    EXPECT_EQ(text_of(text->trans1_view), "a\r\none\ntwo\nthree\n\n");
    gtk_clipboard_clear(clipboard);
}

} // namespace
