#include "app/debug-print.h"
#include "app/memory.h"
#include "app/terminal.h"
#include "cli/driver.h"

int main(int argc, char **argv)
{
    // First of all: a file that is opened later must not get the number of a closed standard
    // stream.
    zel::open_missing_streams(zel::missing_output::vanishes);
    zel::prepare_heap();
    zel::end_without_memory("lang", 0);
    zel::escape_on_terminals();
    zel::debug_print_from_environment();
    // 0 whatever happened: a command that must end with another status ends the process itself.
    lang_edit(argc, argv);
    return 0;
}
