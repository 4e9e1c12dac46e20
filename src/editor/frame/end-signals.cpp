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
    zel::recovery_write_now();
    prg_exit();
    LogClose();
    lang_exit(128 + number);
}

bool is_ignored(int number)
{
    struct sigaction now {};
    return sigaction(number, nullptr, &now) == 0 && (now.sa_flags & SA_SIGINFO) == 0 &&
           now.sa_handler == SIG_IGN;
}

XIOErrorHandler handler_before;

// The widgets are left alone: every call to the display would end here again.
int end_without_display(Display *)
{
    static bool ending;
    if (ending)
        _exit(1);
    ending = true;
    LogPrint(1, "end: the display is gone\n");
    zel::recovery_write_now();
    ini_write(ini);
    ini_free(ini);
    zel::watch_end();
    std::fputs("lang: the display is gone\n", stderr);
    std::fflush(stdout);
    LogClose();
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

// In the copy: whatever happens to it, it ends.
[[noreturn]] void write_and_end()
{
    constexpr unsigned patience = 3;
    sigset_t none;
    sigemptyset(&none);
    for (const crash &row : crashes)
        std::signal(row.number, SIG_DFL);
    std::signal(SIGALRM, SIG_DFL);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    alarm(patience);
    zel::recovery_write_now(true);
    _exit(0);
}

// The process may hold any lock and have any of its memory spoilt, so it does nothing itself but
// wait. A copy that hangs or crashes in its turn has done no harm.
void on_crash(int number)
{
    static volatile std::sig_atomic_t inside;
    if (inside == 0) {
        inside = 1;
        const pid_t copy = _Fork();
        if (copy == 0)
            write_and_end();
        if (copy > 0)
            waitpid(copy, nullptr, 0);
    }
    for (crash &row : crashes) {
        const auto before = row.before.sa_handler;
        if (row.number == number && row.is_ours && before != SIG_DFL && before != SIG_IGN)
            before(number); // ends the process where there is no memory
        give_back(row);
    }
    std::signal(number, SIG_DFL);
    raise(number); // once this handler has returned
}

// Not where something else than the program's own handler for want of memory looks after it.
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
