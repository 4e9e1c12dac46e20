#include "exchange/json.h"

#ifdef LANG_HAVE_JSON_GLIB

#include "exchange/carry.h"
#include "exchange/json-outline.h"
#include "support/guard.h"
#include "support/string-copy.h"

#include <cstdio>
#include <cstring>
#include <memory>

#include <json-glib/json-glib.h>

namespace zel::exchange {

namespace {

using parser_guard = std::unique_ptr<JsonParser, release<g_object_unref>>;

// Reads one value into the model. Every failure goes through fail.
class model_reader {
public:
    model_reader(std::int64_t now, fault &wrong) : now_(now), wrong_(wrong) {}

    source_guard read(std::string_view bytes);

private:
    // A member of an object: its name, what reads it, and where it goes.
    template <class T>
    struct member {
        const char *name;
        bool (model_reader::*read)(JsonNode *value, T *record);
    };

    bool fail(const std::string &text);
    bool parse(JsonParser *parser, std::string_view text, std::uint32_t line);
    template <class T, std::size_t n>
    bool read_object(JsonNode *node, T *record, const member<T> (&members)[n]);
    template <class Each>
    bool read_array(JsonNode *node, Each each);

    bool read_string(JsonNode *node, std::string &text, bool &null);
    bool read_name(JsonNode *node, char *&text);
    bool read_strings(JsonNode *node, GList *&list, char *(*copy)(const char *));
    bool read_entries(JsonNode *node, GList *&entries);
    template <class Number>
    bool read_number(JsonNode *node, Number &number, std::int64_t least, std::int64_t most);
    bool read_int(JsonNode *node, std::int32_t &number);
    bool read_time(JsonNode *node, std::int64_t &time);
    bool read_flag(JsonNode *node, std::uint32_t &flag);

    bool read_mark(JsonNode *node, LangSource *source);
    bool read_format(JsonNode *node, LangSource *source);
    bool read_values(JsonNode *node, lang_t *lang);
    bool read_language(JsonNode *node, list_tail &langs);
    bool read_item(JsonNode *node, list_tail &items);
    bool read_group(JsonNode *node, list_tail &groups);

    // Readers of members, by the record they fill.
    template <class T, char *T::*field>
    bool name_of(JsonNode *node, T *record)
    {
        return read_name(node, record->*field);
    }
    template <class T, std::int32_t T::*field>
    bool int_of(JsonNode *node, T *record)
    {
        return read_int(node, record->*field);
    }
    template <class T, std::int64_t T::*field>
    bool time_of(JsonNode *node, T *record)
    {
        return read_time(node, record->*field);
    }
    template <std::uint32_t item_t::*field>
    bool flag_of(JsonNode *node, item_t *item)
    {
        return read_flag(node, item->*field);
    }
    template <GList *item_t::*field>
    bool entries_of(JsonNode *node, item_t *item)
    {
        return read_entries(node, item->*field);
    }
    bool places_of(JsonNode *node, item_t *item);
    bool language_of(JsonNode *node, lang_entry_t *entry);
    bool lines_of(JsonNode *node, lang_entry_t *entry);
    bool widths_of(JsonNode *node, LangSource *source);
    bool languages_of(JsonNode *node, LangSource *source);
    bool groups_of(JsonNode *node, LangSource *source);
    bool items_of(JsonNode *node, edit_t *group);

    std::int64_t now_;
    fault &wrong_;
    LangSource *source_ = nullptr;
    json_outline outline_;
    std::size_t next_item_ = 0;
    parser_guard items_;     // the item that is being read
    std::uint32_t line_ = 0; // of the piece that is being read
    std::string path_;       // of the value, for messages: "groups 2 items 7 ready"
};

// Adds a step to the path of the value while it lives.
struct step {
    step(std::string &whole, const std::string &name) : path(whole), before(whole.size())
    {
        path.append(path.empty() ? "" : " ").append(name);
    }
    ~step() { path.resize(before); }
    step(const step &) = delete;
    step &operator=(const step &) = delete;

