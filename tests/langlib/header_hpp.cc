// lang.hpp as C++17, against the static library. Ends with the number of things that are wrong.
#include <lang.hpp>

#include <fstream>
#include <iostream>

namespace {

int wrong = 0;

void expect(std::string_view found, std::string_view expected)
{
    if (found == expected)
        return;
    std::cerr << "\"" << found << "\" instead of \"" << expected << "\"\n";
    ++wrong;
}

enum class level { high = 3 };

void formats()
{
    using lang::format;
    const std::string name = "Ada";
    const char *none = nullptr;
    expect(format("%s has %d", name, 5), "Ada has 5");
    expect(format("%2$d of %1$s, %2$d", std::string_view(name), 5L), "5 of Ada, 5");
    expect(format("[%-5s|%5s|%.2s|%05d|%+.1f]", name, "b", name, 7, 2.25),
           "[Ada  |    b|Ad|00007|+2.2]");
    // As the type has it, whatever the letter and the length say.
    expect(format("%d %s %ld %hhd", name, 5, true, 300), "Ada 5 1 300");
    expect(format("%d %f %u %s", 2.5, 2, -1, UINT64_MAX),
           "2 2.000000 4294967295 18446744073709551615");
    expect(format("%x %o %x", -1, static_cast<signed char>(-1), UINT8_MAX), "ffffffff 377 ff");
    expect(format("%c%c%d %s %d", 'a', 98, 'c', none, level::high), "ab99 (null) 3");
    expect(format("%s %s", 1.5, INT64_MIN), "1.5 -9223372036854775808");
    // What is no conversion, and what has no value.
    expect(format("100 %% %n %*d %y %1000d %", 1, 2), "100 % %n %*d %y %1000d %");
    expect(format("%d %d %0$d %33$s", 1), "1 %d %0$d %33$s");
    expect(format("%d"), "%d");
}

void requests(const std::string &folder)
{
    const char *notes = "%d note|%d notes";
    expect(lang::format(lang_count("g", notes, 1), 1), "1 note");
    {
        const lang::session german(folder, "de");
        expect(german ? german.locale()->code : "", "de");
        expect(lang::session(folder, "de") ? "twice" : "once", "once");
        expect(lang::format(lang_count("g", notes, 2), 2), "2 Notizen");
        expect(lang::format(lang_text("g", "Hello %s"), "Ada"), "Hello Ada"); // the text has %d
        expect(lang::texts(folder + "/nowhere").get("g", notes), notes);
    }
    expect(lang_count("g", notes, 2), "%d notes");

    const lang::texts none(folder + "/nowhere");
    expect(none || none.locale() != nullptr ? "some" : "none", "none");
    expect(none.count("g", notes, 1), "%d note");
    expect(none.text("g", "Hello %s"), "Hello %s");
    lang::texts moved(folder, "de");
    const lang::texts german(std::move(moved));
    expect(german.locale()->english, "German");
    expect(moved.get("g", "Open"), "Open"); // NOLINT: what is moved from answers with items
    expect(lang_get_str(german.handle(), "g", "Open"), "Auf");
    const std::string parts = "g|Open|%d note|%d notes";
    const std::string_view all(parts);
    expect(german.get(all.substr(0, 1), all.substr(2, 4)), "Auf");
    expect(german.count("g", all.substr(7), 1), "%d Notiz");
    // An item that comes back is a part of the caller's text.
    const std::string_view item = german.count("none", all.substr(7), 2);
    expect(item, "%d notes");
    expect(item.data() == parts.data() + 15 ? "own" : "copy", "own");
    expect(lang::texts::of_file(folder + "/german.lang").get("g", "Open"), "Auf");
}

} // namespace

int main(int count, char **words)
{
    const std::string folder = count > 1 ? words[1] : ".";
    std::ofstream(folder + "/german.lang")
        << "GROUP g Open { \"Auf\" } \"%d note|%d notes\" { \"%d Notiz|%d Notizen\" } "
           "\"Hello %s\" { \"Hallo %d\" }";
    formats();
    requests(folder);
    return wrong;
}
