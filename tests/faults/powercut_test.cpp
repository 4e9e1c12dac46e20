// The power goes while something is being saved: every job is recorded once, call by call, and for
// each moment of it every state of the disk that may be found afterwards is read by the program.
// LANG_FAULTS_SHOW prints figures.

#include "langlib/lang-load.h" // first: it gives a name of the log its linkage

#include "fault-files.h"
#include "powercut-model.h"
#include "system-calls.h"

#include "compiler/split.h"
#include "config/lang-cfg.h"
#include "source/lang-read.h"
#include "source/lang-write.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unordered_set>

namespace {

namespace fs = std::filesystem;
using zel_test::call_record;
using zel_test::disk;
using zel_test::disk_state;
using zel_test::read_file;
using zel_test::write_file;

// What is recorded: a function that saves and answers 0, and what must hold of a state that is
// found. Before is what was there, after what is there when nothing happens; done tells that the
// function had come back. Returns what does not hold, or nothing.
struct powercut_job {
    const char *name;
    void (*prepare)();
    int (*save)(void (*begin_recording)());
    std::string (*look)(const disk_state &found, const disk_state &before, const disk_state &after,
                        bool done);
    const char *failing; // a row of system_calls that fails meanwhile, or null,
    int error;           // with this errno,
    bool lasting;        // and not only once
};

const std::string *find(const disk_state &all, const std::string &name)
{
    const auto found = all.find(name);
    return found == all.end() ? nullptr : &found->second;
}

// ---- Sources

constexpr const char *source_name = "app.lang-src";

void prepare_source()
{
    write_file(source_name, zel_test::old_source());
    std::string other = zel_test::old_source();
    other.replace(other.find("\"Close\" }"), 7, "\"Shut\"");
    write_file("other", other);
}

void prepare_first_save()
{
    prepare_source();
    fs::remove(source_name);
}

int save_source(void (*begin_recording)())
{
    const source_guard source = std::move(zel::read_source("other", {1}).source);
    begin_recording();
    zel::write_how how;
    how.now = 1700000000;
    return zel::write_source(source_name, source.get(), how).code;
}

bool reads(const std::string &text)
{
    write_file("found", text);
    return zel::read_source("found", {1}).source != nullptr;
}

// The path holds the old text or the new one, or nothing while one of its neighbours holds one;
// once saving has come back it holds the new one, and where there was an old one a backup has it.
std::string look_at_source(const disk_state &found, const disk_state &before,
                           const disk_state &after, bool done)
{
    const std::string *old_text = find(before, source_name);
    const std::string &new_text = after.at(source_name);
    const auto is_whole = [&](const std::string &text) {
        return (text == new_text || (old_text != nullptr && text == *old_text)) && reads(text);
    };
    bool neighbour = false;
    bool backup = old_text == nullptr;
    for (const auto &[name, text] : found) {
        const bool is_backup = name.starts_with(source_name) && name.ends_with(".bak");
        backup = backup || (is_backup && text == *old_text);
        neighbour = neighbour || ((is_backup || name == "lang.tmp") && is_whole(text));
    }
    const std::string *now = find(found, source_name);
    if (now != nullptr && !is_whole(*now))
        return "the path holds something cut";
    if (now == nullptr && old_text != nullptr && !neighbour)
        return "no text is left";
    if (done && (now == nullptr || *now != new_text))
        return "told as saved and is not";
    return done && !backup ? "the old text is gone" : "";
}

// ---- Settings

void prepare_settings() { write_file("a.ini", "version=1\n\n[s]\nkey=old\n"); }

int save_settings(void (*begin_recording)())
{
    begin_recording();
    const lang_cfg_guard store(lang_cfg_new("a.ini"));
    lang_cfg_open(store.get(), 0);
    store->version = 2;
    const int written = lang_cfg_write(store.get());
    lang_cfg_close(store.get());
    return written;
}

std::string look_at_settings(const disk_state &found, const disk_state &before,
                             const disk_state &after, bool done)
{
    const std::string *now = find(found, "a.ini");
    const bool is_new = now != nullptr && *now == after.at("a.ini");
    if (done && !is_new)
        return "told as saved and are not";
    if (now == nullptr || (!is_new && *now != before.at("a.ini")))
        return "the settings are gone";
    write_file("found", *now);
    const lang_cfg_guard store(lang_cfg_new("found"));
    const bool opens = lang_cfg_open(store.get(), 0) == CFG_OK;
    lang_cfg_close(store.get());
    return opens && store->version == (is_new ? 2U : 1U) ? "" : "the settings do not read";
}

// ---- Compiled files, which can be made again and are not synced

void prepare_compiled()
{
    prepare_source();
    fs::create_directories("out/english-edit");
    fs::create_directories("out/german-edit");
    write_file("out/english-edit/english.lang", "GROUP \"g\" \"Close\" { \"Old\" }\n");
}

int compile(void (*begin_recording)())
{
    const source_guard source = std::move(zel::read_source("other", {1}).source);
    begin_recording();
    return zel::compile_source(source.get(), "out", {false, 1700000000}).code;
}

// The source is as it was. An application that loads what is there goes on and gets a text that was
// compiled, or its item; where a file was cut, the item or what is left of the text.
std::string look_at_compiled(const disk_state &found, const disk_state &before, const disk_state &,
                             bool)
{
    if (found.at(source_name) != before.at(source_name))
        return "the source is not what it was";
    for (const auto &[name, text] : found) {
        if (!name.ends_with(".lang"))
            continue;
        write_file("found.lang", text);
        lang_load_file("found.lang");
        const std::string close = lang_get_string("g", "Close");
        const bool good = close == "Close" || close == "Old" || close == "Shut";
        const char *missing = lang_get_string("g", "none");
        const bool item = std::strcmp(missing, "none") == 0;
        lang_de_init();
        if (!good || !item)
            return name + " gives no text: " + close;
    }
    return {};
}

const powercut_job jobs[] = {
    {"save", prepare_source, save_source, look_at_source, nullptr, 0, false},
    {"first save", prepare_first_save, save_source, look_at_source, nullptr, 0, false},
    {"save without links", prepare_source, save_source, look_at_source, "link", EPERM, true},
    {"save to another disk", prepare_source, save_source, look_at_source, "rename", EXDEV, false},
    {"settings", prepare_settings, save_settings, look_at_settings, nullptr, 0, false},
    {"compiled files", prepare_compiled, compile, look_at_compiled, nullptr, 0, false},
};

// ---- The machine

const powercut_job *recorded; // in the child
int record_file = -1;
zel_test::call_report fault_report;

// Every length, or a few.
std::size_t cuts() { return std::getenv("LANG_POWERCUT_ALL") != nullptr ? SIZE_MAX : 24; }

void begin_recording()
{
    zel_test::record_system_calls(record_file);
    for (const zel_test::call_row &row : zel_test::system_calls())
        if (recorded->failing != nullptr && std::strcmp(row.name, recorded->failing) == 0)
            zel_test::fail_system_calls({&row, 1, recorded->error, recorded->lasting},
                                        &fault_report);
}

zel_test::disk_key key_of(const fs::path &path)
{
    struct stat status {};
    zel_test::require(stat(path.c_str(), &status) == 0, path.c_str());
    return {status.st_dev, status.st_ino};
}

class PowerCut : public zel_test::working_dir, public testing::WithParamInterface<std::size_t> {
protected:
    void SetUp() override
    {
        if (!zel_test::system_calls_can_fail())
            GTEST_SKIP() << "no process may look at its own system calls here";
    }

