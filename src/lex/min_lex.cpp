#include "lex/min_lex.h"

#include "support/log-print.h"
#include "support/misc-error.h"
#include "support/string-copy.h"
#include "support/string.h"
#include "support/text.h"

#include <climits>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

using zel::is_digit;
using zel::is_space;

// Value of a hexadecimal digit; any other character counts as the given number.
unsigned hex_digit(char character, unsigned other)
{
    if (is_digit(character))
        return static_cast<unsigned>(character - '0');
    if (character >= 'a' && character <= 'f')
        return static_cast<unsigned>(character - 'a') + 10;
    if (character >= 'A' && character <= 'F')
        return static_cast<unsigned>(character - 'A') + 10;
    return other;
}

std::int32_t decimal(const char *text)
{
    return static_cast<std::int32_t>(std::strtol(text, nullptr, 10));
}

void out_of_memory(int line) { _zel_fatal("min_lex", line, "Not enough memory"); }

constexpr unsigned not_hex = 255; // value that the splitter gives a character that is no digit

void free_element(void *data)
{
    auto *element = static_cast<min_lex_elem_t *>(data);
    std::free(element->id);
    std::free(element->val);
    std::free(element);
}

// Appends an element; without a value, val is null.
bool append_element(zel::list_end &list, const char *id, const char *val)
{
    auto *element = static_cast<min_lex_elem_t *>(std::calloc(1, sizeof(min_lex_elem_t)));
    if (element == nullptr)
        return false;
    // An empty value is not the same as none: zel_strdup2 keeps it.
    *element = {zel_strdup2(id), zel_strdup2(val)};
    if (element->id != nullptr && (val == nullptr || element->val != nullptr) &&
        list.append(element))
        return true;
    free_element(element);
    return false;
}

// Copies up to the separator, the assignment character or the end; returns where that stands.
const char *read_id(const char *text, char separator, char assignment, char *id)
{
    while (*text != '\0' && *text != assignment && *text != separator)
        *id++ = *text++;
    *id = '\0';
    return text;
}

// "%" and two characters are one byte; at the end of the text, missing characters add nothing.
const char *read_escape(const char *text, char *&val)
{
    if (text[0] == '\0')
        return text;
    unsigned byte = hex_digit(text[0], not_hex) * 16;
    const bool whole = text[1] != '\0';
    if (whole)
        byte += hex_digit(text[1], not_hex);
    *val++ = static_cast<char>(byte & 0xFF);
    return text + (whole ? 2 : 1);
}

const char *read_val(const char *text, char separator, char *val)
{
    while (*text != '\0' && *text != separator) {
        if (*text == '%')
            text = read_escape(text + 1, val);
        else
            *val++ = *text++;
    }
    *val = '\0';
    return text;
}

// Splits off one element and the separator behind it; null when it could not be kept.
const char *split_element(zel::list_end &list, const char *text, char separator, char assignment,
                          char *id, char *val)
{
    text = read_id(text, separator, assignment, id);
    const bool has_val = *text != '\0' && *text == assignment;
    if (has_val)
        text = read_val(text + 1, separator, val);
    if (!append_element(list, id, has_val ? val : nullptr))
        return nullptr;
    return *text == '\0' ? text : text + 1;
}

zel_list *find(zel_list *list, const char *id)
{
    if (id == nullptr)
        return nullptr;
    while (list != nullptr && std::strcmp(static_cast<min_lex_elem_t *>(list->data)->id, id) != 0)
        list = list->next;
    return list;
}

// The value of the node's element; null without a node or without a value.
const char *value_of(zel_list *node)
{
    return node == nullptr ? nullptr : static_cast<min_lex_elem_t *>(node->data)->val;
}

zel_list *remove_element(zel_list *list, zel_list *node)
{
    if (node == nullptr)
        return list;
    void *element = node->data;
    // Removing a node forgets the end of its list, so that is asked for first.
    zel_list *last = zel::remembered_end(list);
    if (last == node)
        last = node->prev;
    list = zel_list_remove_link(list, node);
    free_element(element);
    if (list != nullptr && last != nullptr)
        zel::remember_end(list, last);
    return list;
}

