// The catalogs of the machine's own programs, read and written, beside what the usual tool writes.

#include "exchange/new-source.h"
#include "exchange/po-like.h"
#include "exchange/po-message.h"
#include "exchange/po-read.h"
#include "test-support.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using zel_test::read_file;

std::string written_again(const std::string &catalog)
{
    zel::exchange::po_reader reader(catalog);
    zel::exchange::po_message message;
    std::string out;
    while (reader.next(message)) {
        out += out.empty() ? "" : "\n";
        append_po_message(out, message);
    }
    EXPECT_FALSE(reader.wrong()) << reader.wrong().line << ": " << reader.wrong().text;
    return out;
}

// An even choice of all compiled catalogs: LANG_TEST_CATALOGS says how many.
std::vector<std::string> catalogs()
{
    const char *wanted = std::getenv("LANG_TEST_CATALOGS");
    const std::size_t most = wanted == nullptr ? 240 : std::strtoul(wanted, nullptr, 10);
    std::vector<std::string> all;
    std::error_code ignored;
    for (const auto &entry : fs::recursive_directory_iterator("/usr/share/locale", ignored))
        if (entry.path().extension() == ".mo")
            all.push_back(entry.path());
    std::sort(all.begin(), all.end());
    std::vector<std::string> chosen;
    for (std::size_t at = 0; at < std::min(most, all.size()); ++at)
        chosen.push_back(all[at * all.size() / std::min(most, all.size())]);
    return chosen;
}

// What the usual tool makes of a compiled catalog; empty where it makes nothing.
std::string uncompiled(const std::string &path, const zel_test::temp_dir &dir)
{
    const std::string from = dir / "from.po";
    return std::system(("msgunfmt --no-wrap '" + path + "' -o " + from + " 2>/dev/null").c_str()) ==
                   0
               ? read_file(from)
               : std::string();
}

TEST(PoCatalogsSlow, ComeOverAndGoBackAsTheyWere)
{
    if (std::system("command -v msgunfmt >/dev/null") != 0)
        GTEST_SKIP() << "gettext is not installed";
    const zel_test::temp_dir dir;
    std::size_t count = 0;
    for (const std::string &path : catalogs()) {
        const std::string text = uncompiled(path, dir);
        zel::exchange::new_source made({});
        // Some have a header that no compiler would take today.
        if (text.empty() || made.take("x.po", text) || made.texts().empty())
            continue;
        zel::exchange::known_catalog like;
        EXPECT_FALSE(zel::exchange::read_known(text, like)) << path;
        zel::exchange::export_request request;
        request.source = made.source();
        request.languages = {made.texts().begin()->first};
        zel::exchange::exporter from(request);
        const zel::exchange::like_result back = zel::exchange::write_like(from, like);
        EXPECT_EQ(back.wrong.text, "") << path;
        EXPECT_EQ(back.changed + back.unknown + back.missing, 0U) << path;
        EXPECT_TRUE(back.text == written_again(text)) << path;
        ++count;
    }
    EXPECT_GT(count, catalogs().size() / 2);
}

TEST(PoCatalogsSlow, AreWrittenAsTheUsualToolWritesThem)
{
    if (std::system("command -v msgunfmt msgcat >/dev/null") != 0)
        GTEST_SKIP() << "gettext is not installed";
    const zel_test::temp_dir dir;
    std::size_t plurals = 0;
    std::size_t count = 0;
    for (const std::string &path : catalogs()) {
        const std::string from = dir / "from.po";
        const std::string theirs = dir / "theirs.po";
        // Some write one in an encoding that the tool refuses itself.
        if (std::system(("msgunfmt --no-wrap '" + path + "' -o " + from +
                         " 2>/dev/null && msgcat " + "--no-wrap --to-code=UTF-8 -o " + theirs +
                         " " + from + " 2>/dev/null")
                            .c_str()) != 0)
            continue;
        const std::string text = read_file(from);
        ++count;
        plurals += text.find("\nmsgid_plural ") == std::string::npos ? 0 : 1;
        // Not as EXPECT_EQ, which would print both.
        EXPECT_TRUE(written_again(text) == read_file(theirs)) << path;
    }
    RecordProperty("catalogs", static_cast<int>(count));
    RecordProperty("with_plurals", static_cast<int>(plurals));
    std::printf("%zu catalogs, %zu with plurals\n", count, plurals);
}

} // namespace
