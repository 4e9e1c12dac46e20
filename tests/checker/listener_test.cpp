// What a scan tells a listener: what is found, in pieces, or not read; and an application's own
// words for requests.

#include "checker/c-scan.h"

#include "source/item-index.h"
#include "test-support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char *parts[] = {"group", "item", "description", "symbol", "application"};
constexpr const char *causes[] = {"no literal", "goes on", "two values"};

// "LINE:COLUMN new|known group/item", "... pieces PART group/read/whole", "... unread PART CAUSE".
std::vector<std::string> told(const std::string &code, const zel::wrapper_words *words = nullptr)
{
    const zel_test::temp_dir dir;
    zel_test::write_file(dir / "a.c", code);
    std::vector<std::string> out;
    const auto add = [&](zel::place at, const std::string &text) {
        out.push_back(std::to_string(at.line) + ":" + std::to_string(at.column) + " " + text);
    };
    const auto part = [](zel::piece of) { return parts[static_cast<int>(of)]; };
    const zel::scan_listener listener{
        [&](const auto &one) {
            add(one.at,
                std::string(one.inserted ? "new " : "known ") + one.group + "/" + one.item->name);
        },
        [&](const auto &one) {
            add(one.at,
                std::string("unread ") + part(one.of) + " " + causes[static_cast<int>(one.cause)]);
        },
        [&](const auto &one) {
            add(one.at, std::string("pieces ") + part(one.of) + " " + one.group + "/" + one.read +
                            "/" + one.whole);
        }};
    const source_guard source(lang_alloc_group());
    zel::item_index index(source.get());
    const std::string printed = zel_test::capture_stdout([&] {
        EXPECT_EQ(zel::check_file(index, (dir / "a.c").c_str(), {0, nullptr, &listener, words}), 0);
    });
    EXPECT_EQ(printed, "");
    return out;
}

struct Code {
    const char *code;
    std::vector<std::string> told;
};
class Listener : public testing::TestWithParam<Code> {};

TEST_P(Listener, IsTold) { EXPECT_EQ(told(GetParam().code), GetParam().told); }

INSTANTIATE_TEST_SUITE_P(
    InPieces, Listener,
    testing::Values(
        Code{"x = lang_get_string(\"main\", \"Open \" \"file\");\n"
             "y = lang_tooltip(\"main\",\n  \"One\"\n  \"Two\" \"Three\");",
             {"1:28 new main/Open ", "1:36 pieces item main/Open /Open file", "3:2 new main/One",
              "4:2 pieces item main/One/OneTwoThree"}},
        Code{"#define NAME \"Open\"\nlang_get_string(\"main\", NAME \" it\") "
             "LANG_GET_STR(h(1), \"main\", \"A\" B)",
             {"2:24 new main/Open", "2:29 pieces item main/Open/Open it", "2:63 new main/A",
              "2:67 pieces item main/A/AB"}},
        Code{"lang_get_string(\"ma\" \"i\" \"n\", \"Open\")", {"1:21 pieces group ma/ma/main"}},
        Code{"lang_get(\"first \" \"second\", \"main\", \"Open\" \"file\")",
             {"1:18 pieces description /first /first second"}},
        Code{"lang_get(\"text\", \"main\", \"good \" \"pieces\")", {"1:25 new main/good pieces"}},
        // Inside a string it stands at the string; what stands in a piece is found, too.
        Code{"\n  run(\"lang_get_string(\\\"a\\\", \\\"b\\\" \"\n   \"\\\"c\\\")\");\n",
             {"2:6 new a/b", "2:6 pieces item a/b/bc"}},
        Code{
            "lang_tooltip(\"g\", \"i\" \"lang_tooltip(\\\"g\\\", \\\"j\\\")\")",
            {"1:18 new g/i", "1:22 new g/j", "1:22 pieces item g/i/ilang_tooltip(\"g\", \"j\")"}}));

