#include "kit/support/lint-output.h"

#include "kit/support/output.h"
#include "lint/rules.h"

#include <algorithm>
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
            // People and editors count columns from 1.
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

// An array with one object for each finding.
class json_output final : public lint_output {
public:
    void add(const shown_finding &found) override
    {
        const lint::rule &rule = lint::rule_of(found.rule);
        std::string &out = out_.text;
        out += empty_ ? "[\n" : ",\n";
        empty_ = false;
        out += "{\"file\": ";
        append_json(out, found.file);
        out += ", \"line\": ";
        append_place(found, found.at.line);
        out += ", \"column\": ";
        append_place(found, found.at.column + 1);
        out.append(", \"level\": \"").append(lint::level_name(rule.severity));
        out.append("\", \"rule\": \"").append(rule.name).append("\", \"group\": ");
        append_json(out, found.group);
        out += ", \"item\": ";
        append_json(out, found.item);
        out += ", \"language\": ";
        append_json(out, found.language);
        out += ", \"message\": ";
        append_json(out, found.message);
        out += '}';
        out_.flush_when_full();
    }
    void end() override
    {
        out_.text += empty_ ? "[]\n" : "\n]\n";
        out_.flush();
    }

private:
    void append_place(const shown_finding &found, std::uint32_t number)
    {
        // 0 would be taken for a line.
        if (found.at.line == 0)
            out_.text += "null";
        else
            append_number(out_.text, number);
    }

    buffered out_;
    bool empty_ = true;
};

// The format that code hosts and editors read, version 2.1.0.
class sarif_output final : public lint_output {
public:
    sarif_output()
    {
        std::string &out = out_.text;
        out += "{\"$schema\": \"https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/"
               "sarif-schema-2.1.0.json\",\n\"version\": \"2.1.0\",\n\"runs\": [{\n"
               "\"tool\": {\"driver\": {\"name\": \"lang-kit\", \"version\": \"" LANG_VERSION
               "\", \"rules\": [";
        const char *separator = "\n";
        // Every run brings the rules along: hosts show their meanings beside the findings.
        for (const lint::rule &rule : lint::rules()) {
            out.append(separator).append("{\"id\": \"").append(rule.name);
            out += "\", \"shortDescription\": {\"text\": ";
            append_json(out, rule.meaning);
            out += "}, \"fullDescription\": {\"text\": ";
            append_json(out, rule.meaning);
            out.append("}, \"help\": {\"text\": \"A comment \\\"lint: ").append(rule.name);
            out += " off\\\" of an item in a language switches the rule off there.\"}, "
                   "\"defaultConfiguration\": {\"level\": \"";
            out.append(level(rule)).append("\"}}");
            separator = ",\n";
        }
        out += "\n]}},\n\"columnKind\": \"unicodeCodePoints\",\n\"results\": [";
    }
    void add(const shown_finding &found) override
    {
        const lint::rule &rule = lint::rule_of(found.rule);
        std::string &out = out_.text;
        out += empty_ ? "\n" : ",\n";
        empty_ = false;
        out.append("{\"ruleId\": \"").append(rule.name).append("\", \"ruleIndex\": ");
        // The rules above are listed by their ids, so an id is also an index.
        out += std::to_string(static_cast<unsigned>(rule.id));
        out.append(", \"level\": \"").append(level(rule)).append("\", \"message\": {\"text\": ");
        std::string text = found.language == nullptr ? "" : std::string(found.language) + ": ";
        append_json(out, text.append(found.message));
        out += "}, \"locations\": [{\"physicalLocation\": {\"artifactLocation\": {\"uri\": ";
        append_json(out, uri(found.file));
        out += '}';
        if (found.at.line != 0) {
            out += ", \"region\": {\"startLine\": ";
            append_number(out, found.at.line);
            out += ", \"startColumn\": ";
            append_number(out, found.at.column + 1);
            out += '}';
        }
        out += '}';
        append_item(found);
        out += "}]}";
        out_.flush_when_full();
    }
    // Adds what a host must know so that it does not take such a run for a clean one.
    void add_unreadable(const std::string &path, const std::string &why) override
    {
        failures_ += failures_.empty() ? "" : ",";
        failures_ += "\n{\"level\": \"error\", \"message\": {\"text\": ";
        append_json(failures_, path.empty() ? why : path + ": " + why);
        failures_ += '}';
        if (!path.empty()) {
            failures_ += ", \"locations\": [{\"physicalLocation\": "
                         "{\"artifactLocation\": {\"uri\": ";
            append_json(failures_, uri(path.c_str()));
            failures_ += "}}}]";
        }
        failures_ += '}';
    }
    void end() override
    {
        out_.text.append("\n],\n\"invocations\": [{\"executionSuccessful\": ")
            .append(failures_.empty() ? "true" : "false")
            .append(", \"toolExecutionNotifications\": [")
            .append(failures_)
            .append("]}]\n}]}\n");
        out_.flush();
    }

private:
    static const char *level(const lint::rule &rule)
    {
        // This format has no level "info".
        return rule.severity == lint::level::info ? "note" : lint::level_name(rule.severity);
    }

