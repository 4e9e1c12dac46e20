#include "langlib/lang.h"

#include "handles.h"
#include "support/info.h"

using namespace langlib_test;
using zel_test::log_capture;

namespace {

constexpr char small_file[] = "GROUP main Open { \"Ouvrir\" } Close { default \"Close it\" } "
                              "Empty { } \"\" { \"nameless\" } bytes { \"\xFF\xFE\" }";

} // namespace

class LangLookup : public loading {};

TEST_F(LangLookup, AnswersWithTheItemBeforeALoad)
{
    const char *item = "Open";
    log_capture log;
    EXPECT_EQ(lang_get_string("main", item), item);
    EXPECT_EQ(lang_check_string("main", item), 0);
    EXPECT_EQ(log.text(), "");
}

TEST_F(LangLookup, TranslatesAndLogsWhatIsMissing)
{
    load_process_wide(small_file);
    log_capture log;
    EXPECT_STREQ(_lang_get_string("main", "Open", "a.c", 1), "Ouvrir");
    EXPECT_STREQ(_lang_tooltip("main", "Close", "a.c", 2), "Close it");
    EXPECT_STREQ(_lang_str("main", "bytes", "a.c", 2), "\xFF\xFE");
    EXPECT_EQ(log.text(), "");

    const char *item = "Save";
    EXPECT_EQ(_lang_get_str(nullptr, "main", item, "a.c", 3), item);
    EXPECT_EQ(_lang_get_string("Main", "Open", "a.c", 4), std::string("Open"));
    EXPECT_EQ(lang_check_string("main", "Open"), 1);
    EXPECT_EQ(lang_check_string("main", item), 0);
    const char *valueless = "Empty";
    EXPECT_EQ(_lang_get_string("main", valueless, "a.c", 5), valueless);
    EXPECT_EQ(log.text(),
              "lang_get_string: INFO not translated file a.c line 3 missing ->main<>Save<-\n"
              "lang_get_string: INFO not translated file a.c line 4 missing ->Main<>Open<-\n"
              "lang_get_string: INFO not translated file (null) line 0 missing ->main<>Save<-\n"
              "lang_get_string: INFO not translated file a.c line 5 missing ->main<>Empty<-\n");
}

TEST_F(LangLookup, TellsWhatItFound)
{
    const handle_guard ordinary = load(small_file);
    const handle_guard import = load(small_file, 1);
    const auto ask = [](const handle_guard &handle, const char *item, std::int32_t found) {
        const char *text = __lang_get_str(handle.get(), "main", item, &found, "f", 1);
        return std::string(text == nullptr ? "null" : text) + " " + std::to_string(found);
    };
    EXPECT_EQ(ask(ordinary, "Open", 0), "Ouvrir 1");
    EXPECT_EQ(ask(ordinary, "Close", 0), "Close it 1");
    EXPECT_EQ(ask(ordinary, "None", 5), "None 0");
    EXPECT_EQ(ask(ordinary, "Empty", 5), "Empty 0");
    EXPECT_EQ(ask(import, "Open", 0), "Ouvrir 1");
    EXPECT_EQ(ask(import, "Close", 5), "null 5") << "default texts are not imported";
    EXPECT_EQ(ask(import, "None", 5), "null 5");
    EXPECT_EQ(ask(import, "Empty", 5), "null 5");
    import->loaded = 0;
    EXPECT_EQ(ask(import, "Open", 5), "Open 5");
}

TEST_F(LangLookup, TakesNamesOfAnyLengthAndNone)
{
    const std::string room(2047 - 5, 'x'); // with "main:" the longest key there is
    load_process_wide("GROUP main \"" + room + "\" { \"fits\" } \"" + room +
                      "y\" { \"too long\" }");
    EXPECT_STREQ(_lang_get_string("main", room.c_str(), "f", 1), "fits");
    EXPECT_STREQ(_lang_get_string("main", (room + "y").c_str(), "f", 1), "fits") << "cut to it";
    const std::string endless(100000, 'g');
    EXPECT_STREQ(_lang_get_string(endless.c_str(), "i", "f", 1), "i");
    EXPECT_STREQ(_lang_get_string("main", nullptr, "f", 1), "");
    EXPECT_STREQ(_lang_get_string(nullptr, "i", nullptr, 1), "i");
    EXPECT_EQ(lang_check_string("main", nullptr), 0);

    load_process_wide(small_file);
    EXPECT_STREQ(_lang_get_string("main", "", "f", 1), "nameless");
    EXPECT_STREQ(_lang_get_string("main", nullptr, "f", 1), "") << "no item is no empty one";
}

// Which of equal keys answers: the one that the bisection of the table meets first.
TEST_F(LangLookup, PicksAmongEqualKeysByBisection)
{
    load_process_wide("GROUP g k { \"1\" } k { \"2\" } a { \"3\" } k { \"4\" } z { \"5\" }");
    // Slots 1 to 5 hold a k k k z, mid of 0 and 7 is 3.
    EXPECT_STREQ(_lang_get_string("g", "k", "f", 1), "2");
    load_process_wide("GROUP g k { \"1\" } k { } ");
    // Slots 1 and 2; mid of 0 and 4 is 2, which has no text.
    EXPECT_STREQ(_lang_get_string("g", "k", "f", 1), "k");
}

TEST_F(LangLookup, CollectsInfoEntries)
{
    load_process_wide(small_file);
    zel_info_t *record = nullptr;
    record = lang_get_info(nullptr, &record, 3, 17, "main", "Open", "Not there");
    ASSERT_NE(record, nullptr);
    zel_info_t *moved = record;
    zel_info_t *again = lang_get_info(nullptr, &moved, 9, 18, "main", "Close", "Open");
    EXPECT_EQ(again, record);
    EXPECT_EQ(moved, nullptr);
    EXPECT_EQ(record->level, 0) << "the highest level is kept by others";
    ASSERT_EQ(zel_list_count(record->entries), 2);
    const auto *entry = static_cast<const zel_info_entry_t *>(record->entries->data);
    EXPECT_EQ(entry->level, 3u);
    EXPECT_EQ(entry->code, 17u);
    EXPECT_STREQ(entry->modul, "main");
    EXPECT_STREQ(entry->activity, "Ouvrir");
    EXPECT_STREQ(entry->msg, "Not there");
    EXPECT_STREQ(entry->o_activity, "Open");
    EXPECT_STREQ(entry->o_msg, "Not there");
    zel_info_free(record);
}
