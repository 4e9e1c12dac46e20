#pragma once

// Reports of trouble that name the place they come from. Neither ends the process.

// Prints "FATAL: file:line text" to standard error and logs the same line. Returns 0.
int _zel_fatal(const char *file, int line, const char *text);

// Prints "ERROR: file:line text" to standard error and logs the same line. Returns 0.
int _zel_error(const char *file, int line, const char *text);
