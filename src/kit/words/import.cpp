#include "exchange/import.h"
#include "exchange/json.h"
#include "exchange/key.h"
#include "exchange/tbx.h"
#include "exchange/ts.h"
#include "kit/support/new-from-catalogs.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/ready-option.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "merge/compare.h"
#include "source/write-text.h"

#include <cstdio>
#include <ctime>
#include <utility>

namespace zel::kit {

namespace {

struct import_options {
    std::string format_name;
    std::string output;
    bool dry_run = false;
    bool make_new = false;
    std::string pot;
    std::string ready;
    exchange::import_request request;
    exchange::new_request fresh;
};

// Hears of an import. Changes go to standard output, what is not known to standard error.
struct import_report {
    explicit import_report(const exchange::format &row) : format(row.name) {}

    const std::string_view format;
    std::string path; // of the file being read
    bool unknown = false;
    std::uint32_t foreign = 0; // texts of a memory that name no item

    void hear(const exchange::import_event &event);

private:
    void note(const exchange::import_event &event, const std::string &text) const
    {
        std::fprintf(stderr, "%s:%u: %s\n", path.c_str(), event.unit->line, text.c_str());
    }
};

// Names an item as messages do.
std::string key_of(const exchange::text_unit &unit)
{
    std::string key;
    if (unit.keyed)
        exchange::append_key(key, unit.group, unit.item);
    else
        key = shown(unit.reference);
    return key;
}

void import_report::hear(const exchange::import_event &event)
{
    const std::string key = key_of(*event.unit);
    const std::string language(event.language);
    switch (event.kind) {
    case exchange::import_kind::text:
    case exchange::import_kind::comment:
        std::printf("~ %s %s%s: %s -> %s\n", key.c_str(), language.c_str(),
                    event.kind == exchange::import_kind::comment ? " comment" : "",
                    shown(event.before).c_str(), shown(event.after).c_str());
        return;
    case exchange::import_kind::unfit:
        note(event, key + " " + language + ": a plural form with \"|\" is left out");
        break;
    case exchange::import_kind::outdated:
        note(event, key + " " + language + ": translates " + shown(event.before) + ", now it is " +
                        shown(event.after));
        return;
    case exchange::import_kind::unknown_item:
        if (format == "tmx" && !event.unit->keyed)
            ++foreign;
        else
            note(event, "unknown item " + key);
        break;
    case exchange::import_kind::ambiguous:
        note(event, "ambiguous " + key + ": " + event.after);
        break;
    case exchange::import_kind::unknown_language:
        note(event, format == "pot" && language.empty()
                        ? "a template has texts of no language: --language NAME says whose these "
                          "are, --new --template FILE makes a source with it"
                        : "unknown language " + shown(language));
        break;
    }
    unknown = true;
}

// Reads one file into the source.
bool take_file(const exchange::format &row, const std::string &path, exchange::importer &into)
{
    std::string bytes;
    exchange::fault wrong = exchange::read_input(path, bytes);
    if (!wrong)
        wrong = into.take(row, path, bytes);
    if (wrong)
        say_fault(path, wrong);
    return !wrong;
}

void print_notes(const std::string &path, const exchange::importer &into)
{
    for (const std::string &line : into.notes())
        std::fprintf(stderr, "%s: %s\n", path.c_str(), line.c_str());
    for (const std::string &line : into.plural_notes())
        std::fprintf(stderr, "%s: %s\n", path.c_str(), line.c_str());
}

std::string written(const LangSource *source)
{
    std::string out;
    text_how how;
    how.name = "";
    // Trimming would change the source that is only to be compared.
    how.trim = false;
    source_text text(source, how);
    while (text.append(out, UINT32_MAX)) {
    }
    return out;
}

// Prints one line for each item that is new, has changed or is gone, and one before them for
// everything else that differs from an existing source. Returns whether anything differs but the
// time of saving.
bool print_differences(LangSource *before, LangSource *after)
{
    // A new source is compared with an empty one, so that every item counts as added.
    const source_guard nothing(before == nullptr ? lang_alloc_group() : nullptr);
    const bool is_new = before == nullptr;
    if (is_new)
        before = nothing.get();
    std::string items;
    bool others = false;
    std::pair<const char *, const char *> last; // the item whose line is the last one
    compare_sources(before, after, true, [&](const difference &one) {
        others = others || one.item == nullptr;
        if (one.item == nullptr || last == std::pair(one.group, one.item))
            return;
        last = {one.group, one.item};
        const bool whole = one.field == std::string_view("item");
        items += !whole ? "~ " : one.how == change::added ? "+ " : "- ";
        exchange::append_key(items, one.group, one.item);
        items += '\n';
    });
    after->mtime = before->mtime;
    if (!others && items.empty() && written(before) == written(after))
        return false;
    std::printf("%s%s",
                !is_new && (others || items.empty()) ? "~ languages, groups and order\n" : "",
                items.c_str());
    return true;
}

// For a format of whole sources: the file replaces the source, which need not exist.
int take_whole(const import_options &options, const std::vector<std::string> &files)
{
    source_file before{nullptr, {seen_file(files[0])}};
    // A source that exists and cannot be read is not replaced.
    if (!is_absent(files[0]) && !(before = read_whole(files[0])))
        return status_fault;
    std::string bytes;
    exchange::fault wrong = exchange::read_input(files[1], bytes);
    source_guard source;
    if (!wrong)
        source = exchange::read_json(bytes, std::time(nullptr), wrong);
    if (!source) {
        say_fault(files[1], wrong);
        return status_fault;
    }
    if (!print_differences(before.source.get(), source.get()) && options.output.empty())
        return status_fine;
    const std::string &to = options.output.empty() ? files[0] : options.output;
    return write({to, options.dry_run}, source.get(), before.from) ? status_fine : status_fault;
}

int take_files(const exchange::format &row, import_options &options,
               const std::vector<std::string> &files)
{
    const source_file file = read_whole(files.front());
    if (!file)
        return status_fault;
    import_report report(row);
    options.request.hear = [&](const exchange::import_event &event) { report.hear(event); };
    exchange::importer into(file.source.get(), options.request);
    for (std::size_t at = 1; at < files.size(); ++at) {
        report.path = files[at];
        report.foreign = 0;
        const std::uint32_t guesses = into.guesses();
        if (!take_file(row, files[at], into))
            return status_fault;
        if (into.guesses() != guesses)
            std::fprintf(stderr, "%s: left out %s\n", files[at].c_str(),
                         counted(into.guesses() - guesses, "fuzzy text").c_str());
        if (report.foreign != 0)
            std::fprintf(stderr,
                         "%s: left out %s of another program's memory, which names no items: "
                         "lang-kit fill --from takes what the source lacks\n",
                         files[at].c_str(), counted(report.foreign, "text").c_str());
        print_notes(files[at], into);
    }
    const std::string &to = options.output.empty() ? files.front() : options.output;
    // What has not changed is not written: no backup, no new time.
    if ((into.changed() != 0 || !options.output.empty()) && !write({to, options.dry_run}, file))
        return status_fault;
    return report.unknown ? status_found : status_fine;
}

// Makes a new source from catalogs, if what is asked for fits together.
int make_new(const word &self, import_options &options, const exchange::format &row,
             const std::vector<std::string> &files)
{
    const bool is_ts = row.read == exchange::read_ts;
    const bool is_po = std::string_view(row.name) == "po";
    const bool is_tbx = row.read == exchange::read_tbx;
    if (!is_po && !is_ts && !is_tbx && row.keyed == nullptr)
        return wrong_use(self, "--new is for --format po, ts, tbx, json, ini and rc");
    if (!is_po && !options.pot.empty())
        return wrong_use(self, "--template is for --format po");
    if (options.output.empty())
        return wrong_use(self, "--new needs -o FILE");
    // Looked at before: whoever writes the file from here on is not overwritten.
    const seen_file before(options.output);
    if (const int status = refuse_present(self, options.output))
        return status;
    options.fresh.guesses = options.request.guesses;
    options.fresh.now = std::time(nullptr);
    if (row.keyed != nullptr)
        return make_from_keys(options.fresh, row.keyed, files, {options.output, options.dry_run},
                              before);
    take_catalog take = &exchange::new_source::take;
    if (is_ts)
        take = &exchange::new_source::take_ts;
    else if (is_tbx)
        take = exchange::take_tbx;
    return make_from_catalogs(options.fresh, take, options.pot, files,
                              {options.output, options.dry_run}, before);
}

int import_into(const word &self, import_options &options, const exchange::format &row,
                const std::vector<std::string> &files)
{
    if (files.size() < 2)
        return wrong_use(self, std::string("a file is missing: lang-kit import ") + self.arguments);
    if (row.write == nullptr)
        return wrong_use(self, std::string("--format ") + row.name + " is for --new");
    if (!row.is_whole())
        return take_files(row, options, files);
    if (options.request.comments || options.request.guesses || !options.request.language.empty())
        return wrong_use(self, "--comments, --fuzzy and --language are not for whole sources");
    if (files.size() != 2)
        return wrong_use(self, "one file too many: \"" + files[2] + "\"");
    return take_whole(options, files);
}

} // namespace

int run_import(const word &self, int argc, char **argv)
{
    import_options options;
    const parsed line = parse(
        self, argc, argv,
        {{.name = "format",
          .argument = "FORMAT",
          .help = exchange::import_format_help,
          .text = &options.format_name},
         {.name = "language",
          .argument = "NAME",
          .help = "the language of the files, whatever they say",
          .text = &options.request.language},
         {.name = "comments", .help = "take comments too", .on = &options.request.comments},
         {.name = "fuzzy", .help = "take fuzzy texts too", .on = &options.request.guesses},
         {.name = "ready",
          .argument = "WHICH",
          .help = "ts, xliff, xliff2: texts that count as final: asis, all or none",
          .text = &options.ready},
         {.name = "dry-run", .help = "only say what would change", .on = &options.dry_run},
         {.name = "output",
          .argument = "FILE",
          .help = "write the source there",
          .text = &options.output,
          .letter = 'o'},
         {.name = "new", .help = "make a new source from catalogs alone", .on = &options.make_new},
         {.name = "default",
          .argument = "NAME",
          .help = "its default language (english)",
          .text = &options.fresh.default_language},
         {.name = "template",
          .argument = "FILE",
          .help = "its template (.pot): what that lacks is not used",
          .text = &options.pot},
         {.name = "group",
          .argument = "NAME",
          .help = "its group for messages without a context",
          .text = &options.fresh.group}},
        1, static_cast<std::size_t>(-1));
    if (line.ends)
        return line.status;
    const int at = choose(self, "format", options.format_name, exchange::format_names());
    if (at < 0)
        return status_fault;
    const exchange::format &row = exchange::formats()[static_cast<std::size_t>(at)];
    if (const auto ready = choose_ready(self, row, options.ready))
        options.request.ready = *ready;
    else
        return status_fault;
    if (!options.make_new && !options.pot.empty())
        return wrong_use(self, "--template is for --new");
    return options.make_new ? make_new(self, options, row, line.files)
                            : import_into(self, options, row, line.files);
}

} // namespace zel::kit
