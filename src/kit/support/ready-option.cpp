#include "kit/support/ready-option.h"

#include "kit/support/options.h"

namespace zel::kit {

std::optional<exchange::ready_mark> choose_ready(const word &self, const exchange::format &row,
                                                 const std::string &value)
{
    if (value.empty())
        return exchange::ready_mark::as_is;
    const int at = choose(self, "ready", value, {"asis", "all", "none"});
    if (at >= 0 && !row.states)
        wrong_use(self, "--ready is for --format ts, xliff and xliff2");
    if (at < 0 || !row.states)
        return std::nullopt;
    return static_cast<exchange::ready_mark>(at);
}

} // namespace zel::kit
