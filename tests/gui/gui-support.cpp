#include "gui-support.h"

#include "app/global.h"
#include "editor/frame/edit-start.h"
#include "editor/state/edit-state.h"
#include "support/string-copy.h"

#include <gdk/gdkkeysyms.h>

#include <deque>
#include <filesystem>
#include <unistd.h>

namespace gui {
namespace {

namespace fs = std::filesystem;

std::deque<answer_fn> answers;
constexpr const char *answered = "test-answered"; // data of a dialog that has had its answer
std::vector<std::string> warning_log;
guint watcher;
constexpr unsigned time_limit = 240; // seconds; a test that waits for ever ends the program

void note_warning(const gchar *domain, GLogLevelFlags level, const gchar *message, gpointer)
{
    if ((level & (G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_ERROR)) != 0)
        warning_log.push_back(std::string(domain == nullptr ? "" : domain) + ": " + message);
}

template <class Fn>
void each_toplevel(Fn visit)
{
    GList *windows = gtk_window_list_toplevels();
    for (GList *node = windows; node != nullptr; node = node->next)
        visit(static_cast<GtkWidget *>(node->data));
    g_list_free(windows);
}

// A modal window that is up and has not had its answer yet.
GtkWidget *unanswered_dialog()
{
    GtkWidget *found = nullptr;
    each_toplevel([&](GtkWidget *window) {
        if (GTK_IS_WINDOW(window) && gtk_widget_get_mapped(window) &&
            gtk_window_get_modal(GTK_WINDOW(window)) &&
            g_object_get_data(G_OBJECT(window), answered) == nullptr)
            found = window;
    });
    return found;
}

gboolean watch_dialogs(gpointer)
{
    GtkWidget *dialog = unanswered_dialog();
    if (dialog == nullptr)
        return TRUE;
    g_object_set_data(G_OBJECT(dialog), answered, GINT_TO_POINTER(1));
    if (answers.empty()) {
        std::string texts;
        for (const std::string &text : label_texts(dialog))
            texts += text + "\n";
        ADD_FAILURE() << "a dialog that no test announced: " << texts;
        close_window()(dialog);
        return TRUE;
    }
    answer_fn answer = std::move(answers.front());
    answers.pop_front();
    answer(dialog); // may run a loop of its own, in which this watcher answers the next dialog
    return TRUE;
}

// The watcher goes on while an answer of its own runs a nested loop: each tick is a fresh source.
gboolean tick(gpointer)
{
    watcher = g_timeout_add(5, tick, nullptr);
    watch_dialogs(nullptr);
    return FALSE;
}

void collect(GtkWidget *widget, const std::function<bool(GtkWidget *)> &wanted,
             std::vector<GtkWidget *> &found)
{
    if (widget == nullptr)
        return;
    if (wanted(widget))
        found.push_back(widget);
    if (!GTK_IS_CONTAINER(widget))
        return;
    struct context {
        const std::function<bool(GtkWidget *)> &wanted;
        std::vector<GtkWidget *> &found;
    } state{wanted, found};
    gtk_container_forall(
        GTK_CONTAINER(widget),
        [](GtkWidget *child, gpointer data) {
            auto *inner = static_cast<context *>(data);
            collect(child, inner->wanted, inner->found);
        },
        &state);
}

// Without a display nothing is tested, and that is a failure.
class display : public testing::Environment {
    void SetUp() override
    {
        if (!gtk_init_check(nullptr, nullptr))
            FAIL() << "no display; run it under tools/with-display";
    }
};
const testing::Environment *const opened = testing::AddGlobalTestEnvironment(new display);

GtkWidget *first(GtkWidget *root, const std::function<bool(GtkWidget *)> &wanted)
{
    std::vector<GtkWidget *> found;
    collect(root, wanted, found);
    return found.empty() ? nullptr : found.front();
}

} // namespace

bool wait_for(const std::function<bool()> &condition, int milliseconds)
{
    const gint64 end = g_get_monotonic_time() + gint64{1000} * milliseconds;
    const guint wake = g_timeout_add(
        5, [](gpointer) -> gboolean { return TRUE; }, nullptr);
    bool met = condition();
    while (!met && g_get_monotonic_time() < end) {
        g_main_context_iteration(nullptr, TRUE);
        met = condition();
    }
    g_source_remove(wake);
    return met;
}

void settle(int milliseconds)
{
    while (gtk_events_pending())
        gtk_main_iteration_do(FALSE);
    wait_for([] { return false; }, milliseconds);
    while (gtk_events_pending())
        gtk_main_iteration_do(FALSE);
}

GtkWidget *find_named(GtkWidget *root, const char *name)
{
    return first(root, [name](GtkWidget *widget) {
        return g_strcmp0(gtk_widget_get_name(widget), name) == 0;
    });
}

GtkWidget *find_text(GtkWidget *root, const std::string &text)
{
    return first(root, [&text](GtkWidget *widget) {
        if (GTK_IS_BUTTON(widget)) {
            const gchar *label = gtk_button_get_label(GTK_BUTTON(widget));
            return label != nullptr && text == label;
        }
        if (GTK_IS_SEPARATOR_MENU_ITEM(widget))
            return false; // asking for its label would give it one
        if (GTK_IS_MENU_ITEM(widget)) {
            const gchar *label = gtk_menu_item_get_label(GTK_MENU_ITEM(widget));
            return label != nullptr && text == label;
        }
        if (GTK_IS_LABEL(widget))
            return text == gtk_label_get_text(GTK_LABEL(widget));
        if (GTK_IS_ENTRY(widget))
            return text == gtk_entry_get_text(GTK_ENTRY(widget));
        return false;
    });
}

GtkWidget *find_type(GtkWidget *root, GType type)
{
    return first(root,
                 [type](GtkWidget *widget) { return g_type_is_a(G_OBJECT_TYPE(widget), type); });
}

std::vector<GtkWidget *> find_all(GtkWidget *root, GType type)
{
    std::vector<GtkWidget *> found;
    collect(
        root, [type](GtkWidget *widget) { return g_type_is_a(G_OBJECT_TYPE(widget), type); },
        found);
    return found;
}

std::vector<std::string> label_texts(GtkWidget *root)
{
    std::vector<std::string> texts;
    for (GtkWidget *label : find_all(root, GTK_TYPE_LABEL))
        texts.emplace_back(gtk_label_get_text(GTK_LABEL(label)));
    return texts;
}

namespace {

void walk_menus(GtkWidget *shell, const std::function<void(GtkWidget *)> &visit)
{
    for (GtkWidget *item : find_all(shell, GTK_TYPE_MENU_ITEM)) {
        visit(item);
        if (GtkWidget *menu = gtk_menu_item_get_submenu(GTK_MENU_ITEM(item)))
            walk_menus(menu, visit);
    }
}

} // namespace

GtkWidget *menu_entry(GtkWidget *window, const std::string &text)
{
    GtkWidget *found = nullptr;
    walk_menus(find_type(window, GTK_TYPE_MENU_BAR), [&](GtkWidget *item) {
        if (found == nullptr && !GTK_IS_SEPARATOR_MENU_ITEM(item) &&
            text == gtk_menu_item_get_label(GTK_MENU_ITEM(item)))
            found = item;
    });
    EXPECT_NE(found, nullptr) << "no menu entry " << text;
    return found;
}

std::vector<std::string> menu_texts(GtkWidget *window)
{
    std::vector<std::string> texts;
    walk_menus(find_type(window, GTK_TYPE_MENU_BAR), [&](GtkWidget *item) {
        texts.emplace_back(
            GTK_IS_SEPARATOR_MENU_ITEM(item) ? "-" : gtk_menu_item_get_label(GTK_MENU_ITEM(item)));
    });
    return texts;
}

GtkWidget *tool_button(GtkWidget *window, const std::string &tooltip)
{
    for (GtkWidget *button : find_all(window, GTK_TYPE_TOOL_BUTTON)) {
        if (tooltip == gtk_tool_button_get_label(GTK_TOOL_BUTTON(button)))
            return button;
    }
    ADD_FAILURE() << "no tool button " << tooltip;
    return nullptr;
}

std::string run_editor(const std::string &file, const std::function<void()> &scenario)
{
    static bool played;
    played = false;
    const auto start = [](gpointer data) -> gboolean {
        played = true;
        g_log_set_default_handler(note_warning, nullptr); // the editor has set its own
        if (const auto &scene = *static_cast<const std::function<void()> *>(data))
            scene();
        lang_global.modified = 0;
        if (mainWin != nullptr)
            close_window()(mainWin);
        return FALSE;
    };
    std::string printed = zel_test::capture_stdout([&] {
        const guint source = g_idle_add_full(
            G_PRIORITY_LOW, start, const_cast<std::function<void()> *>(&scenario), nullptr);
        EXPECT_EQ(edit_start(file.empty() ? nullptr : file.c_str()), 0);
        if (g_main_context_find_source_by_id(nullptr, source) != nullptr)
            g_source_remove(source);
    });
    EXPECT_EQ(played, static_cast<bool>(scenario)) << "whether the editor came to its main loop";
    if (testing::Test::HasFailure()) // what failed stands among it
        std::fputs(printed.c_str(), stderr);
    return printed;
}

GtkWidget *window_titled(const std::string &title)
{
    GtkWidget *found = nullptr;
    each_toplevel([&](GtkWidget *window) {
        const gchar *text =
            GTK_IS_WINDOW(window) ? gtk_window_get_title(GTK_WINDOW(window)) : nullptr;
        if (text != nullptr && title == text && gtk_widget_get_visible(window))
            found = window;
    });
    return found;
}

void answer_next(answer_fn answer) { answers.push_back(std::move(answer)); }

void start_watching() { watcher = g_timeout_add(5, tick, nullptr); }

std::size_t answers_left() { return answers.size(); }

answer_fn press(const std::string &button_text)
{
    return [button_text](GtkWidget *dialog) {
        GtkWidget *button = first(dialog, [&](GtkWidget *widget) {
            return GTK_IS_BUTTON(widget) && find_text(widget, button_text) != nullptr;
        });
        if (button == nullptr) {
            ADD_FAILURE() << "no button " << button_text << " in the dialog";
            close_window()(dialog);
            return;
        }
        gtk_button_clicked(GTK_BUTTON(button));
    };
}

answer_fn respond(int response)
{
    return [response](GtkWidget *dialog) {
        if (GTK_IS_DIALOG(dialog))
            gtk_dialog_response(GTK_DIALOG(dialog), response);
        else
            ADD_FAILURE() << "not a dialog with responses";
    };
}

answer_fn close_window()
{
    return [](GtkWidget *dialog) {
        GdkEvent *event = gdk_event_new(GDK_DELETE);
        event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(dialog)));
        gtk_main_do_event(event);
        gdk_event_free(event);
    };
}

