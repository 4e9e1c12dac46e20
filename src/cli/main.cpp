#include "cli/driver.h"

#include <malloc.h>

int main(int argc, char **argv)
{
    // A source is hundreds of thousands of small texts. Asking the system for memory in large steps
    // halves the time that a cold start spends on it; what is not touched costs nothing.
    mallopt(M_TOP_PAD, 16 * 1024 * 1024);
    lang_edit(argc, argv);
    return 0;
}
