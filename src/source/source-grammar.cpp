#include "source/source-grammar.h"

#include "support/string-copy.h"
#include "support/string.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

// A keyword's id is the kind of its token: it lies above all other kinds of lex/lex-token.h and
// fits into 16 bits with a sign.
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
static_assert(key_mtime == 20029, "the ids show in messages");

// Limited to what 32 bits with a sign hold: a larger number would be written back with a minus
// sign, which no reader takes.
std::int32_t signed_number(const zel_token_t *token)
{
    const long number = std::strtol(token->lexeme, nullptr, 10);
    return static_cast<std::int32_t>(std::min<long>(number, INT32_MAX));
}

std::uint32_t unsigned_number(const zel_token_t *token)
{
    return static_cast<std::uint32_t>(std::strtoul(token->lexeme, nullptr, 10));
}

// In step with read_attribute, which takes a word that stands only here for CHANGED.
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

} // namespace

namespace zel {

// Row 0 belongs to the scanner; a row without a word ends the table.
const Keytab source_keywords[] = {
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

outcome source_reader::fail(int number, place at, int kind)
{
    const read_message_row &row = read_message_of(number);
    if (how.listener)
        how.listener({&row, at, kind, path});
    if (row.log_line != 0)
        log_line = row.log_line;
    return row.after;
}

// NUMBER, else the message.
outcome source_reader::read_number(std::int32_t &number, int message_number)
{
    const zel_token_t *token = next();
    if (token->id != TOKEN_DEC)
        return fail(message_number, token);
    number = signed_number(token);
    return outcome::go_on;
}

outcome source_reader::read_time(std::int64_t &time, int message_number)
{
    const zel_token_t *token = next();
    if (token->id != TOKEN_DEC)
        return fail(message_number, token);
    // Unsigned, as source_text::append_head writes it.
    time = unsigned_number(token);
    return outcome::go_on;
}

// Reads a STRING; any other token is reported. An empty string is stored as null.
outcome source_reader::read_string(char *&text, int message_number)
{
    const zel_token_t *token = next();
    if (token->id != TOKEN_STRING)
        return fail(message_number, token);
    replace_string(text, copy_of(token));
    return outcome::go_on;
}

std::string_view source_reader::text_of(const zel_token_t *token)
{
    // The scanner keeps NUL bytes, the model's C strings cannot: the listener hears of the loss.
    const std::size_t length = std::strlen(token->lexeme);
    if (length < token->length)
        fail(read_nul_byte, token);
    return {token->lexeme, length};
}

// Stored as null where it is empty.
char *source_reader::copy_of(const zel_token_t *token)
{
    const std::string_view text = text_of(token);
    return _zel_strdup(text.data(), text.size());
}

// Reads YES or NO; any other token is reported.
outcome source_reader::read_yes_no(std::uint32_t &used, int message_number)
{
    const zel_token_t *token = next();
    if (token->id != key_yes && token->id != key_no)
        return fail(message_number, token);
    used = token->id == key_yes ? 1 : 0;
    return outcome::go_on;
}

// Reads a NUMBER that may be missing; false without one.
bool source_reader::read_optional_number(std::int32_t &number)
{
    if (look() != TOKEN_DEC)
        return false;
    number = signed_number(next());
    return true;
}

outcome source_reader::read_entry(list_tail &entries, place start)
{
    const zel_token_t *token = next();
    if (token->id != TOKEN_STRING)
        return fail(939, token);
    // Like every empty string that is read, an empty language is stored as null.
    const std::string_view language = *token->lexeme == '\0' ? std::string_view() : text_of(token);
    if (how.keeps && !how.keeps(language))
        return read_lines(nullptr);
    lang_entry_t *entry = alloc_lang_entry(language.data());
    if (entry == nullptr)
        return fail(945, token);
    // Appended before its texts are read: after an error in them the item keeps what was read.
    entries.append(entry);
    note(entry, start);
    list_tail texts(entry->texts);
    return read_lines(&texts);
}

// "{" STRING ... "}", which are not kept where there is nothing to append them to.
outcome source_reader::read_lines(list_tail *texts)
{
    const zel_token_t *token = next();
    if (token->id != '{')
        return fail(955, token);
    for (token = next(); token->id == TOKEN_STRING; token = next()) {
        // _zel_strdup2 keeps an empty string, which is a line of the text.
        const std::string_view line = text_of(token);
        if (texts != nullptr)
            texts->append(_zel_strdup2(line.data(), line.size()));
    }
    return token->id == '}' ? outcome::go_on : fail(969, token);
}

// "{" STRING ... "}" behind USED YES or USED NO; may be missing.
outcome source_reader::read_used_in(item_t *item)
{
    if (look() != '{')
        return outcome::go_on;
    next();
    list_tail places(item->used_in);
    const zel_token_t *token = next();
    for (; token->id == TOKEN_STRING; token = next())
        places.append(copy_of(token));
    return token->id == '}' ? outcome::go_on : fail(892, token);
}

outcome source_reader::read_used(item_t *item)
{
    const outcome result = read_yes_no(item->used, 852);
    return result == outcome::go_on ? read_used_in(item) : result;
}

// SIZE NUMBER [NUMBER]. The model has no field for it, so it is read and dropped.
outcome source_reader::read_size()
{
    std::int32_t dropped = 0;
    const outcome result = read_number(dropped, 787);
    if (result == outcome::go_on)
        read_optional_number(dropped);
    return result;
}

// Written as a signed number of 32 bits, so from 2038 on with a minus sign; the time itself is
// unsigned, good until 2106. Items without one count as made now.
outcome source_reader::read_item_ctime(item_t *item)
{
    const zel_token_t *token = next();
    const bool negative = token->id == '-' && look() == TOKEN_DEC;
    if (negative)
        token = next();
    if (token->id != TOKEN_DEC)
        return fail(816, token);
    const std::uint32_t number = unsigned_number(token);
    const std::uint32_t time = negative ? 0U - number : number;
    item->ctime = time == 0 ? how.now : time;
    return outcome::go_on;
}

// Reads one attribute, whose keyword has been taken already.
outcome source_reader::read_attribute(item_t *item, int key)
{
    switch (key) {
    case key_visible:
        return read_number(item->visible, 744);
    case key_used:
        return read_used(item);
    case key_size:
        return read_size();
    case key_rowheight:
        return read_number(item->rowheight, 832);
    case key_typ:
        return read_number(item->typ, 756);
    case key_ready:
        return read_number(item->ready, 731);
    case key_category:
    // Both words fill one field; the writer knows only DESCRIPTION.
    case key_description:
        return read_string(item->description, 775);
    case key_ctime:
        return read_item_ctime(item);
    default: // key_changed
        item->changed = 1;
        return outcome::go_on;
    }
}

// Attributes in any order, then LANG and COMMENT entries in any order. An attribute behind an entry
// stands where the item must end, and read_item fails there.
outcome source_reader::read_item_body(item_t *item)
{
    outcome result = outcome::go_on;
    while (result == outcome::go_on && is_attribute(look()))
        result = read_attribute(item, next()->id);
    list_tail langs(item->langs);
    list_tail comments(item->comments);
    while (result == outcome::go_on && (look() == key_lang || look() == key_comment)) {
        const zel_token_t *token = next();
        result = read_entry(token->id == key_lang ? langs : comments, place_of(token));
    }
    return result;
}

// ITEM STRING "{" body "}", the keyword already taken. After an error in the body the item ends at
// the next token if that is its brace.
outcome source_reader::read_item(item_t *item, place start)
{
    note(item, start);
    const zel_token_t *token = next();
    if (token->id != TOKEN_STRING)
        return fail(675, token);
    item->name = copy_of(token);
    token = next();
    if (token->id != '{') {
        fail(689, token);
        return fail(691, start);
    }
    // The result is dropped on purpose: the closing brace alone decides whether the item counts.
    read_item_body(item);
    token = next();
    return token->id == '}' ? outcome::go_on : fail(701, token);
}

outcome statement_reader::add_item(place start)
{
    item_guard item(alloc_item());
    if (!item)
        return fail(659, start);
    const outcome result = read_item(item.get(), start);
    if (result != outcome::go_on)
        return result;
    // Only whole items are counted; the guard frees any other.
    if (item->used != 0)
        ++group->used;
    item->source = source;
    ++source->item_count;
    items->append(item.release());
    return outcome::go_on;
}

outcome statement_reader::read_group_element()
{
    const zel_token_t *token = next();
    switch (token->id) {
    case key_item:
        return add_item(place_of(token));
    case key_used:
        return read_yes_no(group->used, 418);
    case key_visible:
        return read_number(group->visible, 386);
    case key_screen_shot:
        return read_string(group->screen_shot, 399);
    case TOKEN_EOF:
        return fail(448, token);
    default:
        return fail(452, token);
    }
}

// GROUP STRING "{", and pieces follow: element ... "}". If the name or the brace is missing, that
// is reported, and the token in its place is taken for it.
outcome statement_reader::begin_group(place start)
{
    group = lang_alloc_edit();
    if (group == nullptr)
        return fail(351, {0, 0});
    groups.append(group);
    note(group, start);
    const zel_token_t *token = next();
    if (token->id != TOKEN_STRING)
        fail(363, token);
    group->name = copy_of(token);
    token = next();
    if (token->id != '{')
        fail(372, token);
    items.emplace(group->items);
    return outcome::go_on;
}

// FILE STRING LANG STRING [NUMBER [NUMBER [NUMBER]]]. Only with two numbers or more is the
// language counted and may the DEFINE statement go on.
outcome statement_reader::read_define_file(bool &more, place start)
{
    const zel_token_t *token = next();
    if (token->id != TOKEN_STRING)
        return fail(496, token);
    lang_t *lang = alloc_lang();
    if (lang == nullptr)
        return fail(502, token);
    langs.append(lang);
    note(lang, start);
    lang->file = copy_of(token);
    token = next();
    if (token->id != key_lang)
        return fail(512, token);
    const outcome result = read_string(lang->name, 519);
    more = result == outcome::go_on && read_optional_number(lang->value_1) &&
           read_optional_number(lang->value_2);
    if (more) {
        if (!read_optional_number(lang->edit))
            lang->edit = 1;
        ++source->lang_count;
        source->edit_lang_count += lang->edit != 0 ? 1 : 0;
    }
    return result;
}

// FORMAT ASCII | UTF8; only the first one counts.
void statement_reader::read_define_format(place at)
{
    const bool first = source->format == LANG_SOURCE_NONE;
    if (!first)
        fail(474, at);
    // Any other word is taken, too, and has no effect.
    const int kind = next()->id;
    if (first && kind == key_ascii)
        source->format = LANG_SOURCE_ASCII;
    if (first && kind == key_utf8)
        source->format = LANG_SOURCE_UTF8;
}

// Any number of FILE and FORMAT parts. The first word that begins neither belongs to the next
// statement, so it is only looked at.
outcome statement_reader::read_define()
{
    outcome result = outcome::go_on;
    bool more = true;
    while (more && result == outcome::go_on) {
        const int kind = look();
        if (kind == key_file) {
            result = read_define_file(more, place_of(next()));
        } else if (kind == key_format) {
            read_define_format(place_of(next()));
        } else {
            more = false;
        }
    }
    return result;
}

outcome statement_reader::read_version()
{
    if (!read_optional_number(source->version))
        source->version = 0;
    return outcome::go_on;
}

outcome statement_reader::read_default()
{
    if (next()->id == key_lang)
        return read_string(source->default_lang, 574);
    return fail(read_no_default_lang, zel_current_token(lex));
}

outcome statement_reader::read_colwidth()
{
    const zel_token_t *token = next();
    switch (token->id) {
    case key_group:
        return read_number(source->colwidth_group, 604);
    case key_item:
        return read_number(source->colwidth_item, 617);
    case key_ctrl:
        return read_number(source->colwidth_ctrl, 629);
    default:
        return fail(637, token);
    }
}

outcome statement_reader::read_statement(const zel_token_t *token)
{
    switch (token->id) {
    case key_version:
        return read_version();
    case key_whatsnew:
        return read_time(source->whatsnew, 204);
    case key_ctime:
        return read_time(source->ctime, 219);
    case key_mtime:
        return read_time(source->mtime, 234);
    case key_create_date:
        return read_string(source->create_date, 187);
    case key_app:
        return read_string(source->app, 172);
    case key_default:
        return read_default();
    case key_colwidth:
        return read_colwidth();
    case key_define:
        return read_define();
    case key_group:
        return begin_group(place_of(token));
    default:
        return fail(318, token);
    }
}

// Reads a statement, or one element or the end of the group that is open.
outcome statement_reader::read_piece()
{
    if (group == nullptr)
        return read_statement(next());
    if (look() != '}')
        return read_group_element();
    next();
    group = nullptr;
    return outcome::go_on;
}

} // namespace zel
