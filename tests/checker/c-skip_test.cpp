#include "checker/c-skip.h"

#include "app/global.h"
#include "checker/c-scan.h"
#include "test-support.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

// Pieces of which a careless jump would lose its place: half words, comment ends, numbers that run
// into words, carriage returns and NUL bytes anywhere. Each ends at a "~".
const std::string pieces =
    "lang_get_string(\"g\", \"i\")~lang_get(\"d\", \"g\", NAME)~lang_~la~ng_tooltip~"
    "LANG_TOOLTIP~(\"g\",\"x\")~zel_language_check_stop~ZEL_LANGUAGE_CHECK_START~"
    "#define NAME \"v\"~#define NAME~#define ~# define~#~#else~#define F(x) 1~#define\\\n~"
    "define~ZEL_LANGUAGE_APP~\"a\" \"1\"~NAME~zel~\"~'~'\"'~'\\''~\\~/~*~//~/*~*/~/* x */~"
    "// lang_get_string(\"n\",\"n\")\n~0~0x~1.5e~08~.~=~<~+~!~&~|~-~>~^~@~$~,~;~(~)~ ~\t~\n~"
    "\r~\r\n~NUL~\xe4~word~l~lan~g~_";

// So many pieces, one after the other.
std::string pick(std::mt19937 &random, unsigned long count)
{
    std::vector<std::string> all;
    std::istringstream in(pieces);
    for (std::string piece; std::getline(in, piece, '~');)
        all.push_back(piece == "NUL" ? std::string(1, '\0') : piece);
    std::string text;
    for (; count != 0; --count)
        text += all[random() % all.size()];
    return text;
}

// What check_parse prints and where it puts the items; with a reader of our own nothing is jumped.
std::string outcome(const std::string &text, bool jump)
{
    struct reader {
        const std::string &text;
        std::size_t at;
    } source{text, 0};
    const zel_lex_guard lex(zel::new_check_scanner());
    const zel_lex_buf_guard buffer(
        zel_lex_buf_mem_new(text.data(), static_cast<std::uint32_t>(text.size())));
    const auto next = [](zel_lex_buf_t *, void *context) -> int {
        auto *from = static_cast<reader *>(context);
        return from->at == from->text.size() ? ZEL_LEX_EOF
                                             : static_cast<unsigned char>(from->text[from->at++]);
    };
    if (!jump)
        zel_lex_buf_set_read_char(buffer.get(), next, &source);
    zel_lex_set_buf(lex.get(), buffer.get());
    const symtab_guard symbols(symtab_new());
    source_guard root(lang_alloc_group());
    std::string printed =
        zel_test::capture_stdout([&] { check_parse(root.get(), symbols.get(), lex.get(), "a.c"); });
    return printed + root->app + " line " + std::to_string(buffer->line) + " column " +
           std::to_string(buffer->column) + " at " + std::to_string(buffer->position);
}

TEST(SkipSlow, ChangesNothing)
{
    std::mt19937 random(1);
    for (int round = 0; round < 4000; ++round) {
        const std::string text = pick(random, 1 + random() % 40);
        ASSERT_EQ(outcome(text, true), outcome(text, false)) << testing::PrintToString(text);
    }
}

// The same text as a file, whose blocks end anywhere.
TEST(Skip, ChangesNothingAtTheEndsOfBlocks)
{
    const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
    std::mt19937 random(2);
    for (int round = 0; round < 60; ++round) {
        const std::string blanks(8150 + random() % 40, ' ');
        const std::string text = blanks + pick(random, 20);
        zel_test::write_file("a.c", text);
        source_guard root(lang_alloc_group());
        const std::string printed =
            zel_test::capture_stdout([&] { check_c_file(root.get(), "a.c"); });
        const std::string expected = "check c file >a.c<\n" + outcome(text, false);
        ASSERT_EQ(printed + root->app, expected.substr(0, expected.rfind(" line ")))
            << testing::PrintToString(text);
    }
}

} // namespace
