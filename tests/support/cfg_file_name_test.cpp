#include "family/cfg_file_name.h"

#include "log-fixture.h"

#include <gtest/gtest.h>

using zel_test::write_file;

namespace {

using cfg_file_log = zel_test::with_log;

} // namespace

TEST_F(cfg_file_log, newest_version_and_most_specific_file_win)
{
    namespace fs = std::filesystem;
    char out[512];
    const char *base = dir.path().c_str();
    const auto search = [&] {
        return gen_check_cfg_file_name(out, sizeof out, base, "cfg", 2, 10, 1, 2, 3, "x.ini");
    };
    EXPECT_EQ(1, search());
    for (const char *version : {"003-000", "002-005", "001-000"})
        fs::create_directories(dir / (std::string("cfg/") + version));
    write_file(dir / "cfg/003-000/001-002-03-x.ini", "");
    write_file(dir / "cfg/001-000/001-002-03-x.ini", "");
    EXPECT_EQ(0, search());
    EXPECT_EQ(dir / "cfg/001-000/001-002-03-x.ini", out);
    for (const char *name : {"000-000-00-x.ini", "001-000-00-x.ini", "001-002-00-x.ini"}) {
        write_file(dir / (std::string("cfg/002-005/") + name), "");
        EXPECT_EQ(0, search());
        EXPECT_EQ(dir / (std::string("cfg/002-005/") + name), out);
    }
    EXPECT_EQ(1, gen_check_cfg_file_name(out, 10, base, "cfg", 2, 10, 1, 2, 3, "x.ini"));
    EXPECT_EQ(1, gen_check_cfg_file_name(out, sizeof out, base, "cfg", 2, 10, 1, 2, 3, nullptr));
    EXPECT_EQ(1, gen_check_cfg_file_name(out, sizeof out, base, "cfg", 2, 10, 1, 2, 3, ""));
}

TEST_F(cfg_file_log, says_what_it_tries)
{
    char out[512];
    const std::string path = dir / "cfg";
    const char *base = dir.path().c_str();
    EXPECT_EQ(1, gen_check_cfg_file_name(out, sizeof out, base, "cfg", 1, 0, 1, 2, 3, "x"));
    std::filesystem::create_directory(path);
    EXPECT_EQ(1, gen_check_cfg_file_name(out, sizeof out, base, "cfg", 1, 0, 1, 2, 3, "x"));
    std::filesystem::create_directory(path + "/001-000");
    EXPECT_EQ(1, gen_check_cfg_file_name(out, sizeof out, base, "cfg", 1, 0, 1, 2, 3, "x"));
    const std::string entry = "* gen_check_cfg_file_name: entry\n";
    EXPECT_EQ(entry + "* gen_check_cfg_file_name: WARNING path >" + path + "< does not exist\n" +
                  entry + "* gen_check_cfg_file_name: WARNING >" + path + "< no entrys\n" + entry +
                  "* gen_check_cfg_file_name: (1) " + path + "/001-000/001-002-03-x\n" +
                  "* gen_check_cfg_file_name: (2) " + path + "/001-000/001-002-00-x\n" +
                  "* gen_check_cfg_file_name: (3) " + path + "/001-000/001-000-00-x\n" +
                  "* gen_check_cfg_file_name: (4) " + path + "/001-000/000-000-00-x\n" +
                  "* gen_check_cfg_file_name: WARNING no cfg file found\n",
              logged());
}
