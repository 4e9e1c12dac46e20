#pragma once

// Opening TIFF files. The only file that knows libtiff; it is a library of its own, so that nothing
// else needs it. For applications of the family; this program does not call it.

struct tiff;

// As TIFFOpen: the open file, closed with TIFFClose, or null.
tiff *zel_TIFFOpen(const char *path, const char *mode);
