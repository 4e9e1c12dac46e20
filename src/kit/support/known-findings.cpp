#include "kit/support/known-findings.h"

#include "kit/support/output.h"
#include "kit/support/sources.h"
#include "kit/support/text-file.h"
#include "lint/rules.h"
#include "support/cut.h"
#include "support/file_mem.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zel::kit {

namespace {

// A finding without its line and column, which move.
std::string baseline_line(const shown_finding &found, std::string_view file)
{
    std::string line;
    append_line(line, file);
    if (found.item != nullptr) {
        append_line(line.append(": "), found.group == nullptr ? "" : found.group);
        append_line(line += ':', found.item);
    }
    if (found.language != nullptr)
        append_line(line.append(": "), found.language);
    append_line(line.append(": "), found.message);
    return line.append(" [").append(lint::rule_of(found.rule).name).append("]");
}

std::string_view without_folder(std::string_view path) { return path.substr(path.rfind('/') + 1); }

// The same of a line, which begins with the file.
std::string without_folder_in_line(std::string_view line)
{
    const std::size_t end = line.find(": ");
    return std::string(without_folder(line.substr(0, end)))
        .append(end == line.npos ? "" : line.substr(end));
}

} // namespace

void known_findings::add(std::string line) { ++lines_[std::move(line)]; }

void known_findings::add(const shown_finding &found)
{
    add(baseline_line(found, without_folder(found.file)));
}

bool known_findings::read(const std::string &path)
{
    const auto fail = [&](const std::string &why) {
        std::fprintf(stderr, "lang-kit lint: %s: %s\n", path.c_str(), why.c_str());
        return false;
    };
    if (is_named_pipe(path))
        return fail("it is a pipe");
    char *data = nullptr;
    const std::int64_t size = zel_read_file_to_mem(path.c_str(), &data);
    if (size < 0)
        return fail(std::string("the file cannot be read: ") + std::strerror(errno));
    std::string_view rest(data, static_cast<std::size_t>(size));
    bool good = true;
    for (std::size_t number = 1; good && !rest.empty(); ++number) {
        std::string_view line = cut_at(rest, '\n');
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (line.ends_with(']'))
            add(without_folder_in_line(line));
        else if (!line.empty())
            good = fail("line " + std::to_string(number) +
                        " is no finding; \"lint --write-baseline\" makes such a file");
    }
    std::free(data);
    return good;
}

bool known_findings::take(const shown_finding &found)
{
    const auto known = lines_.find(baseline_line(found, without_folder(found.file)));
    if (known == lines_.end() || known->second == 0)
        return false;
    --known->second;
    ++taken_;
    return true;
}

void baseline_output::add(const shown_finding &found)
{
    lines_.push_back(baseline_line(found, found.file) + "\n");
}

bool baseline_output::write(const std::string &path)
{
    std::sort(lines_.begin(), lines_.end());
    text_file file;
    if (!file.create(path))
        return false;
    for (const std::string &line : lines_)
        file.append(line);
    return file.finish() && file.put_in_place();
}

} // namespace zel::kit
