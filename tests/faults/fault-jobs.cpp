#include "langlib/lang-load.h" // first: it gives a name of the log its linkage

#include "fault-jobs.h"

#include "config/lang-cfg.h"
#include "failing-memory.h"
#include "recovery/recovery-file.h"
#include "source/lang-read.h"
#include "system-calls.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <utility>

namespace zel_test {

namespace {

namespace fs = std::filesystem;

constexpr const char *source_name = "app.lang-src";

void prepare_source()
{
    write_file(source_name, old_source());
    write_file("code.c", application_code());
    fs::create_directory("out");
    fs::create_directories("Morvalix 6.00/log");
}

constexpr const char *source_elsewhere = "there/app.lang-src";

// Behind a link to a folder that is, where that can be, on another file system.
void prepare_source_elsewhere()
{
    static const struct folder {
        folder() { require(mkdtemp(path.data()) != nullptr, "mkdtemp"); }
        ~folder() { fs::remove_all(path); }
        std::string path = "/tmp/lang-elsewhere-XXXXXX";
    } elsewhere;
    for (const auto &left : fs::directory_iterator(elsewhere.path))
        fs::remove_all(left);
    fs::create_directory_symlink(elsewhere.path, "there");
    write_file(source_elsewhere, old_source());
    fs::create_directories("Morvalix 6.00/log");
}

// What others bring: a branch, and translations in every format.
void prepare_others()
{
    prepare_source();
    write_file("base.lang-src", old_source());
    std::string theirs = old_source();
    theirs.replace(theirs.find("\"Close\" }"), 7, "\"Shut\"");
    write_file("theirs.lang-src", theirs);
    write_file("new.csv", "group,item,description,german\ng,Close,,Schliessen\n");
    write_file("new.po", "msgctxt \"g:Close\"\nmsgid \"Close\"\nmsgstr \"Schliessen\"\n");
    write_file("new.xliff", "<xliff version=\"1.2\"><file><body><trans-unit id=\"g:Close\"><target>"
                            "Schliessen</target></trans-unit></body></file></xliff>\n");
    write_file("new.json", "{ \"language_source\": 1, \"languages\": [], \"groups\": [] }\n");
    write_file("new.ts",
               "<TS language=\"de\"><context><name>g</name><message><source>Close</source>"
               "<translation>Schliessen</translation></message></context></TS>\n");
    write_file("new2.xliff", "<xliff version=\"2.0\" srcLang=\"en\" trgLang=\"de\"><file id=\"f\">"
                             "<unit id=\"u1\" name=\"g:Close\"><segment><source>Close</source>"
                             "<target>Schliessen</target></segment></unit></file></xliff>\n");
    write_file("new.tmx", "<tmx version=\"1.4\"><header creationtool=\"lang-kit\" "
                          "srclang=\"en\"/><body><tu tuid=\"g:Close\">"
                          "<tuv xml:lang=\"en\"><seg>Close</seg></tuv><tuv xml:lang=\"de\"><seg>"
                          "Schliessen</seg></tuv></tu></body></tmx>\n");
    write_file("new.tbx",
               "<tbx type=\"TBX-Basic\" style=\"dct\" xml:lang=\"en\"><text><body>"
               "<conceptEntry id=\"c1\"><langSec xml:lang=\"en\"><termSec><term>Close"
               "</term></termSec></langSec><langSec xml:lang=\"de\"><termSec><term>"
               "Schliessen</term></termSec></langSec></conceptEntry></body></text></tbx>\n");
}

// Another project's texts, a file for each language.
void prepare_project()
{
    prepare_source();
    for (const auto &[code, text] : {std::pair("en", "Close"), std::pair("de", "Schliessen")}) {
        const std::string name(code);
        const std::string quoted = " \"" + std::string(text) + "\"";
        write_file(name + ".json", "{ \"g\": { \"close\":" + quoted + " } }\n");
        write_file(name + ".ini", "[g]\nclose =" + quoted + "\n");
        write_file(name + ".rc", "STRINGTABLE BEGIN\n IDS_CLOSE" + quoted + "\nEND\n");
        write_file(name + ".po", "msgid \"\"\nmsgstr \"Language: " + name +
                                     "\\n\"\n\nmsgid \"Close\"\nmsgstr" + quoted + "\n");
        write_file(name + ".ts", "<TS language=\"" + name +
                                     "\"><context><name>g</name><message><source>Close</source>"
                                     "<translation>" +
                                     text + "</translation></message></context></TS>\n");
    }
}

// Menus without keys, an item whose text has changed, and code that asks another library.
void prepare_application()
{
    write_file(
        source_name,
        "define format utf8 default lang \"english\"\n"
        "define file \"e\" lang \"english\" 200 200 1 file \"g\" lang \"german\" 200 200 1\n"
        "GROUP \"menu\" {\n  ITEM \"_Open a file\" { LANG \"german\" { \"Datei _oeffnen\" } }\n"
        "  ITEM \"_Open a file...\" { USED YES LANG \"english\" { \"_Open a file...\" } }\n"
        "  ITEM \"_Save\" { USED YES LANG \"german\" { \"Sichern\" } }\n"
        "  ITEM \"_Quit\" { USED YES LANG \"german\" { \"Beenden\" } }\n}\n");
    write_file("a.c", "void a() { puts(gettext(\"_Save\")); }\n");
    write_file("b.c", "/* " + std::string(9000, 'l') + " */ char *b() { return _(\"_Quit\"); }\n");
}

// Two branches that have changed one item, as git leaves them, made once.
void prepare_conflict()
{
    static const struct folder {
        folder()
        {
            require(mkdtemp(path.data()) != nullptr, "mkdtemp");
            const std::string before = fs::current_path();
            fs::current_path(path);
            write_file(source_name, old_source());
            const std::string script =
                "export HOME=/nonexistent GIT_CONFIG_NOSYSTEM=1; exec >/dev/null 2>&1; set -e\n"
                "g() { git -c user.name=a -c user.email=a@b \"$@\"; }\n"
                "g init --template= -b main; g add .; g commit -m base; g checkout -b there\n"
                "sed -i 's/\"Close\" }/\"Shut\" }/' app.lang-src; g commit -am there\n"
                "g checkout main; sed -i 's/\"Close\" }/& LANG \"german\" { \"Zu\" }/' "
                "app.lang-src\n"
                "g commit -am here; ! g merge there\n";
            require(std::system(script.c_str()) == 0, "git");
            fs::current_path(before);
        }
        ~folder() { fs::remove_all(path); }
        std::string path = "/tmp/lang-conflict-XXXXXX";
    } conflict;
    fs::copy(conflict.path, ".", fs::copy_options::recursive);
}

const std::string *find(const files &all, const std::string &name)
{
    const auto found = all.find(name);
    return found == all.end() ? nullptr : &found->second;
}

bool is_old(const job_outcome &run, const std::string &text)
{
    return std::any_of(run.before.begin(), run.before.end(),
                       [&](const auto &file) { return file.second == text; });
}

// Every file is an old one, or one as it is when nothing fails. A text that is not whole is only
// where it is of no harm: under a name that no reader of it knows.
std::string all_whole(const job_outcome &run, const job_outcome &whole)
{
    for (const auto &[name, text] : run.left) {
        const std::string *good = find(whole.left, name);
        const bool is_known = good != nullptr || name == "new.lang-src" || name == "keys.slk" ||
                              name.ends_with(".lang") || name.ends_with(".bak");
        if (is_known && !is_old(run, text) && (good == nullptr || text != *good))
            return name + " is cut";
    }
    return {};
}

// The source is untouched.
std::string source_stays(const job_outcome &run, const job_outcome &whole)
{
    const std::string *now = find(run.left, source_name);
    return now == nullptr || *now != run.before.at(source_name) ? "the source is not what it was"
                                                                : all_whole(run, whole);
}

// Each file is the old one, or the new one with the old one beside it.
std::string old_text_stays(const job_outcome &run, const job_outcome &whole)
{
    for (const auto &[name, text] : run.before) {
        const std::string &old = text; // clang 14 takes no part of a pair into a lambda
        const std::string *now = find(run.left, name);
        if (now == nullptr)
            return name + " is gone";
        if (*now != old && std::none_of(run.left.begin(), run.left.end(), [&](const auto &file) {
                return file.first.ends_with(".bak") && file.second == old;
            }))
            return "the old text of " + name + " is gone";
    }
    return all_whole(run, whole);
}

// The source is the old one, or the new one.
std::string text_is_whole(const job_outcome &run, const job_outcome &whole)
{
    const std::string *now = find(run.left, source_name);
    return now == nullptr ? "the source is gone" : all_whole(run, whole);
}

// What is said to be passed over is missing in the new source, and in the old one beside it it is
// not.
std::string old_text_stays_or_folder_is_told(const job_outcome &run, const job_outcome &whole)
{
    if (!run.muted && run.said.find("_check_rec: ERROR(1) open >") == run.said.npos)
        return old_text_stays(run, whole);
    return old_text_stays(run, run);
}

// ---- The library

void prepare_texts()
{
    fs::create_directory("texts");
    write_file("texts/a.lang", "FORMAT UTF8 LANGUAGE \"german\" GROUP \"g\" \"Open\" { \"Oeffnen\" "
                               "} \"%s\" { \"%d %s\" } \"long\" { \"" +
                                   std::string(20000, 'l') + "\" }\n");
    write_file("texts/b.lang", "GROUP h x { \"1\" }");
}

bool is_one_of(const char *text, const char *a, const char *b)
{
    return text != nullptr && (std::strcmp(text, a) == 0 || std::strcmp(text, b) == 0);
}

// All requests answer with a text; false where one does not.
bool load_and_ask()
{
    lang_load_file("texts");
    bool good = is_one_of(lang_get_string("g", "Open"), "Oeffnen", "Open") &&
                is_one_of(lang_get_string("h", "x"), "1", "x") &&
                is_one_of(lang_get_string("g", "none"), "none", "none");
    lang_handle_t *handle = lang_new("texts/b.lang");
    good = good && is_one_of(_lang_get_str(handle, "h", "x", "f", 1), "1", "x");
    if (handle != nullptr)
        lang_free(handle, 1);
    lang_de_init();
    return good;
}

int use_library(void (*begin_failing)())
{
    load_and_ask();
    const std::size_t before = blocks_in_use();
    begin_failing();
    const bool good = load_and_ask();
    stop_failing();
    lang_load_file("texts");
    const bool well_again = is_one_of(lang_get_string("g", "Open"), "Oeffnen", "Oeffnen");
    lang_de_init();
    if (!good || !well_again || blocks_in_use() != before) {
        std::printf("answers %d, again %d, blocks %zu before, %zu after\n", good, well_again,
                    before, blocks_in_use());
        return 2;
    }
    return 0;
}

std::string nothing_else(const job_outcome &, const job_outcome &) { return {}; }

// ---- The settings

constexpr const char *old_settings = "version=1\n\n[s]\nkey=old\n";
constexpr const char *new_settings = "version=2\n\n[s]\nkey=old\n";

void prepare_settings() { write_file("a.ini", old_settings); }

int save_settings(void (*begin_failing)())
{
    begin_failing();
    const lang_cfg_guard store(lang_cfg_new("a.ini"));
    lang_cfg_open(store.get(), 0);
    store->version = 2;
    const int written = lang_cfg_write(store.get());
    lang_cfg_close(store.get());
    return written == CFG_OK ? 0 : 1;
}

std::string settings_stay(const job_outcome &run, const job_outcome &)
{
    const std::string *now = find(run.left, "a.ini");
    return now == nullptr                                 ? "the settings are gone"
           : *now != old_settings && *now != new_settings ? "the settings are cut"
           : run.status == 0 && *now != new_settings      ? "told as written and is not"
                                                          : "";
}

// ---- A recovery file in the place of an older one

constexpr const char *recovery_name = "recovery/r.lang-src";
constexpr const char *older_recovery = "group \"older\" { }\n";

void prepare_recovery()
{
    prepare_source();
    fs::create_directory("recovery");
    write_file(recovery_name, older_recovery);
}

// The editor says what came of it; here that is this function.
int save_recovery(void (*begin_failing)())
{
    const source_guard source = std::move(zel::read_source(source_name, {1}).source);
    const zel::file_state loaded; // its time would be another one in every run
    const std::string absolute = fs::absolute(source_name);
    begin_failing();
    zel::recovery_writer writer;
    writer.begin(recovery_name, absolute, loaded, 1700000000, source.get(), nullptr);
    writer.step(1); // the rest at once, without a thread
    const int error = writer.finish(true);
    if (error != 0)
        std::printf("%s\n", std::strerror(error));
    return error == 0 ? 0 : 1;
}

std::string recovery_stays(const job_outcome &run, const job_outcome &whole)
{
    const std::string *now = find(run.left, recovery_name);
    const bool is_new = now != nullptr && *now == *find(whole.left, recovery_name);
    if (run.status == 0 && !is_new)
        return "told as written and is not";
    return is_new || (now != nullptr && *now == older_recovery) ? source_stays(run, run)
                                                                : "the recovery file is cut";
}

#ifdef LANG_PROGRAM
using words = std::vector<const char *>;
using look = decltype(fault_job::look);

fault_job command(const char *name, words of, look what, void (*prepare)() = prepare_source)
{
    of.insert(of.begin(), "lang");
    return {name, LANG_PROGRAM, std::move(of), nullptr, prepare, what};
}

fault_job kit(const char *name, words of, look what, void (*prepare)() = prepare_others,
              std::uint32_t every = 1)
{
    of.insert(of.begin(), "lang-kit");
    return {name, LANG_KIT, std::move(of), nullptr, prepare, what, 2, every};
}

// The name is the format's, too, and the ending of its files.
fault_job kit_new(const char *format)
{
    static std::deque<std::string> kept;
    const std::string &name = kept.emplace_back(std::string("new from ") + format);
    const std::string &first = kept.emplace_back(std::string("en.") + format);
    const std::string &second = kept.emplace_back(std::string("de.") + format);
    return kit(name.c_str(),
               {"import", "--format", format, "--new", "-o", "new.lang-src", first.c_str(),
                second.c_str()},
               source_stays, prepare_project);
}

const fault_job jobs[] = {
    command("convert", {"convert", source_name, "new.lang-src"}, source_stays),
    command("convert in place", {"convert", source_name, source_name}, old_text_stays),
    command("convert elsewhere", {"convert", source_elsewhere, source_elsewhere}, old_text_stays,
            prepare_source_elsewhere),
    command("check", {"check", source_name, "code.c"}, old_text_stays_or_folder_is_told),
    command("check a folder", {"check", source_name, "."}, old_text_stays_or_folder_is_told),
    command("compile", {"compile", "-dst-dir", "out", source_name}, source_stays),
    command("excel", {"excel", "unicode", source_name, "keys.slk"}, source_stays),
    kit("export", {"export", "--format", "po", "-o", "out", source_name}, source_stays,
        prepare_source),
    kit("merge", {"merge", "base.lang-src", source_name, "theirs.lang-src"}, old_text_stays),
    kit("merge driver",
        {"merge", "--driver", "app", "base.lang-src", source_name, "theirs.lang-src"},
        text_is_whole),
    kit("import csv", {"import", "--format", "csv", source_name, "new.csv"}, old_text_stays),
    kit("import po", {"import", "--format", "po", "--language", "german", source_name, "new.po"},
        old_text_stays),
    kit("import xliff",
        {"import", "--format", "xliff", "--language", "german", source_name, "new.xliff"},
        old_text_stays),
    kit("import json", {"import", "--format", "json", source_name, "new.json"}, old_text_stays),
    kit("import ts", {"import", "--format", "ts", source_name, "new.ts"}, old_text_stays),
    kit("import xliff2", {"import", "--format", "xliff2", source_name, "new2.xliff"},
        old_text_stays),
    kit("import tmx", {"import", "--format", "tmx", source_name, "new.tmx"}, old_text_stays),
    kit("import tbx", {"import", "--format", "tbx", source_name, "new.tbx"}, old_text_stays),
    kit_new("po"),
    kit_new("ts"),
    kit_new("json"),
    kit_new("ini"),
    kit_new("rc"),
    kit("adopt", {"adopt", "--from", "gettext", "--write", source_name, "."}, old_text_stays,
        prepare_application),
    kit("carry", {"carry", source_name}, old_text_stays, prepare_application),
    kit("mnemonics", {"mnemonics", source_name}, old_text_stays, prepare_application),
    kit("replace", {"replace", "--language", "german", "ix", "ax", source_name, "base.lang-src"},
        old_text_stays),
    kit("news", {"news", source_name, "theirs.lang-src"}, source_stays),
    kit("fill with", {"fill", "--with", "sed 's/.*/\"Fern\"/'", source_name}, old_text_stays),
    kit("fill", {"fill", "--from", "new.csv", source_name}, old_text_stays),
    kit("pseudo", {"pseudo", source_name}, old_text_stays),
    kit("git resolve", {"git", "--resolve"}, text_is_whole, prepare_conflict, 25),
    {"library", nullptr, {}, use_library, prepare_texts, nothing_else},
    {"recovery file", nullptr, {}, save_recovery, prepare_recovery, recovery_stays},
    {"settings", nullptr, {}, save_settings, prepare_settings, settings_stay},
};
#endif

} // namespace

std::span<const fault_job> fault_jobs() { return jobs; }

} // namespace zel_test
