#include "lex/lex.h"

#include "lex/lex-keyword.h"
#include "support/log-print.h"

#include <cstdlib>

namespace {

// What a new scanner and one that starts again have in common. The names of marked files are not
// released here: a new scanner has none.
void start_scanner(zel_lex_t *lex, unsigned flags)
{
    lex->flags = flags;
    lex->get_token = zel_get_token;
    lex->do_numeric = lex_do_numeric;
    lex->buf = nullptr;
    lex->marker_count = 0;
    lex->out_of_memory = 0;
    lex->open_comment = 0;
    zel::clear_token(lex->work);
    zel::clear_token(lex->current);
    zel::clear_token(lex->ahead);
}

void release_marker_files(zel_lex_t *lex)
{
    for (char *&name : lex->marker_files) {
        // The table is filled from its front, so the first free slot ends it.
        if (name == nullptr)
            break;
        std::free(name);
        name = nullptr;
    }
}

// Moves a token without copying its text: the area that becomes free goes the other way.
void move_token(zel_token_t *to, zel_token_t *from)
{
    char *area = to->lexeme;
    const int capacity = to->capacity;
    const int room = to->room;
    *to = *from;
    from->lexeme = area;
    from->capacity = capacity;
    from->room = room;
}

void empty_tokens(zel_lex_t *lex)
{
    zel::clear_token(lex->current);
    zel::clear_token(lex->ahead);
}

} // namespace

zel_lex_t *zel_lex_new(const Keytab *table, unsigned flags)
{
    zel_lex_guard lex(static_cast<zel_lex_t *>(std::calloc(1, sizeof(zel_lex_t))));
    if (!lex)
        return nullptr;
    // Set before the keywords are built, which are sorted with or without regard to case.
    lex->flags = flags;
    lex->work = zel::new_token();
    lex->current = zel::new_token();
    lex->ahead = zel::new_token();
    // The guard may release a scanner that is only half made: what it lacks is null.
    if (lex->work == nullptr || lex->current == nullptr || lex->ahead == nullptr ||
        !zel::build_keywords(lex.get(), table))
        return nullptr;
    start_scanner(lex.get(), flags);
    return lex.release();
}

void _zel_lex_free(zel_lex_t *lex)
{
    if (lex == nullptr)
        return;
    release_marker_files(lex);
    lex_token_free(lex->work);
    lex_token_free(lex->current);
    lex_token_free(lex->ahead);
    std::free(lex->keywords);
    std::free(lex);
}

namespace zel {

void restart_scanner(zel_lex_t *lex)
{
    release_marker_files(lex);
    start_scanner(lex, lex->flags);
}

} // namespace zel

void dbg_zel_lex_free(const void *ptr, const char *file, int line)
{
    LogPrint(1, "dbg_zel_lex_free: %s:%d ptr 0x%08x\n", file, line,
             static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(ptr)));
}

int zel_lex_set_get_token(zel_lex_t *lex, zel_lex_token_fn function)
{
    lex->get_token = function;
    return 0;
}

int zel_lex_start(zel_lex_t *lex)
{
    if (lex == nullptr) {
        LogPrint(1, "zel_lex_start: ERROR lex null ptr\n");
        return 1;
    }
    if (lex->buf == nullptr) {
        LogPrint(1, "zel_lex_start: ERROR lex_buf null ptr\n");
        return 1;
    }
    zel::mark_start(lex);
    return 0;
}

// Tokens change places by exchanging their areas, so no text is copied. The records stay where they
// are: the pointer to the current token is the same for every token.
zel_token_t *zel_next_token(zel_lex_t *lex)
{
    if (lex == nullptr)
        return nullptr;
    if (lex->ahead->id != 0) {
        move_token(lex->current, lex->ahead);
        // An id of 0 marks the place as empty; its area stays.
        lex->ahead->id = 0;
    } else {
        lex->get_token(lex);
        move_token(lex->current, lex->work);
    }
    return lex->current;
}

zel_token_t *zel_token_look_ahead(zel_lex_t *lex, int)
{
    // The scanner looks ahead by one token, whatever number is asked for.
    if (lex == nullptr)
        return nullptr;
    if (lex->ahead->id == 0) {
        lex->get_token(lex);
        move_token(lex->ahead, lex->work);
    }
    return lex->ahead;
}

zel_token_t *zel_current_token(zel_lex_t *lex) { return lex == nullptr ? nullptr : lex->current; }

int zel_lex_out_of_memory(const zel_lex_t *lex)
{
    return lex != nullptr && lex->out_of_memory != 0 ? 1 : 0;
}

int zel_lex_open_comment(const zel_lex_t *lex)
{
    return lex != nullptr && lex->open_comment != 0 ? 1 : 0;
}

void zel_lex_set_buf(zel_lex_t *lex, zel_lex_buf_t *buf)
{
    lex->buf = buf;
    lex->open_comment = 0;
    // What was read ahead in the old buffer must not come first.
    empty_tokens(lex);
}

zel_lex_buf_t *zel_lex_get_buf(zel_lex_t *lex) { return lex->buf; }

void zel_lex_free_buf(zel_lex_t *lex)
{
    zel_lex_buf_free(lex->buf);
    zel_lex_set_buf(lex, nullptr);
}
