#pragma once

// Saving a source over an old one, and what must hold afterwards whatever happened: the path names
// the old text or the new one, whole; where it is the new one, a backup holds the old one; the
// result says which; and nothing else lies around.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "source/group.h"
#include "source/lang-read.h"
#include "source/lang-write.h"
#include "source/source-text.h"
#include "support/string-copy.h"
#include "working-dir.h"

namespace zel_test {

inline const std::string old_text =
    "group \"old\" { item \"kept\" { lang \"e\" { \"precious\" } } }\n";

// What is written to a descriptor while it lives; a pipe takes it, which no limit on files touches.
class pipe_capture {
public:
    pipe_capture(int fd, std::FILE *stream) : fd_(fd), stream_(stream), before_(dup(fd))
    {
        std::fflush(stream);
        int ends[2];
        require(pipe(ends) == 0 && dup2(ends[1], fd) == fd, "pipe");
        ::close(ends[1]);
        read_end_ = ends[0];
    }
    std::string finish()
    {
        std::fflush(stream_);
        dup2(before_, fd_);
        ::close(before_);
        std::string text;
        char block[4096];
        for (ssize_t size = 0; (size = ::read(read_end_, block, sizeof block)) > 0;)
            text.append(block, static_cast<std::size_t>(size));
        ::close(read_end_);
        return text;
    }

private:
    int fd_;
    std::FILE *stream_;
    int before_;
    int read_end_ = -1;
};

class saving : public working_dir {
protected:
    saving() { insert_group_item(source.get(), "new", "item")->ctime = 5; }

    // A text of about that many bytes.
    void grow(std::size_t bytes)
    {
        auto *entry = alloc_lang_entry("german");
        for (std::size_t n = 0; n < bytes; n += 1000)
            entry->texts = g_list_prepend(entry->texts, zel_strdup(std::string(989, 'x').c_str()));
        auto *item = get_item_ptr(source.get(), "new", "item");
        item->langs = g_list_append(item->langs, entry);
    }

    // Between begin and end the code under test runs and nothing else.
    template <class Begin, class End>
    void save(const std::string &path, Begin begin, End end)
    {
        pipe_capture out(STDOUT_FILENO, stdout);
        pipe_capture err(STDERR_FILENO, stderr);
        begin();
        zel::write_answer answer =
            zel::write_source(path.c_str(), source.get(), {nullptr, nullptr, std::time(nullptr)});
        end();
        said = err.finish();
        printed = out.finish();
        result = answer.code;
        backup = std::move(answer.backup);
        EXPECT_EQ(answer.why.empty(), result == 0);
        EXPECT_THAT(said, testing::HasSubstr(answer.why)); // also for people
    }
    void save(const std::string &path)
    {
        save(
            path, [] {}, [] {});
    }

    static std::string folder_of(const std::string &path)
    {
        const std::string folder = std::filesystem::path(path).parent_path();
        return folder.empty() ? "." : folder;
    }

    // What lies beside the path: the backups' texts and the names that do not belong there.
    void look_beside(const std::string &path)
    {
        backups.clear();
        strangers.clear();
        const std::string name = std::filesystem::path(path).filename();
        for (const auto &file : std::filesystem::directory_iterator(folder_of(path))) {
            const std::string found = file.path().filename();
            if (found.starts_with(name + "-2") && found.ends_with(".bak"))
                backups.push_back(read_file(file.path()));
            else if (found != name && found != "lang.tmp" && found != "other")
                strangers.push_back(found);
        }
    }

    bool is_new_text(const std::string &path)
    {
        if (!std::filesystem::exists(path))
            return false;
        const zel::read_answer back = zel::read_source(path.c_str(), {});
        return describe(back.source.get()) == as_read();
    }
    std::string as_read()
    {
        const std::uint32_t format = source->format;
        source->format = LANG_SOURCE_ASCII; // what none is written as
        item_t *item = get_item_ptr(source.get(), "new", "item");
        zel::replace_string(item->description, zel_strdup("none"));
        std::string text = describe(source.get());
        zel::replace_string(item->description, nullptr);
        source->format = format;
        return text;
    }

    // The path names a whole text, and the old one is somewhere.
    void expect_whole(const std::string &path)
    {
        look_beside(path);
        const bool kept = std::find(backups.begin(), backups.end(), old_text) != backups.end();
        EXPECT_TRUE(read_file(path) == old_text || (is_new_text(path) && kept));
    }

    // What must hold after a save to a path that held the old text. Files stay only where they
    // cannot be removed.
    void expect_nothing_lost(const std::string &path, bool may_stay = false)
    {
        SCOPED_TRACE("result " + std::to_string(result) + ", " + printed);
        expect_whole(path);
        EXPECT_TRUE(strangers.empty() || may_stay) << strangers.front();
        EXPECT_EQ(result == 0, is_new_text(path));
        if (result == 0) {
            EXPECT_EQ(read_file(backup), old_text);
        } else {
            EXPECT_EQ(backup, "");
            EXPECT_TRUE(backups.empty() || may_stay);
        }
        const bool not_renamed = result == 1 && printed.starts_with("lang_write_file(3): error(");
        if (!may_stay) {
            EXPECT_EQ(std::filesystem::exists("lang.tmp"), not_renamed);
        }
        if (not_renamed) {
            EXPECT_TRUE(is_new_text("lang.tmp"));
        } else if (result == 1) {
            EXPECT_THAT(printed, testing::StartsWith("lang_write_file(1): error("));
        } else if (result != 0) {
            EXPECT_EQ(result, -1);
            EXPECT_EQ(printed, "ERROR open output file lang.tmp " + path + "\n");
        }
    }

    fresh_global global;
    source_guard source{lang_alloc_group()};
    std::string printed;
    std::string said;
    std::string backup;
    int result = -7;
    std::vector<std::string> backups;
    std::vector<std::string> strangers;
};

// A directory on another file system than the working directory.
class elsewhere {
public:
    elsewhere()
    {
        if (mkdtemp(path_.data()) == nullptr)
            path_.clear();
    }
    ~elsewhere()
    {
        std::error_code ignored;
        if (!path_.empty())
            std::filesystem::remove_all(path_, ignored);
    }
    elsewhere(const elsewhere &) = delete;
    elsewhere &operator=(const elsewhere &) = delete;
    bool is_other() const
    {
        struct stat here, there;
        return !path_.empty() && stat(".", &here) == 0 && stat(path_.c_str(), &there) == 0 &&
               here.st_dev != there.st_dev;
    }
    const std::string &path() const { return path_; }

private:
    std::string path_ = "/dev/shm/lang-test-XXXXXX";
};

} // namespace zel_test
