// Eight threads that ask at once for all kinds of texts, each with symbols, records and messages of
// its own, while the log is open; then threads that ask while others load, list and make handles of
// a directory, and while one reloads it a thousand times. Built with ThreadSanitizer, which ends
// the program with an error where two of them meet.

#include "langlib/lang-locale.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>
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
    const int number = round % 7;
    good = good && is(lang_plural("one|other", number), number == 1 ? "one" : "other");
    good = good && is(lang_plural_of(handle, item, number), item);
    good = good && is(lang_count("g", "one|other", number), number == 1 ? "eine" : "andere");
    good = good && is(lang_text("g", item), item);
    good = good && is(lang_format_or(item, "%s"), item) && lang_locale_of(handle) == nullptr;
    good = good && is(lang_tooltip("g", "Open"), "Oeffnen");
    good = good && is(lang_sym_get(symbols, "ONE"), "eins");
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

// Threads that ask for a text of the second file of a chain, for a form and a symbol, from before
// it is loaded until all have it. Two of them load, of which one is refused, two make a handle, and
// one lists the files. Where the first file has a text of its own, a stand-in, or none, the answer
// is the item or the text, and never anything else.
constexpr int askers = 6;
std::atomic<int> loads;
std::atomic<int> waiting{askers};

void ask_while_loading(const char *folder, int role, lang_handle_t *&made, bool &good)
{
    --waiting;
    while (waiting > 0) {
    }
    if (role < 2 && lang_locale_choose(folder, "de_AT") != nullptr)
        ++loads;
    else if (role == 2 || role == 3)
        good = (made = lang_locale_new(folder, "de_AT")) != nullptr;
    else if (role == 4)
        good = lang_locale_list(folder, nullptr, nullptr) == 2;
    zel_list *symbols = lang_sym_set(nullptr, "WHO", "Ada", 0);
    bool loaded = false;
    while (!loaded && good) {
        const char *text = lang_get_string("g", "b");
        loaded = is(text, "B-DE");
        good = loaded || is(text, "b");
        good = good && is(lang_plural("one|other", 1), "one");
        good = good && is_new(lang_sym(symbols, "note", "g", "%WHO%%PERCENT%"), "Ada%");
    }
    lang_sym_free(symbols);
    good = good && is(lang_get_string("g", "a"), "A-AT") && is(lang_get_string("g", "c"), "c");
    good = good && lang_locale_of(nullptr) != nullptr;
    good = good && (made == nullptr || is(lang_get_str(made, "g", "b"), "B-DE"));
}

bool put(const std::string &path, const char *text)
{
    std::FILE *file = std::fopen(path.c_str(), "w");
    return file != nullptr && std::fputs(text, file) >= 0 && std::fclose(file) == 0;
}

bool load_while_others_ask(const std::string &folder)
{
    mkdir(folder.c_str(), 0777);
    const std::string at = folder + "/de_AT.lang";
    const std::string de = folder + "/de.lang";
    if (!put(at, "GROUP g a { \"A-AT\" } b { default \"B\" }") ||
        !put(de, "GROUP g a { \"A-DE\" } b { \"B-DE\" }"))
        return false;
    bool good[askers] = {true, true, true, true, true, true};
    lang_handle_t *made[askers] = {};
    std::vector<std::thread> threads;
    for (int i = 0; i < askers; ++i)
        threads.emplace_back(ask_while_loading, folder.c_str(), i, std::ref(made[i]),
                             std::ref(good[i]));
    for (std::thread &one : threads)
        one.join();
    for (lang_handle_t *one : made)
        lang_free(one, 1);
    lang_de_init();
    std::remove(at.c_str());
    std::remove(de.c_str());
    std::remove(folder.c_str());
    for (const bool one : good)
        if (!one)
            return false;
    return loads == 1;
}

// Eight threads that ask for a text, a form and a checked text while one writes the file anew and
// reloads it: each answer is of one of the files, and none that was handed out ever changes.
constexpr int reloads = 1000;
std::atomic<bool> is_over{false};

bool is_numbered(const char *text, const char *begin)
{
    return std::strncmp(text, begin, std::strlen(begin)) == 0 && std::strlen(text) < 20;
}

void ask_while_reloading(bool &good)
{
    const char *first = lang_get_string("g", "a");
    const std::string copy = first;
    while (!is_over && good) {
        good = is_numbered(lang_get_string("g", "a"), "A ") &&
               is_numbered(lang_text("g", "%d b"), "%d B ") &&
               is_numbered(lang_count("g", "%d c|%d cs", 2), "%d C ") &&
               is_numbered(lang_plural(lang_get_string("g", "%d c|%d cs"), 2), "%d C ") &&
               lang_locale_of(nullptr)->texts == 3;
        lang_trace_mark("round");
    }
    good = good && first == copy;
}

bool write_round(const std::string &path, int round)
{
    char text[200];
    std::snprintf(text, sizeof text,
                  "GROUP g a { \"A %d\" } \"%%d b\" { \"%%d B %d\" } "
                  "\"%%d c|%%d cs\" { \"%%d one|%%d C %d\" }",
                  round, round, round);
    return put(path + ".new", text) && std::rename((path + ".new").c_str(), path.c_str()) == 0;
}

bool reload_while_others_ask(const std::string &folder)
{
    mkdir(folder.c_str(), 0777);
    const std::string path = folder + "/de.lang";
    bool good[8] = {true, true, true, true, true, true, true, true};
    if (!write_round(path, 0) || lang_locale_choose(folder.c_str(), "de") == nullptr ||
        lang_locale_watch(nullptr) < 0)
        return false;
    std::vector<std::thread> threads;
    for (bool &one : good)
        threads.emplace_back(ask_while_reloading, std::ref(one));
    bool all = true;
    for (int round = 1; round <= reloads && all; ++round)
        all = write_round(path, round) && lang_locale_reload() == 1 &&
              is(lang_get_string("g", "a"), ("A " + std::to_string(round)).c_str());
    is_over = true;
    for (std::thread &one : threads)
        one.join();
    all = all && lang_locale_reload() == 0;
    lang_de_init();
    std::remove(path.c_str());
    std::remove(folder.c_str());
    for (const bool one : good)
        all = all && one;
    return all;
}

} // namespace

int main(int, char **word)
{
    std::FILE *file = std::fopen(word[1], "w");
    if (file == nullptr)
        return 2;
    std::fputs("CTIME 7 GROUP g \"Open\" { \"Oeffnen\" } "
               "\"one|other\" { \"eine|andere\" } "
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
    std::remove(word[1]);
    good[0] = good[0] && load_while_others_ask(std::string(word[1]) + ".folder") &&
              reload_while_others_ask(std::string(word[1]) + ".again");
    LogClose();
    for (const bool one : good)
        if (!one)
            return 1;
    return 0;
}
