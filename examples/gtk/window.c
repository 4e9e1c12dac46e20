/* A window in its user's language: a label that counts, and a button. New texts are seen at once.
 *
 *     window FOLDER             the folder of the compiled texts
 *     window --watch FOLDER     prints what the window shows whenever there are new texts
 *     window --show N FOLDER [FILE.png]
 *                               presses the button N times, prints what the window shows, keeps a
 *                               picture of it, and ends
 */
#include <gtk/gtk.h>
#include <lang-locale.h>
#include <stdlib.h>
#include <string.h>

/* clang-format off */
#define ZEL_LANGUAGE_APP "window" "1.0"
/* clang-format on */

static GtkWidget *window, *label, *button;
static int clicks;

static void show_clicks(void)
{
    gchar *text = g_strdup_printf(lang_count("window", "%d click|%d clicks", clicks), clicks);

    gtk_label_set_text(GTK_LABEL(label), text);
    g_free(text);
}

/* Every text of the window: asked for again when there are new ones. */
static void show_texts(void)
{
    gtk_window_set_title(GTK_WINDOW(window), lang_get_string("window", "Counter"));
    gtk_button_set_label(GTK_BUTTON(button), lang_get_string("window", "_Click"));
    gtk_widget_set_tooltip_text(button, lang_tooltip("window", "Adds one"));
    show_clicks();
}

static void print_texts(void)
{
    printf("%s | %s | %s\n", gtk_window_get_title(GTK_WINDOW(window)),
           gtk_label_get_text(GTK_LABEL(label)), gtk_button_get_label(GTK_BUTTON(button)));
    fflush(stdout);
}

static gboolean cb_news(GIOChannel *channel, GIOCondition condition, gpointer prints)
{
    (void)channel;
    (void)condition;
    if (lang_locale_reload() == 1) {
        show_texts();
        if (prints != NULL)
            print_texts();
    }
    return TRUE;
}

static void watch_texts(gpointer prints)
{
    const int news = lang_locale_watch(NULL);

    if (news >= 0)
        g_io_add_watch(g_io_channel_unix_new(news), G_IO_IN, cb_news, prints);
}

static void keep_picture(const char *path)
{
    GdkWindow *shown = gtk_widget_get_window(window);
    GdkPixbuf *picture;

    gdk_window_process_updates(shown, TRUE);
    picture = gdk_pixbuf_get_from_drawable(
        NULL, shown, NULL, 0, 0, 0, 0, gdk_window_get_width(shown), gdk_window_get_height(shown));
    gdk_pixbuf_save(picture, path, "png", NULL, NULL);
    g_object_unref(picture);
}

static void cb_clicked(GtkWidget *clicked, gpointer data)
{
    (void)clicked;
    (void)data;
    ++clicks;
    show_clicks();
}

int main(int count, char **words)
{
    const char *word = count > 1 ? words[1] : "";
    const int show = count > 3 && strcmp(word, "--show") == 0 ? atoi(words[2]) : -1;
    GtkWidget *box;

    /* The compiled files are UTF-8, which is what the toolkit wants. */
    gtk_init(&count, &words);
    lang_locale_load(show >= 0 ? words[3] : count > 1 ? words[count - 1] : NULL);
    watch_texts(strcmp(word, "--watch") == 0 ? "" : NULL);
    lang_trace_mark("counter"); /* LANG_TRACE=FILE: the texts of this window */
    window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    box = gtk_vbox_new(FALSE, 6);
    label = gtk_label_new(NULL);
    button = gtk_button_new();
    gtk_button_set_use_underline(GTK_BUTTON(button), TRUE);
    gtk_container_add(GTK_CONTAINER(box), label);
    gtk_container_add(GTK_CONTAINER(box), button);
    gtk_container_add(GTK_CONTAINER(window), box);
    g_signal_connect(button, "clicked", G_CALLBACK(cb_clicked), NULL);
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), NULL);
    show_texts();
    gtk_widget_show_all(window);
    if (show >= 0) {
        int i;

        for (i = 0; i < show; ++i)
            gtk_button_clicked(GTK_BUTTON(button));
        while (gtk_events_pending())
            gtk_main_iteration();
        print_texts();
        if (count > 4)
            keep_picture(words[4]);
    } else {
        gtk_main();
    }
    lang_de_init();
    return 0;
}
