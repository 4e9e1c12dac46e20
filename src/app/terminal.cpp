#include "app/terminal.h"

#include "support/file-call.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

void append_escape(std::string &out, unsigned char byte)
{
    std::array<char, 8> text;
    std::snprintf(text.data(), text.size(), "\\x%02x", byte);
    out += text.data();
}

// Escapes control characters: those of ASCII, and U+0080 to U+009F, which some terminals obey, too.
// Otherwise a hostile source or path could move the cursor or rename the window.
std::string escaped(std::string_view text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        if (byte == 0xc2 && next >= 0x80 && next < 0xa0) {
            append_escape(out, byte);
            append_escape(out, next);
            ++i;
        } else if ((byte < ' ' && byte != '\n' && byte != '\t') || byte == 0x7f) {
            append_escape(out, byte);
        } else {
            out += text[i];
        }
    }
    return out;
}

ssize_t write_escaped(void *cookie, const char *data, std::size_t size)
{
    const int file = static_cast<int>(reinterpret_cast<std::intptr_t>(cookie));
    // A cookie's writer reports an error as 0 bytes, never as a negative number.
    return zel::write_all(file, escaped({data, size})) == 0 ? static_cast<ssize_t>(size) : 0;
}

void escape_on_terminal(std::FILE *&stream, int file, int buffering)
{
    // Files and pipes get every byte as it is: programs read them.
    if (isatty(file) == 0)
        return;
    cookie_io_functions_t calls{};
    calls.write = write_escaped;
    void *cookie = reinterpret_cast<void *>(static_cast<std::intptr_t>(file));
    if (std::FILE *escaping = fopencookie(cookie, "w", calls)) {
        std::setvbuf(escaping, nullptr, buffering, 4096);
        stream = escaping;
    }
}

} // namespace

namespace zel {

void open_missing_streams(missing_output what)
{
    const int output = what == missing_output::fails ? O_RDONLY : O_WRONLY;
    // Otherwise a file that is opened later would get the number of a missing stream, and messages
    // would be written into it. open takes the lowest free number, which is this stream's.
    for (int file = 0; file <= 2; ++file)
        if (fcntl(file, F_GETFD) < 0)
            static_cast<void>(open("/dev/null", file == 0 ? O_RDONLY : output));
}

void escape_on_terminals()
{
    escape_on_terminal(stdout, STDOUT_FILENO, _IOLBF);
    // Line by line too: a printed line is one write, and what is not ended is flushed at the end.
    escape_on_terminal(stderr, STDERR_FILENO, _IOLBF);
}

} // namespace zel
