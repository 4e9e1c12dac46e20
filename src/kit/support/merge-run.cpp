#include "kit/support/merge-run.h"

#include "kit/support/difference.h"
#include "kit/support/sources.h"
#include "kit/support/word.h"
#include "source/last-line.h"

#include <cstdio>
#include <utility>

namespace zel::kit {

namespace {

const char *name_or_null(const std::optional<std::string> &name)
{
    return name ? name->c_str() : nullptr;
}

void append_side(std::string &out, const field_value &value, const char *where)
{
    out += value.is == field_value::none ? "removed" : value_text(value);
    out.append(" ") += where;
}

// Prints a line for each conflict, "FILE: conflict: menu:_Save german: \"Sichern\" here,
// \"Speichern\" there", and how many there are.
void print_conflicts(const std::string &file, const std::vector<conflict> &conflicts)
{
    std::string out;
    for (const conflict &one : conflicts) {
        out.append(file) += ": conflict: ";
        append_subject(out, name_or_null(one.group), name_or_null(one.item),
                       name_or_null(one.language), one.field.c_str());
        out += ": ";
        append_side(out, one.ours, "here, ");
        append_side(out, one.theirs, "there\n");
    }
    out += file + ": " + std::to_string(conflicts.size()) +
           (conflicts.size() == 1 ? " conflict\n" : " conflicts\n");
    std::fwrite(out.data(), 1, out.size(), stderr);
}

// The path in the last line is merged like everything else: else it would become that of a
// temporary copy.
std::string merged_name(const merge_job &job)
{
    const std::string base = name_in_last_line(job.base.c_str());
    const std::string ours = name_in_last_line(job.ours.c_str());
    const std::string theirs = name_in_last_line(job.theirs.c_str());
    // The side that has changed the name wins, as with any other value.
    const std::string &name = ours == base ? theirs : ours;
    return name.empty() ? job.driver : name;
}

} // namespace

int merge_files(const merge_job &job)
{
    const auto shown = [&](const char *version) {
        return job.are_own ? job.driver + " (" + version + ")" : std::string();
    };
    source_file base = read_whole(job.base, 0, shown("base"));
    source_file ours = read_whole(job.ours, 0, shown("ours"));
    source_file theirs = read_whole(job.theirs, 0, shown("theirs"));
    if (!base || !ours || !theirs)
        return status_fault;
    const std::vector<conflict> conflicts =
        merge_sources(base.source.get(), ours.source.get(), theirs.source.get(), job.prefer);
    // Nothing is written if any of the three files has changed meanwhile.
    for (source_file *other : {&base, &theirs}) {
        ours.from.insert(ours.from.end(), other->from.begin(), other->from.end());
        keep_to_the_end(std::move(other->source));
    }
    destination to;
    to.path = job.output.empty() ? job.ours : job.output;
    to.dry_run = job.dry_run;
    to.merged = true;
    if (!job.driver.empty()) {
        to.name = merged_name(job);
        // Version control has the old text.
        to.backup = false;
    }
    const bool written = write(to, ours);
    keep_to_the_end(std::move(ours.source));
    if (!written)
        return status_fault;
    if (conflicts.empty())
        return status_fine;
    print_conflicts(job.driver.empty() ? job.ours : job.driver, conflicts);
    return status_found;
}

} // namespace zel::kit