    // What lies in the folder, safe on the disk.
    static disk disk_of_folder()
    {
        disk made(cuts());
        made.add_folder(".", key_of("."));
        for (const auto &entry : fs::recursive_directory_iterator(".")) {
            const std::string path = fs::relative(entry.path());
            if (entry.is_directory())
                made.add_folder(path, key_of(path));
            else
                made.add_file(path, key_of(path), read_file(path));
        }
        return made;
    }

    // Runs the job in a child and returns its records.
    std::string record() const
    {
        const fs::path place = fs::absolute("../records");
        record_file = open(place.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        std::fflush(nullptr);
        const pid_t child = fork();
        if (child == 0) {
            const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
            dup2(nowhere, 1);
            recorded = &job_;
            _exit(job_.save(begin_recording));
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << "the job did not save";
        close(record_file);
        return read_file(place);
    }

    static std::size_t hash_of(const disk_state &state, bool done)
    {
        std::string all(1, done ? '1' : '0');
        for (const auto &[name, text] : state)
            all.append(name).append(1, '\0').append(text).append(1, '\0');
        return std::hash<std::string>()(all);
    }

    void look(const disk_state &state, bool done)
    {
        if (!seen_.insert(hash_of(state, done)).second)
            return;
        const std::string wrong = job_.look(state, before_, after_, done);
        if (wrong.empty())
            return;
        ++losses_;
        std::string files;
        for (const auto &[name, text] : state)
            files += " " + name + " (" + std::to_string(text.size()) + ")";
        ADD_FAILURE() << job_.name << ", after call " << calls_ << ": " << wrong << ":" << files;
    }

    void cut_everywhere()
    {
        fs::create_directory("work");
        fs::current_path("work");
        job_.prepare();
        disk safe = disk_of_folder();
        before_ = safe.now();
        const std::string records = record();
        const std::vector<std::pair<call_record, std::string>> calls = split(records);
        disk whole = safe;
        for (const auto &[call, data] : calls)
            whole.take(call, data);
        after_ = whole.now();
        for (const auto &[name, text] : after_)
            EXPECT_EQ(text, read_file(name)) << name << ": the model is not what happened";
        fs::current_path("..");
        for (const auto &[call, data] : calls) {
            safe.each_state([this](const disk_state &state) { look(state, false); });
            safe.take(call, data);
            if (++calls_; losses_ > 20)
                return;
        }
        safe.each_state([this](const disk_state &state) { look(state, true); });
        EXPECT_GT(seen_.size(), 5U) << "as if nothing were written";
        if (std::getenv("LANG_FAULTS_SHOW") != nullptr)
            std::printf("%-18s %3u calls, %5zu states, %u losses\n", job_.name, calls_,
                        seen_.size(), losses_);
    }

private:
    static std::vector<std::pair<call_record, std::string>> split(const std::string &records)
    {
        std::vector<std::pair<call_record, std::string>> all;
        for (std::size_t at = 0; at < records.size();) {
            call_record record{};
            std::memcpy(&record, records.data() + at, sizeof record);
            all.emplace_back(record, records.substr(at + sizeof record, record.size));
            at += sizeof record + record.size;
        }
        return all;
    }

    const powercut_job &job_ = jobs[GetParam()];
    disk_state before_;
    disk_state after_;
    std::unordered_set<std::size_t> seen_; // hashes
    unsigned calls_ = 0;
    unsigned losses_ = 0;
};

TEST_P(PowerCut, LosesNothing) { cut_everywhere(); }

INSTANTIATE_TEST_SUITE_P(Jobs, PowerCut, testing::Range(std::size_t{0}, std::size(jobs)),
                         [](const auto &param) {
                             std::string name = jobs[param.param].name;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

} // namespace
