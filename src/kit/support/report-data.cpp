#include "kit/support/report-data.h"

#include "kit/support/lint-run.h"
#include "kit/support/output.h"
#include "kit/support/progress.h"
#include "lint/counts.h"
#include "lint/item-case.h"
#include "lint/question.h"
#include "lint/rules.h"
#include "source/entry.h"
#include "source/picture-index.h"
#include "support/file_mem.h"
#include "support/text.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <sys/stat.h>

namespace zel::kit {

namespace {

// Shown as the state of an item, by which the page filters, and not as findings.
constexpr lint::rule_id shown_as_state[] = {lint::rule_id::missing, lint::rule_id::empty,
                                            lint::rule_id::unused, lint::rule_id::not_ready};

class writer {
public:
    explicit writer(const report_sink &out) : out_(out) {}
    ~writer() { flush(); }
    writer(const writer &) = delete;
    writer &operator=(const writer &) = delete;

    writer &raw(std::string_view text)
    {
        text_ += text;
        if (text_.size() > 60000)
            flush();
        return *this;
    }
    writer &number(std::size_t value) { return raw(std::to_string(value)); }
    writer &string(std::string_view text)
    {
        quoted_.clear();
        append_json(quoted_, text);
        // "</script" would end the page's element, and "<!--" would change how it is read.
        std::size_t start = 0;
        for (std::size_t at = quoted_.find('<'); at != std::string::npos;
             at = quoted_.find('<', start)) {
            text_.append(quoted_, start, at - start).append("\\u003c");
            start = at + 1;
        }
        text_.append(quoted_, start);
        return raw({});
    }
    // Before each element of a list but the first.
    writer &next(bool &first)
    {
        if (!first)
            text_ += ',';
        first = false;
        return *this;
    }
    void flush()
    {
        out_(text_);
        text_.clear();
    }

private:
    const report_sink &out_;
    std::string text_;
    std::string quoted_; // of the string that is added
};

// A picture as a data URL, if its bytes begin so. One that is larger than a page should be is left
// out.
std::string picture_url(const std::string &path, std::string_view type, std::string_view begin)
{
    constexpr off_t most = 4 << 20;
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    if (status.st_size > most) {
        std::fprintf(stderr, "lang-kit: %s: left out, it is larger than 4 MB\n", path.c_str());
        return {};
    }
    char *data = nullptr;
    const std::int64_t size = zel_read_file_to_mem(path.c_str(), &data);
    std::string out;
    if (size > 0 && std::string_view(data, static_cast<std::size_t>(size)).starts_with(begin)) {
        char *coded =
            g_base64_encode(reinterpret_cast<const guchar *>(data), static_cast<gsize>(size));
        out = "data:image/" + std::string(type) + ";base64," + coded;
        g_free(coded);
    }
    std::free(data);
    return out;
}

std::string group_picture(const std::string &folder, const edit_t *group)
{
    const std::string name(or_empty(group->name));
    // A slash in the name would lead to a file in another folder.
    if (name.empty() || name.find('/') != std::string::npos)
        return {};
    return picture_url(folder + name + ".jpg", "jpeg", "\xFF\xD8\xFF");
}

// The pictures that the index gives to texts, each once on the page.
class text_pictures {
public:
    explicit text_pictures(const std::string &folder)
        : folder_(folder), by_text_(pictures_by_text(read_picture_index(folder)))
    {
    }
    // The number of the text's picture among those that were asked for; none without one.
    std::optional<std::size_t> number_of(const char *group, const char *item)
    {
        const auto found = by_text_.find({or_empty(group), or_empty(item)});
        if (found == by_text_.end())
            return std::nullopt;
        const auto [number, is_new] = numbers_.try_emplace(found->second, urls_.size());
        if (is_new)
            urls_.push_back(picture_url(folder_ + found->second, "png", "\x89PNG\r\n\x1A\n"));
        return urls_[number->second].empty() ? std::nullopt : std::optional(number->second);
    }
    const std::vector<std::string> &urls() const { return urls_; }

private:
    std::string folder_;
    std::map<text_key, std::string> by_text_;
    std::map<std::string, std::size_t> numbers_; // by the file's name
    std::vector<std::string> urls_;              // empty for one that is left out
};

struct item_finding {
    const item_t *item; // null: of the file
    const char *language;
    lint::rule_id rule;
    std::string message;
};

class source_writer {
public:
    source_writer(const lint_source &from, writer &out, bool screenshots)
        : from_(from), source_(from.source()), out_(out), screenshots_(screenshots),
          counts_(lint::count_texts(source_)), shown_(from.path(), counts_.items),
          folder_(from.path().substr(0, from.path().rfind('/') + 1) + std::string(picture_folder) +
                  "/"),
          pictures_(folder_)
    {
        for (const lint::language_counts &one : counts_.languages)
            languages_.push_back({one.language,
                                  one.language->name == nullptr ? "" : one.language->name,
                                  one.is_reference, true});
        entries_.resize(languages_.size());
        buffers_.resize(languages_.size());
    }
    void write();

private:
    void find();
    void write_languages();
    void write_findings(const item_t *item);
    void write_texts(const item_t *item);
    void write_comments(const item_t *item);
    void write_item(const edit_t *group, const item_t *item);
    void write_groups();
    void write_pictures();
    std::size_t language_at(const char *name) const { return languages_.find(name, 0); }

