#include "editor/theme.h"

#include "support/guard.h"

#include <gtk/gtk.h>

#include <memory>

namespace {

// What holds in every theme: the toolbar fits into 800 pixels.
constexpr char common_rc[] = R"(
style "lang-toolbar" {
  GtkToolbar::space-size = 7
  GtkToolbar::internal-padding = 1
}
widget "*.main-toolbar" style "lang-toolbar"
)";

// The toolkit's default is raw: black double edges, and a selected row that goes grey as soon as
// one types somewhere else.
constexpr char own_rc[] = R"(
gtk-button-images = 1
gtk-menu-images = 1

style "lang-default" {
  xthickness = 1
  ythickness = 1
  bg[NORMAL] = "#f0f0ee"
  bg[PRELIGHT] = "#f8f8f7"
  bg[ACTIVE] = "#dcdcd8"
  bg[INSENSITIVE] = "#f0f0ee"
  bg[SELECTED] = "#3d6fa8"
  fg[SELECTED] = "#ffffff"
  fg[INSENSITIVE] = "#8a8a86"
  text[INSENSITIVE] = "#6a6a66"
  base[INSENSITIVE] = "#f6f6f4"
  base[SELECTED] = "#3d6fa8"
  text[SELECTED] = "#ffffff"
  base[ACTIVE] = "#cfddee"
  text[ACTIVE] = "#000000"
  GtkWidget::focus-line-width = 1
  GtkWidget::focus-line-pattern = "\1\1"
  GtkWidget::focus-padding = 0
  GtkWidget::separator-height = 1
  GtkWidget::separator-width = 1
  GtkWidget::wide-separators = 0
  GtkButton::default-border = { 0, 0, 0, 0 }
  GtkButton::default-outside-border = { 0, 0, 0, 0 }
  GtkButton::inner-border = { 3, 3, 2, 2 }
  GtkCheckButton::indicator-size = 13
  GtkPaned::handle-size = 6
  GtkScrollbar::slider-width = 13
  GtkScrollbar::stepper-size = 13
  GtkScrolledWindow::scrollbar-spacing = 0
  GtkTreeView::vertical-separator = 2
  GtkTreeView::horizontal-separator = 6
  GtkTreeView::odd-row-color = "#f4f6f9"
  GtkTreeView::even-row-color = "#ffffff"
  GtkNotebook::tab-overlap = 1
  GtkToolbar::shadow-type = GTK_SHADOW_NONE
  GtkMenuBar::shadow-type = GTK_SHADOW_NONE
  GtkMenuBar::internal-padding = 1
}
class "GtkWidget" style "lang-default"

style "lang-menu" {
  bg[PRELIGHT] = "#3d6fa8"
  fg[PRELIGHT] = "#ffffff"
}
class "GtkMenuItem" style "lang-menu"
widget_class "*<GtkMenuItem>*" style "lang-menu"

style "lang-entry" {
  GtkEntry::inner-border = { 4, 4, 3, 3 }
}
class "GtkEntry" style "lang-entry"

style "lang-menu-item" {
  ythickness = 3
}
class "GtkMenuItem" style "lang-menu-item"

style "lang-status" {
  base[NORMAL] = "#f0f0ee"
  GtkEntry::inner-border = { 2, 2, 1, 1 }
}
widget "*.status" style "lang-status"

style "lang-tooltip" {
  xthickness = 5
  ythickness = 3
  bg[NORMAL] = "#fbf8dc"
  fg[NORMAL] = "#000000"
}
widget "gtk-tooltip*" style "lang-tooltip"
)";

bool user_has_theme()
{
    gchar *name = nullptr;
    g_object_get(gtk_settings_get_default(), "gtk-theme-name", &name, nullptr);
    const std::unique_ptr<gchar, zel::release<g_free>> theme(name);
    return theme && theme.get()[0] != '\0' && g_strcmp0(theme.get(), "Raleigh") != 0;
}

} // namespace

namespace zel {

void apply_theme()
{
    static bool applied;
    if (applied)
        return;
    applied = true;
    if (!user_has_theme())
        gtk_rc_parse_string(own_rc);
    gtk_rc_parse_string(common_rc);
}

} // namespace zel
