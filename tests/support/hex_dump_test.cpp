#include "family/hex_dump.h"

#include <gtest/gtest.h>

TEST(hex_dump, digits_of_every_byte)
{
    for (std::size_t i = 0; i < 256; ++i) {
        const char digits[3] = {nibble_hex_tab_up[i >> 4], nibble_hex_tab_up[i & 15], '\0'};
        EXPECT_STREQ(digits, byte_hex_tab[i]);
    }
}

TEST(hex_dump, lines_end_before_the_limit)
{
    const unsigned char bytes[] = "\0\1\2\3\4\5\6\7\10\11\12\13\14\15\16\17\240A~\177";
    const unsigned char *cursor = bytes;
    char line[80];
    EXPECT_EQ(16, hex_dump_byte_line(line, 55, &cursor, 20));
    EXPECT_STREQ("00 01 02 03 04 05 06 07 - 08 09 0A 0B 0C 0D 0E 0F", line);
    EXPECT_EQ(4, hex_dump_byte_line_ext(line, 55, &cursor, 4));
    EXPECT_STREQ("A0 41 7E 7F   .A~.", line);
    EXPECT_EQ(bytes + 20, cursor);
    cursor = bytes;
    EXPECT_EQ(2, hex_dump_byte_line(line, 9, &cursor, 20));
    EXPECT_STREQ("00 01 ", line);
    EXPECT_EQ(0, hex_dump_byte_line(line, 5, &cursor, 20));
}
