#pragma once

// Which class a place in C++ code belongs to, as far as its braces and heads tell: the body of a
// class, or of a function "Window::open".

#include <string>
#include <vector>

#include "checker/code-token.h"

namespace zel {

class class_scope {
public:
    explicit class_scope(std::string_view bytes) : bytes_(bytes) { blocks_.emplace_back(); }

    void take(const code_token &token);

    // With its namespaces, "tea::Window"; empty outside of classes.
    std::string name() const;

private:
    struct block {
        std::string spaces;             // the namespaces around it, "tea"
        std::string own;                // the class, with its namespaces
        std::vector<code_token> head{}; // of what begins in it, but for what stands in parentheses
        int depth = 0;                  // of parentheses
    };

    std::string_view text(const code_token &token) const
    {
        return bytes_.substr(token.begin, token.end - token.begin);
    }
    block inner(const block &outer) const;
    std::string class_of_function(const std::vector<code_token> &head) const;
    std::string named_behind(const std::vector<code_token> &head, std::string_view word) const;
    bool has(const std::vector<code_token> &head, std::string_view word) const;

    std::string_view bytes_;
    std::vector<block> blocks_; // from the whole file down to this place
};

} // namespace zel
