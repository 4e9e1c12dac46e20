#pragma once

// Looks at a text that nobody has seen before it is put into a source.

#include <array>
#include <optional>
#include <string>

#include "kit/support/entry-index.h"
#include "lint/lint.h"
#include "source/model.h"

namespace zel::kit {

// For one language of the source, whose texts and remarks the indexes find. What it costs does not
// depend on how many other languages there are.
class text_judge {
public:
    text_judge(const LangSource *source, const entry_index &texts, const entry_index &remarks,
               const char *language);
    text_judge(const text_judge &) = delete;
    text_judge &operator=(const text_judge &) = delete;

    const char *language() const { return language_; }

    // What would break the application, as the rules format, symbol, markup and plural of lint say
    // it of the text, with the rule's name; empty when there is nothing.
    std::string fault_of(const edit_t *group, const item_t *item, const std::string &text);

private:
    using pair = std::array<GList, 2>;
    static GList *list_of(pair &nodes, void *first, void *second);

    const entry_index &texts_;
    const entry_index &remarks_;
    const char *language_;
    LangSource two_; // of the source only the default language and this one
    pair languages_{};
    std::optional<lint::linter> linter_;
};

} // namespace zel::kit
