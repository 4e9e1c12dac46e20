#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/settings.h"
#include "kit/support/shown-texts.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "lint/counts.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace zel::kit {

namespace {

using lint::language_counts;
using lint::source_counts;

std::string name_of(const language_counts &language)
{
    return language.language->name == nullptr ? "" : language.language->name;
}

constexpr std::size_t bar_columns = 20;

// In tenths of a percent, rounded down, so that only what is complete is 100.0.
std::size_t per_mille(std::size_t done, std::size_t used)
{
    // Without an item in use, nothing is left to do.
    return used == 0 ? 1000 : done * 1000 / used;
}

std::string bar(std::size_t of_1000)
{
    static constexpr std::array parts{"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
    // Each column can show eighths of a block.
    const std::size_t eighths = of_1000 * bar_columns * 8 / 1000;
    std::string out;
    for (std::size_t i = 0; i < eighths / 8; ++i)
        out += "█";
    out += parts[eighths % 8];
    for (std::size_t i = (eighths + 7) / 8; i < bar_columns; ++i)
        out += "·";
    return out;
}

std::string percent(std::size_t of_1000)
{
    return std::to_string(of_1000 / 10) + "." + std::to_string(of_1000 % 10) + " %";
}

using row = std::vector<std::string>;

row row_of(const language_counts &one, std::size_t used)
{
    const std::size_t done = per_mille(one.translated, used);
    return {name_of(one),
            bar(done),
            percent(done),
            with_commas(one.translated),
            with_commas(one.missing),
            with_commas(one.empty),
            one.is_reference ? "-" : with_commas(one.same),
            with_commas(one.ready),
            with_commas(one.done.words),
            with_commas(one.done.characters)};
}

// Prints names and bars to the left, numbers to the right.
void print_rows(const std::vector<row> &rows)
{
    std::vector<std::size_t> widths(rows.front().size());
    for (const row &one : rows)
        for (std::size_t i = 0; i < one.size(); ++i)
            widths[i] = std::max(widths[i], columns_of(one[i]));
    for (const row &one : rows) {
        std::string line;
        for (std::size_t i = 0; i < one.size(); ++i) {
            const std::string gap(widths[i] - columns_of(one[i]), ' ');
            line += i == 0 ? "" : "  ";
            line += i < 2 ? one[i] + gap : gap + one[i];
        }
        std::puts(line.c_str());
    }
}

void print_table(const std::string &path, const LangSource *source, const source_counts &counts)
{
    std::printf("%s: %s of %s items are used, the reference is %s\n", path.c_str(),
                with_commas(counts.used).c_str(), with_commas(counts.items).c_str(),
                source->default_lang == nullptr ? "the item" : source->default_lang);
    std::vector<row> rows{{"language", "", "", "translated", "missing", "empty", "same", "ready",
                           "words", "characters"}};
    for (const language_counts &one : counts.languages)
        rows.push_back(row_of(one, counts.used));
    print_rows(rows);
}

void append_language(std::string &out, const std::string &path, const language_counts &one,
                     std::size_t used)
{
    const struct {
        const char *name;
        std::size_t number;
    } numbers[] = {
        {"items", used},
        {"translated", one.translated},
        {"missing", one.missing},
        {"empty", one.empty},
        {"same", one.same},
        {"ready", one.ready},
        {"words", one.done.words},
        {"characters", one.done.characters},
        {"words_left", one.left.words},
        {"characters_left", one.left.characters},
    };
    out += "{\"file\": ";
    append_json(out, path);
    out += ", \"language\": ";
    append_json(out, name_of(one));
    out += std::string(", \"reference\": ") + (one.is_reference ? "true" : "false");
    for (const auto &number : numbers)
        out += std::string(", \"") + number.name + "\": " + std::to_string(number.number);
    out += '}';
}

struct stat_settings {
    std::string format = "text";
    std::string at_least;
    std::string trace;
    std::vector<std::string> languages;
    bool ready = false;
};

// Percent from "90" or "84.5"; -1 for anything else.
double percent_of(const std::string &text)
{
    char *end = nullptr;
    // A decimal point in every locale.
    const double value = g_ascii_strtod(text.c_str(), &end);
    const bool good = !text.empty() && g_ascii_isdigit(text[0]) && *end == '\0' && value <= 100;
    return good ? value : -1;
}

// The languages of a source that are wanted: those that are named, else all.
std::vector<language_counts> chosen_of(const source_counts &counts, const stat_settings &given)
{
    std::vector<language_counts> out;
    for (const language_counts &one : counts.languages)
        if (given.languages.empty() || std::find(given.languages.begin(), given.languages.end(),
                                                 name_of(one)) != given.languages.end())
            out.push_back(one);
    return out;
}

// Prints a line for each language with fewer texts than wanted: "french: 84.2 % of 31 items, 90
// wanted". False when there was one.
bool print_below(const std::string &start, const source_counts &counts, const stat_settings &given,
                 std::FILE *to)
{
    const double wanted = percent_of(given.at_least);
    bool enough = true;
    for (const language_counts &one : counts.languages) {
        const std::size_t done = given.ready ? one.ready : one.translated;
        // Compared without rounding: 89.96 percent are fewer than 90.
        if (static_cast<double>(done) * 100 >= wanted * static_cast<double>(counts.used))
            continue;
        enough = false;
        std::fprintf(to, "%s%s: %s%s of %s, %s wanted\n", start.c_str(), name_of(one).c_str(),
                     percent(per_mille(done, counts.used)).c_str(), given.ready ? " ready" : "",
                     counted(counts.used, "item").c_str(), given.at_least.c_str());
    }
    return enough;
}

// Counts one source after the other and prints what is wanted of each.
class stat_run {
public:
    stat_run(const stat_settings &given, bool json, bool several)
        : given_(given), json_(json), several_(several)
    {
    }
    void count(const std::string &path)
    {
        source_guard source = read(path);
        if (source == nullptr) {
            status_ = status_fault;
            return;
        }
        source_counts counts = lint::count_texts(source.get());
        counts.languages = chosen_of(counts, given_);
        found_ = found_ || !counts.languages.empty();
        if (!given_.at_least.empty()) {
            if (!print_below(several_ ? path + ": " : "", counts, given_, json_ ? stderr : stdout))
                status_ = std::max<int>(status_, status_found);
        } else if (!json_) {
            if (!first_)
                std::puts("");
            print_table(path, source.get(), counts);
        }
        first_ = false;
        for (const language_counts &one : counts.languages) {
            text_ += text_.empty() ? "[\n" : ",\n";
            append_language(text_, path, one, counts.used);
        }
        keep_to_the_end(std::move(source));
    }
    int end(const word &self)
    {
        if (json_)
            std::puts((text_.empty() ? "[]" : text_ + "\n]").c_str());
        if (!first_ && !found_ && !given_.languages.empty())
            return wrong_use(self,
                             "no source defines the language \"" + given_.languages.front() + "\"");
        return status_;
    }

private:
    const stat_settings &given_;
    bool json_;
    bool several_;
    bool first_ = true;
    bool found_ = false; // a language that is looked at
    int status_ = status_fine;
    std::string text_;
};

// Counts the texts that an application has asked for, in one source after the other.
int count_shown_texts(const stat_settings &given, bool json, const std::vector<std::string> &paths)
{
    trace asked;
    if (!read_trace(given.trace, asked))
        return status_fault;
    std::set<text_key> unknown = asked.asked;
    std::string objects;
    int status = status_fine;
    for (const std::string &path : paths) {
        source_guard source = read(path);
        if (source == nullptr) {
            status = status_fault;
            continue;
        }
        const shown_texts texts = count_shown(source.get(), asked, unknown);
        const double wanted = given.at_least.empty() ? 0 : percent_of(given.at_least);
        if (static_cast<double>(texts.shown) * 100 < wanted * static_cast<double>(texts.used))
            status = std::max<int>(status, status_found);
        objects += objects.empty() ? "[\n" : ",\n";
        append_shown(objects, path, texts);
        if (!json)
            print_shown(paths.size() > 1 ? path + ": " : "", texts);
        keep_to_the_end(std::move(source));
    }
    if (json)
        std::puts((objects.empty() ? "[]" : objects + "\n]").c_str());
    for (const text_key &text : unknown) {
        std::string line = "asked for, and in no source: ";
        append_line(line, text.first + ":" + text.second);
        std::fprintf(stderr, "%s\n", line.c_str());
    }
    return status;
}

} // namespace

int run_stat(const word &self, int argc, char **argv)
{
    stat_settings given;
    const parsed line = parse(
        self, argc, argv,
        {{.name = "format",
          .argument = "NAME",
          .help = "text or json (text)",
          .text = &given.format},
         {.name = "at-least",
          .argument = "PERCENT",
          .help = "only tell the languages with fewer texts of the items in use, with status 1",
          .text = &given.at_least},
         {.name = "trace",
          .argument = "FILE",
          .help = "tell the items in use that an application has not asked for, by LANG_TRACE",
          .text = &given.trace},
         {.name = "ready",
          .help = "with --at-least: count the items that are ready",
          .on = &given.ready},
         {.name = "language",
          .argument = "NAME",
          .help = "only this language; may be given again",
          .list = &given.languages}},
        1, SIZE_MAX);
    if (line.ends)
        return line.status;
    settings project;
    const int format = choose(self, "format", given.format, {"text", "json"});
    if (format < 0 || !read_settings(line.files.front(), project))
        return status_fault;
    if (!given.at_least.empty() && percent_of(given.at_least) < 0)
        return wrong_use(self, "--at-least is a number to 100, not \"" + given.at_least + "\"");
    if (!given.trace.empty() && (given.ready || !given.languages.empty()))
        return wrong_use(self, "--trace counts no languages");
    if (!given.trace.empty())
        return count_shown_texts(given, format == 1, line.files);
    take_setting(given.languages, project.languages);
    stat_run counting(given, format == 1, line.files.size() > 1);
    for (const std::string &path : line.files)
        counting.count(path);
    return counting.end(self);
}

} // namespace zel::kit
