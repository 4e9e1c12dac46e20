#include "kit/support/lint-run.h"

#include "checker/adjacent.h"
#include "checker/scan-tree.h"
#include "kit/support/output.h"
#include "kit/support/progress.h"
#include "kit/support/sources.h"
#include "lint/conflict.h"
#include "support/file_mem.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iterator>

namespace zel::kit {

namespace {

bool is_before(place a, place b)
{
    return a.line != b.line ? a.line < b.line : a.column < b.column;
}

// What such a request means for the application.
std::string message_of(const adjacent_request &found)
{
    const std::string whole = shown(found.whole);
    switch (found.of) {
    case piece::item:
        return "the application asks for " + whole + ", of which only " + shown(found.read) +
               " is read: write it in one piece, or as lang_get";
    case piece::group:
        return "the group " + whole + " is in pieces, so the request is not read";
    default:
        return "the description " + whole + " is in pieces, so the request is not read";
    }
}

} // namespace

lint_source::~lint_source() { keep_to_the_end(std::move(answer_.source)); }

// The markers say better than the reader's messages what is wrong.
void lint_source::take_markers()
{
    char *data = nullptr;
    const std::int64_t size = zel_read_file_to_mem(path_.c_str(), &data);
    if (size < 0)
        return;
    const auto markers = lint::find_conflict_markers({data, static_cast<std::size_t>(size)});
    if (!markers.empty())
        syntax_.clear();
    for (const lint::conflict_marker &marker : markers)
        syntax_.push_back({marker.at, lint::rule_id::syntax, nullptr,
                           "a conflict marker of version control: " + std::string(marker.line)});
    std::free(data);
}

bool lint_source::read(const std::string &path)
{
    path_ = path;
    std::string why = "the file cannot be read";
    const auto hear = [&](const read_message &message) {
        if (const char *failure = read_failure(message))
            why.append(": ").append(failure);
        if (message.row->number != read_not_opened)
            syntax_.push_back({message.at,
                               message.row->number == read_nul_byte ? lint::rule_id::encoding
                                                                    : lint::rule_id::syntax,
                               nullptr, message.row->meaning});
    };
    answer_ = read_source(path.c_str(), {std::time(nullptr), hear, &places_});
    if (answer_.result == read_result::good)
        return true;
    if (answer_.cause != read_cause::syntax) {
        std::fprintf(stderr, "lang-kit: %s: %s\n", path.c_str(),
                     answer_.cause == read_cause::memory ? "not enough memory" : why.c_str());
        return false;
    }
    take_markers();
    return true;
}

void lint_source::each_syntax(const std::function<void(const std::string &)> &to) const
{
    for (const early &one : syntax_)
        to(one.message);
}

void lint_source::judge(const lint::choice &wanted, const shown_listener &to) const
{
    // What is known before the items are judged; the definitions may stand anywhere.
    std::vector<early> before;
    std::copy_if(syntax_.begin(), syntax_.end(), std::back_inserter(before),
                 [&](const early &one) { return wanted.rules.has(one.rule); });
    const auto by_place = [](const early &a, const early &b) { return is_before(a.at, b.at); };
    std::stable_sort(before.begin(), before.end(), by_place);
    std::size_t told = 0;
    const auto tell_until = [&](place at) {
        for (; told < before.size() && is_before(before[told].at, at); ++told)
            to({path_.c_str(), before[told].at, before[told].rule, nullptr, nullptr,
                before[told].language, before[told].message});
    };
    if (source() != nullptr) {
        progress watched(path_, source()->item_count);
        std::size_t done = 0;
        lint::linter judge(source(), wanted);
        judge.check(
            [&](const lint::finding &found) {
                const place at = places_.of(found.record);
                if (found.item == nullptr) {
                    const early added{at, found.rule, found.language, std::string(found.message)};
                    before.insert(std::upper_bound(before.begin(), before.end(), added, by_place),
                                  added);
                    return;
                }
                tell_until(at);
                to({path_.c_str(), at, found.rule, found.group->name, found.item->name,
                    found.language, found.message});
            },
            [&](const item_t *) { watched.at(++done); });
    }
    tell_until({UINT32_MAX, 0});
}

bool judge_code(const std::vector<std::string> &paths, const shown_listener &to)
{
    bool good = true;
    const auto complain = [&](const char *path) {
        std::fprintf(stderr, "lang-kit: %s: cannot be read\n", path);
        good = false;
    };
    const auto tell = [&](const adjacent_request &found) {
        const bool item = found.of == piece::item;
        to({found.path,
            {found.line, found.column},
            lint::rule_id::adjacent,
            found.group.empty() ? nullptr : found.group.c_str(),
            item ? found.whole.c_str() : nullptr,
            nullptr,
            message_of(found)});
    };
    const auto scan = [&](const char *file) {
        if (!find_adjacent(file, tell))
            complain(file);
        return 0;
    };
    for (const std::string &path : paths)
        scan_path(path.c_str(), {scan, complain, complain});
    return good;
}

} // namespace zel::kit
