// Jobs in a process in which one system call after the other fails, with every error that it can
// have: once, and with all that follow. Whatever fails, the job ends by itself, says why, and no
// text is lost. So is it for commands whose allocations fail. With LANG_FAULTS_ALL every point is
// taken; else every call fails with its first error once, and of the other points each twentieth is
// taken, of the allocations each fifth, from another one on in each job and for each error, and
// with each LANG_FAULTS_SEED. LANG_FAULTS_SHOW prints figures.

#include "failing-memory.h"
#include "fault-jobs.h"
#include "system-calls.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <set>
#include <string_view>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;
using zel_test::call_fault;
using zel_test::call_report;
using zel_test::call_row;
using zel_test::fault_job;
using zel_test::job_outcome;

// In memory where there is such a place: every run makes its folder anew and syncs it.
[[maybe_unused]] const bool in_memory =
    access("/dev/shm", W_OK) == 0 && setenv("TMPDIR", "/dev/shm", 0) == 0;

call_report *report; // shared with the children
call_fault wanted;

void begin_failing() { zel_test::fail_system_calls(wanted, report); }

// A fault without a row is that of an allocation.
std::string words_of(const call_fault &fault)
{
    if (fault.row == nullptr)
        return "allocation " + std::to_string(fault.n) + (fault.lasting ? " and on" : "");
    return std::string(fault.row->name) + " " + std::to_string(fault.n) +
           (fault.lasting ? " and on: " : ": ") +
           (fault.error == zel_test::half_done ? "half done" : std::strerror(fault.error));
}

// Whether the job said what failed, in words or by its number, or what stands for it.
bool names_the_cause(const job_outcome &run, const call_fault &fault)
{
    std::vector<std::string> causes = {std::strerror(fault.error),
                                       "(" + std::to_string(fault.error),
                                       "errno " + std::to_string(fault.error)};
    for (const char *prescribed :
         {"ERROR(1) open >", "ERROR(146) open ->", "ERROR(4): unable", "ERROR(3): unable",
          "ERROR open ", "ERROR: read ", "cfg_write: ERROR", "lang_write_cfg: error ",
          "the file is not complete"})
        causes.emplace_back(prescribed);
    return std::any_of(causes.begin(), causes.end(), [&](const std::string &cause) {
        return run.said.find(cause) != run.said.npos;
    });
}

