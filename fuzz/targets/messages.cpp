// A message "id=value;id" split, and a short text read word by word.

#include "support.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "lex/min_lex.h"

namespace {

void split(const char *text, char separator, char assignment)
{
    zel_list *list = min_lex_split_msg(nullptr, text, separator, assignment);
    for (const zel_list *node = list; node != nullptr; node = node->next)
        fuzz::require(min_lex_split_msg_id(static_cast<const min_lex_elem_t *>(node->data)) !=
                          nullptr,
                      "an element has an id");
    static std::FILE *const nowhere = std::fopen("/dev/null", "w");
    min_lex_split_msg_print(nowhere, list);
    std::int32_t number = 0;
    const char *word = nullptr;
    min_lex_split_msg_get_id(list, "a");
    min_lex_split_msg_get_int(list, "width", &number, 1);
    min_lex_split_msg_get_str(list, "title", &word, "x");
    char *owned = nullptr;
    list = min_lex_split_msg_get_int_free(list, "a", &number, 1);
    list = min_lex_split_msg_get_str_free(list, "b", &owned, "x");
    list = min_lex_split_msg_get_str_free2(list, "c", &owned);
    list = min_lex_split_msg_get_int_free2(list, "d", &number);
    std::free(owned);
    min_lex_split_msg_free(list);
}

void take_outputs(const char *text)
{
    std::int32_t width = 0;
    char *title = nullptr;
    min_lex_split_msg_get_ext(text, ';', '=', "width", MIN_LEX_TYPE_INT, &width, 640, "title",
                              MIN_LEX_TYPE_STR, &title, "x", static_cast<const char *>(nullptr));
    std::free(title);
}

// Every cursor helper in turn; each ends within the text.
void walk(const std::string &text)
{
    static const trans_id_t words[] = {{"a", 1}, {"width", 2}, {nullptr, 0}};
    const char *const end = text.c_str() + text.size();
    std::string room(std::max<std::size_t>(text.size() + 1, MIN_LEX_WORD), '\0');
    char *buffer = room.data();
    const char *cursor = text.c_str();
    std::array<char, 8> small;
    for (int step = 0; cursor < end && step < 200; ++step) {
        std::int32_t number = 0;
        zel_min_lex_get_int(&cursor, &number);
        zel_min_lex_get_strn(&cursor, small.data(), small.size());
        zel_min_lex_get_str(&cursor, buffer);
        zel_min_lex_get_str2(&cursor, buffer);
        zel_min_lex_get_id(&cursor, words);
        zel_min_lex_get_id_delimiter(&cursor, words, '=');
        zel_min_lex_get_str_until(&cursor, buffer, ';');
        zel_min_lex_get_str_until2(&cursor, buffer, ';');
        zel_min_lex_get_str_until3(&cursor, buffer, ';');
        zel_min_lex_match_char(&cursor, ';');
        zel_min_lex_match_str(&cursor, "title");
        zel_min_lex_find_char(&cursor, ',');
        if (zel_min_lex_if_char(&cursor, '=') == 0 && cursor < end)
            ++cursor;
        fuzz::require(cursor >= text.c_str() && cursor <= end, "the cursor stays in the text");
    }
}

void read_lines(const std::string &text)
{
    if (text.empty())
        return;
    std::FILE *stream = fmemopen(const_cast<char *>(text.data()), text.size(), "r");
    std::array<char, 16> line;
    std::size_t lines = 0;
    while (zel_min_lex_get_line(stream, line.data(), line.size()) != MIN_LEX_AT_END &&
           lines <= text.size())
        ++lines;
    std::fclose(stream);
}

} // namespace

extern "C" int FUZZ_TARGET(messages)(const std::uint8_t *data, std::size_t size)
{
    const std::string bytes(fuzz::bytes_of(data, size));
    const std::string text = bytes.c_str(); // up to its first zero
    split(text.c_str(), ';', '=');
    split(text.c_str(), ',', '\0');
    min_lex_split_str_by_sep_free(min_lex_split_str_by_sep(nullptr, text.c_str(), ','));
    take_outputs(text.c_str());
    std::string converted = text;
    min_lex_convert_percent_to_chars(converted.data());
    fuzz::require(std::strlen(converted.c_str()) <= text.size(), "escapes make no text longer");
    walk(text);
    read_lines(text);
    return 0;
}
