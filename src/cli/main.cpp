#include "cli/driver.h"

int main(int argc, char **argv)
{
    lang_edit(argc, argv);
    return 0;
}
