#include "kit/support/code-scan.h"
#include "kit/support/commit-files.h"
#include "kit/support/glossary-file.h"
#include "kit/support/known-findings.h"
#include "kit/support/lint-run.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/settings.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "lint/rules.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace zel::kit {

namespace {

using lint::level;
using lint::rule_set;

// How many findings there are of each level.
struct counts {
    std::array<std::size_t, 3> of{};

    std::size_t &operator[](level one) { return of[static_cast<std::size_t>(one)]; }
    bool any_from(level least) const
    {
        return std::any_of(of.begin(), of.begin() + static_cast<int>(least) + 1,
                           [](std::size_t count) { return count != 0; });
    }
};

void print_unmeasured(std::size_t texts)
{
    std::fflush(stdout);
    std::fprintf(stderr,
                 "%s with a limit in pixels, which only the editor can measure: not judged\n",
                 counted(texts, "text").c_str());
}

void print_counts(counts found, std::size_t files, const known_findings *known)
{
    std::string beside;
    if (known != nullptr)
        beside = "; " + std::to_string(known->taken()) + " known";
    std::fflush(stdout); // last, also where both go to one place
    std::fprintf(stderr, "%s, %s, %s in %s%s\n", counted(found[level::error], "error").c_str(),
                 counted(found[level::warning], "warning").c_str(),
                 counted(found[level::info], "note").c_str(), counted(files, "file").c_str(),
                 beside.c_str());
}

void print_rules()
{
    for (const lint::rule &row : lint::rules())
        std::printf("%-11s  %-7s  %s\n", row.name, lint::level_name(row.severity), row.meaning);
}

// Puts the named rules into the set. False, after a line, for a name that no rule has.
bool choose_rules(const word &self, const std::vector<std::string> &names, rule_set &out)
{
    for (const std::string &name : names) {
        const lint::rule *row = lint::find_rule(name);
        if (row == nullptr) {
            wrong_use(self, "there is no rule \"" + name + "\"; --rules shows them");
            return false;
        }
        out = out.with(row->id);
    }
    return true;
}

struct lint_settings {
    std::string format = "text";
    std::string fail_on, group, since, baseline, write_baseline;
    std::vector<std::string> only, without, languages, code, keywords;
    bool rules = false;
};

bool choose(const word &self, const lint_settings &given, lint::choice &wanted)
{
    rule_set only, without;
    if (!choose_rules(self, given.only, only) || !choose_rules(self, given.without, without))
        return false;
    // Terms are asked for: where a translator leaves one out, a finding helps nobody.
    constexpr rule_set unasked = rule_set::all().without(lint::rule_id::term);
    wanted.rules = (only.none() ? unasked : only).without(without);
    wanted.languages = given.languages;
    return true;
}

// Judges sources and code, and keeps what came of it.
class run {
public:
    // Known findings are passed over; null: there are none.
    run(lint::choice wanted, lint_output &output, known_findings *known)
        : wanted_(std::move(wanted)), output_(output), known_(known)
    {
    }

    void judge(const std::string &path)
    {
        sources_.push_back(std::make_unique<lint_source>());
        lint_source &source = *sources_.back();
        if (!source.read(path)) {
            unreadable_ = true;
            output_.add_unreadable(path, source.failure());
            sources_.pop_back();
            return;
        }
        ++files_;
        take_terms(path, source.source());
        unmeasured_ += source.judge(wanted_, [this](const shown_finding &one) { add(one); });
        // A malformed source may define any language.
        for (const std::string &name : wanted_.languages)
            if (source.source() == nullptr || lint::defines_language(source.source(), name))
                defined_.push_back(name);
    }
    void judge(const std::vector<std::string> &code, const wrapper_words *wrappers)
    {
        if (!code.empty() && !sources_.empty() &&
            !judge_code({code, wrappers, wanted_.rules}, sources_,
                        [this](const shown_finding &one) { add(one); })) {
            unreadable_ = true;
            output_.add_unreadable({}, "some of the code cannot be read");
        }
    }
    // False, after a line, for the first language that no source defines: most likely a slip.
    bool knows_languages(const word &self) const
    {
        for (const std::string &name : wanted_.languages)
            if (files_ != 0 &&
                std::find(defined_.begin(), defined_.end(), name) == defined_.end()) {
                wrong_use(self, "no source defines the language \"" + name + "\"");
                return false;
            }
        return true;
    }
    int end(level fail_on)
    {
        output_.end();
        if (unmeasured_ != 0)
            print_unmeasured(unmeasured_);
        print_counts(found_, files_, known_);
        return unreadable_ ? status_fault : found_.any_from(fail_on) ? status_found : status_fine;
    }

private:
    void take_terms(const std::string &path, const LangSource *source)
    {
        if (!wanted_.rules.has(lint::rule_id::term) || terms_.find(path, source, wanted_.terms))
            return;
        unreadable_ = true;
        output_.add_unreadable(lint::glossary_path(path), "the list of terms cannot be read");
    }
    void add(const shown_finding &one)
    {
        if (known_ != nullptr && known_->take(one))
            return;
        ++found_[lint::rule_of(one.rule).severity];
        output_.add(one);
    }

