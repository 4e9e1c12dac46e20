/* Notes in two windows, in their user's language.
 *
 *     notes FOLDER [print]     the folder of the compiled texts; "print" prints what the windows
 * show */
#include <gtk/gtk.h>
#include <lang-locale.h>

/* clang-format off */
#define ZEL_LANGUAGE_APP "notes" "1.0"
/* clang-format on */

static struct zel_list *symbols;

static GtkWidget *add(GtkWidget *box, GtkWidget *widget, const char *tip)
{
    gtk_widget_set_tooltip_text(widget, tip);
    gtk_container_add(GTK_CONTAINER(box), widget);
    return widget;
}

static void button(GtkWidget *box, const char *text, const char *tip)
{
    add(box, gtk_button_new_with_mnemonic(text), tip);
}

static void option(GtkWidget *box, const char *text)
{
    add(box, gtk_check_button_new_with_label(text), NULL);
}

static void count(GtkWidget *box, const char *form, int number)
{
    char *text = g_strdup_printf(form, number);

    add(box, gtk_label_new(text), NULL);
    g_free(text);
}

/* A text with values, which it takes over. */
static void line(GtkWidget *box, char *text)
{
    add(box, gtk_label_new(text), NULL);
    free(text);
}

static GtkWidget *window(const char *title)
{
    GtkWidget *made = gtk_window_new(GTK_WINDOW_TOPLEVEL);

    gtk_window_set_title(GTK_WINDOW(made), title);
    g_signal_connect(made, "destroy", G_CALLBACK(gtk_main_quit), NULL);
    return add(made, gtk_vbox_new(FALSE, 4), NULL);
}

static GtkWidget *make_notes(void)
{
    GtkWidget *box = window(lang_text("notes", "Notes"));

    line(box, lang_sym(symbols, "", "notes", "Good morning, %USER%!"));
    count(box, lang_count("notes", "%d note|%d notes", 3), 3);
    count(box, lang_count("notes", "%d word|%d words", 1), 1);
    button(box, lang_text("notes", "_New"), lang_text("notes", "Begins an empty note"));
    button(box, lang_text("notes", "_Open"), lang_text("notes", "Shows a note that was saved"));
    button(box, lang_text("notes", "_Save"), lang_text("notes", "Keeps the note in its file"));
    button(box, lang_text("notes", "_Print"), lang_text("notes", "Puts the note on paper"));
    button(box, lang_text("notes", "_Delete"), lang_text("notes", "Throws the note away"));
    button(box, lang_text("notes", "_Quit"), lang_text("notes", "Leaves; everything is saved"));
    line(box, lang_sym(symbols, "", "notes", "%USER% has saved %FILE%."));
    return box;
}

static GtkWidget *make_settings(void)
{
    GtkWidget *box = window(lang_text("notes", "Settings"));

    line(box, lang_sym(symbols, "", "notes", "The settings of %USER%"));
    option(box, lang_text("notes", "Save when a window closes"));
    option(box, lang_text("notes", "Ask before deleting"));
    option(box, lang_text("notes", "Show the number of words"));
    option(box, lang_text("notes", "Underline what is not spelled right"));
    option(box, lang_text("notes", "Print in colour"));
    option(box, lang_text("notes", "Large letters"));
    option(box, lang_text("notes", "Dark windows"));
    count(box, lang_count("notes", "%d option is on|%d options are on", 0), 0);
    line(box, lang_sym(symbols, "", "notes", "They are kept in %FILE%."));
    button(box, lang_text("notes", "_Close"), lang_text("notes", "Goes back to the notes"));
    button(box, lang_text("notes", "_Reset"), lang_text("notes", "Takes the first settings again"));
    return box;
}

static void print(GtkWidget *widget, gpointer data)
{
    if (GTK_IS_LABEL(widget))
        printf("%s\n", gtk_label_get_text(GTK_LABEL(widget)));
    else if (gtk_widget_get_tooltip_text(widget) != NULL)
        printf("%s: ", gtk_widget_get_tooltip_text(widget));
    if (GTK_IS_CONTAINER(widget))
        gtk_container_foreach(GTK_CONTAINER(widget), print, data);
}

static void show(GtkWidget *box, gboolean prints)
{
    GtkWidget *shown = gtk_widget_get_toplevel(box);

    gtk_widget_show_all(shown);
    if (prints) {
        printf("%s\n", gtk_window_get_title(GTK_WINDOW(shown)));
        print(box, NULL);
    }
}

int main(int argc, char **argv)
{
    gtk_init(&argc, &argv);
    lang_locale_load(argv[1]);
    symbols = lang_sym_set(lang_sym_set(NULL, "USER", "Ada", 0), "FILE", "notes.txt", 0);
    show(make_notes(), argc > 2);
    show(make_settings(), argc > 2);
    if (argc < 3)
        gtk_main();
    lang_sym_free(symbols);
    lang_de_init();
    return 0;
}