answer_fn accept(const std::string &path)
{
    return [path](GtkWidget *dialog) {
        const bool taken = wait_for([&] {
            gchar *now = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog));
            const bool same = now != nullptr && path == now;
            g_free(now);
            return same;
        });
        EXPECT_TRUE(taken) << "the chooser does not take " << path;
        gtk_dialog_response(GTK_DIALOG(dialog), taken ? GTK_RESPONSE_ACCEPT : GTK_RESPONSE_CANCEL);
    };
}

answer_fn choose(const std::string &path)
{
    return [path](GtkWidget *dialog) {
        settle();
        GtkWidget *field = gtk_window_get_focus(GTK_WINDOW(dialog));
        if (!GTK_IS_FILE_CHOOSER(dialog) || !GTK_IS_ENTRY(field)) {
            ADD_FAILURE() << "not a file chooser";
            close_window()(dialog);
            return;
        }
        if (g_utf8_validate(path.c_str(), -1, nullptr) != 0) {
            gtk_entry_set_text(GTK_ENTRY(field), path.c_str());
        } else { // it cannot be typed
            gtk_widget_grab_focus(find_all(dialog, GTK_TYPE_TREE_VIEW).back());
            gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(dialog), path.c_str());
        }
        accept(path)(dialog);
    };
}

