#include "langlib/lang-request.h"

#include "handles.h"

using namespace langlib_test;
using zel_test::log_capture;
using zel_test::take;

class LangRequest : public loading {
protected:
    LangRequest() { load_process_wide("GROUP g i { \"translated\" } GROUP i j { \"third\" }"); }

    // The text of the call, and the token behind it.
    static std::string asked(const std::string &call,
                             char *(*request)(zel_lex_t *) = zel_lex_lang_get_string)
    {
        const zel_lex_guard lex(zel_lex_new(nullptr, LEX_ESCAPES | LEX_NEWLINE_SPACE));
        const zel_lex_buf_guard buf(
            zel_lex_buf_mem_new(call.data(), static_cast<std::uint32_t>(call.size())));
        zel_lex_set_buf(lex.get(), buf.get());
        const std::string text = take(request(lex.get()));
        return text + " " + zel_next_token(lex.get())->lexeme;
    }
};

TEST_F(LangRequest, ReadsTwoStringsOrThree)
{
    EXPECT_EQ(asked("(\"g\", \"i\") x"), "translated x");
    EXPECT_EQ(asked("(\"g\", \"i\", \"j\") x", zel_lex_lang_get), "third x");
    log_capture log;
    EXPECT_EQ(asked("\n (\"g\", \"none\") x"), "none x");
    EXPECT_EQ(asked("(\"g\", \"\") x"), "(null) x");
    EXPECT_EQ(log.text(),
              "lang_get_string: INFO not translated file Memory line 2 missing ->g<>none<-\n"
              "lang_get_string: INFO not translated file Memory line 1 missing ->g<><-\n");
}

TEST_F(LangRequest, NamesWhatItExpected)
{
    const auto complaint = [](const char *call) {
        log_capture log;
        EXPECT_EQ(asked(call).substr(0, 6), "(null)") << call;
        return log.text();
    };
    const std::string error = "lex_lang_get: ERROR: ";
    EXPECT_EQ(complaint("\"g\""), error + "1:0 expected '('\n");
    EXPECT_EQ(complaint("(g"), error + "1:1 expected string\n");
    EXPECT_EQ(complaint("(\"g\" \"i\")"), error + "1:5 expected ','\n");
    EXPECT_EQ(complaint("(\"g\",\n i)"), error + "2:1 expected string\n");
    EXPECT_EQ(complaint("(\"g\", \"i\" }"), error + "1:10 expected ','\n");
    EXPECT_EQ(complaint("(\"g\", \"i\", )"), error + "1:11 expected string\n");
    EXPECT_EQ(complaint("(\"g\", \"i\", \"j\""), error + "1:14 expected ')'\n");
}
