#include "kit/text-file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

namespace zel::kit {

bool text_file::say(int error) const
{
    std::fprintf(stderr, "lang-kit: %s: %s\n", path_.c_str(), std::strerror(error));
    return false;
}

void text_file::compare(std::string_view text)
{
    char block[16384];
    while (old_text_ && !text.empty()) {
        const std::size_t wanted = std::min(text.size(), sizeof block);
        if (std::fread(block, 1, wanted, old_text_.get()) != wanted ||
            std::memcmp(block, text.data(), wanted) != 0)
            old_text_.reset();
        text.remove_prefix(wanted);
    }
}

ssize_t text_file::write(void *self, const char *data, std::size_t size)
{
    auto *file = static_cast<text_file *>(self);
    file->compare({data, size});
    return file->file_.append({data, size}) == 0 ? static_cast<ssize_t>(size) : 0;
}

bool text_file::create(const std::string &path)
{
    path_ = path;
    old_ = find_target(path.c_str(), links::replace);
    if (old_.refusal != 0)
        return say(old_.refusal);
    if (const int error = file_.create_beside(old_))
        return say(error);
    if (old_.is_file())
        old_text_.reset(std::fopen(old_.path.c_str(), "rbe"));
    cookie_io_functions_t calls{};
    calls.write = write;
    stream_.reset(fopencookie(this, "w", calls));
    return stream_ != nullptr || say(ENOMEM);
}

bool text_file::finish()
{
    std::fclose(stream_.release()); // what fails is kept by the file
    if (old_text_ && std::fgetc(old_text_.get()) != EOF)
        old_text_.reset();
    const int error = file_.finish(synced::yes);
    return error == 0 || say(error);
}

bool text_file::put_in_place()
{
    if (old_text_)
        return true;
    const backup_file kept = make_backup(old_, std::time(nullptr));
    if (kept.error != 0)
        return say(kept.error);
    if (const int error = file_.put(old_)) {
        undo_backup(kept, old_);
        return say(error);
    }
    return true;
}

} // namespace zel::kit
