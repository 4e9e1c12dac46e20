#pragma once

// Quoted strings as both file formats have them, and the text under construction they are put into.

#include <cstdio>
#include <string>
#include <string_view>

// Writes indent blanks, two blanks and the string, quoted and escaped (null as empty). Returns 0.
int misc_write_lang_string(std::FILE *stream, unsigned indent, const char *text);

namespace zel {

// The quoting rules of both file formats. append_escaped adds what stands between the quotes,
// append_quoted what misc_write_lang_string writes, append_comment a text that may stand inside a
// block comment of the file: it cannot end the comment.
void append_escaped(std::string &out, const char *text);
void append_quoted(std::string &out, unsigned indent, const char *text);
void append_comment(std::string &out, std::string_view text);

// Formats like printf and appends the result.
void append_format(std::string &out, const char *format, ...) __attribute__((format(printf, 2, 3)));

// Hands the collected text to the stream.
void flush_text(std::string &out, std::FILE *stream);

} // namespace zel
