#include "kit/support/difference.h"
#include "kit/support/options.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"

#include <cstdio>

namespace zel::kit {

namespace {

// Prints differences as they come, in large pieces.
class difference_output {
public:
    explicit difference_output(bool json) : json_(json) {}

    void add(const difference &one)
    {
        if (json_) {
            out_ += any_ ? ",\n  " : "[\n  ";
            append_json_object(out_, one);
        } else {
            append_text_line(out_, one);
        }
        any_ = true;
        constexpr std::size_t worth_a_write = 64 * 1024;
        if (out_.size() >= worth_a_write)
            flush();
    }

    // Ends the output. Returns whether there was any difference.
    bool finish()
    {
        if (json_)
            out_ += any_ ? "\n]\n" : "[]\n";
        flush();
        return any_;
    }

private:
    void flush()
    {
        std::fwrite(out_.data(), 1, out_.size(), stdout);
        out_.clear();
    }

    bool json_;
    bool any_ = false;
    std::string out_;
};

} // namespace

int run_diff(const word &self, int argc, char **argv)
{
    std::string format = "text";
    bool places = false;
    const parsed line = parse(
        self, argc, argv,
        {{.name = "format", .argument = "NAME", .help = "text or json (text)", .text = &format},
         {.name = "places", .help = "also differences of the places in the code", .on = &places}},
        2, 2);
    if (line.ends)
        return line.status;
    const int chosen = choose(self, "format", format, {"text", "json"});
    if (chosen < 0)
        return status_fault;
    source_guard before = read(line.files[0]);
    source_guard after = read(line.files[1]);
    if (!before || !after)
        return status_fault;
    difference_output output(chosen == 1);
    compare_sources(before.get(), after.get(), places,
                    [&](const difference &one) { output.add(one); });
    keep_to_the_end(std::move(before));
    keep_to_the_end(std::move(after));
    return output.finish() ? status_found : status_fine;
}

} // namespace zel::kit
