#include "assist/neighbours.h"

#include "assist/source-walk.h"
#include "lint/glossary.h"
#include "source/entry.h"
#include "source/misc.h"
#include "support/text.h"

#include <algorithm>
#include <string_view>
#include <sys/stat.h>

namespace zel::assist {

namespace {

constexpr std::string_view ending = ".lang-src";
constexpr std::size_t most_names = 1000;    // in a folder of more, the first ones of the listing
constexpr std::size_t listed_at_once = 500; // entries

} // namespace

struct neighbour_texts::file {
    std::string name;
    source_walk walk;
    const edit_t *group = nullptr; // whose items are kept

    file(std::string given, std::string text, source_walk::keeps kept)
        : name(std::move(given)), walk(name, std::move(text), std::move(kept))
    {
    }
};

neighbour_texts::neighbour_texts(neighbour_limits limits)
    : limits_(limits), index_([this](std::uint32_t number) { return rows_[number].reference; })
{
}

neighbour_texts::~neighbour_texts() = default;

void neighbour_texts::forget()
{
    query_ = {};
    file_.reset();
    folder_.reset();
    names_.clear();
    seen_.clear();
    files_ = 0;
    bytes_ = 0;
    // Gives the memory back: the rows of a large folder take tens of megabytes.
    std::vector<row>().swap(rows_);
    origins_.clear();
    kept_.clear();
    next_row_ = 0;
    index_.reset(0);
}

void neighbour_texts::begin(const query &wanted)
{
    if (wanted == query_)
        return;
    forget();
    query_ = wanted;
    struct stat own {};
    if (wanted.path.empty() || stat(wanted.path.c_str(), &own) != 0)
        return;
    // The source itself is no neighbour, under whatever name the folder has it.
    seen_.push_back(id_of(own));
    const std::string folder = folder_of(wanted.path);
    folder_.reset(opendir(folder.empty() ? "." : folder.c_str()));
}

void neighbour_texts::list_some()
{
    // Collects names only, and some at a time: the folder may be large, or on a slow disk.
    for (std::size_t count = 0; count < listed_at_once; ++count) {
        const dirent *entry = readdir(folder_.get());
        if (entry == nullptr || names_.size() >= most_names) {
            folder_.reset();
            return;
        }
        const std::string_view name = entry->d_name;
        // Terms are no whole texts, and may be several in one.
        if (name.size() > ending.size() && name.ends_with(ending) && name != lint::glossary_file)
            names_.emplace(name);
    }
}

void neighbour_texts::keep(const LangSource &source, item_t *item)
{
    row found{text_of(misc_select_lang_entry(item, query_.reference.c_str())),
              {},
              static_cast<std::uint32_t>(origins_.size() - 1)};
    // As in the editor's own source the item is the text where there is none.
    if (found.reference.empty() && item->name != nullptr && source.default_lang != nullptr &&
        query_.reference == source.default_lang)
        found.reference = item->name;
    bool any = false;
    // Rows are kept by the hash of all their texts: the same texts in many files would only fill
    // the index.
    std::string all = found.reference;
    for (std::size_t lang = 0; lang < query_.langs.size(); ++lang) {
        if (!query_.langs[lang].empty()) {
            lang_entry_t *entry = misc_select_lang_entry(item, query_.langs[lang].c_str());
            if (misc_search_empty_in_lang_entry(entry) == 0)
                found.texts[lang] = text_of(entry);
        }
        any = any || !found.texts[lang].empty();
        all.append(1, '\0').append(found.texts[lang]);
    }
    if (any && !found.reference.empty() && rows_.size() < limits_.texts &&
        kept_.insert(std::hash<std::string>()(all)).second)
        rows_.push_back(std::move(found));
}

// Keeps some items of the file that is read.
void neighbour_texts::read_some()
{
    const auto take = [this](const LangSource &source, const edit_t &group, item_t *item) {
        if (file_->group != &group)
            origins_.push_back(std::string(or_empty(group.name)) + ", " + file_->name);
        file_->group = &group;
        if (item->used != 0)
            keep(source, item);
    };
    if (!file_->walk.step(take))
        file_.reset();
}

void neighbour_texts::open_next()
{
    // Names come in their order, so that equal suggestions are from the same file at every start.
    const std::string name = names_.extract(names_.begin()).value();
    if (files_ >= limits_.files || rows_.size() >= limits_.texts) {
        names_.clear();
        return;
    }
    std::optional<std::string> text =
        read_regular(folder_of(query_.path) + name, [this](const struct stat &status) {
            const auto size = static_cast<std::size_t>(status.st_size);
            // Links give a file several names in a folder: it is read once.
            const bool is_new = std::find(seen_.begin(), seen_.end(), id_of(status)) == seen_.end();
            if (!is_new || size == 0 || size > limits_.bytes_of_one ||
                bytes_ + size > limits_.bytes)
                return false;
            seen_.push_back(id_of(status));
            return true;
        });
    if (!text)
        return;
    ++files_;
    bytes_ += text->size();
    file_ = std::make_unique<file>(
        name, std::move(*text), [this](std::string_view language) { return query_.has(language); });
}

void neighbour_texts::do_piece()
{
    // Rows go into the index before the next file is opened, so suggestions come from the first
    // file while the others are still to be read.
    if (folder_ != nullptr)
        list_some();
    else if (next_row_ < rows_.size())
        index_.add(next_row_++);
    else if (file_ == nullptr)
        open_next();
    else
        read_some();
}

bool neighbour_texts::step(std::chrono::steady_clock::time_point until)
{
    do {
        if (folder_ == nullptr && file_ == nullptr && names_.empty() && next_row_ >= rows_.size()) {
            // No more rows to compare with. Not cleared: that would keep the memory of its buckets.
            decltype(kept_)().swap(kept_);
            return false;
        }
        do_piece();
    } while (std::chrono::steady_clock::now() < until);
    return true;
}

std::optional<suggestion> neighbour_texts::best(const std::string &reference,
                                                std::size_t lang) const
{
    const auto found = index_.best(
        reference, [&](std::uint32_t other) { return !rows_[other].texts[lang].empty(); });
    if (!found)
        return std::nullopt;
    const row &at = rows_[found->item];
    return suggestion{at.texts[lang], origins_[at.origin], at.reference, found->likeness};
}

} // namespace zel::assist
