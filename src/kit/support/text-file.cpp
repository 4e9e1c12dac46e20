#include "kit/support/text-file.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <set>

namespace zel::kit {

namespace {

// Of a file with a lock the handle stays open, and there may be more files than handles.
constexpr std::size_t most_held = 100;

// A name that this process holds would never get free.
std::set<std::string> &held_names()
{
    static auto *const names = new std::set<std::string>;
    return *names;
}

} // namespace

text_file::~text_file() { held_names().erase(held_); }

bool text_file::say(const char *cause) const
{
    std::fprintf(stderr, "lang-kit: %s: %s\n", path_.c_str(), cause);
    return false;
}

bool text_file::say(int error) const { return say(std::strerror(error)); }

bool text_file::create(const std::string &path)
{
    path_ = path;
    old_ = find_target(path.c_str(), links::follow);
    if (old_.refusal != 0)
        return say(refusal_text(old_.refusal));
    // A file whose text stays the same keeps its time and gets no backup.
    if (old_.is_file())
        same_.reset(std::fopen(old_.path.c_str(), "rbe"));
    const std::string name = old_.path + ".lang-kit.tmp";
    if (held_names().size() < most_held && held_names().insert(name).second)
        held_ = name;
    const int error =
        held_.empty() || file_.create(held_.c_str(), old_) != 0 ? file_.create_beside(old_) : 0;
    return error == 0 || say(error);
}

void text_file::compare(std::string_view text)
{
    char old[16384];
    while (same_ && !text.empty()) {
        const std::size_t wanted = std::min(sizeof old, text.size());
        if (std::fread(old, 1, wanted, same_.get()) != wanted ||
            std::memcmp(old, text.data(), wanted) != 0)
            same_.reset();
        text.remove_prefix(wanted);
    }
}

void text_file::append(std::string_view text)
{
    compare(text);
    file_.append(text);
    if (held_.empty())
        file_.rest();
}

bool text_file::finish()
{
    // The old file is the same only if it ends here, too.
    if (same_ && (std::fgetc(same_.get()) != EOF || std::ferror(same_.get()) != 0))
        same_.reset();
    int error = file_.finish(synced::yes);
    // Where the old text could not be kept, nothing happens to any file.
    if (error == 0 && !same_)
        error = backup_obstacle(old_);
    return error == 0 || say(error);
}

bool text_file::put_in_place()
{
    if (same_)
        return true;
    // Whoever has edited the old file by hand finds it under its date.
    const backup_file kept = make_backup(old_, std::time(nullptr));
    if (kept.error != 0)
        return say(kept.error);
    if (const int error = file_.put(old_)) {
        undo_backup(kept, old_);
        return say(error);
    }
    if (old_.status.st_nlink > 1)
        std::fprintf(stderr, "lang-kit: %s has other names, which keep the old text\n",
                     path_.c_str());
    return true;
}

bool finish_all(std::vector<text_file> &files)
{
    for (text_file &file : files)
        if (!file.finish())
            return false;
    for (text_file &file : files) {
        if (!file.put_in_place())
            return false;
        std::printf("%s\n", file.path().c_str());
    }
    return true;
}

} // namespace zel::kit
