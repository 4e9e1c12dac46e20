/* Notes in two windows, in their user's language.
 *
 *     notes FOLDER [print]     the folder of the catalogs; "print" prints what the windows show */
#include <glib/gi18n.h>
#include <gtk/gtk.h>

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
    g_free(text);
}

static GtkWidget *window(const char *title)
{
    GtkWidget *made = gtk_window_new(GTK_WINDOW_TOPLEVEL);

    gtk_window_set_title(GTK_WINDOW(made), title);
    g_signal_connect(made, "destroy", G_CALLBACK(gtk_main_quit), NULL);
    return add(made, gtk_vbox_new(FALSE, 4), NULL);
}

/* A new text in which the names stand for their values: gettext has none of that. */
static char *named(const char *text)
{
    static const char *const values[][2] = {{"%USER%", "Ada"}, {"%FILE%", "notes.txt"}};
    char *made = g_strdup(text);
    guint i;

    for (i = 0; i < G_N_ELEMENTS(values); ++i) {
        char **parts = g_strsplit(made, values[i][0], -1);

        g_free(made);
        made = g_strjoinv(values[i][1], parts);
        g_strfreev(parts);
    }
    return made;
}

static GtkWidget *make_notes(void)
{
    GtkWidget *box = window(_("Notes"));

    line(box, named(_("Good morning, %USER%!")));
    count(box, ngettext("%d note", "%d notes", 3), 3);
    count(box, ngettext("%d word", "%d words", 1), 1);
    button(box, _("_New"), _("Begins an empty note"));
    button(box, _("_Open"), _("Shows a note that was saved"));
    button(box, _("_Save"), _("Keeps the note in its file"));
    button(box, _("_Print"), _("Puts the note on paper"));
    button(box, _("_Delete"), _("Throws the note away"));
    button(box, _("_Quit"), _("Leaves; everything is saved"));
    line(box, named(_("%USER% has saved %FILE%.")));
    return box;
}

static GtkWidget *make_settings(void)
{
    GtkWidget *box = window(_("Settings"));

    line(box, named(_("The settings of %USER%")));
    option(box, _("Save when a window closes"));
    option(box, _("Ask before deleting"));
    option(box, _("Show the number of words"));
    option(box, _("Underline what is not spelled right"));
    option(box, _("Print in colour"));
    option(box, _("Large letters"));
    option(box, _("Dark windows"));
    count(box, ngettext("%d option is on", "%d options are on", 0), 0);
    line(box, named(_("They are kept in %FILE%.")));
    button(box, _("_Close"), _("Goes back to the notes"));
    button(box, _("_Reset"), _("Takes the first settings again"));
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
    gtk_init(&argc, &argv); /* sets the locale */
    bindtextdomain("notes", argv[1]);
    bind_textdomain_codeset("notes", "UTF-8");
    textdomain("notes");
    show(make_notes(), argc > 2);
    show(make_settings(), argc > 2);
    if (argc < 3)
        gtk_main();
    return 0;
}
