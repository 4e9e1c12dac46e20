#include "editor/panel/spelling.h"

#include "app/global.h"
#include "assist/words.h"
#include "config/ini.h"
#include "editor/panel/dictionary.h"
#include "editor/toolkit/slices.h"
#include "editor/toolkit/text-places.h"
#include "editor/toolkit/theme.h"
#include "editor/toolkit/ui-text.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

guint zel::before_first_spelling = 700;

namespace {

using zel::fields;
using zel::assist::word;

// A dictionary is loaded only once the window is there and the list has been judged.
constexpr gint64 spelling_slice = 4000; // microseconds
constexpr std::size_t most_suggestions = 5;
constexpr const char *tag_name = "misspelt";

class speller;

struct spelled_field {
    speller *owner = nullptr;
    GtkTextView *view = nullptr;
    GtkTextTag *tag = nullptr;
    int number = 0;     // text_field
    bool stale = false; // the underlines are of another text
    int typed_at = -1;  // the caret, as long as it stands where it was typed last
    int menu_at = -1;   // where the mouse opens the menu

    GtkTextBuffer *buffer() const { return gtk_text_view_get_buffer(view); }
    int caret() const
    {
        GtkTextIter at;
        gtk_text_buffer_get_iter_at_mark(buffer(), &at, gtk_text_buffer_get_insert(buffer()));
        return gtk_text_iter_get_offset(&at);
    }
};

// A word of a field, for a menu's entry.
struct chosen_word {
    spelled_field *field;
    zel::char_span place;
    std::string letters; // as a dictionary has it
};

std::size_t bytes_before(const std::string &text, int offset)
{
    return static_cast<std::size_t>(g_utf8_offset_to_pointer(text.c_str(), offset) - text.c_str());
}

// A text that is being checked, word by word.
struct text_scan {
    spelled_field *field = nullptr; // none is looked at
    std::string text;
    std::vector<word> words;
    std::size_t next = 0;
    std::vector<zel::assist::piece> wrong;

    void begin(spelled_field &of)
    {
        field = &of;
        text = zel::buffer_text(of.buffer());
        words = zel::assist::words_of(text);
        next = 0;
        wrong.clear();
        if (of.typed_at < 0)
            return;
        // The word that is being typed is not checked yet: it would be underlined at each of its
        // first letters.
        const std::size_t caret = bytes_before(text, of.typed_at);
        words.erase(std::remove_if(words.begin(), words.end(),
                                   [caret](const word &one) {
                                       return one.place.at < caret &&
                                              caret <= one.place.at + one.place.length;
                                   }),
                    words.end());
    }
    // Checks words until the time is up; false when that is before the end.
    bool go_on(zel::dictionary &words_known, gint64 end)
    {
        for (; next < words.size(); ++next) {
            if (g_get_monotonic_time() >= end)
                return false;
            if (!words_known.is_right(words[next].letters))
                wrong.push_back(words[next].place);
        }
        return true;
    }
};

// The spelling of a panel, which is destroyed together with it.
class speller {
public:
    explicit speller(Zeltext *text) : text_(text)
    {
        for (int number = 0; number < TEXT_FIELDS; ++number)
            watch(fields_[static_cast<std::size_t>(number)], number);
    }
    ~speller()
    {
        // The handlers point to the fields of this object.
        for (const spelled_field &field : fields_)
            for (const gpointer object : {gpointer{field.view}, gpointer{field.buffer()}})
                g_signal_handlers_disconnect_matched(object, G_SIGNAL_MATCH_DATA, 0, 0, nullptr,
                                                     nullptr, const_cast<spelled_field *>(&field));
    }
    speller(const speller &) = delete;
    speller &operator=(const speller &) = delete;

    // Empty when the field shows no language.
    std::string language_of(const spelled_field &field) const
    {
        const lang_entry_t *entry = text_->*fields[field.number].entry;
        return entry == nullptr || entry->lang == nullptr ? "" : entry->lang;
    }

