#pragma once

// What the originals of a source's texts were when these were translated, as the dated backups
// beside the source tell: where a translation is the same in a backup and its original is not.
// Of what these tell nothing, the versions do that git keeps of the source, in the same way.
//
// A translation is as old as the backups, newest first and without a gap, that have it; its
// original is that of the oldest of them. Where it was not ready in one of them and is now,
// somebody has looked at it since, and nothing is told. Backups are only read, in pieces by whoever
// has time; those that are no sources or cannot be read are passed over.

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>

#include <dirent.h>

#include "assist/neighbours.h"
#include "source/model.h"

namespace zel::assist {

class revisions;
class source_walk;

// The newest backups are read, and behind them the last one of each day.
struct earlier_limits {
    std::size_t newest = 10;
    std::size_t files = 20;
    std::size_t bytes = 64U << 20;        // of all of them
    std::size_t bytes_of_one = 16U << 20; // of a file, or a version of git
    std::size_t versions = 10;            // of git
};

class earlier_texts {
public:
    explicit earlier_texts(earlier_limits limits = {});
    ~earlier_texts();
    earlier_texts(const earlier_texts &) = delete;
    earlier_texts &operator=(const earlier_texts &) = delete;

    // Begins again, unless the same was read to its end before. The source, which has the default
    // language of the query, must live until the reading is at its end, or forgotten.
    void begin(const neighbour_texts::query &wanted, const LangSource &source);

    // Drops what is being read, without which nothing of the source is looked at any more; what
    // was read to its end stays.
    void stop();

    // Does a piece of the work and goes on until then, or until git is waited for; a little longer
    // where a file is opened or released. False when there is none left.
    bool step(std::chrono::steady_clock::time_point until);

    // How many backups and versions have been gone through.
    std::size_t files() const { return files_; }

    // The original of which the item's translation into a language of the query was made, where
    // it is another one now; else empty.
    std::string of(const edit_t &group, const item_t &item, std::size_t lang) const;

private:
    struct held {
        const item_t *item;
        std::array<bool, 2> is_open; // older backups may tell of its translation
    };
    struct found {
        std::string reference;
        std::string translation;
        bool is_ready;
    };

    void list_some();
    void choose();
    void collect_from(GList *group);
    void collect_some();
    void open_next();
    void begin_file(const std::string &name, std::string text);
    void read_some();
    void ask_git();
    bool read_version();
    bool do_piece();
    void compare(const LangSource &backup, const edit_t &group, const item_t *before);
    void compare(held &now, const std::string &key, const item_t *before, std::size_t lang);
    std::string text_in(const item_t &item, const std::string &lang) const;

    struct folder_release {
        void operator()(DIR *folder) const { closedir(folder); }
    };

    earlier_limits limits_;
    neighbour_texts::query query_;
    const LangSource *source_ = nullptr; // while its backups are read
    GList *group_ = nullptr;             // whose items are collected next
    GList *item_ = nullptr;
    std::unordered_map<std::string, held> rows_;             // by group and name
    std::unique_ptr<DIR, folder_release> folder_;            // while it is listed
    std::string prefix_;                                     // of the backups' paths
    std::set<std::string, std::greater<std::string>> names_; // that are still to be read
    std::unique_ptr<source_walk> file_;                      // null between two
    std::unique_ptr<revisions> versions_;                    // once the backups are read
    bool waits_ = false;                                     // for git
    std::size_t files_ = 0;
    std::size_t bytes_ = 0;
    std::unordered_map<std::string, std::array<found, 2>> found_;
};

} // namespace zel::assist
