#pragma once

// The keys of a language source as a text that a spreadsheet program takes in.
//
// One record per item, used or not, in file order: "group.item" TAB "group.item" TAB CR, no line
// feed. A key is cut at 1023 bytes. In it a double quote is doubled, a tab becomes a blank, a line
// feed or carriage return the three bytes ESC, blank, colon.

#include <cstdio>

#include "source/model.h"

// Writes the records to the path, replacing the file that stands there once all of them are
// written, or writing into it where the system lets nobody replace it; a device, or a pipe with a
// reader, gets them. Returns 0; 1 when the file cannot be created, or something else stands there,
// or when it could not be written to its end (after a message on standard output, and the cause on
// standard error). The two languages are not used.
int to_excel_unicode_text(LangSource *source, const char *path, const char *lang,
                          const char *comment_lang);

// Writes the string with the escapes of a key. Returns 0.
int write_str(std::FILE *stream, const char *text);