    void look_again(spelled_field &field)
    {
        field.stale = true;
        // What has been found so far belongs to the old text: the check begins again.
        if (scan_.field == &field)
            scan_.field = nullptr;
        // The first check waits until the window is drawn; later ones begin as soon as nothing else
        // is to be done.
        if (!checks_.wait())
            checks_.begin(looked_ ? 0 : static_cast<int>(zel::before_first_spelling));
    }
    void look_at_all_again()
    {
        for (spelled_field &field : fields_)
            look_again(field);
    }

private:
    void watch(spelled_field &field, int number);
    int check_slice();
    bool look_at(spelled_field &field, gint64 end);

    Zeltext *text_;
    std::array<spelled_field, TEXT_FIELDS> fields_;
    text_scan scan_;
    zel::slices checks_{[this] { return check_slice(); }};
    bool looked_ = false; // the first time has come
};

// Checks the field for a while; false when there is more to do.
bool speller::look_at(spelled_field &field, gint64 end)
{
    const std::string language = language_of(field);
    // Switched off, or without a dictionary: the old underlines must go, too.
    if (!ini_spelling(ini) || language.empty() || !zel::is_dictionary_there(language)) {
        zel::tag_places(field.buffer(), field.tag, {});
        return true;
    }
    // Loading a dictionary takes a whole slice: the words wait for the next one.
    const bool was_ready = zel::is_dictionary_ready(language);
    zel::dictionary *words = zel::find_dictionary(language);
    if (!was_ready || words == nullptr)
        return false;
    if (scan_.field != &field)
        scan_.begin(field);
    if (!scan_.go_on(*words, end))
        return false;
    zel::tag_places(field.buffer(), field.tag, zel::places_of(scan_.text, scan_.wrong));
    scan_ = {};
    return true;
}

// A slice: one text, or one dictionary, so that the window answers keys in between.
int speller::check_slice()
{
    const gint64 end = g_get_monotonic_time() + spelling_slice;
    looked_ = true;
    for (spelled_field &field : fields_) {
        if (!field.stale)
            continue;
        if (look_at(field, end))
            field.stale = false;
        // Each slice ends here: a key that waits is handled before the next field.
        return 0;
    }
    return zel::slices::finished;
}

void on_change(GtkTextBuffer *, gpointer data)
{
    auto *field = static_cast<spelled_field *>(data);
    // Only where the user types, the caret marks a word that is not finished.
    const bool typed = lang_global.text_lock == 0 && gtk_widget_is_focus(GTK_WIDGET(field->view));
    field->typed_at = typed ? field->caret() : -1;
    field->owner->look_again(*field);
}

// Call when the caret has left the word that was typed: now it is checked.
void leave_word(spelled_field &field)
{
    if (field.typed_at < 0)
        return;
    field.typed_at = -1;
    field.owner->look_again(field);
}

void on_caret(GtkTextBuffer *, GParamSpec *, gpointer data)
{
    auto *field = static_cast<spelled_field *>(data);
    if (field->typed_at != field->caret())
        leave_word(*field);
}

gboolean on_focus_out(GtkWidget *, GdkEventFocus *, gpointer data)
{
    leave_word(*static_cast<spelled_field *>(data));
    return FALSE;
}

// Remembers where the menu will be opened: the toolkit's menu does not tell.
gboolean on_button(GtkWidget *, GdkEventButton *event, gpointer data)
{
    auto *field = static_cast<spelled_field *>(data);
    // A click beside the text is at no word.
    field->menu_at = -1;
    if (event->window != gtk_text_view_get_window(field->view, GTK_TEXT_WINDOW_TEXT))
        return FALSE;
    gint x = 0;
    gint y = 0;
    gtk_text_view_window_to_buffer_coords(field->view, GTK_TEXT_WINDOW_TEXT,
                                          static_cast<gint>(event->x), static_cast<gint>(event->y),
                                          &x, &y);
    GtkTextIter at;
    gtk_text_view_get_iter_at_location(field->view, &at, x, y);
    field->menu_at = gtk_text_iter_get_offset(&at);
    return FALSE;
}

gboolean on_menu_key(GtkWidget *, gpointer data)
{
    // A menu that a key opens is for the word at the caret.
    static_cast<spelled_field *>(data)->menu_at = -1;
    return FALSE;
}

// The view's name decides the colour of the line (toolkit/theme). Set only when it is another one:
// setting it sends "style-set", which calls this again.
void colour_misspelt(GtkWidget *view, GtkStyle *, gpointer)
{
    const char *name = zel::is_dark(view) ? "dark-text" : "light-text";
    if (g_strcmp0(gtk_widget_get_name(view), name) != 0)
        gtk_widget_set_name(view, name);
}

// The text that now stands at the word's place in the field.
std::string text_at(const chosen_word &word)
{
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_iter_at_offset(word.field->buffer(), &start, word.place.start);
    gtk_text_buffer_get_iter_at_offset(word.field->buffer(), &end, word.place.end);
    gchar *text = gtk_text_buffer_get_text(word.field->buffer(), &start, &end, TRUE);
    std::string out(text);
    g_free(text);
    return out;
}

constexpr const char *replacement_key = "zel-replacement";

// Puts the suggestion in as if it was typed, so that it counts as an edit and is one step to undo.
void take_suggestion(GtkWidget *item, gpointer data)
{
    const auto &word = *static_cast<chosen_word *>(data);
    const std::string written = text_at(word);
    const std::vector<::word> now = zel::assist::words_of(written);
    // The text may have changed under the open menu: then nothing is replaced.
    if (now.size() != 1 || now[0].letters != word.letters)
        return;
    const auto *letters =
        static_cast<const char *>(g_object_get_data(G_OBJECT(item), replacement_key));
    // The mnemonic's underscore and the kind of apostrophe stay as they are written.
    const std::string replacement = zel::assist::written_like(written, letters);
    GtkTextBuffer *buffer = word.field->buffer();
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_begin_user_action(buffer);
    gtk_text_buffer_get_iter_at_offset(buffer, &start, word.place.start);
    gtk_text_buffer_get_iter_at_offset(buffer, &end, word.place.end);
    gtk_text_buffer_delete_interactive(buffer, &start, &end, TRUE);
    gtk_text_buffer_insert_interactive(buffer, &start, replacement.c_str(), -1, TRUE);
    gtk_text_buffer_end_user_action(buffer);
}

void add_word(GtkWidget *, gpointer data)
{
    const auto &word = *static_cast<chosen_word *>(data);
    if (zel::dictionary *words = zel::find_dictionary(word.field->owner->language_of(*word.field)))
        words->add(word.letters);
    // The word may stand in any of the fields.
    word.field->owner->look_at_all_again();
}

void switch_checks(GtkCheckMenuItem *item, gpointer data)
{
    ini_set_spelling(ini, gtk_check_menu_item_get_active(item) != 0);
    static_cast<spelled_field *>(data)->owner->look_at_all_again();
}

// Makes an entry that acts on the word, of which it keeps a copy.
GtkWidget *word_entry(const char *text, const chosen_word &word, void (*act)(GtkWidget *, gpointer))
{
    GtkWidget *item = gtk_menu_item_new_with_label(text);
    g_signal_connect_data(
        item, "activate", G_CALLBACK(act), new chosen_word(word),
        [](gpointer data, GClosure *) { delete static_cast<chosen_word *>(data); },
        GConnectFlags{});
    return item;
}

void make_bold(GtkWidget *item)
{
    PangoAttrList *attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
    gtk_label_set_attributes(GTK_LABEL(gtk_bin_get_child(GTK_BIN(item))), attributes);
    pango_attr_list_unref(attributes);
}

// The entries above the menu's own, for a word that the dictionary does not know.
std::vector<GtkWidget *> word_entries(const chosen_word &word, zel::dictionary &words)
{
    std::vector<GtkWidget *> items;
    for (const std::string &one : words.suggestions(word.letters, most_suggestions)) {
        GtkWidget *item = word_entry(one.c_str(), word, take_suggestion);
        g_object_set_data_full(G_OBJECT(item), replacement_key, g_strdup(one.c_str()), g_free);
        make_bold(item);
        items.push_back(item);
    }
    // A line that says so: a menu without suggestions would look as if nothing had been checked.
    if (items.empty()) {
        items.push_back(gtk_menu_item_new_with_label(zel::ui_text("text", "(no suggestions)")));
        gtk_widget_set_sensitive(items[0], FALSE);
    }
    items.push_back(word_entry(zel::ui_text("text", "Add to dictionary"), word, add_word));
    items.push_back(gtk_separator_menu_item_new());
    return items;
}

// The word at the place that the menu is opened for; without letters when there is none.
chosen_word word_for_menu(spelled_field &field)
{
    const std::string text = zel::buffer_text(field.buffer());
    const int offset = field.menu_at < 0 ? field.caret() : field.menu_at;
    const int length = gtk_text_buffer_get_char_count(field.buffer());
    const std::size_t at = bytes_before(text, std::min(offset, length));
    // The caret right behind a word counts as in it.
    for (const word &one : zel::assist::words_of(text))
        if (one.place.at <= at && at <= one.place.at + one.place.length)
            return {&field, zel::places_of(text, {one.place})[0], one.letters};
    return {&field, {0, 0}, ""};
}

// The place of the menu's first line: the switch stands above it, behind the entries of cutting and
// pasting.
int first_line_of(GtkMenu *menu)
{
    GList *children = gtk_container_get_children(GTK_CONTAINER(menu));
    int place = 0;
    for (const GList *node = children; node != nullptr; node = node->next, ++place)
        if (GTK_IS_SEPARATOR_MENU_ITEM(node->data))
            break;
    g_list_free(children);
    return place;
}

void fill_menu(GtkTextView *, GtkMenu *menu, gpointer data)
{
    auto &field = *static_cast<spelled_field *>(data);
    const std::string language = field.owner->language_of(field);
    if (language.empty() || !zel::is_dictionary_there(language))
        return;
    const bool on = ini_spelling(ini);
    zel::dictionary *words = on ? zel::find_dictionary(language) : nullptr;
    // Listed, and cannot be loaded: no switch for what does not work.
    if (on && words == nullptr)
        return;
    GtkWidget *toggle = gtk_check_menu_item_new_with_label(zel::ui_text("text", "Check spelling"));
    gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(toggle), on);
    g_signal_connect(toggle, "toggled", G_CALLBACK(switch_checks), &field);
    gtk_menu_shell_insert(GTK_MENU_SHELL(menu), toggle, first_line_of(menu));
    gtk_widget_show(toggle);

