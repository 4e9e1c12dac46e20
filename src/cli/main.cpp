#include "app/debug-print.h"
#include "app/memory.h"
#include "app/terminal.h"
#include "cli/driver.h"

int main(int argc, char **argv)
{
    zel::open_missing_streams();
    zel::prepare_heap();
    zel::end_without_memory("lang", 0);
    zel::escape_on_terminals();
    zel::debug_print_from_environment();
    lang_edit(argc, argv);
    return 0;
}
