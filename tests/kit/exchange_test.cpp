// Texts out and in through the words, beside pages/exchange.md, with other programs as judges of
// what goes out.

#include "exchange/sources.h"
#include "kit/menu-source.h"
#include "kit/run-kit.h"

#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using testing::Not;
using zel_test::kit;
using zel_test::read_file;
using zel_test::with;
using zel_test::write_file;

constexpr char example[] = LANG_SOURCE_ROOT "/examples/notes.lang-src";

bool is_there(const char *program)
{
    return std::system((std::string("command -v ") + program + " >/dev/null").c_str()) == 0;
}

int run(const std::string &command) { return std::system(command.c_str()); }

// The time of saving and the file's own name are all that may differ.
std::string without_stamps(const std::string &source)
{
    return std::regex_replace(source, std::regex("\nmtime [0-9]+|/\\* EOF [^\n]*"), "");
}

class Exchange : public testing::Test {
protected:
    Exchange() { write_file("app.lang-src", read_file(example)); }

    std::size_t files() const
    {
        std::size_t count = 0;
        for (const auto &entry : std::filesystem::directory_iterator("."))
            count += entry.is_regular_file() ? 1 : 0;
        return count;
    }

    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};
using ExchangeSlow = Exchange;

TEST_F(ExchangeSlow, AChangedTextComesBackAndNothingElse)
{
    for (const std::string format : {"po", "ts", "xliff", "xliff2", "csv"}) {
        write_file("app.lang-src", read_file(example));
        std::filesystem::remove_all("out");
        const auto out = kit("export -o out --format " + format + " app.lang-src");
        EXPECT_EQ(out.status, 0) << out.err;
        const std::string path =
            format == "csv" ? "out/app.csv" : "out/german." + format.substr(0, 5);
        EXPECT_THAT(out.out, HasSubstr(path + "\n"));
        const std::string take = std::string("import --comments --format ") + format;
        const auto same = kit(take + " app.lang-src out/*");
        EXPECT_EQ(same.out + same.err, "") << format;
        EXPECT_EQ(same.status, 0);
        EXPECT_EQ(read_file("app.lang-src"), read_file(example)) << "not even its time";

        write_file(path, std::regex_replace(read_file(path), std::regex("_Speichern"), "Sichern"));
        const std::string line = "~ menu:_Save german: \"_Speichern\" -> \"Sichern\"\n";
        const std::size_t before = files();
        EXPECT_EQ(kit(take + " --dry-run app.lang-src out/*").out, line);
        EXPECT_EQ(kit(take + " -o other.lang-src app.lang-src out/*").out, line);
        EXPECT_EQ(files(), before + 1);
        EXPECT_EQ(read_file("app.lang-src"), read_file(example));
        const auto taken = kit(take + " app.lang-src out/*");
        EXPECT_EQ(taken.out, line);
        EXPECT_EQ(taken.status, 0) << taken.err;
        EXPECT_EQ(files(), before + 2) << "the backup";
        EXPECT_EQ(read_file("other.lang-src").size(), read_file("app.lang-src").size() + 2);

        // The item alone has changed: its text, its mark of change, and it is not ready any more
        // where the file does not say that the text is final.
        std::string wanted = read_file(example);
        const std::size_t item = wanted.find("  ITEM   \"_Save\"");
        const bool final = format.starts_with("xliff") || format == "ts";
        wanted.replace(wanted.find("READY     1", item), 11,
                       final ? "READY     1\n    CHANGED" : "READY     0\n    CHANGED");
        wanted.replace(wanted.find("_Speichern", item), 10, "Sichern");
        EXPECT_EQ(without_stamps(read_file("app.lang-src")), without_stamps(wanted)) << format;
        std::filesystem::remove("other.lang-src");
    }
}

// The texts come late, from a pipe: meanwhile another program saves.
TEST_F(Exchange, WhatAnotherProgramSavedMeanwhileStays)
{
    const std::string base = with(read_file(example), "\"_Speichern\"", "\"\"");
    const std::string saved = with(base, "\"_Datei\"", "\"THEIRS\"");
    write_file("app.lang-src", base);
    write_file("json", with(kit("export --format json app.lang-src").out, "_Datei", "MINE"));
    write_file("csv", "group,item,description,german\nmenu,_Save,none,MINE\n");
    std::filesystem::create_symlink("app.lang-src", "link.lang-src");
    write_file("race",
               "rm -f late.csv; mkfifo late.csv\n'" LANG_KIT "' \"$@\" &\n"
               "exec 3>late.csv; mv saved app.lang-src; cat $texts >&3; exec 3>&-; wait $!");
    for (const std::string to : {"", "-o ./app.lang-src", "-o link.lang-src"})
        for (const std::string word : {"import --format csv", "import --format json", "fill"}) {
            write_file("app.lang-src", base);
            write_file("saved", saved);
            const auto run =
                kit("--version >/dev/null; texts=" +
                    std::string(word.ends_with("json") ? "json" : "csv") + " timeout 60 sh race " +
                    word + " " + to +
                    (word == "fill" ? " --from late.csv app.lang-src" : " app.lang-src late.csv"));
            EXPECT_EQ(read_file("app.lang-src"), saved) << word << " " << to;
            EXPECT_THAT(run.err, HasSubstr("changed by another program meanwhile"));
            EXPECT_EQ(run.status, 2);
        }
    // A source that may have been cut is no base for another text.
    write_file("app.lang-src", base.substr(0, base.find("/* EOF")));
    for (const char *format : {"csv", "json"})
        EXPECT_EQ(kit(std::string("import --format ") + format + " app.lang-src " + format).status,
                  2);
}

