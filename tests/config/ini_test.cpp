#include "config/ini.h"

#include "app/global.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class Settings : public testing::Test {
protected:
    Settings()
    {
        std::string pattern = (fs::temp_directory_path() / "lang-ini-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        file = folder / "lang.lang-ini";
    }
    ~Settings() override { fs::remove_all(folder); }

    ini_guard open() const
    {
        ini_guard settings(ini_new(file.c_str()));
        testing::internal::CaptureStdout();
        EXPECT_EQ(ini_read(settings.get()), 0);
        testing::internal::GetCapturedStdout();
        return settings;
    }
    std::string written(ini_t *settings) const
    {
        testing::internal::CaptureStdout();
        EXPECT_EQ(ini_write(settings), 0);
        testing::internal::GetCapturedStdout();
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }

    fs::path folder;
    fs::path file;
};

} // namespace

TEST_F(Settings, StartWithTheirFirstValuesAndMakeTheFileAtTheEnd)
{
    const ini_guard settings = open();
    EXPECT_STREQ(settings->languageFile, "english.lang");
    EXPECT_EQ(settings->dstDir, nullptr);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(fs::exists(file.string() + ".lock"));
    EXPECT_EQ(written(settings.get()), "version=0\n\n[language]\nlanguageFile= \"english.lang\"\n"
                                       "dstDir=\n\n[mainWin]\nx=-1\ny=-1\nw=800\nh=600\n"
                                       "\n[defineWin]\nx=-1\ny=-1\n");
}

TEST_F(Settings, ComeBackAsWrittenButForTheExportDirectory)
{
    std::ofstream(file) << "version=0\n[language]\nlanguageFile=\"a.lang\"\ndstDir=\"/out\"\n"
                           "[mainWin]\nx=4294967301\nw=1024\nextra=keep me\n";
    {
        const ini_guard settings = open();
        EXPECT_STREQ(settings->languageFile, "a.lang");
        EXPECT_EQ(settings->dstDir, nullptr);
        EXPECT_EQ(settings->main_x, 5); // no key reaches the field beside its own
        EXPECT_EQ(settings->main_y, -1);
        EXPECT_EQ(settings->main_w, 1024);
        settings->define_x = 100;
        settings->define_y = 50;
        EXPECT_THAT(written(settings.get()), testing::HasSubstr("\nextra=keep me\n"));
    }
    EXPECT_FALSE(fs::exists(file.string() + ".lock"));
    const ini_guard again = open();
    EXPECT_EQ(again->define_x, 100);
    EXPECT_EQ(again->define_y, 50);
}

TEST_F(Settings, KeepTheirFirstValuesWhenTheFileCannotBeRead)
{
    fs::create_directory(file);
    const ini_guard settings = open();
    EXPECT_EQ(settings->main_w, 800);
    written(settings.get());
    EXPECT_TRUE(fs::is_directory(file));
    EXPECT_EQ(ini_read(nullptr), 1);
    EXPECT_EQ(ini_write(nullptr), 1);
}
