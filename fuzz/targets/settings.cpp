// A settings file: what was read and written reads the same and is written the same.

#include "support.h"

#include <cstring>

#include "config/lang-cfg.h"

namespace {

struct bound {
    std::int64_t number = 7;
    std::uint64_t hex = 7;
    std::uint64_t octal = 7;
    double real = 0.5;
    char *text = nullptr;
};

// Opens the file, looks at every key and writes it. The store owns the text.
std::string write_again(bound &values)
{
    const lang_cfg_guard store(lang_cfg_new("a.ini"));
    lang_cfg_add_entry(store.get(), nullptr, "number", CFG_LONG, &values.number);
    lang_cfg_add_entry(store.get(), "s", "hex", CFG_HEX, &values.hex);
    lang_cfg_add_entry(store.get(), "s", "octal", CFG_OCTAL, &values.octal);
    lang_cfg_add_entry(store.get(), "s", "real", CFG_DOUBLE, &values.real);
    lang_cfg_add_entry(store.get(), "t", "text", CFG_STR, &values.text);
    fuzz::require(lang_cfg_open(store.get(), CFG_OPEN_LOCK) == CFG_OK, "the file opens");
    std::int64_t number = 0;
    lang_cfg_get_long(store.get(), &number, 3, "s", "other");
    lang_cfg_print_all(store.get());
    fuzz::require(lang_cfg_write(store.get()) == CFG_OK, "the file is written");
    lang_cfg_close(store.get());
    return fuzz::file_text("a.ini");
}

// A bound text that is long or holds several lines is written in pieces and with letters for line
// ends and tabs, and read to the end of the first piece and without the meaning of the letters: the
// layout of the file is an old one. A folder's name is one line.
bool has_pieces(const std::string &file)
{
    const std::size_t text = file.find("\ntext= \"");
    if (text == file.npos)
        return false;
    const std::string_view value = std::string_view(file).substr(text);
    for (const char *letter : {"\\n", "\\t", "\\r"})
        if (value.find(letter) != value.npos)
            return true;
    return value.size() > 1024;
}

} // namespace

extern "C" int FUZZ_TARGET(settings)(const std::uint8_t *data, std::size_t size)
{
    fuzz::as_file("a.ini", fuzz::bytes_of(data, size));
    bound first;
    const std::string once = write_again(first);
    bound second;
    const std::string twice = write_again(second);
    fuzz::require(twice == once || has_pieces(once), "it is written the same again");
    fuzz::require(second.number == first.number, "a number comes back");
    fuzz::require(static_cast<std::uint32_t>(second.hex) == static_cast<std::uint32_t>(first.hex) &&
                      static_cast<std::uint32_t>(second.octal) ==
                          static_cast<std::uint32_t>(first.octal),
                  "32 bits come back");
    return 0;
}
