#include "assist/words.h"

#include "lint/mnemonics.h"
#include "lint/text.h"

#include <algorithm>

namespace zel::assist {

namespace {

constexpr std::size_t longest_word = 60; // characters; more is no word, and dictionaries get slow
constexpr char32_t soft_hyphen = 0xad;
constexpr char32_t right_quote = 0x2019; // the apostrophe of print

bool is_apostrophe(char32_t c) { return c == '\'' || c == right_quote; }

// Signs that stand in words and are none of their letters: joiners shape the letters beside them.
bool is_inside(char32_t c) { return c == soft_hyphen || c == 0x200c || c == 0x200d; }

void append(std::string &out, char32_t c)
{
    char bytes[6];
    out.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(c, bytes)));
}

// What is known of a run of letters, digits and underscores with apostrophes and dots inside.
struct run {
    std::size_t start = 0;
    std::size_t end = 0; // behind its last letter
    std::string letters;
    std::size_t count = 0; // of the letters
    std::size_t capitals = 0;
    std::size_t underscores = 0;
    bool no_word = false;
    char32_t last = 0; // letter of the same part

    void add(char32_t c)
    {
        if (is_inside(c)) {
            // A joiner belongs to the spelling and stays; a soft hyphen is only a place to break a
            // line.
            if (c != soft_hyphen)
                append(letters, c);
            return;
        }
        const bool capital = g_unichar_isupper(c) != FALSE || g_unichar_istitle(c) != FALSE;
        // A capital behind a small letter: a name like "fileName".
        no_word = no_word || lint::is_digit(c) || (c >= 0x80 && sets_no_blanks(c)) ||
                  (capital && g_unichar_islower(last) != FALSE);
        capitals += capital ? 1U : 0U;
        // A mark on a letter does not make the word longer.
        count += g_unichar_ismark(c) != FALSE ? 0U : 1U;
        append(letters, c);
        last = c;
    }
    bool is_word(bool underscores_are_marks) const
    {
        // Words all in capitals are abbreviations. One underscore may be a menu's mnemonic.
        return !no_word && count > 1 && count <= longest_word && capitals < count &&
               (underscores == 0 || (underscores == 1 && underscores_are_marks));
    }
};

// Reads a text chunk by chunk; blanks and pieces stand between the chunks.
class reader {
public:
    explicit reader(std::string_view text)
        : text_(text), pieces_(pieces_of(text)), next_piece_(pieces_.begin())
    {
        // Whether an underscore marks a letter can only be told from the whole text.
        if (text.find('_') != std::string_view::npos)
            underscores_are_marks_ = lint::read_mnemonics(text).sure != 0;
    }

    std::vector<word> words()
    {
        std::size_t at = 0;
        while (at < text_.size()) {
            if (next_piece_ != pieces_.end() && next_piece_->at <= at) {
                at = next_piece_->at + next_piece_->length;
                ++next_piece_;
            } else if (lint::is_blank(text_[at])) {
                ++at;
            } else {
                const std::size_t end = chunk_end(at);
                if (!is_no_language(text_.substr(at, end - at)))
                    read_chunk(at, end);
                at = end;
            }
        }
        return std::move(words_);
    }

private:
    std::size_t chunk_end(std::size_t at) const
    {
        const std::size_t limit = next_piece_ == pieces_.end() ? text_.size() : next_piece_->at;
        while (at < limit && !lint::is_blank(text_[at]))
            ++at;
        return at;
    }

    // Whether the chunk is an address, a path or an option.
    static bool is_no_language(std::string_view chunk)
    {
        // Quotes and brackets in front do not make a path a word.
        while (!chunk.empty() && std::string_view("\"'([{<,;:").find(chunk[0]) != chunk.npos)
            chunk.remove_prefix(1);
        const std::size_t sign = chunk.find('@');
        const bool mail = sign != chunk.npos && sign > 0 && sign + 1 < chunk.size();
        const bool drive = chunk.size() > 2 && lint::is_ascii_letter(chunk[0]) && chunk[1] == ':' &&
                           chunk[2] == '\\';
        return mail || drive || chunk.find("://") != chunk.npos || chunk.starts_with("www.") ||
               chunk.starts_with("mailto:") || chunk.starts_with("/") || chunk.starts_with("~/") ||
               chunk.starts_with("./") || chunk.starts_with("../") || chunk.starts_with("--");
    }

