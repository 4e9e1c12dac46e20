#include "exchange/plural-expression.h"

#include "support/text.h"

#include <algorithm>

namespace zel::exchange {

namespace {

using act = plural_expression::act;

// No header of a language comes near these; a hostile one must not fill the stack.
constexpr std::size_t most_bytes = 4096;
constexpr int deepest = 32;

// The operators between two operands, those that bind weakest first. Of two signs that begin alike
// the longer one stands first.
struct infix {
    std::string_view sign;
    int level;
    act what;
};
constexpr int levels = 6;
constexpr infix infixes[] = {
    {"||", 0, act::or_else},  {"&&", 1, act::and_then}, {"==", 2, act::equal},
    {"!=", 2, act::differs},  {"<=", 3, act::at_most},  {">=", 3, act::at_least},
    {"<", 3, act::less},      {">", 3, act::more},      {"+", 4, act::add},
    {"-", 4, act::subtract},  {"*", 5, act::multiply},  {"/", 5, act::divide},
    {"%", 5, act::remainder},
};

class expression_reader {
public:
    expression_reader(std::string_view text, std::vector<plural_expression::step> &steps)
        : rest_(text), steps_(steps)
    {
    }

    bool read_choice();
    bool is_at_end() { return (skip_blanks(), rest_.empty()); }
    std::string_view rest() const { return rest_; }
    bool is_too_deep() const { return depth_ > deepest; }

private:
    void skip_blanks();
    bool take(std::string_view sign);
    const infix *take_infix(int level);
    bool read_infixes(int level);
    bool read_operand();
    bool read_number();
    void add(act what, std::uint64_t value = 0) { steps_.push_back({what, value}); }
    void land(std::size_t jump) { steps_[jump].value = steps_.size(); }

    std::string_view rest_;
    std::vector<plural_expression::step> &steps_;
    int depth_ = 0;
};

void expression_reader::skip_blanks()
{
    while (!rest_.empty() && is_space(rest_.front()))
        rest_.remove_prefix(1);
}

bool expression_reader::take(std::string_view sign)
{
    skip_blanks();
    if (!rest_.starts_with(sign))
        return false;
    rest_.remove_prefix(sign.size());
    return true;
}

const infix *expression_reader::take_infix(int level)
{
    const auto *found = std::find_if(std::begin(infixes), std::end(infixes), [&](const infix &row) {
        return row.level == level && take(row.sign);
    });
    return found == std::end(infixes) ? nullptr : found;
}

// CONDITION [ "?" CHOICE ":" CHOICE ]
bool expression_reader::read_choice()
{
    if (++depth_ > deepest || !read_infixes(0))
        return false;
    if (take("?")) {
        const std::size_t unless = steps_.size();
        add(act::jump_unless);
        if (!read_choice() || !take(":"))
            return false;
        const std::size_t over = steps_.size();
        add(act::jump);
        land(unless);
        if (!read_choice())
            return false;
        land(over);
    }
    --depth_;
    return true;
}

// OPERAND { SIGN OPERAND }, for the signs of a level and all that bind stronger.
bool expression_reader::read_infixes(int level)
{
    if (level == levels)
        return read_operand();
    if (!read_infixes(level + 1))
        return false;
    while (const infix *sign = take_infix(level)) {
        const std::size_t at = steps_.size();
        const bool is_lazy = sign->what == act::and_then || sign->what == act::or_else;
        if (is_lazy)
            add(sign->what);
        if (!read_infixes(level + 1))
            return false;
        add(is_lazy ? act::truth : sign->what);
        if (is_lazy)
            land(at);
    }
    return true;
}

// "!" OPERAND | "(" CHOICE ")" | "n" | NUMBER
bool expression_reader::read_operand()
{
    std::size_t negations = 0;
    while (take("!"))
        ++negations;
    if (take("(")) {
        if (!read_choice() || !take(")"))
            return false;
    } else if (take("n")) {
        add(act::n);
    } else if (!read_number()) {
        return false;
    }
    // Two make a truth value of a number, and further ones in pairs nothing more.
    for (std::size_t times = negations > 2 ? 2 - negations % 2 : negations; times > 0; --times)
        add(act::negate);
    return true;
}

bool expression_reader::read_number()
{
    skip_blanks();
    const std::size_t digits = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
    if (digits == 0 || digits > 18)
        return false;
    std::uint64_t value = 0;
    for (const char digit : rest_.substr(0, digits))
        value = value * 10 + static_cast<std::uint64_t>(digit - '0');
    rest_.remove_prefix(digits);
    add(act::number, value);
    return true;
}

std::uint64_t result_of(act what, std::uint64_t a, std::uint64_t b)
{
    switch (what) {
    case act::multiply:
        return a * b;
    case act::divide:
        return b == 0 ? 0 : a / b;
    case act::remainder:
        return b == 0 ? 0 : a % b;
    case act::add:
        return a + b;
    case act::subtract:
        return a - b;
    case act::less:
        return a < b ? 1 : 0;
    case act::at_most:
        return a <= b ? 1 : 0;
    case act::more:
        return a > b ? 1 : 0;
    case act::at_least:
        return a >= b ? 1 : 0;
    case act::equal:
        return a == b ? 1 : 0;
    default:
        return a != b ? 1 : 0;
    }
}

bool is_jump(act what) { return what >= act::jump; }

// Large enough for whatever the reader lets pass: of each choice, a number waits at each level.
struct machine_stack {
    std::uint64_t values[256]; // none is looked at before it is pushed
    std::size_t count = 0;

    void push(std::uint64_t value) { values[count++] = value; }
    std::uint64_t &top() { return values[count - 1]; }
    std::uint64_t pop() { return values[--count]; }
};
static_assert((deepest + 1) * (levels + 1) < 256);

// Whether a jump is taken; changes the stack as its kind says.
bool jumps(act what, machine_stack &stack)
{
    if (what == act::jump)
        return true;
    const bool holds = stack.top() != 0;
    const bool taken = what == act::or_else ? holds : !holds;
    if (what == act::or_else && taken)
        stack.top() = 1;
    if (what == act::jump_unless || !taken)
        stack.pop();
    return taken;
}

} // namespace

std::string plural_expression::read(std::string_view text)
{
    steps_.clear();
    if (text.size() > most_bytes)
        return "the expression is longer than 4,096 bytes";
    expression_reader reader(text, steps_);
    if (reader.read_choice() && reader.is_at_end())
        return {};
    steps_.clear();
    if (reader.is_too_deep())
        return "the expression nests deeper than 32";
    const std::string_view rest = reader.rest().substr(0, 20);
    return rest.empty() ? "the expression ends too early"
                        : "the expression cannot be read from \"" + std::string(rest) + "\" on";
}

std::optional<std::uint64_t> plural_expression::form(std::uint64_t n) const
{
    machine_stack stack;
    for (std::size_t at = 0; at < steps_.size();) {
        const auto &[what, value] = steps_[at++];
        if (is_jump(what)) {
            if (jumps(what, stack))
                at = value;
        } else if (what == act::number || what == act::n) {
            stack.push(what == act::n ? n : value);
        } else if (what == act::negate || what == act::truth) {
            stack.top() = (stack.top() == 0) == (what == act::negate) ? 1 : 0;
        } else {
            const std::uint64_t right = stack.pop();
            if (right == 0 && (what == act::divide || what == act::remainder))
                return std::nullopt;
            stack.top() = result_of(what, stack.top(), right);
        }
    }
    return stack.count == 0 ? std::nullopt : std::optional(stack.top());
}

} // namespace zel::exchange
