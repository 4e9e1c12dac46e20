// What makes a desktop find the editor and know its files, tried with the desktop's own tools.

#include "data/shell.h"
#include "working-dir.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using zel_test::in_root;
using zel_test::shell;
using zel_test::shell_run;
using zel_test::text_of;

bool installed(const std::string &program) { return shell("command -v " + program).status == 0; }

void expect_silent(const std::string &words)
{
    const shell_run run = shell(words);
    EXPECT_EQ(run.status, 0) << run.out << run.err;
}

TEST(Desktop, EntryIsValid)
{
    if (!installed("desktop-file-validate"))
        return zel_test::missing("desktop-file-validate");
    expect_silent("test -z \"$(desktop-file-validate --no-hints " +
                  in_root("data/lang-editor.desktop") + " | tee /dev/stderr)\"");
}

TEST(Desktop, MetadataIsValidAndOfThisVersion)
{
    if (!installed("appstreamcli"))
        return zel_test::missing("appstreamcli");
    const std::string file = "data/org.example.lang_editor.metainfo.xml";
    expect_silent("appstreamcli validate --no-net --pedantic " + in_root(file));
    const auto version =
        zel_test::matches(text_of("CMakeLists.txt"), R"(project\(lang VERSION ([0-9.]+))");
    ASSERT_EQ(version.size(), 1U);
    EXPECT_THAT(text_of(file), HasSubstr("<release version=\"" + version[0] + "\""));
}

// gio asks what update-mime-database has made of the definition.
TEST(Desktop, ASourceHasItsType)
{
    if (!installed("update-mime-database") || !installed("gio"))
        return zel_test::missing("update-mime-database or gio");
    const zel_test::temp_dir dir;
    const std::string types = dir / "mime";
    std::filesystem::create_directories(types + "/packages");
    std::filesystem::copy(in_root("data/lang-source.xml"), types + "/packages/lang-source.xml");
    std::filesystem::copy(in_root("examples/notes.lang-src"), dir / "notes.lang-src");
    expect_silent("update-mime-database " + types + " 2>/dev/null");
    const shell_run run = shell("XDG_DATA_HOME=" + dir.path() +
                                " gio info -a standard::content-type " + (dir / "notes.lang-src"));
    EXPECT_THAT(run.out, HasSubstr("standard::content-type: text/x-lang-source"));
    EXPECT_THAT(text_of("data/lang-editor.desktop"), HasSubstr("MimeType=text/x-lang-source;"));
}

TEST(Desktop, IconsHaveTheSizeOfTheirFolders)
{
    for (const unsigned size : {16U, 22U, 24U, 32U, 48U, 64U, 128U, 256U}) {
        const std::string side = std::to_string(size);
        std::string path = "data/icons/hicolor/" + side;
        path += "x" + side + "/apps/lang-editor.png";
        const std::string png = text_of(path);
        ASSERT_GE(png.size(), 24U) << path;
        const auto number = [&](std::size_t at) {
            return static_cast<unsigned char>(png[at]) * 256U +
                   static_cast<unsigned char>(png[at + 1]);
        };
        EXPECT_EQ(png.substr(1, 3), "PNG");
        EXPECT_EQ(number(18), size);
        EXPECT_EQ(number(22), size);
    }
}

} // namespace
