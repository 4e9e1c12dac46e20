#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "lint/counts.h"

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

// Tenths of a percent, so that only what is complete is 100.0.
std::size_t per_mille(const language_counts &language, std::size_t used)
{
    return used == 0 ? 1000 : language.translated * 1000 / used;
}

std::string bar(std::size_t of_1000)
{
    static constexpr std::array parts{"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
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

// Columns that a text takes on a terminal.
std::size_t columns_of(const std::string &text)
{
    std::size_t columns = 0;
    const char *end = text.data() + text.size();
    for (const char *at = text.data(); at < end;) {
        const gunichar c = g_utf8_get_char_validated(at, end - at);
        const bool good = c < 0x110000;
        columns += good && g_unichar_iswide(c) ? 2U : good && g_unichar_iszerowidth(c) ? 0U : 1U;
        at = good ? g_utf8_next_char(at) : at + 1;
    }
    return columns;
}

using row = std::vector<std::string>;

row row_of(const language_counts &one, std::size_t used)
{
    const std::size_t done = per_mille(one, used);
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

// Names and bars to the left, numbers to the right.
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

} // namespace

int run_stat(const word &self, int argc, char **argv)
{
    std::string format = "text";
    const parsed line =
        parse(self, argc, argv, {{"format", "NAME", "text or json (text)", nullptr, &format}}, 1,
              SIZE_MAX);
    if (line.ends)
        return line.status;
    const int chosen = choose(self, "format", format, {"text", "json"});
    if (chosen < 0)
        return status_fault;
    int status = status_fine;
    std::string json;
    bool first = true;
    for (const std::string &path : line.files) {
        source_guard source = read(path);
        if (source == nullptr) {
            status = status_fault;
            continue;
        }
        const source_counts counts = lint::count_texts(source.get());
        if (chosen == 0) {
            if (!first)
                std::puts("");
            print_table(path, source.get(), counts);
        }
        first = false;
        for (const language_counts &one : counts.languages) {
            json += json.empty() ? "[\n" : ",\n";
            append_language(json, path, one, counts.used);
        }
        keep_to_the_end(std::move(source));
    }
    if (chosen == 1)
        std::puts((json.empty() ? "[]" : json + "\n]").c_str());
    return status;
}

} // namespace zel::kit