answer_fn type_name(const std::string &in_folder, const std::string &name)
{
    return [in_folder, name](GtkWidget *dialog) {
        GtkFileChooser *chooser = GTK_FILE_CHOOSER(dialog);
        settle();
        gtk_file_chooser_set_current_folder(chooser, in_folder.c_str());
        gtk_file_chooser_set_current_name(chooser, name.c_str());
        accept(in_folder + "/" + name)(dialog);
    };
}

answer_fn see(std::string *seen, answer_fn then)
{
    return [seen, then](GtkWidget *dialog) {
        seen->clear();
        for (const std::string &text : label_texts(dialog))
            *seen += (seen->empty() ? "" : "\n") + text;
        then(dialog);
    };
}

void key(GtkWidget *window, guint keyval, int modifiers)
{
    g_object_ref(window); // the press may close it
    GdkKeymapKey *keys = nullptr;
    gint count = 0;
    gdk_keymap_get_entries_for_keyval(gdk_keymap_get_default(), keyval, &keys, &count);
    for (const GdkEventType kind : {GDK_KEY_PRESS, GDK_KEY_RELEASE}) {
        if (gtk_widget_get_window(window) == nullptr)
            break;
        GdkEvent *event = gdk_event_new(kind);
        event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
        event->key.send_event = TRUE;
        event->key.time = GDK_CURRENT_TIME;
        event->key.state = static_cast<guint>(modifiers);
        event->key.keyval = keyval;
        event->key.hardware_keycode = static_cast<guint16>(count > 0 ? keys[0].keycode : 0);
        event->key.group = static_cast<guint8>(count > 0 ? keys[0].group : 0);
        gtk_main_do_event(event);
        gdk_event_free(event);
    }
    g_free(keys);
    g_object_unref(window);
}

