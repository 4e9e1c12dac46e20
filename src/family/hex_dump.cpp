#include "family/hex_dump.h"

#include <algorithm>
#include <cstring>

// The preprocessor makes the table, so that nothing has to run at the start.
#define HEX_ROW(high)                                                                              \
    high "0", high "1", high "2", high "3", high "4", high "5", high "6", high "7", high "8",      \
        high "9", high "A", high "B", high "C", high "D", high "E", high "F"

const char nibble_hex_tab_lo[17] = "0123456789abcdef";
const char nibble_hex_tab_up[17] = "0123456789ABCDEF";
const char byte_hex_tab[256][3] = {HEX_ROW("0"), HEX_ROW("1"), HEX_ROW("2"), HEX_ROW("3"),
                                   HEX_ROW("4"), HEX_ROW("5"), HEX_ROW("6"), HEX_ROW("7"),
                                   HEX_ROW("8"), HEX_ROW("9"), HEX_ROW("A"), HEX_ROW("B"),
                                   HEX_ROW("C"), HEX_ROW("D"), HEX_ROW("E"), HEX_ROW("F")};

namespace {

constexpr int bytes_per_line = 16;
constexpr int widest_byte = 5; // two digits and " - "

// Returns what follows the byte at this place of the line, counted from 1.
const char *gap_after(int place)
{
    if (place == bytes_per_line)
        return "";
    return place == bytes_per_line / 2 ? " - " : " ";
}

} // namespace

int hex_dump_byte_line(char *out, int limit, const unsigned char **cursor, int remaining)
{
    const int most = std::min(remaining, bytes_per_line);
    const char *start = out;
    int used = 0;
    *out = '\0';
    // Stops before a byte that might not fit: half a byte would read as another one.
    while (used < most && out - start + widest_byte < limit) {
        out = stpcpy(out, byte_hex_tab[*(*cursor)++]);
        out = stpcpy(out, gap_after(++used));
    }
    return used;
}

int hex_dump_byte_line_ext(char *out, int limit, const unsigned char **cursor, int remaining)
{
    const unsigned char *bytes = *cursor;
    const int used = hex_dump_byte_line(out, limit, cursor, remaining);
    // The limit counts the numbers alone: the caller has room for the characters as well.
    out = stpcpy(out + std::strlen(out), "  ");
    for (int i = 0; i < used; ++i)
        // ASCII only, so that no byte changes the terminal and every locale shows the same.
        *out++ = bytes[i] >= 32 && bytes[i] <= 126 ? static_cast<char>(bytes[i]) : '.';
    *out = '\0';
    return used;
}
