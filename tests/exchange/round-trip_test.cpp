// What goes out in a format and comes in again is what was there.

#include "exchange/json.h"
#include "exchange/sources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace zel::exchange;
using zel_test::awkward_source;
using zel_test::source_of;
using zel_test::written;

struct trip {
    const char *format;
    bool any_bytes;
};

class RoundTrip : public testing::TestWithParam<trip> {};

std::string whole(LangSource *source)
{
    export_request all;
    all.source = source;
    return written(all, "json").front();
}

TEST_P(RoundTrip, ChangesNothing)
{
    const auto &[format, any_bytes] = GetParam();
    for (unsigned seed = 0; seed < 30; ++seed) {
        const source_guard source = source_of(awkward_source(seed, any_bytes).make(40));
        const std::string before = whole(source.get());
        export_request request;
        request.source = source.get();
        request.comments = true;
        std::string said;
        import_request wishes;
        wishes.comments = true;
        wishes.guesses = true;
        wishes.hear = [&](const import_event &event) {
            said +=
                std::to_string(event.unit->line) + " " + event.before + " -> " + event.after + "\n";
        };
        importer into(source.get(), wishes);
        std::size_t texts = 0;
        for (const std::string &file : written(request, format)) {
            const fault wrong = into.take(*find_format(format), "?", file);
            EXPECT_FALSE(wrong) << wrong.line << ": " << wrong.text << "\n" << file;
            texts += file.size();
        }
        EXPECT_GT(texts, 2000U);
        EXPECT_EQ(said, "");
        EXPECT_EQ(into.changed(), 0U);
        EXPECT_EQ(whole(source.get()), before);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, RoundTrip,
                         testing::Values(trip{"po", false}, trip{"po", true}, trip{"ts", false},
                                         trip{"ts", true}, trip{"csv", false}, trip{"csv", true},
                                         trip{"xliff", false}, trip{"xliff", true},
                                         trip{"xliff2", false}, trip{"xliff2", true},
                                         trip{"tmx", false}),
                         [](const auto &param) {
                             return std::string(param.param.format) +
                                    (param.param.any_bytes ? "_ascii" : "_utf8");
                         });

// Every text of a source, as the writer of sources leaves it: without white space at the end.
std::vector<std::string> all_texts(LangSource *source)
{
    std::vector<std::string> out;
    export_request request;
    request.source = source;
    exporter(request).each_item([&](const outgoing_item &item) {
        for (const auto &one : item.texts)
            out.push_back(one.text.substr(0, one.text.find_last_not_of(" \t\n\r\v\f") + 1));
    });
    return out;
}

TEST(RoundTrip, EveryTextArrivesInASourceWithoutTexts)
{
    for (const char *format : {"po", "ts", "csv", "xliff", "xliff2"}) {
        const source_guard source = source_of(awkward_source(7, false).make(40));
        const auto texts = all_texts(source.get());
        export_request request;
        request.source = source.get();
        const auto files = written(request, format);
        for (edit_t *group : zel::each<edit_t>(source->groups))
            for (item_t *item : zel::each<item_t>(group->items)) {
                free_lang_entry_list(item->langs);
                item->langs = nullptr;
            }
        import_request wishes;
        wishes.guesses = true;
        wishes.hear = [&](const import_event &event) {
            EXPECT_TRUE(event.kind == import_kind::text || event.kind == import_kind::outdated);
        };
        importer into(source.get(), wishes);
        for (const std::string &file : files)
            EXPECT_FALSE(into.take(*find_format(format), "?", file)) << format;
        const auto arrived = all_texts(source.get());
        ASSERT_EQ(arrived.size(), texts.size());
        for (std::size_t at = 0; at < texts.size(); ++at)
            EXPECT_EQ(arrived[at], texts[at]) << format;
        EXPECT_GT(into.changed(), 50U) << format;
    }
}

TEST(RoundTrip, JsonGivesTheSameSource)
{
    for (unsigned seed = 0; seed < 30; ++seed) {
        const source_guard source = source_of(awkward_source(seed, seed % 2 == 1).make(40));
        export_request request;
        request.source = source.get();
        const std::string text = written(request, "json").front();
        fault wrong;
        const source_guard again = read_json(text, 1, wrong);
        ASSERT_TRUE(again) << wrong.line << ": " << wrong.text;
        EXPECT_EQ(whole(again.get()), whole(source.get()));
        request.source = again.get();
        EXPECT_EQ(written(request, "json").front(), text);
        EXPECT_EQ(again->item_count, 40U);
    }
}

// Two items of one name: only the first is found, so only that one goes out.
TEST(RoundTrip, AnItemThatIsThereTwiceGoesOutOnce)
{
    const source_guard source =
        source_of("define file \"f\" lang \"english\" 1 1 1\n"
                  "GROUP \"g\" { ITEM \"a\" { USED YES LANG \"english\" { \"1\" } }"
                  " ITEM \"a\" { USED YES LANG \"english\" { \"2\" } }"
                  " ITEM \"b\" { USED NO LANG \"english\" { \"3\" } } }"
                  "GROUP \"g\" { ITEM \"c\" { USED YES LANG \"english\" { \"4\" } } }");
    export_request request;
    request.source = source.get();
    exporter from(request);
    std::string seen;
    const auto note = [&](const outgoing_item &item) { seen += item.texts.front().text; };
    from.each_item(note);
    EXPECT_EQ(seen, "1");
    EXPECT_EQ(from.repeated(), 2U);
    request.unused = true;
    seen.clear();
    exporter(request).each_item(note);
    EXPECT_EQ(seen, "13");
    request.languages = {"french"};
    EXPECT_EQ(exporter(request).wrong().text, "no language \"french\" is defined");
}

} // namespace
