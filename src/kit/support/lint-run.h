#pragma once

// Reads a source and judges it; what the words lint and report share.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "checker/wrapper.h"
#include "kit/support/lint-output.h"
#include "lint/lint.h"
#include "source/lang-read.h"

namespace zel::kit {

using shown_listener = std::function<void(const shown_finding &)>;

// A source that was read, with the reader's messages as findings of the rule "syntax". A conflict
// marker of version control is named as one.
class lint_source {
public:
    lint_source() = default;
    ~lint_source(); // the source itself stays to the end of the process
    lint_source(const lint_source &) = delete;
    lint_source &operator=(const lint_source &) = delete;

    // False, after a line on standard error, when the file cannot be opened or read to its end.
    bool read(const std::string &path);

    const std::string &path() const { return path_; }
    const std::string &failure() const { return failure_; }           // why it could not be read
    const LangSource *source() const { return answer_.source.get(); } // null: it does not read
    place place_of(const void *record) const { return places_.of(record); }

    // Tells what the reader said.
    void each_syntax(const std::function<void(const std::string &message)> &to) const;

    // Tells all findings in the order of the file. Returns of how many texts it does not know
    // whether they are too wide, since their limits are in pixels.
    std::size_t judge(const lint::choice &wanted, const shown_listener &to) const;

private:
    struct early {
        place at;
        lint::rule_id rule;
        const char *language;
        std::string message;
    };
    void take_markers();
    bool fail(const std::string &why);

    std::string path_;
    std::string failure_;
    source_places places_;
    read_answer answer_{nullptr, read_result::unreadable, read_cause::none};
    std::vector<early> syntax_;
};

// The code that is looked through, and for what.
struct code_job {
    const std::vector<std::string> &paths; // files and folders, as the check takes them
    const wrapper_words *wrappers;         // or null
    lint::rule_set rules;
};

// Looks through the code as the check does, with the items of all the sources, and tells what it
// would insert ("unknown"), what it cannot read ("adjacent", "unread"), and then the items that
// nobody asks for ("unasked"). The sources stay as they are. If one of them cannot be read,
// nothing is said about items. False after a line on standard error for each path or file that
// cannot be read.
bool judge_code(const code_job &job, const std::vector<std::unique_ptr<lint_source>> &sources,
                const shown_listener &to);

} // namespace zel::kit
