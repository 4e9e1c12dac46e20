#pragma once

// Turns the calls with which an application has asked other libraries for its texts into requests
// of this one: the text and the group stand in the code, as a language source has them.
//
//     _("%s is full")                    lang_text("cup", "%s is full")
//     _("100 % sure")                    lang_get_string("cup", "100 % sure"): no format
//     ngettext("%d cup", "%d cups", n)   lang_count("cup", "%d cup|%d cups", n)
//     pgettext("menu", "Open")           lang_text("menu", "Open")
//     N_("Pour")                         lang_dummy("the description", "cup", "Pour")
//     tr("Open"), in a class Window      QString::fromUtf8(lang_get_string("Window", "Open"))
//     tr("Open: ")                       QString(... + QLatin1String(" ")): items keep no such end
//     tr("%n cups", "", n)               a lambda that asks for the form and puts the number in

#include <string>
#include <unordered_map>
#include <vector>

#include "checker/foreign-call.h"
#include "source/item-index.h"
#include "source/read-message.h"

namespace zel::kit {

struct adopt_how {
    call_dialect from = call_dialect::gettext;
    // Of texts without a context: empty for the one in which the source has the text.
    std::string group;
    bool by_file = false; // the one that is named after the file
};

// A call that stays, or one that asks for what the source lacks.
struct adopt_note {
    place at;
    std::string text;
    bool is_lacking = false;
};

struct adopted_code {
    std::string text;
    std::size_t turned = 0;     // calls
    std::size_t added_line = 0; // of the new text, from 1, which the old one lacks; 0: none
    std::vector<adopt_note> notes;
};

class adopter {
public:
    // The source lives longer.
    adopter(LangSource *source, adopt_how how);

    // The bytes of a file, with every call turned that can be.
    adopted_code take(const std::string &path, std::string_view bytes);

private:
    friend class code_adopter;
    struct held_item {
        const edit_t *group;
        const item_t *item;
    };

    adopt_how how_;
    item_index items_;
    std::unordered_map<std::string_view, std::vector<held_item>> by_name_;
    const char *only_group_ = nullptr; // of a source that has one
};

} // namespace zel::kit
