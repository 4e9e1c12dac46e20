#include "checker/scan-tree.h"
#include "exchange/input.h"
#include "kit/support/adopter.h"
#include "kit/support/new-from-catalogs.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/sources.h"
#include "kit/support/text-file.h"
#include "kit/support/uncoded-texts.h"
#include "kit/support/unified-diff.h"
#include "kit/words/word-list.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace zel::kit {

namespace {

bool is_code(std::string_view name)
{
    constexpr std::string_view endings[] = {".c",   ".h",   ".cc", ".cpp",
                                            ".cxx", ".hpp", ".hh", ".hxx"};
    return std::any_of(std::begin(endings), std::end(endings),
                       [&](std::string_view ending) { return name.ends_with(ending); });
}

bool is_code_or_form(std::string_view name) { return is_code(name) || has_uncoded_texts(name); }

// The files of the paths, each once, in their order, of code and perhaps beside it. False after a
// line for each that cannot be read.
bool find_code(const std::vector<std::string> &paths, bool with_forms,
               std::vector<std::string> &files)
{
    bool good = true;
    const auto complain = [&](const char *path) {
        std::fprintf(stderr, "lang-kit: %s: %s\n", path, std::strerror(errno));
        good = false;
    };
    const auto take = [&](const char *file) {
        files.emplace_back(file);
        return 0;
    };
    for (const std::string &path : paths)
        scan_path(path.c_str(), {take, complain, complain, with_forms ? is_code_or_form : is_code});
    std::sort(files.begin(), files.end());
    keep_each_once(files);
    return good;
}

// A file of code that changes.
struct changed_code {
    seen_file before;
    std::string text;
};

struct adopt_count {
    std::size_t turned = 0;
    std::size_t left = 0;
    std::size_t lacking = 0;
};

// Tells of texts that no call in C++ asks for.
void tell_uncoded(const std::string &path, const std::string &bytes, adopt_count &count)
{
    const uncoded_texts texts = find_uncoded_texts(path, bytes);
    if (texts.wrong)
        say_fault(path, texts.wrong);
    else if (texts.count != 0)
        std::fprintf(stderr, "%s: not turned: %s\n", path.c_str(), texts.why.c_str());
    count.left += texts.wrong ? 1 : texts.count;
}

// Tells what becomes of the files, or, when they are to be written, keeps their new texts. False
// after a line for each that cannot be read.
bool adopt_files(adopter &by, const std::vector<std::string> &files, bool with_forms,
                 bool is_written, std::vector<changed_code> &changed, adopt_count &count)
{
    bool good = true;
    for (const std::string &path : files) {
        const seen_file before(path);
        std::string bytes;
        if (const exchange::fault wrong = exchange::read_input(path, bytes)) {
            say_fault(path, wrong);
            good = false;
            continue;
        }
        if (with_forms && has_uncoded_texts(path)) {
            tell_uncoded(path, bytes, count);
            continue;
        }
        adopted_code code = by.take(path, bytes);
        for (const adopt_note &one : code.notes) {
            std::fprintf(stderr, "%s:%u:%u: %s\n", path.c_str(), one.at.line, one.at.column + 1,
                         one.text.c_str());
            ++(one.is_lacking ? count.lacking : count.left);
        }
        count.turned += code.turned;
        if (code.turned == 0)
            continue;
        if (!is_written) {
            // Code may hold a zero byte.
            const std::string diff = unified_diff(path, bytes, code.text, code.added_line);
            std::fwrite(diff.data(), 1, diff.size(), stdout);
        }
        // Of what is only shown the name is enough.
        changed.push_back({before, is_written ? std::move(code.text) : std::string()});
    }
    return good;
}

// Puts the new texts in their places, if nobody has changed a file meanwhile.
bool write_code(const std::vector<changed_code> &changed)
{
    std::vector<text_file> files(changed.size());
    for (std::size_t at = 0; at < changed.size(); ++at) {
        if (!files[at].create(changed[at].before.path))
            return false;
        files[at].append(changed[at].text);
    }
    for (const changed_code &one : changed)
        if (has_changed(one.before.path.c_str(), one.before.stamp)) {
            std::fprintf(stderr,
                         "lang-kit: %s: another program has changed it; nothing is written\n",
                         one.before.path.c_str());
            return false;
        }
    return finish_all(files);
}

int adopt_code(adopter &by, const std::vector<std::string> &paths, bool with_forms, bool is_written)
{
    std::vector<std::string> files;
    std::vector<changed_code> changed;
    adopt_count count;
    // A file that cannot be read keeps all others as they are.
    if (!find_code(paths, with_forms, files) ||
        !adopt_files(by, files, with_forms, is_written, changed, count) ||
        (is_written && !write_code(changed)))
        return status_fault;
    std::fflush(stdout); // what is told of the changes stands behind them
    std::fprintf(stderr, "%s turned in %s, %zu not turned, %zu not in the source\n",
                 counted(count.turned, "call").c_str(), counted(changed.size(), "file").c_str(),
                 count.left, count.lacking);
    return count.left != 0 || count.lacking != 0 ? status_found : status_fine;
}

} // namespace

int run_adopt(const word &self, int argc, char **argv)
{
    std::string from;
    std::string group;
    bool is_written = false;
    const parsed line =
        parse(self, argc, argv,
              {{.name = "from",
                .argument = "NAME",
                .help = "whose calls these are: gettext or qt",
                .text = &from},
               {.name = "group",
                .argument = "NAME",
                .help = "the group of texts without a context: a name, \"file\" for that of the "
                        "file, or \"context\" for where the source has the text (context)",
                .text = &group},
               {.name = "write", .help = "change the files", .on = &is_written}},
              2, SIZE_MAX);
    if (line.ends)
        return line.status;
    const int dialect = choose(self, "from", from, {"gettext", "qt"});
    if (dialect < 0)
        return status_fault;
    source_guard source = read(line.files.front());
    if (!source)
        return status_fault;
    adopt_how how;
    how.from = dialect == 0 ? call_dialect::gettext : call_dialect::qt;
    how.by_file = group == "file";
    how.group = group == "context" || how.by_file ? "" : group;
    adopter by(source.get(), how);
    const int status = adopt_code(by, {line.files.begin() + 1, line.files.end()},
                                  how.from == call_dialect::qt, is_written);
    keep_to_the_end(std::move(source));
    return status;
}

} // namespace zel::kit
