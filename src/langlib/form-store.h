#pragma once

// Plural forms that were handed to the application: each is kept once, as a string of its own,
// since in its text another form follows it.

#include <string_view>

namespace zel {

// The form as a string that lives until they are dropped; null without memory. From any thread.
const char *kept_form(std::string_view form);

// Releases all of them; for a time when no other thread is here.
void drop_forms();

} // namespace zel
