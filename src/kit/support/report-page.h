#pragma once

// The page of the report without its texts. The files of src/kit/report/ are put into the program
// when it is built.

#include <string_view>

namespace zel::kit {

struct report_parts {
    std::string_view
        html; // with @POLICY@, @GENERATOR@, @STYLE@, @DATA@ and @SCRIPT@ to be filled in
    std::string_view css;
    std::string_view js;
};

extern const report_parts report_page;

} // namespace zel::kit
