#include "source/quote.h"

#include "lex/lex-misc.h"

#include <array>
#include <cstdarg>
#include <cstring>

namespace zel {

void append_escaped(std::string &out, const char *text)
{
    if (text == nullptr)
        return;
    // Plain runs are appended as a whole: most texts have hardly a byte that must be escaped.
    for (;;) {
        const std::size_t plain = std::strcspn(text, escaped_bytes);
        out.append(text, plain);
        text += plain;
        if (*text == '\0')
            return;
        out += '\\';
        out += escape_letter(static_cast<unsigned char>(*text++));
    }
}

void append_quoted(std::string &out, unsigned indent, const char *text)
{
    out.append(indent + 2U, ' ');
    out += '"';
    append_escaped(out, text);
    out += '"';
}

void append_comment(std::string &out, std::string_view text)
{
    for (std::size_t end = text.find("*/"); end != std::string_view::npos; end = text.find("*/")) {
        // "*\/" ends no comment; read_comment in last-line.cpp turns it back.
        out.append(text.substr(0, end + 1)).append("\\/");
        text.remove_prefix(end + 2);
    }
    out.append(text);
}

void append_format(std::string &out, const char *format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::va_list again;
    va_copy(again, args);
    // Nearly every text fits here; a longer one is formatted again, straight into its place.
    std::array<char, 256> area;
    const int length = std::vsnprintf(area.data(), area.size(), format, args);
    va_end(args);
    if (length > 0 && static_cast<std::size_t>(length) < area.size()) {
        out.append(area.data(), static_cast<std::size_t>(length));
    } else if (length > 0) {
        // vsnprintf needs room for its closing NUL, which is removed afterwards.
        const std::size_t before = out.size();
        out.resize(before + static_cast<std::size_t>(length) + 1);
        std::vsnprintf(out.data() + before, static_cast<std::size_t>(length) + 1, format, again);
        out.pop_back();
    }
    va_end(again);
}

void flush_text(std::string &out, std::FILE *stream)
{
    std::fwrite(out.data(), 1, out.size(), stream);
    out.clear();
}

} // namespace zel

int misc_write_lang_string(std::FILE *stream, unsigned indent, const char *text)
{
    std::string quoted;
    zel::append_quoted(quoted, indent, text);
    zel::flush_text(quoted, stream);
    return 0;
}
