/* A window in its user's language: a label that counts, and a button.
 *
 *     window FOLDER             the folder of the compiled texts
 *     window --show N FOLDER    presses the button N times, prints what the window shows, and ends
 */
#include <gtk/gtk.h>
#include <lang-locale.h>
#include <stdlib.h>
#include <string.h>

/* clang-format off */
#define ZEL_LANGUAGE_APP "window" "1.0"
/* clang-format on */

static GtkWidget *label;
static int clicks;

static void show_clicks(void)
{
    gchar *text = g_strdup_printf(lang_count("window", "%d click|%d clicks", clicks), clicks);

    gtk_label_set_text(GTK_LABEL(label), text);
    g_free(text);
}

static void cb_clicked(GtkWidget *button, gpointer data)
{
    (void)button;
    (void)data;
    ++clicks;
    show_clicks();
}

int main(int count, char **words)
{
    const int show = count > 3 && strcmp(words[1], "--show") == 0 ? atoi(words[2]) : -1;
    GtkWidget *window, *button, *box;

    /* The compiled files are UTF-8, which is what the toolkit wants. */
    gtk_init(&count, &words);
    lang_locale_load(count > 1 ? words[count - 1] : NULL);
    window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(window), lang_get_string("window", "Counter"));
    box = gtk_vbox_new(FALSE, 6);
    label = gtk_label_new(NULL);
    button = gtk_button_new_with_mnemonic(lang_get_string("window", "_Click"));
    gtk_widget_set_tooltip_text(button, lang_tooltip("window", "Adds one"));
    gtk_container_add(GTK_CONTAINER(box), label);
    gtk_container_add(GTK_CONTAINER(box), button);
    gtk_container_add(GTK_CONTAINER(window), box);
    g_signal_connect(button, "clicked", G_CALLBACK(cb_clicked), NULL);
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), NULL);
    show_clicks();
    gtk_widget_show_all(window);
    if (show >= 0) {
        int i;

        for (i = 0; i < show; ++i)
            gtk_button_clicked(GTK_BUTTON(button));
        while (gtk_events_pending())
            gtk_main_iteration();
        printf("%s | %s | %s\n", gtk_window_get_title(GTK_WINDOW(window)),
               gtk_label_get_text(GTK_LABEL(label)), gtk_button_get_label(GTK_BUTTON(button)));
    } else {
        gtk_main();
    }
    lang_de_init();
    return 0;
}
