#include "exchange/other-format.h"

#include <algorithm>
#include <utility>

namespace zel::exchange {

namespace {

constexpr std::string_view digit_letters = "0123456789";

// How placeholders are written.
enum class writing { braces, typed_braces, numbers, conversions };

constexpr struct {
    std::string_view format;
    writing how;
    char sign;
} format_rows[] = {
    {"python-brace", writing::braces, '{'}, {"perl-brace", writing::braces, '{'},
    {"csharp", writing::braces, '{'},       {"java", writing::typed_braces, '{'},
    {"c++", writing::braces, '{'},          {"rust", writing::braces, '{'},
    {"qt", writing::numbers, '%'},          {"qt-plural", writing::numbers, '%'},
    {"kde", writing::numbers, '%'},         {"kde-kuit", writing::numbers, '%'},
    {"smalltalk", writing::numbers, '%'},   {"ycp", writing::numbers, '%'},
    {"sh", writing::conversions, '$'},      {"lisp", writing::conversions, '~'},
    {"scheme", writing::conversions, '~'},  {"", writing::conversions, '%'}, // all others
};

class placeholder_reader {
public:
    placeholder_reader(std::string_view text, std::set<std::string> &found)
        : text_(text), found_(found)
    {
    }

    void read(writing how, char sign)
    {
        for (std::size_t at = text_.find(sign); at != text_.npos; at = text_.find(sign)) {
            text_.remove_prefix(at + 1);
            if (text_.starts_with(sign))
                text_.remove_prefix(1);
            else if (how == writing::braces)
                add(take_until('}'), "");
            else if (how == writing::typed_braces)
                read_typed(take_until('}'));
            else if (how == writing::numbers)
                read_number();
            else if (sign == '$')
                read_variable();
            else
                read_conversion();
        }
    }

private:
    std::string_view take(std::size_t size)
    {
        const std::string_view taken = text_.substr(0, size);
        text_.remove_prefix(taken.size());
        return taken;
    }
    std::string_view take_while(std::string_view letters)
    {
        return take(text_.find_first_not_of(letters));
    }
    std::string_view take_until(char end)
    {
        const std::string_view taken = take(text_.find(end));
        take(1);
        return taken;
    }

    // What has no name is counted.
    void add(std::string_view name, std::string_view type)
    {
        name = name.substr(0, name.find_first_of("!:,[."));
        if (name.empty())
            found_.insert(std::to_string(++unnamed_).append(type));
        else
            found_.insert(std::string(name).append(":").append(type));
    }

    // "{0,number,#}".
    void read_typed(std::string_view inner)
    {
        const std::size_t comma = std::min(inner.find(','), inner.size());
        const std::string_view rest = inner.substr(comma);
        add(inner, rest.substr(0, rest.find(',', 1)));
    }

    // "%1", "%L1", "%n".
    void read_number()
    {
        if (text_.starts_with("L"))
            take(1);
        const std::string_view name = text_.starts_with("n") ? take(1) : take_while(digit_letters);
        if (!name.empty())
            found_.emplace(name);
    }

    // "$name", "${name}".
    void read_variable()
    {
        if (text_.starts_with("{")) {
            take(1);
            return add(take_until('}'), "");
        }
        const auto is_end = [](char c) {
            return c != '_' && (c < '0' || c > '9') && (c < 'a' || c > 'z') && (c < 'A' || c > 'Z');
        };
        const auto end = std::find_if(text_.begin(), text_.end(), is_end);
        if (end != text_.begin())
            add(take(static_cast<std::size_t>(end - text_.begin())), "");
    }

    // "%(name)s", "%<name>s", "%{name}", "%2$s", "%0:s", "%1%", "%-5.2f".
    void read_conversion()
    {
        if (text_.starts_with("{")) {
            take(1);
            return add(take_until('}'), "");
        }
        std::string_view name;
        if (text_.starts_with("(") || text_.starts_with("<"))
            name = take_until(take(1) == "(" ? ')' : '>');
        const std::size_t number = std::min(text_.find_first_not_of(digit_letters), text_.size());
        if (number != 0 && number < text_.size() &&
            std::string_view("$:%").find(text_[number]) != std::string_view::npos) {
            // A place is what things without a name are counted by.
            std::string place(take(number));
            if (take(1) != "%") {
                take_flags();
                place += take_type();
            }
            found_.insert(std::move(place));
            return;
        }
        take_flags();
        add(name, take_type());
    }

    void take_flags()
    {
        // A star takes an argument of its own.
        for (const char c : take_while("-+ #0123456789'.,*hlLqjzt"))
            if (c == '*')
                add("", "d");
    }

    std::string_view take_type()
    {
        const std::string_view type = take(1);
        return type == "i" || type == "u" ? "d" : type;
    }

    std::string_view text_;
    std::set<std::string> &found_;
    std::size_t unnamed_ = 0;
};

} // namespace

std::string_view other_format_of(const std::vector<std::string> &flags)
{
    constexpr std::string_view ending = "-format";
    for (const std::string &flag : flags)
        if (flag.ends_with(ending) && flag != "c-format" && !flag.starts_with("no-") &&
            !flag.starts_with("possible-"))
            return std::string_view(flag).substr(0, flag.size() - ending.size());
    return {};
}

std::set<std::string> other_arguments(std::string_view format, std::string_view text)
{
    std::set<std::string> found;
    if (format.empty())
        return found;
    const auto *row = std::begin(format_rows);
    while (!row->format.empty() && row->format != format)
        ++row;
    placeholder_reader(text, found).read(row->how, row->sign);
    return found;
}

} // namespace zel::exchange
