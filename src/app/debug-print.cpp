#include "app/debug-print.h"

#include "support/log-print.h"
#include "support/text.h"

#include <cstdlib>
#include <string_view>

namespace zel {

void debug_print_from_environment()
{
    const std::string_view wanted = or_empty(std::getenv("LANG_DEBUG"));
    if (!wanted.empty() && wanted != "0")
        dbg_printf_on(1);
}

} // namespace zel
