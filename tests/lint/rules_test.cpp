// Each rule about texts: what it says, and what it leaves alone.

#include "lint/judge.h"

#include <gtest/gtest.h>

namespace {

using zel_test::judge;

struct text_row {
    const char *reference, *text, *said; // said: behind "german: ", empty for nothing
};

template <std::size_t N>
void expect_all(const char *rule, const text_row (&rows)[N])
{
    for (const text_row &row : rows)
        EXPECT_EQ(judge(rule, row.reference, row.text),
                  *row.said == '\0' ? std::string() : "german: " + std::string(row.said))
            << rule << ": " << row.reference << " | " << row.text;
}

TEST(Rules, Encoding)
{
    const text_row rows[] = {
        {"Size", "Größe\n\ttab\r\n", ""},
        {"Size",
         "Gr\xF6\xDF"
         "e",
         "the text holds bytes that are no UTF-8"},
        {"Size", "cut \xE2\x82", "the text holds bytes that are no UTF-8"},
        {"Bell", "Gl\acke", "the text holds the control character U+0007"},
        {"Size",
         "Gr\xC2\x94\xC3\x9F"
         "e",
         "the text holds the control character U+0094"},
        {"Size", "Größe \xC2\xA0", ""},
    };
    expect_all("encoding", rows);
    // What the reference has itself is meant, and said once.
    EXPECT_EQ(judge("encoding", "a\x01", "b\x01"),
              "the item's name holds the control character U+0001\n"
              "english: the text holds the control character U+0001");
}

TEST(Rules, Markup)
{
    const text_row rows[] = {
        {"<b>Name</b>", "<b>Name</b>", ""},
        {"<b>Name</b>", "<b>Name<b>", "the tag </b> of the reference is missing"},
        {"<b>Name</b>", "Name", "the tag </b> of the reference is missing"},
        {"Name", "<b>Name</b>", "the reference has no tag </b>"},
        {"<b><i>x</i></b>", "<b><i>x</b></i>", "the tag </b> has no other half"},
        {"<span size=\"x\">a</span>", "<span size='y'>b</span>", ""},
        {"a<br>b", "a<br/>b", "the tag <br> of the reference is missing"},
        // Words between angle brackets are translated.
        {"Open <file>", "<Datei> öffnen", ""},
        {"a < b", "a > b", ""},
        {"No <html> in it", "Kein <HTML> darin", ""},
        {"<b>A &amp; B</b>", "<b>A und B</b>", ""},
        {"<b>A</b>", "<b>A & B</b>",
         "an ampersand begins no entity; write \"&amp;\" for the sign itself"},
        {"&lt;a&gt;", "&lt;a&gt",
         "an ampersand begins no entity; write \"&amp;\" for the sign itself"},
        {"A & B", "A &amp; B", "the reference has no entity &amp;"},
        {"A & B", "A & B", ""},
    };
    expect_all("markup", rows);
}

TEST(Rules, Mnemonic)
{
    const text_row rows[] = {
        {"_Save", "_Sichern", ""},
        {"_Save", "Sichern", "the mnemonic of the reference is missing"},
        {"Save", "_Sichern", "there is a mnemonic, the reference has none"},
        {"_Save", "_Si_chern", "there are two mnemonics"},
        {"_Save", "保存(_S)", ""},
        {"_Save", "_Ändern", ""},
        {"_Save", "S__ichern", "the mnemonic of the reference is missing"},
        {"A__B", "A__B", ""},
        // Names keep their underscores or lose them.
        {"the_big_name", "name", ""},
        {"The file notes_old is gone", "Die Datei ist weg", ""},
        {"Gone is the file", "Die Datei meine_notizen ist fort", ""},
    };
    expect_all("mnemonic", rows);
}

TEST(Rules, Blank)
{
    const text_row rows[] = {
        {"Name: ", "Name: ", ""},
        {"Name: ", "Name:", "the blank at the end is missing"},
        {"Name:", "Name: ", "there is a blank at the end, the reference has none"},
        {" Name", "Name", "the blank at the start is missing"},
        {"Name\n", "Name", "the line end at the end is missing"},
        {"Name", "\nName", "there is a line end at the start, the reference has none"},
        {"Name\n\n", "Name\n", "line ends at the end: 1, the reference has 2"},
        {"  Name", "\tName", "the blanks at the start are others than the reference's"},
        // Scripts without blanks, and blanks that are no plain ones.
        {"Name: ", "名前：", ""},
        {"Name: \n", "名前：", "the line end at the end is missing"},
        {" cm", "\u00A0cm", ""},
    };
    expect_all("blank", rows);
}

TEST(Rules, Ending)
{
    const text_row rows[] = {
        {"Done.", "Fertig.", ""},
        {"Done.", "Fertig", "there is no sign at the end, the reference has a full stop"},
        {"Name:", "Name", "there is no sign at the end, the reference has a colon"},
        {"Open...", "Öffnen …", ""},
        {"Open…", "Öffnen", "there is no sign at the end, the reference has an ellipsis"},
        {"Open", "Öffnen?", "there is a question mark at the end, the reference has no sign"},
        // Each script has its own.
        {"Done.", "完了。", ""},
        {"Done.", "完了", ""},
        {"Done.", "समाप्त।", ""},
        {"Sure?", "متأكد؟", ""},
        {"Sure?", "Σίγουρα;", ""},
        {"Sure?", "Sicher;", "there is a semicolon at the end, the reference has a question mark"},
        {"Name:", "名前：", ""},
        {"Name :", "Nom\u00A0:", ""},
        // What may stand behind the sign.
        {"Open...", "開く(_O)...", ""},
        {"Open...", "開く...(_O)", ""},
        {"<b>Done.</b>", "<b>Fertig.</b>", ""},
        {"He said \"no.\"", "Er sagte „nein“.", ""},
        {"Done. ", "Fertig.\n", ""},
        // A cheer more or less, a sign that moved, a text of one letter.
        {"Done!", "Fertig.", ""},
        {"Error in %s:", "Fehler: %s", ""},
        {"X:", "X", ""},
    };
    expect_all("ending", rows);
}

TEST(Rules, Bidi)
{
    const text_row rows[] = {
        {"a", "\u202Bab\u202C", ""},
        {"a", "\u202Eab", "an embedding or override is not closed with U+202C"},
        {"a", "\u2068ab", "an isolate is not closed with U+2069"},
        {"a", "\u2068\u202Dab\u2069", "an embedding or override is not closed with U+202C"},
        {"a", "\u2067ab\u2069 – “c”", ""},
        {"a", "\u2067ab\nc\u2069", "an isolate is not closed with U+2069"},
        {"a", "\u200Fab", ""},
    };
    expect_all("bidi", rows);
}

TEST(Rules, Bracket)
{
    const text_row rows[] = {
        {"a (b)", "a (b)", ""},
        {"a (b)", "a (b", "a \"(\" has no other half"},
        {"a (b)", "a )b(", "a \")\" has no other half"},
        {"a [b]", "a [b)", "a \")\" has no other half"},
        {"a (b)", "a（b)", ""},
        {"a) b", "a) b", "english: a \")\" has no other half"},
    };
    for (const text_row &row : rows) {
        const std::string said = judge("bracket", row.reference, row.text);
        const bool whole = std::string(row.said).starts_with("english");
        EXPECT_EQ(said, *row.said == '\0' || whole ? row.said : "german: " + std::string(row.said));
    }
}

TEST(Rules, Link)
{
    const text_row rows[] = {
        {"See https://a.org/x.", "Siehe https://a.org/x.", ""},
        {"See https://a.org/x", "Siehe https://b.org/x",
         "the address https://a.org/x is https://b.org/x"},
        {"See https://a.org", "Siehe https://a.org/de/", ""},
        {"Ask me@a.org", "Frag mich", "the address me@a.org of the reference is missing"},
        {"In /etc/app.conf", "In /etc/ap.conf", "the path /etc/app.conf is /etc/ap.conf"},
        {"/View/Tools and/or more", "/Ansicht/Werkzeuge", ""},
        {"Version 2.10", "Version 2.8", "the number 210 is 28"},
        {"At most 65,535 bytes", "Höchstens 65.535 Byte", ""},
        {"At most 65,535 bytes", "Höchstens 65 535 Byte", ""},
        {"At most 65,535 bytes", "Höchstens 65536 Byte", "the number 65535 is 65536"},
        {"At most 64", "बहुत ६४", ""},
        {"2 files", "zwei Dateien", ""},
        {"Turn 15 degrees", "Drehen", "the number 15 of the reference is missing"},
        {"Y_2", "Y_1", "the number 2 is 1"},
        {"%5.2f of %1$s", "%s", ""},
        {"win32", "Windows", ""},
    };
    expect_all("link", rows);
}

TEST(Rules, Length)
{
    EXPECT_EQ(judge("length", "Eleven char", std::string(23, 'x')),
              "german: 23 characters, the reference has 11");
    EXPECT_EQ(judge("length", "Eleven char", std::string(22, 'x')), "");
    EXPECT_EQ(judge("length", "Ten chars!", std::string(50, 'x')), "");
    EXPECT_EQ(judge("length", "Eleven char", "ああああああああああああああああ"),
              ""); // by characters
}

TEST(Rules, Repeated)
{
    const text_row rows[] = {
        {"a", "Die Datei Datei fehlt", "\"Datei\" stands there twice"},
        {"a", "of the\nthe file", "\"the\" stands there twice"},
        {"a", "mit der der Name beginnt", ""},
        {"a", "eins, eins, zwei", ""},
        {"dot, dot", "punto punto", ""},
        {"a", "जल्दी जल्दी", ""},
        {"a", "%s %s 10 10 -- --", ""},
    };
    expect_all("repeated", rows);
}

} // namespace
