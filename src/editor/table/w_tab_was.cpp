#include "editor/table/w_tab_was.h"

#include "editor/toolkit/text-runs.h"
#include "editor/toolkit/ui-text.h"
#include "merge/word-difference.h"

#include <algorithm>

namespace zel {

was_line was_line_of(const std::string &before, const std::string &now)
{
    was_line line;
    line.text = std::string(ui_text("tab-edit", "was")) + ": ";
    for (const word_run &run : compare_pieces(before, now)) {
        std::string shown = utf8_shown(run.text.c_str());
        std::replace_if(
            shown.begin(), shown.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
        shown = shown_in_runs(shown);
        if (run.how == word_change::none) {
            line.text += shown;
            continue;
        }
        // The signs tell it where the letters' look is not seen: read aloud, or copied.
        const bool is_added = run.how == word_change::added;
        line.text += is_added ? "[+" : "[-";
        line.parts.push_back({line.text.size(), line.text.size() + shown.size(), is_added});
        line.text.append(shown).append(is_added ? "+]" : "-]");
    }
    return line;
}

void mark_was_line(PangoAttrList *list, const was_line &line, std::size_t at)
{
    for (const was_line::part &part : line.parts) {
        PangoAttribute *mark = part.is_added ? pango_attr_weight_new(PANGO_WEIGHT_BOLD)
                                             : pango_attr_strikethrough_new(TRUE);
        mark->start_index = static_cast<guint>(at + part.from);
        mark->end_index = static_cast<guint>(at + part.to);
        pango_attr_list_insert(list, mark);
    }
}

} // namespace zel
