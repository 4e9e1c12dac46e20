#include "kit/support/difference.h"
#include "kit/support/options.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "merge/merge3.h"
#include "source/last-line.h"

#include <cstdio>

namespace zel::kit {

namespace {

struct merge_options {
    std::string output;
    bool ours = false;
    bool theirs = false;
    bool dry_run = false;
    std::string driver; // the path that the three files stand for
};

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
std::string merged_name(const std::vector<std::string> &files, const std::string &path)
{
    const std::string base = name_in_last_line(files[0].c_str());
    const std::string ours = name_in_last_line(files[1].c_str());
    const std::string theirs = name_in_last_line(files[2].c_str());
    // The side that has changed the name wins, as with any other value.
    const std::string &name = ours == base ? theirs : ours;
    return name.empty() ? path : name;
}

int merge_files(const merge_options &options, const std::vector<std::string> &files)
{
    source_file base = read_whole(files[0]);
    source_file ours = read_whole(files[1]);
    source_file theirs = read_whole(files[2]);
    if (!base || !ours || !theirs)
        return status_fault;
    const side prefer = options.ours ? side::ours : options.theirs ? side::theirs : side::neither;
    const std::vector<conflict> conflicts =
        merge_sources(base.source.get(), ours.source.get(), theirs.source.get(), prefer);
    // Nothing is written if any of the three files has changed meanwhile.
    for (source_file *other : {&base, &theirs}) {
        ours.from.insert(ours.from.end(), other->from.begin(), other->from.end());
        keep_to_the_end(std::move(other->source));
    }
    destination to;
    to.path = options.output.empty() ? files[1] : options.output;
    to.dry_run = options.dry_run;
    to.merged = true;
    if (!options.driver.empty()) {
        to.name = merged_name(files, options.driver);
        // Version control has the old text.
        to.backup = false;
    }
    const bool written = write(to, ours);
    keep_to_the_end(std::move(ours.source));
    if (!written)
        return status_fault;
    if (conflicts.empty())
        return status_fine;
    print_conflicts(options.driver.empty() ? files[1] : options.driver, conflicts);
    return status_found;
}

} // namespace

int run_merge(const word &self, int argc, char **argv)
{
    merge_options options;
    const parsed line = parse(
        self, argc, argv,
        {{.name = "output",
          .argument = "FILE",
          .help = "where the result goes; without it it replaces OURS",
          .text = &options.output,
          .letter = 'o'},
         {.name = "ours", .help = "conflicts go to OURS", .on = &options.ours},
         {.name = "theirs", .help = "conflicts go to THEIRS", .on = &options.theirs},
         {.name = "dry-run", .help = "only say what is in conflict", .on = &options.dry_run},
         {.name = "driver",
          .argument = "PATH",
          .help = "for version control: the three files are copies of that one; OURS is replaced "
                  "without a backup",
          .text = &options.driver}},
        3, 3);
    if (line.ends)
        return line.status;
    if (options.ours && options.theirs)
        return wrong_use(self, "--ours and --theirs exclude each other");
    return merge_files(options, line.files);
}

} // namespace zel::kit
