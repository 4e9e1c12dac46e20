#include "kit/support/code-include.h"

namespace zel::kit {

namespace {

class include_finder {
public:
    include_finder(std::string_view bytes, const std::vector<code_token> &tokens)
        : bytes_(bytes), tokens_(tokens)
    {
    }

    include_place find(std::size_t before)
    {
        out_.is_wanted = true;
        before_ = before;
        out_.position = first_line();
        base_ = guard_depth();
        for (std::size_t at = 0; at < tokens_.size(); ++at) {
            const bool begins = tokens_[at].directive != 0 && word(at) == "#" &&
                                (at == 0 || tokens_[at - 1].directive != tokens_[at].directive);
            // What stands behind the limit may still include the header.
            is_over_ = is_over_ || tokens_[at].begin >= before ||
                       (tokens_[at].directive == 0 && word(at) == "{");
            if (begins)
                take_directive(at);
        }
        const std::size_t feed = bytes_.find('\n');
        const bool returns = feed != bytes_.npos && feed > 0 && bytes_[feed - 1] == '\r';
        out_.line = std::string("#include <lang-locale.h>") + (returns ? "\r\n" : "\n");
        return out_;
    }

private:
    std::string_view word(std::size_t at) const
    {
        return at < tokens_.size()
                   ? bytes_.substr(tokens_[at].begin, tokens_[at].end - tokens_[at].begin)
                   : std::string_view();
    }

    // "#ifndef NAME" and "#define NAME" around all of a header.
    int guard_depth() const
    {
        return word(0) == "#" && word(1) == "ifndef" && word(3) == "#" && word(4) == "define" &&
                       word(2) == word(5)
                   ? 1
                   : 0;
    }

    // The start of the first token's line; of the file where something else stands before it.
    std::size_t first_line() const
    {
        constexpr std::string_view mark = "\xEF\xBB\xBF";
        const std::size_t start = bytes_.starts_with(mark) ? mark.size() : 0;
        if (tokens_.empty() || tokens_.front().begin == 0)
            return start;
        const std::size_t feed = bytes_.rfind('\n', tokens_.front().begin - 1);
        if (feed == bytes_.npos)
            return start;
        const std::string_view blanks = bytes_.substr(feed + 1, tokens_.front().begin - feed - 1);
        return blanks.find_first_not_of(" \t") == blanks.npos ? feed + 1 : start;
    }

    void take_directive(std::size_t at)
    {
        const std::string_view kind = word(at + 1);
        if (kind.starts_with("if")) {
            ++depth_;
        } else if (kind == "endif") {
            --depth_;
            if (depth_ == base_ && has_header_)
                put_behind(at);
        } else if (kind == "include") {
            take_header(at);
        } else if ((kind == "pragma" && word(at + 2) == "once") ||
                   (kind == "define" && base_ == 1 && at == 3)) {
            put_behind(at);
        }
    }

    void take_header(std::size_t at)
    {
        const std::string_view line =
            bytes_.substr(tokens_[at].begin, line_end(at) - tokens_[at].begin);
        if (line.find("lang-locale.h") != line.npos || line.find("lang.hpp") != line.npos)
            out_.is_wanted = false;
        has_header_ = true;
        if (depth_ == base_)
            put_behind(at);
    }

    std::size_t line_end(std::size_t at) const
    {
        std::size_t last = at;
        while (last + 1 < tokens_.size() && tokens_[last + 1].directive == tokens_[at].directive)
            ++last;
        return bytes_.find('\n', tokens_[last].end);
    }

    void put_behind(std::size_t at)
    {
        const std::size_t end = line_end(at);
        // A line may hold more than its directive.
        if (is_over_ || end >= before_)
            return;
        // A remark or a backslash may go on in the next line.
        const std::string_view line = bytes_.substr(tokens_[at].begin, end - tokens_[at].begin);
        const std::size_t remark = line.rfind("/*");
        if ((remark != line.npos && line.find("*/", remark) == line.npos) || line.ends_with('\\') ||
            line.ends_with("\\\r"))
            return;
        out_.position = end + 1;
    }

    std::string_view bytes_;
    const std::vector<code_token> &tokens_;
    include_place out_;
    std::size_t before_ = 0;
    int depth_ = 0;
    int base_ = 0;
    bool has_header_ = false; // some line so far
    bool is_over_ = false;
};

} // namespace

include_place place_of_include(std::string_view bytes, const std::vector<code_token> &tokens,
                               std::size_t before)
{
    return include_finder(bytes, tokens).find(before);
}

} // namespace zel::kit