// The arguments of min_lex_split_msg_get_ext, which are walked twice.
struct output_args {
    std::va_list list;
};

struct output {
    int type;
    void *out;
    int int_fallback;
    const char *str_fallback;
};

bool known_type(int type) { return type == MIN_LEX_TYPE_INT || type == MIN_LEX_TYPE_STR; }

// Reads what follows the type. The fallback of an unknown type is skipped as a pointer.
output read_output(output_args &args, int type)
{
    output group{type, va_arg(args.list, void *), 0, nullptr};
    if (type == MIN_LEX_TYPE_INT)
        group.int_fallback = va_arg(args.list, int);
    else
        group.str_fallback = va_arg(args.list, const char *);
    return group;
}

// Stores a value, or for null the fallback. Frees a string that the first pass has stored.
void store(const output &group, const char *value, bool stored_before)
{
    if (group.type == MIN_LEX_TYPE_INT) {
        *static_cast<std::int32_t *>(group.out) =
            value == nullptr ? group.int_fallback : decimal(value);
        return;
    }
    char **out = static_cast<char **>(group.out);
    if (stored_before)
        std::free(*out);
    *out = zel_strdup(value == nullptr ? group.str_fallback : value);
}

// First pass: gives every output its fallback. Returns how many there are.
int store_fallbacks(output_args &args, const char *id)
{
    int count = 0;
    for (; id != nullptr; id = va_arg(args.list, const char *)) {
        const int type = va_arg(args.list, int);
        // Nobody knows what follows an unknown type, so the walk ends.
        if (!known_type(type))
            break;
        const output group = read_output(args, type);
        if (group.out == nullptr)
            break;
        store(group, nullptr, false);
        ++count;
    }
    return count;
}

// Second pass: takes the elements out of the list. Returns 0, or the number of the failure.
std::int32_t store_values(output_args &args, const char *id, zel_list *&list, int stored)
{
    for (int number = 1; id != nullptr && list != nullptr;
         ++number, id = va_arg(args.list, const char *)) {
        const int type = va_arg(args.list, int);
        if (type == 0)
            return 3 * number;
        zel_list *node = find(list, id);
        if (node != nullptr && !known_type(type)) {
            list = remove_element(list, node);
            return 3 * number;
        }
        const output group = read_output(args, type);
        if (node == nullptr)
            continue;
        if (group.out != nullptr)
            store(group, value_of(node), number <= stored);
        list = remove_element(list, node);
        if (group.out == nullptr)
            return 3 * number + 1;
    }
    return 0;
}

bool no_text(const char **cursor) { return cursor == nullptr || *cursor == nullptr; }

const char *skip_space(const char *text)
{
    while (is_space(*text))
        ++text;
    return text;
}

// Reads the inside of a quoted string and its closing quote, which may be missing.
int read_quoted(const char **cursor, char *buffer, int size)
{
    const char *text = *cursor;
    int length = 0;
    int result = MIN_LEX_READ;
    while (*text != '\0' && *text != '"') {
        if (length == size - 1) {
            result = MIN_LEX_TOO_LONG;
            break;
        }
        if (*text == '\\' && text[1] != '\0')
            ++text;
        buffer[length++] = *text++;
    }
    buffer[length] = '\0';
    *cursor = result == MIN_LEX_READ && *text == '"' ? text + 1 : text;
    return result;
}

// A word needs two bytes more than its length, or one more if white space follows it.
int read_word(const char **cursor, char *buffer, int size)
{
    const char *text = *cursor;
    int length = 0;
    while (*text != '\0' && !is_space(*text) && length < size - 1)
        buffer[length++] = *text++;
    buffer[length] = '\0';
    *cursor = text;
    return length < size - 1 || is_space(*text) ? MIN_LEX_READ : MIN_LEX_TOO_LONG;
}

constexpr std::size_t any_length = SIZE_MAX;

// The word's id when one was read, else 0.
int word_id(int outcome, const trans_id_t *table, const char *word)
{
    if (outcome != MIN_LEX_READ)
        return 0;
    return table == nullptr ? MIN_LEX_NOT_FOUND : trans_str_id(table, word, MIN_LEX_NOT_FOUND);
}

} // namespace

