#pragma once

// The rules that compare items with each other. It is told every group and item of a source in
// their order and knows what came before.

#include <cstdint>
#include <memory>

#include "lint/item-case.h"

namespace zel::lint {

class across {
public:
    explicit across(std::span<const language> languages);
    ~across();
    across(const across &) = delete;
    across &operator=(const across &) = delete;

    // Definitions of languages; what is found is about the definition.
    static void judge_languages(const LangSource *source, item_case::sink &found);

    void begin_group(const edit_t *group);

    void judge_duplicate(const item_case &at);
    void judge_consistency(const item_case &at);
    void judge_collision(const item_case &at);

private:
    struct state;
    std::unique_ptr<state> state_;
};

} // namespace zel::lint
