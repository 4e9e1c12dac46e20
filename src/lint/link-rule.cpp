#include "lint/conversions.h"
#include "lint/name-set.h"
#include "lint/rule-list.h"

#include <algorithm>
#include <array>
#include <vector>

namespace zel::lint {

namespace {

struct number {
    std::string digits;
    std::vector<std::string> parts; // between its commas
    std::string shown;              // with its decimal points
    std::size_t end;                // in the text
};

// What must be the same in every language.
struct links {
    std::vector<std::string> addresses;
    std::vector<std::string> paths;
    std::vector<number> numbers; // in the order of the text
    std::string named;           // digits of names, "2000" of "JPEG2000"
};

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

// A number as people write it: with its decimal points, without commas and points that group.
std::string shown_number(std::string_view written)
{
    constexpr std::size_t group = 3;
    std::string out;
    const auto groups = [&](std::size_t sign) {
        return std::min(written.find_first_of(".,", sign + 1), written.size()) - sign - 1 == group;
    };
    for (std::size_t at = 0; at < written.size(); ++at)
        if (written[at] != ',' && (written[at] != '.' || !groups(at)))
            out += written[at];
    return out;
}

// A number with its separators, in the digits of any script.
number read_number(std::string_view bytes, std::size_t at)
{
    number found{{}, {""}, {}, at};
    std::string written;
    char32_t separator = 0;
    for (std::size_t i = at; i < bytes.size();) {
        const char32_t c = next_char(bytes, i);
        if (is_digit(c)) {
            if (separator == ',')
                found.parts.emplace_back();
            if (separator != 0)
                written += separator == '.' || separator == 0x66B ? '.' : ',';
            const auto digit = static_cast<char>('0' + g_unichar_digit_value(c));
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
    found.shown = shown_number(written);
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

// "%75" is how some languages write 75 %.
bool is_percentage(std::string_view rest)
{
    std::size_t end = 1;
    while (end < rest.size() &&
           (is_ascii_digit(rest[end]) || (end > 1 && rest[end] == '.' && end + 1 < rest.size() &&
                                          is_ascii_digit(rest[end + 1]))))
        ++end;
    return end > 1 && (end == rest.size() ||
                       (!is_ascii_letter(rest[end]) &&
                        std::string_view("$.*'").find(rest[end]) == std::string_view::npos));
}

// Behind "%1$s", "%5.2f" and the like, whose digits are no number of the text.
std::size_t skip_conversion(std::string_view bytes, std::size_t at)
{
    for (++at; at < bytes.size() &&
               std::string_view("0123456789.$*+-# ").find(bytes[at]) != std::string_view::npos;)
        ++at;
    return at;
}

// "10th" is a word elsewhere.
bool is_ordinal(std::string_view behind)
{
    return behind.starts_with("th") || behind.starts_with("st") || behind.starts_with("nd") ||
           behind.starts_with("rd");
}

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
        if (c == '%' && !is_percentage(bytes.substr(at))) {
            at = std::max(next, skip_conversion(bytes, at));
            before = 'x';
            continue;
        }
        if (is_digit(c)) {
            number read = read_number(bytes, at);
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

// Whether the address or one below it is there.
bool has_page(const std::vector<std::string> &addresses, const std::string &one)
{
    const auto below = std::lower_bound(addresses.begin(), addresses.end(), one + "/");
    return std::binary_search(addresses.begin(), addresses.end(), one) ||
           (below != addresses.end() && below->starts_with(one + "/"));
}

// Whether an address stands there for one of the reference: the same page in another scheme, or one
// of the language below it. The example's host is nobody's, and people translate it.
bool stands_for(const std::vector<std::string> &added, const std::string &address)
{
    std::string other = address;
    if (other.starts_with("https:"))
        other.erase(4, 1);
    else if (other.starts_with("http:"))
        other.insert(4, "s");
    return address.find("example.") != std::string::npos || has_page(added, address) ||
           has_page(added, other);
}

bool differ(const std::vector<std::string> &own, const std::vector<std::string> &reference,
            const char *what, std::string &message)
{
    auto gone = lacking(reference, own);
    const auto added = lacking(own, reference);
    std::erase_if(gone, [&](const std::string &one) { return stands_for(added, one); });
    if (gone.empty())
        return false;
    message.append("the ").append(what).append(" ").append(gone.front());
    if (added.empty())
        message.append(" of the reference is missing");
    else
        message.append(" is ").append(added.front());
    return true;
}

std::vector<std::string_view> names_of(const std::vector<number> &numbers)
{
    std::vector<std::string_view> out(numbers.size());
    std::transform(numbers.begin(), numbers.end(), out.begin(),
                   [](const number &one) -> std::string_view { return one.digits; });
    return out;
}

std::string all_digits(const std::vector<number> &numbers)
{
    std::string out;
    for (const number &one : numbers)
        out += one.digits;
    return out;
}

// Small ones are written as words.
bool is_small(const std::string &digits)
{
    return digits.size() == 1 || digits == "10" || digits == "11" || digits == "12";
}

// The first two numbers whose digits do not follow each other in the others, however those are
// grouped. So many that are grouped in other ways are a table, which is not looked through.
std::vector<const number *> find_others(const std::vector<number> &numbers, const links &others,
                                        bool with_small)
{
    constexpr int most_searches = 50;
    const std::string digits = all_digits(others.numbers) + others.named;
    const name_set known(names_of(others.numbers));
    int searches = 0;
    const auto is_there = [&](const std::string &one) {
        return (!with_small && is_small(one)) || known.has(one) || ++searches > most_searches ||
               digits.find(one) != std::string::npos;
    };
    std::vector<const number *> found;
    for (const number &one : numbers)
        if (found.size() < 2 && !is_there(one.digits) &&
            !(one.parts.size() > 1 && std::all_of(one.parts.begin(), one.parts.end(), is_there)))
            found.push_back(&one);
    return found;
}

// "1970" is "70", too.
bool is_year(std::string_view digits, const std::vector<number> &others)
{
    return digits.size() == 4 && std::any_of(others.begin(), others.end(), [&](const number &one) {
               return one.digits.size() == 2 && digits.ends_with(one.digits);
           });
}

// "16k" is "十六开", too.
bool has_numerals(std::string_view bytes)
{
    constexpr std::u32string_view numerals = U"〇一二三四五六七八九十百千万萬";
    for (std::size_t at = 0; at < bytes.size();)
        if (numerals.find(next_char(bytes, at)) != std::u32string_view::npos)
            return true;
    return false;
}

// "calendar:week_start:0" is a setting, which a language may have otherwise.
bool is_setting(std::string_view bytes)
{
    const std::size_t colon = bytes.find(':');
    return colon != std::string_view::npos && colon > 0 && is_ascii_letter(bytes[colon - 1]) &&
           std::none_of(bytes.begin(), bytes.end(), is_blank);
}

bool numbers_differ(const links &own, const links &reference, std::string &message)
{
    const auto added = find_others(own.numbers, reference, true);
    const auto gone = find_others(reference.numbers, own, !added.empty());
    // Where more than one is another, it is an example that is put in the language's own way: a
    // date, a time zone.
    if (gone.size() != 1 || added.size() > 1 || is_year(gone.front()->digits, own.numbers))
        return false;
    message = "the number " + gone.front()->shown;
    message += added.empty() ? " of the reference is missing" : " is " + added.front()->shown;
    return true;
}

} // namespace

bool judge_link(const text_case &at, std::string &message)
{
    if (!at.reference.has(has_digit | has_address))
        return false;
    const links own = read_links(at.own.bytes);
    const links reference = read_links(at.reference.bytes);
    return differ(own.addresses, reference.addresses, "address", message) ||
           differ(own.paths, reference.paths, "path", message) ||
           (!is_setting(at.reference.bytes) && numbers_differ(own, reference, message) &&
            !has_numerals(at.own.bytes));
}

} // namespace zel::lint
