#include "family/file-call.h"

#include <unistd.h>

int zel_rmdir(const char *path) { return rmdir(path); }
