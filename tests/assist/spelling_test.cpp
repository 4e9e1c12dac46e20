// Which words of a text a dictionary is asked about, and which dictionary that is.

#include "assist/dictionary-choice.h"
#include "assist/words.h"

#include <gtest/gtest.h>

using zel::assist::choose_dictionary;
using zel::assist::words_of;
using zel::assist::written_like;

namespace {

std::string words_in(std::string_view text)
{
    std::string out;
    std::size_t end = 0;
    for (const zel::assist::word &one : words_of(text)) {
        EXPECT_GE(one.place.at, end) << text;
        end = one.place.at + one.place.length;
        EXPECT_LE(end, text.size()) << text;
        out += (out.empty() ? "" : " ") + one.letters;
    }
    return out;
}

} // namespace

TEST(Words, AreWhatALanguageHas)
{
    constexpr struct {
        const char *text;
        const char *words;
    } rows[] = {
        {"", ""},
        {"Save the file.", "Save the file"},
        {"(don't) 'quoted' dogs' l\u2019\u00e9t\u00e9 d'Artagnan O'Brien",
         "don't quoted dogs l'\u00e9t\u00e9 d'Artagnan O'Brien"},
        {"cafe\u0301 \u0417\u0430\u043c\u0435\u0442\u043a\u0438 Datei-Men\u00fc a\u00adb",
         "cafe\u0301 \u0417\u0430\u043c\u0435\u0442\u043a\u0438 Datei Men\u00fc ab"},
        // what belongs to the application
        {"%d files, %25s %NAME% %lu%% <b class=\"wrong\">bold</b>", "files bold"},
        {"one\\ntwo\\x41\\u00e4three &nbsp;&#228;four", "one two three four"},
        {"_Save Sa_ve as", "Save Save as"},
        // names, numbers and addresses
        {"the notes some_name and __init__ of it", "the notes and of it"},
        {"_Name of the file my_notes.txt", "Name of the file"},
        {"mainWindow e.g. end.Next wait...done", "wait done"},
        {"UTF-8 3D mp3 x1y HTML WLANs I", "WLANs"},
        {"see http://a.example/some-page, (www.a.example) \"me@example.org\" or mail@ home",
         "see or mail home"},
        {"in /usr/share/doc ~/some ./any C:\\Program\\files --verbose and/or", "in and or"},
        // scripts without blanks
        {"\u4fdd\u5b58 \u0e1a\u0e31\u0e19\u0e17\u0e36\u0e01 \uc800\uc7a5", "\uc800\uc7a5"},
        {"bad\xff\xc3utf", "bad utf"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(words_in(row.text), row.words) << row.text;
    EXPECT_EQ(words_in(std::string(61, 'a') + " " + std::string(60, 'b')), std::string(60, 'b'));
}

TEST(Words, StandWhereTheTextHasThem)
{
    const std::string text = "%d <i>\u00fcber</i> Sa_ve";
    const auto words = words_of(text);
    ASSERT_EQ(words.size(), 2U);
    EXPECT_EQ(text.substr(words[0].place.at, words[0].place.length), "\u00fcber");
    EXPECT_EQ(text.substr(words[1].place.at, words[1].place.length), "Sa_ve");
}

TEST(Words, ReplacedKeepTheirMnemonicAndApostrophe)
{
    EXPECT_EQ(written_like("halo", "hallo"), "hallo");
    EXPECT_EQ(written_like("_Svae", "Save"), "_Save");
    EXPECT_EQ(written_like("Op_ne", "Open"), "Ope_n");
    EXPECT_EQ(written_like("_\u00dcbr", "\u00fcber"), "_\u00fcber");
    EXPECT_EQ(written_like("_Xy", "Save"), "_Save") << "another letter";
    EXPECT_EQ(written_like("do\u2019nt", "don't"), "don\u2019t");
    EXPECT_EQ(written_like("do'nt", "don't"), "don't");
}

TEST(DictionaryChoice, FindsALanguageByNameOrCode)
{
    const struct {
        std::vector<std::string> there;
        const char *language;
        const char *chosen;
    } rows[] = {
        {{"de", "de_AT", "de_DE"}, "german", "de"},
        {{"de", "de_AT", "de_DE"}, "de_AT", "de_AT"},
        {{"de", "de_AT", "de_DE"}, "German (at)", "de_AT"},
        {{"de", "de_AT", "de_DE"}, "de-CH", "de"},
        {{"de_LU", "de_DE", "de_AT"}, "Deutsch", "de_DE"},
        {{"de_LU", "de_CH", "de_AT"}, "de", "de_AT"},
        {{"de_LU", "de_DE"}, "de_AT", "de_DE"},
        {{"de-AT"}, "de_AT", "de-AT"},
        {{"en_AU", "en_GB", "en_US"}, "english", "en_US"},
        {{"en_GB", "en_AU"}, "english", "en_AU"},
        {{"sv_FI", "sv_SE"}, "swedish", "sv_SE"},
        {{"pt_BR", "pt_PT"}, "Brazilian Portuguese", "pt_BR"},
        {{"nb_NO"}, "norwegian", "nb_NO"},
        // never another language or script
        {{"den_CA", "d", "de_variant", "DE_ATX"}, "de", ""},
        {{"sr", "sr_RS"}, "sr@latin", ""},
        {{"sr_RS", "sr@latin"}, "sr_RS@latin", "sr@latin"},
        {{"sr_RS@latin", "sr_Latn_RS"}, "serbian", ""},
        {{"de_DE"}, "", ""},
        {{"xx", "tlh"}, "Klingon dialect", ""},
        {{"xx_Alpha"}, "XX-alpha", "xx_Alpha"},
        {{}, "german", ""},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(choose_dictionary(row.language, row.there), row.chosen) << row.language;
        const std::vector<std::string> turned(row.there.rbegin(), row.there.rend());
        EXPECT_EQ(choose_dictionary(row.language, turned), row.chosen) << row.language;
    }
}
