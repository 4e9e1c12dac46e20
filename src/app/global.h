#pragma once

// What the whole process shares: the global record, the home directory, and the one way to end the
// process from inside a job.

#include <cstdint>
#include <string>

struct _GtkWidget;

struct lang_global_t {
    std::int64_t start_time;   // program start; new entries are stamped with it
    std::uint32_t editor_mode; // 0 normal, 1 "-zel", 2 "-zel2"
    char *start_dir;           // directory of the file named after "edit", owned
    char *output_lang_1;       // the two languages shown side by side, owned
    char *output_lang_2;
    char *default_dst_dir; // default export directory; nothing sets it
    char *doc_base_dir;    // the program's data directory, owned
    char *doc_dir;         // its "doc" folder, owned
    char *log_file;        // path of the program log, owned

    std::int32_t posnr;              // write position numbers when compiling
    char *src_dir;                   // directory of the last source read, owned
    std::int32_t save_selected_only; // the writer keeps only the two output languages
    std::int64_t whatsnew_since;     // the editor hides items older than this

    std::int32_t modified;          // the source has changes that were not saved
    std::int32_t text_lock;         // text views are being filled: changes are no edits
    std::int32_t only_untranslated; // the list shows only items that lack a text
    std::int32_t importing;         // the table is refreshed after an import
    std::uint32_t digit_keys;       // bits 0 and 1: digit-key substitution

    _GtkWidget *shot_window; // the main window's widgets, owned by the toolkit
    _GtkWidget *shot_image;
    _GtkWidget *edit_tab_label;
    _GtkWidget *shot_tab_label;
    _GtkWidget *info_box;
    _GtkWidget *create_date_label;
    _GtkWidget *mtime_label;
    _GtkWidget *file_label;
    _GtkWidget *export_path_label;
};

extern lang_global_t lang_global;

// Zeroes the record, stores the start time, opens the program log under the home directory and
// fills log_file, doc_base_dir and doc_dir. A log path of more than 2047 bytes is cut in log_file
// and not opened; nor is one over somebody else's link. Standard error tells of both.
void lang_global_init();

// "%s/%s" of HOME and "Morvalix 6.00", computed once; lang_home_free drops the cached string.
const char *lang_get_home();
void lang_home_free();

// The directory of the running program, with its final "/"; empty when the system does not tell.
// What belongs to the program is found from there, so that an installed tree may be moved.
namespace zel {
std::string program_directory();
}

// Ends the process with the status. Only operations that are said to end it call this, each beside
// one that answers instead.
[[noreturn]] void lang_exit(int status);
