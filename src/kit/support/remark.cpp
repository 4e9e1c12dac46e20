#include "kit/support/remark.h"

#include "source/entry.h"

#include <string>

namespace zel::kit {

void add_remark(lang_entry_t *comment, std::string_view lines)
{
    std::string text = text_of(comment);
    if (lines.empty() || text.find(lines) != std::string::npos)
        return;
    if (!text.empty() && text.back() != '\n')
        text += '\n';
    set_text(comment, text.append(lines));
}

void add_remark(entry_index &comments, item_t *item, const char *language, std::string_view lines)
{
    lang_entry_t *comment = comments.find(item, language);
    add_remark(comment == nullptr ? comments.append(item, language) : comment, lines);
}

} // namespace zel::kit
