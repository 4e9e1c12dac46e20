#include "family/argv.h"

#include "family/string.h"
#include "support/file-call.h"
#include "support/misc-error.h"
#include "support/string-copy.h"
#include "support/text.h"

#include <bit>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <sys/stat.h>

namespace {

using zel::argv_reported;

const char *current_word(int count, char **position) { return count < 1 ? nullptr : *position; }

// Returns the current word if it begins with a digit, else null.
const char *number_word(int count, char **position)
{
    const char *word = current_word(count, position);
    return word != nullptr && zel::is_digit(*word) ? word : nullptr;
}

template <class Number>
int get_number(int *count, char ***position, const char *format, int missing, Number *out)
{
    const char *word = number_word(*count, *position);
    if (word == nullptr)
        return missing;
    Number value{};
    *out = std::sscanf(word, format, &value) == 1 ? value : Number{};
    // The word is used even if its number cannot be read: it began like one.
    argv_prep(count, position);
    return ARGV_OK;
}

const char *integer_format(std::string_view word)
{
    // As in C, the word's beginning tells the base.
    if (word.size() < 2 || word[0] != '0')
        return "%d";
    return word[1] == 'x' || word[1] == 'X' ? "%x" : "%o";
}

// Makes room for so many slots. The array grows in powers of two, so that a long text is not copied
// once per word.
bool make_room(char ***vector, int slots)
{
    const std::size_t size = std::bit_ceil(static_cast<std::size_t>(slots)) * sizeof(char *);
    auto **grown = static_cast<char **>(std::realloc(*vector, size));
    if (grown == nullptr) {
        _zel_fatal("argv", __LINE__, "not enough memory");
        return false;
    }
    *vector = grown;
    return true;
}

// Appends a word and owns it from now on, even if there is no room for it.
void append_word(char *word, int *count, char ***vector)
{
    if (word == nullptr || !make_room(vector, *count + 1)) {
        std::free(word);
        return;
    }
    (*vector)[(*count)++] = word;
}

// The null is no word, so the count stays: the next word takes its slot.
void append_null(int *count, char ***vector, int slots)
{
    if (make_room(vector, *count + slots))
        (*vector)[*count] = nullptr;
}

// The end of a word that began with a double quote: the next quote that no backslash precedes, or
// the end of the text.
const char *end_of_quoted(const char *text)
{
    for (; *text != '\0' && *text != '"'; ++text)
        // A backslash at the very end protects nothing.
        if (*text == '\\' && text[1] != '\0')
            ++text;
    return text;
}

const char *end_of_plain(const char *text)
{
    while (*text != '\0' && !zel::is_space(*text))
        ++text;
    return text;
}

bool is_line_end(int c) { return c == '\r' || c == '\n'; }

// Copies a file of words, without its comments and as one line, into a text of size bytes and its
// NUL.
void read_words(std::FILE *file, char *text, std::size_t size)
{
    std::size_t length = 0;
    bool comment = false;
    // The file may have grown since its size was asked for.
    for (int c = std::getc(file); c != EOF && length < size; c = std::getc(file)) {
        // A comment runs from "#" to the end of the line, even inside of quotes.
        comment = (comment || c == '#') && !is_line_end(c);
        if (!comment)
            text[length++] = is_line_end(c) ? ' ' : static_cast<char>(c);
    }
    while (length > 0 && zel::is_space(text[length - 1]))
        --length;
    text[length] = '\0';
}

} // namespace

int argv_str_to_num(int *count, char ***position, const argv_tab_t *table)
{
    return check_argv(count, position, table);
}

int argv_get_int(int *count, char ***position, int *out)
{
    return argv_reported(_argv_get_int(count, position, out));
}

int argv_get_time(int *count, char ***position, int *out)
{
    return argv_get_int(count, position, out);
}

int argv_get_float(int *count, char ***position, float *out)
{
    return argv_reported(_argv_get_float(count, position, out));
}

int argv_get_double(int *count, char ***position, double *out)
{
    return argv_reported(_argv_get_double(count, position, out));
}

int argv_get_width_height(int *count, char ***position, int *width, int *height)
{
    return argv_reported(_argv_get_width_height(count, position, width, height));
}

int argv_get_size(int *count, char ***position, int *width, int *height)
{
    return argv_get_width_height(count, position, width, height);
}

