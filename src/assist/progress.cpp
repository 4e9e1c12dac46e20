#include "assist/progress.h"

namespace zel::assist {

void progress::reset(std::size_t items)
{
    states_.assign(items, {});
    known_ = 0;
    languages_ = {};
}

void progress::add(const item_state &state, int sign)
{
    for (std::size_t i = 0; i < shown_languages; ++i) {
        const std::size_t translated = state.lacks[i] ? 0 : 1;
        if (sign > 0) {
            languages_[i].translated += translated;
            languages_[i].findings += state.findings[i];
            languages_[i].questions += state.asks[i] ? 1U : 0U;
        } else {
            languages_[i].translated -= translated;
            languages_[i].findings -= state.findings[i];
            languages_[i].questions -= state.asks[i] ? 1U : 0U;
        }
    }
}

void progress::set(std::size_t item, const item_state &state)
{
    entry &place = states_[item];
    // The sums are kept by difference: adding up all items at every key would be slow in a large
    // source.
    if (place.known)
        add(place.state, -1);
    else
        ++known_;
    place = {state, true};
    add(state, 1);
}

std::size_t progress::first_unknown(std::size_t from) const
{
    while (from < states_.size() && states_[from].known)
        ++from;
    return from;
}

std::string grouped(std::size_t number)
{
    std::string out = std::to_string(number);
    for (std::size_t digits = 3; digits < out.size(); digits += 4)
        out.insert(out.size() - digits, ",");
    return out;
}

} // namespace zel::assist
