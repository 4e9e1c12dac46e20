#include "exchange.h"

#include "exchange/import.h"
#include "exchange/keyed-source.h"
#include "source/lang-read.h"
#include "support.h"

namespace fuzz {

namespace exchange = zel::exchange;

void read_and_import(const char *format, std::string_view bytes)
{
    const exchange::format *row = exchange::find_format(format);
    for (const exchange::encoding good : {exchange::encoding::utf8, exchange::encoding::any}) {
        std::size_t units = 0;
        row->read(bytes, good, [&](const exchange::file_texts &file, exchange::text_unit &unit) {
            require(file.languages.empty() || unit.language < file.languages.size(),
                    "a text's language is one of the file's");
            require(unit.line <= bytes.size() + 1, "a text's line is one of the file's");
            ++units;
        });
        require(units <= bytes.size(), "no more texts than bytes");
    }
    source_guard source = small_source();
    exchange::import_request request;
    request.comments = request.guesses = true;
    request.hear = [](const exchange::import_event &event) {
        require(event.unit != nullptr, "an event is of a text");
    };
    if (exchange::importer(source.get(), request).take(*row, "german.x", bytes))
        return;
    written(source.get());
    require(zel::read_source("written", {1}).source != nullptr, "what was taken in reads");
}

void read_keys(const char *format, std::string_view bytes)
{
    const exchange::keyed_reader read = exchange::find_format(format)->keyed;
    exchange::keyed_file file;
    if (read(bytes, file))
        return;
    std::size_t texts = 0;
    for (const exchange::keyed_part &part : file.parts)
        texts += part.texts.size();
    require(texts <= bytes.size(), "no more texts than bytes");
    exchange::new_source made(exchange::new_request{});
    exchange::keyed_source keys(made, "english");
    for (const char *path : {"de/x", "en/x", "en/y"})
        if (keys.take(read, path, bytes))
            return;
    std::string path;
    if (keys.finish(path))
        return;
    written(made.source());
    require(zel::read_source("written", {1}).source != nullptr, "what came over reads");
}

} // namespace fuzz
