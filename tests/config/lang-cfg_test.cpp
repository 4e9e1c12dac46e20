#include "config/lang-cfg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "working-dir.h"

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

class Store : public zel_test::working_dir {
protected:
    void put(const std::string &text) const { zel_test::write_file(file, text); }
    std::string get() const { return zel_test::read_file(file); }
    bool locked() const { return fs::exists(file.string() + ".lock"); }

    fs::path folder = dir.path();
    fs::path file = folder / "a.ini";
};

// A store with a variable of every type bound in section "s".
struct Bound {
    explicit Bound(const fs::path &file) : store(lang_cfg_new(file.c_str()))
    {
        bind("hex", CFG_HEX, &hex);
        bind("octal", CFG_OCTAL, &octal);
        bind("long", CFG_LONG, &number);
        bind("str", CFG_STR, &text);
        bind("double", CFG_DOUBLE, &real);
    }
    void bind(const char *key, int type, void *address) const
    {
        lang_cfg_add_entry(store.get(), "s", key, type, address);
    }
    int open(unsigned flags = 0) const { return lang_cfg_open(store.get(), flags); }
    int write() const
    {
        testing::internal::CaptureStdout();
        const int result = lang_cfg_write(store.get());
        printed = testing::internal::GetCapturedStdout();
        return result;
    }
    // Reads the file and returns what the reader printed.
    std::string read() const
    {
        testing::internal::CaptureStdout();
        EXPECT_EQ(open(), 0);
        return testing::internal::GetCapturedStdout();
    }

    std::uint64_t hex = 0;
    std::uint64_t octal = 0;
    std::int64_t number = 0;
    char *text = nullptr;
    double real = 0;
    lang_cfg_guard store; // releases text
    mutable std::string printed;
};

constexpr char full[] = "version=7\n"
                        "free=-top\n"
                        "\n[s]\n"
                        "hex=0x0000beef\n"
                        "octal=644\n"
                        "long=-5\n"
                        "str= \"C:\\\\a \\\"b\\\"\"\n"
                        "double=-2.500000\n"
                        "own=kept as it is\n"
                        "\n[other]\n"
                        "key=-3\n";

} // namespace

TEST_F(Store, ReadsEveryTypeAndWritesTheSameFile)
{
    put(full);
    const Bound bound(file);
    EXPECT_EQ(bound.read(), "");
    EXPECT_EQ(bound.store->version, 7U);
    EXPECT_EQ(bound.hex, 0xbeefU);
    EXPECT_EQ(bound.octal, 0644U);
    EXPECT_EQ(bound.number, -5);
    EXPECT_STREQ(bound.text, "C:\\a \"b\"");
    EXPECT_EQ(bound.real, -2.5);
    EXPECT_EQ(bound.write(), 0);
    EXPECT_EQ(bound.printed,
              "lang_write_cfg: >" + file.string() + ".tmp<>" + file.string() + "<\n");
    // The store's own keys and bindings come before what only the file knew.
    EXPECT_EQ(get(), full);
    EXPECT_FALSE(fs::exists(file.string() + ".tmp"));
}

TEST_F(Store, NumbersTakeTheirFormsAndKeepTheOldValueWhenNothingConverts)
{
    const Bound bound(file);
    const auto read = [&](const std::string &line) {
        put("[s]\n" + line + "\n");
        EXPECT_EQ(bound.read(), "");
    };
    for (const auto &[text, value] : std::vector<std::pair<const char *, std::int64_t>>{
             {"0x10", 16},
             {"-010", -8},
             {"many", -8},
             {"", -8},
             {"\"1\" \"2\"", 2},
             {"99999999999999999999", INT64_MAX},
             {"-\"-9223372036854775808\"", INT64_MIN}}) {
        read(std::string("long=") + text);
        EXPECT_EQ(bound.number, value) << text;
    }
    read("hex=-ff");
    EXPECT_EQ(bound.hex, 0xffU);
    read("hex=1234567890");
    EXPECT_EQ(bound.hex, 0x1234567890U);
    EXPECT_EQ(bound.write(), 0);
    EXPECT_THAT(get(), HasSubstr("hex=0x34567890\n"));
    read("double=1e3");
    EXPECT_EQ(bound.real, 1000.0);
}