    const lint_source &from_;
    const LangSource *source_;
    writer &out_;
    bool screenshots_;
    lint::source_counts counts_;
    progress shown_;
    std::string folder_; // of the pictures
    text_pictures pictures_;
    lint::language_list languages_;
    std::vector<const lang_entry_t *> entries_; // of the item, by language
    std::vector<std::string> buffers_;
    std::vector<item_finding> findings_; // in the order of the items
    std::size_t told_ = 0;
    std::size_t done_ = 0;
};

void source_writer::find()
{
    lint::choice wanted;
    for (const lint::rule_id rule : shown_as_state)
        wanted.rules = wanted.rules.without(rule);
    from_.each_syntax([this](const std::string &message) {
        findings_.push_back({nullptr, nullptr, lint::rule_id::syntax, message});
    });
    lint::linter(source_, wanted).check([this](const lint::finding &found) {
        findings_.push_back({found.item, found.language, found.rule, std::string(found.message)});
    });
}

// Writes the item's findings: [language or -1, rule, message].
void source_writer::write_findings(const item_t *item)
{
    out_.raw("[");
    // Findings stand in the order of the items, so one position serves them all.
    for (bool first = true; told_ < findings_.size() && findings_[told_].item == item; ++told_) {
        const item_finding &one = findings_[told_];
        const std::size_t at =
            one.language == nullptr ? languages_.size() : language_at(one.language);
        const bool known = item != nullptr && at < languages_.size();
        out_.next(first).raw("[");
        if (known)
            out_.number(at);
        else
            out_.raw("-1");
        out_.raw(",").number(static_cast<std::size_t>(one.rule)).raw(",");
        out_.string(known || one.language == nullptr
                        ? one.message
                        : std::string(one.language) + ": " + one.message);
        out_.raw("]");
    }
    out_.raw("]");
}

void source_writer::write_languages()
{
    std::size_t reference = languages_.size();
    bool first = true;
    out_.raw("\"languages\":[");
    for (std::size_t i = 0; i < languages_.size(); ++i) {
        const lint::language_counts &one = counts_.languages[i];
        if (one.is_reference && reference == languages_.size())
            reference = i;
        out_.next(first).raw("{\"name\":").string(languages_[i].name);
        out_.raw(",\"wordsLeft\":").number(one.left.words).raw("}");
    }
    out_.raw("],\"reference\":");
    if (reference < languages_.size())
        out_.number(reference);
    else
        out_.raw("-1");
}

void source_writer::write_texts(const item_t *item)
{
    std::fill(entries_.begin(), entries_.end(), nullptr);
    std::size_t guess = 0;
    for (const lang_entry_t *entry : each<lang_entry_t>(item->langs)) {
        // Entries mostly follow the order of the languages.
        const std::size_t i = languages_.find(entry->lang, guess);
        guess = i + 1;
        if (i < entries_.size() && entries_[i] == nullptr)
            entries_[i] = entry;
    }
    bool first = true;
    out_.raw("[");
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        out_.next(first);
        if (entries_[i] == nullptr)
            out_.raw("null");
        else
            out_.string(look_at_text(entries_[i]->texts, buffers_[i]));
    }
    out_.raw("]");
}

void source_writer::write_comments(const item_t *item)
{
    bool first = true;
    std::string buffer;
    out_.raw("[");
    for (const lang_entry_t *comment : each<lang_entry_t>(item->comments)) {
        const std::size_t i = language_at(comment->lang);
        const std::string_view text = look_at_text(comment->texts, buffer);
        if (i < languages_.size() && !text.empty())
            out_.next(first).raw("[").number(i).raw(",").string(text).raw(
                lint::is_open_question(comment) ? ",1]" : "]");
    }
    out_.raw("]");
}

void source_writer::write_item(const edit_t *group, const item_t *item)
{
    // A page shows some places of use, not thousands of them.
    constexpr int most_places = 20;
    out_.raw("[").string(or_empty(item->name)).raw(",");
    // The page's script reads these bits.
    out_.number((item->used != 0 ? 1U : 0U) + (item->ready != 0 ? 2U : 0U)).raw(",");
    out_.string(or_empty(item->description)).raw(",");
    write_texts(item);
    out_.raw(",");
    write_findings(item);
    out_.raw(",");
    write_comments(item);
    out_.raw(",[");
    bool first = true;
    int places = 0;
    for (const char *place : each<const char>(item->used_in))
        if (place != nullptr && places++ < most_places)
            out_.next(first).string(place);
    out_.raw("]");
    if (screenshots_)
        if (const auto number = pictures_.number_of(group->name, item->name))
            out_.raw(",").number(*number);
    out_.raw("]");
    shown_.at(++done_);
}

void source_writer::write_groups()
{
    bool first = true;
    out_.raw("\"groups\":[");
    for (const edit_t *group : each<edit_t>(source_->groups)) {
        out_.next(first).raw("\n{\"name\":").string(or_empty(group->name));
        if (screenshots_)
            if (const std::string picture = group_picture(folder_, group); !picture.empty())
                out_.raw(",\"shot\":").string(picture);
        out_.raw(",\"items\":[");
        bool first_item = true;
        for (const item_t *item : each<item_t>(group->items)) {
            out_.next(first_item).raw("\n");
            write_item(group, item);
        }
        out_.raw("]}");
    }
    out_.raw("]");
}

void source_writer::write_pictures()
{
    if (pictures_.urls().empty())
        return;
    bool first = true;
    out_.raw(",\"pictures\":[");
    for (const std::string &url : pictures_.urls())
        out_.next(first).raw("\n").string(url);
    out_.raw("]");
}

void source_writer::write()
{
    find();
    out_.raw("{\"path\":").string(from_.path()).raw(",\"app\":").string(or_empty(source_->app));
    out_.raw(",\"items\":").number(counts_.items).raw(",\"used\":").number(counts_.used).raw(",");
    write_languages();
    out_.raw(",\"findings\":");
    write_findings(nullptr);
    out_.raw(",");
    write_groups();
    write_pictures();
    out_.raw("}");
}

} // namespace

report_data::report_data(report_sink out, bool screenshots)
    : out_(std::move(out)), screenshots_(screenshots)
{
}

void report_data::begin(std::string_view made)
{
    writer out(out_);
    bool first = true;
    out.raw("{\"made\":").string(made).raw(",\"rules\":[");
    for (const lint::rule &rule : lint::rules()) {
        out.next(first).raw("{\"name\":").string(rule.name);
        out.raw(",\"level\":").string(lint::level_name(rule.severity));
        out.raw(",\"meaning\":").string(rule.meaning).raw("}");
    }
    out.raw("],\"files\":[");
}

bool report_data::add(const std::string &path)
{
    lint_source source;
    if (!source.read(path))
        return false;
    if (source.source() == nullptr) {
        source.judge({}, [](const shown_finding &found) {
            std::fprintf(stderr, "%s:%u:%u: error: %s [syntax]\n", found.file, found.at.line,
                         found.at.column + 1, std::string(found.message).c_str());
        });
        return false;
    }
    writer out(out_);
    out.raw(files_++ == 0 ? "\n" : ",\n");
    source_writer(source, out, screenshots_).write();
    return true;
}

void report_data::end() { out_("]}\n"); }

} // namespace zel::kit
