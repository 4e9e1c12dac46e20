#include "lint/links.h"

#include "lint/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zel::lint {

namespace {

constexpr auto address_bytes = [] {
    std::array<bool, 256> table{};
    for (unsigned char c = 0; c < 0x80; ++c)
        table[c] = is_word_byte(static_cast<char>(c));
    for (const char c : std::string_view("-.~/?#@!$&*+=%:"))
        table[static_cast<unsigned char>(c)] = true;
    return table;
}();

bool is_address_byte(char c) { return address_bytes[static_cast<unsigned char>(c)]; }

std::string_view without_stop(std::string_view address)
{
    while (!address.empty() &&
           std::string_view(".,:!?/&").find(address.back()) != std::string_view::npos)
        address.remove_suffix(1);
    return address;
}

// Reads the piece of address characters at the position.
std::string_view read_piece(std::string_view bytes, std::size_t at)
{
    std::size_t end = at;
    while (end < bytes.size() && is_address_byte(bytes[end]))
        ++end;
    return bytes.substr(at, end - at);
}

// A path of the file system: menus have paths too, which are translated.
bool begins_path(std::string_view piece)
{
    constexpr std::string_view folders[] = {"bin",   "boot", "dev", "etc",  "home", "lib",
                                            "media", "mnt",  "opt", "proc", "root", "run",
                                            "sbin",  "srv",  "sys", "tmp",  "usr",  "var"};
    constexpr std::size_t longest = 5; // of the names
    if (piece.starts_with("~/"))
        return true;
    const std::size_t end = piece.substr(0, longest + 2).find('/', 1);
    return piece.starts_with('/') && end != std::string_view::npos &&
           std::find(std::begin(folders), std::end(folders), piece.substr(1, end - 1)) !=
               std::end(folders);
}

// A run of address characters. An address or a path begins somewhere in it and goes to its end, so
// that what is asked of every beginning is found out once.
class address_run {
public:
    address_run() = default;
    address_run(std::string_view bytes, std::size_t at) : bytes_(bytes), start_(at)
    {
        const std::string_view piece = read_piece(bytes, at);
        end_ = at + piece.size();
        stop_ = at + without_stop(piece).size();
        scheme_ = last_of("://");
        dot_ = last_of(".");
        percent_ = last_of("%");
        sign_ = at;
    }

    // From the position on; it only grows.
    bool holds(std::size_t at) const { return at < end_; }
    std::string_view piece(std::size_t at) const
    {
        return bytes_.substr(at, std::max(at, stop_) - at);
    }
    bool is_web(std::size_t at) const { return scheme_ > at || piece(at).starts_with("www."); }
    bool is_mail(std::size_t at)
    {
        sign_ = std::min(bytes_.substr(0, stop_).find('@', std::max(sign_, at)), stop_);
        return sign_ < stop_ && sign_ > at && dot_ > sign_ && is_word_byte(bytes_[sign_ - 1]);
    }
    bool is_path(std::size_t at) const { return percent_ <= at && begins_path(piece(at)); }

private:
    // Behind the beginning of the last one in the run, 0 when there is none.
    std::size_t last_of(std::string_view sought) const
    {
        const std::size_t at = bytes_.substr(start_, stop_ - start_).rfind(sought);
        return at == std::string_view::npos ? 0 : start_ + at + 1;
    }