TEST_F(Store, VersionIsCutTo32Bits)
{
    put("version=4294967299\n");
    const Bound bound(file);
    bound.read();
    EXPECT_EQ(bound.store->version, 3U);
    bound.store->version = 4000000000U;
    bound.write();
    EXPECT_THAT(get(), HasSubstr("version=4000000000\n"));
}

TEST_F(Store, BadLinesAreReportedAndSkipped)
{
    put("before=1\n"
        "=\n"
        "[s]\n"
        "word\n"
        "word more\n"
        "long=[5]\n"
        "octal==7\n"
        "; a comment = [x]\n"
        "hex=;nothing\n"
        "[cut\n"
        "double=5\n"
        "[s]\n"
        "long=6\n");
    const Bound bound(file);
    EXPECT_EQ(bound.read(), "_cfg_file_read: ERROR: line 4 '=' expected\n"
                            "_cfg_file_read: ERROR: line 5 '=' expected\n"
                            "_cfg_parse_entry: WARNING: line 6 unexpected token 20001\n"
                            "_cfg_parse_entry: WARNING: line 7 unexpected token 20002\n");
    EXPECT_EQ(bound.number, 6);
    EXPECT_EQ(bound.octal, 0U);
    EXPECT_EQ(bound.real, 0.0);
    bound.write();
    EXPECT_THAT(get(), testing::StartsWith("version=0\nbefore=1\n\n[s]\n"));
    EXPECT_THAT(get(), HasSubstr("\n[cut]\ndouble=5\n"));
}

TEST_F(Store, WordsKeepBackslashedCharactersAndGoWithoutAValue)
{
    put("\r\n[ s p ]\r\n a\\=b  =  x\\\\y\\;z  \r\nempty=\"\"\nquoted=\"  in = side \"\nlong=" +
        std::string(5000, 'w') + "\n");
    const Bound bound(file);
    EXPECT_EQ(bound.read(), "");
    bound.write();
    EXPECT_THAT(get(), HasSubstr("\n[s p]\n\"a=b\"=\"x\\\\y;z\"\nquoted=\"  in = side \"\nlong=" +
                                 std::string(4095, 'w') + "\n"));
    EXPECT_THAT(get(), testing::Not(HasSubstr("empty")));
}

// What nobody bound reads the same after any number of writes, whatever it is.
TEST_F(Store, UnknownKeysSurviveWhateverTheyHold)
{
    const std::vector<std::string> values = {
        "plain text", "; semi",   "[x]", "=1",        "  leading", "trailing \t", "two\nlines",
        "say \"hi\"", "back\\sl", "-5",  "--verbose", "-",         "a;b[c]",      "a=b",
        "-\"-x\"",    "\\",       "\"",  "\ttab",     "-; c",      "\xc3\xa4",    "---"};
    std::string text = "[mine]\n";
    for (std::size_t n = 0; n < values.size(); ++n) {
        std::string quoted;
        for (const char c : values[n])
            quoted += (c == '"' || c == '\\') ? std::string("\\") + c : std::string(1, c);
        text += "v" + std::to_string(n) + "=\"" + quoted + "\"\n";
        text += "\"" + quoted + "\"=name " + std::to_string(n) + "\n";
    }
    text += "signs=--verbose\nsign=-\nfree=-\"; x\"\nmany=--\"- y\"\n";
    put(text);
    const auto values_of = [](const lang_cfg_t *store) {
        std::vector<std::string> found;
        for (const zel_list *node = zel::cfg_keys(zel::cfg_find_section(store, "mine"));
             node != nullptr; node = node->next) {
            const auto *key = static_cast<const cfg_entry_t *>(node->data);
            found.push_back(std::string(key->name) + (key->negative != 0 ? " - " : " + ") +
                            static_cast<const char *>(key->data));
        }
        return found;
    };
    std::vector<std::string> first;
    for (int round = 0; round < 3; ++round) {
        const Bound bound(file);
        EXPECT_EQ(bound.read(), "");
        if (round == 0) {
            first = values_of(bound.store.get());
            ASSERT_EQ(first.size(), 2 * values.size() + 4);
            for (std::size_t n = 0; n < values.size(); ++n)
                EXPECT_EQ(first[2 * n], "v" + std::to_string(n) + " + " + values[n]);
        }
        EXPECT_EQ(values_of(bound.store.get()), first) << round;
        EXPECT_EQ(bound.write(), 0);
    }
    EXPECT_THAT(get(), HasSubstr("\nv0=plain text\n"));
    EXPECT_THAT(get(), HasSubstr("\nsigns=--verbose\n"));
}