class CallFaultsSlow : public zel_test::working_dir, public testing::WithParamInterface<int> {
protected:
    CallFaultsSlow() : job_(zel_test::fault_jobs()[static_cast<std::size_t>(GetParam())])
    {
        zel_test::write_file("report", std::string(sizeof(call_report), '\0'));
        report_file_ = fs::absolute("report");
        untouched_ = fs::absolute("untouched");
        const int file = open("report", O_RDWR | O_CLOEXEC);
        report = static_cast<call_report *>(
            mmap(nullptr, sizeof *report, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        close(file);
        const char *seed = std::getenv("LANG_FAULTS_SEED");
        turn_ = static_cast<std::uint32_t>(GetParam() + (seed == nullptr ? 0 : std::atoi(seed)));
    }
    ~CallFaultsSlow() override { munmap(report, sizeof *report); }

    void SetUp() override
    {
        if (!zel_test::system_calls_can_fail())
            GTEST_SKIP() << "no process may look at its own system calls here";
    }

    void run_program() const
    {
        setenv("HOME", fs::current_path().c_str(), 1);
        setenv("LC_ALL", "C", 1);
        setenv("LD_PRELOAD", LANG_FAILING_MEMORY, 1);
        if (wanted.row == nullptr) {
            setenv("LANG_FAIL_UNTOUCHED", untouched_.c_str(), 1);
        } else {
            const std::string row = std::to_string(wanted.row - zel_test::system_calls().data());
            setenv("LANG_FAIL_REPORT", report_file_.c_str(), 1);
            setenv("LANG_FAIL_CALL", (row + ":" + std::to_string(wanted.error)).c_str(), 1);
        }
        setenv("LANG_FAIL_AT", std::to_string(wanted.n).c_str(), 1);
        if (wanted.lasting)
            setenv("LANG_FAIL_ON", "1", 1);
        std::vector<char *> words;
        for (const char *word : job_.words)
            words.push_back(const_cast<char *>(word));
        words.push_back(nullptr);
        execv(job_.program, words.data());
        _exit(99);
    }

    // In a child: the job in its folder, with both streams in a file.
    void run_child() const
    {
        const int said = open("said", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        dup2(said, 1);
        dup2(said, 2);
        alarm(60); // whoever needs that long goes in a circle
        if (chdir("work") != 0)
            _exit(99);
        if (job_.program != nullptr)
            run_program();
        const int status = job_.function(begin_failing);
        zel_test::stop_failing();
        std::fflush(nullptr);
        _exit(status);
    }

    job_outcome run(const call_fault &fault)
    {
        fs::remove_all("work");
        fs::remove("untouched");
        fs::create_directory("work");
        fs::current_path("work");
        job_.prepare();
        fs::current_path("..");
        job_outcome out{};
        out.before = zel_test::files_below("work");
        *report = {};
        wanted = fault;
        std::fflush(nullptr);
        const auto start = std::chrono::steady_clock::now();
        const pid_t child = fork();
        if (child == 0)
            run_child();
        waitpid(child, &out.status, 0);
        took_ = std::chrono::steady_clock::now() - start;
        out.said = zel_test::read_file("said");
        out.muted = report->muted != 0;
        out.left = zel_test::files_below("work");
        std::erase_if(out.left, [](const auto &file) {
            return file.first.ends_with(".log") || file.first.starts_with(".git/");
        });
        if (WIFEXITED(out.status))
            out.status = WEXITSTATUS(out.status);
        has_struck_ = fault.row != nullptr ? report->struck != 0 : !fs::exists("untouched");
        EXPECT_TRUE(fault.row == nullptr || report->begun == 1) << "the calls were not looked at";
        return out;
    }

    // Whether the files are there that a run leaves when nothing fails.
    bool holds_all(const zel_test::files &left) const
    {
        return std::all_of(whole_.left.begin(), whole_.left.end(), [&](const auto &file) {
            const auto found = left.find(file.first);
            return found != left.end() && found->second == file.second;
        });
    }

    // What is wrong with a run, or nothing.
    std::string wrong_with(const job_outcome &run, const call_fault &fault) const
    {
        if (took_ > std::chrono::seconds(20)) // a save waits for free names, a second each
            return "it waits for long";
        const int worst = job_.program == nullptr ? 1 : job_.worst_status;
        // GLib's allocator of small pieces aborts, which the program takes for a lack of memory
        // only while there is one.
        const bool is_glibs = fault.row == nullptr && !fault.lasting && WIFSIGNALED(run.status) &&
                              run.said.find("GSlice: failed to allocate") != run.said.npos;
        if (run.status > worst && !is_glibs)
            return "status " + std::to_string(run.status);
        std::string loss = job_.look(run, whole_);
        if (!loss.empty())
            return loss;
        const bool is_done = run.status == whole_.status && holds_all(run.left);
        // Of missing memory a word is enough; compile has none at some places.
        const bool is_told = fault.row != nullptr
                                 ? names_the_cause(run, fault)
                                 : !run.said.empty() || std::string(job_.name) == "compile";
        if (!is_done && !run.muted && !is_told)
            return "the cause is not named";
        return {};
    }

    // The files by name, and which are not as when nothing fails.
    std::string list(const job_outcome &run) const
    {
        std::string out;
        for (const auto &[name, text] : run.left) {
            const auto good = whole_.left.find(name);
            const bool same = good != whole_.left.end() && good->second == text;
            out += name + (same ? " " : " (" + std::to_string(text.size()) + " bytes, differs) ");
        }
        return out;
    }

    // One call after the other, or each that many, to the last one; returns how many were reached,
    // as every run comes to the same calls before the one that fails.
    std::uint32_t fail_each(const call_row *row, int error, bool lasting, std::uint32_t every,
                            std::uint32_t last = UINT32_MAX)
    {
        const std::uint32_t step = std::getenv("LANG_FAULTS_ALL") != nullptr ? 1 : every;
        for (std::uint32_t n = 1 + turn_++ % step; n <= last; n += step) {
            const call_fault fault{row, n, error, lasting};
            const job_outcome out = run(fault);
            if (!has_struck_)
                return n - 1;
            ++points_;
            const std::string wrong = wrong_with(out, fault);
            if (wrong.empty())
                continue;
            ++losses_;
            ADD_FAILURE() << job_.name << ", " << words_of(fault) << ": " << wrong << "\n"
                          << list(out) << "\n"
                          << out.said;
            if (losses_ > 20)
                return n;
        }
        return last;
    }

    // Runs the job as it is, and then as often as the function makes it fail.
    template <class Function>
    void fail_everywhere(const call_row *first, Function &&fail)
    {
        whole_ = run({first, 0, 0, false});
        ASSERT_EQ(whole_.status, 0) << whole_.said;
        fail();
        EXPECT_GT(points_, 10U) << "as if there were nothing to fail";
        if (std::getenv("LANG_FAULTS_SHOW") != nullptr)
            std::printf("%-18s %6u points failed, %u losses\n", job_.name, points_, losses_);
    }

    void fail_every_call()
    {
        for (const call_row &row : zel_test::system_calls()) {
            std::uint32_t every = job_.every;
            std::uint32_t calls = UINT32_MAX;
            for (const int error : row.errors) {
                calls = fail_each(&row, error, false, std::exchange(every, 20), calls);
                // No signal comes for ever, and not every name that mkdtemp tries is taken.
                if (error != EINTR && (error != EEXIST || std::string_view(row.name) != "mkdir"))
                    fail_each(&row, error, true, every, calls);
                if (losses_ > 20)
                    return;
            }
        }
    }

private:
    const fault_job &job_;
    std::string report_file_;
    std::string untouched_;
    job_outcome whole_{};
    std::chrono::steady_clock::duration took_{};
    bool has_struck_ = false;
    std::uint32_t turn_ = 0;
    unsigned points_ = 0;
    unsigned losses_ = 0;
};

std::string name_of(const testing::TestParamInfo<int> &param)
{
    std::string name = zel_test::fault_jobs()[static_cast<std::size_t>(param.param)].name;
    for (char &letter : name)
        letter = letter == ' ' ? '_' : letter;
    return name;
}

TEST_P(CallFaultsSlow, LoseNothing)
{
    fail_everywhere(&zel_test::system_calls().front(), [this] { fail_every_call(); });
}
INSTANTIATE_TEST_SUITE_P(Jobs, CallFaultsSlow,
                         testing::Range(0, static_cast<int>(zel_test::fault_jobs().size())),
                         name_of);

using MemoryFaultsSlow = CallFaultsSlow;
TEST_P(MemoryFaultsSlow, LoseNothing)
{
    if (!zel_test::memory_can_fail())
        GTEST_SKIP() << "the sanitizer's allocator cannot be replaced";
    fail_everywhere(nullptr, [this] {
        for (const bool lasting : {false, true})
            fail_each(nullptr, ENOMEM, lasting, 5);
    });
}

// One job of each word: the others would fail at the same places again.
std::vector<int> jobs_for_memory()
{
    std::vector<int> found;
    for (int n = 0; const zel_test::fault_job &job : zel_test::fault_jobs()) {
        const std::string name = job.name;
        if (name == "convert" || name == "check" || name == "compile" || name == "excel")
            found.push_back(n);
        ++n;
    }
    return found;
}
INSTANTIATE_TEST_SUITE_P(Jobs, MemoryFaultsSlow, testing::ValuesIn(jobs_for_memory()), name_of);

} // namespace
