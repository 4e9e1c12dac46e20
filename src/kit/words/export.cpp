#include "exchange/csv.h"
#include "exchange/formats.h"
#include "exchange/po.h"
#include "exchange/tbx.h"
#include "exchange/tmx.h"
#include "kit/support/like-catalogs.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/ready-option.h"
#include "kit/support/sources.h"
#include "kit/support/text-file.h"
#include "kit/words/word-list.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace zel::kit {

namespace {

// A language's name as a file's. What would make a folder or a hidden file, or is not visible, is
// written in hexadecimal.
std::string file_stem(const char *name)
{
    std::string out;
    for (const char *p = name; *p != '\0'; ++p) {
        const auto c = static_cast<unsigned char>(*p);
        char hex[4];
        if (c <= ' ' || c == '/' || c == '\\' || c == '%' || c == 0x7f || (c == '.' && p == name)) {
            std::snprintf(hex, sizeof hex, "%%%02X", c);
            out += hex;
        } else {
            out += *p;
        }
    }
    return out;
}

std::vector<std::string> file_names(const exchange::format &row, const exchange::exporter &from,
                                    const std::string &source)
{
    if (row.writes == exchange::files::one)
        return {std::string(exchange::stem_of(source)) + row.ending};
    std::vector<std::string> names;
    for (const lang_t *lang : from.languages())
        names.push_back(file_stem(lang->name) + row.ending);
    return names;
}

// Writes the files of an export. No file that is there changes before all of them are complete.
bool write_files(const exchange::format &row, exchange::exporter &from,
                 const std::vector<std::string> &paths)
{
    std::vector<text_file> files(paths.size());
    std::vector<exchange::outgoing_file> outgoing;
    for (std::size_t at = 0; at < paths.size(); ++at) {
        // The destructors remove what has been made so far.
        if (!files[at].create(paths[at]))
            return false;
        outgoing.push_back({[&file = files[at]](std::string_view text) { file.append(text); }, {}});
    }
    row.write(from, outgoing);
    return finish_all(files);
}

// Makes the folder if there is none, and writes the files into it.
bool write_into(const std::string &folder, bool dry_run, const exchange::format &row,
                exchange::exporter &from, std::vector<std::string> names)
{
    for (std::string &name : names)
        if (!folder.empty())
            name.insert(0, folder + "/");
    if (dry_run) {
        for (const std::string &name : names)
            std::printf("%s\n", name.c_str());
        return true;
    }
    std::error_code
        error; // GLib's function would name another cause where a folder cannot be looked at
    if (!folder.empty())
        std::filesystem::create_directories(folder, error);
    if (error) {
        std::fprintf(stderr, "lang-kit: %s: %s\n", folder.c_str(), std::strerror(error.value()));
        return false;
    }
    return write_files(row, from, names);
}

void print_plural_notes(const std::string &path, const exchange::exporter::plural_count &plurals)
{
    if (plurals.uneven != 0)
        std::fprintf(stderr,
                     "lang-kit: %s: fuzzy, with another number of forms than the language: %s\n",
                     path.c_str(), counted(plurals.uneven, "plural").c_str());
    if (plurals.partly != 0)
        std::fprintf(stderr, "lang-kit: %s: left out %s of which a form is empty\n", path.c_str(),
                     counted(plurals.partly, "plural").c_str());
}

// Whether catalogs can tell the items apart; else the keys of those that are one to them are said.
bool are_distinct(const std::string &path, exchange::exporter &from)
{
    const std::vector<std::string> lines = exchange::colliding_keys(from);
    for (const std::string &line : lines)
        std::fprintf(stderr, "lang-kit: %s: one message to a catalog: %s\n", path.c_str(),
                     line.c_str());
    return lines.empty();
}

std::vector<std::string> names_but_default(const LangSource &source)
{
    std::vector<std::string> names;
    for (const lang_t *lang : each<lang_t>(source.langs))
        if (lang->name != nullptr && view_of(lang->name) != view_of(source.default_lang))
            names.emplace_back(lang->name);
    return names;
}

} // namespace

