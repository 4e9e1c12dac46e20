#include "lex/lex-io.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <unistd.h>

#include "family/lex.h"
#include "lex/scan.h"
#include "working-dir.h"

using namespace scan_test;
using std::string_literals::operator""s;

namespace {

using zel_test::write_file;

zel_lex_buf_guard memory(const std::string &text)
{
    return zel_lex_buf_guard(
        zel_lex_buf_mem_new(text.data(), static_cast<std::uint32_t>(text.size())));
}

std::string rest(zel_lex_buf_t *buf)
{
    std::string out;
    for (int c = 0; (c = zel_lex_buf_next_char(buf)) != ZEL_LEX_EOF;)
        out += static_cast<char>(c);
    return out;
}

std::string counters(const zel_lex_buf_t *buf)
{
    return std::to_string(buf->position) + " " + std::to_string(buf->line) + ":" +
           std::to_string(buf->column);
}

TEST(Buffer, CountsWhatItHandsOut)
{
    const std::string text = "a\r\n\xff\n";
    const zel_lex_buf_guard buf = memory(text);
    EXPECT_EQ(counters(buf.get()), "0 1:0");
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), 'a');
    EXPECT_EQ(counters(buf.get()), "1 1:1");
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), '\n'); // the return before it is dropped
    EXPECT_EQ(counters(buf.get()), "3 2:0");
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), 255); // a byte, not a sign
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), '\n');
    EXPECT_EQ(counters(buf.get()), "5 3:0");
    EXPECT_EQ(buf->marker_line, 3U);
    for (std::uint64_t n = 1; n <= 3; n++) { // the end is read, and counted, again and again
        EXPECT_EQ(zel_lex_buf_next_char(buf.get()), ZEL_LEX_EOF);
        EXPECT_EQ(buf->position, 5 + n);
        EXPECT_EQ(buf->column, n);
    }
}

TEST(Buffer, HoldsOneCharacterThatIsCountedWhenItIsRead)
{
    const std::string text = "\n\rb";
    const zel_lex_buf_guard buf = memory(text);
    EXPECT_EQ(zel_lex_buf_look_ahead(buf.get()), '\n');
    EXPECT_EQ(zel_lex_buf_look_ahead(buf.get()), '\n');
    EXPECT_EQ(counters(buf.get()), "1 2:0");
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), '\n');
    EXPECT_EQ(counters(buf.get()), "1 2:0");
    EXPECT_EQ(zel_lex_buf_look_ahead(buf.get()), 'b');
    EXPECT_EQ(counters(buf.get()), "3 2:2");
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), 'b');
    EXPECT_EQ(zel_lex_buf_look_ahead(buf.get()), ZEL_LEX_EOF);
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), ZEL_LEX_EOF); // the end can be held
    EXPECT_EQ(counters(buf.get()), "4 2:3");
}

TEST(Buffer, ANulByteIsReadButCannotBeHeld)
{
    const std::string text = "\0a\0b"s;
    const zel_lex_buf_guard buf = memory(text);
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), 0);
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), 'a');
    EXPECT_EQ(zel_lex_buf_look_ahead(buf.get()), 0);
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), 'b');
}

TEST(Buffer, SeekingDropsTheHeldCharacterAndKeepsTheLine)
{
    const std::string text = "ab\ncd";
    const zel_lex_buf_guard buf = memory(text);
    EXPECT_EQ(rest(buf.get()), text);
    zel_lex_buf_look_ahead(buf.get());
    EXPECT_EQ(zel_lex_buf_seek(buf.get(), 0), 0U);
    EXPECT_EQ(buf->position, 0U);
    EXPECT_EQ(buf->line, 2U);
    EXPECT_EQ(rest(buf.get()), text);
    EXPECT_EQ(zel_lex_buf_seek(buf.get(), 4), 4U);
    EXPECT_EQ(rest(buf.get()), "d");
}

TEST(Buffer, SeekingBeyondTheEndOfAMemoryBlockIsTheEnd)
{
    const std::string text = "ab";
    const zel_lex_buf_guard buf = memory(text);
    zel_lex_buf_seek(buf.get(), 1000);
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), ZEL_LEX_EOF);
}

