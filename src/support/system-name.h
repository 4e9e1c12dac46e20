#pragma once

// The text that describes the operating system.

#include <cstdio>

// What the system calls itself, for the head of the log; print_os puts an empty line around it.
const char *get_os_string();
void print_os(std::FILE *stream);
