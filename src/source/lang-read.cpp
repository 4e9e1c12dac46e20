#include "source/lang-read.h"

#include "app/global.h"
#include "source/last-line.h"
#include "source/source-grammar.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/string.h"
#include "support/text.h"

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

using zel::outcome;
using zel::read_cause;
using zel::read_how;

// The name and the number are fixed parts of the text, not this file's own lines.
void log_exit(int line) { LogPrint(1, "lang_read_file: ERROR(exit) %s:%d\n", "lang-read", line); }

void log_failure(int number, int line, const char *path)
{
    if (number == zel::read_not_opened)
        LogPrint(1, "lang_read_file: ERROR(exit) >%s< %s:%d\n", path, "lang-read", line);
    else if (line != 0)
        log_exit(line);
}

zel_lex_buf_t *open_input(const char *path, std::string_view text)
{
    // A view without data asks for the file; an empty text is an empty source.
    return text.data() == nullptr
               ? zel_lex_buf_file_new(path)
               : zel_lex_buf_mem_new(text.data(), static_cast<std::uint32_t>(text.size()));
}

// Tells why a file could not be opened.
read_cause why_not_opened(const char *path)
{
    // If a folder on the way cannot be searched, the file may well exist: it is not absent.
    struct stat status;
    const bool there = stat(path, &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
    return there ? read_cause::unreadable : read_cause::absent;
}

// One run over one source file. It goes piece by piece, so that a window can do other work between.
class reading {
public:
    reading(const char *path, const read_how &how);
    bool step(std::uint32_t pieces);
    zel::read_answer answer();

private:
    void not_read(int number, int error, read_cause cause)
    {
        result_ = outcome::give_up;
        number_ = number;
        error_ = error;
        cause_ = cause;
    }
    void end();

    const char *shown_; // the path
    source_guard source_;
    zel_lex_guard lex_;
    unsigned failed_before_ = 0;
    read_how hearing_; // the caller's, with a listener that sets loses_text_ as well
    bool loses_text_ = false;
    zel_lex_buf_guard buf_;
    std::optional<zel::statement_reader> reader_;
    outcome result_ = outcome::go_on;
    read_cause cause_ = read_cause::syntax; // why the file is not read, if it is not
    int number_ = 0;                        // of the message about the file itself
    int error_ = 0;
    bool is_done_ = false;
};

reading::reading(const char *path, const read_how &how) : shown_(path == nullptr ? "" : path)
{
    LogPrint(1, "lang_read_file: entry\n");
    source_.reset(lang_alloc_group());
    lex_.reset(zel_lex_new(zel::source_keywords, zel::source_flags));
    if (!source_ || !lex_) {
        log_exit(128);
        return;
    }
    // Copies that failed before this run are no loss of this file.
    failed_before_ = zel::failed_copies();
    hearing_ = how;
    // The caller keeps how alive as long as this run: the listener refers to it.
    hearing_.listener = [this, &how](const zel::read_message &message) {
        loses_text_ = loses_text_ || message.row->number == zel::read_nul_byte;
        if (how.listener)
            how.listener(message);
    };
    reader_.emplace(zel::source_reader{lex_.get(), shown_, hearing_}, source_.get());
    buf_.reset(open_input(path, how.text));
    if (buf_ == nullptr) {
        const int error = errno;
        not_read(zel::read_not_opened, error, why_not_opened(shown_));
    } else if (buf_->kind == ZEL_LEX_BUF_FILE && buf_->stream == nullptr) {
        // Without a path there is a buffer, but no stream in it.
        not_read(zel::read_no_path, 0, read_cause::absent);
    } else {
        zel_lex_set_buf(lex_.get(), buf_.get());
    }
}

bool reading::step(std::uint32_t pieces)
{
    if (is_done_ || !reader_)
        return false;
    for (; result_ == outcome::go_on && !reader_->is_done(); --pieces) {
        if (pieces == 0)
            return true;
        result_ = reader_->read_piece();
    }
    is_done_ = true;
    if (number_ == 0)
        end();
    return false;
}

void reading::end()
{
    // A file that the system cannot read to its end must not pass for a short one.
    if (zel_lex_buf_read_failed(buf_.get()) != 0) {
        not_read(zel::read_not_opened, buf_->read_error, read_cause::unreadable);
    } else if (zel::failed_copies() != failed_before_ || zel_lex_out_of_memory(lex_.get()) != 0) {
        // The model has gaps: saving it would destroy texts that the file still has.
        cause_ = read_cause::memory;
        if (result_ == outcome::go_on)
            not_read(zel::read_not_opened, 0, read_cause::memory);
    } else if (loses_text_ && hearing_.to_write && result_ == outcome::go_on) {
        // What stands behind the NUL byte is not in the model: a save would delete it from the
        // file.
        result_ = outcome::give_up;
        cause_ = read_cause::unreadable;
    }
}

zel::read_answer reading::answer()
{
    if (!reader_)
        return {nullptr, zel::read_result::unreadable, read_cause::memory};
    if (result_ == outcome::go_on) {
        // A file that was cut reads like a whole one, so this is a warning and no error.
        if ((buf_->stream != nullptr && zel::lacks_last_line(fileno(buf_->stream))) ||
            zel_lex_open_comment(lex_.get()) != 0)
            reader_->fail(zel::read_maybe_cut, {0, 0});
        LogPrint(1, "lang_read_file: exit\n");
        return {std::move(source_), zel::read_result::good, read_cause::none};
    }
    if (number_ != 0)
        reader_->fail(number_, {0, 0}, error_);
    // Freeing the source writes log lines, and the line about the failure is the last one.
    source_.reset();
    lex_.reset();
    buf_.reset();
    log_failure(number_, reader_->log_line, shown_);
    return {nullptr,
            result_ == outcome::stop ? zel::read_result::stopped : zel::read_result::unreadable,
            cause_};
}

} // namespace

