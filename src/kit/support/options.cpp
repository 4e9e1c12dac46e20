#include "kit/support/options.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <sys/stat.h>

#include <glib.h>

namespace zel::kit {

namespace {

struct option_context_release {
    void operator()(GOptionContext *context) const noexcept { g_option_context_free(context); }
};
using context_guard = std::unique_ptr<GOptionContext, option_context_release>;

// Holds the option parser's values until they are taken over.
struct values {
    gboolean help = FALSE;
    gchar **files = nullptr;
    std::vector<gboolean> on;
    std::vector<gchar *> text;
    std::vector<gchar **> list;

    explicit values(std::size_t count) : on(count, FALSE), text(count), list(count) {}
    ~values()
    {
        g_strfreev(files);
        for (gchar *one : text)
            g_free(one);
        for (gchar **one : list)
            g_strfreev(one);
    }
    values(const values &) = delete;
    values &operator=(const values &) = delete;
};

// Values are taken as file names: byte for byte, in every locale.
GOptionEntry entry_of(const option &row, values &to, std::size_t i)
{
    GOptionEntry entry{};
    entry.long_name = row.name;
    entry.short_name = row.letter;
    entry.description = row.help;
    entry.arg_description = row.argument;
    if (row.on != nullptr) {
        entry.arg = G_OPTION_ARG_NONE;
        entry.arg_data = &to.on[i];
    } else if (row.text != nullptr) {
        entry.arg = G_OPTION_ARG_FILENAME;
        entry.arg_data = &to.text[i];
    } else {
        entry.arg = G_OPTION_ARG_FILENAME_ARRAY;
        entry.arg_data = &to.list[i];
    }
    return entry;
}

void append_split(std::vector<std::string> &out, std::string_view value)
{
    while (!value.empty()) {
        const std::size_t comma = value.find(',');
        if (comma != 0)
            out.emplace_back(value.substr(0, comma));
        value.remove_prefix(comma == std::string_view::npos ? value.size() : comma + 1);
    }
}

void take_over(const option &row, const values &from, std::size_t i)
{
    if (row.on != nullptr && from.on[i])
        *row.on = true;
    if (row.text != nullptr && from.text[i] != nullptr)
        *row.text = from.text[i];
    for (gchar **one = from.list[i]; row.list != nullptr && one != nullptr && *one != nullptr;
         ++one)
        if (row.split)
            append_split(*row.list, *one);
        else
            row.list->emplace_back(*one);
}

// Spells an option as the help shows it: "-o, --output FILE".
std::string spelt(const GOptionEntry &entry)
{
    std::string text;
    if (entry.short_name != '\0')
        text.append(1, '-').append(1, entry.short_name).append(", ");
    text.append("--").append(entry.long_name);
    if (entry.arg_description != nullptr)
        text.append(1, ' ').append(entry.arg_description);
    return text;
}

parsed fault(const word &self, const std::string &text)
{
    return {true, wrong_use(self, text), {}};
}

} // namespace

int wrong_use(const word &self, const std::string &text)
{
    std::fprintf(stderr, "lang-kit %s: %s\n", self.name, text.c_str());
    return status_fault;
}

int refuse_present(const word &self, const std::string &path)
{
    struct stat status {};
    if (stat(path.c_str(), &status) == 0)
        return wrong_use(self, "\"" + path + "\" is there already");
    // Of a file that cannot be looked at nobody knows.
    return errno == ENOENT ? status_fine : wrong_use(self, path + ": " + std::strerror(errno));
}

int choose(const word &self, const char *option_name, const std::string &value,
           const std::vector<const char *> &names)
{
    std::string all;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (value == names[i])
            return static_cast<int>(i);
        all += (i == 0 ? "" : i + 1 == names.size() ? " or " : ", ") + std::string(names[i]);
    }
    wrong_use(self, std::string("--") + option_name + " is " + all + ", not \"" + value + "\"");
    return -1;
}

bool take_percent(const word &self, const char *option_name, const std::string &value,
                  unsigned &percent)
{
    unsigned number = 0;
    const char *end = value.data() + value.size();
    const auto [rest, error] = std::from_chars(value.data(), end, number);
    const bool good = error == std::errc() && rest == end && number >= 1 && number <= 100;
    if (good)
        percent = number;
    else
        wrong_use(self, std::string("--") + option_name + ": \"" + value +
                            "\" is no percentage from 1 to 100");
    return good;
}

parsed parse(const word &self, int argc, char **argv, const std::vector<option> &options,
             std::size_t least_files, std::size_t most_files)
{
    values read(options.size());
    std::vector<GOptionEntry> entries;
    for (std::size_t i = 0; i < options.size(); ++i)
        entries.push_back(entry_of(options[i], read, i));
    entries.push_back(
        {"help", 0, 0, G_OPTION_ARG_NONE, &read.help, "print this help and end", nullptr});
    entries.push_back(
        {G_OPTION_REMAINING, 0, 0, G_OPTION_ARG_FILENAME_ARRAY, &read.files, nullptr, nullptr});
    // An empty entry ends the table.
    entries.push_back({});

    const context_guard context(g_option_context_new(nullptr));
    // The parser's own help would end the process by itself.
    g_option_context_set_help_enabled(context.get(), FALSE);
    g_option_context_add_main_entries(context.get(), entries.data(), nullptr);
    GError *error = nullptr;
    // The parser moves the words about in this vector; the caller's stay in place.
    std::vector<char *> words(argv, argv + argc);
    words.push_back(nullptr);
    char **position = words.data();
    if (g_option_context_parse(context.get(), &argc, &position, &error) == FALSE) {
        const std::string text = error->message;
        g_error_free(error);
        return fault(self, text);
    }
    if (read.help) {
        std::printf("usage: lang-kit %s %s\n\n%s\n\n", self.name, self.arguments, self.summary);
        for (const GOptionEntry &entry : entries)
            // The entry for the files has no description.
            if (entry.description != nullptr)
                std::printf("  %-26s  %s\n", spelt(entry).c_str(), entry.description);
        return {true, status_fine, {}};
    }
    parsed result{false, status_fine, {}};
    for (gchar **file = read.files; file != nullptr && *file != nullptr; ++file)
        result.files.emplace_back(*file);
    if (result.files.size() < least_files)
        return fault(self, std::string("a file is missing: lang-kit ") + self.name + " " +
                               self.arguments);
    if (result.files.size() > most_files)
        return fault(self, "one file too many: \"" + result.files[most_files] + "\"");
    // Only now, when nothing can fail any more, the caller's variables change.
    for (std::size_t i = 0; i < options.size(); ++i)
        take_over(options[i], read, i);
    return result;
}

} // namespace zel::kit
