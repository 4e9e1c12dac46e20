#pragma once

// What the text panel tells of the checks: remarks beside the captions of the translations, the
// conversions, symbols and tags coloured in the texts.

#include "assist/judge.h"
#include "editor/panel/w_text_panel.h"

namespace zel {

// Of the tag on these parts in a field's buffer.
constexpr const char *text_piece_tag = "application-piece";

// A label for the remarks on a translation; hidden while there are none.
[[nodiscard]] GtkWidget *text_finding_label_new();

// A label for the room that is left of what a comment allows; hidden while none does.
[[nodiscard]] GtkWidget *text_room_label_new();

// Shows that room, which may be less than none, for the two translations.
void text_show_rooms(Zeltext *text, const assist::rooms &all);

// How wide a text is in the font of the interface.
[[nodiscard]] lint::text_width text_width_in(Zeltext *text);

// What was typed into the panel's fields since they were filled.
[[nodiscard]] std::vector<assist::typed_text> text_typed(Zeltext *text);

// Shows the remarks on the two translations, also to assistive technology.
void text_show_remarks(Zeltext *text, const assist::remarks &told);

// Where the remarks stand in full when they have no room beside the captions; hidden while they
// have.
[[nodiscard]] GtkWidget *text_all_findings_new(Zeltext *text);

// Breaks their lines at so many pixels.
void text_wrap_findings(Zeltext *text, int width);

// Colours the parts of a view's text that belong to the application. Costs nothing but the look at
// the text while these parts stay.
void text_colour_pieces_of(GtkWidget *view);

// The same in all fields of the panel.
void text_colour_pieces(Zeltext *text);

} // namespace zel