int parse_lang_text(zel_lex_t *lex, GList **entries)
{
    const read_how how{0, zel::print_read_message, nullptr};
    zel::source_reader reader{lex, "", how};
    zel::list_tail tail(*entries);
    return reader.read_entry(tail, {}) == outcome::go_on ? 0 : -1;
}

namespace zel {

void note_source_directory(const char *path)
{
    char *dir = nullptr;
    char *file = nullptr;
    zel_split_path_file(path, &dir, &file);
    std::free(file);
    replace_string(lang_global.src_dir, dir);
    lang_global.whatsnew_since = 0;
}

void say_stopped()
{
    // The numbers are fixed parts of the texts, not this file's own lines.
    std::printf("lang_read_file: ERROR(exit) %s:%d\n", "lang-read", 303);
    log_exit(304);
}

read_answer read_source(const char *path, const read_how &how)
{
    reading run(path, how);
    // A step ends only when nothing is left, so this reads the whole file.
    while (run.step(UINT32_MAX)) {
    }
    return run.answer();
}

source_guard read_for_command(const char *path, bool to_write)
{
    note_source_directory(path);
    read_answer answer =
        read_source(path, {lang_global.start_time, print_read_message, nullptr, {}, to_write});
    if (answer.result == read_result::stopped) {
        // Status 0 is deliberate, although the source is not usable: scripts rely on it.
        say_stopped();
        lang_exit(0);
    }
    say_no_memory(path, answer);
    return std::move(answer.source);
}

void say_no_memory(const char *path, const read_answer &answer)
{
    if (answer.cause == read_cause::memory)
        std::fprintf(stderr, "lang: %s: not enough memory\n", or_empty(path));
}

struct source_reading::state {
    // The order counts: run refers to path and how, so they are made first and destroyed last.
    std::string path;
    read_how how;
    reading run;

    state(const char *given, const read_how &as) : path(given), how(as), run(path.c_str(), how) {}
};

source_reading::source_reading(const char *path, const read_how &how)
    : state_(std::make_unique<state>(path, how))
{
}
source_reading::~source_reading() = default;

bool source_reading::step(std::uint32_t pieces) { return state_->run.step(pieces); }
read_answer source_reading::answer() { return state_->run.answer(); }

} // namespace zel

LangSource *lang_read_file(const char *path)
{
    return zel::read_for_command(path, false).release();
}