TEST_F(Store, AFileThatMayHaveBeenCutIsTold)
{
    for (const auto &[text, inside] :
         std::vector<std::pair<std::string, std::string>>{{"a=1\n[sec", "a section's name"},
                                                          {"a=\"open\nb=2\n", "a text in quotes"},
                                                          {"a=1\n; rema", "a comment"},
                                                          {"a=1 ; no comment", ""},
                                                          {"a=1\n; remark\n[s]\nb=\"c\"", ""},
                                                          {"[s\na=1\n", ""},
                                                          {"", ""}}) {
        put(text);
        const Bound bound(file);
        testing::internal::CaptureStderr();
        bound.read();
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  inside.empty() ? ""
                                 : "lang: " + file.string() + ": the file ends inside " + inside +
                                       "; it may have been cut\n")
            << text;
    }
}

using StoreSlow = Store;

TEST_F(StoreSlow, AFileCutAnywhereIsReadAndWrittenAgain)
{
    const std::string text = full;
    testing::internal::CaptureStderr();
    for (std::size_t length = 0; length <= text.size(); ++length) {
        put(text.substr(0, length));
        const Bound bound(file);
        bound.read();
        EXPECT_EQ(bound.write(), 0);
        const std::string once = get();
        bound.read();
        bound.write();
        EXPECT_EQ(get(), once) << "cut at " << length;
    }
    testing::internal::GetCapturedStderr();
}

TEST_F(Store, LongTextsComeInPiecesOfOneLineEach)
{
    const Bound bound(file);
    ASSERT_EQ(bound.open(), 0);
    bound.bind("str", CFG_STR, const_cast<char **>(&bound.text));
    const_cast<Bound &>(bound).text = strdup((std::string(1024, 'a') + "b\nc").c_str());
    bound.write();
    EXPECT_THAT(get(),
                HasSubstr("str= \"" + std::string(1024, 'a') + "\"\n \"b\\n\"\n \"c\"\ndouble="));
}

TEST_F(Store, GetLongLooksAtLongsAndAtUnboundKeys)
{
    put("[s]\nfree=0x10\nminus=-3\nword=abc\nlong=4\nstr=9\n");
    const Bound bound(file);
    bound.read();
    const auto value = [&](const char *section, const char *key, int result) {
        std::int64_t number = 0;
        EXPECT_EQ(lang_cfg_get_long(bound.store.get(), &number, 77, section, key), result) << key;
        return number;
    };
    EXPECT_EQ(value("s", "free", 0), 16);
    EXPECT_EQ(value("s", "minus", 0), -3);
    EXPECT_EQ(value("s", "word", 0), 77);
    EXPECT_EQ(value("s", "long", 0), 4);
    EXPECT_EQ(value("s", "str", 0), 77);
    EXPECT_EQ(value("s", "none", 1), 77);
    EXPECT_EQ(value("none", "free", 1), 77);
    EXPECT_EQ(value(nullptr, "version", 0), 0);
}

