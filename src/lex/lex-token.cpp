#include "lex/lex-token.h"

#include "support/log-print.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zel {

zel_token_t *new_token()
{
    auto *token = static_cast<zel_token_t *>(std::calloc(1, sizeof(zel_token_t)));
    if (token == nullptr)
        return nullptr;
    token->lexeme = static_cast<char *>(std::malloc(ZEL_LEX_LEXEME));
    if (token->lexeme == nullptr) {
        std::free(token);
        return nullptr;
    }
    token->capacity = ZEL_LEX_LEXEME;
    token->lexeme[0] = '\0';
    return token;
}

void clear_token(zel_token_t *token)
{
    token->id = 0;
    token->length = 0;
    // lose_text has hidden the area; from here on the token may use it again.
    if (token->capacity == 0)
        token->capacity = token->room;
    token->lexeme[0] = '\0';
}

// The token keeps its area, so that a scanner goes on through its input however little memory there
// is.
int lose_text(zel_lex_t *lex, zel_token_t *token)
{
    lex->out_of_memory = 1;
    if (token->capacity != 0)
        token->room = token->capacity;
    // Without capacity nothing more is added: half a text would pass for a whole one.
    token->capacity = 0;
    token->length = 0;
    token->lexeme[0] = '\0';
    token->id = TOKEN_ERR_MEM;
    return TOKEN_ERR_MEM;
}

// Long texts grow by half, so that their cost stays linear.
bool grow(zel_token_t *token, std::size_t n)
{
    const std::size_t length = token->length;
    const std::size_t wanted = std::max(length + n + ZEL_LEX_LEXEME, length + length / 2);
    // The capacity is an int, so no text grows beyond what that holds.
    if (wanted > 0x7fffffff || token->capacity == 0)
        return false;
    char *grown = static_cast<char *>(std::realloc(token->lexeme, wanted));
    if (grown == nullptr)
        return false;
    token->lexeme = grown;
    token->capacity = static_cast<int>(wanted);
    return true;
}

} // namespace zel

// A client's own token function fills the text without setting its length.
static std::uint32_t length_of(const zel_token_t *token)
{
    const std::size_t text = token->lexeme == nullptr ? 0 : std::strlen(token->lexeme);
    return std::max(token->length, static_cast<std::uint32_t>(text));
}

int lex_token_cpy(zel_token_t *destination, const zel_token_t *source)
{
    const std::uint32_t length = length_of(source);
    if (length != 0 && destination->capacity < source->capacity) {
        // The old text is not needed, so nothing is copied into the new area.
        char *grown = static_cast<char *>(std::malloc(static_cast<std::size_t>(source->capacity)));
        if (grown == nullptr) {
            // The destination keeps its old text: a half copy would pass for a whole one.
            LogPrint(1, "lex_token_cpy: ERROR not enough memory\n");
            return 1;
        }
        std::free(destination->lexeme);
        destination->lexeme = grown;
        destination->capacity = source->capacity;
    }
    if (destination->capacity > 0 && source->lexeme != nullptr)
        std::memcpy(destination->lexeme, source->lexeme, length + std::size_t{1});
    destination->id = source->id;
    destination->length = length;
    destination->line = source->line;
    destination->column = source->column;
    destination->offset = source->offset;
    destination->file_index = source->file_index;
    destination->file_line = source->file_line;
    return 0;
}

void lex_token_free(zel_token_t *token)
{
    if (token == nullptr)
        return;
    std::free(token->lexeme);
    std::free(token);
}
