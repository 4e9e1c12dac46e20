// Symbols "NAME=value", a line each, and a text that names them.

#include "support.h"

#include <cstdlib>
#include <cstring>

#include "family/lex-misc.h"
#include "langlib/lang-symbols.h"

extern "C" int FUZZ_TARGET(symbols)(const std::uint8_t *data, std::size_t size)
{
    const std::vector<std::string> part = fuzz::parts(fuzz::bytes_of(data, size), 2);
    zel_list *list = nullptr;
    for (std::size_t at = 0; at < part[0].size();) {
        const std::string line = part[0].substr(at, part[0].find('\n', at) - at);
        at += line.size() + 1;
        const std::size_t equals = line.find('=');
        const std::string name = line.substr(0, equals);
        const std::string value = equals == line.npos ? "" : line.substr(equals + 1);
        list = lang_sym_set(list, name.c_str(), value.c_str(), static_cast<int>(at % 3));
        const char *found = lang_sym_get(list, name.c_str());
        fuzz::require(found == nullptr || std::strlen(found) <= part[0].size() + 1,
                      "a value can be read");
    }
    std::free(_lang_rep_sym(list, part[1].c_str()));
    std::free(lang_sym(list, "note", "g", part[1].c_str()));
    lang_sym_free(list);
    std::free(lex_esc_str(part[1].c_str()));
    lang_free(nullptr, 0);
    return 0;
}
