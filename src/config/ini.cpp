#include "config/ini.h"

#include "app/global.h"
#include "support/string-copy.h"

#include <cstdlib>
#include <iterator>

ini_t *ini;

namespace {

struct string_row {
    const char *section;
    const char *key;
    char *ini_t::*field;
};
struct number_row {
    const char *section;
    const char *key;
    std::int32_t ini_t::*field;
    std::int32_t first; // before reading
};

// Bound in this order, which is also the order in the file.
constexpr string_row strings[] = {
    {"language", "languageFile", &ini_t::languageFile},
    {"language", "dstDir", &ini_t::dstDir},
};
constexpr number_row numbers[] = {
    {"mainWin", "x", &ini_t::main_x, -1},     {"mainWin", "y", &ini_t::main_y, -1},
    {"mainWin", "w", &ini_t::main_w, 800},    {"mainWin", "h", &ini_t::main_h, 600},
    {"defineWin", "x", &ini_t::define_x, -1}, {"defineWin", "y", &ini_t::define_y, -1},
};
static_assert(std::size(numbers) == std::tuple_size_v<decltype(ini_t::numbers)>);

// Bound only when the file has them or they get a value: whoever never uses them keeps the file as
// it is.
constexpr const char *below_section = "editor";
constexpr const char *below_keys[] = {"below1", "below2"};
static_assert(std::size(below_keys) == std::tuple_size_v<decltype(ini_t::below)>);

void bind_below(ini_t *settings, std::size_t which)
{
    lang_cfg_add_entry(settings->store, below_section, below_keys[which], CFG_STR,
                       &settings->below[which]);
}

void take_below(ini_t *settings)
{
    const cfg_entry_t *section = zel::cfg_find_section(settings->store, below_section);
    for (std::size_t which = 0; section != nullptr && which < std::size(below_keys); ++which)
        if (zel::cfg_find_key(settings->store, section, below_keys[which]) != nullptr)
            bind_below(settings, which);
}

// The store's numbers have 64 bits and the fields 32, so each key has a variable of its own.
void fields_to_keys(ini_t *settings)
{
    for (std::size_t row = 0; row < std::size(numbers); ++row)
        settings->numbers[row] = settings->*numbers[row].field;
}

constexpr const char *editor_section = "editor";
constexpr const char *spelling_key = "spelling";

void keys_to_fields(ini_t *settings)
{
    for (std::size_t row = 0; row < std::size(numbers); ++row)
        settings->*numbers[row].field = static_cast<std::int32_t>(settings->numbers[row]);
}

} // namespace

ini_t *ini_new(const char *file)
{
    ini_guard settings(static_cast<ini_t *>(std::calloc(1, sizeof(ini_t))));
    if (!settings)
        return nullptr;
    settings->store = lang_cfg_new(file);
    if (settings->store == nullptr)
        return nullptr;
    // Bound before the file is read: opening the store puts its values straight into these.
    for (const string_row &row : strings)
        lang_cfg_add_entry(settings->store, row.section, row.key, CFG_STR,
                           &(settings.get()->*row.field));
    for (std::size_t row = 0; row < std::size(numbers); ++row) {
        lang_cfg_add_entry(settings->store, numbers[row].section, numbers[row].key, CFG_LONG,
                           &settings->numbers[row]);
        settings.get()->*numbers[row].field = numbers[row].first;
    }
    settings->languageFile = zel_strdup("english.lang");
    settings->dstDir = zel_strdup(lang_global.default_dst_dir);
    settings->spelling = 1;
    fields_to_keys(settings.get());
    return settings.release();
}

int ini_read(ini_t *settings)
{
    if (settings == nullptr)
        return 1;
    // Keys that the file lacks keep the values of their fields.
    fields_to_keys(settings);
    // If this fails, the store remembers it, and ini_write does not replace the user's file by
    // these first values.
    lang_cfg_open(settings->store, 0);
    keys_to_fields(settings);
    // Read without binding the key, because every bound key is written.
    lang_cfg_get_long(settings->store, &settings->spelling, settings->spelling, editor_section,
                      spelling_key);
    take_below(settings);
    lang_cfg_print_all(settings->store);
    // Deliberate: the file's folder is not used, every start begins with the default one.
    zel::replace_string(settings->dstDir, zel_strdup(lang_global.default_dst_dir));
    return 0;
}

bool ini_spelling(const ini_t *settings) { return settings == nullptr || settings->spelling != 0; }

// Binds the key only now: whoever never switches spelling off keeps the file as it is.
void ini_set_spelling(ini_t *settings, bool on)
{
    if (settings == nullptr)
        return;
    // Binding stores a value of the file in the variable, so it comes before the new value.
    lang_cfg_add_entry(settings->store, editor_section, spelling_key, CFG_LONG,
                       &settings->spelling);
    settings->spelling = on ? 1 : 0;
}

const char *ini_below(const ini_t *settings, std::size_t which)
{
    const char *lang = settings == nullptr ? nullptr : settings->below[which];
    return lang == nullptr || *lang == '\0' ? nullptr : lang;
}

void ini_set_below(ini_t *settings, std::size_t which, const char *lang)
{
    if (settings == nullptr)
        return;
    // Binding takes over a text that was read, so it comes before the new text.
    bind_below(settings, which);
    zel::replace_string(settings->below[which], zel_strdup(lang));
}

const char *ini_export_on_save(const ini_t *settings)
{
    const cfg_entry_t *section =
        settings == nullptr ? nullptr : zel::cfg_find_section(settings->store, editor_section);
    const cfg_entry_t *key =
        section == nullptr ? nullptr : zel::cfg_find_key(settings->store, section, "exportOnSave");
    if (key == nullptr || key->type != CFG_VOID)
        return nullptr;
    const auto *folder = static_cast<const char *>(key->data);
    return folder == nullptr || *folder == '\0' ? nullptr : folder;
}

int ini_write(ini_t *settings)
{
    if (settings == nullptr)
        return 1;
    fields_to_keys(settings);
    lang_cfg_write(settings->store);
    return 0;
}

void ini_free(ini_t *settings)
{
    if (settings == nullptr)
        return;
    if (settings->store != nullptr) {
        // Closing deletes the lock file, which freeing would leave behind.
        lang_cfg_close(settings->store);
        lang_cfg_free(settings->store); // with the strings of the two string fields
    }
    std::free(settings);
}
