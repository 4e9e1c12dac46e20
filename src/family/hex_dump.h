#pragma once

// Bytes as hexadecimal text: for the log's dump, and for applications of the family.

// The digits of a half byte, lower and upper case, and the two upper-case digits of each byte.
extern const char nibble_hex_tab_lo[17];
extern const char nibble_hex_tab_up[17];
extern const char byte_hex_tab[256][3];

// Writes one line of up to 16 bytes, "00 01 .. 07 - 08 .. 0F", into out and moves the cursor past
// them. limit is the room of the line in characters: no byte is begun that would bring it to the
// limit (55 is enough for 16 bytes). Returns the number of bytes used.
int hex_dump_byte_line(char *out, int limit, const unsigned char **cursor, int remaining);

// The same, then two blanks and the bytes as text ("." for what is not printable ASCII); out must
// hold 18 characters more than the limit.
int hex_dump_byte_line_ext(char *out, int limit, const unsigned char **cursor, int remaining);