zel_list *min_lex_split_msg(zel_list *list, const char *text, char separator, char assignment)
{
    static_cast<void>(zel::split_msg(list, text, separator, assignment));
    return list;
}

namespace zel {

bool split_msg(zel_list *&list, const char *text, char separator, char assignment)
{
    if (text == nullptr || *text == '\0')
        return true;
    const std::size_t size = std::strlen(text) + 2;
    const string_guard id(static_cast<char *>(std::malloc(size)));
    const string_guard val(static_cast<char *>(std::malloc(size)));
    list_end end(list, remembered_end(list));
    // Reported below, like an element that cannot be kept.
    if (!id || !val)
        text = nullptr;
    while (text != nullptr && *text != '\0')
        text = split_element(end, text, separator, assignment, id.get(), val.get());
    list = end.head;
    if (list != nullptr)
        remember_end(list, end.last);
    if (text == nullptr)
        out_of_memory(__LINE__);
    return text != nullptr;
}

} // namespace zel

void min_lex_split_msg_free(zel_list *list) { zel_list_free_full(list, free_element); }

void min_lex_split_msg_print(std::FILE *stream, zel_list *list)
{
    constexpr char rule[] = "---------------------\n";
    std::fprintf(stream, " min_lex_split_msg_print\n%s", rule);
    for (; list != nullptr; list = list->next) {
        const auto *element = static_cast<min_lex_elem_t *>(list->data);
        if (element->id != nullptr)
            std::fprintf(stream, "ID:  %s\n", element->id);
        if (element->val != nullptr)
            std::fprintf(stream, "VAL: %s\n", element->val);
        std::fputs(rule, stream);
    }
}

const char *min_lex_split_msg_id(const min_lex_elem_t *element)
{
    return element == nullptr ? nullptr : element->id;
}

const char *min_lex_split_msg_val(const min_lex_elem_t *element)
{
    return element == nullptr ? nullptr : element->val;
}

std::int32_t min_lex_split_msg_get_id(zel_list *list, const char *id)
{
    return find(list, id) != nullptr ? 1 : 0;
}

std::int32_t min_lex_split_msg_get_int(zel_list *list, const char *id, std::int32_t *out,
                                       std::int32_t fallback)
{
    zel_list *node = find(list, id);
    const char *value = value_of(node);
    if (out != nullptr)
        *out = value == nullptr ? fallback : decimal(value);
    return node != nullptr ? 1 : 0;
}

std::int32_t min_lex_split_msg_get_str(zel_list *list, const char *id, const char **out,
                                       const char *fallback)
{
    if (out == nullptr)
        return 0;
    zel_list *node = find(list, id);
    const char *value = value_of(node);
    *out = value == nullptr ? fallback : value;
    return node != nullptr ? 1 : 0;
}

zel_list *min_lex_split_msg_get_int_free(zel_list *list, const char *id, std::int32_t *out,
                                         std::int32_t fallback)
{
    if (out == nullptr)
        return list;
    // Set first: without the element get_int_free2 leaves the output as it is.
    *out = fallback;
    return min_lex_split_msg_get_int_free2(list, id, out);
}

zel_list *min_lex_split_msg_get_str_free(zel_list *list, const char *id, char **out,
                                         const char *fallback)
{
    if (out == nullptr)
        return list;
    zel_list *node = find(list, id);
    const char *value = value_of(node);
    zel::replace_string(*out, zel_strdup(value == nullptr ? fallback : value));
    return remove_element(list, node);
}

zel_list *min_lex_split_msg_get_int_free2(zel_list *list, const char *id, std::int32_t *out)
{
    if (out == nullptr)
        return list;
    zel_list *node = find(list, id);
    if (const char *value = value_of(node))
        *out = decimal(value);
    return remove_element(list, node);
}

zel_list *min_lex_split_msg_get_str_free2(zel_list *list, const char *id, char **out)
{
    if (out == nullptr)
        return list;
    zel_list *node = find(list, id);
    if (const char *value = value_of(node))
        zel::replace_string(*out, zel_strdup(value));
    return remove_element(list, node);
}

