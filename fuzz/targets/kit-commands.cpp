// The whole companion over two sources and a file of another format: the first part names the
// command by a letter. A status comes back, and the sources stay as they are.

#include "support.h"

#include <filesystem>

#include "family/argv.h"
#include "kit/words.h"

namespace {

constexpr const char *kit_lines[] = {
    "lint a.lang-src b.lang-src",
    "lint --format sarif a.lang-src",
    "stat a.lang-src b.lang-src",
    "stat --format json a.lang-src",
    "report -o page.html a.lang-src",
    "export --format po -o out a.lang-src",
    "export --format xliff -o out a.lang-src",
    "export --format xliff2 -o out a.lang-src",
    "export --format csv -o out a.lang-src",
    "export --format json -o out a.lang-src",
    "diff a.lang-src b.lang-src",
    "diff --format json a.lang-src b.lang-src",
    "show a.lang-src",
    "merge -o m.lang-src b.lang-src a.lang-src b.lang-src",
    "merge -o m.lang-src a.lang-src b.lang-src a.lang-src",
    "pseudo -o p.lang-src a.lang-src",
    "fill --from b.lang-src -o f.lang-src a.lang-src",
    "import --format po -o i.lang-src a.lang-src german.po",
    "import --format csv --comments -o i.lang-src a.lang-src german.po",
    "fill --from german.po -o f.lang-src a.lang-src",
    "carry --dry-run a.lang-src",
    "replace --dry-run --language german a b a.lang-src",
    "news b.lang-src a.lang-src",
    "news --format html a.lang-src b.lang-src",
    "questions --answered a.lang-src",
    "questions --format json a.lang-src",
    "mnemonics --dry-run a.lang-src",
    "stat --trace german.po a.lang-src",
};

int run_kit(const char *line)
{
    int count = 0;
    char **words = nullptr;
    gen_argv((std::string("lang-kit ") + line).c_str(), &count, &words);
    gen_argv_add_null(&count, &words);
    const int status = zel::kit::run(count, words);
    del_argv(&count, &words);
    return status;
}

} // namespace

extern "C" int FUZZ_TARGET(kit_commands)(const std::uint8_t *data, std::size_t size)
{
    const std::vector<std::string> part = fuzz::parts(fuzz::bytes_of(data, size), 4);
    const unsigned char letter = part[0].empty() ? 'a' : static_cast<unsigned char>(part[0][0]);
    fuzz::empty_folder();
    std::filesystem::create_directory("out");
    fuzz::as_file("a.lang-src", part[1]);
    fuzz::as_file("b.lang-src", part[2]);
    fuzz::as_file("german.po", part[3]);
    const int status = run_kit(kit_lines[(letter - 'a') % std::size(kit_lines)]);
    fuzz::require(status >= 0 && status <= 2, "a status");
    fuzz::require(fuzz::file_text("a.lang-src") == part[1] &&
                      fuzz::file_text("b.lang-src") == part[2],
                  "what was read is as it was");
    return 0;
}