    std::string_view bytes_;
    std::size_t start_ = 0;
    std::size_t end_ = 0;
    std::size_t stop_ = 0; // the end without a full stop and the like
    std::size_t scheme_ = 0, dot_ = 0, percent_ = 0;
    std::size_t sign_ = 0; // no "@" lies between the position asked for last and here
};

// The digits that count: 1016.0 is 1016, and 2.10.0 is 2.10, but 1.000 may be a thousand.
std::size_t count_significant(std::string_view written, std::size_t digits)
{
    constexpr std::size_t group = 3;
    for (;;) {
        const std::size_t last = written.find_last_not_of('0');
        const std::size_t zeros = written.size() - 1 - last;
        if (last == std::string_view::npos || zeros == 0 || zeros == group ||
            is_ascii_digit(written[last]))
            return digits;
        digits -= zeros;
        written = written.substr(0, last);
    }
}

// Burmese is typed with a letter that looks like its zero.
bool is_burmese_zero(char32_t c, char32_t before)
{
    return c == 0x101D && before >= 0x1040 && before <= 0x1049;
}

// A number with its separators, in the digits of any script.
number read_number(std::string_view bytes, std::size_t at)
{
    number found{{}, 0, {""}, {}, at, at};
    char32_t before = 0;
    std::string written;
    char32_t separator = 0;
    for (std::size_t i = at; i < bytes.size();) {
        const char32_t c = next_char(bytes, i);
        const bool is_zero = is_burmese_zero(c, before);
        before = is_zero ? 0x1040 : c;
        if (is_zero || is_digit(c)) {
            if (separator == ',')
                found.parts.emplace_back();
            if (separator != 0)
                written += separator == '.' || separator == 0x66B ? '.' : ',';
            const auto digit = static_cast<char>('0' + (is_zero ? 0 : g_unichar_digit_value(c)));
            found.digits += digit;
            found.parts.back() += digit;
            written += digit;
            found.end = i;
            separator = 0;
        } else if (separator != 0 || (c != '.' && c != ',' && c != 0x66B && c != 0x66C)) {
            break;
        } else {
            separator = c;
        }
    }
    found.significant = count_significant(written, found.digits.size());
    found.shown = std::move(written);
    return found;
}

// "win32" is a name. Scripts without blanks set numbers right behind their letters.
bool begins_number(char32_t before)
{
    constexpr char32_t first_without_blanks = 0xE00; // Thai; Chinese and its like stand above
    return !is_letter(before) || before >= first_without_blanks;
}

// "&#215;" is a sign.
std::size_t entity_length(std::string_view rest)
{
    if (!rest.starts_with("&#"))
        return 0;
    std::size_t end = 2;
    while (end < rest.size() && is_word_byte(rest[end]))
        ++end;
    return end > 2 && end < rest.size() && rest[end] == ';' ? end + 1 : 0;
}

// Behind "%1$s", "%5.2f" and the like, whose digits are no number of the text; but they may stand
// for one of the reference, as "%75" is how some languages write 75 %.
std::size_t read_conversion(std::string_view bytes, std::size_t at, std::string &digits)
{
    for (++at; at < bytes.size() &&
               std::string_view("0123456789.,$*+-# ").find(bytes[at]) != std::string_view::npos;
         ++at)
        if (is_ascii_digit(bytes[at]))
            digits += bytes[at];
    return at;
}

// "10th" and "3-fold" are words elsewhere.
bool is_ordinal(std::string_view behind)
{
    return behind.starts_with("th") || behind.starts_with("st") || behind.starts_with("nd") ||
           behind.starts_with("rd") || behind.starts_with("-fold");
}

} // namespace

links read_links(std::string_view bytes)
{
    links found;
    address_run run;
    char32_t before = ' ';
    for (std::size_t at = 0; at < bytes.size();) {
        // Inside of a word nothing begins.
        if (before < 0x80 && is_ascii_letter(static_cast<char>(before)) &&
            is_ascii_letter(bytes[at])) {
            before = static_cast<unsigned char>(bytes[at++]);
            continue;
        }
        std::size_t next = at;
        const char32_t c = next_char(bytes, next);
        if (is_address_byte(bytes[at]) && begins_number(before) && !is_digit(before)) {
            if (!run.holds(at))
                run = address_run(bytes, at);
            std::vector<std::string> *kind = run.is_web(at) || run.is_mail(at) ? &found.addresses
                                             : run.is_path(at)                 ? &found.paths
                                                                               : nullptr;
            if (kind != nullptr) {
                const std::string_view piece = run.piece(at);
                kind->emplace_back(piece);
                at += piece.size();
                before = 'x';
                continue;
            }
        }
        if (const std::size_t length = entity_length(bytes.substr(at)); length != 0) {
            at += length;
            before = ' ';
            continue;
        }
        if (c == '%') {
            at = std::max(next, read_conversion(bytes, at, found.named));
            before = 'x';
            continue;
        }
        if (is_digit(c)) {
            number read = read_number(bytes, at);
            if (before == '.') // ".5"
                found.named.append("0").append(read.digits);
            at = read.end;
            if (begins_number(before) && !is_ordinal(bytes.substr(at)))
                found.numbers.push_back(std::move(read));
            else
                found.named += read.digits;
            before = '0';
            continue;
        }
        before = c;
        at = next;
    }
    std::sort(found.addresses.begin(), found.addresses.end());
    std::sort(found.paths.begin(), found.paths.end());
    return found;
}

} // namespace zel::lint
