#include "kit/lint-output.h"

#include "kit/output.h"
#include "lint/rules.h"

#include <cstdio>

namespace zel::kit {

namespace {

// Collects what is printed, so that many small findings are few writes.
class buffered {
public:
    ~buffered() { flush(); }
    void flush()
    {
        std::fwrite(text.data(), 1, text.size(), stdout);
        text.clear();
    }
    void flush_when_full()
    {
        if (text.size() > 60000)
            flush();
    }
    std::string text;
};

void append_number(std::string &out, std::uint32_t number) { out += std::to_string(number); }

// Line ends and the like as escapes: a finding is one line.
void append_line(std::string &out, std::string_view message)
{
    for (const char c : message) {
        if (c == '\n')
            out += "\\n";
        else if (c == '\r')
            out += "\\r";
        else if (c == '\t')
            out += "\\t";
        else
            out += c;
    }
}

// FILE:LINE:COLUMN: LEVEL: LANGUAGE: MESSAGE [RULE]
class text_output final : public lint_output {
public:
    void add(const shown_finding &found) override
    {
        const lint::rule &rule = lint::rule_of(found.rule);
        std::string &line = out_.text;
        append_line(line, found.file);
        if (found.at.line != 0) {
            line += ':';
            append_number(line, found.at.line);
            line += ':';
            append_number(line, found.at.column + 1);
        }
        line.append(": ").append(lint::level_name(rule.severity)).append(": ");
        if (found.language != nullptr) {
            append_line(line, found.language);
            line += ": ";
        }
        append_line(line, found.message);
        line.append(" [").append(rule.name).append("]\n");
        out_.flush_when_full();
    }
    void end() override { out_.flush(); }

private:
    buffered out_;
};

} // namespace

std::unique_ptr<lint_output> make_lint_output(std::string_view format)
{
    if (format == "text")
        return std::make_unique<text_output>();
    return nullptr;
}

} // namespace zel::kit
