// Eight threads that ask at once for all kinds of texts, each with symbols, records and messages of
// its own, while the log is open. Built with ThreadSanitizer, which ends the program with an error
// where two of them meet.

#include "langlib/lang.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

namespace {

constexpr int rounds = 300;

bool is(const char *text, const char *expected)
{
    return text != nullptr && std::strcmp(text, expected) == 0;
}

bool is_new(char *text, const char *expected)
{
    const bool good = is(text, expected);
    std::free(text);
    return good;
}

// Every round has a format of its own, which all threads come to at about the same time.
bool ask(lang_handle_t *handle, zel_list *symbols, int round)
{
    char item[16];
    std::snprintf(item, sizeof item, "%%s %d", round);
    bool good = is(lang_get_string("g", "Open"), "Oeffnen");
    good = good && is(lang_get("note", "g", "none"), "none");
    good = good && is(lang_get_str(handle, "g", "Open"), "Oeffnen");
    good = good && is(lang_get_fmt("formater=%25s", "g", item), " d  s");
    good = good && is_new(lang_sym(symbols, "note", "g", "%WHO%"), "Ada% eins");
    good = good && lang_check_string("g", "Open") == 1 && lang_get_ctime() == 7;

    zel_info_t *record = nullptr;
    record = lang_get_info(handle, &record, 1, 2, "g", "Open", "none");
    good = good && record != nullptr;
    zel_info_free(record);
    zel_list *message = min_lex_split_msg(nullptr, "a=1;b=%41", ';', '=');
    char *value = nullptr;
    message = min_lex_split_msg_get_str_free(message, "b", &value, nullptr);
    good = good && is_new(value, "A");
    min_lex_split_msg_free(message);
    return good;
}

void ask_often(lang_handle_t *handle, bool &good)
{
    zel_list *symbols = lang_sym_set(nullptr, "WHO", "Ada", 0);
    for (int i = 0; i < rounds && good; ++i)
        good = ask(handle, symbols, i);
    lang_sym_free(symbols);
}

} // namespace

int main(int, char **word)
{
    std::FILE *file = std::fopen(word[1], "w");
    if (file == nullptr)
        return 2;
    std::fputs("CTIME 7 GROUP g \"Open\" { \"Oeffnen\" } "
               "\"%WHO%\" { \"%WHO%%PERCENT% %ONE%\" }",
               file);
    for (int i = 0; i < rounds; ++i)
        std::fprintf(file, "\"%%s %d\" { \"%%d %%s\" }\n", i);
    std::fclose(file);
    LogOpen("/dev/null", 1, "threads");
    lang_load_file(word[1]);
    lang_sym_system_set("ONE", "eins");
    lang_handle_t *handle = lang_new(word[1]);

    bool good[8] = {true, true, true, true, true, true, true, true};
    std::vector<std::thread> threads;
    for (bool &one : good)
        threads.emplace_back(ask_often, handle, std::ref(one));
    for (std::thread &one : threads)
        one.join();

    lang_free(handle, 1);
    lang_de_init();
    LogClose();
    std::remove(word[1]);
    for (const bool one : good)
        if (!one)
            return 1;
    return 0;
}
