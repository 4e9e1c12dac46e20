#pragma once

// A scene: what somebody does in the editor and sees there, in rows of tests/gui/scenes/*.rows.
//   Suite.Test           a section whose name has a point is a test of that name
//     "start" "FILE"     the editor with that file, "" for none, notes.lang-src where none is
//     named;
//                        what stands up to "end", the next start or the test's end happens in it
//     "in the box"       what stands up to "end" is done in the next dialog that comes up
//     "is" LOOK TEXT     what is seen there; so "has", "lacks", "starts", "ends", "matches",
//                        "unlike", "above" and "below" (numbers), "becomes" (waits for it); a
//                        third text says why
//     "note" LOOK        keeps it for "as noted", "has noted" and "unlike noted"
//     VERB TEXT...       else one of the acts in scene-acts.cpp
// A LOOK is one of scene-looks.cpp, or a widget: one named there, else that of the window or dialog
// with that name, text or tooltip. In all texts FOLDER stands for the test's folder. The section
// "source" is the file notes.lang-src of all scenes behind it; other sections without a point are
// sources for "source" NAME.

#include "editor-fixture.h"
#include "recovery/recovery-file.h"
#include "rows.h"

namespace gui {

class Scene : public Editor {
public:
    using rows_t = std::vector<zel_test::row>;
    explicit Scene(rows_t rows) : rows_(std::move(rows)) {}
    ~Scene() override;

    std::string look(const std::string &name);
    GtkWidget *widget(const std::string &name) const;
    GtkWidget *root() const { return boxes_.empty() ? mainWin : boxes_.back(); }
    std::string said(std::string text) const; // a text of a row, with the folder in its place
    std::string in_folder(const std::string &name) const; // a name may have one star
    // A dialog is answered so, and its texts are kept.
    void answer(answer_fn then) { answer_next(see(&box, std::move(then))); }

    std::string box;     // the texts of the last dialog
    std::string printed; // by the last editor
    std::string errors;  // on stderr, by the last one that ended at once
    std::string noted;   // a look that was kept

private:
    void TestBody() override { play(0, rows_.size()); }
    void play(std::size_t from, std::size_t to);
    std::size_t end_of(std::size_t at, std::size_t limit) const;
    void check(const zel_test::row &row);

    rows_t rows_;
    std::vector<GtkWidget *> boxes_;
};

// One act by its name; false when there is none of that name.
bool act(Scene &scene, const zel_test::row &row);

// Menus: of a field, of a caption (null for none), and what they offer: "(grey)", "radio*",
// "check[x]", "title(below,below)".
void with_menu_of(GtkWidget *view, const std::function<void(GtkWidget *)> &act);
GtkWidget *caption_menu(int field, guint button);
std::vector<GtkWidget *> menu_items(GtkWidget *menu);
std::string menu_line(GtkWidget *menu, const char *between);

bool a_menu_is_open(); // of the menu bar

std::vector<zel::recovery_file> recovery_files(const std::string &source);

// The text of a section without a point.
std::string named_source(const std::string &name);

} // namespace gui