    const chosen_word word = word_for_menu(field);
    if (!on || word.letters.empty() || words->is_right(word.letters))
        return;
    int place = 0;
    for (GtkWidget *item : word_entries(word, *words)) {
        gtk_menu_shell_insert(GTK_MENU_SHELL(menu), item, place++);
        gtk_widget_show(item);
    }
}

void speller::watch(spelled_field &field, int number)
{
    field.owner = this;
    field.number = number;
    field.view = GTK_TEXT_VIEW(text_->*fields[number].view);
    field.tag = gtk_text_buffer_create_tag(field.buffer(), tag_name, "underline",
                                           PANGO_UNDERLINE_ERROR, nullptr);
    g_signal_connect(field.buffer(), "changed", G_CALLBACK(on_change), &field);
    g_signal_connect(field.buffer(), "notify::cursor-position", G_CALLBACK(on_caret), &field);
    g_signal_connect(field.view, "focus-out-event", G_CALLBACK(on_focus_out), &field);
    g_signal_connect(field.view, "button-press-event", G_CALLBACK(on_button), &field);
    g_signal_connect(field.view, "popup-menu", G_CALLBACK(on_menu_key), &field);
    g_signal_connect(field.view, "style-set", G_CALLBACK(colour_misspelt), &field);
    // After the handlers of others, so that the words stand on top of the menu.
    g_signal_connect_after(field.view, "populate-popup", G_CALLBACK(fill_menu), &field);
}

} // namespace

namespace zel {

void watch_spelling(Zeltext *text)
{
    if (!has_dictionaries())
        return;
    g_signal_connect(text, "destroy", G_CALLBACK(+[](GtkWidget *, gpointer data) {
                         delete static_cast<speller *>(data);
                     }),
                     new speller(text));
}

} // namespace zel
