#include "kit/support/lint-run.h"

#include "kit/support/code-scan.h"
#include "kit/support/output.h"
#include "kit/support/progress.h"
#include "kit/support/sources.h"
#include "lint/conflict.h"
#include "source/item-index.h"
#include "support/file_mem.h"
#include "support/text.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <unordered_set>

namespace zel::kit {

namespace {

bool is_before(place a, place b)
{
    return a.line != b.line ? a.line < b.line : a.column < b.column;
}

const char *text(const char *name) { return name == nullptr ? "" : name; }

// One source with the items of all, which the scan may add to and mark.
source_guard gather(const std::vector<std::unique_ptr<lint_source>> &sources)
{
    source_guard out(lang_alloc_group());
    item_index index(out.get());
    for (const auto &one : sources)
        for (const edit_t *group : each<edit_t>(one->source()->groups))
            for (const item_t *item : each<item_t>(group->items))
                // An item that stands in several sources counts once.
                if (index.find(text(group->name), text(item->name)) == nullptr)
                    index.insert(text(group->name), text(item->name));
    return out;
}

void tell_unasked(const lint_source &of, item_index &asked, const shown_listener &to)
{
    for (const edit_t *group : each<edit_t>(of.source()->groups))
        for (const item_t *item : each<item_t>(group->items))
            // gather has put the items of all sources into the index.
            if (asked.find(text(group->name), text(item->name))->item->used == 0)
                to({of.path().c_str(), of.place_of(item), lint::rule_id::unasked, group->name,
                    item->name, nullptr, "asked for in no file"});
}

} // namespace

lint_source::~lint_source() { keep_to_the_end(std::move(answer_.source)); }

// Puts conflict markers in place of the reader's messages: they say better what is wrong.
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

bool lint_source::fail(const std::string &why)
{
    std::fprintf(stderr, "lang-kit: %s: %s\n", path_.c_str(), why.c_str());
    failure_ = why;
    return false;
}

bool lint_source::read(const std::string &path)
{
    path_ = path;
    // A pipe gives its text once, and take_markers may read it again.
    if (is_named_pipe(path))
        return fail("it is a pipe");
    std::string why = "the file cannot be read";
    const auto hear = [&](const read_message &message) {
        if (const char *failure = read_failure(message))
            why.append(": ").append(failure);
        // fail() tells of a file that cannot be opened.
        if (message.row->number != read_not_opened)
            syntax_.push_back({message.at,
                               message.row->number == read_nul_byte ? lint::rule_id::encoding
                                                                    : lint::rule_id::syntax,
                               nullptr, message.row->meaning});
    };
    answer_ = read_source(path.c_str(), {std::time(nullptr), hear, &places_});
    if (answer_.result == read_result::good)
        return true;
    if (answer_.cause != read_cause::syntax)
        return fail(answer_.cause == read_cause::memory ? "not enough memory" : why);
    // A malformed source is a finding and no failure.
    take_markers();
    return true;
}

void lint_source::each_syntax(const std::function<void(const std::string &)> &to) const
{
    for (const early &one : syntax_)
        to(one.message);
}

std::size_t lint_source::judge(const lint::choice &wanted, const shown_listener &to) const
{
    // Findings about the file and its definitions, which may stand anywhere: they are told between
    // those of the items, in the order of their places.
    std::vector<early> before;
    std::copy_if(syntax_.begin(), syntax_.end(), std::back_inserter(before),
                 [&](const early &one) { return wanted.rules.has(one.rule); });
    const auto by_place = [](const early &a, const early &b) { return is_before(a.at, b.at); };
    // Findings in one place keep the order in which they came.
    std::stable_sort(before.begin(), before.end(), by_place);
    std::size_t told = 0;
    std::size_t unmeasured = 0;
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
        unmeasured = judge.unmeasured();
    }
    // Whatever is left stands behind the last item.
    tell_until({UINT32_MAX, 0});
    return unmeasured;
}

bool judge_code(const code_job &job, const std::vector<std::unique_ptr<lint_source>> &sources,
                const shown_listener &to)
{
    const auto reads = [](const auto &one) { return one->source() != nullptr; };
    // While one source is missing, nobody can tell what is unknown or not asked for.
    const bool all_read = std::all_of(sources.begin(), sources.end(), reads);
    const source_guard known(all_read ? gather(sources) : source_guard(lang_alloc_group()));
    std::unordered_set<const item_t *> inserted; // there may be several requests for one
    const char *none = sources.size() == 1 ? "the source has no item " : "no source has the item ";
    const auto tell = [&](const char *path, place at, lint::rule_id rule, const char *group,
                          const char *item, const std::string &message) {
        if (job.rules.has(rule))
            to({path, at, rule, group, item, nullptr, message});
    };
    const scan_listener listener{
        [&](const found_request &one) {
            if (one.inserted)
                inserted.insert(one.item);
            if (all_read && !inserted.empty() && inserted.contains(one.item))
                tell(one.path, one.at, lint::rule_id::unknown, one.group, one.item->name,
                     none + shown(std::string(one.group) + ":" + or_empty(one.item->name)));
        },
        [&](const unread_request &one) {
            tell(one.path, one.at, lint::rule_id::unread, nullptr, nullptr, message_of(one));
        },
        [&](const adjacent_request &one) {
            tell(one.path, one.at, lint::rule_id::adjacent,
                 one.group.empty() ? nullptr : one.group.c_str(),
                 one.of == piece::item ? one.whole.c_str() : nullptr, message_of(one));
        }};
    item_index index(known.get());
    if (!scan_code(index, job.paths, {0, nullptr, &listener, job.wrappers}))
        return false;
    if (all_read && job.rules.has(lint::rule_id::unasked))
        for (const auto &one : sources)
            tell_unasked(*one, index, to);
    return true;
}

} // namespace zel::kit
