#pragma once

// The text panel's record, and its fields as a table.

#include <gtk/gtk.h>

#include <iterator>

#include "source/model.h"

#define ZEL_TYPE_TEXT (zel_text_get_type())
#define ZEL_TEXT(object) (G_TYPE_CHECK_INSTANCE_CAST((object), ZEL_TYPE_TEXT, Zeltext))
#define ZEL_IS_TEXT(object) (G_TYPE_CHECK_INSTANCE_TYPE((object), ZEL_TYPE_TEXT))

// Places in Zeltext::dirty, and numbers of the fields.
enum text_field { TEXT_TRANS1, TEXT_TRANS2, TEXT_COMMENT1, TEXT_COMMENT2, TEXT_FIELDS };

namespace zel {

// Below a translation: the item's text in another language, to be read only.
struct text_below {
    GtkWidget *row;   // hidden while there is none
    GtkWidget *label; // the language
    GtkWidget *view;
};

} // namespace zel

struct Zeltext {
    GtkFrame frame;
    GtkWidget *description_label; // the item's description
    GtkWidget *name_entry;        // "(%d)  %s:%s", not editable
    GtkWidget *name_edit_entry;   // mode 2: the item's name; never read back
    GtkWidget *lang1_frame;
    GtkWidget *lang2_frame;
    GtkWidget *comment1_label;
    GtkWidget *trans1_label;
    GtkWidget *comment2_label;
    GtkWidget *trans2_label;
    GtkWidget *comment1_view;
    GtkWidget *comment2_view;
    GtkWidget *trans1_view;
    GtkWidget *trans2_view;
    GtkWidget *used_in_view;    // modes 1 and 2: where the item is used
    int dirty[TEXT_FIELDS];     // the field was typed in since it was filled
    lang_entry_t *trans1_entry; // what the fields are bound to, or null
    lang_entry_t *trans2_entry;
    lang_entry_t *comment1_entry;
    lang_entry_t *comment2_entry;
    LangSource *lang_source; // of the shown item
    item_t *item;            // the shown item, or null
    char *group_name;        // owned, or null
    char *item_name;         // owned, or null
    int pos;
    GtkWidget *finding1_label; // beside the captions of the translations: what is wrong with them
    GtkWidget *finding2_label;
    GtkWidget *room1_label; // and at the end of that row: the room that a comment leaves
    GtkWidget *room2_label;
    GtkWidget *suggestion1_label; // under the translations: how a similar text is translated
    GtkWidget *suggestion2_label;
    zel::text_below below[2]; // of the two translations
    GtkWidget *all_findings;  // modes 1 and 2: what is wrong, where the labels cannot hold it
    int made[TEXT_FIELDS];    // the bound entry came to be by being shown, and is in no file
    GtkWidget *used_in_label; // the caption of used_in_view
};

struct ZeltextClass {
    GtkFrameClass parent_class;
};

GType zel_text_get_type();
namespace zel {

// What a field consists of; a row per field, in the order of text_field.
struct field_t {
    GtkWidget *Zeltext::*view;
    GtkWidget *Zeltext::*label;
    lang_entry_t *Zeltext::*entry;
    GList *item_t::*entries; // of the item, where the field's entry stands
    const char *caption;
    int height; // pixels that it asks for
    int lines;  // that it never gets less than
    const char *log;
};

constexpr field_t fields[] = {
    {&Zeltext::trans1_view, &Zeltext::trans1_label, &Zeltext::trans1_entry, &item_t::langs,
     "Translation", 80, 2, "zel_text_update: get Lang 1 entry\n"},
    {&Zeltext::trans2_view, &Zeltext::trans2_label, &Zeltext::trans2_entry, &item_t::langs,
     "Translation", 80, 2, "zel_text_update: get Lang 2 entry\n"},
    {&Zeltext::comment1_view, &Zeltext::comment1_label, &Zeltext::comment1_entry, &item_t::comments,
     "Comment", 60, 1, "zel_text_update: get Komment 1 entry\n"},
    {&Zeltext::comment2_view, &Zeltext::comment2_label, &Zeltext::comment2_entry, &item_t::comments,
     "Comment", 60, 1, "zel_text_update: get Komment 2 entry\n"},
};
static_assert(std::size(fields) == TEXT_FIELDS);

// The order in which fields are filled and written back: a language's comment before its text.
constexpr int field_order[] = {TEXT_COMMENT1, TEXT_TRANS1, TEXT_COMMENT2, TEXT_TRANS2};

} // namespace zel
