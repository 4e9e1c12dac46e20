#pragma once

// The grammar of a language source file: each function reads one construct and is named for it.
// Shared by the readers of a whole file and of one entry.

#include "lex/lex.h"
#include "source/model.h"
#include "source/read-how.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace zel {

// The words of the format, and how the scanner takes what stands between them.
extern const Keytab source_keywords[];
inline constexpr unsigned source_flags = LEX_KEYWORD_NOCASE | LEX_ESCAPES | LEX_NEWLINE_SPACE;

inline place place_of(const zel_token_t *token) { return {token->line, token->column}; }

// Reads items and what stands in them.
struct source_reader {
    zel_lex_t *lex;
    const char *path;
    const read_how &how;
    int log_line = 0; // of the message that ended the run

    const zel_token_t *next() { return zel_next_token(lex); }
    int look() { return zel_token_look_ahead(lex, 0)->id; }

    outcome fail(int number, place at, int kind = 0);
    outcome fail(int number, const zel_token_t *token)
    {
        return fail(number, place_of(token), token->id);
    }
    void note(const void *record, place at) const
    {
        if (how.places != nullptr)
            how.places->add(record, at);
    }

    // The token's text. Reports read_nul_byte first if a NUL byte cuts off a part of it.
    std::string_view text_of(const zel_token_t *token);
    char *copy_of(const zel_token_t *token);

    outcome read_number(std::int32_t &number, int message_number);
    outcome read_time(std::int64_t &time, int message_number);
    outcome read_string(char *&text, int message_number);
    outcome read_yes_no(std::uint32_t &used, int message_number);
    bool read_optional_number(std::int32_t &number);

    outcome read_entry(list_tail &entries, place start);
    outcome read_lines(list_tail *texts);
    outcome read_used_in(item_t *item);
    outcome read_used(item_t *item);
    outcome read_size();
    outcome read_item_ctime(item_t *item);
    outcome read_attribute(item_t *item, int key);
    outcome read_item_body(item_t *item);
    outcome read_item(item_t *item, place start);
};

// Reads the statements into a root.
struct statement_reader : source_reader {
    LangSource *source;
    list_tail langs;
    list_tail groups;
    edit_t *group = nullptr; // that is being read
    std::optional<list_tail> items;

    statement_reader(source_reader reader, LangSource *root)
        : source_reader(reader), source(root), langs(root->langs), groups(root->groups)
    {
    }

    bool is_done() { return group == nullptr && look() == TOKEN_EOF; }
    outcome read_piece();
    outcome read_statement(const zel_token_t *token);
    outcome read_version();
    outcome read_default();
    outcome read_colwidth();
    outcome read_define();
    outcome read_define_file(bool &more, place start);
    void read_define_format(place at);
    outcome begin_group(place start);
    outcome read_group_element();
    outcome add_item(place start);
};

} // namespace zel
