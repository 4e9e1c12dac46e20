#ifndef LANG_HPP
#define LANG_HPP

/*
 * The texts of an application in its user's language, for C++17: objects that load and release, and
 * formats that go by the types of the values. Stands on lang-locale.h; there is nothing to link but
 * the library.
 *
 *     const lang::session texts("/usr/share/viewer/texts");
 *     std::cout << lang_get_string("list", "Open a file");
 *     std::cout << lang::format(lang_text("list", "Notes of %s"), name);
 *     std::cout << lang::format(lang_count("list", "%d note|%d notes", n), n);
 *
 * The words of requests are those of the C headers, which `lang check` finds. Memory that the
 * objects here need is asked for as the standard library does; the library itself throws nothing.
 */

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "lang-locale.h"

namespace lang {

/* The process-wide texts, loaded for the life of the object: by lang_locale_choose, for the user's
 * languages where no others are named. One at a time: another one finds them loaded and does
 * nothing.
 */
class session {
public:
    explicit session(const std::string &directory, const std::string &languages = {})
        : locale_(lang_locale_choose(directory.c_str(),
                                     languages.empty() ? nullptr : languages.c_str()))
    {
    }
    /* The same with texts in the program behind those of the directory, by lang_locale_memory. */
    session(const std::string &directory, const void *data, std::size_t size,
            const std::string &languages = {})
        : locale_(lang_locale_memory(directory.c_str(),
                                     languages.empty() ? nullptr : languages.c_str(), data, size))
    {
    }
    ~session()
    {
        if (locale_ != nullptr)
            lang_de_init();
    }
    session(const session &) = delete;
    session &operator=(const session &) = delete;

    /* False: nothing was loaded, and requests are answered with items. */
    explicit operator bool() const noexcept { return locale_ != nullptr; }
    const lang_locale_t *locale() const noexcept { return locale_; } /* what was taken, or null */

private:
    const lang_locale_t *locale_;
};

/* Texts of their own beside the process-wide ones. Views live until the object is assigned to or
 * ends, or lang_de_init is called; an item that comes back is the caller's own view. */
class texts {
public:
    /* Without a language that fits, and without memory, requests are answered with items. */
    explicit texts(const std::string &directory, const std::string &languages = {})
        : handle_(
              lang_locale_new(directory.c_str(), languages.empty() ? nullptr : languages.c_str()))
    {
    }
    /* One compiled file, or all those of a folder, whatever the user's language. */
    static texts of_file(const std::string &path) { return texts(lang_new(path.c_str())); }
    /* Drops the system symbols too, as lang_free does. */
    ~texts()
    {
        if (handle_ != nullptr)
            lang_free(handle_, 1);
    }
    texts(texts &&other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    texts &operator=(texts &&other) noexcept
    {
        std::swap(handle_, other.handle_);
        return *this;
    }

    explicit operator bool() const noexcept { return handle_ != nullptr && handle_->loaded != 0; }
    /* For the words that take a handle: lang_get_str(texts.handle(), "list", "Open a file"). */
    lang_handle_t *handle() const noexcept { return handle_; }
    const lang_locale_t *locale() const noexcept
    {
        return handle_ == nullptr ? nullptr : lang_locale_of(handle_);
    }

    /* A text that is chosen at run time, and one that printf may have in the item's place. */
    std::string_view get(std::string_view group, std::string_view item) const
    {
        return ask(group, item, [this](const char *of, const char *text) {
            return handle_ == nullptr ? text : _lang_get_str(handle_, of, text, __FILE__, __LINE__);
        });
    }
    std::string_view text(std::string_view group, std::string_view item) const
    {
        return ask(group, item, [this](const char *of, const char *text) {
            return handle_ == nullptr ? text : _lang_text(handle_, of, text, __FILE__, __LINE__);
        });
    }
    /* The form that the number takes, as lang_count gives it. */
    std::string_view count(std::string_view group, std::string_view forms,
                           std::int64_t number) const
    {
        return ask(group, forms, [this, number](const char *of, const char *text) {
            return handle_ == nullptr ? lang_plural(text, number)
                                      : _lang_count(handle_, of, text, number, __FILE__, __LINE__);
        });
    }

private:
    explicit texts(lang_handle_t *handle) : handle_(handle) {}

    /* The library wants strings with an end, and gives back a part of the item's where it has no
     * text. */
    template <class Request>
    std::string_view ask(std::string_view group, std::string_view item, Request request) const
    {
        const std::string of(group);
        const std::string copy(item);
        const char *answer = request(of.c_str(), copy.c_str());
        if (answer == nullptr)
            return item;
        const auto first = reinterpret_cast<std::uintptr_t>(copy.c_str());
        const auto at = reinterpret_cast<std::uintptr_t>(answer);
        return at >= first && at <= first + copy.size() ? item.substr(at - first)
                                                        : std::string_view(answer);
    }

    lang_handle_t *handle_;
};

namespace detail {

/* One value of a format, as what it is and not as what the format calls it. */
class value {
public:
    template <class T>
    value(const T &given) /* NOLINT: a list of values is made of whatever is given */
    {
        if constexpr (std::is_same_v<T, char>) {
            kind_ = kind::character;
            whole_ = static_cast<unsigned char>(given);
        } else if constexpr (std::is_enum_v<T>) {
            *this = value(static_cast<std::underlying_type_t<T>>(given));
        } else if constexpr (std::is_integral_v<T>) {
            kind_ = std::is_signed_v<T> ? kind::whole : kind::natural;
            whole_ = static_cast<std::uintmax_t>(given);
            bits_ = 8 * sizeof(T);
        } else if constexpr (std::is_floating_point_v<T>) {
            kind_ = kind::real;
            real_ = static_cast<long double>(given);
        } else if constexpr (std::is_convertible_v<const T &, const char *>) {
            const char *text = given;
            text_ = text == nullptr ? "(null)" : std::string_view(text);
        } else if constexpr (std::is_convertible_v<const T &, std::string_view>) {
            text_ = given;
        } else {
            static_assert(std::is_pointer_v<T> || std::is_null_pointer_v<T>,
                          "a number, a text or a pointer");
            kind_ = kind::pointer;
            pointer_ = given;
        }
    }

