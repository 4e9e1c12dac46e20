#include "editor/frame/end-signals.h"

#include "app/global.h"
#include "config/ini.h"
#include "editor/frame/edit-file.h"
#include "editor/frame/recovery.h"
#include "editor/frame/source-watch.h"
#include "support/log.h"

#include <X11/Xlib.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <glib-unix.h>
#include <iterator>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct asked_end {
    int number;
    guint source;
};
asked_end asked_ends[] = {{SIGTERM, 0}, {SIGHUP, 0}, {SIGINT, 0}};

gboolean end_in_order(gpointer data)
{
    const int number = GPOINTER_TO_INT(data);
    LogPrint(1, "end: signal %d\n", number);
    // The state first: whatever fails after it, the changes are kept.
    zel::recovery_write_now();
    prg_exit();
    LogClose();
    // The status that a shell gives for a process that the signal has ended.
    lang_exit(128 + number);
}

bool is_ignored(int number)
{
    struct sigaction now {};
    // A handler of three arguments shares its place with the simple one, whose value says nothing
    // then.
    return sigaction(number, nullptr, &now) == 0 && (now.sa_flags & SA_SIGINFO) == 0 &&
           now.sa_handler == SIG_IGN;
}

XIOErrorHandler handler_before;

// Ends without the display. The widgets are left alone: every call to the display would lead here
// again.
int end_without_display(Display *)
{
    static bool ending;
    if (ending)
        _exit(1);
    ending = true;
    LogPrint(1, "end: the display is gone\n");
    zel::recovery_write_now();
    // Not prg_exit, which would destroy the table's widgets.
    ini_write(ini);
    ini_free(ini);
    zel::watch_end();
    std::fputs("lang: the display is gone\n", stderr);
    std::fflush(stdout);
    LogClose();
    // Not exit, whose handlers would talk to the display.
    _exit(1);
}

struct crash {
    struct sigaction before;
    int number;
    bool is_ours;
};
crash crashes[] = {{{}, SIGABRT, false},
                   {{}, SIGSEGV, false},
                   {{}, SIGBUS, false},
                   {{}, SIGFPE, false},
                   {{}, SIGILL, false}};

void give_back(crash &row)
{
    if (row.is_ours)
        sigaction(row.number, &row.before, nullptr);
    row.is_ours = false;
}

// Runs in the copy of the process: whatever happens to it, it ends.
[[noreturn]] void write_and_end()
{
    constexpr unsigned patience = 3;
    sigset_t none;
    sigemptyset(&none);
    // A crash in the copy must not make a copy of its own.
    for (const crash &row : crashes)
        std::signal(row.number, SIG_DFL);
    std::signal(SIGALRM, SIG_DFL);
    // The handler runs with its own signal blocked, and the copy inherits that.
    sigprocmask(SIG_SETMASK, &none, nullptr);
    // A lock that another thread held at the crash is never released here.
    alarm(patience);
    zel::recovery_write_now(true);
    _exit(0);
}

// Handler of a crash. The process may hold any lock and have any of its memory spoilt, so it does
// nothing itself but wait. A copy that hangs or crashes in its turn has done no harm.
void on_crash(int number)
{
    static volatile std::sig_atomic_t inside;
    // A second crash, while the first is dealt with, goes straight on to its end.
    if (inside == 0) {
        inside = 1;
        // Not fork, whose handlers take locks of the allocator.
        const pid_t copy = _Fork();
        if (copy == 0)
            write_and_end();
        if (copy > 0)
            waitpid(copy, nullptr, 0);
    }
    for (crash &row : crashes) {
        // The handler from before must be run by hand: raising the signal would skip its message.
        const auto before = row.before.sa_handler;
        if (row.number == number && row.is_ours && before != SIG_DFL && before != SIG_IGN)
            before(number); // ends the process where there is no memory
        give_back(row);
    }
    std::signal(number, SIG_DFL);
    raise(number); // once this handler has returned
}

// Takes the signal over, unless something else than the program's own handler for want of memory
// already handles it.
void take(crash &row)
{
    struct sigaction action {};
    if (sigaction(row.number, nullptr, &row.before) != 0)
        return;
    const bool is_free = row.before.sa_handler == SIG_DFL || row.number == SIGABRT;
    if (!is_free || (row.before.sa_flags & SA_SIGINFO) != 0)
        return;
    action.sa_handler = on_crash;
    row.is_ours = sigaction(row.number, &action, nullptr) == 0;
}

} // namespace

namespace zel {

void end_signals_begin()
{
    for (asked_end &row : asked_ends)
        if (!is_ignored(row.number))
            row.source = g_unix_signal_add(row.number, end_in_order, GINT_TO_POINTER(row.number));
    handler_before = XSetIOErrorHandler(end_without_display);
    for (crash &row : crashes)
        take(row);
}

void end_signals_end()
{
    for (asked_end &row : asked_ends) {
        if (row.source != 0)
            g_source_remove(row.source);
        row.source = 0;
    }
    XSetIOErrorHandler(handler_before);
    for (crash &row : crashes)
        give_back(row);
}

} // namespace zel
