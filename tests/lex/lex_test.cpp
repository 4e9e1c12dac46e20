#include "lex/lex.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "lex/lex-misc.h"
#include "lex/scan.h"
#include "locales.h"

using namespace scan_test;
using std::string_literals::operator""s;

namespace {

constexpr unsigned plain = LEX_NEWLINE_SPACE;
constexpr unsigned escapes = LEX_NEWLINE_SPACE | LEX_ESCAPES;

const Keytab colours[] = {{nullptr, 0}, {"red", 20003},    {"green", 20001},    {"Blue", 20002},
                          {"a", 20004}, {"violet", 20005}, {"indigo_7", 20006}, {nullptr, 0}};

// --- single tokens -------------------------------------------------------------------------------

TEST(Scanner, OperatorsTakeTheSecondCharacterOnlyWhenItBelongsToThem)
{
    EXPECT_EQ(scan("a<=b", plain), "256:a 267 256:b -1");
    EXPECT_EQ(scan("a< =b", plain), "256:a 60 61 256:b -1");
    EXPECT_EQ(scan("== != >= <= && || ++ --", plain), "264 265 266 267 268 269 270 271 -1");
    EXPECT_EQ(scan("= ! > < & | + -", plain), "61 33 62 60 38 124 43 45 -1");
    EXPECT_EQ(scan("===", plain), "264 61 -1");
    EXPECT_EQ(scan("a->b", plain), "256:a 45 62 256:b -1");
    EXPECT_EQ(scan("+=", plain), "43 61 -1");
}

TEST(Scanner, PunctuationIsItsOwnCode)
{
    EXPECT_EQ(scan("$%()*,.:;?[\\]{}~#/", plain),
              "36 37 40 41 42 44 46 58 59 63 91 92 93 123 125 126 35 47 -1");
    EXPECT_EQ(scan("'", plain), "39 -1");
}

TEST(Scanner, NumbersBySpelling)
{
    EXPECT_EQ(scan("0 7 42 0x1F 0X1f 017 3.14", plain),
              "258:0 258:7 258:42 260:0x1F 260:0x1f 259:017 261:3.14 -1");
    EXPECT_EQ(scan("08", plain), "258:0 258:8 -1");
    EXPECT_EQ(scan("0178", plain), "259:017 258:8 -1");
    EXPECT_EQ(scan("0.5 0. 5. 1.2.3", plain), "261:0.5 261:0. 261:5. 261:1.2.3 -1");
    EXPECT_EQ(scan(".5", plain), "46 258:5 -1");
    EXPECT_EQ(scan("1e5", plain), "258:1 256:e5 -1");
    EXPECT_EQ(scan("-20", plain), "45 258:20 -1");
    EXPECT_EQ(scan("0xAgB", plain), "260:0xA 256:gB -1");
    EXPECT_EQ(scan("00", plain), "259:00 -1");
}

TEST(Scanner, OneKindForAllNumbersKeepsTheirText)
{
    EXPECT_EQ(scan("0 42 0X1F 017 3.14", plain | LEX_NUMBER_ONE_KIND),
              "262:0 262:42 262:0x1F 262:017 262:3.14 -1");
}

TEST(Scanner, WordsAreLettersDigitsUnderscoresAndHighBytes)
{
    EXPECT_EQ(scan("_a1 b_2c", plain), "256:_a1 256:b_2c -1");
    EXPECT_EQ(scan("gr\xc3\xb6\xc3\x9f"
                   "e \xff",
                   plain),
              "256:gr\xc3\xb6\xc3\x9f"
              "e 256:\xff -1");
    // What is no token of its own starts a word, and does not continue one.
    EXPECT_EQ(scan("^a @b `c", plain), "256:^a 256:@b 256:`c -1");
    EXPECT_EQ(scan("a@b^", plain), "256:a 256:@b 256:^ -1");
    EXPECT_EQ(scan("\x01z\x01", plain), "256:\x01z 256:\x01 -1");
}

TEST(Scanner, LineFeedsAreBlanksOrTokens)
{
    EXPECT_EQ(scan("a\n\nb", plain), "256:a 256:b -1");
    EXPECT_EQ(scan("a\n\nb", 0), "256:a 10 10 256:b -1");
    EXPECT_EQ(scan("a\r\nb\r\n", 0), "256:a 10 256:b 10 -1");
    EXPECT_EQ(scan("a\rb", 0), "256:ab -1"); // a carriage return is nowhere
}

TEST(Scanner, EmptyInputAndTheEndAgainAndAgain)
{
    scanner from("", plain);
    for (int n = 0; n < 3; n++)
        EXPECT_EQ(from.next()->id, TOKEN_EOF);
    EXPECT_EQ(scan(" \t\n", plain), "-1");
}

// --- comments ------------------------------------------------------------------------------------

TEST(Scanner, CommentsAreSkipped)
{
    EXPECT_EQ(scan("a/* b */c", plain), "256:a 256:c -1");
    EXPECT_EQ(scan("/* a /* b */ c */", plain), "256:c 42 47 -1"); // they do not nest
    EXPECT_EQ(scan("/***/a/**/b/*/*/c", plain), "256:a 256:b 256:c -1");
    EXPECT_EQ(scan("a // \" b\nc", plain), "256:a 256:c -1");
    EXPECT_EQ(scan("a / b", plain), "256:a 47 256:b -1");
    EXPECT_EQ(scan("a // b", plain), "256:a -1");
}

TEST(Scanner, TheLineFeedOfALineCommentIsPartOfIt)
{
    EXPECT_EQ(scan("a // b\nc\n", 0), "256:a 256:c 10 -1");
}

TEST(Scanner, AnOpenCommentEndsTheInput)
{
    EXPECT_EQ(scan("a /* b", plain), "256:a -1");
    EXPECT_EQ(scan("a /* b *", plain), "256:a -1");
    EXPECT_EQ(scan("/", plain), "47 -1");
    EXPECT_EQ(scan_places("a /* b\n c", plain), "256:a@1:0 -1@1:2"); // it stands where it began
}

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

TEST(Scanner, CommentsCanBeSwitchedOff)
{
    EXPECT_EQ(scan("a//b/*", plain | LEX_NO_COMMENTS), "256:a 47 47 256:b 47 42 -1");
}

// --- strings -------------------------------------------------------------------------------------

TEST(Scanner, StringsWithoutEscapes)
{
    EXPECT_EQ(scan("\"a b\"\"\" \"/* c */\"", plain), "257:a b 257: 257:/* c */ -1");
    EXPECT_EQ(scan(R"("a\n")", plain), R"(257:a\n -1)");
    EXPECT_EQ(scan(R"("a\" b)", plain), R"(257:a\ 256:b -1)"); // the backslash guards nothing
}

TEST(Scanner, StringsWithEscapes)
{
    EXPECT_EQ(scan(R"("\n\t\r\a\b\\\"")", escapes), "257:\n\t\r\a\b\\\" -1");
    EXPECT_EQ(scan(R"("\x41\X6a\xe2\x82\xac9")", escapes), "257:Aj\xe2\x82\xac"
                                                           "9 -1");
    EXPECT_EQ(scan("\"a\\\nb\"", escapes), "257:ab -1");
    EXPECT_EQ(scan("\"a\\\r\nb\"", escapes), "257:ab -1");
    // Behind a continued line one backslash is dropped with it: here the quote then ends the text.
    EXPECT_EQ(scan("\"a\\\n\\b\"", escapes), "257:ab -1");
    EXPECT_EQ(scan("\"a\\\n\\\" c", escapes), "257:a 256:c -1");
}

TEST(Scanner, AStringMayHoldANulByte)
{
    scanner from(R"("ab\0cd" e)", escapes);
    const zel_token_t *token = from.next();
    EXPECT_EQ(token->id, TOKEN_STRING);
    EXPECT_STREQ(token->lexeme, "ab");
    EXPECT_EQ(std::string(token->lexeme, token->length), "ab\0cd"s);
    EXPECT_EQ(describe(from.next()), "256:e");
}

TEST(Scanner, UnknownEscapesEndTheStringOrAreKept)
{
    EXPECT_EQ(scan(R"("C:\q" x "y")", escapes), "1:C: 257: x  256:y -1");
    EXPECT_EQ(scan(R"("C:\q\'" x)", escapes | LEX_KEEP_BAD_ESCAPES), R"(257:C:\q\' 256:x -1)");
}

TEST(Scanner, BrokenStrings)
{
    EXPECT_EQ(scan("\"ab\ncd\" e", escapes), "-4:ab 256:cd -1");
    EXPECT_EQ(scan("\"ab\r\ncd", escapes), "-4:ab 256:cd -1");
    for (const char *open : {"\"ab", "\"ab\\", "\"ab\\x", "\"ab\\x4", "\"ab\\\n", "\"ab\\\n\\"})
        EXPECT_EQ(scan(open, escapes), "-1") << open;
}

TEST(Scanner, CharacterConstants)
{
    EXPECT_EQ(scan("'a' ' ' '\xe9'", escapes), "263:97 263:32 263:233 -1");
    EXPECT_EQ(scan(R"('\n' '\t' '\v' '\f' '\r' '\0' '\"' '\'' '\a' '\b' '\\' '\q')", escapes),
              "263:10 263:9 263:11 263:12 263:13 263:0 263:34 263:39 263:7 263:8 263:92 263:92 -1");
}

TEST(Scanner, CharacterConstantWithoutItsQuote)
{
    scanner from("'ab c", escapes); // the b is lost with it
    EXPECT_EQ(describe(from.next()), "262:97");
    EXPECT_EQ(describe(from.next()), "256:c");
}

TEST(Scanner, CharacterConstantsNeedTheEscapesFlag)
{
    EXPECT_EQ(scan("'a'", plain), "39 256:a 39 -1");
}

// --- keywords ------------------------------------------------------------------------------------

TEST(Keywords, AreFoundWholeAndByCase)
{
    EXPECT_EQ(scan("red Red blue Blue reds re", plain, colours),
              "20003:red 256:Red 256:blue 20002:Blue 256:reds 256:re -1");
    EXPECT_EQ(scan("RED blue VIOLET Indigo_7 A", plain | LEX_KEYWORD_NOCASE, colours),
              "20003:RED 20002:blue 20005:VIOLET 20006:Indigo_7 20004:A -1");
    EXPECT_EQ(scan("\"red\"", plain, colours), "257:red -1");
}

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

TEST(Keywords, AreTheSameInEveryLocale)
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

TEST(Positions, ColumnsCountTheCharacterReadAhead)
{
    // A token behind a blank stands where it stands; one that touches a word, number or operator
    // before it counts the character that was read to end that one.
    EXPECT_EQ(scan_places("version 1;", plain), "256:version@1:0 258:1@1:8 59@1:10 -1@1:10");
    EXPECT_EQ(scan_places("a(b)", plain), "256:a@1:0 40@1:2 256:b@1:2 41@1:4 -1@1:4");
    EXPECT_EQ(scan_places("\"s\"x <y", plain), "257:s@1:0 256:x@1:3 60@1:5 256:y@1:7 -1@1:8");
    EXPECT_EQ(scan_places("==x", plain), "264@1:0 256:x@1:2 -1@1:4");
}

TEST(Positions, LinesAndTheLineFeedReadAhead)
{
    EXPECT_EQ(scan_places("a\n  b\n\n\"c\" d", plain),
              "256:a@1:0 256:b@2:2 257:c@4:0 256:d@4:4 -1@4:6");
    // The line feed that ended the word has been counted when its own token starts.
    EXPECT_EQ(scan_places("a\n\"c\"\n", 0), "256:a@1:0 10@2:0 257:c@2:0 10@2:3 -1@3:0");
    EXPECT_EQ(scan_places("/* 1\n2\n*/ a // b\nc", plain), "256:a@3:3 256:c@4:0 -1@4:2");
    EXPECT_EQ(scan_places("\"a\\\nb\" c", escapes), "257:ab@1:0 256:c@2:3 -1@2:5");
}

TEST(Positions, DroppedCarriageReturnsCountAsColumns)
{
    EXPECT_EQ(scan_places("\"a\"\r\n\r \"b\"\r\n", plain), "257:a@1:0 257:b@2:2 -1@3:0");
    EXPECT_EQ(scan_places("\"a\"\r\"b\"", plain), "257:a@1:0 257:b@1:3 -1@1:7");
}

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

std::string marker_place(const scanner &from, const zel_token_t *token)
{
    return describe(token) + "@" + zel_lex_linemarker_info(from.lex(), token);
}

std::string scan_markers(std::string_view text, unsigned flags = plain | LEX_LINE_MARKERS)
{
    scanner from(text, flags);
    return all_tokens(from, [&](const zel_token_t *token) { return marker_place(from, token); });
}

TEST(LineMarkers, NameTheFileAndTheLineOfWhatFollows)
{
    EXPECT_EQ(scan_markers("# 12 \"foo.c\"\n\na\n b\n"),
              "256:a@foo.c:13:0 256:b@foo.c:14:1 -1@foo.c:15:0");
    EXPECT_EQ(scan_markers("#line 7 \"x y.c\" 1 3 4\na\n", LEX_LINE_MARKERS),
              "256:a@x y.c:7:0 10@x y.c:8:0 -1@x y.c:8:0");
}

TEST(LineMarkers, EnterAndLeaveIncludedFiles)
{
    EXPECT_EQ(scan_markers("# 1 \"a.c\"\na\n# 12 \"b.h\" 1\n\"b\"\n# 30 \"c.h\" 1\n\"c\"\n"
                           "# 14 \"b.h\" 2\n\"b\"\n# 3 \"a.c\" 2\n\"a\" e"),
              "256:a@a.c:1:0 257:b@b.h:12:0 257:c@c.h:30:0 257:b@b.h:14:0 257:a@a.c:3:0 "
              "256:e@a.c:3:4 -1@a.c:3:6");
}

TEST(LineMarkers, OtherFlagsOnlyCount)
{
    EXPECT_EQ(scan_markers("# 1 \"a.c\"\n# 50 \"b.h\" 3\n\"x\" "), "257:x@a.c:50:0 -1@a.c:50:4");
    EXPECT_EQ(scan_markers("# 1 \"a.c\"\n# 50 \"b.h\" 14\n\"x\" "), "257:x@a.c:50:0 -1@a.c:50:4");
}

TEST(LineMarkers, AreTokensWithoutTheFlag)
{
    EXPECT_EQ(scan("# 1 \"a.c\"\nx", plain), "35 258:1 257:a.c 256:x -1");
    EXPECT_EQ(scan_markers("\"x\"\ny", plain), "257:x@1:0 256:y@2:0 -1@2:2");
}

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
    scanner from("\"" + std::string(9000, 'y') + "\" z", plain);
    scanner small("z", plain);
    const zel_token_t *big = from.next();
    zel_token_t *copy = small.next();
    EXPECT_EQ(lex_token_cpy(copy, big), 0);
    EXPECT_STREQ(copy->lexeme, big->lexeme);
    EXPECT_NE(copy->lexeme, big->lexeme);
    EXPECT_GE(copy->capacity, 9001);
    EXPECT_EQ(copy->id, TOKEN_STRING);
    EXPECT_EQ(lex_token_cpy(copy, from.next()), 0);
    EXPECT_EQ(with_place(copy), "256:z@1:9003");
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
        return ZEL_LEX_EOF;
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
