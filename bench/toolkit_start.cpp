// A program that is linked with the toolkit and only initialises it, without a display.

#include <gtk/gtk.h>

int main(int argc, char **argv)
{
    gtk_parse_args(&argc, &argv);
    return 0;
}