// A pipe with a name is not waited for; one that a shell makes for a command is read.
TEST_F(Exchange, APipeIsNoSource)
{
    ASSERT_EQ(run("mkfifo pipe.lang-src"), 0);
    for (const std::string word : {"lint", "show", "pseudo"}) {
        const auto refused =
            kit("--version >/dev/null; timeout 20 '" LANG_KIT "' " + word + " pipe.lang-src");
        EXPECT_EQ(refused.status, 2) << word;
        EXPECT_EQ(refused.err.substr(0, refused.err.find('\n')),
                  "lang-kit: pipe.lang-src: it is a pipe");
    }
    EXPECT_EQ(run("bash -c \"'" LANG_KIT "' diff <(cat app.lang-src) app.lang-src\""), 0);
}

// ---- Judges

TEST_F(ExchangeSlow, TheUsualToolsTakeTheCatalogs)
{
    if (!is_there("msgfmt"))
        GTEST_SKIP() << "gettext is not installed";
    for (unsigned seed = 0; seed < 6; ++seed) {
        write_file("app.lang-src", zel_test::awkward_source(seed, seed % 3 == 2).make(60));
        ASSERT_EQ(kit("export --format po app.lang-src").status, 0);
        for (const auto &entry : std::filesystem::directory_iterator("."))
            if (entry.path().extension() == ".po") {
                const std::string path = "'" + entry.path().string() + "'";
                EXPECT_EQ(run("msgfmt --check -o /dev/null " + path + " 2>err"), 0)
                    << read_file("err");
                EXPECT_EQ(run("msgcat --no-wrap " + path + " 2>err | diff - " + path + " >out"), 0)
                    << path << read_file("out");
            }
    }
}

// Their own converter writes each message as it was, but for the places, of which it does not
// escape all names.
TEST_F(ExchangeSlow, TheToolkitsToolsKeepTheFiles)
{
    if (!is_there("lconvert"))
        GTEST_SKIP() << "the tools of TS files are not installed";
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    for (unsigned seed = 0; seed < 6; ++seed) {
        write_file("app.lang-src", zel_test::awkward_source(seed, seed % 3 == 2).make(60));
        ASSERT_EQ(
            kit("export --format ts --language english --language german app.lang-src").status, 0);
        EXPECT_EQ(run("for l in english german; do lrelease $l.ts -qm /dev/null 2>&1 &&"
                      " lconvert -locations none -i $l.ts -o again-$l.ts 2>&1; done >err"),
                  0);
        EXPECT_THAT(read_file("err"), Not(HasSubstr("duplicate")));
        const auto same = kit("import --format ts --fuzzy --comments app.lang-src again-*.ts");
        EXPECT_EQ(same.out + same.err, "") << seed;
        EXPECT_EQ(same.status, 0);
    }
}

TEST_F(Exchange, OtherReadersFindTheSameTexts)
{
    write_file("app.lang-src", zel_test::awkward_source(1, false).make(80));
    ASSERT_EQ(kit("export --format csv -o . app.lang-src").status, 0);
    ASSERT_EQ(kit("export --format json -o . app.lang-src").status, 0);
    ASSERT_EQ(kit("export --format xliff app.lang-src").status, 0);
    const std::string judge = is_there("xmllint") ? "xmllint --noout *.xliff 2>err" : "true";
    EXPECT_EQ(run(judge), 0) << read_file("err");
    ASSERT_EQ(kit("export --format xliff2 app.lang-src").status, 0);
    EXPECT_EQ(run(judge), 0) << read_file("err");
    if (!is_there("python3"))
        GTEST_SKIP() << "python3 is not installed";
    // The texts of the table are those of the whole source, formula signs apart.
    write_file("judge.py", R"(
import csv, json
source = json.load(open('app.json', encoding='utf-8'))
wanted = {}
for group in source['groups']:
    for item in group['items']:
        for text in item['texts']:
            wanted[group['name'], item['name'] or '', text['language']] = ''.join(text['lines'])
rows = list(csv.DictReader(open('app.csv', encoding='utf-8-sig', newline='')))
assert len(rows) == 80, len(rows)
def plain(cell):
    cell = cell[1:] if cell.startswith("'") else cell
    return cell.replace('\uef09', '\t').replace('\uef0d', '\r')
count = 0
for row in rows:
    for column, cell in row.items():
        assert not cell.startswith(('=', '+', '-', '@', '\n')), cell
        if column in ('group', 'item', 'description'):
            continue
        key = plain(row['group']), plain(row['item']), plain(column)
        assert plain(cell) == wanted.get(key, ''), (key, cell, wanted.get(key))
        count += cell != ''
assert count > 100, count
)");
    EXPECT_EQ(run("python3 judge.py 2>err"), 0) << read_file("err");
}

} // namespace