TEST(Buffer, ReadsABareOneAndAnotherBlock)
{
    const zel_lex_buf_guard buf(zel_lex_buf_new());
    ASSERT_NE(buf, nullptr);
    EXPECT_EQ(buf->kind, 0U);
    EXPECT_EQ(buf->capacity, 8192U);
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), ZEL_LEX_EOF);
    const std::string first = "one\n";
    const std::string second = "two";
    zel_lex_buf_mem_set_buf(buf.get(), first.data(), 4);
    EXPECT_EQ(rest(buf.get()), "one\n");
    zel_lex_buf_look_ahead(buf.get());
    zel_lex_buf_mem_set_buf(buf.get(), second.data(), 3);
    EXPECT_EQ(buf->position, 0U);
    EXPECT_EQ(buf->line, 1U);
    EXPECT_EQ(rest(buf.get()), "two");
    zel_lex_buf_mem_set_buf(buf.get(), nullptr, 0);
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), ZEL_LEX_EOF);
}

// --- files ---------------------------------------------------------------------------------------

class FileBuffer : public zel_test::working_dir {
protected:
    static std::string long_text()
    {
        std::string text;
        for (int n = 0; n < 5000; n++)
            text += "line " + std::to_string(n) + (n % 7 ? "\n" : " of many\n");
        return text;
    }
    std::string keep(const std::string &text)
    {
        write_file("in.txt", text);
        return "in.txt";
    }
};

TEST_F(FileBuffer, ReadsSeamlesslyBeyondItsBlock)
{
    const std::string text = long_text();
    const zel_lex_buf_guard buf(zel_lex_buf_file_new(keep(text).c_str()));
    ASSERT_NE(buf, nullptr);
    EXPECT_EQ(buf->kind, 2U);
    EXPECT_STREQ(buf->file_name, "in.txt");
    EXPECT_EQ(rest(buf.get()), text);
    EXPECT_EQ(buf->line, 5001U);
    zel_lex_buf_seek(buf.get(), 8190);
    EXPECT_EQ(rest(buf.get()), text.substr(8190));
    zel_lex_buf_look_ahead(buf.get());
    zel_lex_buf_seek(buf.get(), 3);
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), text[3]);
}

TEST_F(FileBuffer, EveryTokenMayStraddleTheBlock)
{
    const std::string tokens = "word \"str\\n\\x41\" 0x1F 3.14 <= && /* c */ // d\n 'c' red\r\n}";
    const Keytab table[] = {{nullptr, 0}, {"red", 20001}, {nullptr, 0}};
    const unsigned flags = LEX_NEWLINE_SPACE | LEX_ESCAPES;
    for (std::size_t blanks = 8192 - tokens.size() - 1; blanks <= 8193; blanks++) {
        const std::string text = std::string(blanks, ' ') + tokens;
        write_file("in.txt", text);
        const scanner file(scanner::from_file{"in.txt"}, flags, table);
        ASSERT_EQ(all_tokens(file, with_place), scan_places(text, flags, table)) << blanks;
    }
}

TEST_F(FileBuffer, CarriageReturnsAtTheEdgeOfABlock)
{
    for (std::size_t size = 8189; size <= 8194; size++) {
        write_file("in.txt", std::string(size, 'x') + "\r\r\n\r\ny");
        const zel_lex_buf_guard buf(zel_lex_buf_file_new("in.txt"));
        EXPECT_EQ(rest(buf.get()), std::string(size, 'x') + "\n\ny") << size;
        EXPECT_EQ(buf->line, 3U);
    }
}

TEST_F(FileBuffer, AMissingFileIsLogged)
{
    zel_test::log_capture log;
    EXPECT_EQ(zel_lex_buf_file_new("no/such.txt"), nullptr);
    EXPECT_EQ(log.text(), "zel_lex_buf_file_new: ERROR open file >no/such.txt<\n");
}

TEST_F(FileBuffer, WithoutAPathThereIsNothingOpen)
{
    const zel_lex_buf_guard buf(zel_lex_buf_file_new(nullptr));
    ASSERT_NE(buf, nullptr);
    EXPECT_EQ(zel_lex_buf_file_get_fp(buf.get()), nullptr);
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), ZEL_LEX_EOF);
    EXPECT_EQ(zel_lex_buf_file_get_fp(nullptr), nullptr);
}

