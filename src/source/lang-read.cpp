#include "source/lang-read.h"

#include "app/global.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/string.h"

#include <cstdlib>

namespace {

enum keyword {
    key_item = 20000,
    key_lang,
    key_define,
    key_file,
    key_default,
    key_size,
    key_colwidth,
    key_rowheight,
    key_comment,
    key_version,
    key_group,
    key_format,
    key_ascii,
    key_utf8,
    key_used,
    key_changed,
    key_ctrl,
    key_visible,
    key_yes,
    key_ready,
    key_no,
    key_screen_shot,
    key_create_date,
    key_category,
    key_description,
    key_typ,
    key_app,
    key_whatsnew,
    key_ctime,
    key_mtime
};

// The words of the format; row 0 is the scanner's, the last row ends the table.
constexpr Keytab keywords[] = {
    {nullptr, 0},
    {"format", key_format},
    {"group", key_group},
    {"comment", key_comment},
    {"size", key_size},
    {"colwidth", key_colwidth},
    {"rowheight", key_rowheight},
    {"item", key_item},
    {"lang", key_lang},
    {"define", key_define},
    {"default", key_default},
    {"file", key_file},
    {"version", key_version},
    {"ascii", key_ascii},
    {"utf8", key_utf8},
    {"used", key_used},
    {"changed", key_changed},
    {"ctrl", key_ctrl},
    {"yes", key_yes},
    {"no", key_no},
    {"visible", key_visible},
    {"ready", key_ready},
    {"screen_shot", key_screen_shot},
    {"create_date", key_create_date},
    {"category", key_category},
    {"description", key_description},
    {"typ", key_typ},
    {"app", key_app},
    {"whatsnew", key_whatsnew},
    {"ctime", key_ctime},
    {"mtime", key_mtime},
    {nullptr, 0},
};
static_assert(key_mtime == 20029, "the ids show in messages");

constexpr unsigned source_flags = LEX_KEYWORD_NOCASE | LEX_ESCAPES | LEX_NEWLINE_SPACE;

// What follows a construct that was read, or a message.
enum class outcome {
    go_on,
    give_up, // the reader returns null
    stop,    // the process ends
    recover  // the item ends at the next token, which must be its brace
};

// The reader's messages: number, text, what follows, and the line that the log names (0: none).
// Texts take the number, then line, column and kind of the token as far as they name them.
struct message {
    int number;
    const char *text;
    outcome after;
    int log_line;
};
constexpr message messages[] = {
    {172, "\nERROR(%d): line %d:%d app %d", outcome::give_up, 0},
    {187, "\nERROR(%d): line %d:%d crate_date date  %d", outcome::give_up, 0},
    {204, "\nERROR(%d): line %d:%d expected numeric", outcome::give_up, 0},
    {219, "\nERROR(%d): line %d:%d expected numeric", outcome::give_up, 0},
    {234, "\nERROR(%d): line %d:%d expected numeric", outcome::give_up, 0},
    {574, "\nERROR(%d): line %d:%d define default lang  %d", outcome::give_up, 261},
    {604, "\nERROR(%d): line %d:%d expected numeric", outcome::give_up, 272},
    {617, "\nERROR(%d): line %d:%d expected numeric", outcome::give_up, 272},
    {629, "\nERROR(%d): line %d:%d expected numeric", outcome::give_up, 272},
    {637, "\nERROR(%d): line %d:%d expected item,group,comment,lang", outcome::give_up, 272},
    {496, "\nERROR(%d): line %d:%d unexpected token %d", outcome::give_up, 250},
    {502, "\nERROR(%d): lang_t: not enough memory", outcome::give_up, 250},
    {512, "\nERROR(%d): line %d:%d unexpected token %d", outcome::give_up, 250},
    {519, "\nERROR(%d): line %d:%d unexpected token %d", outcome::give_up, 250},
    {474, "\nWARNING(%d): line %d format alread defined, ignored", outcome::go_on, 0},
    {318, "\nERROR(%d): line %d:%d unexpected token %d\n", outcome::give_up, 324},
    {351, "\nERROR(%d): edit_t: not enough memory", outcome::stop, 0},
    {363, "\nERROR(%d): line %d:%d expected string", outcome::go_on, 0},
    {372, "\nERROR(%d): line %d:%d expected '{'", outcome::go_on, 0},
    {386, "\nERROR(%d): line %d:%d expected numeric", outcome::stop, 0},
    {399, "\nERROR(%d): line %d:%d expected string", outcome::stop, 0},
    {418, "\nERROR(%d): line %d:%d expected YES or NO\n", outcome::stop, 0},
    {448, "\nERROR(%d): line %d:%d unexpected EOF\n", outcome::stop, 0},
    {452, "\nERROR(%d): line %d:%d unexpected token %d", outcome::stop, 0},
    {659, "\nERROR(%d): item_t: not enough memory", outcome::stop, 0},
    {675, "\nERROR(%d): line %d:%d unexpected token %d", outcome::stop, 0},
    {689, "\nERROR:(%d) line %d:%d unexpected token %d expeced '{'\n", outcome::stop, 0},
    {691, "\nERROR:(%d) parse item start line %d:%d \n", outcome::stop, 0},
    {701, "\nERROR(%d): line %d:%d unexpected token %d expeced '}'\n", outcome::stop, 0},
    {731, "\nERROR(%d): line %d:%d expected numeric", outcome::recover, 0},
    {744, "\nERROR(%d): line %d:%d expected numeric", outcome::recover, 0},
    {756, "\nERROR(%d): line %d:%d expected numeric", outcome::recover, 0},
    {775, "\nERROR(%d): line %d:%d expected category", outcome::recover, 0},
    {787, "\nERROR(%d): line %d:%d expected numeric", outcome::recover, 0},
    {816, "\nERROR(%d): line %d:%d expected numeric", outcome::recover, 0},
    {832, "\nERROR(%d): line %d:%d expected numeric", outcome::recover, 0},
    {852, "\nERROR(%d): line %d:%d expected YES or NO\n", outcome::recover, 0},
    {892, "\nERROR(%d): line %d:%d unexpected token %d expeced '}'", outcome::recover, 0},
    {939, "\nERROR(%d): line %d:%d unexpected token %d", outcome::recover, 0},
    {945, "\nERROR(%d): lang_entry_t: not enough memory", outcome::recover, 0},
    {955, "\nERROR(%d): line %d:%d unexpected token %d expeced '{'", outcome::recover, 0},
    {969, "\nERROR(%d): line %d:%d unexpected token %d expeced '}'", outcome::recover, 0},
};

constexpr bool numbers_are_unique()
{
    for (const message &row : messages)
        for (const message &other : messages)
            if (&row != &other && row.number == other.number)
                return false;
    return true;
}
static_assert(numbers_are_unique());

// Where a token stands, kept beyond the token's life.
struct place {
    std::uint32_t line;
    std::uint32_t column;
};
place place_of(const zel_token_t *token) { return {token->line, token->column}; }

void log_exit(int line) { LogPrint(1, "lang_read_file: ERROR(exit) %s:%d\n", "lang-read", line); }

// The line that the log is to name once everything is released; 0 none. One reader runs at a time.
int exit_line;

// Prints a message and tells what follows.
outcome fail(int number, place at, int kind = 0)
{
    const message *row = messages;
    while (row->number != number)
        ++row;
    std::printf(row->text, number, at.line, at.column, kind);
    if (row->log_line == 250)
        std::printf("ERROR(%d)\n", 246);
    if (row->log_line == 324)
        std::printf("lang_read_file: ERROR(exit) %s:%d\n", "lang-read", 323);
    if (row->log_line != 0)
        exit_line = row->log_line;
    return row->after;
}

outcome fail(int number, const zel_token_t *token)
{
    return fail(number, place_of(token), token->id);
}

const zel_token_t *next(zel_lex_t *lex) { return zel_next_token(lex); }
int look(zel_lex_t *lex) { return zel_token_look_ahead(lex, 0)->id; }

std::int32_t signed_number(const zel_token_t *token)
{
    return static_cast<std::int32_t>(std::strtol(token->lexeme, nullptr, 10));
}

std::uint32_t unsigned_number(const zel_token_t *token)
{
    return static_cast<std::uint32_t>(std::strtoul(token->lexeme, nullptr, 10));
}

// NUMBER, else the message.
outcome read_number(zel_lex_t *lex, std::int32_t &number, int message_number)
{
    const zel_token_t *token = next(lex);
    if (token->id != TOKEN_DEC)
        return fail(message_number, token);
    number = signed_number(token);
    return outcome::go_on;
}

outcome read_time(zel_lex_t *lex, std::int64_t &time, int message_number)
{
    const zel_token_t *token = next(lex);
    if (token->id != TOKEN_DEC)
        return fail(message_number, token);
    time = unsigned_number(token);
    return outcome::go_on;
}

// STRING, else the message. An empty string is stored as null.
outcome read_string(zel_lex_t *lex, char *&text, int message_number)
{
    const zel_token_t *token = next(lex);
    if (token->id != TOKEN_STRING)
        return fail(message_number, token);
    zel::replace_string(text, zel_strdup(token->lexeme));
    return outcome::go_on;
}

// YES | NO, else the message.
outcome read_yes_no(zel_lex_t *lex, std::uint32_t &used, int message_number)
{
    const zel_token_t *token = next(lex);
    if (token->id != key_yes && token->id != key_no)
        return fail(message_number, token);
    used = token->id == key_yes ? 1 : 0;
    return outcome::go_on;
}

// A NUMBER that may be missing.
bool read_optional_number(zel_lex_t *lex, std::int32_t &number)
{
    if (look(lex) != TOKEN_DEC)
        return false;
    number = signed_number(next(lex));
    return true;
}

// ---- Entries: STRING "{" STRING ... "}"

outcome read_entry(zel_lex_t *lex, zel::list_tail &entries)
{
    const zel_token_t *token = next(lex);
    if (token->id != TOKEN_STRING)
        return fail(939, token);
    lang_entry_t *entry = alloc_lang_entry(*token->lexeme == '\0' ? nullptr : token->lexeme);
    if (entry == nullptr)
        return fail(945, token);
    entries.append(entry);
    token = next(lex);
    if (token->id != '{')
        return fail(955, token);
    zel::list_tail texts(entry->texts);
    for (token = next(lex); token->id == TOKEN_STRING; token = next(lex))
        texts.append(zel_strdup2(token->lexeme));
    return token->id == '}' ? outcome::go_on : fail(969, token);
}

// ---- Items

// "{" STRING ... "}" behind USED YES or USED NO; may be missing.
outcome read_used_in(zel_lex_t *lex, item_t *item)
{
    if (look(lex) != '{')
        return outcome::go_on;
    next(lex);
    zel::list_tail places(item->used_in);
    const zel_token_t *token = next(lex);
    for (; token->id == TOKEN_STRING; token = next(lex))
        places.append(zel_strdup(token->lexeme));
    return token->id == '}' ? outcome::go_on : fail(892, token);
}

outcome read_used(zel_lex_t *lex, item_t *item)
{
    const outcome result = read_yes_no(lex, item->used, 852);
    return result == outcome::go_on ? read_used_in(lex, item) : result;
}

// SIZE NUMBER [NUMBER]: read and dropped.
outcome read_size(zel_lex_t *lex)
{
    std::int32_t dropped = 0;
    const outcome result = read_number(lex, dropped, 787);
    if (result == outcome::go_on)
        read_optional_number(lex, dropped);
    return result;
}

// Items without a creation time in the file count as made when the program started.
outcome read_item_ctime(zel_lex_t *lex, item_t *item)
{
    std::int32_t time = 0;
    const outcome result = read_number(lex, time, 816);
    if (result == outcome::go_on)
        item->ctime = time == 0 ? lang_global.start_time : time;
    return result;
}

// One attribute, its keyword already taken.
outcome read_attribute(zel_lex_t *lex, item_t *item, int key)
{
    switch (key) {
    case key_visible:
        return read_number(lex, item->visible, 744);
    case key_used:
        return read_used(lex, item);
    case key_size:
        return read_size(lex);
    case key_rowheight:
        return read_number(lex, item->rowheight, 832);
    case key_typ:
        return read_number(lex, item->typ, 756);
    case key_ready:
        return read_number(lex, item->ready, 731);
    case key_category:
    case key_description:
        return read_string(lex, item->description, 775);
    case key_ctime:
        return read_item_ctime(lex, item);
    default: // key_changed
        item->changed = 1;
        return outcome::go_on;
    }
}

bool is_attribute(int key)
{
    switch (key) {
    case key_visible:
    case key_used:
    case key_changed:
    case key_size:
    case key_rowheight:
    case key_typ:
    case key_ready:
    case key_category:
    case key_description:
    case key_ctime:
        return true;
    default:
        return false;
    }
}

// Attributes in any order, then LANG and COMMENT entries in any order.
outcome read_item_body(zel_lex_t *lex, item_t *item)
{
    outcome result = outcome::go_on;
    while (result == outcome::go_on && is_attribute(look(lex)))
        result = read_attribute(lex, item, next(lex)->id);
    zel::list_tail langs(item->langs);
    zel::list_tail comments(item->comments);
    while (result == outcome::go_on && (look(lex) == key_lang || look(lex) == key_comment))
        result = read_entry(lex, next(lex)->id == key_lang ? langs : comments);
    return result;
}

// ITEM STRING "{" body "}", the keyword already taken. After an error in the body the item ends at
// the next token if that is its brace.
outcome read_item(zel_lex_t *lex, item_t *item, place start)
{
    const zel_token_t *token = next(lex);
    if (token->id != TOKEN_STRING)
        return fail(675, token);
    item->name = zel_strdup(token->lexeme);
    token = next(lex);
    if (token->id != '{') {
        fail(689, token);
        return fail(691, start);
    }
    read_item_body(lex, item);
    token = next(lex);
    return token->id == '}' ? outcome::go_on : fail(701, token);
}

// ---- Groups and the rest of the file

struct source_reader {
    zel_lex_t *lex;
    LangSource *source;
    zel::list_tail langs;
    zel::list_tail groups;

