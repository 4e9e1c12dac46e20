// Which of a directory's compiled files the user gets, what is there, and chains of handles.

#include "langlib/lang-locale.h"

#include "handles.h"
#include "langlib/languages.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace {

using namespace langlib_test;

// What the environment says of languages, for the length of a test.
constexpr const char *settings[] = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};

class Locale : public loading {
protected:
    Locale()
    {
        for (const char *name : settings) {
            const char *value = std::getenv(name);
            before_.push_back(value == nullptr ? "" : value);
            unsetenv(name);
        }
    }
    ~Locale() override
    {
        for (std::size_t i = 0; i < std::size(settings); ++i)
            setenv(settings[i], before_[i].c_str(), 1);
    }

    // A file of the directory "texts" in which "who" is the file's path and "all" is everywhere the
    // default's.
    static void put(const std::string &path, const std::string &language)
    {
        const std::filesystem::path file = "texts/" + path;
        std::filesystem::create_directories(file.parent_path());
        zel_test::write_file(file.string(), "FORMAT UTF8 LANGUAGE \"" + language +
                                                "\" GROUP g who { \"" + path +
                                                "\" } all { default \"stand-in\" }");
    }

    // The files of the chain that the settings lead to, "a.lang b.lang"; empty for none.
    static std::string taken(const std::vector<std::string> &values)
    {
        for (std::size_t i = 0; i < std::size(settings); ++i)
            setenv(settings[i], i < values.size() ? values[i].c_str() : "", 1);
        lang_de_init();
        std::string files;
        for (const lang_locale_t *one = lang_locale_load("texts"); one != nullptr; one = one->next)
            files += (files.empty() ? "" : " ") + std::string(one->path + std::strlen("texts/"));
        return files;
    }

private:
    std::vector<std::string> before_;
};