    // Relative paths stay relative: whoever reads them knows the root of the checkout.
    static std::string uri(const char *path)
    {
        char *made = *path == '/' ? g_filename_to_uri(path, nullptr, nullptr)
                                  : g_uri_escape_string(path, "/", FALSE);
        std::string out = made == nullptr ? "" : made;
        g_free(made);
        return out;
    }

    // Group and item name the place better than a line, which moves.
    void append_item(const shown_finding &found)
    {
        if (found.item == nullptr)
            return;
        std::string key = found.group == nullptr ? "" : found.group;
        key.append(":").append(found.item);
        out_.text += ", \"logicalLocations\": [{\"fullyQualifiedName\": ";
        append_json(out_.text, key);
        out_.text += ", \"kind\": \"resource\"}]";
    }

    buffered out_;
    std::string failures_; // notifications
    bool empty_ = true;
};

// Commands that a workflow prints to mark lines: "::error file=F,line=L,col=C,title=T::message".
class github_output final : public lint_output {
public:
    void add(const shown_finding &found) override
    {
        const lint::rule &rule = lint::rule_of(found.rule);
        std::string &out = out_.text;
        // Workflows say "notice".
        out.append("::").append(
            rule.severity == lint::level::info ? "notice" : lint::level_name(rule.severity));
        out += " file=";
        // A colon or a comma would end the property.
        append_escaped(found.file, "%\r\n:,");
        if (found.at.line != 0) {
            out += ",line=";
            append_number(out, found.at.line);
            out += ",col=";
            append_number(out, found.at.column + 1);
        }
        out.append(",title=").append(rule.name).append("::");
        if (found.language != nullptr) {
            append_escaped(found.language, "%\r\n");
            out += ": ";
        }
        append_escaped(found.message, "%\r\n");
        out += '\n';
        out_.flush_when_full();
    }
    void end() override { out_.flush(); }

private:
    void append_escaped(std::string_view text, std::string_view special)
    {
        for (const char c : text) {
            if (special.find(c) == std::string_view::npos) {
                out_.text += c;
                continue;
            }
            char code[4];
            std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned>(c));
            out_.text += code;
        }
    }

    buffered out_;
};

struct format_row {
    const char *name;
    std::unique_ptr<lint_output> (*make)();
};

template <class Output>
std::unique_ptr<lint_output> make()
{
    return std::make_unique<Output>();
}

// The position is the number that make_lint_output takes.
constexpr format_row formats[] = {
    {"text", make<text_output>},
    {"json", make<json_output>},
    {"sarif", make<sarif_output>},
    {"github", make<github_output>},
};

} // namespace

std::vector<const char *> lint_formats()
{
    std::vector<const char *> names;
    for (const format_row &row : formats)
        names.push_back(row.name);
    return names;
}

std::unique_ptr<lint_output> make_lint_output(int format)
{
    return formats[static_cast<std::size_t>(format)].make();
}

} // namespace zel::kit
