#include "checker/class-scope.h"

#include <algorithm>

namespace zel {

namespace {

// Bounds, so that the work is the same for each token of a hostile file.
constexpr std::size_t longest_name = 500; // a longer one is none
constexpr std::size_t longest_head = 1000;

std::string joined_name(const std::string &outer, const std::string &name)
{
    std::string out = outer.empty() || name.empty() ? name : outer + "::" + name;
    return out.size() <= longest_name ? out : std::string();
}

} // namespace

bool class_scope::has(const std::vector<code_token> &head, std::string_view word) const
{
    return std::any_of(head.begin(), head.end(),
                       [&](const code_token &token) { return text(token) == word; });
}

// The class of "Window::open(", with several names where it stands in others; else nothing.
std::string class_scope::class_of_function(const std::vector<code_token> &head) const
{
    const auto open = std::find_if(head.begin(), head.end(),
                                   [&](const code_token &token) { return text(token) == "("; });
    if (open == head.end() || open == head.begin())
        return {};
    auto at = static_cast<std::size_t>(open - head.begin()) - 1;
    // The function's own name, perhaps with the sign of a destructor.
    if (at > 0 && text(head[at - 1]) == "~")
        --at;
    std::string out;
    for (; at >= 3 && text(head[at - 1]) == ":" && text(head[at - 2]) == ":" &&
           head[at - 3].is == code_token::kind::name && out.size() <= longest_name;
         at -= 3)
        out.insert(0, std::string(text(head[at - 3])) + (out.empty() ? "" : "::"));
    return out;
}

// What the last such word of a head names: the names behind it up to the colon of base classes.
std::string class_scope::named_behind(const std::vector<code_token> &head,
                                      std::string_view word) const
{
    std::string out;
    bool is_behind = false;
    for (std::size_t at = 0; at < head.size(); ++at) {
        const std::string_view here = text(head[at]);
        const bool colon = here == ":";
        const bool pair = colon && at + 1 < head.size() && text(head[at + 1]) == ":";
        if (here == word) {
            is_behind = true;
            out.clear();
        } else if (is_behind && pair) {
            out += "::";
            ++at;
        } else if (colon) {
            is_behind = false;
        } else if (is_behind && head[at].is == code_token::kind::name && here != "final") {
            // Of "class EXPORT Window" the last one is the name.
            if (!out.ends_with(':'))
                out.clear();
            out += here;
        }
    }
    return out;
}

class_scope::block class_scope::inner(const block &outer) const
{
    block made{outer.spaces, outer.own};
    const std::vector<code_token> &head = outer.head;
    if (outer.depth > 0 || head.empty())
        return made;
    if (has(head, "namespace")) {
        const std::string name = named_behind(head, "namespace");
        made.spaces = name.empty() ? outer.spaces : joined_name(outer.spaces, name);
    } else if (has(head, "(")) {
        const std::string name = class_of_function(head);
        // Inside a function "Other::call(" is a call.
        if (!name.empty() && outer.own.empty())
            made.own = joined_name(outer.spaces, name);
    } else if (!has(head, "enum")) {
        for (const std::string_view word : {"class", "struct"})
            if (const std::string name = named_behind(head, word); !name.empty())
                made.own = joined_name(outer.own.empty() ? outer.spaces : outer.own, name);
    }
    return made;
}

void class_scope::take(const code_token &token)
{
    block &here = blocks_.back();
    const char sign = token.is == code_token::kind::sign ? bytes_[token.begin] : '\0';
    if (sign == '{') {
        block made = inner(here);
        here.head.clear();
        blocks_.push_back(std::move(made));
    } else if (sign == '}') {
        if (blocks_.size() > 1)
            blocks_.pop_back();
        if (blocks_.back().depth == 0)
            blocks_.back().head.clear();
    } else if (sign == ';' && here.depth == 0) {
        here.head.clear();
    } else {
        if (here.depth == 0 && here.head.size() < longest_head)
            here.head.push_back(token);
        here.depth += sign == '(' ? 1 : sign == ')' && here.depth > 0 ? -1 : 0;
    }
}

std::string class_scope::name() const
{
    const block &here = blocks_.back();
    // In the list of a constructor's members the body has not begun.
    return !here.own.empty() ? here.own : joined_name(here.spaces, class_of_function(here.head));
}

} // namespace zel
