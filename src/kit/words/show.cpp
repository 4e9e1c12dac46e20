#include "exchange/key.h"
#include "kit/support/difference.h"
#include "kit/support/options.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "lex/lex-misc.h"
#include "merge/records.h"
#include "support/file_mem.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

namespace zel::kit {

namespace {

// Prints a source record by record: a line for each record and its values below it, one on a line,
// as far as they differ from those of a fresh record. A text of several lines has a line for each.
class source_print {
public:
    explicit source_print(const LangSource &source) : source_(source) {}
    void print();

private:
    void print_name(const char *keyword, std::string_view name);
    template <class T>
    void print_values(std::span<const field<T>> rows, const T &record, const T &fresh);
    void print_text(GList *texts);
    const std::string &language(std::size_t at, std::string_view name);
    void print_entries(const char *before, GList *entries);
    void print_item(const edit_t &group, const item_t &item);
    void flush(std::size_t least)
    {
        if (out_.size() < least)
            return;
        std::fwrite(out_.data(), 1, out_.size(), stdout);
        out_.clear();
    }

    const LangSource &source_;
    std::string out_;
    std::vector<std::pair<std::string, std::string>> languages_; // names, and as they are printed
    const item_t fresh_item_ = fresh_record(alloc_item);
};

template <class T>
void source_print::print_values(std::span<const field<T>> rows, const T &record, const T &fresh)
{
    for (const field<T> &row : rows)
        if (!agree(row, record, fresh))
            out_.append("  ").append(row.name).append(" ").append(
                value_text(value_of(row, record))) += '\n';
}

void source_print::print_name(const char *keyword, std::string_view name)
{
    out_.append("\n").append(keyword) += ' ';
    exchange::append_name(out_, name);
    out_ += '\n';
}

// Prints a text behind what names it, cut at line ends.
void source_print::print_text(GList *texts)
{
    out_ += " \"";
    bool at_line_end = false;
    for (const char *text : each<char>(texts)) {
        for (text = or_empty(text); *text != '\0';) {
            // The quotes are closed and opened again only if more text follows.
            if (at_line_end)
                out_ += "\"\n    \"";
            const std::size_t plain = std::strcspn(text, escaped_bytes);
            out_.append(text, plain);
            text += plain;
            at_line_end = *text == '\n';
            if (*text != '\0')
                out_.append(1, '\\') += escape_letter(static_cast<unsigned char>(*text++));
        }
    }
    out_ += "\"\n";
}

void source_print::print_entries(const char *before, GList *entries)
{
    std::size_t at = 0;
    for (const lang_entry_t *entry : each<lang_entry_t>(entries)) {
        out_ += before;
        out_ += language(at++, name_of(*entry));
        print_text(entry->texts);
    }
}

// A language's name as it is printed. The items name the same languages in the same order, so each
// name is made once.
const std::string &source_print::language(std::size_t at, std::string_view name)
{
    if (at == languages_.size())
        languages_.emplace_back();
    auto &[known, printed] = languages_[at];
    if (known != name) {
        known = name;
        printed.clear();
        exchange::append_name(printed, name);
    }
    return printed;
}

void source_print::print_item(const edit_t &group, const item_t &item)
{
    out_ += "\nITEM ";
    exchange::append_key(out_, name_of(group), name_of(item));
    out_ += '\n';
    print_values<item_t>(item_fields, item, fresh_item_);
    print_entries("  ", item.langs);
    print_entries("  comment ", item.comments);
    constexpr std::size_t worth_a_write = 256 * 1024;
    flush(worth_a_write);
}

void source_print::print()
{
    for (const field<LangSource> &row : source_fields)
        out_.append(row.name).append(" ").append(value_text(value_of(row, source_))) += '\n';
    const lang_t fresh_language = fresh_record(alloc_lang);
    for (const lang_t *lang : each<lang_t>(source_.langs)) {
        print_name("LANGUAGE", name_of(*lang));
        print_values<lang_t>(language_fields, *lang, fresh_language);
    }
    const edit_t fresh_group = fresh_record(lang_alloc_edit);
    for (const edit_t *group : each<edit_t>(source_.groups)) {
        print_name("GROUP", name_of(*group));
        print_values<edit_t>(group_fields, *group, fresh_group);
        for (const item_t *item : each<item_t>(group->items))
            print_item(*group, *item);
    }
    flush(0);
}

// Prints the file as it is. False when it cannot be read.
bool print_file(const std::string &path)
{
    char *data = nullptr;
    const std::int64_t size = zel_read_file_to_mem(path.c_str(), &data);
    if (size < 0)
        return false;
    std::fwrite(data, 1, static_cast<std::size_t>(size), stdout);
    std::free(data);
    return true;
}

} // namespace

int run_show(const word &self, int argc, char **argv)
{
    bool or_file = false;
    const parsed line =
        parse(self, argc, argv,
              {{.name = "or-file",
                .help = "print a file that is no source as it is, for version control",
                .on = &or_file}},
              1, 1);
    if (line.ends)
        return line.status;
    source_guard source = read(line.files.front());
    if (!source)
        return or_file && print_file(line.files.front()) ? status_fine : status_fault;
    source_print(*source).print();
    keep_to_the_end(std::move(source));
    return status_fine;
}

} // namespace zel::kit
