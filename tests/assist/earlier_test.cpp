// What a text was when it was translated, from the backups of its source.

#include "assist/earlier.h"

#include "source/lang-read.h"
#include "working-dir.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace zel_test;
using zel::assist::earlier_limits;
using zel::assist::earlier_texts;

// A source with one item: "ENGLISH|GERMAN", with " ready" behind it.
std::string file_with(const std::string &item)
{
    const std::size_t bar = item.find('|');
    const std::size_t end = item.find(" ready");
    const bool is_ready = end != item.npos;
    return "GROUP \"g\" { ITEM \"name\" { USED YES READY " + std::string(is_ready ? "1" : "0") +
           " LANG \"english\" { \"" + item.substr(0, bar) + "\" } LANG \"german\" { \"" +
           item.substr(bar + 1, is_ready ? end - bar - 1 : end) + "\" } } }\n";
}

class Earlier : public working_dir {
protected:
    void put(const std::string &item) { write_file("a.lang-src", file_with(item)); }
    static void keep(const std::string &date, const std::string &text)
    {
        write_file("a.lang-src-2024-" + date + "-00-00.bak", text);
    }
    // What the item's text was; the backups' number and a colon before it.
    static std::string was(earlier_limits limits = {})
    {
        earlier_texts texts(limits);
        const source_guard source = zel::read_source("a.lang-src", {}).source;
        texts.begin({"a.lang-src", "english", {"", "german"}}, *source);
        int turns = 0;
        while (texts.step({}) && turns < 1000)
            ++turns;
        EXPECT_LT(turns, 1000) << "no end";
        const auto *group = static_cast<const edit_t *>(source->groups->data);
        const auto *item = static_cast<const item_t *>(group->items->data);
        EXPECT_EQ(texts.of(*group, *item, 0), "") << "no language is translated into there";
        return std::to_string(texts.files()) + ":" + texts.of(*group, *item, 1);
    }
};

TEST_F(Earlier, TheTextOfTheOldestBackupThatHasTheTranslation)
{
    struct {
        const char *now;
        std::vector<std::string> before; // the newest first
        const char *was;
        const char *why;
    } const rows[] = {
        {"B|t", {"A|t"}, "1:A", "changed since"},
        {"B|t", {"B|t", "A|t"}, "2:A", "one save later"},
        {"B|t", {"C|t", "A|t", "A|u"}, "3:A", "changed twice"},
        {"B|t", {"B|t", "A|u", "A|t"}, "3:", "translated after the change"},
        {"A|t", {"B|t", "A|t"}, "2:", "changed back"},
        {"B|t ready", {"B|t", "A|t ready"}, "2:", "somebody has looked at it since"},
        {"B|t ready", {"B|t ready", "A|t ready"}, "2:A", "nobody has"},
        {"B|", {"A|", "A|t"}, "2:", "not translated"},
        {"B|t", {"A|t", "|t"}, "2:A", "the item's name is no text"},
        {"B|t", {"A|t\\n"}, "1:A", "the end of the last line is no difference"},
    };
    for (const auto &row : rows) {
        put(row.now);
        int day = 20;
        for (const std::string &item : row.before)
            keep("05-" + std::to_string(day--) + "-10", file_with(item));
        EXPECT_EQ(was(), row.was) << row.why;
        for (; day < 20; ++day)
            std::filesystem::remove("a.lang-src-2024-05-" + std::to_string(day + 1) +
                                    "-10-00-00.bak");
    }
}

TEST_F(Earlier, TheNewestAndOneOfEachDayAreReadAndWhatIsNoBackupIsNot)
{
    put("B|t");
    keep("05-03-11", file_with("B|t"));
    keep("05-03-10", file_with("A|u"));
    keep("05-02-11", "nonsense {");
    keep("05-01-11", "DEFAULT LANG \"german\"\n" + file_with("X|t"));
    keep("04-01-11", file_with("A|t"));
    for (const char *name : {"a.lang-src-2025-01-01-10-00-00.bak.kept", "a.lang-src-new.bak",
                             "b.lang-src-2025-01-01-10-00-00.bak"})
        write_file(name, file_with("Z|t"));
    EXPECT_EQ(was({1, 9}), "4:A");
    EXPECT_EQ(was({2, 9}), "5:");
    EXPECT_EQ(was({1, 3}), "3:");
    const std::size_t size = file_with("B|t").size();
    EXPECT_EQ(was({1, 9, size * 9, size - 1}), "1:") << "of another size";
}

} // namespace