    source_reader(zel_lex_t *scanner, LangSource *root)
        : lex(scanner), source(root), langs(root->langs), groups(root->groups)
    {
    }

    outcome read_statements();
    outcome read_statement(const zel_token_t *token);
    outcome read_version();
    outcome read_default();
    outcome read_colwidth();
    outcome read_define();
    outcome read_define_file(bool &more);
    void read_define_format(place at);
    outcome read_group();
    outcome read_group_element(edit_t *group, zel::list_tail &items);
    outcome add_item(edit_t *group, zel::list_tail &items, place start);
};

outcome source_reader::add_item(edit_t *group, zel::list_tail &items, place start)
{
    item_guard item(alloc_item());
    if (!item)
        return fail(659, start);
    const outcome result = read_item(lex, item.get(), start);
    if (result != outcome::go_on)
        return result;
    if (item->used != 0)
        ++group->used;
    item->source = source;
    ++source->item_count;
    items.append(item.release());
    return outcome::go_on;
}

outcome source_reader::read_group_element(edit_t *group, zel::list_tail &items)
{
    const zel_token_t *token = next(lex);
    switch (token->id) {
    case key_item:
        return add_item(group, items, place_of(token));
    case key_used:
        return read_yes_no(lex, group->used, 418);
    case key_visible:
        return read_number(lex, group->visible, 386);
    case key_screen_shot:
        return read_string(lex, group->screen_shot, 399);
    case TOKEN_EOF:
        return fail(448, token);
    default:
        return fail(452, token);
    }
}

// GROUP STRING "{" element ... "}". A name or brace that is none is said and taken for it.
outcome source_reader::read_group()
{
    edit_t *group = lang_alloc_edit();
    if (group == nullptr)
        return fail(351, {0, 0});
    groups.append(group);
    const zel_token_t *token = next(lex);
    if (token->id != TOKEN_STRING)
        fail(363, token);
    group->name = zel_strdup(token->lexeme);
    token = next(lex);
    if (token->id != '{')
        fail(372, token);
    zel::list_tail items(group->items);
    outcome result = outcome::go_on;
    while (result == outcome::go_on && look(lex) != '}')
        result = read_group_element(group, items);
    if (result == outcome::go_on)
        next(lex);
    return result;
}

// FILE STRING LANG STRING [NUMBER [NUMBER [NUMBER]]]. Only with two numbers or more is the
// language counted and may the DEFINE statement go on.
outcome source_reader::read_define_file(bool &more)
{
    const zel_token_t *token = next(lex);
    if (token->id != TOKEN_STRING)
        return fail(496, token);
    lang_t *lang = alloc_lang();
    if (lang == nullptr)
        return fail(502, token);
    langs.append(lang);
    lang->file = zel_strdup(token->lexeme);
    token = next(lex);
    if (token->id != key_lang)
        return fail(512, token);
    const outcome result = read_string(lex, lang->name, 519);
    more = result == outcome::go_on && read_optional_number(lex, lang->value_1) &&
           read_optional_number(lex, lang->value_2);
    if (more) {
        if (!read_optional_number(lex, lang->edit))
            lang->edit = 1;
        ++source->lang_count;
        source->edit_lang_count += lang->edit != 0 ? 1 : 0;
    }
    return result;
}

// FORMAT ASCII | UTF8; only the first one counts.
void source_reader::read_define_format(place at)
{
    const bool first = source->format == LANG_SOURCE_NONE;
    if (!first)
        fail(474, at);
    const int kind = next(lex)->id;
    if (first && kind == key_ascii)
        source->format = LANG_SOURCE_ASCII;
    if (first && kind == key_utf8)
        source->format = LANG_SOURCE_UTF8;
}

outcome source_reader::read_define()
{
    outcome result = outcome::go_on;
    bool more = true;
    while (more && result == outcome::go_on) {
        const int kind = look(lex);
        if (kind == key_file) {
            next(lex);
            result = read_define_file(more);
        } else if (kind == key_format) {
            read_define_format(place_of(next(lex)));
        } else {
            more = false;
        }
    }
    return result;
}

outcome source_reader::read_version()
{
    if (!read_optional_number(lex, source->version))
        source->version = 0;
    return outcome::go_on;
}

outcome source_reader::read_default()
{
    if (next(lex)->id == key_lang)
        return read_string(lex, source->default_lang, 574);
    exit_line = 261;
    return outcome::give_up;
}

outcome source_reader::read_colwidth()
{
    const zel_token_t *token = next(lex);
    switch (token->id) {
    case key_group:
        return read_number(lex, source->colwidth_group, 604);
    case key_item:
        return read_number(lex, source->colwidth_item, 617);
    case key_ctrl:
        return read_number(lex, source->colwidth_ctrl, 629);
    default:
        return fail(637, token);
    }
}

outcome source_reader::read_statement(const zel_token_t *token)
{
    switch (token->id) {
    case key_version:
        return read_version();
    case key_whatsnew:
        return read_time(lex, source->whatsnew, 204);
    case key_ctime:
        return read_time(lex, source->ctime, 219);
    case key_mtime:
        return read_time(lex, source->mtime, 234);
    case key_create_date:
        return read_string(lex, source->create_date, 187);
    case key_app:
        return read_string(lex, source->app, 172);
    case key_default:
        return read_default();
    case key_colwidth:
        return read_colwidth();
    case key_define:
        return read_define();
    case key_group:
        return read_group();
    default:
        return fail(318, token);
    }
}

outcome source_reader::read_statements()
{
    outcome result = outcome::go_on;
    while (result == outcome::go_on && look(lex) != TOKEN_EOF)
        result = read_statement(next(lex));
    return result;
}

// Later readers and the editor find files beside the source through its directory.
void note_source_directory(const char *path)
{
    char *dir = nullptr;
    char *file = nullptr;
    zel_split_path_file(path, &dir, &file);
    std::free(file);
    zel::replace_string(lang_global.src_dir, dir);
    lang_global.whatsnew_since = 0;
}

// What went wrong before the first statement, or with the file under it.
enum class trouble { none, not_opened, no_path };

trouble check_opened(const zel_lex_buf_t *buf)
{
    if (buf == nullptr)
        return trouble::not_opened;
    return buf->stream == nullptr ? trouble::no_path : trouble::none;
}

void print_trouble(trouble what, const char *path)
{
    if (what == trouble::not_opened)
        std::printf("ERROR(%d) open ->%s<-\n", 146, path);
    else
        std::printf("ERROR(%d) file open ->%s<-\n", 155, path);
}

void log_trouble(trouble what, const char *path)
{
    if (what == trouble::not_opened)
        LogPrint(1, "lang_read_file: ERROR(exit) >%s< %s:%d\n", path, "lang-read", 151);
    else
        log_exit(159);
}

} // namespace

