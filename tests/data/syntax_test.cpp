// The syntax files of editors, each tried on the example.

#include "data/shell.h"
#include "working-dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using zel_test::in_root;
using zel_test::matches;
using zel_test::shell;
using zel_test::text_of;

TEST(Syntax, EveryKeywordIsInEveryFile)
{
    const auto words =
        matches(text_of("src/source/source-grammar.cpp"), R"re(\{"([a-z_0-9]+)", key_)re");
    EXPECT_EQ(words.size(), 30U);
    for (const char *file :
         {"vim/syntax/lang-src.vim", "lang-src.lang", "lang-src.tmLanguage.json"})
        for (const std::string &word : words)
            EXPECT_FALSE(
                matches(text_of(std::string("data/syntax/") + file), "[ >(|](" + word + ")[ <)|\n]")
                    .empty())
                << file << " lacks " << word;
}

TEST(Syntax, VimSeesWhatStandsThere)
{
    if (shell("vim --version | grep -q +syntax").status != 0)
        return zel_test::missing("vim");
    const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
    zel_test::write_file("a.lang-src", "GROUP \"g\" { // \"no\"\n"
                                       "item \"%s\\n\\z \\\"%d\" { TYP 12 /* yes */\n"
                                       "USED YES } }\n");
    zel_test::write_file("try.vim", R"(
filetype plugin on
syntax on
edit a.lang-src
call writefile([&filetype], 'out')
for at in [[1, 1], [1, 7], [1, 13], [2, 1], [2, 7], [2, 9], [2, 11], [2, 16], [2, 23], [2, 27], [2, 34], [3, 1], [3, 6]]
  call writefile([synIDattr(synID(at[0], at[1], 1), 'name')], 'out', 'a')
endfor
quit!
)");
    EXPECT_EQ(shell("vim -N -u NONE -i NONE -es --cmd 'set rtp^=" + in_root("data/syntax/vim") +
                    "' -S try.vim")
                  .status,
              0);
    EXPECT_EQ(zel_test::read_file("out"),
              "lang-src\nlangSrcBlock\nlangSrcString\nlangSrcComment\nlangSrcBlock\nlangSrcFormat\n"
              "langSrcEscape\nlangSrcBadEscape\nlangSrcFormat\nlangSrcAttribute\nlangSrcNumber\n"
              "langSrcComment\nlangSrcAttribute\nlangSrcValue\n");
}

TEST(Syntax, DefinitionOfGtkSourceViewIsValid)
{
    const auto schema = shell("ls /usr/share/gtksourceview-*/language-specs/language2.rng");
    if (schema.status != 0)
        return zel_test::missing("language2.rng of GtkSourceView");
    const auto run =
        shell("xmllint --noout --relaxng " + schema.out.substr(0, schema.out.find('\n')) + " " +
              in_root("data/syntax/lang-src.lang"));
    EXPECT_EQ(run.status, 0) << run.err;
}

// The patterns of the grammar, put on the example line by line: nothing of it is left without a
// name but braces and blanks.
TEST(Syntax, TheGrammarNamesAllOfTheExample)
{
    const auto run = shell(in_root("tests/data/try-grammar") + " " +
                           in_root("data/syntax/lang-src.tmLanguage.json") + " " +
                           in_root("examples/notes.lang-src"));
    EXPECT_EQ(run.status, 0) << run.err;
}

} // namespace
