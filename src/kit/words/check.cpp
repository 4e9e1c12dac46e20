#include "checker/check.h"
#include "kit/support/code-scan.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/settings.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "source/item-index.h"
#include "support/text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace zel::kit {

namespace {

// An item, or a request, and where it stands. Line 0: nowhere.
struct noted {
    std::string group;
    std::string item;
    std::string path;
    place at;
    std::string message; // of a request that is not read
    const char *rule = nullptr;
};

// What a run has found.
struct outcomes {
    std::vector<noted> fresh;
    std::vector<noted> unused; // no longer
    std::vector<noted> unread;
};

struct check_settings {
    std::string format = "text";
    std::string group;
    std::vector<std::string> fail_on, keywords;
    bool dry_run = false;
};

// Reads "00012:src/a.c" as the place of an item.
noted used_at(const edit_t *group, const item_t *item)
{
    noted out;
    out.group = group->name == nullptr ? "" : group->name;
    out.item = item->name == nullptr ? "" : item->name;
    // The first place stands for the item.
    const char *where =
        item->used_in == nullptr ? nullptr : static_cast<const char *>(item->used_in->data);
    const char *colon = where == nullptr ? nullptr : std::strchr(where, ':');
    if (colon != nullptr) {
        out.path = colon + 1;
        out.at.line = static_cast<std::uint32_t>(std::strtoul(where, nullptr, 10));
    }
    return out;
}

// The items that were used before the run, with their places; tells which of them no longer are.
class old_uses {
public:
    explicit old_uses(const LangSource *source)
    {
        // Copies the places, since forget_uses deletes them.
        for (const edit_t *group : each<edit_t>(source->groups))
            for (const item_t *item : each<item_t>(group->items))
                if (item->used != 0)
                    used_.push_back({item, used_at(group, item)});
    }
    std::vector<noted> gone() const
    {
        std::vector<noted> out;
        for (const auto &[item, where] : used_)
            if (item->used == 0)
                out.push_back(where);
        return out;
    }

private:
    std::vector<std::pair<const item_t *, noted>> used_;
};

// Marks, adds and locates the items that the code asks for. False, after a line for each file, if
// some of the code cannot be read.
bool check_source(LangSource *source, const std::vector<std::string> &code,
                  const wrapper_words *wrappers, outcomes &out)
{
    const old_uses before(source);
    forget_uses(source);
    const scan_listener listener{
        [&](const found_request &one) {
            if (one.inserted)
                out.fresh.push_back({one.group, or_empty(one.item->name), one.path, one.at, {}});
        },
        [&](const unread_request &one) {
            out.unread.push_back({{}, {}, one.path, one.at, message_of(one), "unread"});
        },
        [&](const adjacent_request &one) {
            out.unread.push_back({{}, {}, one.path, one.at, message_of(one), "adjacent"});
        }};
    item_index index(source);
    if (!scan_code(index, code, {std::time(nullptr), nullptr, &listener, wrappers}))
        return false;
    out.unused = before.gone();
    return true;
}

std::string shown_place(const noted &one) { return one.path + ":" + std::to_string(one.at.line); }

// ": main:Foo (src/a.c:12), and 11 more"
std::string first_of(const std::vector<noted> &list)
{
    if (list.empty())
        return {};
    const noted &one = list.front();
    std::string out = ": " + one.group + ":" + one.item;
    if (one.at.line != 0)
        out += " (" + shown_place(one) + ")";
    if (list.size() > 1)
        out += ", and " + std::to_string(list.size() - 1) + " more";
    return out;
}

void print_text(const outcomes &out)
{
    for (const noted &one : out.unread)
        std::printf("%s:%u: error: %s [%s]\n", shown_place(one).c_str(), one.at.column + 1,
                    one.message.c_str(), one.rule);
    std::printf("%zu new%s, %zu no longer used%s, %zu could not be read\n", out.fresh.size(),
                first_of(out.fresh).c_str(), out.unused.size(), first_of(out.unused).c_str(),
                out.unread.size());
}

void append_list(std::string &json, const char *name, const std::vector<noted> &list)
{
    json += std::string(",\n \"") + name + "\": [";
    for (const noted &one : list) {
        json += &one == list.data() ? "\n  {" : ",\n  {";
        // What is not read has a rule instead of an item.
        if (one.rule == nullptr) {
            json += "\"group\": ";
            append_json(json, one.group);
            json += ", \"item\": ";
            append_json(json, one.item);
            json += ", ";
        }
        json += "\"file\": ";
        append_json(json, one.at.line == 0 ? nullptr : one.path.c_str());
        json += ", \"line\": " + std::to_string(one.at.line);
        if (one.rule != nullptr) {
            json += std::string(", \"rule\": \"") + one.rule + "\", \"message\": ";
            append_json(json, one.message);
        }
        json += '}';
    }
    json += ']';
}

void print_json(const std::string &path, const outcomes &out)
{
    std::string json = "{\"file\": ";
    append_json(json, path);
    append_list(json, "new", out.fresh);
    append_list(json, "unused", out.unused);
    append_list(json, "unread", out.unread);
    std::puts((json + "\n}").c_str());
}

// Whether the run is to fail on what it has found; -1, after a line, for an unknown word.
int fails(const word &self, const std::vector<std::string> &on, const outcomes &out)
{
    bool found = false;
    for (const std::string &one : on) {
        const int which = choose(self, "fail-on", one, {"new", "unused", "unread", "none"});
        if (which < 0)
            return -1;
        const std::vector<noted> *lists[] = {&out.fresh, &out.unused, &out.unread, nullptr};
        found = found || (lists[which] != nullptr && !lists[which]->empty());
    }
    return found ? 1 : 0;
}

// Reads an existing source whole; begins a new one where there is none.
source_file read_or_begin(const std::string &path)
{
    if (is_absent(path))
        return {source_guard(lang_alloc_group()), {seen_file(path)}};
    return read_whole(path, std::time(nullptr));
}

} // namespace

