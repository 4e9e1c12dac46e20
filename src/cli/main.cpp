#include "cli/driver.h"
#include "cli/memory.h"
#include "cli/terminal.h"

int main(int argc, char **argv)
{
    zel::open_missing_streams();
    zel::prepare_heap();
    zel::end_without_memory();
    zel::escape_on_terminals();
    lang_edit(argc, argv);
    return 0;
}