    // Length of the escape or the entity that begins there; 0 for none.
    std::size_t sign_length(std::size_t at, std::size_t end) const
    {
        std::size_t stop = at + 1;
        if (text_[at] == '\\' && stop < end) {
            if (text_[stop] != 'x' && text_[stop] != 'u' && text_[stop] != 'U')
                return 2;
            for (++stop; stop < end && g_ascii_isxdigit(text_[stop]);)
                ++stop;
            return stop - at;
        }
        if (text_[at] != '&')
            return 0;
        while (stop < end && (g_ascii_isalnum(text_[stop]) || text_[stop] == '#'))
            ++stop;
        return stop < end && text_[stop] == ';' && stop > at + 1 ? stop + 1 - at : 0;
    }

    void read_chunk(std::size_t at, std::size_t end)
    {
        while (at < end) {
            std::size_t behind = at;
            const std::size_t sign = sign_length(at, end);
            if (sign != 0)
                at += sign;
            else if (const char32_t c = lint::next_char(text_, behind);
                     lint::is_letter(c) || lint::is_digit(c) || c == '_')
                at = read_run(at, end);
            else
                at = behind;
        }
    }

    // Whether a letter, a digit or an underscore stands there.
    bool goes_on(std::size_t at, std::size_t end) const
    {
        if (at >= end)
            return false;
        const char32_t c = lint::next_char(text_, at);
        return lint::is_letter(c) || lint::is_digit(c) || c == '_';
    }

    // Reads a run and returns where it ends.
    std::size_t read_run(std::size_t at, std::size_t end)
    {
        run found;
        found.start = found.end = at;
        while (at < end) {
            std::size_t behind = at;
            const char32_t c = lint::next_char(text_, behind);
            if (c == '_') {
                ++found.underscores;
                found.last = 0;
            } else if (is_apostrophe(c) || c == '.') {
                // An apostrophe or a dot at the end of a word ends it: "dogs'" and "done.".
                if (!goes_on(behind, end))
                    break;
                found.no_word = found.no_word || c == '.';
                // Dictionaries know the typewriter's apostrophe only.
                found.letters += '\'';
                found.last = 0;
            } else if (lint::is_letter(c) || lint::is_digit(c) || is_inside(c)) {
                found.add(c);
                found.end = behind;
            } else {
                break;
            }
            at = behind;
        }
        if (found.is_word(underscores_are_marks_))
            words_.push_back({{found.start, found.end - found.start}, std::move(found.letters)});
        return at;
    }

    std::string_view text_;
    std::vector<piece> pieces_;
    std::vector<piece>::const_iterator next_piece_;
    std::vector<word> words_;
    bool underscores_are_marks_ = false;
};

} // namespace

bool sets_no_blanks(char32_t c)
{
    switch (g_unichar_get_script(c)) {
    case G_UNICODE_SCRIPT_HAN:
    case G_UNICODE_SCRIPT_HIRAGANA:
    case G_UNICODE_SCRIPT_KATAKANA:
    case G_UNICODE_SCRIPT_BOPOMOFO:
    case G_UNICODE_SCRIPT_THAI:
    case G_UNICODE_SCRIPT_LAO:
    case G_UNICODE_SCRIPT_KHMER:
    case G_UNICODE_SCRIPT_MYANMAR:
        return true;
    default:
        return false;
    }
}

std::vector<word> words_of(std::string_view text) { return reader(text).words(); }

std::string written_like(std::string_view written, std::string_view letters)
{
    // The key stands behind the underscore: the correction gets its mnemonic on the same letter, so
    // that the user's habit still works.
    std::size_t marked = written.find('_');
    char32_t key = 0;
    if (marked != std::string_view::npos && ++marked < written.size())
        key = g_unichar_tolower(lint::next_char(written, marked));
    std::size_t place = 0; // of the key in the letters
    for (std::size_t at = 0, before = 0; key != 0 && at < letters.size(); before = at)
        if (g_unichar_tolower(lint::next_char(letters, at)) == key) {
            place = before;
            break;
        }

    const bool printed = written.find("\u2019") != std::string_view::npos;
    std::string out;
    for (std::size_t at = 0; at < letters.size(); ++at) {
        if (key != 0 && at == place)
            out += '_';
        if (printed && letters[at] == '\'')
            out += "\u2019";
        else
            out += letters[at];
    }
    return out;
}

} // namespace zel::assist
