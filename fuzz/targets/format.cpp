// A translation that is used as a format, and means harm: description, item and text in parts. Only
// percent signs are taken out of it, and what is left is the same for every request to come.

#include "support.h"

#include <cstring>

#include "langlib/lang-load.h"
#include "source/quote.h"

namespace {

// Percent signs followed at once by d or s, as a format's reader meets them.
std::size_t plain_conversions(std::string_view text)
{
    std::size_t count = 0;
    for (std::size_t at = text.find('%'); at != text.npos && at + 1 < text.size();
         at = text.find('%', at + 2))
        count += text[at + 1] == 'd' || text[at + 1] == 's' ? 1 : 0;
    return count;
}

void look_at(const std::string &before, const std::string &after, const std::string &description)
{
    fuzz::require(before.size() == after.size(), "the text keeps its length");
    for (std::size_t at = 0; at < before.size(); ++at)
        fuzz::require(before[at] == after[at] || (before[at] == '%' && after[at] == ' '),
                      "only percent signs go");
    // A description names at most one conversion for each comma, and one more.
    if (before != after)
        fuzz::require(plain_conversions(after) <= description.size(), "no more than expected");
}

} // namespace

extern "C" int FUZZ_TARGET(format)(const std::uint8_t *data, std::size_t size)
{
    const std::vector<std::string> part = fuzz::parts(fuzz::bytes_of(data, size), 3);
    const std::string description = part[0].c_str();
    const std::string item = part[1].c_str();
    const std::string text = part[2].c_str();
    std::string file = "GROUP \"g\"\n";
    zel::append_quoted(file, 2, item.c_str());
    file += " {\n";
    zel::append_quoted(file, 4, text.c_str());
    file += " }\n";
    lang_load_file(fuzz::as_file("in.lang", file));
    const std::string before = _lang_get_string("g", item.c_str(), "f", 1);
    const char *answer = lang_get_fmt(description.c_str(), "g", item.c_str());
    fuzz::require(answer != nullptr, "a request gives a text");
    const std::string once = answer;
    if (answer != item.c_str()) {
        look_at(before, once, description);
        fuzz::require(lang_get_fmt(description.c_str(), "g", item.c_str()) == once,
                      "every request gets the same");
    }
    lang_de_init();
    return 0;
}
