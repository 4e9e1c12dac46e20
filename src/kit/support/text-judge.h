#pragma once

// Looks at a text that nobody has seen before it is put into a source.

#include <string>
#include <string_view>

#include "lint/lint.h"
#include "source/model.h"

namespace zel::kit {

class text_judge {
public:
    explicit text_judge(const LangSource *source);

    // What would break the application, as the rules format, symbol, markup and plural of lint say
    // it of a text in that language, with the rule's name; empty when there is nothing.
    std::string fault_of(const edit_t *group, item_t *item, const char *language,
                         std::string_view text);

private:
    lint::linter linter_;
};

} // namespace zel::kit
