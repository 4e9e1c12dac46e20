#include "app/argv.h"

#include "support/string-copy.h"

#include <array>
#include <cstdlib>
#include <cstring>

namespace {

int err_print;
std::FILE *err_fp;
const char *arg_last; // the word that a match examined last, not owned

// Message per result code; codes beyond the table have that of ARGV_ERROR. The text that stands
// there twice is deliberate: the messages are an interface.
constexpr std::array messages = {
    "No error",
    "ERROR",
    "ERROR missing string",
    "ERROR missing integer",
    "ERROR missing double",
    "ERROR missing double",
    "ERROR missing width height",
};
static_assert(messages.size() == ARGV_NO_FLAGS, "a message per code below the first without one");

const char *current_word(int count, char **position) { return count < 1 ? nullptr : *position; }

void use_word(int *count, char ***position)
{
    --*count;
    ++*position;
}

int use_row(int *count, char ***position, const argv_tab_t *row)
{
    if (row->word != nullptr)
        use_word(count, position);
    return row->id;
}

} // namespace

namespace zel {

const argv_tab_t *argv_row(const char *word, const argv_tab_t *table)
{
    while (table->word != nullptr && std::strcmp(table->word, word) != 0)
        ++table;
    return table;
}

int argv_reported(int code) { return err_print != 0 ? argv_print_error(code) : code; }

} // namespace zel

int check_argv_str_to_num(int *count, char ***position, const argv_tab_t *table)
{
    const char *word = current_word(*count, *position);
    if (word == nullptr)
        return 0;
    arg_last = word;
    return use_row(count, position, zel::argv_row(word, table));
}

int check_argv(int *count, char ***position, const argv_tab_t *table)
{
    const char *word = current_word(*count, *position);
    if (word == nullptr)
        return 0;
    // A word too short for "--" and a letter is not remembered: a message about a missing value
    // keeps naming the word before it.
    if (std::strlen(word) < 3)
        return zel_str_to_num(nullptr, table);
    arg_last = word;
    if (word[0] != '-' || word[1] != '-')
        return zel_str_to_num(nullptr, table);
    return use_row(count, position, zel::argv_row(word + 2, table));
}

int argv_get_str(int *count, char ***position, char **out)
{
    *out = nullptr;
    const char *word = current_word(*count, *position);
    if (word == nullptr)
        return zel::argv_reported(ARGV_NO_STRING);
    *out = zel_strdup(word);
    use_word(count, position);
    return ARGV_OK;
}

int argv_free_get_str(int *count, char ***position, char **out)
{
    std::free(*out);
    *out = nullptr;
    return argv_get_str(count, position, out);
}

void argv_prep(int *count, char ***position)
{
    if (*count > 0)
        use_word(count, position);
}

void argv_set_err_print(int on, std::FILE *stream)
{
    err_print = on;
    err_fp = stream;
}

int argv_print_error(int code)
{
    if (code == ARGV_OK)
        return code;
    if (err_fp == nullptr)
        err_fp = stderr;
    if (arg_last != nullptr)
        std::fprintf(err_fp, ">%s< for argument >%s<\n", argv_get_err_str(code), arg_last);
    else
        std::fprintf(err_fp, ">%s<\n", argv_get_err_str(code));
    return code;
}

const char *argv_get_err_str(int code)
{
    const bool known = code >= 0 && static_cast<std::size_t>(code) < messages.size();
    return messages[static_cast<std::size_t>(known ? code : int{ARGV_ERROR})];
}
