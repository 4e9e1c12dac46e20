// The formats as a build without libxml2 and json-glib has them: everything is written, and what
// cannot be read says so.

#include "exchange/json.h"
#include "exchange/sources.h"

#include <gtest/gtest.h>

namespace {

using namespace zel::exchange;

TEST(WithoutLibraries, AllIsWrittenAndTheRestIsRead)
{
    const source_guard source = zel_test::source_of(zel_test::awkward_source(1, false).make(10));
    export_request request;
    request.source = source.get();
    std::size_t read = 0;
    for (const format &row : formats()) {
        if (row.write == nullptr)
            continue;
        const std::string text = zel_test::written(request, row.name).front();
        EXPECT_GT(text.size(), 200U) << row.name;
        if (row.is_whole())
            continue;
        const auto texts = zel_test::found(row.name, text);
        read += texts.units.size();
        const std::string name = row.name;
        const std::string called = name == "ts"                ? "TS"
                                   : name == "tmx"             ? "TMX"
                                   : name == "tbx"             ? "TBX"
                                   : name.starts_with("xliff") ? "XLIFF"
                                                               : "";
        EXPECT_EQ(
            texts.wrong.text,
            called.empty() ? "" : "this lang-kit was built without libxml2 and reads no " + called);
        EXPECT_EQ(texts.units.empty(), !called.empty());
    }
    EXPECT_GT(read, 20U);
    fault wrong;
    EXPECT_FALSE(read_json("{}", 1, wrong));
    EXPECT_EQ(wrong.text, "this lang-kit was built without json-glib and reads no JSON");
}

} // namespace
