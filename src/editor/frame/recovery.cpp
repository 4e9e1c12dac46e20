#include "editor/frame/recovery.h"

#include "app/global.h"
#include "editor/frame/recovery-ask.h"
#include "editor/frame/source-watch.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/ui-text.h"
#include "recovery/place.h"
#include "recovery/recovery-file.h"
#include "source/lang-read.h"
#include "support/log-print.h"

#include <cstring>
#include <ctime>
#include <optional>
#include <string>
#include <unistd.h>

guint zel::recovery_interval = 30 * 1000;

namespace {

constexpr int most_restarts = 3;
constexpr int no_folder = -1;

struct session {
    zel::recovery_writer writer;
    std::string path;  // of this session's file; empty: none can be written
    std::string taken; // what the user took; removed once there is this session's file
    std::optional<unsigned> written; // zel::edit_changes that the file holds, if there is one
    unsigned started = 0;            // those of what is being written
    int restarts = 0;
    int said = 0; // the last error that was told; no_folder counts as one
    bool result_waits = false;
    guint timer = 0;
    guint idle = 0;
};
session now;

bool is_made_by_looking(const lang_entry_t *entry)
{
    return editWin != nullptr && edit_more.is_made != nullptr &&
           edit_more.is_made(editWin, entry) != 0;
}

void begin(zel::recovery_writer &writer, const std::string &path)
{
    // What is still in the fields belongs to the state.
    if (editWin != nullptr && edit_ctrl.update != nullptr)
        edit_ctrl.update(editWin);
    // Before the writer begins: a change while it writes must count as newer.
    now.started = zel::edit_changes;
    writer.begin(path, zel::watched_path(), zel::watched_state(), std::time(nullptr), def_group,
                 is_made_by_looking);
}

// Tells that nothing can be kept, in the status line as well: where there can be no recovery file,
// there may be no log.
void say_unkept(int error)
{
    // Told once for each cause: the status line is needed for other things every half minute.
    if (error == now.said)
        return;
    now.said = error;
    std::string text = zel::ui_text("recovery", "No recovery file can be written, save often");
    if (error != no_folder)
        text.append(": ").append(std::strerror(error));
    zel::edit_status(text.c_str());
}

void remove_taken()
{
    if (!now.taken.empty() && now.taken != now.path)
        unlink(now.taken.c_str());
    now.taken.clear();
}

void stop_pieces()
{
    if (now.idle != 0)
        g_source_remove(now.idle);
    now.idle = 0;
}

// Takes the result of the last writing: the file is in its place, or could not be put there.
void take_result()
{
    if (!now.result_waits)
        return;
    now.result_waits = false;
    const int error = now.writer.error();
    if (error == 0) {
        now.written = now.started;
        now.said = 0;
        // Only now is the state that was taken safe in a file of this session.
        remove_taken();
        return;
    }
    if (error != now.said)
        LogPrint(1, "recovery: ERROR(%d) %s write %s\n", error, std::strerror(error),
                 now.path.c_str());
    say_unkept(error);
}

// Writes one piece. Begins again where somebody has typed meanwhile, but not for ever: who types
// without a pause must get a file, too.
gboolean write_piece(gpointer)
{
    if (now.started != zel::edit_changes && now.restarts < most_restarts) {
        ++now.restarts;
        begin(now.writer, now.path);
    }
    if (now.writer.step(zel::recovery_items_at_a_time))
        return TRUE;
    now.idle = 0;
    // The thread may still work: the next look takes its result.
    now.result_waits = true;
    return FALSE;
}

bool is_changed()
{
    return def_group != nullptr && !now.path.empty() && lang_global.modified != 0 &&
           now.written != zel::edit_changes;
}

gboolean look(gpointer)
{
    // The last writing is still under way: this look does nothing.
    if (now.idle != 0 || now.writer.is_busy())
        return TRUE;
    take_result();
    if (lang_global.modified == 0 && now.written)
        zel::recovery_drop(); // everything was undone
    // Only with changes is it worth a message.
    if (def_group != nullptr && lang_global.modified != 0 && now.path.empty())
        say_unkept(no_folder);
    if (!is_changed())
        return TRUE;
    now.restarts = 0;
    begin(now.writer, now.path);
    now.idle = g_idle_add(write_piece, nullptr);
    return TRUE;
}

// Returns the state that the file holds, when the user wants it.
source_guard offer(GtkWidget *parent, const zel::recovery_file &file)
{
    zel::read_answer answer = zel::read_source(file.path.c_str(), {lang_global.start_time, {}, {}});
    // A file that cannot be read stays where it is: a person may still rescue it by hand.
    if (!answer.source) {
        LogPrint(1, "recovery: ERROR %s cannot be read\n", file.path.c_str());
        return nullptr;
    }
    const auto differences = [&answer] {
        // Without the entries that exist only because the first item is shown.
        const zel::source_to_write whole;
        return zel::differences_to(def_group, answer.source.get());
    };
    zel::recovery_question question{zel::watched_path(), std::time(nullptr) - file.written,
                                    !file.source.same_text(zel::watched_state()), file.declined,
                                    differences()};
    if (question.differences.empty()) {
        unlink(file.path.c_str()); // all of it has been saved already
        return nullptr;
    }
    if (zel::ask_recovery(parent, question))
        return std::move(answer.source);
    if (const int error = zel::decline(file))
        LogPrint(1, "recovery: ERROR(%d) %s rename %s\n", error, std::strerror(error),
                 file.path.c_str());
    return nullptr;
}

} // namespace

namespace zel {

source_guard recovery_offer(GtkWidget *parent)
{
    now.taken.clear();
    // The other editor writes a recovery file of its own, which is in use.
    if (!watch_is_alone())
        return nullptr;
    const std::string folder = recovery_folder();
    if (folder.empty())
        return nullptr;
    for (const recovery_file &file : find_recovery_files(folder, watched_path())) {
        if (source_guard source = offer(parent, file)) {
            now.taken = file.path;
            return source;
        }
    }
    return nullptr;
}

void recovery_begin()
{
    const std::string folder = recovery_folder();
    // A name of this session's own: the file that was offered stays until this one is written.
    now.path = folder.empty() ? folder : recovery_path(folder, watched_path(), std::time(nullptr));
    now.written.reset();
    now.said = 0;
    if (now.timer == 0)
        now.timer = g_timeout_add(recovery_interval, look, nullptr);
}

void recovery_end()
{
    stop_pieces();
    if (now.timer != 0)
        g_source_remove(now.timer);
    now.timer = 0;
    now.writer.abandon();
    take_result();
    now.path.clear();
    now.taken.clear();
}

void recovery_drop()
{
    stop_pieces();
    // Waits for the thread: a file that it puts in place later would offer saved changes.
    now.writer.abandon();
    now.result_waits = false;
    remove_taken();
    now.written.reset();
    if (!now.path.empty())
        unlink(now.path.c_str());
}

void recovery_write_soon() { look(nullptr); }

void recovery_write_now(bool alone)
{
    if (!is_changed())
        return;
    if (alone) {
        // A writer of its own: the session's may be in the middle of anything.
        recovery_writer writer;
        begin(writer, recovery_path(recovery_folder(), watched_path(), std::time(nullptr)));
        writer.finish(true);
        return;
    }
    // The pieces so far are of an older state; the whole is written at once.
    stop_pieces();
    begin(now.writer, now.path);
    now.writer.finish();
    now.result_waits = true;
    take_result();
}

bool recovery_is_up_to_date() { return now.idle == 0 && !now.writer.is_busy() && !is_changed(); }

} // namespace zel