TEST_F(Store, BindingsMeetWhatIsThere)
{
    put("[s]\nlate=42\n");
    std::int64_t late = 0;
    std::int64_t other = 5;
    const Bound bound(file);
    bound.read();
    bound.bind("late", CFG_LONG, &late); // known from the file
    EXPECT_EQ(late, 42);
    bound.bind("long", CFG_HEX, &other); // bound already: keeps its type
    bound.bind("new", CFG_VOID, nullptr);
    bound.bind("odd", 99, &other);
    bound.bind("text", CFG_VOID, strdup("the key's own")); // a key of this type owns its text
    bound.bind("text", CFG_VOID, strdup("another"));
    bound.write();
    EXPECT_THAT(get(), HasSubstr("\ntext=another\n"));
    EXPECT_THAT(get(), HasSubstr("\nlong=5\n"));
    EXPECT_THAT(get(), HasSubstr("\nlate=42\n"));
    EXPECT_THAT(get(), testing::Not(HasSubstr("new")));
    EXPECT_THAT(get(), testing::Not(HasSubstr("odd")));
}

TEST_F(Store, OneOpenStoreKeepsOthersOutUntilItIsClosed)
{
    const Bound first(file);
    EXPECT_EQ(first.open(CFG_OPEN_CREATE), 0);
    EXPECT_TRUE(fs::exists(file));
    EXPECT_TRUE(locked());
    const Bound second(file);
    EXPECT_EQ(second.open(CFG_OPEN_LOCK), CFG_LOCKED);
    EXPECT_EQ(second.write(), CFG_BAD_STATUS);
    EXPECT_EQ(second.printed, "lang_write_cfg: error 2\n");
    lang_cfg_close(second.store.get());
    EXPECT_TRUE(locked()) << "closing deleted the lock of another store";
    zel_test::write_file(first.store->tmp, "left by a process that was killed");
    lang_cfg_close(first.store.get());
    EXPECT_FALSE(locked());
    EXPECT_FALSE(fs::exists(first.store->tmp));
    EXPECT_EQ(first.store->fp_lock, nullptr);
    EXPECT_EQ(second.open(CFG_OPEN_LOCK), 0);
    zel_test::write_file(second.store->tmp, "");
    lang_cfg_del(second.store.get());
    EXPECT_TRUE(fs::is_empty(folder));
}

TEST_F(Store, ALockOfItsOwnGoesAlsoAfterAnOpenThatFoundIt)
{
    const Bound bound(file);
    EXPECT_EQ(bound.open(), 0);
    const auto before = zel_test::open_files();
    EXPECT_EQ(bound.open(), 0);
    EXPECT_EQ(zel_test::open_files(), before) << "the lock before is closed";
    EXPECT_EQ(bound.open(CFG_OPEN_LOCK), CFG_LOCKED);
    lang_cfg_close(bound.store.get());
    EXPECT_FALSE(locked());
}

TEST_F(Store, LocksHoldBetweenProcesses)
{
    int up[2];
    int down[2];
    ASSERT_EQ(pipe(up), 0);
    ASSERT_EQ(pipe(down), 0);
    const pid_t child = fork();
    if (child == 0) {
        const Bound bound(file);
        char byte = static_cast<char>(bound.open(CFG_OPEN_LOCK | CFG_OPEN_CREATE));
        if (write(up[1], &byte, 1) != 1 || read(down[0], &byte, 1) != 1)
            _exit(1);
        lang_cfg_close(bound.store.get());
        _exit(0);
    }
    char byte = 1;
    ASSERT_EQ(read(up[0], &byte, 1), 1);
    EXPECT_EQ(byte, 0);
    const Bound bound(file);
    EXPECT_EQ(bound.open(CFG_OPEN_LOCK), CFG_LOCKED);
    ASSERT_EQ(write(down[1], &byte, 1), 1);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(bound.open(CFG_OPEN_LOCK), 0);
    lang_cfg_close(bound.store.get());
    for (const int end : {up[0], up[1], down[0], down[1]})
        close(end);
}

