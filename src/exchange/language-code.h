#pragma once

// The codes of languages. Sources name languages in words, "german"; catalogs and XML by codes.

#include <string>
#include <string_view>

namespace zel::exchange {

// The code for a language's name, "de" or "pt_BR"; a name that looks like a code is one. Empty when
// none is known.
std::string code_of(std::string_view name);

// The name for a code, "german"; tries the language alone when the country is not known. Empty when
// none is known.
std::string_view name_of_code(std::string_view code);

// Whether a file's own code says at least what its header says, so that it is the one to go by: a
// longer one, "sr@latin" for "sr", or the same with another separator.
bool is_as_close(std::string_view own, std::string_view said);

// The code that a file's name says: of "app_pt_BR.ts", as of .json, .ini and .rc, what stands
// behind the program's name, of any other kind of file the whole.
std::string code_of_file(std::string_view path);

// Codes as XML has them: "pt-BR", "sr-Latn"; an empty one is "und"; and back.
std::string xml_code(std::string_view code);
std::string code_of_xml(std::string_view code);

} // namespace zel::exchange
