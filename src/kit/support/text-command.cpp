#include "kit/support/text-command.h"

#include "exchange/language-code.h"
#include "kit/support/git-files.h"
#include "kit/support/json-text.h"
#include "kit/support/output.h"
#include "kit/support/program.h"
#include "kit/support/terms.h"
#include "source/entry.h"
#include "support/safe-file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <utility>

namespace zel::kit {

namespace {

// Whoever answers more than this is no translator.
constexpr std::size_t most_answer = 16 << 20; // bytes
constexpr std::size_t most_growth = 16;       // and that many for each byte of the question

void append_member(std::string &out, std::string_view name, std::string_view value)
{
    out += out.ends_with('{') ? "" : ", ";
    append_json(out, name);
    out += ": ";
    append_json(out, value);
}

// An object of texts by their languages, without those that are blank.
void append_entries(std::string &out, const char *name, GList *entries)
{
    out.append(", \"").append(name) += "\": {";
    for (const lang_entry_t *entry : each<lang_entry_t>(entries))
        if (const std::string text = text_of(entry); !without_end(text).empty())
            append_member(out, or_empty(entry->lang), text);
    out += '}';
}

void append_places(std::string &out, GList *places)
{
    out += ", \"places\": [";
    for (const char *use : each<const char>(places)) {
        const char *colon = use == nullptr ? nullptr : std::strchr(use, ':');
        if (colon == nullptr)
            continue;
        out += out.ends_with('[') ? "" : ", ";
        append_json(out, std::string(colon + 1) + ":" + std::to_string(std::atoi(use)));
    }
    out += ']';
}

// The words of the list of terms, with "/" between several; then the source's own.
void append_terms(std::string &out, const std::string &reference, const char *language,
                  const lint::glossary *list, const term_list &own)
{
    std::vector<std::pair<std::string, std::string>> terms;
    if (list != nullptr)
        for (const lint::glossary::hit &hit : list->in(reference))
            if (const lint::glossary::translation *said = hit.what->in(language)) {
                std::string text;
                for (const std::string &one : said->any)
                    text.append(text.empty() ? "" : "/").append(one);
                terms.emplace_back(hit.what->text, std::move(text));
            }
    const std::vector<std::pair<std::string, std::string>> short_texts = own.in(reference);
    terms.insert(terms.end(), short_texts.begin(), short_texts.end());
    std::set<std::string> known;
    out += ", \"terms\": {";
    for (const auto &[term, text] : terms)
        if (known.insert(term).second)
            append_member(out, term, text);
    out += '}';
}

void append_wanted(std::string &out, const LangSource *source, const wanted_text &wanted,
                   const lint::glossary *list, const term_list &own)
{
    const item_t *item = wanted.item;
    const std::string reference = reference_text(*source, item);
    out += '{';
    append_member(out, "reference", reference);
    append_member(out, "language", view_of(wanted.language));
    append_member(out, "code", exchange::code_of(view_of(wanted.language)));
    append_member(out, "group", view_of(wanted.group->name));
    append_member(out, "item", view_of(item->name));
    append_member(out, "description", description_of(item));
    append_entries(out, "texts", item->langs);
    append_entries(out, "remarks", item->comments);
    append_places(out, item->used_in);
    append_terms(out, reference, wanted.language, list, own);
    out += "}\n";
}

bool complain_of(const std::string &command, const std::string &what)
{
    std::fprintf(stderr, "lang-kit: %s: %s; nothing is written\n", command.c_str(), what.c_str());
    return false;
}

// Runs the command with that input; its output, or none after a line on standard error.
bool run_command(const std::string &command, const std::string &input, std::string &output)
{
    const private_folder folder;
    const std::string path = folder / "wanted";
    // Through a file: a command that answers before it has read all cannot block both sides.
    if (const int error = folder ? replace_file(path.c_str(), input) : errno)
        return complain_of(command, std::string("there is no room for what it would be asked: ") +
                                        std::strerror(error));
    // The shell removes the file once it has opened it: a signal then leaves no texts behind.
    const program_run run = run_program(
        {"/bin/sh", "-c", "exec <\"$1\" || exit; rm -f -- \"$1\" 2>/dev/null; eval \"$2\"",
         "lang-kit", path, command},
        {}, most_answer + most_growth * input.size());
    if (run.too_much)
        return complain_of(command, "does not stop answering");
    std::fputs(run.err.c_str(), stderr);
    if (!run.started)
        return complain_of(command, "cannot be run: " + run.err);
    if (run.status != 0)
        return complain_of(command, "ended with status " + std::to_string(run.status));
    output = run.out;
    return true;
}

// Takes a text from each line.
bool take_lines(const std::string &command, std::string_view lines, std::size_t wanted,
                std::vector<std::string> &texts)
{
    std::size_t count = 0;
    for (; !lines.empty(); ++count) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        std::optional<std::string> text = read_json_text(lines.substr(0, end));
        if (!text && count < wanted)
            return complain_of(command, "line " + std::to_string(count + 1) +
                                            " of its answer is no JSON string");
        texts.push_back(text.value_or(""));
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    return count == wanted || complain_of(command, "answered " + counted(count, "line") + " to " +
                                                       std::to_string(wanted));
}

} // namespace

std::optional<std::vector<std::string>>
ask_command(const std::string &command, const LangSource *source, const entry_index &entries,
            const lint::glossary *list, const std::vector<wanted_text> &wanted)
{
    std::vector<std::string> texts;
    std::string input;
    std::string output;
    std::optional<term_list> terms;
    const char *language = nullptr;
    for (const wanted_text &one : wanted) {
        if (one.language != language)
            terms.emplace(source, entries, language = one.language);
        append_wanted(input, source, one, list, *terms);
    }
    // Without texts to ask for the command is not started.
    if (!wanted.empty() && (!run_command(command, input, output) ||
                            !take_lines(command, output, wanted.size(), texts)))
        return std::nullopt;
    return texts;
}

} // namespace zel::kit
