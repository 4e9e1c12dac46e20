#pragma once

// Findings that were there before, so that an old project can begin with the new ones.

#include <string>
#include <unordered_map>
#include <vector>

#include "kit/support/lint-output.h"

namespace zel::kit {

// A baseline is a file of such lines, without places, which move:
//   FILE: GROUP:ITEM: LANGUAGE: MESSAGE [RULE]
// The folder of a file does not count: builds name files from other places than people do.
class known_findings {
public:
    // Takes a finding of an older state.
    void add(const shown_finding &found);

    // Takes a baseline. False after a line on
    // standard error.
    bool read(const std::string &path);

    // Whether the finding is known. Of several that are alike, as many as were known are.
    bool take(const shown_finding &found);

    std::size_t taken() const { return taken_; }

private:
    void add(std::string line);

    std::unordered_map<std::string, std::size_t> lines_; // how often each is known
    std::size_t taken_ = 0;
};

// Makes a baseline of what is found.
class baseline_output final : public lint_output {
public:
    void add(const shown_finding &found) override;

    // Writes the lines in the order of the alphabet, since such files are kept and compared. False
    // after a line on standard error.
    bool write(const std::string &path);

private:
    std::vector<std::string> lines_;
};

} // namespace zel::kit
