#pragma once

// What the report's page shows, as the JSON that its script reads.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zel::kit {

using report_sink = std::function<void(std::string_view)>;

// Writes the data piece by piece. It may stand inside a script element: it holds no "<". A source
// that cannot be read is told on standard error and left out.
class report_data {
public:
    report_data(report_sink out, bool screenshots);

    // Begins with the date that is shown, takes each source, and ends.
    void begin(std::string_view made);
    bool add(const std::string &path); // false: it was left out
    void end();

private:
    report_sink out_;
    bool screenshots_;
    std::size_t files_ = 0;
};

} // namespace zel::kit