int run_export(const word &self, int argc, char **argv)
{
    std::string format_name;
    std::string folder;
    std::string context;
    std::string ready;
    std::vector<std::string> like;
    bool dry_run = false;
    bool no_header = false;
    exchange::export_request request;
    const parsed line = parse(
        self, argc, argv,
        {{.name = "format",
          .argument = "FORMAT",
          .help = exchange::format_help,
          .text = &format_name},
         {.name = "language",
          .argument = "NAME",
          .help = "only this language; may be given again",
          .list = &request.languages},
         {.name = "output",
          .argument = "DIR",
          .help =
              "where the files go, made when it is not there; without it the current directory, "
              "or standard output for a single file of all languages",
          .text = &folder,
          .letter = 'o'},
         {.name = "dry-run", .help = "only say which files would be written", .on = &dry_run},
         {.name = "fuzzy", .help = "po: items that are not ready are fuzzy", .on = &request.fuzzy},
         {.name = "comments", .help = "csv: columns for the comments too", .on = &request.comments},
         {.name = "glossary",
          .help = "csv: a list of terms, with a column of each language by its code",
          .on = &request.glossary},
         {.name = "plain",
          .help = "csv: cells as programs want them, not spreadsheets",
          .on = &request.plain},
         {.name = "no-header", .help = "csv: without the names of the columns", .on = &no_header},
         {.name = "like",
          .argument = "FILE",
          .help = "po: this catalog with the source's texts; may be given again",
          .list = &like},
         {.name = "context",
          .argument = "WHAT",
          .help = "po, pot: what tells messages apart: key, group or none",
          .text = &context},
         {.name = "ready",
          .argument = "WHICH",
          .help = "ts, xliff, xliff2: texts that are final: asis, all or none",
          .text = &ready},
         {.name = "unused",
          .help = "items too that the application does not use",
          .on = &request.unused}},
        1, 1);
    if (line.ends)
        return line.status;
    const int chosen = choose(self, "format", format_name, exchange::written_format_names());
    if (chosen < 0)
        return status_fault;
    const exchange::format &row = exchange::formats()[static_cast<std::size_t>(chosen)];
    if (row.is_whole() && !request.languages.empty())
        return wrong_use(self, "--language is not for whole sources");
    const bool is_catalog = row.write == exchange::write_po || row.write == exchange::write_pot;
    if (!context.empty()) {
        const int at = choose(self, "context", context, {"key", "group", "none"});
        if (at < 0)
            return status_fault;
        if (!is_catalog)
            return wrong_use(self, "--context is for --format po and pot");
        request.context = static_cast<exchange::message_context>(at);
    }
    if (!like.empty() && (row.write != exchange::write_po || !request.languages.empty()))
        return wrong_use(self, "--like is for --format po, without --language");
    if ((request.glossary || request.plain || no_header) && row.write != exchange::write_csv)
        return wrong_use(self, "--glossary, --plain and --no-header are for --format csv");
    request.header = !no_header;
    if (const auto mark = choose_ready(self, row, ready))
        request.ready = *mark;
    else
        return status_fault;
    source_guard source = read(line.files.front());
    if (!source)
        return status_fault;
    request.source = source.get();
    // A memory of the default language would translate each text by itself.
    if ((row.write == exchange::write_tmx || row.write == exchange::write_tbx ||
         request.glossary) &&
        request.languages.empty())
        request.languages = names_but_default(*source);
    exchange::exporter from(request);
    if (request.context && request.context != exchange::message_context::key &&
        !are_distinct(line.files.front(), from))
        return status_fault;
    if (!like.empty())
        return write_like_catalogs(request, like, folder, dry_run);
    // A format of whole sources needs no language.
    if (from.wrong() && !row.is_whole()) {
        std::fprintf(stderr, "lang-kit: %s: %s\n", line.files.front().c_str(),
                     from.wrong().text.c_str());
        return status_fault;
    }
    if (folder.empty() && row.writes == exchange::files::one) {
        if (dry_run)
            return status_fine;
        std::vector<exchange::outgoing_file> standard{
            {[](std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }, {}}};
        row.write(from, standard);
    } else if (!write_into(folder, dry_run, row, from, file_names(row, from, line.files.front()))) {
        return status_fault;
    }
    print_plural_notes(line.files.front(), from.plurals);
    if (from.repeated() != 0)
        std::fprintf(stderr,
                     "lang-kit: %s: left out %s behind another of the same group and name\n",
                     line.files.front().c_str(), counted(from.repeated(), "item").c_str());
    if (from.unheld != 0)
        std::fprintf(stderr, "lang-kit: %s: left out %s with characters that XML does not have\n",
                     line.files.front().c_str(), counted(from.unheld, "text").c_str());
    for (const std::string &text : from.lost)
        std::fprintf(stderr, "lang-kit: %s: %s\n", line.files.front().c_str(), text.c_str());
    keep_to_the_end(std::move(source));
    return from.lost.empty() ? status_fine : status_found;
}

} // namespace zel::kit
