#include "kit/text-file.h"

#include "support/guard.h"
#include "support/time.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace zel::kit {

namespace {

using stream_guard = std::unique_ptr<std::FILE, release<std::fclose>>;

// Whether both files are there and hold the same bytes.
bool same_bytes(const char *one, const char *other)
{
    const stream_guard a(std::fopen(one, "rbe"));
    const stream_guard b(std::fopen(other, "rbe"));
    if (!a || !b)
        return false;
    char from_a[16384];
    char from_b[16384];
    for (;;) {
        const std::size_t count = std::fread(from_a, 1, sizeof from_a, a.get());
        if (count != std::fread(from_b, 1, sizeof from_b, b.get()) ||
            std::memcmp(from_a, from_b, count) != 0)
            return false;
        if (count == 0)
            return std::ferror(a.get()) == 0 && std::ferror(b.get()) == 0;
    }
}

// Moves what stands at the path to a name with the present second that is free. A path where
// nothing stands is no error.
bool keep_under_date(const std::string &path)
{
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0)
        return errno == ENOENT;
    std::string kept;
    for (int tries = 0; tries < 60; ++tries) {
        char stamp[64];
        sprintf_date(stamp, "%Y-%m-%d-%H-%M-%S", std::time(nullptr));
        kept = path + "-" + stamp + ".bak";
        if (lstat(kept.c_str(), &status) != 0)
            return std::rename(path.c_str(), kept.c_str()) == 0;
        usleep(50 * 1000);
    }
    errno = EEXIST;
    return false;
}

} // namespace

text_file::~text_file() { safe_file_abandon(file_); }

bool text_file::say(int error) const
{
    std::fprintf(stderr, "lang-kit: %s: %s\n", path_.c_str(), std::strerror(error));
    return false;
}

bool text_file::create(const std::string &path)
{
    path_ = path;
    file_ = safe_file_create((path + ".lang-tmp").c_str());
    return file_.stream != nullptr || say(file_.error);
}

bool text_file::finish()
{
    const int error = safe_file_finish(file_);
    return error == 0 || say(error);
}

bool text_file::put_in_place()
{
    if (same_bytes(file_.path, path_.c_str())) {
        unlink(file_.path);
        return true;
    }
    if (!keep_under_date(path_))
        return say(errno);
    const int error = safe_file_move(file_, path_.c_str());
    return error == 0 || say(error);
}

} // namespace zel::kit
