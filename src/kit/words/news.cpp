#include "kit/support/news.h"
#include "kit/support/git-files.h"
#include "kit/support/options.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "lint/lint.h"

#include <cstdio>
#include <filesystem>

namespace zel::kit {

namespace {

// A file, or what git has kept of one.
struct version {
    std::string path;   // empty: it is git's
    std::string name;   // that git knows it by
    std::string called; // what people call it
};

// "v1.3:app.lang-src" is git's own way; "v1.3" alone means the other file as it was then.
version version_of(const std::string &given, const std::string &other)
{
    if (!is_absent(given))
        return {given, {}, given};
    const std::size_t colon = given.find(':');
    if (colon != std::string::npos)
        return {{}, given, given.substr(0, colon)};
    std::error_code ignored;
    const std::size_t at = is_absent(other) ? other.find(':') : std::string::npos;
    const std::string path = at == std::string::npos
                                 ? "./" + std::filesystem::proximate(other, ignored).string()
                                 : other.substr(at + 1);
    return {{}, given + ":" + path, given};
}

source_guard read_version(const version &wanted)
{
    if (!wanted.path.empty())
        return read(wanted.path);
    std::string why;
    const std::optional<std::string> text = kept_text(wanted.name, {}, why);
    if (text)
        return read_text(wanted.name, *text);
    std::fprintf(stderr, "lang-kit: %s: neither a file nor what git knows: %s\n",
                 wanted.called.c_str(), why.c_str());
    return nullptr;
}

} // namespace

int run_news(const word &self, int argc, char **argv)
{
    std::string format = "text";
    std::vector<std::string> languages;
    const parsed line = parse(self, argc, argv,
                              {{.name = "format",
                                .argument = "NAME",
                                .help = "text, json or html (text)",
                                .text = &format},
                               {.name = "language",
                                .argument = "NAME",
                                .help = "only what concerns this language; may be given again",
                                .list = &languages}},
                              2, 2);
    if (line.ends)
        return line.status;
    const int chosen = choose(self, "format", format, {"text", "json", "html"});
    if (chosen < 0)
        return status_fault;
    const version old = version_of(line.files[0], line.files[1]);
    source_guard before = read_version(old);
    source_guard after = read_version(version_of(line.files[1], line.files[0]));
    if (!before || !after)
        return status_fault;
    for (const std::string &name : languages)
        if (!lint::defines_language(after.get(), name))
            return wrong_use(self, "the source does not define the language \"" + name + "\"");
    news all = find_news(before.get(), after.get(), languages);
    all.since = old.called;
    using writer = std::string (*)(const news &);
    constexpr writer writers[] = {news_text, news_json, news_html};
    const std::string out = writers[chosen](all);
    std::fwrite(out.data(), 1, out.size(), stdout);
    keep_to_the_end(std::move(before));
    keep_to_the_end(std::move(after));
    return status_fine;
}

} // namespace zel::kit
