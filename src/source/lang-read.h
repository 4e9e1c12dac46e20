#pragma once

// Reading a language source file (*.lang-src).
//
//   VERSION [n]  WHATSNEW n  CTIME n  MTIME n  CREATE_DATE "date"  APP "name"
//   DEFAULT LANG "language"  COLWIDTH GROUP|ITEM|CTRL n
//   DEFINE { FILE "file" LANG "language" [n [n [n]]] | FORMAT ASCII|UTF8 } ...
//   GROUP "name" { USED YES|NO  VISIBLE n  SCREEN_SHOT "name"
//     ITEM "name" {
//       VISIBLE n  USED YES|NO [{ "place" ... }]  CHANGED  SIZE n [n]  ROWHEIGHT n  TYP n
//       READY n  CATEGORY|DESCRIPTION "text"  CTIME [-]n
//       LANG "language" { "line" ... }  COMMENT "language" { "line" ... }
//     }
//   }
//
// Keywords in any case; /* */ and // comments.

#include <cstdint>
#include <memory>

#include "lex/lex.h"
#include "source/model.h"
#include "source/read-how.h"

namespace zel {

enum class read_result {
    good,
    unreadable, // missing, not readable, or malformed
    stopped     // malformed inside a group: a command that reads it ends
};

enum class read_cause {
    none,
    absent,     // there is no such file, or no path was given
    unreadable, // it is there and could not be opened or read through, or, to be written, is one
                // that would lose something
    memory,
    syntax
};

struct read_answer {
    source_guard source; // null unless good
    read_result result;
    read_cause cause;
};

// Reads a file into a new source. Logs, prints nothing, never ends the process.
read_answer read_source(const char *path, const read_how &how);

// The same in pieces, for a window that has to react between them. Whatever how points to, text and
// places, must outlive this object.
class source_reading {
public:
    source_reading(const char *path, const read_how &how);
    ~source_reading();
    source_reading(const source_reading &) = delete;
    source_reading &operator=(const source_reading &) = delete;

    // Reads at most that many items and statements; false once there are no more.
    bool step(std::uint32_t pieces);

    // Returns the answer. Call once, after the last step.
    read_answer answer();

private:
    struct state;
    std::unique_ptr<state> state_;
};

// Files beside the source are found through lang_global's src_dir: set to the path's directory.
void note_source_directory(const char *path);

// Prints what a command says after a stopped read, before it ends.
void say_stopped();

// Prints one line on standard error if lack of memory was the cause.
void say_no_memory(const char *path, const read_answer &answer);

// read_source for commands: messages are printed by print_read_message, the source's directory is
// noted, a stopped read ends the process. Null when the file cannot be read.
source_guard read_for_command(const char *path, bool to_write);

} // namespace zel

// read_for_command for a source that is not written back. The caller owns the result.
[[nodiscard]] LangSource *lang_read_file(const char *path);

// Reads one entry after LANG or COMMENT and appends it to the list: 0, or -1 after a message.
int parse_lang_text(zel_lex_t *lex, GList **entries);