    std::string &path;
    std::size_t before;
};

bool model_reader::fail(const std::string &text)
{
    // The first fault is the cause of the others.
    if (!wrong_)
        wrong_ = {line_, (path_.empty() ? "" : path_ + ": ") + text};
    return false;
}

bool model_reader::parse(JsonParser *parser, std::string_view text, std::uint32_t line)
{
    line_ = line;
    GError *error = nullptr;
    if (json_parser_load_from_data(parser, text.data(), static_cast<gssize>(text.size()), &error) ==
        TRUE)
        return json_parser_get_root(parser) != nullptr || fail("empty");
    // The parser tells the place only in its message, "<data>:LINE:COLUMN: ...".
    unsigned at = 1;
    if (std::sscanf(error->message, "<data>:%u:", &at) != 1)
        at = 1;
    g_error_free(error);
    wrong_ = {line + at - 1, "no JSON"};
    return false;
}

// An object whose members are all among the known ones.
template <class T, std::size_t n>
bool model_reader::read_object(JsonNode *node, T *record, const member<T> (&members)[n])
{
    if (!JSON_NODE_HOLDS_OBJECT(node))
        return fail("no object");
    JsonObjectIter iter;
    json_object_iter_init(&iter, json_node_get_object(node));
    const gchar *name = nullptr;
    JsonNode *value = nullptr;
    while (json_object_iter_next(&iter, &name, &value) == TRUE) {
        const auto *found = std::find_if(std::begin(members), std::end(members), [&](auto &row) {
            return std::strcmp(row.name, name) == 0;
        });
        const step here(path_, name);
        // What is not known would be lost without a word.
        if (found == std::end(members))
            return fail("not known");
        if (!(this->*found->read)(value, record))
            return false;
    }
    return true;
}

template <class Each>
bool model_reader::read_array(JsonNode *node, Each each)
{
    if (!JSON_NODE_HOLDS_ARRAY(node))
        return fail("no array");
    JsonArray *array = json_node_get_array(node);
    for (guint at = 0; at < json_array_get_length(array); ++at) {
        const step here(path_, std::to_string(at));
        if (!each(json_array_get_element(array, at)))
            return false;
    }
    return true;
}

bool holds(JsonNode *node, GType type)
{
    return JSON_NODE_HOLDS_VALUE(node) && json_node_get_value_type(node) == type;
}

bool model_reader::read_string(JsonNode *node, std::string &text, bool &null)
{
    null = JSON_NODE_HOLDS_NULL(node);
    text.clear();
    if (null)
        return true;
    if (!holds(node, G_TYPE_STRING))
        return fail("no string");
    text = json_node_get_string(node);
    // The parser lets escapes through that are halves of characters.
    if (valid_length(text) != text.size())
        return fail("half a character");
    uncarry(text, encoding::any);
    return true;
}

// An empty name is stored as none, as by the reader of sources.
bool model_reader::read_name(JsonNode *node, char *&text)
{
    std::string value;
    bool null = false;
    if (!read_string(node, value, null))
        return false;
    replace_string(text, zel_strdup(value.c_str()));
    return true;
}

bool model_reader::read_strings(JsonNode *node, GList *&list, char *(*copy)(const char *))
{
    list_tail tail(list);
    return read_array(node, [&](JsonNode *value) {
        std::string text;
        bool null = false;
        if (!read_string(value, text, null))
            return false;
        tail.append(copy(text.c_str()));
        return true;
    });
}

template <class Number>
bool model_reader::read_number(JsonNode *node, Number &number, std::int64_t least,
                               std::int64_t most)
{
    if (!holds(node, G_TYPE_INT64))
        return fail("no whole number");
    const std::int64_t value = json_node_get_int(node);
    if (value < least || value > most)
        return fail("a number that is too large");
    number = static_cast<Number>(value);
    return true;
}

bool model_reader::read_int(JsonNode *node, std::int32_t &number)
{
    // Only what the reader of sources takes: it knows no sign.
    return read_number(node, number, 0, INT32_MAX);
}

bool model_reader::read_time(JsonNode *node, std::int64_t &time)
{
    return read_number(node, time, 0, UINT32_MAX);
}

bool model_reader::read_flag(JsonNode *node, std::uint32_t &flag)
{
    if (!holds(node, G_TYPE_BOOLEAN))
        return fail("neither true nor false");
    flag = json_node_get_boolean(node) == TRUE ? 1 : 0;
    return true;
}

char *copy_line(const char *text) { return zel_strdup2(text); }
char *copy_name(const char *text) { return zel_strdup(text); }

bool model_reader::language_of(JsonNode *node, lang_entry_t *entry)
{
    return read_name(node, entry->lang);
}

bool model_reader::lines_of(JsonNode *node, lang_entry_t *entry)
{
    return read_strings(node, entry->texts, copy_line);
}

bool model_reader::read_entries(JsonNode *node, GList *&entries)
{
    static constexpr member<lang_entry_t> members[] = {
        {"language", &model_reader::language_of},
        {"lines", &model_reader::lines_of},
    };
    list_tail tail(entries);
    return read_array(node, [&](JsonNode *value) {
        lang_entry_t *entry = alloc_lang_entry(nullptr);
        // Appended before it is read: after a fault it is freed with the source.
        tail.append(entry);
        return read_object(value, entry, members);
    });
}

bool model_reader::places_of(JsonNode *node, item_t *item)
{
    return read_strings(node, item->used_in, copy_name);
}

// In an item's place the outline has its number. The item is parsed and read alone, so that the
// parser never holds the whole source.
bool model_reader::read_item(JsonNode *node, list_tail &items)
{
    static constexpr member<item_t> members[] = {
        {"name", &model_reader::name_of<item_t, &item_t::name>},
        {"description", &model_reader::name_of<item_t, &item_t::description>},
        {"typ", &model_reader::int_of<item_t, &item_t::typ>},
        {"rowheight", &model_reader::int_of<item_t, &item_t::rowheight>},
        {"ctime", &model_reader::time_of<item_t, &item_t::ctime>},
        {"visible", &model_reader::int_of<item_t, &item_t::visible>},
        {"ready", &model_reader::int_of<item_t, &item_t::ready>},
        {"changed", &model_reader::flag_of<&item_t::changed>},
        {"used", &model_reader::flag_of<&item_t::used>},
        {"places", &model_reader::places_of},
        {"texts", &model_reader::entries_of<&item_t::langs>},
        {"comments", &model_reader::entries_of<&item_t::comments>},
    };
    // Anything else that could stand here would have the number of another item, or none.
    if (!holds(node, G_TYPE_INT64) || next_item_ == outline_.items.size() ||
        json_node_get_int(node) != static_cast<std::int64_t>(next_item_))
        return fail("no object");
    const json_piece &piece = outline_.items[next_item_++];
    const std::uint32_t outer = line_;
    if (!parse(items_.get(), piece.text, piece.line))
        return false;
    item_t *item = alloc_item();
    item->source = source_;
    items.append(item);
    if (!read_object(json_parser_get_root(items_.get()), item, members))
        return false;
    if (item->ctime == 0)
        item->ctime = now_;
    ++source_->item_count;
    line_ = outer;
    return true;
}

bool model_reader::items_of(JsonNode *node, edit_t *group)
{
    list_tail items(group->items);
    return read_array(node, [&](JsonNode *value) { return read_item(value, items); });
}

bool model_reader::read_group(JsonNode *node, list_tail &groups)
{
    static constexpr member<edit_t> members[] = {
        {"name", &model_reader::name_of<edit_t, &edit_t::name>},
        {"visible", &model_reader::int_of<edit_t, &edit_t::visible>},
        {"screen_shot", &model_reader::name_of<edit_t, &edit_t::screen_shot>},
        {"items", &model_reader::items_of},
    };
    edit_t *group = lang_alloc_edit();
    groups.append(group);
    return read_object(node, group, members);
}

bool model_reader::groups_of(JsonNode *node, LangSource *source)
{
    list_tail groups(source->groups);
    return read_array(node, [&](JsonNode *value) { return read_group(value, groups); });
}

bool model_reader::read_values(JsonNode *node, lang_t *lang)
{
    std::int32_t *const values[] = {&lang->value_1, &lang->value_2};
    std::size_t count = 0;
    return read_array(node, [&](JsonNode *value) {
        return count < std::size(values) ? read_int(value, *values[count++]) : fail("not known");
    });
}

bool model_reader::read_language(JsonNode *node, list_tail &langs)
{
    static constexpr member<lang_t> members[] = {
        {"name", &model_reader::name_of<lang_t, &lang_t::name>},
        {"file", &model_reader::name_of<lang_t, &lang_t::file>},
        {"values", &model_reader::read_values},
        {"edit", &model_reader::int_of<lang_t, &lang_t::edit>},
    };
    lang_t *lang = alloc_lang();
    langs.append(lang);
    if (!read_object(node, lang, members))
        return false;
    // Counted as by the reader of sources.
    ++source_->lang_count;
    source_->edit_lang_count += lang->edit != 0 ? 1 : 0;
    return true;
}

bool model_reader::languages_of(JsonNode *node, LangSource *source)
{
    list_tail langs(source->langs);
    return read_array(node, [&](JsonNode *value) { return read_language(value, langs); });
}

bool model_reader::widths_of(JsonNode *node, LangSource *source)
{
    static constexpr member<LangSource> members[] = {
        {"group", &model_reader::int_of<LangSource, &LangSource::colwidth_group>},
        {"item", &model_reader::int_of<LangSource, &LangSource::colwidth_item>},
        {"ctrl", &model_reader::int_of<LangSource, &LangSource::colwidth_ctrl>},
    };
    return read_object(node, source, members);
}

bool model_reader::read_mark(JsonNode *node, LangSource *source)
{
    return read_number(node, source->version, 1, 1);
}

bool model_reader::read_format(JsonNode *node, LangSource *source)
{
    std::string name;
    bool null = false;
    if (!read_string(node, name, null))
        return false;
    source->format = name == "utf8"    ? LANG_SOURCE_UTF8
                     : name == "ascii" ? LANG_SOURCE_ASCII
                                       : LANG_SOURCE_NONE;
    return null || source->format != LANG_SOURCE_NONE || fail("neither \"utf8\" nor \"ascii\"");
}

source_guard model_reader::read(std::string_view bytes)
{
    static constexpr member<LangSource> members[] = {
        {"language_source", &model_reader::read_mark},
        {"create_date", &model_reader::name_of<LangSource, &LangSource::create_date>},
        {"whatsnew", &model_reader::time_of<LangSource, &LangSource::whatsnew>},
        {"ctime", &model_reader::time_of<LangSource, &LangSource::ctime>},
        {"mtime", &model_reader::time_of<LangSource, &LangSource::mtime>},
        {"format", &model_reader::read_format},
        {"app", &model_reader::name_of<LangSource, &LangSource::app>},
        {"default_language", &model_reader::name_of<LangSource, &LangSource::default_lang>},
        {"column_widths", &model_reader::widths_of},
        {"languages", &model_reader::languages_of},
        {"groups", &model_reader::groups_of},
    };
    drop_mark(bytes);
    wrong_ = check_utf8(bytes);
    if (!wrong_)
        wrong_ = make_outline(bytes, outline_);
    if (wrong_)
        return nullptr;
    source_guard source(lang_alloc_group());
    source_ = source.get();
    // Two parsers: the outer one's tree is walked while items are parsed.
    const parser_guard outer(json_parser_new());
    items_.reset(json_parser_new());
    if (!parse(outer.get(), outline_.text, 1))
        return nullptr;
    line_ = 0; // lines of the outline are not those of the file
    if (!read_object(json_parser_get_root(outer.get()), source_, members))
        return nullptr;
    if (source->version != 1)
        fail("\"language_source\" is missing");
    return wrong_ ? nullptr : std::move(source);
}

} // namespace

source_guard read_json(std::string_view bytes, std::int64_t now, fault &wrong)
{
    return model_reader(now, wrong).read(bytes);
}

} // namespace zel::exchange

#else

namespace zel::exchange {

source_guard read_json(std::string_view, std::int64_t, fault &wrong)
{
    wrong = {0, "this lang-kit was built without json-glib and reads no JSON"};
    return nullptr;
}

} // namespace zel::exchange

#endif
