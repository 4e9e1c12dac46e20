#pragma once

// What the targets share. A target is a function over any bytes: it returns for all of them, and
// ends the process where something does not hold. It is built twice, with the fuzzer that looks
// for such bytes (./dev fuzz) and with a main that replays what is in the tree (an ordinary test).

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "source/model.h"

// The name of a target's function, one run of which returns 0: the one that a fuzzer asks for, or
// one of many that are replayed.
#ifdef LANG_FUZZER
#define FUZZ_TARGET(name) LLVMFuzzerTestOneInput
#else
#define FUZZ_TARGET(name) fuzz_##name
#endif

namespace fuzz {

inline std::string_view bytes_of(const std::uint8_t *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), size};
}

// Ends the process, as a fault that was found, unless the condition holds.
void require(bool holds, const char *what);

// Makes the bytes a file of that name in a folder of the process's own, which is the current one
// from the first call on and is removed at the end. Returns the name.
const char *as_file(const char *name, std::string_view bytes);

// The file's bytes; empty where it is not there.
std::string file_text(const char *name);

// Removes all that lies in the folder.
void empty_folder();

// What stands between lines "====": exactly count parts, the last ones empty where there are fewer.
std::vector<std::string> parts(std::string_view bytes, std::size_t count);

// A small source with two languages, for what is taken into one.
source_guard small_source();

// The source as it is written, at a fixed time.
std::string written(LangSource *source);

} // namespace fuzz