    /* Adds the value, with the flags and the width of a conversion, in the kind of its letter as
     * far as the type allows. */
    void append(std::string &out, const std::string &flags, const std::string &precision,
                char letter) const
    {
        const bool for_real = std::strchr("fFeEgGaA", letter) != nullptr;
        const bool for_whole = std::strchr("diouxX", letter) != nullptr;
        const bool is_whole = kind_ == kind::whole || kind_ == kind::natural;
        if (kind_ == kind::text || (kind_ == kind::character && !for_whole))
            append_text(out, flags, precision);
        else if (kind_ == kind::pointer)
            print(out, flags, "p", pointer_);
        else if (letter == 'c' && is_whole)
            print(out, flags, "c", static_cast<int>(whole_));
        else if (kind_ == kind::real && for_whole)
            print(out, flags, ".0Lf", real_);
        else if (kind_ == kind::real)
            print(out, flags, precision + "L" + (for_real ? letter : 'g'), real_);
        else if (for_real)
            print(out, flags, precision + "L" + letter, as_real());
        else
            append_whole(out, flags, for_whole ? precision : std::string(), letter);
    }

private:
    enum class kind { whole, natural, real, character, text, pointer };

    long double as_real() const
    {
        return kind_ == kind::whole ? static_cast<long double>(static_cast<std::intmax_t>(whole_))
                                    : static_cast<long double>(whole_);
    }

    void append_whole(std::string &out, const std::string &flags, const std::string &precision,
                      char letter) const
    {
        const bool as_bits = std::strchr("ouxX", letter) != nullptr;
        if (kind_ == kind::whole && !as_bits)
            return print(out, flags, precision + "jd", static_cast<std::intmax_t>(whole_));
        /* A negative number has as many bits as its type. */
        const std::uintmax_t cut = bits_ < 64 ? (std::uintmax_t{1} << bits_) - 1 : UINTMAX_MAX;
        print(out, flags, precision + "j" + (as_bits ? letter : 'u'), whole_ & cut);
    }

