#pragma once

// A file that missing texts are taken from: a source, or a file of another format. What a catalog
// keeps of its older versions, its obsolete messages, counts behind everything else of it.

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/formats.h"
#include "kit/support/entry-index.h"
#include "kit/support/likeness.h"
#include "source/model.h"
#include "support/hash-index.h"

namespace zel::kit {

class donor {
public:
    donor() = default;
    ~donor(); // the source itself stays to the end of the process
    donor(const donor &) = delete;
    donor &operator=(const donor &) = delete;

    // Reads the file for the source that will be filled. The language, unless it is empty, is that
    // of a file of another format, whatever it says. False after a line on standard error.
    bool read(const std::string &path, const LangSource &source, const std::string &language);

    // False for a file of another format, after a line on standard error, when the source has none
    // of its languages.
    bool knows_language() const;

    // Chooses the source's language in which texts are asked for from now on.
    void choose(const char *language);

    // The text of that item, or of the first one that was translated from the reference text;
    // empty when there is none.
    std::string_view by_key(std::string_view group, std::string_view item) const;
    std::string_view by_reference(std::string_view reference) const;

    // The text of which the reference is most like that one; no likeness: of none is it so much.
    struct near_text {
        std::string_view reference;
        std::string_view text;
        unsigned likeness = 0; // percent
    };
    near_text by_likeness(const compared_text &reference, unsigned at_least);

    // Texts that were not offered because they are not in the source's encoding.
    std::size_t foreign() const { return foreign_; }

private:
    struct offer {
        bool keyed;
        std::string_view group;
        std::string_view item;
        std::string_view reference; // empty: not known
        std::string_view text;
    };
    bool take_obsolete();
    bool join_plurals();
    void compare_references();
    void offer_source(const char *language);
    void offer_units(const char *language);
    void add(const offer &one);
    std::string_view joined(GList *texts);

    std::string path_;
    source_guard source_;
    std::optional<entry_index> entries_; // of it
    exchange::file_texts file_;
    std::vector<std::string_view> languages_; // of the file, as the source names them; else empty
    bool same_encoding_ = true;

    // The offers in the chosen language.
    std::vector<offer> offers_;
    hash_index keys_;
    hash_index references_;
    std::deque<std::string> joined_; // of several strings

    // Their references, where somebody asks what is like one.
    bool are_compared_ = false;
    std::vector<compared_text> compared_;
    std::vector<std::uint32_t> compared_offers_; // whose each is
    likeness_index alike_;
    std::size_t foreign_ = 0;
};

} // namespace zel::kit
