#include "checker/c-skip.h"

#include "app/global.h"
#include "checker/c-scan.h"
#include "family/lex.h"
#include "rows.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

// One of the pieces of code that the table holds.
const std::string &piece(std::uint_fast32_t number)
{
    static const std::vector<std::string> pieces = [] {
        std::vector<std::string> all;
        for (const zel_test::row &row : zel_test::rows_of("checker/scan.rows", "pieces"))
            all.insert(all.end(), row.texts.begin(), row.texts.end());
        return all;
    }();
    return pieces[number % pieces.size()];
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
        std::string text;
        for (auto n = 1 + random() % 40; n != 0; --n)
            text += piece(random());
        ASSERT_EQ(outcome(text, true), outcome(text, false)) << testing::PrintToString(text);
    }
}

// The same text as a file, whose blocks end anywhere.
TEST(Skip, ChangesNothingAtTheEndsOfBlocks)
{
    const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
    std::mt19937 random(2);
    for (int round = 0; round < 60; ++round) {
        std::string text(8150 + random() % 40, ' ');
        for (unsigned n = 20; n != 0; --n)
            text += piece(random());
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
