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
    const std::size_t most = wanted == nullptr ? 80 : std::strtoul(wanted, nullptr, 10);
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

// What a command of the usual tools writes to the file; empty where it refuses.
std::string made_by(const std::string &command, const std::string &file)
{
    return std::system((command + " -o " + file + " 2>/dev/null").c_str()) == 0 ? read_file(file)
                                                                                : std::string();
}

TEST(PoCatalogsSlow, ComeOverAndGoBackAsTheUsualToolWritesThem)
{
    if (std::system("command -v msgunfmt msgcat >/dev/null") != 0)
        GTEST_SKIP() << "gettext is not installed";
    const zel_test::temp_dir dir;
    const std::string from = dir / "from.po";
    const std::vector<std::string> all = catalogs();
    std::size_t written = 0;
    std::size_t count = 0;
    for (const std::string &path : all) {
        const std::string text = made_by("msgunfmt --no-wrap '" + path + "'", from);
        if (text.empty())
            continue;
        const std::string again = written_again(text);
        // A catalog's own spelling of UTF-8 stays; the tool keeps it where it need not convert.
        const bool is_utf8 = text.find("charset=utf-8") != std::string::npos;
        const std::string theirs =
            made_by(std::string("msgcat --no-wrap ") + (is_utf8 ? "" : "--to-code=UTF-8 ") + from,
                    dir / "theirs.po");
        // Some are in an encoding that the tool refuses itself. EXPECT_EQ would print both.
        EXPECT_TRUE(theirs.empty() || again == theirs) << path;
        written += theirs.empty() ? 0 : 1;
        zel::exchange::new_source made({});
        // Some have a header that no compiler would take today.
        if (made.take("x.po", text) || made.texts().empty())
            continue;
        zel::exchange::known_catalog like;
        EXPECT_FALSE(zel::exchange::read_known(text, like)) << path;
        zel::exchange::export_request request;
        request.source = made.source();
        request.languages = {made.texts().begin()->first};
        zel::exchange::exporter exporter(request);
        const zel::exchange::like_result back = zel::exchange::write_like(exporter, like);
        EXPECT_EQ(back.wrong.text, "") << path;
        EXPECT_EQ(back.changed + back.unknown + back.missing, 0U) << path;
        EXPECT_TRUE(back.text == again) << path;
        ++count;
    }
    EXPECT_GT(written, all.size() / 2);
    EXPECT_GT(count, all.size() / 2);
}

} // namespace
