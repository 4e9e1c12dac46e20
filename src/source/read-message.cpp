#include "source/read-message.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace zel {

namespace {

constexpr outcome go_on = outcome::go_on;
constexpr outcome give_up = outcome::give_up;
constexpr outcome stop = outcome::stop;
constexpr outcome recover = outcome::recover;

// Scripts look for these texts and numbers: they stay as they are, "crate_date", "alread" and
// "expeced" too.
constexpr read_message_row rows[] = {
    {read_maybe_cut, "", nullptr,
     "the line that names the end of the file is missing: it may have been cut", go_on, 0},
    {read_nul_byte, "", nullptr, "a NUL byte ends the text here, and what follows is lost", go_on,
     0},
    {read_not_opened, "ERROR(%d) open ->%s<-\n", nullptr, "the file cannot be read", give_up, 151},
    {read_no_path, "ERROR(%d) file open ->%s<-\n", nullptr, "no file is named", give_up, 159},
    {172, "\nERROR(%d): line %d:%d app %d", nullptr, "APP needs a name in quotes", give_up, 0},
    {187, "\nERROR(%d): line %d:%d crate_date date  %d", nullptr,
     "CREATE_DATE needs a date in quotes", give_up, 0},
    {204, "\nERROR(%d): line %d:%d expected numeric", nullptr, "WHATSNEW needs a number", give_up,
     0},
    {219, "\nERROR(%d): line %d:%d expected numeric", nullptr, "CTIME needs a number", give_up, 0},
    {234, "\nERROR(%d): line %d:%d expected numeric", nullptr, "MTIME needs a number", give_up, 0},
    {read_no_default_lang, "", nullptr, "DEFAULT needs the word LANG", give_up, 261},
    {574, "\nERROR(%d): line %d:%d define default lang  %d", nullptr,
     "DEFAULT LANG needs a language in quotes", give_up, 261},
    {604, "\nERROR(%d): line %d:%d expected numeric", nullptr, "COLWIDTH GROUP needs a number",
     give_up, 272},
    {617, "\nERROR(%d): line %d:%d expected numeric", nullptr, "COLWIDTH ITEM needs a number",
     give_up, 272},
    {629, "\nERROR(%d): line %d:%d expected numeric", nullptr, "COLWIDTH CTRL needs a number",
     give_up, 272},
    {637, "\nERROR(%d): line %d:%d expected item,group,comment,lang", nullptr,
     "COLWIDTH needs one of the words GROUP, ITEM and CTRL", give_up, 272},
    {496, "\nERROR(%d): line %d:%d unexpected token %d", "ERROR(246)\n",
     "FILE needs a file name in quotes", give_up, 250},
    {502, "\nERROR(%d): lang_t: not enough memory", "ERROR(246)\n",
     "not enough memory for a language", give_up, 250},
    {512, "\nERROR(%d): line %d:%d unexpected token %d", "ERROR(246)\n",
     "LANG is missing behind the file name", give_up, 250},
    {519, "\nERROR(%d): line %d:%d unexpected token %d", "ERROR(246)\n",
     "LANG needs a language in quotes", give_up, 250},
    {474, "\nWARNING(%d): line %d format alread defined, ignored", nullptr,
     "a second FORMAT has no effect", go_on, 0},
    {318, "\nERROR(%d): line %d:%d unexpected token %d\n",
     "lang_read_file: ERROR(exit) lang-read:323\n", "no statement begins here", give_up, 324},
    {351, "\nERROR(%d): edit_t: not enough memory", nullptr, "not enough memory for a group", stop,
     0},
    {363, "\nERROR(%d): line %d:%d expected string", nullptr, "GROUP needs a name in quotes", go_on,
     0},
    {372, "\nERROR(%d): line %d:%d expected '{'", nullptr,
     "\"{\" is missing behind the name of the group", go_on, 0},
    {386, "\nERROR(%d): line %d:%d expected numeric", nullptr, "VISIBLE needs a number", stop, 0},
    {399, "\nERROR(%d): line %d:%d expected string", nullptr, "SCREEN_SHOT needs a name in quotes",
     stop, 0},
    {418, "\nERROR(%d): line %d:%d expected YES or NO\n", nullptr, "USED needs YES or NO", stop, 0},
    {448, "\nERROR(%d): line %d:%d unexpected EOF\n", nullptr, "the file ends inside a group", stop,
     0},
    {452, "\nERROR(%d): line %d:%d unexpected token %d", nullptr, "nothing of a group begins here",
     stop, 0},
    {659, "\nERROR(%d): item_t: not enough memory", nullptr, "not enough memory for an item", stop,
     0},
    {675, "\nERROR(%d): line %d:%d unexpected token %d", nullptr, "ITEM needs a name in quotes",
     stop, 0},
    {689, "\nERROR:(%d) line %d:%d unexpected token %d expeced '{'\n", nullptr,
     "\"{\" is missing behind the name of the item", stop, 0},
    {691, "\nERROR:(%d) parse item start line %d:%d \n", nullptr, "the item begins here", stop, 0},
    {701, "\nERROR(%d): line %d:%d unexpected token %d expeced '}'\n", nullptr,
     "the item must end here", stop, 0},
    {731, "\nERROR(%d): line %d:%d expected numeric", nullptr, "READY needs a number", recover, 0},
    {744, "\nERROR(%d): line %d:%d expected numeric", nullptr, "VISIBLE needs a number", recover,
     0},
    {756, "\nERROR(%d): line %d:%d expected numeric", nullptr, "TYP needs a number", recover, 0},
    {775, "\nERROR(%d): line %d:%d expected category", nullptr,
     "DESCRIPTION needs a text in quotes", recover, 0},
    {787, "\nERROR(%d): line %d:%d expected numeric", nullptr, "SIZE needs a number", recover, 0},
    {816, "\nERROR(%d): line %d:%d expected numeric", nullptr, "CTIME needs a number", recover, 0},
    {832, "\nERROR(%d): line %d:%d expected numeric", nullptr, "ROWHEIGHT needs a number", recover,
     0},
    {852, "\nERROR(%d): line %d:%d expected YES or NO\n", nullptr, "USED needs YES or NO", recover,
     0},
    {892, "\nERROR(%d): line %d:%d unexpected token %d expeced '}'", nullptr,
     "the list of places holds texts in quotes and ends with \"}\"", recover, 0},
    {939, "\nERROR(%d): line %d:%d unexpected token %d", nullptr,
     "LANG and COMMENT need a language in quotes", recover, 0},
    {945, "\nERROR(%d): lang_entry_t: not enough memory", nullptr, "not enough memory for a text",
     recover, 0},
    {955, "\nERROR(%d): line %d:%d unexpected token %d expeced '{'", nullptr,
     "\"{\" is missing behind the language", recover, 0},
    {969, "\nERROR(%d): line %d:%d unexpected token %d expeced '}'", nullptr,
     "a text holds strings in quotes and ends with \"}\"", recover, 0},
};

// read_message_of finds a row by its number alone.
constexpr bool numbers_are_unique()
{
    for (const read_message_row &row : rows)
        for (const read_message_row &other : rows)
            if (&row != &other && row.number == other.number)
                return false;
    return true;
}
static_assert(numbers_are_unique());

} // namespace