int parse_lang_text(zel_lex_t *lex, GList **entries)
{
    zel::list_tail tail(*entries);
    return read_entry(lex, tail) == outcome::go_on ? 0 : -1;
}

LangSource *lang_read_file(const char *path)
{
    LogPrint(1, "lang_read_file: entry\n");
    source_guard source(lang_alloc_group());
    zel_lex_guard lex(zel_lex_new(keywords, source_flags));
    if (!source || !lex) {
        log_exit(128);
        return nullptr;
    }
    zel_lex_buf_guard buf(zel_lex_buf_file_new(path));
    note_source_directory(path);
    const char *shown = path == nullptr ? "" : path;
    trouble what = check_opened(buf.get());
    outcome result = outcome::give_up;
    exit_line = 0;
    if (what == trouble::none) {
        zel_lex_set_buf(lex.get(), buf.get());
        result = source_reader(lex.get(), source.get()).read_statements();
        // A file that the system cannot read to its end must not pass for a short one.
        if (result != outcome::stop && std::ferror(buf->stream) != 0)
            what = trouble::not_opened;
    }
    if (result == outcome::go_on && what == trouble::none) {
        LogPrint(1, "lang_read_file: exit\n");
        return source.release();
    }
    if (what != trouble::none)
        print_trouble(what, shown);
    source.reset();
    lex.reset();
    buf.reset();
    if (what != trouble::none) {
        log_trouble(what, shown);
    } else if (result == outcome::stop) {
        std::printf("lang_read_file: ERROR(exit) %s:%d\n", "lang-read", 303);
        log_exit(304);
        lang_exit(0);
    } else if (exit_line != 0) {
        log_exit(exit_line);
    }
    return nullptr;
}
