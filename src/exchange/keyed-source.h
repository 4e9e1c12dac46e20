#pragma once

// A new source from files with a text for each key (exchange/keyed-file.h).
//
// An item is its text in the default language, as everywhere, so that language's file must be there
// and is looked at first, whichever it is; it may be the only one that says no language. The group
// is the first part of the key, or else the name of a file that lies in a language's folder; the
// whole key is the description. Keys of one group that have one text in every language are one
// item; those that are translated differently are several, in groups with a number. Texts of keys
// that the default language lacks are left out, which is said, and so is what a language has no
// forms for.

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "exchange/keyed-file.h"
#include "exchange/new-source.h"

namespace zel::exchange {

class keyed_source {
public:
    keyed_source(new_source &made, std::string default_language)
        : made_(made), default_language_(std::move(default_language))
    {
    }

    // Reads a file of any language.
    fault take(keyed_reader read, const std::string &path, std::string_view bytes);

    // Fills the source when all files are there. A fault is one of the file at the path.
    fault finish(std::string &path);

private:
    struct part {
        std::string path;
        said_language said;
        std::string language; // as the source names it
        std::string scope;    // the file's name, where its folder says the language
        bool has_suffixes;
        std::vector<keyed_text> texts;
        std::unordered_map<std::string, std::size_t> places; // by identity
    };

    static void look_at_folder(part &of);
    void find_plurals(const part &of);
    void join_forms(part &of) const;
    std::string signature(const std::string &identity, const part &reference) const;
    std::vector<po_message> messages_of(const part &reference);
    fault translate(const part &of, const std::vector<po_message> &messages);
    std::vector<part>::iterator find_reference();
    void tell_missing_forms(const part &of);

    new_source &made_;
    std::string default_language_;
    std::vector<part> parts_;
    std::unordered_set<std::string> plurals_;               // identities, in any language
    std::unordered_map<std::string, std::size_t> messages_; // of the reference, by identity
};

} // namespace zel::exchange
