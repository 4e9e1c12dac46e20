#pragma once

// Judges the texts of a source. It prints nothing and changes nothing; what it finds goes to a
// listener, for a whole source in the order of its file. One item costs microseconds, so that an
// editor may ask about each as it is typed.
//
// A comment of an item that holds "lint: RULE off" switches that rule off for the item's text in
// the comment's language; in the default language it does so for what concerns the item as a whole.

#include <memory>
#include <string>
#include <vector>

#include "lint/finding.h"
#include "lint/glossary.h"

namespace zel::lint {

struct choice {
    rule_set rules = rule_set::all();
    std::vector<std::string> languages; // findings about others are left out; empty: about none are
    text_width ruler = nullptr;         // for limits in pixels; null: nobody can tell
    std::shared_ptr<const glossary> terms{}; // that texts are held to; null: none
};

// Languages are those that the source defines when it is made.
class linter {
public:
    linter(const LangSource *source, choice wanted);
    ~linter();
    linter(const linter &) = delete;
    linter &operator=(const linter &) = delete;

    // Everything, in the order: language definitions, then each group with its items and their
    // entries, as they follow each other in their lists. Each item is told before it is judged.
    void check(const listener &to, const std::function<void(const item_t *)> &next_item = nullptr);

    // The rules about an item and its texts alone; those that compare items are left out.
    void check_item(const edit_t *group, const item_t *item, const listener &to);

    // How many texts had a limit in pixels that nobody could hold them to.
    std::size_t unmeasured() const;

private:
    class work;
    std::unique_ptr<work> work_;
};

// Whether the source defines that language.
bool defines_language(const LangSource *source, const std::string &name);

} // namespace zel::lint
