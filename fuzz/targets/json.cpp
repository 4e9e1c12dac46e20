// A whole source as JSON: what was read and written reads the same.

#include "support.h"

#include "exchange/formats.h"
#include "exchange/json.h"
#include "source/lang-read.h"

namespace {

using namespace zel::exchange;

std::string json_of(LangSource *source)
{
    export_request request;
    request.source = source;
    request.unused = request.comments = true;
    exporter from(request);
    std::string text;
    std::vector<outgoing_file> files;
    files.push_back({[&text](std::string_view piece) { text += piece; }, {}});
    write_json(from, files);
    return text;
}

} // namespace

extern "C" int FUZZ_TARGET(json)(const std::uint8_t *data, std::size_t size)
{
    fault wrong;
    const source_guard source = read_json(fuzz::bytes_of(data, size), 1, wrong);
    fuzz::require((source == nullptr) == static_cast<bool>(wrong), "a fault where there is none");
    if (source == nullptr)
        return 0;
    const std::string once = json_of(source.get());
    const source_guard again = read_json(once, 1, wrong);
    fuzz::require(again != nullptr, "what was written reads");
    fuzz::require(json_of(again.get()) == once, "and is written the same");
    fuzz::as_file("in", "");
    fuzz::written(source.get());
    fuzz::require(zel::read_source("written", {1}).source != nullptr, "as a source, too");
    return 0;
}
