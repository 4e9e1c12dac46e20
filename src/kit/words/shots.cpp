#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/sources.h"
#include "kit/support/trace.h"
#include "kit/words/word-list.h"
#include "source/entry.h"
#include "support/dir_list.h"
#include "support/file-call.h"
#include "support/file_mem.h"
#include "support/safe-file.h"
#include "support/string-copy.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <optional>

namespace zel::kit {

namespace {

constexpr std::string_view picture_ending = ".png";

std::set<text_key> texts_of_source(const LangSource *source)
{
    std::set<text_key> out;
    for (const edit_t *group : each<edit_t>(source->groups))
        for (const item_t *item : each<item_t>(group->items))
            out.emplace(or_empty(group->name), or_empty(item->name));
    return out;
}

// Puts the pictures of marks beside the source, with the texts that each shows.
class picture_run {
public:
    picture_run(std::string from, const std::string &source, bool dry_run)
        : from_(std::move(from)), to_(source.substr(0, source.rfind('/') + 1)), dry_run_(dry_run)
    {
        to_ += picture_folder;
        index_ = read_picture_index(to_);
    }

    // Takes the picture of a mark, if there is one. A mark's name never leads to another folder.
    void take(const std::string &mark, const std::set<text_key> &asked,
              const std::set<text_key> &known)
    {
        const std::string name = mark + std::string(picture_ending);
        if (mark.empty() || mark.find('/') != std::string::npos || mark.front() == '.')
            return tell(kit::quoted(mark) + " is no name of a picture");
        const std::optional<std::string> picture = picture_at(from_ + "/" + name);
        if (!picture || !put(name, *picture))
            return;
        std::set<text_key> &texts = index_[name];
        texts.clear();
        std::set_intersection(asked.begin(), asked.end(), known.begin(), known.end(),
                              std::inserter(texts, texts.end()));
        const std::size_t others = asked.size() - texts.size();
        std::printf("%s: %s%s\n", name.c_str(), counted(texts.size(), "text").c_str(),
                    others == 0 ? "" : (", " + with_commas(others) + " not in the source").c_str());
    }

    // Tells the pictures that no mark bears the name of.
    void look_for_others(const pictured_texts &marks)
    {
        const dir_list_guard names(
            dir_list_sort(dir_list(nullptr, from_.c_str(), picture_ending.data())));
        for (const zel_list *one = names.get(); one != nullptr; one = one->next) {
            std::string name = dir_list_file(one);
            name.resize(name.size() - picture_ending.size());
            if (!marks.contains(name))
                tell(from_ + "/" + dir_list_file(one) + ": no mark has this name");
        }
    }

    int end()
    {
        // A picture that somebody has removed shows nothing any longer.
        std::erase_if(index_, [this](const auto &one) {
            return is_absent(to_ + "/" + one.first) && !dry_run_;
        });
        const std::string path = to_ + "/" + std::string(picture_index_name);
        if (!dry_run_ && !index_.empty())
            look_at(path, replace_file(path.c_str(), picture_index_text(index_)));
        return status_;
    }

private:
    void tell(const std::string &text, int status = status_found)
    {
        std::fprintf(stderr, "lang-kit shots: %s\n", text.c_str());
        status_ = std::max(status_, status);
    }
    bool look_at(const std::string &path, int error)
    {
        if (error != 0)
            tell(path + ": " + std::strerror(error), status_fault);
        return error == 0;
    }

    // The bytes of a picture.
    std::optional<std::string> picture_at(const std::string &path)
    {
        struct stat status {};
        char *data = nullptr;
        std::int64_t size = 0;
        if (zel_stat(path.c_str(), &status) != 0)
            return tell(path + ": " + std::strerror(errno)), std::nullopt;
        // Reading a pipe might never end.
        if (!S_ISREG(status.st_mode))
            return tell(path + ": it cannot be read"), std::nullopt;
        if (zel::read_whole(path.c_str(), data, size) != GOOD)
            return tell(path + ": it cannot be read: " + std::strerror(errno)), std::nullopt;
        const string_guard owner(data);
        const std::string_view bytes(data, static_cast<std::size_t>(size));
        if (!bytes.starts_with("\x89PNG\r\n\x1A\n"))
            return tell(path + ": it is no PNG picture"), std::nullopt;
        return std::string(bytes);
    }

    static bool holds(const std::string &path, const std::string &picture)
    {
        struct stat status {};
        char *data = nullptr;
        std::int64_t size = 0;
        if (zel_stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
            zel::read_whole(path.c_str(), data, size) != GOOD)
            return false;
        const string_guard owner(data);
        return picture == std::string_view(data, static_cast<std::size_t>(size));
    }

    // Whether the picture stands in its place, where nothing is that somebody else has put there.
    bool put(const std::string &name, const std::string &picture)
    {
        const std::string path = to_ + "/" + name;
        // A run that was stopped before it wrote the index has left the same picture.
        if (!index_.contains(name) && !is_absent(path) && !holds(path, picture)) {
            tell(path + ": it is there already, and no picture of shots", status_fault);
            return false;
        }
        if (dry_run_)
            return true;
        if (mkdir(to_.c_str(), 0777) != 0 && errno != EEXIST)
            return look_at(to_, errno);
        return look_at(path, replace_file(path.c_str(), picture));
    }

    std::string from_;
    std::string to_;
    bool dry_run_;
    pictured_texts index_;
    int status_ = status_fine;
};

} // namespace

int run_shots(const word &self, int argc, char **argv)
{
    std::string path;
    bool dry_run = false;
    const parsed line =
        parse(self, argc, argv,
              {{.name = "trace",
                .argument = "FILE",
                .help = "what the application has asked for, by LANG_TRACE, with its marks",
                .text = &path},
               {.name = "dry-run", .help = "only tell what would be taken", .on = &dry_run}},
              2, 2);
    if (line.ends)
        return line.status;
    if (path.empty())
        return wrong_use(self, "--trace FILE is missing");
    const std::string &folder = line.files[0];
    struct stat status {};
    const int error = zel_stat(folder.c_str(), &status) != 0 ? errno
                      : S_ISDIR(status.st_mode)              ? 0
                                                             : ENOTDIR;
    if (error != 0) {
        std::fprintf(stderr, "lang-kit: %s: %s\n", folder.c_str(), std::strerror(error));
        return status_fault;
    }
    trace asked;
    if (!read_trace(path, asked))
        return status_fault;
    source_guard source = read(line.files[1]);
    if (source == nullptr)
        return status_fault;
    const std::set<text_key> known = texts_of_source(source.get());
    keep_to_the_end(std::move(source));
    picture_run run(folder, line.files[1], dry_run);
    for (const auto &[mark, texts] : asked.marks)
        run.take(mark, texts, known);
    run.look_for_others(asked.marks);
    return run.end();
}

} // namespace zel::kit
