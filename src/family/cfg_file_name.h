#pragma once

// Finding a configuration file that exists in several versions: base/sub/VERSION/a-b-c-name, where
// VERSION is the first program version ("%03d-%03d" of major and minor) that the files are for.
// For applications of the family; this program does not call it.

// Looks through the version directories, the newest that is not newer than major and minor first,
// and in each for the most specific file: "a-b-c-name", then with 0 for c, for b and c, for all
// three. Returns 0 with the path in out (of size bytes); 1, logged, when there is none (a path that
// out cannot hold counts as none).
int gen_check_cfg_file_name(char *out, int size, const char *base, const char *sub, int major,
                            int minor, int a, int b, int c, const char *name);
