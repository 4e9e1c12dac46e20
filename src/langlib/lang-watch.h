#pragma once

// The directory that the process-wide texts came from, and the watch that tells when it has others.
// For one thread at a time; what applications call is in lang-locale.h.

#include <string_view>

namespace zel {

// Where the texts came from.
struct texts_home {
    char *directory; // null: from no directory
    char *languages; // null: those of the environment
};
const texts_home &loaded_home();

// Keeps copies of both for the next reload; without memory, and with null, there is none.
void keep_home(const char *directory, const char *languages);

// Watches a directory and the folders in it, in place of what was watched: a descriptor that stays
// the watch's own, or -1 where the system gives none.
int news_begin(const char *directory);

// Takes what the system has told since the last call. True when a compiled file has come or
// changed, and always without a watch.
bool news_came();

// Ends the watch and forgets the home.
void news_end();

} // namespace zel
