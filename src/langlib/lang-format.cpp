// Texts that are used as printf formats: a translation keeps only the conversions that the request
// expects.

#include "langlib/lang.h"

#include "langlib/lang-load.h"
#include "lex/min_lex.h"

#include <cstring>
#include <pthread.h>

namespace {

// Splits a text into the guarded list; false without memory.
bool split(const char *text, char separator, char assignment, min_lex_msg_guard &list)
{
    zel_list *elements = nullptr;
    const bool whole = zel::split_msg(elements, text, separator, assignment);
    list.reset(elements);
    return whole;
}

// Makes a split text whose ids are the expected conversions ("%d", "%s") in the order of the
// arguments; null when the description names none. Reads "formater=%25s,%25d" among elements
// separated by ";". False without memory.
bool expected_conversions(const char *description, min_lex_msg_guard &expected)
{
    min_lex_msg_guard elements;
    if (!split(description, ';', '=', elements))
        return false;
    const char *conversions = nullptr;
    min_lex_split_msg_get_str(elements.get(), "formater", &conversions, nullptr);
    return split(conversions, ',', '\0', expected);
}

// The next "%" that begins a conversion; null when there is none.
char *find_conversion(char *text)
{
    for (char *percent = std::strchr(text, '%'); percent != nullptr;
         percent = std::strchr(percent + 2, '%'))
        if (percent[1] != '%')
            return percent;
    return nullptr;
}

// The letter that ends the conversion, whatever stands before it; null when there is none.
char *find_letter(char *percent)
{
    return percent[1] == '\0' ? nullptr : std::strpbrk(percent + 1, "ds");
}

bool matches(char letter, const char *expected)
{
    return expected[0] == '%' && expected[1] == letter;
}

// Takes the conversions out of the rest of the text: "%" becomes a blank.
void blank(char *text)
{
    while ((text = std::strchr(text, '%')) != nullptr && text[1] != '\0') {
        if (text[1] != '%')
            *text = ' ';
        text += 2;
    }
}

pthread_mutex_t checking = PTHREAD_MUTEX_INITIALIZER;

void check_format(char *text, zel_list *expected)
{
    for (; expected != nullptr; expected = expected->next) {
        if (*text == '\0')
            return;
        char *percent = find_conversion(text);
        if (percent == nullptr)
            return;
        char *letter = find_letter(percent);
        const auto *element = static_cast<const min_lex_elem_t *>(expected->data);
        // Behind the first conversion that does not match, none can be trusted.
        if (letter == nullptr || !matches(*letter, min_lex_split_msg_id(element))) {
            blank(percent);
            return;
        }
        text = letter + 1;
    }
    blank(text);
}

} // namespace

const char *_lang_get_string_fmt(const char *description, const char *group, const char *item,
                                 const char *file, int line)
{
    std::int32_t found = 0;
    const char *text = __lang_get_str(&lang, group, item, &found, file, line);
    if (found == 0 || description == nullptr)
        return text;
    min_lex_msg_guard expected;
    if (!expected_conversions(description, expected))
        return item; // an unchecked text could ask for arguments that are not there
    // The text belongs to the table and changes there for all requests to come. Whoever holds it
    // already has it checked, too.
    if (expected != nullptr) {
        // Two threads may check the same text at once.
        pthread_mutex_lock(&checking);
        check_format(const_cast<char *>(text), expected.get());
        pthread_mutex_unlock(&checking);
    }
    return text;
}
