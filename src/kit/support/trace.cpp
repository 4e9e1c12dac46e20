#include "kit/support/trace.h"

#include "source/fields.h"
#include "support/cut.h"
#include "support/file-call.h"
#include "support/file_mem.h"
#include "support/string-copy.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace zel::kit {

namespace {

bool refuse(const std::string &path, const char *cause)
{
    std::fprintf(stderr, "lang-kit: %s: %s\n", path.c_str(), cause);
    return false;
}

// "1795673131.004200"
bool is_time(std::string_view text)
{
    const std::string_view digits = "0123456789";
    const std::string_view seconds = cut_at(text, '.');
    return !seconds.empty() && text.size() == 6 && seconds.find_first_not_of(digits) == text.npos &&
           text.find_first_not_of(digits) == text.npos;
}

class trace_reader {
public:
    explicit trace_reader(trace &out) : out_(out) {}
    // False for a line that is none.
    bool take(std::string_view line)
    {
        std::vector<std::string> fields = fields_of(line);
        if (fields.size() < 2 || fields.size() > 3 || !is_time(fields[0]))
            return false;
        if (fields.size() == 2) {
            mark_ = &out_.marks[fields[1]];
            return true;
        }
        text_key text(std::move(fields[1]), std::move(fields[2]));
        if (mark_ != nullptr)
            mark_->insert(text);
        out_.asked.insert(std::move(text));
        return true;
    }

private:
    trace &out_;
    std::set<text_key> *mark_ = nullptr; // the last one's texts
};

} // namespace

bool read_trace(const std::string &path, trace &out)
{
    struct stat status {};
    if (zel_stat(path.c_str(), &status) != 0)
        return refuse(path, std::strerror(errno));
    // Reading a pipe might never end.
    if (!S_ISREG(status.st_mode))
        return refuse(path, "it is no file");
    char *data = nullptr;
    std::int64_t size = 0;
    if (zel::read_whole(path.c_str(), data, size) != GOOD)
        return refuse(path, (std::string("it cannot be read: ") + std::strerror(errno)).c_str());
    const string_guard owner(data);
    std::string_view rest(data, static_cast<std::size_t>(size));
    trace_reader reader(out);
    for (std::size_t number = 1; !rest.empty(); ++number) {
        const bool whole = rest.find('\n') != rest.npos;
        if (reader.take(cut_at(rest, '\n')) && whole)
            continue;
        const std::string place = path + ":" + std::to_string(number);
        if (whole)
            return refuse(place, "this is no line of a trace");
        refuse(place, "the line has no end, it is left out");
    }
    return true;
}

} // namespace zel::kit
