#include "editor/frame/edit-start.h"

#include "app/global.h"
#include "app/memory.h"
#include "editor/frame/edit.h"
#include "editor/state/edit-state.h"
#include "editor/table/w_tab_edit.h"
#include "recovery/place.h"
#include "support/file-call.h"
#include "support/log.h"
#include "support/string-copy.h"

#include <clocale>
#include <cstdio>
#include <string>

namespace {

// Opens the log, which has been open since the start where its folder was there. In a fresh home
// the first complaint is worth making the folder.
void open_log()
{
    static bool tried = false;
    if (tried || LogGetFd() != nullptr || lang_global.log_file == nullptr)
        return;
    // Tried once: a home that cannot be written would be tried with each message.
    tried = true;
    if (zel::recovery_folder().empty()) // makes the program's home, or says why there is none
        return;
    zel_mkdir((std::string(lang_get_home()) + "/log").c_str(), 0700);
    LogClose();
    LogOpen(lang_global.log_file, LOG_OPEN_NEW, "ZEL Language editor");
}

// Handler of the toolkit's complaints: they go to the log, since a translator's terminal shows the
// editor's own messages only.
void log_toolkit_message(const gchar *domain, GLogLevelFlags level, const gchar *message, gpointer)
{
    zel::end_on_glib_error(level);
    if ((level & (G_LOG_LEVEL_INFO | G_LOG_LEVEL_DEBUG)) != 0)
        return;
    open_log();
    LogPrint(1, "%s: %s\n", domain == nullptr ? "" : domain, message == nullptr ? "" : message);
    // G_DEBUG ends the process for this one, and the log may be closed already.
    if ((level & G_LOG_FLAG_FATAL) != 0)
        g_log_default_handler(domain, level, message, nullptr);
}

} // namespace

void edit_take_toolkit_args(int *argc, char ***argv)
{
    gtk_parse_args(argc, argv);
    // The toolkit sets the user's locale, for its texts; numbers in files are the same everywhere.
    std::setlocale(LC_NUMERIC, "C");
}

int edit_start(const char *file)
{
    g_log_set_default_handler(log_toolkit_message, nullptr);
    int count = 0;
    if (!gtk_init_check(&count, nullptr)) {
        // The name from the command line comes before that of the environment, as it does for the
        // toolkit.
        const char *display = gdk_get_display_arg_name();
        if (display == nullptr)
            display = g_getenv("DISPLAY");
        if (display == nullptr || display[0] == '\0')
            std::fputs("lang: the editor needs a display, and DISPLAY names none\n", stderr);
        else
            std::fprintf(stderr, "lang: the editor cannot open the display \"%s\"\n", display);
        return 1;
    }
    // The start of the toolkit has set the locale again.
    std::setlocale(LC_NUMERIC, "C");
    zel_tab_edit_get_ctrls(&edit_ctrl);
    edit_more = zel::tab_edit_more();
    zel::replace_string(def_file, zel_strdup(file));
    const int result = edit();
    zel::replace_string(def_file, nullptr);
    return result;
}