int argv_get_flags_by_str(int *count, char ***position, const argv_tab_t *table, unsigned *flags)
{
    const char *word = current_word(*count, *position);
    if (word == nullptr || *word == '\0')
        return argv_reported(ARGV_NO_FLAGS);
    // Cleared even if the word turns out to be no flag.
    *flags = 0;
    int result = ARGV_ERROR;
    for (; word != nullptr; word = current_word(*count, *position)) {
        const argv_tab_t *row = zel::argv_row(word, table);
        // Flags end at the first word that is none; it stays for the caller.
        if (row->word == nullptr || row->id == 0)
            break;
        *flags |= static_cast<unsigned>(row->id);
        argv_prep(count, position);
        result = ARGV_OK;
    }
    return argv_reported(result);
}

int _argv_get_int(int *count, char ***position, int *out)
{
    const char *word = number_word(*count, *position);
    const char *format = integer_format(word == nullptr ? "" : word);
    return get_number(count, position, format, ARGV_NO_INTEGER, out);
}

int _argv_get_float(int *count, char ***position, float *out)
{
    return get_number(count, position, "%f", ARGV_NO_FLOAT, out);
}

int _argv_get_double(int *count, char ***position, double *out)
{
    return get_number(count, position, "%lf", ARGV_NO_DOUBLE, out);
}

int _argv_get_width_height(int *count, char ***position, int *width, int *height)
{
    // An upper-case X will do, unlike in zel_str_get_width_height.
    if (!zel::read_width_height(current_word(*count, *position), "xX", *width, *height))
        return ARGV_NO_WIDTH_HEIGHT;
    argv_prep(count, position);
    return ARGV_OK;
}

char *argv_get_prg(int *count, char ***position)
{
    if (*count < 1)
        return nullptr;
    char *word = zel_strdup(**position);
    argv_prep(count, position);
    return word;
}

void gen_argv(const char *text, int *count, char ***vector)
{
    while (text != nullptr) {
        while (zel::is_space(*text))
            ++text;
        if (*text == '\0')
            return;
        const bool quoted = *text == '"';
        if (quoted)
            ++text;
        const char *end = quoted ? end_of_quoted(text) : end_of_plain(text);
        // Two quotes with nothing between them make no word.
        if (end != text)
            // The backslashes of a word in quotes stay in it.
            append_word(dup_ptr_from_to(text, text, end), count, vector);
        // Passes over the closing quote, or the white space that ended the word. A word may begin
        // right behind a quote.
        text = *end == '\0' ? end : end + 1;
    }
}

char **gen_argv_execv(const char *text, int *count, char ***vector)
{
    gen_argv(text, count, vector);
    gen_argv_add_null(count, vector);
    return *vector;
}

void gen_argv_ext(const char *text, int *count, char ***vector)
{
    gen_argv(text, count, vector);
    // A null, and behind it room for one more pointer.
    append_null(count, vector, 2);
}

int gen_argv_from_file(const char *path, int *count, char ***vector)
{
    struct stat status {};
    if (path == nullptr || zel_stat(path, &status) != 0)
        return 1;
    std::FILE *file = zel_fopen(path, "r");
    if (file == nullptr)
        return 2;
    const auto size = static_cast<std::size_t>(status.st_size);
    const zel::string_guard text(static_cast<char *>(std::calloc(1, size + 2)));
    if (text != nullptr)
        read_words(file, text.get(), size + 1);
    std::fclose(file);
    if (text == nullptr)
        return 3;
    gen_argv(text.get(), count, vector);
    return 0;
}

int gen_argv_add_str(const char *text, int *count, char ***vector)
{
    if (text == nullptr)
        return 1;
    append_word(zel_strdup2(text), count, vector);
    return 0;
}

int gen_argv_add_str_ext(const char *text, int *count, char ***vector)
{
    if (text == nullptr)
        return 1;
    append_word(zel_strdup_printf("\"%s\"", text), count, vector);
    return 0;
}

void gen_argv_add_null(int *count, char ***vector) { append_null(count, vector, 1); }

int argv_dup(int n, char **words, int *count, char ***vector)
{
    for (int i = 0; i < n; ++i)
        gen_argv_add_str(words[i], count, vector);
    return 0;
}

void del_argv(int *count, char ***vector)
{
    for (int i = 0; *vector != nullptr && i < *count; ++i)
        std::free((*vector)[i]);
    std::free(*vector);
    *vector = nullptr;
    *count = 0;
}

int print_argv(std::FILE *stream, int n, char **words)
{
    for (int i = 0; i < n; ++i)
        std::fprintf(stream == nullptr ? stdout : stream, "print_argv >%s<\n", words[i]);
    return 0;
}