// No request that the compiler sees differently is passed over in silence.
INSTANTIATE_TEST_SUITE_P(
    Unread, Listener,
    testing::Values(
        Code{" lang_get_string(\"g\", x ? \"a\" : \"b\")", {"1:1 unread item no literal"}},
        Code{"#define A \"a\"\nlang_get_string(\"g\", A ? \"a\" : \"b\")",
             {"2:21 new g/a", "2:0 unread item goes on"}},
        Code{"lang_tooltip(\"g\", R\"(a)\")", {"1:0 unread item no literal"}},
        Code{"lang_tooltip(\"g\", u8\"a\")", {"1:0 unread item no literal"}},
        Code{"lang_tooltip(\"g\", \"gr\\u00fcn\")", {"1:0 unread item no literal"}},
        Code{"lang_tooltip(\"g\", (\"a\"))", {"1:0 unread item no literal"}},
        Code{"lang_tooltip(\"g\", \"a\" + 1)", {"1:18 new g/a", "1:0 unread item goes on"}},
        Code{"lang_tooltip(\"g\", \"a\\x00z\")", {"1:0 unread item goes on", "1:18 new g/a"}},
        Code{"#define T(x) lang_tooltip(\"g\", x)", {"1:13 unread item no literal"}},
        Code{"lang_tooltip(GROUP, \"a\")", {"1:0 unread group no literal"}},
        Code{"lang_get(\"d\", \"g\", x ? \"a\" : \"b\")",
             {"1:0 unread item no literal", "1:19 new g/ab"}},
        Code{"lang_text(\"g\", \"a\" \"b\") lang_count(g, \"a|b\", n) "
             "lang_count(\"g\", \"a|b\", f(lang_text(\"g\", \"c\")))",
             {"1:15 new g/ab", "1:24 unread group no literal", "1:88 new g/c", "1:64 new g/a|b"}},
        Code{"#define A \"a\"\n#undef A\n#define A \"b\"\nlang_text(\"g\", A)",
             {"4:0 unread item two values", "4:15 new g/a"}},
        Code{"lang_get(d, \"g\", \"a\")", {"1:0 unread description no literal"}},
        Code{"lang_sym(\"s\", \"d\", \"g\", \"a\")", {"1:0 unread symbol no literal"}},
        Code{"lang_get_str(f(1, 2), \"g\", \"a\")", {"1:0 unread group no literal"}},
        Code{"#define A \"a\" \"b\"\nlang_tooltip(\"g\", A)",
             {"2:0 unread item two values", "2:18 new g/a"}},
        Code{"#define A \"a\"\n#undef A\n#define A \"b\"\nlang_tooltip(\"g\", A)",
             {"4:0 unread item two values", "4:18 new g/a"}},
        Code{"#define A \"a\"\n#define A \"a\"\nlang_tooltip(\"g\", A)", {"3:18 new g/a"}},
        Code{"#define ZEL_LANGUAGE_APP name 1", {"1:25 unread application no literal"}}));

INSTANTIATE_TEST_SUITE_P(NoRequest, Listener,
                         testing::Values(Code{
                             "// lang_get_string(\"a\", \"b\" \"c\")\n"
                             "ZEL_LANGUAGE_CHECK_STOP lang_tooltip(a)\n"
                             "ZEL_LANGUAGE_CHECK_START\n"
                             "my_lang_get_string(\"a\", \"b\" \"c\")\n"
                             "#define lang_tooltip(group, item) item\n"
                             "lang_get_info(h, r, 1, 2, \"a\", \"b\" \"c\", \"d\")",
                             {}}));

TEST(Wrapper, Keywords)
{
    for (const char *text : {"", "_", ":1", "_:", "_:0", "_:x", "_:1,2,3", "_:1 plural", "_:1,",
                             "9a:1", "a b:1", "_:1,2,3,4 plural", "_:65", "_:1 many"})
        EXPECT_FALSE(zel::parse_wrapper(text)) << text;
    const auto forms = zel::parse_wrapper("tr_n:2,3,1 plural");
    ASSERT_TRUE(forms);
    EXPECT_EQ(forms->word, "tr_n");
    EXPECT_THAT((std::vector{forms->item, forms->plural, forms->group}), ElementsAre(2, 3, 1));
    EXPECT_EQ(zel::parse_wrapper("my:2,1")->group, 1U);
}

TEST(Wrapper, Calls)
{
    const zel::wrapper_words words({*zel::parse_wrapper("_:1"), *zel::parse_wrapper("my_text:2,1"),
                                    *zel::parse_wrapper("tr_n:1,2 plural")},
                                   "main");
    EXPECT_THAT(told("#define _(text) \\\n  lang_get_string(\"main\", text)\n"
                     "const char *my_text(const char *group, const char *item);\n"
                     "puts(_(\"Open \" /* and */ \"it\"));\n"
                     "my_text(\"menu\", \"Quit\"); tr_n(\"%d tour\", \"%d tours\", f(1, 2));\n",
                     &words),
                ElementsAre("4:7 new main/Open it", "5:16 new menu/Quit",
                            "5:30 new main/%d tour|%d tours"));
    // In code only, in these letters only; inner calls count; what is no text is told.
    EXPECT_THAT(told("s = \"_(\\\"a\\\")\"; MY_TEXT(\"g\", \"b\"); _ (\"c\") _;\n"
                     "my_text(\"g\", _(\"d\")); _(lang_tooltip(\"g\", \"e\"), x);\n"
                     "_(text); my_text(g, \"f\"); _(\"open\"; _(\"h\"))",
                     &words),
                ElementsAre("1:38 new main/c", "2:15 new main/d", "2:0 unread item no literal",
                            "2:42 new g/e", "2:22 unread item no literal",
                            "3:0 unread item no literal", "3:9 unread group no literal",
                            "3:38 new main/h"));
}

} // namespace