std::int32_t min_lex_split_msg_get_ext(const char *text, char separator, char assignment,
                                       const char *id, ...)
{
    if (id == nullptr)
        return 1;
    output_args args;
    va_start(args.list, id);
    const int stored = store_fallbacks(args, id);
    va_end(args.list);

    // Whatever fails from here on, every output has its fallback.
    zel_list *list = min_lex_split_msg(nullptr, text, separator, assignment);
    if (list == nullptr)
        return 1;
    va_start(args.list, id);
    const std::int32_t result = store_values(args, id, list, stored);
    va_end(args.list);
    min_lex_split_msg_free(list);
    return result;
}

zel_list *min_lex_split_str_by_sep(zel_list *list, const char *text, char separator)
{
    if (text == nullptr)
        return list;
    zel::list_end end(list, zel::remembered_end(list));
    for (bool more = true; more;) {
        const char *stop = text;
        while (*stop != '\0' && *stop != separator)
            ++stop;
        char *piece = strndup(text, static_cast<std::size_t>(stop - text));
        if (piece == nullptr || !end.append(piece)) {
            std::free(piece);
            out_of_memory(__LINE__);
            break;
        }
        more = *stop != '\0';
        text = stop + 1;
    }
    if (end.head != nullptr)
        zel::remember_end(end.head, end.last);
    return end.head;
}

void min_lex_split_str_by_sep_free(zel_list *list) { zel_list_free_with_data(list); }

void min_lex_convert_percent_to_chars(char *text)
{
    if (text == nullptr)
        return;
    char *to = text;
    for (const char *from = text; *from != '\0';) {
        if (*from != '%') {
            *to++ = *from++;
            continue;
        }
        // What the end of the text cuts off is dropped.
        if (from[1] == '\0' || from[2] == '\0')
            break;
        *to++ = static_cast<char>(hex_digit(from[1], 0) * 16 + hex_digit(from[2], 0));
        from += 3;
    }
    *to = '\0';
}

int zel_min_lex_get_strn(const char **cursor, char *buffer, int size)
{
    if (no_text(cursor) || buffer == nullptr)
        return MIN_LEX_NULL;
    if (**cursor == '\0')
        return MIN_LEX_AT_END;
    if (size < 1)
        return MIN_LEX_TOO_LONG;
    *cursor = skip_space(*cursor);
    if (**cursor == '\0')
        return MIN_LEX_NOTHING;
    if (**cursor != '"')
        return read_word(cursor, buffer, size);
    ++*cursor;
    return read_quoted(cursor, buffer, size);
}

int zel_min_lex_get_str(const char **cursor, char *buffer)
{
    return zel_min_lex_get_strn(cursor, buffer, MIN_LEX_WORD);
}

int zel_min_lex_get_str2(const char **cursor, char *buffer)
{
    return zel_min_lex_get_strn(cursor, buffer, MIN_LEX_WORD);
}

int zel_min_lex_get_id(const char **cursor, const trans_id_t *table)
{
    char word[MIN_LEX_WORD];
    return word_id(zel_min_lex_get_str(cursor, word), table, word);
}

int _min_lex_get_str_until_common(const char **cursor, char *buffer, std::size_t size,
                                  char delimiter, min_lex_until until)
{
    if (no_text(cursor) || buffer == nullptr) {
        dbg_printf("min_lex_get_str_until: ERROR null ptr\n");
        return MIN_LEX_NULL;
    }
    if (**cursor == '\0')
        return MIN_LEX_NO_TEXT;
    const char *start = skip_space(*cursor);
    if (*start == '\0')
        return MIN_LEX_NOTHING;

    // The first character belongs to the word even when it is the delimiter.
    const bool required = until == min_lex_until::delimiter;
    const char *end = start + 1;
    while (*end != '\0' && *end != delimiter && (required || !is_space(*end)))
        ++end;
    if (required && *end == '\0')
        return MIN_LEX_NOTHING;
    // The cursor moves on even if the text turns out too long for the buffer.
    const bool behind = !required && *end != '\0' && *end == delimiter;
    *cursor = behind ? end + 1 : end;
    const auto length = static_cast<std::size_t>(end - start);
    if (length >= size)
        return MIN_LEX_TOO_LONG;
    std::memcpy(buffer, start, length);
    buffer[length] = '\0';
    return *zel_str_trim(buffer) == '\0' ? MIN_LEX_NOTHING : MIN_LEX_READ;
}

