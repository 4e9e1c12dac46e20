#pragma once

// What the other sources in the folder of a source have the same and similar texts translated as.
//
// They are only read, in pieces by whoever has time. Files that are no sources or cannot be read
// are passed over, without a word and without waiting for them; nothing is locked or written. Equal
// texts are kept once.

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <dirent.h>
#include <sys/types.h>

#include "assist/similar.h"
#include "source/model.h"
#include "support/file-call.h"

namespace zel::assist {

// What a text may be translated as.
struct suggestion {
    std::string text;
    std::string origin;    // where it is from, in words
    std::string reference; // the text that it translates
    double likeness;       // of that text; 1: the same
    bool was = false;      // it is what the text itself was, before the code changed
};

struct neighbour_limits {
    std::size_t files = 50;              // that are read
    std::size_t bytes = 32U << 20;       // of all of them
    std::size_t bytes_of_one = 8U << 20; // of a file
    std::size_t texts = 100000;          // that are kept
};

class neighbour_texts {
public:
    explicit neighbour_texts(neighbour_limits limits = {});
    ~neighbour_texts();
    neighbour_texts(const neighbour_texts &) = delete;
    neighbour_texts &operator=(const neighbour_texts &) = delete;

    // What to look for. Languages are names; an empty one is none.
    struct query {
        std::string path;                 // of the source whose neighbours are meant
        std::string reference;            // the language of the texts that are compared
        std::array<std::string, 2> langs; // their translations
        bool has(std::string_view language) const
        {
            return language == reference || language == langs[0] || language == langs[1];
        }
        bool operator==(const query &) const = default;
    };

    // Begins again, unless the query is the same as before.
    void begin(const query &wanted);

    // Drops everything.
    void forget();

    // Does a piece of the work and goes on until then; a little longer where a file is opened or
    // released. False when there is none left.
    bool step(std::chrono::steady_clock::time_point until);

    // The best translation of the text into a language of the query, of what has been read so far;
    // of equal ones that of the first file, in the order of names.
    std::optional<suggestion> best(const std::string &reference, std::size_t lang) const;

    // A text and its translations into the languages of the query.
    struct row {
        std::string reference;
        std::array<std::string, 2> texts;
        std::uint32_t origin;
    };

    // What has been read so far, file by file: it only grows until the next begin or forget. And
    // where a row is from, "GROUP, FILE".
    const std::vector<row> &rows() const { return rows_; }
    const std::string &origin_of(const row &of) const { return origins_[of.origin]; }

private:
    struct file; // that is being read

    void do_piece();
    void list_some();
    void open_next();
    void read_some();
    void keep(const LangSource &source, item_t *item);

    struct folder_release {
        void operator()(DIR *folder) const { closedir(folder); }
    };

    neighbour_limits limits_;
    query query_;
    std::unique_ptr<DIR, folder_release> folder_; // while it is listed
    std::set<std::string> names_;                 // of files that are still to be read
    std::unique_ptr<file> file_;                  // null between two
    std::vector<file_id> seen_;                   // files that are not to be read again
    std::size_t files_ = 0;                       // read
    std::size_t bytes_ = 0;
    std::vector<row> rows_;
    std::vector<std::string> origins_;
    std::unordered_set<std::size_t> kept_; // hashes of the rows
    std::uint32_t next_row_ = 0;           // that is to go into the index
    similar_texts index_;
};

} // namespace zel::assist
