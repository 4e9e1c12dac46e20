// Reads sources as lang-kit does and ends: what its words are compared with.

#include "app/memory.h"
#include "source/lang-read.h"

int main(int argc, char **argv)
{
    zel::prepare_heap();
    for (int n = 1; n < argc; ++n)
        if (zel::read_source(argv[n], {}).source.release() == nullptr) // as a word keeps it
            return 2;
    return 0;
}
