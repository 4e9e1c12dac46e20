#pragma once

// The expression in a catalog's header that says which form a number takes:
//   n%10==1 && n%100!=11 ? 0 : n%10>=2 && n%10<=4 ? 1 : 2
// The language is C's over unsigned numbers of 64 bits: "n", decimal numbers, brackets and the
// operators ! * / % + - < <= > >= == != && || ?:.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel::exchange {

class plural_expression {
public:
    // Reads a whole expression. What is wrong with it, or an empty text; then it has no value.
    std::string read(std::string_view text);

    // The form of a number; none where it divides by zero.
    std::optional<std::uint64_t> form(std::uint64_t n) const;

    // One step of a machine with a stack. The jumps go to the step whose number they hold.
    enum class act : std::uint8_t {
        number, // puts the value on the stack
        n,
        negate,
        truth, // 1 for all but 0
        multiply,
        divide,
        remainder,
        add,
        subtract,
        less,
        at_most,
        more,
        at_least,
        equal,
        differs,
        jump,
        jump_unless, // takes what it looks at
        and_then,    // keeps a 0 and jumps, else takes it
        or_else      // keeps anything but 0, as 1, and jumps, else takes it
    };
    struct step {
        act what;
        std::uint64_t value;
    };

private:
    std::vector<step> steps_;
};

} // namespace zel::exchange
