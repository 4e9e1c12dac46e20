#include "support/system-name.h"

const char *get_os_string() { return "Linux or unknown"; }

void print_os(std::FILE *stream) { std::fprintf(stream, "\n%s\n\n", get_os_string()); }