int run_check(const word &self, int argc, char **argv)
{
    check_settings wanted;
    parsed line = parse(
        self, argc, argv,
        {{.name = "keyword",
          .argument = "WORD:ITEM",
          .help =
              "the application's own word for a request, and which argument is the item; with a "
              "second number for the group; may be given again",
          .list = &wanted.keywords},
         {.name = "group",
          .argument = "NAME",
          .help = "the group of keywords without a number for it",
          .text = &wanted.group},
         {.name = "fail-on",
          .argument = "WHAT,...",
          .help = "status 1 for these: new, unused, unread or none (unread)",
          .list = &wanted.fail_on,
          .split = true},
         {.name = "format",
          .argument = "NAME",
          .help = "text or json (text)",
          .text = &wanted.format},
         {.name = "dry-run", .help = "write nothing", .on = &wanted.dry_run}},
        1, SIZE_MAX);
    if (line.ends)
        return line.status;
    const std::string path = line.files.front();
    // The first file is the source, all others are code.
    line.files.erase(line.files.begin());
    settings project;
    std::unique_ptr<wrapper_words> wrappers;
    const int format = choose(self, "format", wanted.format, {"text", "json"});
    // fails looks at the words alone first: a wrong one ends the run before anything is written.
    if (format < 0 || fails(self, wanted.fail_on, {}) < 0 || !read_settings(path, project))
        return status_fault;
    // The command line counts more than the settings.
    take_setting(line.files, project.code);
    take_setting(wanted.keywords, project.keywords);
    take_setting(wanted.group, project.group);
    take_setting(wanted.fail_on, std::vector<std::string>{"unread"});
    if (line.files.empty())
        return wrong_use(self, "the code is missing: a path, or \"code\" in lang-kit.ini");
    if (!make_wrappers(wanted.keywords, wanted.group, wrappers))
        return status_fault;

    source_file file = read_or_begin(path);
    outcomes out;
    // Nothing is printed before the source is written: the counts must be true.
    if (!file || !check_source(file.source.get(), line.files, wrappers.get(), out) ||
        !write({path, wanted.dry_run}, file))
        return status_fault;
    keep_to_the_end(std::move(file.source));
    format == 0 ? print_text(out) : print_json(path, out);
    return fails(self, wanted.fail_on, out) > 0 ? status_found : status_fine;
}

} // namespace zel::kit
