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

void add_remark(item_t *item, const char *language, std::string_view lines)
{
    lang_entry_t *comment = find_entry(item->comments, language);
    if (comment == nullptr)
        put_text(item->comments, language, lines);
    else
        add_remark(comment, lines);
}

} // namespace zel::kit
