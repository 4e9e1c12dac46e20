#pragma once

// The list of terms beside a source (lint/glossary) as the editor reads it and adds to it.

#include <cstdint>
#include <string>

#include "source/model.h"
#include "source/read-message.h"

namespace zel::assist {

// The first thing of a list that could not be read, and its place in the file (line 0: none).
struct list_fault {
    const char *meaning = nullptr; // as the reader's messages have it; null: the whole list is read
    place at;
};

// Null when there is no regular file, or it does not read.
source_guard read_terms(const std::string &path, list_fault &fault);

struct term_pair {
    std::string term;
    std::string language; // of the translation
    std::string translation;
};

enum class term_news {
    added,
    known,      // it was there
    kept,       // the list says that the term stays as it is
    unreadable, // or a part of it was not understood, which writing would lose
    changed,    // by another program meanwhile
    failed      // it cannot be written
};

struct term_answer {
    term_news news;
    std::string why; // it failed
};

// Adds a pair to the list at the path, safely, and keeps the old file; makes one where there is
// none, with the languages as that source defines them. What the term is called already stays.
term_answer add_term(const std::string &path, const LangSource &like, const term_pair &pair,
                     std::int64_t now);

} // namespace zel::assist
