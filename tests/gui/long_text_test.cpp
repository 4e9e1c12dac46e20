// Texts that are much longer than those of a dialog.

#include "editor-fixture.h"

#include <ctime>

using namespace gui;

namespace {

class LongText : public Editor {
protected:
    // A source whose second item has that many letters without a break, in strings of so many.
    void write(int letters, int in_a_string)
    {
        std::string strings;
        for (int at = 0; at < letters; at += in_a_string) {
            strings += '"';
            for (int letter = at; letter < at + in_a_string && letter < letters; ++letter)
                strings += static_cast<char>('a' + letter * 7 % 26);
            strings += "\"\n";
        }
        write_file(source(), "define file \"e\" lang \"english\" 1 1 1\n"
                             "define file \"g\" lang \"german\" 1 1 1\n"
                             "GROUP \"g\" { ITEM \"short\" { USED YES }\n"
                             "ITEM \"long\" { USED YES LANG \"german\" {\n" +
                                 strings + "} } }\n");
    }
    // Seconds of the processor for showing it, and for typing a letter at its end.
    double seconds_for(int letters, int in_a_string)
    {
        write(letters, in_a_string);
        double seconds = 0;
        run_editor(source(), [&] {
            settle(50);
            const std::clock_t start = std::clock();
            edit_ctrl.next(editWin);
            zel::text_focus_field(panel(), TEXT_TRANS2);
            settle(0);
            type(mainWin, "x");
            settle(0);
            seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
            GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(panel()->trans2_view));
            EXPECT_EQ(gtk_text_buffer_get_char_count(buffer), letters + 1);
        });
        return seconds;
    }
};

} // namespace

// The toolkit alone needs fifteen times as long for four times the letters.
TEST_F(LongText, AnUnbrokenLineIsShownInLinearTime)
{
    for (const int in_a_string : {32000, 100}) {
        const double some = seconds_for(4000, in_a_string);
        const double many = seconds_for(16000, in_a_string);
        EXPECT_LT(many, 8 * some) << some << " s, in strings of " << in_a_string;
    }
}
