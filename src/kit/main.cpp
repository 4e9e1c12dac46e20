#include "app/memory.h"
#include "app/terminal.h"
#include "kit/words.h"

int main(int argc, char **argv)
{
    // First of all: no file may get the number of a missing stream.
    zel::open_missing_streams(zel::missing_output::fails);
    zel::prepare_heap();
    zel::end_without_memory("lang-kit", zel::kit::status_fault);
    zel::escape_on_terminals();
    return zel::kit::run(argc, argv);
}
