// A recovery file that something happened to: it is offered or not; what is offered is of its
// source, and what can be read of it can be kept in such a file again.

#include "support.h"

#include "recovery/recovery-file.h"
#include "source/lang-read.h"

namespace {

constexpr const char *source = "/s/a.lang-src"; // that of the seed

void keep_again(const zel::recovery_file &file, const LangSource *state)
{
    zel::recovery_writer writer;
    writer.begin(file.path, source, file.source, file.written, state, nullptr);
    fuzz::require(writer.finish(true) == 0, "it is written");
    const auto again = zel::find_recovery_files(".", source);
    fuzz::require(again.size() == 1, "what was kept is offered");
    fuzz::require(again[0].source.same_text(file.source) && again[0].written == file.written,
                  "and says the same of its source");
    fuzz::require(zel::read_source(again[0].path.c_str(), {1}).source != nullptr, "and reads");
}

} // namespace

extern "C" int FUZZ_TARGET(recovery)(const std::uint8_t *data, std::size_t size)
{
    static const std::string path = zel::recovery_path(".", source, 1);
    fuzz::as_file(path.c_str(), fuzz::bytes_of(data, size));
    const auto found = zel::find_recovery_files(".", source);
    fuzz::require(found.size() <= 1, "one file is offered once");
    if (found.empty())
        return 0;
    fuzz::require(found[0].path == path && found[0].source.is_there, "it is that file");
    const zel::read_answer state = zel::read_source(path.c_str(), {1});
    if (state.source != nullptr)
        keep_again(found[0], state.source.get());
    return 0;
}
