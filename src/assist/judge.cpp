#include "assist/judge.h"

#include "lint/conversions.h"
#include "lint/item-case.h"
#include "lint/limit.h"
#include "lint/lint.h"
#include "lint/question.h"
#include "lint/rules.h"
#include "source/entry.h"
#include "source/misc.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace zel::assist {

namespace {

using lint::rule_id;

// Rules that are left out here: a text's state and an item's mark are shown by other signs, and
// rules that compare items need the whole source at every key.
constexpr lint::rule_set rules_while_typing = lint::rule_set::all()
                                                  .without(rule_id::missing)
                                                  .without(rule_id::empty)
                                                  .without(rule_id::unused)
                                                  .without(rule_id::not_ready)
                                                  .without(rule_id::consistency)
                                                  .without(rule_id::collision);

// Cuts the text as storing it does: blank lines at its end, and the line end of the last line.
void trim(std::string &text)
{
    const std::size_t last = text.find_last_not_of(" \t\n\v\f\r");
    if (last == std::string::npos)
        text.clear();
    else
        text.resize(std::min(text.size(), text.find_first_of("\n\r", last)));
}

// An item as it would be if what is typed was stored. Everything else is shared with the item,
// which is not changed.
class typed_item {
public:
    typed_item(const item_t *item, std::span<const typed_text> typed) : item_(*item)
    {
        item_.langs = g_list_copy(item->langs);
        item_.comments = g_list_copy(item->comments);
        for (const typed_text &one : typed)
            put(one);
    }
    ~typed_item()
    {
        g_list_free(item_.langs);
        g_list_free(item_.comments);
    }
    typed_item(const typed_item &) = delete;
    typed_item &operator=(const typed_item &) = delete;

    item_t *get() { return &item_; }

private:
    struct scratch {
        std::string text;
        GList line{};
        lang_entry_t entry{};
    };

    void put(const typed_text &one)
    {
        scratch &place = places_.emplace_back();
        place.text = one.text;
        trim(place.text);
        place.line.data = place.text.data();
        place.entry = {const_cast<char *>(one.lang), place.text.empty() ? nullptr : &place.line};
        // The first entry of a language is the one that the panel shows and stores.
        GList *&entries = item_.*one.entries;
        GList *node = entries;
        while (node != nullptr &&
               g_strcmp0(static_cast<lang_entry_t *>(node->data)->lang, one.lang) != 0)
            node = node->next;
        if (node != nullptr)
            node->data = &place.entry;
        else
            entries = g_list_append(entries, &place.entry);
    }

    item_t item_;
    // A deque, since the lists point into what it holds while more is added.
    std::deque<scratch> places_;
};

void take_out(std::vector<lint::taken> &from, const lint::taken &one)
{
    const auto found = std::find(from.begin(), from.end(), one);
    if (found != from.end())
        from.erase(found);
}

// Adds the conversions of the text that have no partner among the others.
void add_single(std::string &out, const lint::percents &text, std::vector<lint::taken> others,
                const char *what)
{
    for (std::size_t i = 0; i < text.conversions.size(); ++i) {
        // Each partner is used once: two "%s" need two.
        if (std::find(others.begin(), others.end(), text.arguments[i]) != others.end()) {
            take_out(others, text.arguments[i]);
            continue;
        }
        out += out.empty() ? "" : ", ";
        out.append(text.conversions[i]).append(what);
    }
}

// Which conversions differ; empty where counting pairs one by one would mislead.
std::string differing_conversions(std::string_view own_text, std::string_view reference_text)
{
    const lint::percents reference = lint::read_percents(reference_text);
    const lint::percents own = lint::read_percents(own_text, &reference);
    std::string out;
    if (reference.arguments.size() != reference.conversions.size() ||
        own.arguments.size() != own.conversions.size() || own.writes || own.mixed || own.stray ||
        reference_text.find('$') != std::string_view::npos ||
        own_text.find('$') != std::string_view::npos)
        return out;
    add_single(out, reference, own.arguments, " is missing");
    add_single(out, own, reference.arguments, " is too many");
    return out;
}

} // namespace

class judge::work {
public:
    work(const LangSource *source, const char *lang1, const char *lang2, lint::text_width width)
        : source_(source), langs_{lang1, lang2}, width_(std::move(width)),
          linter_(source, {rules_while_typing, wanted(lang1, lang2), width_})
    {
    }

