#pragma once

// Differences and conflicts as they are printed.

#include <string>

#include "merge/compare.h"

namespace zel::kit {

// Appends what a difference is about: "menu:_Save german", "menu:_Save comment german",
// "menu:_Save ready", "menu:", "language german", "source app". Names are those of a difference.
void append_subject(std::string &out, const char *group, const char *item, const char *language,
                    const char *field);

// Makes the text of a value: a text whole and in quotes, anything else as it is.
std::string value_text(const field_value &value);

// "+ menu:_Open", "~ menu:_Save german: \"Sichern\" -> \"Speichern\"", with the line's end.
void append_text_line(std::string &out, const difference &one);

// One object: change, group, item, language, field, old and new; a part that does
// not apply is null, a number stays one, everything else is a string.
void append_json_object(std::string &out, const difference &one);

} // namespace zel::kit
