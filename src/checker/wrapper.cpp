#include "checker/wrapper.h"

#include "checker/request-form.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

namespace zel {

namespace {

constexpr std::size_t most_arguments = 64;
constexpr std::size_t most_wrappers = 1000; // the ids of their words are 16 bits wide

// One argument of a call.
struct argument {
    std::string text;
    place at;
    std::size_t tokens = 0;
    bool literal = true;     // its text is known
    bool doubtful = false;   // a name in it has two values
    bool declaration = true; // as far as can be seen: "const char *text"

    bool is_declaration() const { return declaration && !literal && tokens > 1; }
    bool is_text() const { return literal && tokens != 0; }
};

void add(argument &to, const zel_token_t *token, const symtab_t *symbols)
{
    if (to.tokens++ == 0)
        to.at = {token->line, token->column};
    const char *value = token->id == TOKEN_STRING  ? token->lexeme
                        : token->id == TOKEN_IDENT ? symtab_get(symbols, token->lexeme)
                                                   : nullptr;
    if (value != nullptr)
        to.text += value;
    else
        to.literal = false;
    to.doubtful = to.doubtful ||
                  (token->id == TOKEN_IDENT && symtab_is_doubtful(symbols, token->lexeme) != 0);
    // A declaration consists of names and these signs.
    constexpr std::string_view marks = "*&[]";
    const int id = token->id;
    const bool is_mark =
        id > 0 && id < 128 && marks.find(static_cast<char>(id)) != std::string_view::npos;
    to.declaration = to.declaration && (id == TOKEN_IDENT || is_mark);
}

int depth_change(int id)
{
    return id == '(' || id == '[' || id == '{' ? 1 : id == ')' || id == ']' || id == '}' ? -1 : 0;
}

bool is_request(const zel_token_t *token)
{
    return token->id >= WORD_GET_STRING || locale_word(token) != nullptr;
}

// Reads the arguments through the closing parenthesis, or as far as they come before a request of
// lang.h; none if the input, or the statement, ends before that.
std::vector<argument> read_arguments(zel_lex_t *lex, const symtab_t *symbols,
                                     const std::function<void(const zel_token_t *)> &request)
{
    std::vector<argument> out(1);
    int braces = 0;
    for (int depth = 0;;) {
        const zel_token_t *token = zel_next_token(lex);
        const int id = token->id;
        braces += id == '{' ? 1 : id == '}' ? -1 : 0;
        if (id == TOKEN_EOF || (id == ';' && braces <= 0))
            return {};
        depth += depth_change(id);
        if (depth < 0)
            return out;
        if (id == ',' && depth == 0) {
            // What is beyond runs into the last argument: no wrapper can name it.
            if (out.size() < most_arguments)
                out.emplace_back();
            continue;
        }
        add(out.back(), token, symbols);
        if (is_request(token))
            request(token);
        if (id >= WORD_GET_STRING && id <= WORD_STOP)
            return out; // how much of the call that request took is not known
    }
}

} // namespace

const wrapper *locale_word(const zel_token_t *token)
{
    static const wrapper words[] = {{"lang_text", 2, 0, 1, 2}, {"lang_count", 2, 0, 1, 3}};
    if (token->id != TOKEN_IDENT || std::strncmp(token->lexeme, "lang_", 5) != 0)
        return nullptr;
    const auto *found = std::find_if(std::begin(words), std::end(words),
                                     [&](const wrapper &one) { return one.word == token->lexeme; });
    return found == std::end(words) ? nullptr : found;
}

std::optional<wrapper> parse_wrapper(std::string_view text)
{
    constexpr std::string_view plural = " plural";
    const bool forms = text.ends_with(plural);
    if (forms)
        text.remove_suffix(plural.size());
    const std::size_t colon = text.find(':');
    if (colon == 0 || colon == std::string_view::npos)
        return std::nullopt;
    wrapper out{std::string(text.substr(0, colon))};
    const auto in_word = [](char c) { return g_ascii_isalnum(c) || c == '_'; };
    if (!std::all_of(out.word.begin(), out.word.end(), in_word) || g_ascii_isdigit(out.word[0]))
        return std::nullopt;
    std::size_t numbers[3] = {};
    std::size_t count = 0;
    const char *at = text.data() + colon;
    const char *end = text.data() + text.size();
    for (; at != end && count < std::size(numbers) && (count == 0 || *at == ','); ++count) {
        const auto [rest, error] = std::from_chars(at + 1, end, numbers[count]);
        if (error != std::errc() || numbers[count] == 0 || numbers[count] > most_arguments)
            return std::nullopt;
        at = rest;
    }
    // One number more than needed is the group's.
    const std::size_t least = forms ? 2 : 1;
    if (at != end || count < least || count > least + 1)
        return std::nullopt;
    out.item = numbers[0];
    out.plural = forms ? numbers[1] : 0;
    out.group = numbers[least];
    return out;
}

wrapper_words::wrapper_words(std::vector<wrapper> wrappers, std::string group)
    : wrappers_(std::move(wrappers)), group_(std::move(group))
{
    // Shortened first: the table points into the words.
    wrappers_.resize(std::min(wrappers_.size(), most_wrappers));
    table_.assign(std::begin(check_words), std::end(check_words) - 1);
    for (std::size_t i = 0; i < wrappers_.size(); ++i)
        table_.push_back({wrappers_[i].word.c_str(), WORD_WRAPPER + static_cast<int>(i)});
    table_.push_back({nullptr, 0});
}

zel_lex_t *wrapper_words::new_scanner() const { return zel_lex_new(table_.data(), check_flags); }

const wrapper *wrapper_words::of(const zel_token_t *token) const
{
    if (token->id < WORD_WRAPPER)
        return nullptr;
    const wrapper &found = wrappers_[static_cast<std::size_t>(token->id - WORD_WRAPPER)];
    return found.word == token->lexeme ? &found : nullptr; // the scanner takes any case
}

wrapper_call read_wrapper_call(zel_lex_t *lex, const std::string &group, const wrapper &form,
                               const symtab_t *symbols,
                               const std::function<void(const zel_token_t *)> &request)
{
    wrapper_call call;
    if (zel_token_look_ahead(lex, 1)->id != '(')
        return call;
    zel_next_token(lex);
    std::vector<argument> given = read_arguments(lex, symbols, request);
    // A declaration of the function is no call.
    if (given.size() < std::max(form.least, std::size_t{1}) ||
        std::any_of(given.begin(), given.end(),
                    [](const argument &one) { return one.is_declaration(); }))
        return call;
    // Resized before anything refers to an argument; one that is missing has no text.
    given.resize(std::max({given.size(), form.item, form.plural, form.group}));
    const argument &item = given[form.item - 1];
    call.at = item.at;
    call.item = item.text;
    call.doubtful = item.doubtful;
    call.group = group;
    if (form.group != 0)
        call.group = given[form.group - 1].text;
    if (form.plural != 0) {
        call.item += "|" + given[form.plural - 1].text;
        call.doubtful = call.doubtful || given[form.plural - 1].doubtful;
    }
    const bool group_read = form.group == 0 || given[form.group - 1].is_text();
    const bool item_read = item.is_text() && (form.plural == 0 || given[form.plural - 1].is_text());
    const bool group_doubtful = form.group != 0 && given[form.group - 1].doubtful;
    call.of = group_read && !group_doubtful ? piece::item : piece::group;
    call.doubtful = call.doubtful || group_doubtful;
    call.is = group_read && item_read ? wrapper_call::kind::read : wrapper_call::kind::unread;
    return call;
}

void skip_definition(zel_lex_t *lex)
{
    const zel_token_t *token = zel_current_token(lex);
    std::uint32_t line = token->line;
    int last = token->id;
    for (;;) {
        const zel_token_t *next = zel_token_look_ahead(lex, 1);
        // A definition goes on behind a backslash at the end of a line.
        if (next->id == TOKEN_EOF || (next->line != line && last != '\\'))
            return;
        token = zel_next_token(lex);
        line = token->line;
        last = token->id;
    }
}

} // namespace zel