TEST_F(FileBuffer, ABorrowedStreamStaysOpen)
{
    std::FILE *stream = std::fopen(keep("abc\ndef").c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    std::fseek(stream, 2, SEEK_SET);
    zel_lex_buf_t *buf = zel_lex_buf_file_new(nullptr);
    zel_lex_buf_file_set_fp(buf, stream);
    EXPECT_EQ(zel_lex_buf_file_get_fp(buf), stream);
    EXPECT_EQ(counters(buf), "0 1:0");
    EXPECT_EQ(rest(buf), "c\ndef");
    zel_lex_buf_free(buf);
    EXPECT_EQ(std::fseek(stream, 1, SEEK_SET), 0);
    EXPECT_EQ(std::fgetc(stream), 'b');
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(FileBuffer, FollowsAGrowingFile)
{
    const zel_lex_buf_guard buf(zel_lex_buf_file_new(keep("ab").c_str()));
    EXPECT_EQ(zel_lex_buf_file_set_tail(nullptr, 1), 1);
    EXPECT_EQ(zel_lex_buf_file_set_tail(buf.get(), 1), 0);
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), 'a');
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), 'b');
    std::thread writer([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        std::FILE *more = std::fopen("in.txt", "ab");
        std::fputs("cd", more);
        std::fclose(more);
    });
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), 'c');
    writer.join();
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), 'd');
    EXPECT_EQ(zel_lex_buf_file_set_tail(buf.get(), 0), 0);
    EXPECT_EQ(zel_lex_buf_next_char(buf.get()), ZEL_LEX_EOF);
}

TEST_F(FileBuffer, ADirectoryIsNoText)
{
    const zel_lex_buf_guard buf(zel_lex_buf_file_new("."));
    EXPECT_EQ(buf, nullptr);
}

// --- the buffer of a scanner ---------------------------------------------------------------------

// A file whose end the system does not let us see is not one that has ended.
TEST_F(FileBuffer, TellsAnErrorFromTheEnd)
{
    int left = 2;
    const auto give = [](void *blocks, char *data, std::size_t size) -> ssize_t {
        errno = EIO;
        return --*static_cast<int *>(blocks) < 0
                   ? -1
                   : (std::memset(data, 'x', size), static_cast<ssize_t>(size));
    };
    const zel_lex_buf_guard buf(zel_lex_buf_file_new(nullptr));
    EXPECT_EQ(zel_lex_buf_read_failed(buf.get()), 0) << "no file";
    std::FILE *broken = fopencookie(&left, "r", {give, nullptr, nullptr, nullptr});
    zel_lex_buf_file_set_fp(buf.get(), broken);
    int read = 0;
    while (zel_lex_buf_next_char(buf.get()) == 'x')
        ++read;
    EXPECT_GT(read, 0);
    EXPECT_EQ(zel_lex_buf_read_failed(buf.get()), 1);
    std::fclose(broken);

    write_file("whole", "xx");
    const zel_lex_buf_guard whole(zel_lex_buf_file_new("whole"));
    while (zel_lex_buf_next_char(whole.get()) == 'x')
        ;
    EXPECT_EQ(zel_lex_buf_read_failed(whole.get()), 0);
    EXPECT_EQ(zel_lex_buf_read_failed(nullptr), 0);
}

TEST_F(FileBuffer, ClearingReloadsAFileAtItsStreamAndEmptiesAMemoryBlock)
{
    const std::string text = std::string(8192, ' ') + "next";
    const scanner file(scanner::from_file{keep("word" + text.substr(4)).c_str()}, 0);
    EXPECT_EQ(describe(file.next()), "256:word");
    zel_lex_buf_clear(file.lex(), file.buf());
    EXPECT_EQ(zel_current_token(file.lex())->id, 0);
    EXPECT_EQ(describe(file.next()), "256:next");

    const scanner block("\"one\" two", 0);
    EXPECT_EQ(describe(block.next()), "257:one");
    zel_lex_buf_clear(block.lex(), block.buf());
    EXPECT_EQ(block.next()->id, TOKEN_EOF);
}

TEST_F(FileBuffer, ReleasingDetachesItFromTheScanner)
{
    const zel_lex_guard lex(zel_lex_new(nullptr, 0));
    zel_lex_set_buf(lex.get(), zel_lex_buf_file_new(keep("a b").c_str()));
    EXPECT_EQ(describe(zel_next_token(lex.get())), "256:a");
    EXPECT_EQ(describe(zel_token_look_ahead(lex.get(), 1)), "256:b");
    zel_lex_free_buf(lex.get());
    EXPECT_EQ(zel_lex_get_buf(lex.get()), nullptr);
    EXPECT_EQ(zel_current_token(lex.get())->id, 0);
    EXPECT_EQ(lex->ahead->id, 0);
    zel_lex_free_buf(lex.get()); // and again does no harm
    zel_lex_buf_free(nullptr);
}

TEST_F(FileBuffer, PrintsToStandardOutput)
{
    EXPECT_EQ(zel_test::capture_stdout([] { EXPECT_EQ(scf_printf("%s %d\n", "line", 7), 0); }),
              "line 7\n");
}

} // namespace