int zel_min_lex_get_id_delimiter(const char **cursor, const trans_id_t *table, char delimiter)
{
    char word[MIN_LEX_WORD];
    return word_id(_min_lex_get_str_until_common(cursor, word, sizeof word, delimiter,
                                                 min_lex_until::delimiter_space),
                   table, word);
}

int zel_min_lex_get_str_until(const char **cursor, char *buffer, char delimiter)
{
    return _min_lex_get_str_until_common(cursor, buffer, any_length, delimiter,
                                         min_lex_until::delimiter);
}

int zel_min_lex_get_str_until2(const char **cursor, char *buffer, char delimiter)
{
    return _min_lex_get_str_until_common(cursor, buffer, any_length, delimiter,
                                         min_lex_until::delimiter_space);
}

int zel_min_lex_get_str_until3(const char **cursor, char *buffer, char delimiter)
{
    return _min_lex_get_str_until_common(cursor, buffer, any_length, delimiter,
                                         min_lex_until::delimiter_space);
}

int zel_min_lex_get_int(const char **cursor, std::int32_t *out)
{
    if (no_text(cursor) || out == nullptr)
        return MIN_LEX_NULL;
    *cursor = skip_space(*cursor);
    char digits[32];
    int count = 0;
    // Digits beyond these stay in the text.
    while (is_digit(**cursor) && count < static_cast<int>(std::size(digits)) - 1)
        digits[count++] = *(*cursor)++;
    if (count == 0)
        return 0;
    digits[count] = '\0';
    *out = decimal(digits);
    return 1;
}

int zel_min_lex_find_char(const char **cursor, char character)
{
    if (no_text(cursor))
        return MIN_LEX_NULL;
    const int result = zel_min_lex_match_char(cursor, character);
    if (result == MIN_LEX_FOUND)
        return result;
    // Unlike zel_min_lex_match_char, it moves to the end when nothing is found.
    *cursor += std::strlen(*cursor);
    return MIN_LEX_AT_END;
}

int zel_min_lex_match_char(const char **cursor, char character)
{
    if (no_text(cursor))
        return MIN_LEX_NULL;
    // strchr would find the closing NUL, which is no character of the text.
    const char *found = character == '\0' ? nullptr : std::strchr(*cursor, character);
    if (found == nullptr)
        return MIN_LEX_NOT_FOUND;
    *cursor = found + 1;
    return MIN_LEX_FOUND;
}

int zel_min_lex_match_str(const char **cursor, const char *text)
{
    if (no_text(cursor) || text == nullptr)
        return MIN_LEX_NULL;
    const char *found = std::strstr(*cursor, text);
    if (found == nullptr)
        return MIN_LEX_NOT_FOUND;
    *cursor = found + std::strlen(text);
    return MIN_LEX_FOUND;
}

int zel_min_lex_if_char(const char **cursor, char character)
{
    if (no_text(cursor))
        return MIN_LEX_NULL;
    for (; **cursor != '\0'; ++*cursor) {
        if (**cursor == character) {
            ++*cursor;
            return 1;
        }
        dbg_printf("->%c\n", **cursor);
    }
    // Unlike in zel_min_lex_match_char, the closing NUL can be asked for.
    return character == '\0' ? 1 : 0;
}

int zel_min_lex_get_line(std::FILE *stream, char *buffer, int size)
{
    if (stream == nullptr || buffer == nullptr)
        return MIN_LEX_NULL;
    // Without a size, the buffer has that of a word.
    if (size < 1)
        size = MIN_LEX_WORD;
    int length = 0;
    while (length < size - 1) {
        const int character = std::getc(stream);
        if (character == EOF && length == 0) {
            buffer[0] = '\0';
            return EOF;
        }
        if (character == EOF || character == '\n') {
            buffer[length] = '\0';
            return length;
        }
        // Dropped everywhere, so that lines with CR LF read like others.
        if (character != '\r')
            buffer[length++] = static_cast<char>(character);
    }
    // The rest of the line is left to the next call.
    buffer[length] = '\0';
    return MIN_LEX_TOO_LONG;
}
