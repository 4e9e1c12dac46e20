#pragma once

// Words for requests that are read as calls: those of lang-locale.h, and an application's own,
// functions and macros that pass a text on. Unlike the words of lang.h they count in code only, in
// exactly these letters, and an argument may be in pieces, as the compiler joins them.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "checker/scan-listener.h"
#include "checker/symtab.h"
#include "lex/lex.h"

namespace zel {

struct wrapper {
    std::string word;
    std::size_t item = 1;   // which argument is the item, from 1
    std::size_t plural = 0; // which one is the form for many: the item is "one|many"; 0 none
    std::size_t group = 0;  // which one is the group; 0: the group of the whole run
    std::size_t least = 0;  // with fewer arguments it is no request
};

// The word of lang-locale.h that the token is, or null. It is an ordinary name for the scanner, so
// that an application may use it for something else.
const wrapper *locale_word(const zel_token_t *token);

// "_:1", "my_text:2,1" (the item, then the group), "tr_n:1,2 plural" (the item's two forms) or
// "tr_n:2,3,1 plural" (then the group). Nothing for any other text.
std::optional<wrapper> parse_wrapper(std::string_view text);

// The wrappers of one run, and the words of requests, as a scanner takes them.
class wrapper_words {
public:
    // The group is that of wrappers which have none among their arguments.
    wrapper_words(std::vector<wrapper> wrappers, std::string group);
    wrapper_words(const wrapper_words &) = delete;
    wrapper_words &operator=(const wrapper_words &) = delete;

    // A scanner, no longer used than this object; null without memory.
    [[nodiscard]] zel_lex_t *new_scanner() const;

    // The wrapper that the token names, or null.
    const wrapper *of(const zel_token_t *token) const;
    const std::string &group() const { return group_; }

private:
    std::vector<wrapper> wrappers_;
    std::string group_;
    std::vector<Keytab> table_;
};

struct wrapper_call {
    enum class kind { none, read, unread }; // none: a declaration, or no call
    kind is = kind::none;
    std::string group;
    std::string item;
    place at;               // of the item
    piece of = piece::item; // that is not read, or doubtful
    bool doubtful = false;  // a name in it has two values
};

// Reads what follows a wrapper's word, to the end of the call; the group is that of the run. Words
// of requests among its arguments go to the function, which reads what follows them.
wrapper_call read_wrapper_call(zel_lex_t *lex, const std::string &group, const wrapper &form,
                               const symtab_t *symbols,
                               const std::function<void(const zel_token_t *)> &request);

// Takes the rest of a definition: to the end of its line, and of those that a backslash joins to
// it.
void skip_definition(zel_lex_t *lex);

} // namespace zel
