#include "lex/lex.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "family/lex.h"
#include "lex/lex-misc.h"
#include "lex/scan.h"
#include "locales.h"
#include "rows.h"

using namespace scan_test;
using std::string_literals::operator""s;

namespace {

constexpr unsigned plain = LEX_NEWLINE_SPACE;

const Keytab colours[] = {{nullptr, 0}, {"red", 20003},    {"green", 20001},    {"Blue", 20002},
                          {"a", 20004}, {"violet", 20005}, {"indigo_7", 20006}, {nullptr, 0}};

std::string marker_place(const scanner &from, const zel_token_t *token)
{
    return describe(token) + "@" + zel_lex_linemarker_info(from.lex(), token);
}

TEST(Scanner, TokensAreThoseOfTheTable)
{
    static const std::pair<const char *, unsigned> names[] = {
        {"escapes", LEX_ESCAPES},         {"one-kind", LEX_NUMBER_ONE_KIND},
        {"no-comments", LEX_NO_COMMENTS}, {"keep-bad", LEX_KEEP_BAD_ESCAPES},
        {"no-case", LEX_KEYWORD_NOCASE},  {"markers", LEX_LINE_MARKERS},
    };
    for (const zel_test::row &row : zel_test::rows_of("lex/scan.rows")) {
        const std::string words = " " + row[2] + " ";
        const auto has = [&](const std::string &word) {
            return words.find(" " + word + " ") != words.npos;
        };
        unsigned flags = has("lines") ? 0 : plain;
        for (const auto &[word, flag] : names)
            flags |= has(word) ? flag : 0;
        const scanner from(row[0], flags, has("colours") ? colours : nullptr);
        EXPECT_EQ(all_tokens(from,
                             [&](const zel_token_t *token) {
                                 return has("places")          ? with_place(token)
                                        : has("marker-places") ? marker_place(from, token)
                                                               : describe(token);
                             }),
                  row[1])
            << row.section << ", scan.rows:" << row.line;
    }
}

TEST(Scanner, EmptyInputAndTheEndAgainAndAgain)
{
    scanner from("", plain);
    for (int n = 0; n < 3; n++)
        EXPECT_EQ(from.next()->id, TOKEN_EOF);
    EXPECT_EQ(scan(" \t\n", plain), "-1");
}

// --- comments ------------------------------------------------------------------------------------

TEST(Scanner, TellsThatTheInputEndedInsideAComment)
{
    const auto is_open = [](std::string_view text, unsigned flags = plain) {
        const scanner from(text, flags);
        all_tokens(from, describe);
        return zel_lex_open_comment(from.lex()) == 1;
    };
    EXPECT_TRUE(is_open("a /* b"));
    EXPECT_TRUE(is_open("a /* b *"));
    EXPECT_FALSE(is_open("a /* b */ c"));
    EXPECT_FALSE(is_open("a // b")) << "which a last line without its feed may be";
    EXPECT_FALSE(is_open("a /* b", plain | LEX_NO_COMMENTS));

    const scanner from("/*", plain);
    all_tokens(from, describe);
    zel_lex_buf_t *old = from.buf();
    zel_lex_set_buf(from.lex(), zel_lex_buf_mem_new("x", 1));
    zel_lex_buf_free(old);
    EXPECT_EQ(zel_lex_open_comment(from.lex()), 0) << "another input";
    EXPECT_EQ(zel_lex_open_comment(nullptr), 0);
}

// --- strings -------------------------------------------------------------------------------------

TEST(Scanner, AStringMayHoldANulByte)
{
    scanner from(R"("ab\0cd" e)", escapes);
    const zel_token_t *token = from.next();
    EXPECT_EQ(token->id, TOKEN_STRING);
    EXPECT_STREQ(token->lexeme, "ab");
    EXPECT_EQ(std::string(token->lexeme, token->length), "ab\0cd"s);
    EXPECT_EQ(describe(from.next()), "256:e");
}

TEST(Scanner, BrokenStrings)
{
    EXPECT_EQ(scan("\"ab\ncd\" e", escapes), "-4:ab 256:cd -1");
    EXPECT_EQ(scan("\"ab\r\ncd", escapes), "-4:ab 256:cd -1");
    for (const char *open : {"\"ab", "\"ab\\", "\"ab\\x", "\"ab\\x4", "\"ab\\\n", "\"ab\\\n\\"})
        EXPECT_EQ(scan(open, escapes), "-1") << open;
}

// --- keywords ------------------------------------------------------------------------------------

TEST(Keywords, EveryRowOfEveryTableSizeIsFound)
{
    std::vector<std::string> words;
    for (int n = 0; n < 70; n++)
        words.push_back("k" + std::to_string((n * 37) % 101) + (n % 2 ? "X" : "x"));
    for (std::size_t size = 0; size <= words.size(); size++) {
        std::vector<Keytab> table{{nullptr, 0}};
        for (std::size_t n = 0; n < size; n++)
            table.push_back({words[n].c_str(), 20000 + static_cast<int>(n)});
        table.push_back({nullptr, 0});
        for (unsigned flags : {0U, unsigned{LEX_KEYWORD_NOCASE}}) {
            const zel_lex_guard lex(zel_lex_new(table.data(), flags));
            for (std::size_t n = 0; n < words.size(); n++) {
                const int id = n < size ? 20000 + static_cast<int>(n) : TOKEN_IDENT;
                ASSERT_EQ(keyws(lex.get(), words[n].c_str()), id) << words[n] << " of " << size;
            }
            EXPECT_EQ(keyws(lex.get(), "K0x"), flags != 0 && size > 0 ? 20000 : TOKEN_IDENT);
            EXPECT_EQ(keyws(lex.get(), ""), TOKEN_IDENT);
            EXPECT_EQ(keyws(lex.get(), "zzz"), TOKEN_IDENT);
        }
    }
}

TEST(Keywords, OnlyAsciiLettersFold)
{
    const Keytab table[] = {{nullptr, 0}, {"\xc3\xa9t\xc3\xa9", 20001}, {nullptr, 0}};
    EXPECT_EQ(scan("\xc3\xa9T\xc3\xa9 \xc3\x89t\xc3\x89", plain | LEX_KEYWORD_NOCASE, table),
              "20001:\xc3\xa9T\xc3\xa9 256:\xc3\x89t\xc3\x89 -1");
}

TEST(KeywordsSlow, AreTheSameInEveryLocale) // the first one makes the locales
{
    const Keytab words[] = {{nullptr, 0}, {"item", 20001}, {"VISIBLE", 20002}, {nullptr, 0}};
    if (!zel_test::in_each_locale([&](const char *name) {
            EXPECT_EQ(scan("ITEM item iTeM visible VISIBLE", plain | LEX_KEYWORD_NOCASE, words),
                      "20001:ITEM 20001:item 20001:iTeM 20002:visible 20002:VISIBLE -1")
                << name;
            EXPECT_EQ(scan("\xDDTEM \xFDtem", plain | LEX_KEYWORD_NOCASE, words),
                      "256:\xDDTEM 256:\xFDtem -1")
                << name;
        }))
        GTEST_SKIP() << "no localedef or no definitions of locales";
}

TEST(Keywords, TheTableEndsAtTheFirstRowWithoutAnId)
{
    const Keytab table[] = {{"row0", 20009}, {"in", 20001}, {nullptr, 0}, {"out", 20002}};
    EXPECT_EQ(scan("in out row0", plain, table), "20001:in 256:out 256:row0 -1");
    EXPECT_EQ(scan("in", plain, nullptr), "256:in -1");
}

// --- positions -----------------------------------------------------------------------------------

TEST(Positions, OffsetsCountFromTheStartOfTheInput)
{
    scanner from("ab\n\"cd\" ef", plain);
    EXPECT_EQ(from.next()->offset, 0U);
    EXPECT_EQ(from.next()->offset, 3U);
    EXPECT_EQ(from.next()->offset, 8U);
    EXPECT_EQ(from.next()->offset, 11U); // the end had been read ahead
    EXPECT_EQ(from.next()->offset, 11U);
    EXPECT_EQ(from.next()->offset, 12U); // and is read again each time
}

// --- line markers --------------------------------------------------------------------------------

TEST(LineMarkers, CutAnywhereTheyEndSilently)
{
    const std::string marker = "# 12 \"foo.c\" 1 3";
    for (std::size_t n = 1; n <= marker.size(); n++)
        EXPECT_EQ(scan("a " + marker.substr(0, n), plain | LEX_LINE_MARKERS), "256:a -1") << n;
}

TEST(LineMarkers, LeavingMoreFilesThanWereEnteredDoesNoHarm)
{
    std::string text;
    for (int n = 0; n < 300; n++)
        text += "# 5 \"a.c\" 2\n";
    scanner from(text + "x\n# 9 \"b.c\" 1\n\"y\"", plain | LEX_LINE_MARKERS);
    const zel_token_t *x = from.next();
    EXPECT_EQ(describe(x), "256:x");
    EXPECT_EQ(x->file_line, 5U);
    zel_token_t *y = from.next();
    EXPECT_EQ(describe(y), "257:y");
    EXPECT_EQ(y->file_line, 9U);
    zel_lex_linemarker_info(from.lex(), y);
}

TEST(LineMarkers, BeyondTheTableTheLineStillCounts)
{
    std::string text;
    for (int n = 0; n < 300; n++)
        text += "# " + std::to_string(n + 1) + " \"f" + std::to_string(n) + ".h\" 1\n";
    const std::string long_name(3000, 'n');
    scanner from(text + "x\n# 77 \"" + long_name + "\"\n\"y\"\n", plain | LEX_LINE_MARKERS);
    zel_token_t *x = from.next();
    EXPECT_EQ(x->file_line, 300U);
    zel_lex_linemarker_info(from.lex(), x);
    EXPECT_EQ(from.next()->file_line, 77U);

    scanner wide("# 0000000000000000000000000000000000000012 \"w.c\"\n\"z\"",
                 plain | LEX_LINE_MARKERS);
    EXPECT_EQ(describe(wide.next()), "257:z"); // whatever the number, the text goes on behind it
}

TEST(LineMarkers, ManyFilesOneAfterTheOtherKeepTheTableSmall)
{
    std::string text;
    for (int n = 0; n < 1000; n++)
        text += "# 1 \"inc.h\" 1\n# 2 \"main.c\" 2\n";
    scanner from("# 1 \"main.c\"\n" + text + "\"x\"", plain | LEX_LINE_MARKERS);
    EXPECT_EQ(marker_place(from, from.next()), "257:x@main.c:2:0");
}

// --- current token and look-ahead ----------------------------------------------------------------

TEST(LookAhead, IsOneTokenThatNextHandsOver)
{
    scanner from("\"a\" b 3", plain);
    EXPECT_EQ(describe(zel_token_look_ahead(from.lex(), 1)), "257:a");
    EXPECT_EQ(describe(zel_token_look_ahead(from.lex(), 5)), "257:a");
    zel_token_t *current = from.next();
    EXPECT_EQ(with_place(current), "257:a@1:0");
    EXPECT_EQ(with_place(zel_token_look_ahead(from.lex(), 1)), "256:b@1:4");
    EXPECT_EQ(with_place(zel_current_token(from.lex())), "257:a@1:0"); // untouched by it
    EXPECT_EQ(with_place(from.next()), "256:b@1:4");
    EXPECT_EQ(with_place(from.next()), "258:3@1:6");
    EXPECT_EQ(zel_current_token(from.lex())->id, TOKEN_DEC);
    EXPECT_EQ(zel_token_look_ahead(from.lex(), 1)->id, TOKEN_EOF);
    EXPECT_EQ(from.next()->id, TOKEN_EOF);
}

TEST(LookAhead, NullAndBufferlessScanners)
{
    EXPECT_EQ(zel_next_token(nullptr), nullptr);
    EXPECT_EQ(zel_current_token(nullptr), nullptr);
    EXPECT_EQ(zel_lex_start(nullptr), 1);
    const zel_lex_guard lex(zel_lex_new(nullptr, 0));
    ASSERT_NE(lex, nullptr);
    EXPECT_EQ(zel_lex_start(lex.get()), 1);
    EXPECT_EQ(zel_get_token(lex.get()), TOKEN_ERR_MEM);
    EXPECT_EQ(lex->work->id, 0);
}

TEST(LookAhead, AttachingAnotherBufferForgetsBothTokens)
{
    scanner from("a b c", plain);
    from.next();
    zel_token_look_ahead(from.lex(), 1);
    zel_lex_buf_t *old = from.buf();
    zel_lex_set_buf(from.lex(), zel_lex_buf_mem_new("x", 1));
    zel_lex_buf_free(old);
    EXPECT_EQ(zel_lex_start(from.lex()), 0);
    EXPECT_EQ(zel_current_token(from.lex())->id, 0);
    EXPECT_STREQ(zel_current_token(from.lex())->lexeme, "");
    EXPECT_STREQ(from.lex()->ahead->lexeme, "");
    EXPECT_EQ(describe(from.next()), "256:x");
}

// --- long texts ----------------------------------------------------------------------------------

TEST(LongTokens, LexemesGrowAsFarAsNeeded)
{
    for (std::size_t size : {4087U, 4088U, 4089U, 4095U, 4096U, 4097U, 8192U, 100000U}) {
        const std::string letters(size, 'x');
        const std::string digits(size, '7');
        scanner from("\"" + letters + "\" " + letters + " " + digits + " 0x" + digits + " 0" +
                         digits + " 1." + digits + " \"\" k",
                     plain);
        EXPECT_EQ(from.next()->lexeme, letters);
        EXPECT_EQ(describe(from.next()), "256:" + letters);
        EXPECT_EQ(zel_token_look_ahead(from.lex(), 1)->lexeme, digits);
        EXPECT_EQ(describe(from.next()), "258:" + digits);
        EXPECT_EQ(describe(from.next()), "260:0x" + digits);
        EXPECT_EQ(describe(from.next()), "259:0" + digits);
        EXPECT_EQ(describe(from.next()), "261:1." + digits);
        EXPECT_EQ(describe(from.next()), "257:");
        EXPECT_EQ(describe(from.next()), "256:k");
        EXPECT_EQ(from.next()->id, TOKEN_EOF);
    }
}

TEST(LongTokens, EscapesAtTheEdgeOfTheLexeme)
{
    for (std::size_t size = 4070; size < 4110; size++) {
        const std::string text = std::string(size, 'x');
        EXPECT_EQ(scan("\"" + text + "\\x41\\n\\\\\\\n\"", escapes), "257:" + text + "A\n\\ -1")
            << size;
        EXPECT_EQ(scan("\"" + text + "\\q\"", escapes | LEX_KEEP_BAD_ESCAPES),
                  "257:" + text + "\\q -1")
            << size;
    }
}

TEST(LongTokens, CopyingATokenGrowsTheDestination)
{
    scanner from("\"" + std::string(9000, 'y') + "\"\n z", plain);
    scanner small("z", plain);
    const zel_token_t *big = from.next();
    zel_token_t *copy = small.next();
    EXPECT_EQ(lex_token_cpy(copy, big), 0);
    EXPECT_STREQ(copy->lexeme, big->lexeme);
    EXPECT_NE(copy->lexeme, big->lexeme);
    EXPECT_GE(copy->capacity, 9001);
    EXPECT_EQ(copy->id, TOKEN_STRING);
    EXPECT_EQ(lex_token_cpy(copy, from.next()), 0);
    EXPECT_EQ(with_place(copy), "256:z@2:1");
}

TEST(LongTokens, AMegabyteOfCommentAndOfBlanks)
{
    const std::string many(1 << 20, ' ');
    EXPECT_EQ(scan_places("/*" + many + "*/a" + many + "b", plain),
              "256:a@1:1048580 256:b@1:2097157 -1@1:2097159");
}

// --- what a client may plug in -------------------------------------------------------------------

// A token function of a client's own: every character is a token whose text is its code.
int character_token(zel_lex_t *lex)
{
    zel_lex_start(lex);
    const int c = zel_lex_buf_next_char(zel_lex_get_buf(lex));
    lex->work->id = static_cast<std::int16_t>(c < 0 ? TOKEN_EOF : TOKEN_NUMBER);
    std::snprintf(lex->work->lexeme, 16, "%d", c);
    return lex->work->id;
}

TEST(Plugged, ATokenFunction)
{
    scanner from("a\nb", plain);
    EXPECT_EQ(zel_lex_set_get_token(from.lex(), character_token), 0);
    EXPECT_EQ(with_place(zel_token_look_ahead(from.lex(), 1)), "262:97@1:0");
    scanner other("unlike", plain);
    zel_token_t *copy = other.next();
    EXPECT_EQ(lex_token_cpy(copy, zel_token_look_ahead(from.lex(), 1)), 0);
    EXPECT_EQ(with_place(copy), "262:97@1:0");
    EXPECT_EQ(all_tokens(from, with_place), "262:97@1:0 262:10@1:1 262:98@2:0 -1@2:1");
}

int number_is_a_lone_digit(zel_lex_t *lex, int first, int start)
{
    lex->work->lexeme[start] = static_cast<char>(first);
    lex->work->lexeme[start + 1] = '\0';
    return TOKEN_FLOAT;
}

TEST(Plugged, ANumericFunction)
{
    scanner from("12 x", plain);
    from.lex()->do_numeric = number_is_a_lone_digit;
    EXPECT_EQ(all_tokens(from, describe), "261:1 261:2 256:x -1");
}

struct text_source {
    std::string text;
    std::size_t at = 0;
};

int read_from_text(zel_lex_buf_t *, void *context)
{
    auto *source = static_cast<text_source *>(context);
    if (source->at == source->text.size())
        return 0xffff; // the end in 16 bits
    return static_cast<unsigned char>(source->text[source->at++]);
}

TEST(Plugged, AReader)
{
    text_source source{"version\r\n 2 /* c */ \"\xff\x41\" // d"};
    scanner from("this is not read", plain);
    EXPECT_EQ(zel_lex_buf_set_read_char(from.buf(), read_from_text, &source), 0);
    EXPECT_EQ(all_tokens(from, with_place), "256:version@1:0 258:2@2:1 257:\xff\x41@2:11 -1@2:16");
}

TEST(Plugged, AReaderInTheMiddleOfAText)
{
    text_source source{"from elsewhere"};
    scanner from("here <gone", plain);
    EXPECT_EQ(describe(from.next()), "256:here"); // the blank behind it is read ahead
    zel_lex_buf_set_read_char(from.buf(), read_from_text, &source);
    EXPECT_EQ(all_tokens(from, describe), "256:from 256:elsewhere -1");
}

int upper_next_char(zel_lex_buf_t *buf)
{
    const int c = zel::buf_shared_next_char(buf);
    return c >= 'a' && c <= 'z' ? c - 32 : c;
}

TEST(Plugged, ANextCharacterFunction)
{
    scanner from("\"abc\" +", plain);
    from.buf()->next_char = upper_next_char;
    EXPECT_EQ(all_tokens(from, with_place), "257:ABC@1:0 43@1:6 -1@1:8");
}

// --- moving, and any bytes -----------------------------------------------------------------------

TEST(Scanner, SeekingReadsAgainWithTheOldLineCounter)
{
    scanner from("\"a\"\n\"b\"", plain);
    from.next();
    from.next();
    EXPECT_EQ(zel_lex_seek(from.lex(), 4), 4U);
    EXPECT_EQ(describe(from.next()), "257:b");
    EXPECT_EQ(zel_lex_seek(from.lex(), 0), 0U);
    const zel_token_t *again = from.next();
    EXPECT_EQ(describe(again), "257:a");
    EXPECT_EQ(again->line, 2U);
    EXPECT_EQ(again->offset, 0U);
}

TEST(Scanner, ANulByteStartsAWordAndIsLostBehindOne)
{
    scanner from("a\0b"s, plain);
    EXPECT_EQ(describe(from.next()), "256:a"); // read ahead, the NUL cannot be held
    EXPECT_EQ(describe(from.next()), "256:b");
    EXPECT_EQ(from.next()->id, TOKEN_EOF);
    scanner lone("\0\0 c"s, plain);
    EXPECT_EQ(lone.next()->id, TOKEN_IDENT);
    EXPECT_EQ(describe(lone.next()), "256:c");
}

TEST(Scanner, AnyBytesInAnyModeComeToAnEnd)
{
    unsigned state = 1;
    std::string bytes;
    for (int n = 0; n < 3000; n++) {
        state = state * 1103515245U + 12345U;
        const unsigned pick = state >> 16;
        bytes += pick % 3 != 0 ? "\"'\\x#/*\n0 1\"a{.\0"[pick % 16] : static_cast<char>(pick >> 4);
    }
    for (unsigned flags = 0; flags < 256; flags++)
        EXPECT_EQ(scan(bytes, flags, colours).find("UNENDED"), std::string::npos) << flags;
}

} // namespace
