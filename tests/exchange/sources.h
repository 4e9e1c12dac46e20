#pragma once

// Sources whose names, texts and comments hold everything that a format could trip over, and calls
// that write and read a format in memory.

#include "exchange/formats.h"
#include "exchange/import.h"
#include "rows.h"
#include "source/lang-read.h"
#include "source/quote.h"

#include <random>
#include <string>
#include <vector>

namespace zel_test {

// The table of what comes between, before and behind other things in an awkward text.
inline const std::vector<std::string> &awkward_pieces()
{
    static const std::vector<std::string> pieces = [] {
        std::vector<std::string> all;
        for (const row &row : rows_of("exchange/pieces.rows"))
            all.insert(all.end(), row.texts.begin(), row.texts.end());
        return all;
    }();
    return pieces;
}

class awkward_source {
public:
    awkward_source(unsigned seed, bool any_bytes) : random_(seed), any_bytes_(any_bytes) {}

    std::string text(std::size_t most)
    {
        std::string out;
        for (std::size_t count = random_() % (most + 1); count > 0; --count) {
            if (any_bytes_ && random_() % 8 == 0)
                out += static_cast<char>(128 + random_() % 128);
            out += awkward_pieces()[random_() % awkward_pieces().size()];
        }
        return out;
    }

    // The source file. Every item is named anew, so that none is left out.
    std::string make(std::size_t items)
    {
        std::string out = std::string("define format ") + (any_bytes_ ? "ascii" : "utf8") +
                          "\napp \"x\"\ndefault lang \"english\"\n";
        for (const char *name : {"english", "german", "a/b", "Deutsch (alt)", "=x, \\\"y\\\""})
            out += std::string("define file \"f\" lang \"") + name + "\" 200 200 1\n";
        for (std::size_t at = 0; at < items; ++at) {
            if (at % 5 == 0)
                out += (at == 0 ? "GROUP " : "}\nGROUP ") + quoted(text(4) + std::to_string(at)) +
                       "{\n";
            append_item(out, at == 0 ? "" : text(4) + std::to_string(at));
        }
        return out + "}\n";
    }

private:
    static std::string quoted(const std::string &text)
    {
        std::string out;
        zel::append_quoted(out, 0, text.c_str());
        return out;
    }

    void append_entries(std::string &out, const char *word)
    {
        for (const char *name : {"english", "german", "a/b", "Deutsch (alt)", "=x, \\\"y\\\""}) {
            if (random_() % 3 == 0)
                continue;
            out += std::string(word) + " \"" + name + "\" {";
            for (std::size_t lines = random_() % 4; lines > 0; --lines)
                out += quoted(text(3));
            out += " }\n";
        }
    }

    void append_item(std::string &out, const std::string &name)
    {
        out += "ITEM " + quoted(name) + " { DESCRIPTION " + quoted(text(3)) + " READY " +
               std::to_string(random_() % 2) + " CTIME 1700000000 USED YES { " +
               quoted("00012:" + text(3)) + " }\n";
        append_entries(out, "LANG");
        append_entries(out, "COMMENT");
        out += "}\n";
    }

    std::mt19937 random_;
    bool any_bytes_;
};

inline source_guard source_of(const std::string &text)
{
    const temp_dir dir;
    write_file(dir / "in.lang-src", text);
    source_guard source =
        std::move(zel::read_source((dir / "in.lang-src").c_str(), {1700000000, {}}).source);
    require(source != nullptr, "the test's own source");
    return source;
}

// The files of an export.
inline std::vector<std::string> written(const zel::exchange::export_request &request,
                                        const char *format)
{
    zel::exchange::exporter from(request);
    const zel::exchange::format *row = zel::exchange::find_format(format);
    const std::size_t count =
        row->writes == zel::exchange::files::one ? 1 : from.languages().size();
    std::vector<std::string> texts(count);
    std::vector<zel::exchange::outgoing_file> files;
    for (std::string &text : texts)
        files.push_back({[&text](std::string_view piece) { text += piece; }, {}});
    row->write(from, files);
    return texts;
}

// What a format finds in bytes, a line a text, and the fault.
struct found_texts {
    std::vector<zel::exchange::text_unit> units;
    std::vector<zel::exchange::said_language> languages;
    zel::exchange::fault wrong;
};

inline found_texts found(const char *format, const std::string &bytes,
                         zel::exchange::encoding good = zel::exchange::encoding::utf8)
{
    found_texts out;
    out.wrong = zel::exchange::find_format(format)->read(
        bytes, good, [&](const zel::exchange::file_texts &file, zel::exchange::text_unit &unit) {
            out.languages = file.languages;
            out.units.push_back(unit);
        });
    return out;
}

// Bytes with a few of them changed, dropped, doubled or moved.
inline std::string mutated(std::string bytes, std::mt19937 &random)
{
    for (std::size_t times = 1 + random() % 3; times > 0 && !bytes.empty(); --times) {
        const std::size_t at = random() % bytes.size();
        const std::size_t length = std::min<std::size_t>(random() % 20, bytes.size() - at);
        switch (random() % 4) {
        case 0:
            bytes[at] = static_cast<char>(random());
            break;
        case 1:
            bytes.erase(at, length);
            break;
        case 2:
            bytes.insert(at, bytes.substr(at, length));
            break;
        default:
            bytes.insert(random() % bytes.size(), bytes.substr(at, length));
            break;
        }
    }
    return bytes;
}

} // namespace zel_test
