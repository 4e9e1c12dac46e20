#include "support/misc-error.h"

#include "support/log-print.h"

namespace {

int report(const char *kind, const char *file, int line, const char *text)
{
    std::fprintf(stderr, "%s: %s:%d %s\n", kind, file, line, text);
    LogPrint(1, "%s: %s:%d %s\n", kind, file, line, text);
    return 0;
}

} // namespace

int _zel_fatal(const char *file, int line, const char *text)
{
    // A fatal error does not end the process here: the caller decides that.
    return report("FATAL", file, line, text);
}

int _zel_error(const char *file, int line, const char *text)
{
    return report("ERROR", file, line, text);
}
