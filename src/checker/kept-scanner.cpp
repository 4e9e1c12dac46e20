#include "checker/kept-scanner.h"

#include "checker/request-form.h"

#include <array>

namespace zel {

namespace {

struct idle_scanners {
    std::array<zel_lex_t *, 4> kept;
    std::size_t count;
};
idle_scanners idle;

} // namespace

void keep_scanner(zel_lex_t *lex) noexcept
{
    const auto is_small = [](const zel_token_t *token) {
        return token->capacity == ZEL_LEX_LEXEME; // none keeps a long text's room
    };
    if (idle.count == idle.kept.size() || !is_small(lex->work) || !is_small(lex->current) ||
        !is_small(lex->ahead))
        return _zel_lex_free(lex);
    restart_scanner(lex);
    idle.kept[idle.count++] = lex;
}

kept_lex_guard take_scanner()
{
    return kept_lex_guard(idle.count != 0 ? idle.kept[--idle.count]
                                          : zel_lex_new(check_words, check_flags));
}

} // namespace zel