    lint::choice wanted_;
    glossary_files terms_;
    lint_output &output_;
    known_findings *known_;
    counts found_;
    std::size_t unmeasured_ = 0;
    std::vector<std::unique_ptr<lint_source>> sources_; // that were read
    std::size_t files_ = 0;
    bool unreadable_ = false;
    std::vector<std::string> defined_; // of the wanted languages
};

std::vector<option> options_for(lint_settings &given)
{
    return {
        {.name = "format",
         .argument = "NAME",
         .help = "text, json, sarif or github (text)",
         .text = &given.format},
        {.name = "fail-on",
         .argument = "LEVEL",
         .help = "status 1 from this level on: error, warning or info (error)",
         .text = &given.fail_on},
        {.name = "since",
         .argument = "REVISION",
         .help = "only what was not there in this commit",
         .text = &given.since},
        {.name = "baseline",
         .argument = "FILE",
         .help = "only what is not in this file",
         .text = &given.baseline},
        {.name = "write-baseline",
         .argument = "FILE",
         .help = "keep what is found in this file, for --baseline",
         .text = &given.write_baseline},
        {.name = "only",
         .argument = "RULE,...",
         .help = "only these rules",
         .list = &given.only,
         .split = true},
        {.name = "without",
         .argument = "RULE,...",
         .help = "all rules but these",
         .list = &given.without,
         .split = true},
        {.name = "language",
         .argument = "NAME",
         .help = "only what concerns this language; may be given again",
         .list = &given.languages},
        {.name = "code",
         .argument = "PATH",
         .help = "look through this code too, for \"adjacent\", \"unknown\", \"unread\" and "
                 "\"unasked\"; may be given again",
         .list = &given.code},
        {.name = "keyword",
         .argument = "WORD:ITEM",
         .help = "the application's own word for a request, as in check",
         .list = &given.keywords},
        {.name = "group",
         .argument = "NAME",
         .help = "the group of keywords without a number for it",
         .text = &given.group},
        {.name = "rules", .help = "list the rules with their levels and end", .on = &given.rules},
    };
}

// Takes from the project's settings what the command line leaves open.
bool take_settings(const std::string &source, lint_settings &given)
{
    settings project;
    if (!read_settings(source, project))
        return false;
    take_setting(given.fail_on, project.fail_on);
    take_setting(given.fail_on, std::string("error"));
    take_setting(given.without, project.without);
    take_setting(given.languages, project.languages);
    take_setting(given.code, project.code);
    take_setting(given.keywords, project.keywords);
    take_setting(given.group, project.group);
    take_setting(given.baseline, project.baseline);
    return true;
}

// Takes what is found into the known findings.
class past_output final : public lint_output {
public:
    explicit past_output(known_findings &known) : known_(known) {}
    void add(const shown_finding &found) override { known_.add(found); }

private:
    known_findings &known_;
};

// Judges the same files as a commit has them. False after a line.
bool judge_past(const lint_settings &given, const std::vector<std::string> &sources,
                const wrapper_words *wrappers, const lint::choice &wanted, known_findings &known)
{
    std::vector<std::string> paths = sources;
    for (const std::string &path : sources)
        if (const std::string terms = lint::glossary_path(path); !terms.empty())
            paths.push_back(terms);
    paths.insert(paths.end(), given.code.begin(), given.code.end());
    commit_files files;
    if (!files.take(given.since, paths))
        return false;
    past_output output(known);
    run past(wanted, output, nullptr);
    for (const std::string &path : sources)
        if (!is_absent(files.place_of(path)))
            past.judge(files.place_of(path));
    std::vector<std::string> code;
    for (const std::string &path : given.code)
        if (!is_absent(files.place_of(path)))
            code.push_back(files.place_of(path));
    past.judge(code, wrappers);
    return true;
}

} // namespace

int run_lint(const word &self, int argc, char **argv)
{
    lint_settings given;
    const parsed line = parse(self, argc, argv, options_for(given), 0, SIZE_MAX);
    if (line.ends)
        return line.status;
    if (given.rules) {
        print_rules();
        return status_fine;
    }
    if (line.files.empty())
        return wrong_use(self, std::string("a file is missing: lang-kit lint ") + self.arguments);
    std::unique_ptr<wrapper_words> wrappers;
    if (!take_settings(line.files.front(), given) ||
        !make_wrappers(given.keywords, given.group, wrappers))
        return status_fault;
    const int format = choose(self, "format", given.format, lint_formats());
    const int fail_on = choose(self, "fail-on", given.fail_on, {"error", "warning", "info"});
    lint::choice wanted;
    if (format < 0 || fail_on < 0 || !choose(self, given, wanted))
        return status_fault;
    known_findings known;
    const bool only_new = !given.since.empty() || !given.baseline.empty();
    if ((!given.baseline.empty() && !known.read(given.baseline)) ||
        (!given.since.empty() && !judge_past(given, line.files, wrappers.get(), wanted, known)))
        return status_fault;
    const bool writes = !given.write_baseline.empty();
    baseline_output kept;
    const std::unique_ptr<lint_output> shown = writes ? nullptr : make_lint_output(format);
    run judged(wanted, writes ? kept : *shown, only_new ? &known : nullptr);
    for (const std::string &path : line.files)
        judged.judge(path);
    judged.judge(given.code, wrappers.get());
    int status = judged.end(static_cast<level>(fail_on));
    if (writes && status != status_fault)
        status = kept.write(given.write_baseline) ? status_fine : status_fault;
    // Asked last: only now all sources have been read.
    return judged.knows_languages(self) ? status : status_fault;
}

} // namespace zel::kit
