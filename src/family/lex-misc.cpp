#include "family/lex-misc.h"

#include "support/growing-text.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/string.h"
#include "support/text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

const char *trans_id_str(const trans_id_t *table, int id, const char *fallback)
{
    if (table == nullptr)
        return fallback;
    for (; table->word != nullptr; ++table)
        // The table has ids of 64 bits, of which the callers know 32.
        if (static_cast<int>(table->id) == id)
            return table->word;
    return fallback;
}

const char *trans_str_str(const trans_str_t *table, const char *word, const char *fallback)
{
    if (table == nullptr || word == nullptr)
        return fallback;
    for (; table->word != nullptr; ++table)
        if (std::strcmp(table->word, word) == 0)
            return table->text;
    return fallback;
}

std::uint32_t trans_str_mask(const trans_id_t *table, const char *text)
{
    if (text == nullptr)
        return 0;
    std::uint32_t mask = 0;
    std::string_view rest = text;
    // A word that the table lacks adds no bit.
    while (!rest.empty()) {
        const std::string_view word = rest.substr(0, rest.find(','));
        mask |= static_cast<std::uint32_t>(trans_str_id(table, std::string(word).c_str(), 0));
        rest.remove_prefix(std::min(word.size() + 1, rest.size()));
    }
    return mask;
}

int lex_get_str(zel_lex_t *lex, char **out)
{
    zel::replace_string(*out, nullptr);
    const zel_token_t *token = zel_token_look_ahead(lex, 0);
    if (lex_match(token, TOKEN_STRING) == 0) {
        dbg_printf("lex_get_str: ERROR: lex_get_str token id %d\n",
                   token == nullptr ? 0 : token->id);
        return 1;
    }
    *out = zel_strdup(token->lexeme);
    // An empty text becomes null as well, which is no lack of memory.
    if (*out == nullptr && *token->lexeme != '\0')
        lex->out_of_memory = 1;
    zel_next_token(lex);
    return 0;
}

int lex_get_concat_str(zel_lex_t *lex, char **out)
{
    zel::replace_string(*out, nullptr);
    if (lex_match(zel_token_look_ahead(lex, 0), TOKEN_STRING) == 0)
        return 1;
    zel::growing_text joined;
    bool whole = true;
    while (lex_match(zel_token_look_ahead(lex, 0), TOKEN_STRING) != 0)
        // Takes every string even without memory, so that the scanner stands behind them.
        whole = joined.append(zel_next_token(lex)->lexeme) && whole;
    if (!whole) {
        lex->out_of_memory = 1;
        LogPrint(1, "lex_get_concat_str: ERROR not enough memory\n");
        return 1;
    }
    if (joined.length() != 0)
        *out = joined.release();
    return 0;
}

int lex_get_int(zel_lex_t *lex, unsigned *out)
{
    const zel_token_t *token = zel_token_look_ahead(lex, 0);
    const char *format = nullptr;
    if (token != nullptr)
        switch (token->id) {
        case TOKEN_DEC:
        case TOKEN_NUMBER:
            format = "%u";
            break;
        case TOKEN_OCT:
            format = "%o";
            break;
        case TOKEN_HEX:
            format = "%x";
            break;
        default:
            break;
        }
    if (format == nullptr)
        return 1;
    std::sscanf(token->lexeme, format, out); // the scanner made sure that there is a number
    zel_next_token(lex);
    return 0;
}

void zel_lex_read_until_token(zel_lex_t *lex, int kind)
{
    if (lex == nullptr)
        return;
    for (;;) {
        const int id = zel_next_token(lex)->id;
        // Without the end of the input, or without an input (0), this would never return.
        if (id == kind || id == TOKEN_NEWLINE || id == 0 ||
            (id <= TOKEN_EOF && id >= TOKEN_ERR_MEM))
            return;
    }
}

int _lex_esc_str(char *destination, const char *source)
{
    int length = 0;
    // Without a destination the text is only measured.
    const auto put = [&](char c) {
        if (destination != nullptr)
            destination[length] = c;
        ++length;
    };
    for (; *source != '\0'; ++source) {
        const char letter = zel::escape_letter(static_cast<unsigned char>(*source));
        if (letter != 0)
            put('\\');
        put(letter != 0 ? letter : *source);
    }
    if (destination != nullptr)
        destination[length] = '\0';
    return length;
}

char *lex_esc_str(const char *source)
{
    const int length = source == nullptr ? 0 : _lex_esc_str(nullptr, source);
    // An empty text is null, as in zel_strdup.
    if (length == 0)
        return nullptr;
    char *escaped = static_cast<char *>(std::malloc(static_cast<std::size_t>(length) + 1));
    if (escaped != nullptr)
        _lex_esc_str(escaped, source);
    return escaped;
}

char *lexstrtrim(char *text) { return zel_str_trim(text); }

int lex_id_char_valid(int character, int digits_allowed)
{
    if (zel::is_digit(character))
        return digits_allowed != 0 ? 1 : 0;
    constexpr std::string_view refused = "!\"$%&()-/=?\\|";
    const bool operators = character > 0 && character < 128 &&
                           refused.find(static_cast<char>(character)) != std::string_view::npos;
    // Any other byte is valid, also one beyond ASCII, which may be a part of a letter.
    return zel::is_space(character) || operators ? 0 : 1;
}