    item_state look_at(const edit_t *group, item_t *item, remarks *told);
    rooms rooms_of(item_t *item) const;

private:
    static std::vector<std::string> wanted(const char *lang1, const char *lang2)
    {
        std::vector<std::string> out;
        for (const char *lang : {lang1, lang2})
            if (lang != nullptr)
                out.emplace_back(lang);
        return out;
    }
    std::size_t language_of(const lint::finding &found) const;
    std::string words(const lint::finding &found, item_t *item);

    const LangSource *source_;
    std::array<const char *, shown_languages> langs_;
    lint::text_width width_;
    lint::linter linter_;
};

// What a rule says about no language, or about one that is not shown, is told with the first
// language that is shown.
std::size_t judge::work::language_of(const lint::finding &found) const
{
    const bool is_second =
        found.language != nullptr && langs_[1] != nullptr &&
        (langs_[0] == nullptr || !lint::same_language(found.language, langs_[0])) &&
        lint::same_language(found.language, langs_[1]);
    return is_second || langs_[0] == nullptr ? 1 : 0;
}

std::string judge::work::words(const lint::finding &found, item_t *item)
{
    std::string out;
    if (found.rule == rule_id::format && found.language != nullptr) {
        const auto *entry = static_cast<const lang_entry_t *>(found.record);
        // The default language is compared with the item's name, as the rule itself does it: the
        // words must name the same difference.
        const bool is_default = lint::same_language(found.language, source_->default_lang);
        const std::string expected =
            is_default ? or_empty(item->name) : reference_text(*source_, item);
        out = differing_conversions(text_of(entry), expected);
    }
    return out.empty() ? std::string(found.message) : out;
}

item_state judge::work::look_at(const edit_t *group, item_t *item, remarks *told)
{
    item_state state;
    for (std::size_t i = 0; i < shown_languages; ++i)
        state.asks[i] =
            langs_[i] != nullptr && lint::is_open_question(find_entry(item->comments, langs_[i]));
    for (std::size_t i = 0; i < shown_languages; ++i)
        state.lacks[i] = langs_[i] != nullptr && misc_search_empty_in_lang_entry(
                                                     misc_select_lang_entry(item, langs_[i])) != 0;
    // With no language shown, the linter would look at all of them.
    if (langs_[0] == nullptr && langs_[1] == nullptr)
        return state;
    linter_.check_item(group, item, [&](const lint::finding &found) {
        const std::size_t i = language_of(found);
        const bool counts = lint::rule_of(found.rule).severity != lint::level::info;
        // Stays at 255: a wrap to 0 would hide all findings.
        if (counts && state.findings[i] != UINT8_MAX)
            ++state.findings[i];
        if (told != nullptr)
            (*told)[i].push_back({words(found, item), counts,
                                  found.rule == rule_id::max &&
                                      find_entry(item->langs, found.language) == found.record});
    });
    return state;
}

rooms judge::work::rooms_of(item_t *item) const
{
    rooms all;
    for (std::size_t i = 0; i < shown_languages; ++i) {
        const lint::length_limit limit =
            langs_[i] == nullptr ? lint::length_limit{} : lint::limit_of(*source_, item, langs_[i]);
        if (limit.most == 0 || (limit.in_pixels && !width_))
            continue;
        const std::string text = text_of(misc_select_lang_entry(item, langs_[i]));
        all[i] = {limit.most, lint::shown_length(text, limit.in_pixels ? width_ : nullptr),
                  limit.in_pixels};
    }
    return all;
}

judge::judge(const LangSource *source, const char *lang1, const char *lang2, lint::text_width width)
    : work_(std::make_unique<work>(source, lang1, lang2, std::move(width)))
{
}

judge::~judge() = default;

item_state judge::look_at(const edit_t *group, const item_t *item,
                          std::span<const typed_text> typed, remarks *told)
{
    if (typed.empty())
        return work_->look_at(group, const_cast<item_t *>(item), told);
    typed_item with(item, typed);
    return work_->look_at(group, with.get(), told);
}

rooms judge::rooms_of(const item_t *item, std::span<const typed_text> typed) const
{
    typed_item with(item, typed);
    return work_->rooms_of(with.get());
}

} // namespace zel::assist