void type(GtkWidget *window, const char *ascii)
{
    for (; *ascii != '\0'; ++ascii) {
        const auto byte = static_cast<unsigned char>(*ascii);
        key(window, byte == '\n' ? guint{GDK_KEY_Return} : gdk_unicode_to_keyval(byte));
    }
}

std::vector<std::string> &warnings() { return warning_log; }

std::string pixels_of(GdkDrawable *drawn, const GdkRectangle &part)
{
    GdkPixbuf *copy = gdk_pixbuf_get_from_drawable(nullptr, drawn, nullptr, part.x, part.y, 0, 0,
                                                   part.width, part.height);
    const std::size_t row_size = 3 * static_cast<std::size_t>(part.width);
    std::string out;
    for (int row = 0; row < part.height; ++row)
        out.append(reinterpret_cast<const char *>(gdk_pixbuf_get_pixels(copy)) +
                       row * gdk_pixbuf_get_rowstride(copy),
                   row_size);
    g_object_unref(copy);
    return out;
}

int height_of(GtkWidget *widget)
{
    GtkAllocation place{};
    gtk_widget_get_allocation(widget, &place);
    return place.height;
}

int line_height(GtkWidget *view)
{
    PangoLayout *layout = gtk_widget_create_pango_layout(view, "Ag");
    int line = 0;
    pango_layout_get_pixel_size(layout, nullptr, &line);
    g_object_unref(layout);
    return line;
}

bool in_sight(GtkWidget *widget)
{
    GtkWidget *viewport = gtk_widget_get_ancestor(widget, GTK_TYPE_VIEWPORT);
    gint x = 0;
    gint y = 0;
    gtk_widget_translate_coordinates(widget, viewport, 0, 0, &x, &y);
    return y >= 0 && y + height_of(widget) <= height_of(viewport);
}

Test::Test()
{
    std::string pattern = (fs::temp_directory_path() / "lang-gui-XXXXXX").string();
    folder = mkdtemp(pattern.data());
    old_folder = fs::current_path().string();
    fs::current_path(folder);
    lang_global = {};
    warning_log.clear();
    answers.clear();
    alarm(time_limit);
    g_log_set_default_handler(note_warning, nullptr);
    start_watching();
}

Test::~Test()
{
    alarm(0);
    g_source_remove(watcher);
    EXPECT_EQ(answers.size(), 0U) << "dialogs that were announced and never came";
    for (const std::string &warning : warning_log)
        ADD_FAILURE() << warning;
    each_toplevel([](GtkWidget *window) {
        if (gtk_widget_get_visible(window))
            gtk_widget_destroy(window);
    });
    settle(0);
    for (char **owned : {&lang_global.start_dir, &lang_global.output_lang_1,
                         &lang_global.output_lang_2, &lang_global.src_dir})
        zel::replace_string(*owned, nullptr);
    fs::current_path(old_folder);
    fs::remove_all(folder);
}

} // namespace gui