TEST_F(Store, FailuresLeaveTheFileAlone)
{
    EXPECT_EQ(lang_cfg_new(nullptr), nullptr);
    EXPECT_EQ(lang_cfg_new(""), nullptr);
    EXPECT_EQ(lang_cfg_close(nullptr), 3);
    EXPECT_EQ(lang_cfg_free(nullptr), 3);
    testing::internal::CaptureStdout();
    EXPECT_EQ(lang_cfg_write(nullptr), 3);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "lang_write_cfg: error 1\n");

    const Bound nowhere(folder / "missing" / "a.ini");
    EXPECT_EQ(nowhere.open(CFG_OPEN_CREATE), CFG_LOCKED); // no lock file can be made
    const Bound bound(file);
    EXPECT_EQ(bound.open(), 0);
    fs::create_directory(file); // now no file can take that name
    fs::create_directory(file / "inside");
    EXPECT_EQ(bound.write(), CFG_NOT_RENAMED);
    EXPECT_THAT(bound.printed, HasSubstr("cfg_write: ERROR rename fp_tmp errno "));
    EXPECT_EQ(bound.open(), CFG_NOT_OPENED);
    lang_cfg_close(bound.store.get());
}

TEST_F(Store, NamesAreDerivedFromTheFile)
{
    EXPECT_EQ(lang_cfg_new(""), nullptr);
    const Bound bound(folder / "x.y.ini");
    EXPECT_EQ(bound.store->lex->buf, bound.store->buf);
    EXPECT_STREQ(bound.store->name, "x.y");
    EXPECT_STREQ(bound.store->file, "x.y.ini");
    EXPECT_EQ(bound.store->path, folder.string());
    EXPECT_EQ(lang_cfg_set_file_name(bound.store.get(), ""), 1);
    EXPECT_EQ(lang_cfg_set_file_name(bound.store.get(), bound.store->cfg), 0); // its own name
    EXPECT_EQ(bound.store->cfg, (folder / "x.y.ini").string());
    EXPECT_EQ(lang_cfg_set_file_name(bound.store.get(), "plain"), 0);
    EXPECT_STREQ(bound.store->tmp, "plain.tmp");
    EXPECT_STREQ(bound.store->lock, "plain.lock");
    EXPECT_EQ(bound.store->path, nullptr);
}

TEST_F(Store, TheListingShowsEveryKeyWithAValue)
{
    put(full);
    const Bound bound(file);
    bound.read();
    bound.store->version = 8;
    testing::internal::CaptureStdout();
    EXPECT_EQ(lang_cfg_print_all(bound.store.get()), 0);
    const std::string listing = testing::internal::GetCapturedStdout();
    std::string expected = R"(cfg_print_all:---------------------------------------------
cfg_print_all: tmp  ->FOLDER/a.ini.tmp<-
cfg_print_all: lock ->FOLDER/a.ini.lock<-
cfg_print_all: cfg  ->FOLDER/a.ini<-
cfg_print_all: name ->a<-
cfg_print_all: path ->FOLDER<-
cfg_print_all: ------->File ebene
cfg_print_all: version = 8
cfg_print_all: free = (void)->-top<-
cfg_print_all: ------->[s]
cfg_print_all: hex = (hex)0x0000beef
cfg_print_all: octal = (octal)644
cfg_print_all: long = -5
cfg_print_all: str = (str)->C:\a "b"<-
cfg_print_all: double = (double)-2.500000
cfg_print_all: own = (void)->kept as it is<-
cfg_print_all: ------->[other]
cfg_print_all: key = (void)->-3<-
cfg_print_all: exit
)";
    for (std::size_t at = 0; (at = expected.find("FOLDER")) != expected.npos;)
        expected.replace(at, 6, folder.string());
    EXPECT_EQ(listing, expected);
}