TEST_F(Locale, SettingsCountInTheOrderOfTheCLibrary)
{
    put("german.lang", "german");
    put("at.lang", "German (AT)");
    put("french-edit/french.lang", "Français");
    put("sr.lang", "sr@latin");
    put("zh_Hant.lang", "x");
    put("no.lang", "no");
    put("bokmål.lang", "bokmål");
    put("tlh.lang", "tlh");
    put("tlh@latin.lang", "tlh@latin");
    put("my_own_texts.lang", "x");
    const struct {
        std::vector<std::string> values; // of LANGUAGE, LC_ALL, LC_MESSAGES, LANG
        const char *files;
    } rows[] = {
        {{"", "", "", "de_DE.UTF-8"}, "german.lang"},
        {{"", "", "de_AT.UTF-8@euro", "fr_FR"}, "at.lang german.lang"},
        {{"", "fr_CA", "de_AT", "de_DE"}, "french-edit/french.lang"},
        {{"fr:de_AT", "de_DE", "", ""}, "french-edit/french.lang at.lang german.lang"},
        {{"fr", "C", "", "de_DE"}, ""},
        {{"fr", "POSIX", "", ""}, ""},
        {{"fr", "", "", ""}, ""},
        {{"fr", "C.UTF-8", "", ""}, "french-edit/french.lang"},
        {{"xx:C:fr", "de_DE", "", ""}, ""},
        {{"", "GERMAN", "", ""}, "german.lang"},
        {{"", "", "", "sr_RS@latin"}, "sr.lang"},
        {{"", "", "", "sr_RS"}, ""},
        {{"", "", "", "zh_TW.UTF-8"}, "zh_Hant.lang"},
        {{"", "", "", "zh_CN"}, ""},
        {{"", "", "", "../../../etc"}, ""},
        {{"nn:nb", "de_DE", "", ""}, "bokmål.lang no.lang"},
        {{"nn:fr", "de_DE", "", ""}, "no.lang french-edit/french.lang"},
        {{"nb:fr", "de_DE", "", ""}, "bokmål.lang no.lang french-edit/french.lang"},
        {{"", "", "", "tlh_DE.UTF-8@latin"}, "tlh@latin.lang tlh.lang"},
        {{"", "", "", "tlh_DE.UTF-8"}, "tlh.lang"},
        {{"", "", "", "my_own_texts.UTF-8"}, "my_own_texts.lang"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(taken(row.values), row.files) << testing::PrintToString(row.values);
    put("default.lang", "english");
    EXPECT_EQ(taken({"", "C", "", ""}), "default.lang");
    EXPECT_EQ(taken({"", "de_DE", "", ""}), "german.lang default.lang");
    EXPECT_EQ(taken({"", "en_GB", "", ""}), "default.lang");
    std::string many;
    for (int i = 0; i < 40; ++i) {
        const std::string name = "tl" + std::to_string(i);
        put(name + ".lang", name);
        many += name + ":";
    }
    EXPECT_THAT(taken({many, "de_DE", "", ""}), testing::EndsWith(" tl39.lang default.lang"));
}

// The C library's own list of locales: each finds a file that bears its language's code.
TEST_F(Locale, EveryLocaleOfTheCLibraryFindsItsLanguage)
{
    std::ifstream list("/usr/share/i18n/SUPPORTED");
    if (!list)
        GTEST_SKIP() << "no list of locales";
    std::string before;
    for (std::string line; std::getline(list, line);) {
        const std::string name = line.substr(0, line.find(' '));
        const std::string code = name.substr(0, name.find_first_of("_.@"));
        if (code == "C")
            continue;
        zel::language_tag tag;
        zel::language_row row;
        if (code != std::exchange(before, code)) {
            std::filesystem::create_directory(code);
            zel_test::write_file(code + "/" + code + ".lang", "GROUP g a { \"b\" }");
            EXPECT_TRUE(zel::read_language(code, tag, row)) << code << " has no row";
        }
        const handle_guard handle(lang_locale_new(code.c_str(), name.c_str()));
        EXPECT_NE(handle, nullptr) << name;
    }
}

TEST_F(Locale, LanguagesAreKnownByCodesAndNames)
{
    const struct {
        const char *name;
        const char *tag;
    } rows[] = {
        {"deu", "de"},
        {"ger", "de"},
        {"DEUTSCH", "de"},
        {"РУССКИЙ", "ru"},
        {"日本語", "ja"},
        {"norwegian bokmål", "nb"},
        {"pt-br", "pt_BR"},
        {"zh-hant-HK", "zh_Hant_HK"},
        {"brazilian Portuguese", "pt_BR"},
        {"sr_Latn_RS", "sr_RS@latin"},
        {"uz@Latn", "uz@latin"},
        {"es-419", "es_419"},
        {"German_at", "de_AT"},
        {"de_AT.ISO-8859-1", "de_AT"},
        {"german texts", ""},
        {"x", ""},
        {"", ""},
        {"de_AT_CH", ""},
        {"\xFF\xFE", ""},
        {"_", ""},
        {"de@", "de"},
        {"Bengali", "bn"},
        {"Slovene", "sl"},
        {"tagalog", "fil"},
        {"Portuguese (Brazil)", "pt_BR"},
        {"Chinese (Simplified)", "zh_Hans"},
        {"Chinese (Traditional, Hong Kong)", "zh_Hant_HK"},
        {"Chinese (Hong Kong)", "zh_HK"},
        {"Serbian (Latin)", "sr@latin"},
        {"serbian (latin, bosnia & herzegovina)", "sr_BA@latin"},
        {"English (United States)", "en_US"},
        {"German (Atlantis)", ""},
        {"German (Austria, Germany)", ""},
        {"German ()", "de"},
        {"sh", "sh"},
        {"guw", "guw"},
        {"nah", "nah"},
        {"smi", "smi"},
    };
    for (const auto &row : rows) {
        zel::language_tag tag;
        zel::language_row found;
        EXPECT_EQ(zel::read_language(row.name, tag, found), row.tag[0] != '\0') << row.name;
        EXPECT_EQ(tag.view(), row.tag) << row.name;
    }
    zel::language_tag tag;
    zel::language_row row;
    EXPECT_FALSE(zel::read_language(std::string(100000, '_'), tag, row));
    zel::read_language("pt-BR", tag, row);
    EXPECT_EQ(row.english, "Brazilian Portuguese");
}

TEST_F(Locale, TheNextFileAnswersWhereOneHasOnlyAStandIn)
{
    zel_test::write_file("de_AT.lang", "LANGUAGE de_AT GROUP g a { \"A-AT\" } b { default \"B\" } "
                                       "c { default \"C\" } e { }");
    zel_test::write_file("de.lang", "GROUP g a { \"A-DE\" } b { \"B-DE\" } c { default \"C\" } "
                                    "d { \"D-DE\" } e { \"E-DE\" }");
    setenv("LANG", "de_AT", 1);
    const lang_locale_t *taken = lang_locale_load(".");
    ASSERT_NE(taken, nullptr);
    EXPECT_STREQ(taken->code, "de_AT");
    EXPECT_STREQ(taken->own, "Österreichisches Deutsch");
    EXPECT_EQ(taken, lang_locale_of(nullptr));
    EXPECT_STREQ(lang_get_string("g", "a"), "A-AT");
    EXPECT_STREQ(lang_get_string("g", "b"), "B-DE");
    EXPECT_STREQ(lang_get_string("g", "c"), "C");
    EXPECT_STREQ(lang_get_string("g", "d"), "D-DE");
    EXPECT_STREQ(lang_get_string("g", "e"), "E-DE");
    EXPECT_STREQ(lang_get_string("g", "f"), "f");
    EXPECT_EQ(lang_check_string("g", "d"), 1);

    EXPECT_EQ(lang_locale_load("."), nullptr) << "a second load is refused";
    EXPECT_STREQ(lang_get_string("g", "a"), "A-AT");
    ASSERT_EQ(lang_load_file("de.lang"), 0);
    EXPECT_EQ(lang_locale_of(nullptr), nullptr);
    EXPECT_STREQ(lang_get_string("g", "c"), "C");
    lang_de_init();
    EXPECT_EQ(lang_locale_load("no such folder"), nullptr);
    EXPECT_EQ(lang_locale_load(nullptr), nullptr);
    EXPECT_STREQ(lang_get_string("g", "a"), "a");
}

// Three files: the last one's own text is better than the stand-ins before it, and the first
// stand-in better than a later one.
TEST_F(Locale, AStandInIsShownWhenNoFileHasATextOfItsOwn)
{
    zel_test::write_file("de_AT.lang", "GROUP g b { default \"AT\" }");
    zel_test::write_file("de.lang", "GROUP g a { default \"DE\" } b { default \"DE\" } "
                                    "c { default \"DE\" }");
    zel_test::write_file("fr.lang",
                         "GROUP g a { default \"FR\" } b { default \"FR\" } c { \"FR\" }");
    const handle_guard handle(lang_locale_new(".", "de_AT:fr"));
    EXPECT_STREQ(lang_get_str(handle.get(), "g", "a"), "DE");
    EXPECT_STREQ(lang_get_str(handle.get(), "g", "b"), "AT");
    EXPECT_STREQ(lang_get_str(handle.get(), "g", "c"), "FR");
}

TEST_F(Locale, HandlesOfTheCallersAreChained)
{
    const handle_guard first = load("GROUP g a { \"1\" }");
    const handle_guard second = load("GROUP g a { \"2\" } b { \"2\" }");
    const handle_guard third = load("GROUP g b { \"3\" } c { \"3\" }");
    const handle_guard import = load("GROUP g c { \"4\" }", 1);
    EXPECT_EQ(lang_locale_chain(first.get(), second.get()), 0);
    EXPECT_EQ(lang_locale_chain(second.get(), third.get()), 0);
    EXPECT_STREQ(lang_get_str(first.get(), "g", "a"), "1");
    EXPECT_STREQ(lang_get_str(first.get(), "g", "b"), "2");
    EXPECT_STREQ(lang_get_str(first.get(), "g", "c"), "3");
    EXPECT_EQ(lang_locale_chain(third.get(), first.get()), 2);
    EXPECT_EQ(lang_locale_chain(first.get(), first.get()), 2);
    EXPECT_EQ(lang_locale_chain(first.get(), import.get()), 1);
    EXPECT_EQ(lang_locale_chain(import.get(), first.get()), 1);
    EXPECT_EQ(lang_locale_chain(nullptr, first.get()), 1) << "nothing is loaded";
    EXPECT_EQ(lang_locale_chain(first.get(), nullptr), 0);
    EXPECT_STREQ(lang_get_str(first.get(), "g", "c"), "c");

    put("de_AT.lang", "de_AT");
    put("de.lang", "de");
    put("fr.lang", "fr");
    const handle_guard austrian(lang_locale_new("texts", "de_AT"));
    const handle_guard french(lang_locale_new("texts", "fr"));
    const lang_locale_t *taken = lang_locale_of(austrian.get());
    EXPECT_STREQ(taken->next->code, "de");
    EXPECT_EQ(lang_locale_chain(austrian.get(), french.get()), 0);
    EXPECT_EQ(taken->next, lang_locale_of(french.get()));
    EXPECT_EQ(lang_locale_chain(austrian.get(), third.get()), 0);
    EXPECT_EQ(taken->next, nullptr) << "no record tells of it";
}

TEST_F(Locale, TheListSaysWhatIsThere)
{
    put("b.lang", "german");
    put("a/x.lang", "my own language");
    put("no-texts.lang", "french");
    zel_test::write_file("texts/no-texts.lang", "LANGUAGE french");
    std::filesystem::create_directory("texts/folder.lang");
    std::filesystem::create_directory("texts/empty");
    ASSERT_EQ(mkfifo("texts/pipe.lang", 0600), 0); // reading it would never end
    std::string lines;
    const auto add = [](const lang_locale_t *file, void *user) {
        const auto text = [](const char *one) { return std::string(one == nullptr ? "-" : one); };
        *static_cast<std::string *>(user) += text(file->path) + " " + text(file->name) + " " +
                                             text(file->code) + " " + text(file->english) + " " +
                                             text(file->own) + " " + std::to_string(file->texts) +
                                             " " + std::to_string(file->defaults) + "\n";
    };
    lang_sym_system_set("KEPT", "yes");
    EXPECT_EQ(lang_locale_list("texts", add, &lines), 2);
    EXPECT_EQ(lines, "texts/a/x.lang my own language - - - 2 1\n"
                     "texts/b.lang german de German Deutsch 2 1\n");
    EXPECT_STREQ(lang_sym_get(nullptr, "KEPT"), "yes");
    EXPECT_EQ(lang_locale_list("texts/empty", add, &lines), 0);
    EXPECT_EQ(lang_locale_list("texts/none", add, &lines), -1);
    EXPECT_EQ(taken({"", "My Own Language.UTF-8", "", ""}), "a/x.lang");
    handle_guard handle(lang_locale_new("texts", "tlh:de"));
    EXPECT_STREQ(lang_get_str(handle.get(), "g", "who"), "b.lang");
    EXPECT_STREQ(lang_locale_of(handle.get())->code, "de");
    EXPECT_EQ(lang_locale_new("texts", "tlh"), nullptr);
}

// A block of several compiled files, as a build puts it into a program.
std::string block(std::initializer_list<std::pair<const char *, std::string>> files)
{
    std::string all = "lang-texts 1\n";
    for (const auto &[name, text] : files)
        all += std::string(name) + " " + std::to_string(text.size()) + "\n" + text + "\n";
    return all;
}

// The text "who" and the files of the chain after a load; empty for none.
std::string who(const lang_locale_t *taken)
{
    std::string files;
    for (const lang_locale_t *one = taken; one != nullptr; one = one->next)
        files += " " + std::string(one->path);
    const std::string text = lang_get_string("g", "who");
    lang_de_init();
    return files.empty() ? files : text + files;
}

TEST_F(Locale, TextsInMemoryStandBehindFiles)
{
    const std::string all =
        block({{"german.lang", "GROUP g who { \"Programm\" }"},
               {"a b/x y.lang", "LANGUAGE French GROUP g who { \"programme\" }"},
               {"default.lang", "GROUP g who { \"program\" }"}});
    const auto from = [&](const char *directory, const char *languages, std::size_t size) {
        return who(lang_locale_memory(directory, languages, all.data(), size));
    };
    setenv("LANG", "fr_CA.UTF-8", 1);
    EXPECT_EQ(who(lang_load_memory(all.data(), all.size())), "programme a b/x y.lang default.lang");
    put("de.lang", "German");
    EXPECT_EQ(from("texts", "de_AT", all.size()), "de.lang texts/de.lang default.lang");
    EXPECT_EQ(from("texts", "fr:de", all.size()),
              "programme a b/x y.lang texts/de.lang default.lang");
    EXPECT_EQ(from("nowhere", "de", all.size()), "Programm german.lang default.lang");
    // One compiled file alone; what is damaged, and what is refused.
    const std::string one = "LANGUAGE German GROUP g who { \"ein\" }";
    EXPECT_EQ(who(lang_locale_memory(nullptr, "de", one.data(), one.size())), "ein memory.lang");
    EXPECT_EQ(who(lang_locale_memory(nullptr, "fr", one.data(), one.size())), "");
    EXPECT_EQ(who(lang_locale_memory("texts", "de", nullptr, 0)), "de.lang texts/de.lang");
    for (std::size_t size = 0; size < all.size(); ++size) {
        // A copy of that size, so that a sanitizer sees what is read behind it.
        const std::vector<char> cut(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(size));
        const std::string found =
            who(lang_locale_memory(nullptr, "de", size == 0 ? "" : cut.data(), size));
        EXPECT_TRUE(found.empty() || found == "Programm german.lang") << size;
    }
    for (const char *head : {"german.lang x\n", "german.lang\n", "german.lang -1\n", "german 1\n",
                             "german.lang 99999999999999999999\n", "german.lang 5\nabcde"}) {
        const std::string bad = "lang-texts 1\n" + std::string(head);
        EXPECT_EQ(who(lang_load_memory(bad.data(), bad.size())), "") << head;
    }
    ASSERT_NE(lang_locale_memory(nullptr, "de", all.data(), all.size()), nullptr);
    EXPECT_EQ(lang_load_memory(all.data(), all.size()), nullptr) << "loaded already";
}

TEST_F(Locale, NewTextsAreTakenWhileOldOnesLiveOn)
{
    namespace fs = std::filesystem;
    put("fr.lang", "fr");
    EXPECT_EQ(lang_locale_reload(), -1) << "nothing was loaded";
    ASSERT_NE(lang_locale_choose("texts", "fr"), nullptr);
    const int number = lang_locale_watch(nullptr);
    const auto news = [number] {
        pollfd one{number, POLLIN, 0};
        return poll(&one, 1, 0) == 1;
    };
    const auto who = [] { return std::string(lang_get_string("g", "who")); };
    const char *first = lang_get_string("g", "who");
    EXPECT_FALSE(news());
    EXPECT_EQ(lang_locale_reload(), 0);

    const std::string forms = "GROUP g who { \"un|autres\" } ";
    zel_test::write_file("texts/fr.lang", "LANGUAGE \"ru\" " + forms);
    EXPECT_TRUE(news());
    EXPECT_EQ(lang_locale_reload(), -1) << "no file of the language";
    EXPECT_EQ(who(), "fr.lang");
    zel_test::write_file("texts/fr.lang", "LANGUAGE \"fr\" " + forms);
    EXPECT_EQ(lang_locale_reload(), 1);
    const char *older = lang_get_string("g", "who");
    EXPECT_FALSE(news());

    // As a build does it: a folder of its own in the place of the old one.
    fs::rename("texts", "old");
    put("french-edit/french.lang", "fr");
    EXPECT_TRUE(news());
    EXPECT_EQ(lang_locale_reload(), 1);
    EXPECT_EQ(who(), "french-edit/french.lang");
    zel_test::write_file("texts/french-edit/note.txt", "");
    EXPECT_EQ(lang_locale_reload(), 0) << "no compiled file";
    zel_test::write_file("texts/french-edit/french.lang",
                         "LANGUAGE \"fr\" GROUP g who { \"last\" }");
    EXPECT_TRUE(news());
    EXPECT_EQ(lang_locale_reload(), 1);
    EXPECT_EQ(who(), "last");
    EXPECT_STREQ(first, "fr.lang");
    EXPECT_STREQ(lang_plural(older, 0), "un") << "by the rule of its own file's language";

    lang_handle_t *own = lang_locale_new("old", "fr");
    ASSERT_EQ(lang_locale_chain(nullptr, own), 0);
    put("french-edit/french.lang", "fr");
    EXPECT_EQ(lang_locale_reload(), 1);
    EXPECT_STREQ(lang_locale_of(nullptr)->next->path, "old/fr.lang") << "the chain stays";
    lang_de_init();
    lang_free(own, 1);
    EXPECT_EQ(fcntl(number, F_GETFD), -1);
}

} // namespace
