#pragma once

// Writing a language source file.

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

#include "source/model.h"
#include "support/file-call.h"

namespace zel {

struct write_how {
    const char *only_lang_1 = nullptr; // both given: the file gets these languages and no other
    const char *only_lang_2 = nullptr;
    std::int64_t now = 0; // becomes the source's mtime and the old file's stamp

    std::FILE *messages = nullptr; // where they go; null: standard output

    // For a file that is made from several sources:
    bool keep_mtime = false;    // the source has its own
    const char *name = nullptr; // in the file's last line, where that is not the path
    bool backup = true;         // the old file is kept

    // Called when the new text is whole and this program has its turn at the folder, and again
    // right before the old file is replaced, also when a copy came between. Returns false if the
    // old file is not the one that the source was made from.
    std::function<bool()> may_replace = nullptr;
};

inline constexpr int write_not_allowed = 2; // a code of write_answer

struct write_answer {
    int code = 0;       // 0: success, else as below
    std::string backup; // what the old file is called now; empty when there was none
    file_id file{};     // what was put in its place

    // Why nothing was put there, unless the code is write_not_allowed: errno, and the cause in
    // words.
    int error = 0;
    std::string why{};
};

// Replaces the file at the path, or the one that its links lead to, by the source. With only_used,
// items that are not used are left out. The old file keeps its text, where that is wanted, as
// path-YYYY-MM-DD-HH-MM-SS.bak and gives the new one its mode, and owner, group, access list and
// user's attributes as far as it may. The text goes through "lang.tmp" in the current folder, which
// two programs use one after the other; it is on the disk, whole, before anything happens to the
// old file, and at every moment the path names the old text or the new one.
// Codes, each but 0 with a message: 0 success (also for a null source); 1 the old file cannot be
// kept under its dated name or is no regular file, or lang.tmp cannot take its place (it stays
// then); -1 lang.tmp cannot be made, or there is no room for the text. write_not_allowed, without a
// message: may_replace has said no. Unless the code is 0 the old file is where it was. Standard
// error tells the cause, and of further names (hard links) that keep the old text.
// Who saves in the source's folder, from wherever, takes a turn (folder_turn); where none is to be
// had, the text is saved all the same, and standard error says why it did not wait.
write_answer write_source(const char *path, LangSource *source, const write_how &how);

} // namespace zel

// write_source at the current time; with lang_global's save_selected_only its two output languages.
int lang_write_file(const char *path, LangSource *source);
