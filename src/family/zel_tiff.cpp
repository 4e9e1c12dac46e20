#include "family/zel_tiff.h"

#include <tiffio.h>

tiff *zel_TIFFOpen(const char *path, const char *mode) { return TIFFOpen(path, mode); }