    void append_text(std::string &out, const std::string &flags, const std::string &precision) const
    {
        const char letter = static_cast<char>(whole_);
        std::string_view shown = kind_ == kind::text ? text_ : std::string_view(&letter, 1);
        if (!precision.empty() && kind_ == kind::text)
            shown = shown.substr(0, number_in(precision));
        const std::size_t width = number_in(flags);
        const std::string blanks(width > shown.size() ? width - shown.size() : 0, ' ');
        const bool left = flags.find('-') != flags.npos;
        out.append(left ? "" : blanks).append(shown).append(left ? blanks : "");
    }

    static std::size_t number_in(const std::string &digits)
    {
        std::size_t number = 0;
        for (const char c : digits)
            if (c >= '0' && c <= '9')
                number = number * 10 + static_cast<std::size_t>(c - '0');
        return number;
    }

#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
#endif
    /* The format is made here, for the type of the number. */
    template <class T>
    static void print(std::string &out, const std::string &flags, const std::string &ending,
                      T number)
    {
        const std::string format = "%" + flags + ending;
        const int length = std::snprintf(nullptr, 0, format.c_str(), number);
        if (length <= 0)
            return;
        const std::size_t before = out.size();
        out.resize(before + static_cast<std::size_t>(length) + 1);
        std::snprintf(&out[before], static_cast<std::size_t>(length) + 1, format.c_str(), number);
        out.pop_back();
    }
#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

    kind kind_ = kind::text;
    std::uintmax_t whole_ = 0;
    unsigned bits_ = 64;
    long double real_ = 0;
    std::string_view text_;
    const void *pointer_ = nullptr;
};

/* What stands behind a "%": "2$-8.3ld". */
struct conversion {
    std::size_t position = 0; /* from 1; 0 for the next value */
    std::string flags;        /* and the width */
    std::string precision;    /* ".3" */
    char letter = '\0';
    std::size_t length = 0; /* of all of it; 0 for no conversion */
};

/* Takes at most three digits; what has more is no conversion. */
inline std::string take_digits(std::string_view text, std::size_t &at)
{
    const std::size_t first = at;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9' && at - first < 3)
        ++at;
    return std::string(text.substr(first, at - first));
}

inline conversion read_conversion(std::string_view text)
{
    conversion out;
    std::size_t at = 0;
    const std::string position = take_digits(text, at);
    if (at < text.size() && text[at] == '$' && !position.empty() && position[0] != '0') {
        out.position = std::stoul(position);
        ++at;
    } else {
        at = 0;
    }
    while (at < text.size() && std::strchr("-+ #0'", text[at]) != nullptr && text[at] != '\0')
        out.flags += text[at++];
    out.flags += take_digits(text, at);
    if (at < text.size() && text[at] == '.') {
        ++at;
        out.precision = "." + take_digits(text, at);
    }
    while (at < text.size() && std::strchr("hljztL", text[at]) != nullptr && text[at] != '\0')
        ++at;
    if (at < text.size() && std::strchr("diouxXfFeEgGaAcsp", text[at]) != nullptr &&
        text[at] != '\0') {
        out.letter = text[at];
        out.length = at + 1;
    }
    return out;
}

inline std::string format_values(std::string_view text, const value *values, std::size_t count)
{
    std::string out;
    std::size_t next = 0;
    for (std::size_t sign; (sign = text.find('%')) != text.npos;) {
        out.append(text.substr(0, sign));
        text.remove_prefix(sign + 1);
        if (!text.empty() && text[0] == '%') {
            out += '%';
            text.remove_prefix(1);
            continue;
        }
        const conversion one = read_conversion(text);
        const std::size_t wanted = one.position == 0 ? next : one.position - 1;
        if (one.length == 0 || wanted >= count) {
            out += '%';
            continue;
        }
        if (one.position == 0)
            ++next;
        values[wanted].append(out, one.flags, one.precision, one.letter);
        text.remove_prefix(one.length);
    }
    return out.append(text);
}

} // namespace detail

/* The text with the values in place of its conversions, as printf has them, with positions, flags,
 * width and precision. A value is shown as the type that it has: lengths count for nothing, "%d"
 * shows a std::string, too, and "%s" a number. What is no conversion, as "%n" and "%*d", and one
 * without a value, stays as it stands. */
template <class... Values>
std::string format(std::string_view text, const Values &...values)
{
    const std::initializer_list<detail::value> all = {detail::value(values)...};
    return detail::format_values(text, all.begin(), all.size());
}

} // namespace lang

#endif
