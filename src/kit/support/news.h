#pragma once

// What translators have to know of two versions of a source: which texts are new, which say
// something else, which are gone, and what each language lacks of them. Items that the application
// does not ask for count as not there.

#include <string>
#include <vector>

#include "source/model.h"

namespace zel::kit {

struct news_item {
    const edit_t *group;
    const item_t *item; // of the new source; of the old one when it is gone
    const edit_t *was_group = nullptr;
    const item_t *was = nullptr; // of a changed one, in the old source
    std::string before;          // its text there, that translations were made from
    std::string text;
    std::vector<const char *> missing;   // languages without a text
    std::vector<const char *> as_before; // languages whose text is that from before the change
};

struct language_news {
    const char *name;
    std::size_t missing = 0;
    std::size_t as_before = 0;
    std::size_t words = 0; // of the texts to be translated
};

struct news {
    std::string since;
    std::vector<news_item> added, changed, gone;
    std::size_t words = 0; // of what is new or changed
    std::vector<language_news> languages;
};

// Languages are those that are named, else all but the default one, in the order of the new source.
news find_news(const LangSource *before, const LangSource *after,
               const std::vector<std::string> &languages);

// The page of a mail of 72 columns, an object for programs, a page for a reader with colours.
std::string news_text(const news &all);
std::string news_json(const news &all);
std::string news_html(const news &all);

} // namespace zel::kit