std::span<const read_message_row> read_messages() { return rows; }

const read_message_row &read_message_of(int number)
{
    // Every caller passes a number of this table: the last row is only the end of the search.
    return *std::find_if(std::begin(rows), std::end(rows) - 1,
                         [=](const read_message_row &row) { return row.number == number; });
}

const char *read_failure(const read_message &message)
{
    // For this message, kind is the errno of the failed call.
    return message.row->number == read_not_opened && message.kind != 0 ? std::strerror(message.kind)
                                                                       : nullptr;
}

bool is_loss(const read_message_row &row)
{
    return row.after != go_on || row.number == read_maybe_cut || row.number == read_nul_byte;
}

void print_read_message(const read_message &message)
{
    const read_message_row &row = *message.row;
    switch (row.number) {
    // These two go to standard error: standard output carries only the texts that scripts know.
    case read_maybe_cut:
        std::fprintf(stderr, "lang: %s: %s\n", message.path, row.meaning);
        return;
    case read_nul_byte:
        std::fprintf(stderr, "lang: %s:%u: %s\n", message.path, message.at.line, row.meaning);
        return;
    case read_not_opened:
        std::printf(row.text, row.number, message.path);
        // A missing file is told from the text above; any other cause is added.
        if (const char *why = read_failure(message); why != nullptr && message.kind != ENOENT)
            std::fprintf(stderr, "lang: %s: %s\n", message.path, why);
        return;
    case read_no_path:
        std::printf(row.text, row.number, message.path);
        return;
    default:
        // A format that names fewer values leaves the last ones unused, as printf permits.
        std::printf(row.text, row.number, message.at.line, message.at.column, message.kind);
        if (row.follow != nullptr)
            std::fputs(row.follow, stdout);
    }
}

} // namespace zel
