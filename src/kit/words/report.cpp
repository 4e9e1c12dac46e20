#include "kit/support/options.h"
#include "kit/support/report-data.h"
#include "kit/support/report-page.h"
#include "kit/words/word-list.h"
#include "support/safe-file.h"
#include "support/time.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <glib.h>

namespace zel::kit {

namespace {

// Destination of the page: a file that is whole or not there at all, or standard output.
class page_file {
public:
    bool open(const std::string &path, bool dry_run)
    {
        path_ = path;
        dry_run_ = dry_run;
        if (path.empty() || dry_run)
            return true;
        target_ = find_target(path.c_str(), links::follow);
        if (target_.refusal != 0)
            return say(refusal_text(target_.refusal));
        // A shell makes "-o *.lang-src" name a source here.
        if (target_.path.ends_with(".lang-src"))
            return say("the page does not take the place of a source");
        return say(file_.create_beside(target_));
    }
    void append(std::string_view text)
    {
        if (dry_run_)
            return;
        if (path_.empty())
            std::fwrite(text.data(), 1, text.size(), stdout);
        else
            file_.append(text);
    }
    bool finish()
    {
        // Not synced: the page can be made again.
        return dry_run_ || path_.empty() ||
               (say(file_.finish(synced::no)) && say(file_.put(target_)));
    }

private:
    bool say(const char *cause) const
    {
        std::fprintf(stderr, "lang-kit: %s: %s\n", path_.c_str(), cause);
        return false;
    }
    bool say(int error) const { return error == 0 || say(std::strerror(error)); }

    std::string path_;
    bool dry_run_ = false;
    target_file target_;
    safe_file file_;
};

// The hash by which the browser runs the page's own script and style, and nothing else.
std::string hash_of_part(std::string_view part)
{
    std::array<guint8, 32> digest{};
    gsize length = digest.size();
    GChecksum *sum = g_checksum_new(G_CHECKSUM_SHA256);
    g_checksum_update(sum, reinterpret_cast<const guchar *>(part.data()),
                      static_cast<gssize>(part.size()));
    g_checksum_get_digest(sum, digest.data(), &length);
    g_checksum_free(sum);
    char *coded = g_base64_encode(digest.data(), length);
    std::string out = std::string("'sha256-") + coded + "'";
    g_free(coded);
    return out;
}

std::string policy()
{
    // A hostile source's texts can neither load nor run anything in the reader's browser.
    return "default-src 'none'; img-src data:; base-uri 'none'; form-action 'none'; style-src " +
           hash_of_part(report_page.css) + "; script-src " + hash_of_part(report_page.js);
}

// The time of the report, or the one that reproducible builds are given.
std::string date()
{
    const char *given = std::getenv("SOURCE_DATE_EPOCH");
    const std::int64_t now =
        given == nullptr ? std::time(nullptr) : std::strtoll(given, nullptr, 10);
    return date_text("%Y-%m-%d %H:%M", now);
}

// Writes the page; the function adds the data in their place.
template <class Data>
void write_page(page_file &to, Data &&data)
{
    std::string_view left = report_page.html;
    const std::string allowed = policy();
    // In the page "@NAME@" stands for what is put in.
    for (std::size_t at = left.find('@'); at != std::string_view::npos; at = left.find('@')) {
        to.append(left.substr(0, at));
        left.remove_prefix(at + 1);
        const std::size_t end = left.find('@');
        const std::string_view name = left.substr(0, end);
        left.remove_prefix(end + 1);
        if (name == "POLICY")
            to.append(allowed);
        else if (name == "GENERATOR")
            to.append("lang-kit " LANG_VERSION);
        else if (name == "STYLE")
            to.append(report_page.css);
        else if (name == "SCRIPT")
            to.append(report_page.js);
        else
            data();
    }
    to.append(left);
}

} // namespace

int run_report(const word &self, int argc, char **argv)
{
    std::string path;
    bool screenshots = false;
    bool dry_run = false;
    const parsed line = parse(
        self, argc, argv,
        {{.name = "output",
          .argument = "FILE.html",
          .help = "where the page goes (standard output)",
          .text = &path,
          .letter = 'o'},
         {.name = "screenshots",
          .help = "embed the pictures of the groups, ScreenShots/GROUP.jpg beside "
                  "the source, and those that shots has given to texts",
          .on = &screenshots},
         {.name = "dry-run", .help = "only look whether the sources can be read", .on = &dry_run}},
        1, SIZE_MAX);
    if (line.ends)
        return line.status;
    page_file page;
    if (!page.open(path, dry_run))
        return status_fault;
    report_data data([&](std::string_view text) { page.append(text); }, screenshots);
    std::size_t files = 0;
    write_page(page, [&] {
        data.begin(date());
        for (const std::string &source : line.files)
            files += data.add(source) ? 1U : 0U;
        data.end();
    });
    // A page that shows nothing must not replace another one.
    if (files == 0 || !page.finish())
        return status_fault;
    return files == line.files.size() ? status_fine : status_fault;
}

} // namespace zel::kit
