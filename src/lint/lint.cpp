#include "lint/lint.h"

#include "lint/across.h"
#include "lint/item-case.h"
#include "lint/mnemonics.h"
#include "lint/plural.h"
#include "lint/rules.h"
#include "lint/switch.h"
#include "source/entry.h"

#include <algorithm>
#include <utility>

namespace zel::lint {

namespace {

struct said {
    finding what;
    std::size_t rank;  // 0 about the item itself, else behind its entries' order
    std::size_t start; // of the message among all of the item
    std::size_t length;
};

language_list languages_of(const LangSource *source, const choice &wanted)
{
    language_list out;
    for (const lang_t *lang : each<lang_t>(source->langs)) {
        const char *name = lang->name == nullptr ? "" : lang->name;
        const bool is_wanted =
            wanted.languages.empty() ||
            std::any_of(wanted.languages.begin(), wanted.languages.end(),
                        [&](const std::string &one) { return same_language(one.c_str(), name); });
        out.push_back({lang, name, same_language(name, source->default_lang), is_wanted,
                       plural_rule_of(*lang),
                       is_variant(name_of(lang->name), name_of(source->default_lang))});
    }
    return out;
}

} // namespace

class linter::work final : item_case::sink {
public:
    work(const LangSource *source, choice wanted)
        : source_(source), wanted_(std::move(wanted)), languages_(languages_of(source, wanted_)),
          slots_(languages_.size()), buffers_(languages_.size())
    {
        for (const rule &row : rules()) {
            if (!wanted_.rules.has(row.id))
                continue;
            if (row.judge_text != nullptr)
                text_rules_.push_back(&row);
            if (row.judge_item != nullptr)
                item_rules_.push_back(&row);
        }
    }

    void check(const listener &to, const std::function<void(const item_t *)> &next_item);
    void check_item(const edit_t *group, const item_t *item, const listener &to, across *others);

    void say(rule_id rule, const char *name, const void *record, std::string_view message) override;
    void leave_unmeasured(const char *name) override
    {
        unmeasured_ += is_silent(rule_id::max, name) ? 0U : 1U;
    }
    std::size_t unmeasured() const { return unmeasured_; }

private:
    void take_entries(const item_t *item);
    void take_switches(const item_t *item);
    void take_reference(const item_t *item);
    void judge_text(std::size_t i);
    void judge_texts();
    void judge_across(const item_case &at, across &others);
    void judge_group(const edit_t *group);
    bool is_silent(rule_id rule, const char *name) const;
    void rank_records();
    std::size_t rank_of(const void *record) const;
    void tell(const listener &to);

    const LangSource *source_;
    choice wanted_;
    language_list languages_;
    std::vector<const rule *> text_rules_;
    std::vector<const rule *> item_rules_;
    std::size_t unmeasured_ = 0;

    // Of the item being judged.
    const edit_t *group_ = nullptr;
    const item_t *item_ = nullptr;
    std::vector<slot> slots_;
    std::vector<std::string> buffers_;
    text name_;
    text reference_;
    rule_set item_off_;
    bool is_plural_ = false; // a comment says so
    bool no_plural_ = false;
    std::vector<said> said_;
    std::vector<std::pair<const void *, std::size_t>> ranks_; // of its records, by their addresses
    std::string messages_;
    std::string message_;
};

// The first entry of each language counts, as when a source is compiled.
void linter::work::take_entries(const item_t *item)
{
    for (slot &one : slots_)
        one = {};
    std::size_t guess = 0;
    for (const lang_entry_t *entry : each<lang_entry_t>(item->langs)) {
        const std::size_t i = languages_.find(entry->lang, guess);
        guess = i + 1;
        if (i == languages_.size())
            continue;
        if (slots_[i].entry == nullptr)
            slots_[i] = {entry, look_at(look_at_text(entry->texts, buffers_[i])), {}};
        else if (wanted_.rules.has(rule_id::duplicate))
            say(rule_id::duplicate, entry->lang, entry,
                "a second text in the language, which is never used");
    }
}

void linter::work::take_switches(const item_t *item)
{
    item_off_ = {};
    is_plural_ = no_plural_ = false;
    bool no_format = false;
    for (const lang_entry_t *comment : each<lang_entry_t>(item->comments)) {
        if (same_language(comment->lang, source_->default_lang)) {
            const catalog_flags flags = read_flags(comment);
            no_format = no_format || flags.no_c_format;
            is_plural_ = is_plural_ || flags.plural;
            no_plural_ = no_plural_ || flags.no_plural;
        }
        const rule_set off = read_switches(comment);
        if (off.none())
            continue;
        if (same_language(comment->lang, source_->default_lang))
            item_off_ = off;
        const std::size_t i = languages_.find(comment->lang, 0);
        if (i < slots_.size())
            slots_[i].off = off;
    }
    if (!no_format)
        return;
    item_off_ = item_off_.with(rule_id::format);
    for (slot &one : slots_)
        one.off = one.off.with(rule_id::format);
}

void linter::work::take_reference(const item_t *item)
{
    name_ = look_at(name_of(item->name));
    if (!no_plural_)
        note_forms(name_, is_plural_);
    reference_ = name_;
    for (std::size_t i = 0; i < slots_.size(); ++i)
        if (languages_[i].is_default && slots_[i].entry != nullptr && !slots_[i].own.is_blank())
            reference_ = slots_[i].own;
    if (!no_plural_)
        note_forms(reference_, is_plural_);
}

void linter::work::judge_text(std::size_t i)
{
    const slot &one = slots_[i];
    static constexpr text nothing;
    for (const rule *row : text_rules_) {
        const text *reference = &reference_;
        if (languages_[i].is_default) {
            if (row->about == scope::reference)
                continue;
            reference = row->about == scope::code ? &name_ : &nothing;
        }
        message_.clear();
        if (row->judge_text({one.own, *reference, item_, languages_[i].plural_rule}, message_))
            say(row->id, languages_[i].name, one.entry, message_);
    }
}

// A text that nobody sees is only looked at for its bytes.
void linter::work::judge_texts()
{
    for (std::size_t i = 0; i < slots_.size(); ++i)
        if (slots_[i].entry != nullptr && languages_[i].wanted && !slots_[i].own.bytes.empty())
            judge_text(i);
}

bool linter::work::is_silent(rule_id rule, const char *name) const
{
    if (name == nullptr)
        return item_off_.has(rule);
    const std::size_t i = languages_.find(name, 0);
    if (i < languages_.size())
        return !languages_[i].wanted || slots_[i].off.has(rule);
    return !wanted_.languages.empty();
}

void linter::work::rank_records()
{
    ranks_.clear();
    if (item_ == nullptr)
        return;
    for (GList *list : {item_->langs, item_->comments})
        for (const lang_entry_t *entry : each<lang_entry_t>(list))
            ranks_.emplace_back(entry, ranks_.size() + 1);
    std::sort(ranks_.begin(), ranks_.end());
}

std::size_t linter::work::rank_of(const void *record) const
{
    const auto found =
        std::lower_bound(ranks_.begin(), ranks_.end(), std::pair(record, std::size_t{0}));
    return found == ranks_.end() || found->first != record ? 0 : found->second;
}

void linter::work::say(rule_id rule, const char *name, const void *record, std::string_view message)
{
    said_.push_back({{rule, group_, item_, name, record, {}}, 0, messages_.size(), message.size()});
    messages_ += message;
}

void linter::work::tell(const listener &to)
{
    if (said_.empty())
        return;
    std::erase_if(said_,
                  [this](const said &one) { return is_silent(one.what.rule, one.what.language); });
    if (!said_.empty())
        rank_records();
    for (said &one : said_)
        one.rank = rank_of(one.what.record);
    std::stable_sort(said_.begin(), said_.end(), [](const said &a, const said &b) {
        return a.rank != b.rank ? a.rank < b.rank : a.what.rule < b.what.rule;
    });
    for (said &one : said_) {
        one.what.message = std::string_view(messages_).substr(one.start, one.length);
        to(one.what);
    }
    said_.clear();
    messages_.clear();
}

void linter::work::judge_across(const item_case &at, across &others)
{
    if (wanted_.rules.has(rule_id::duplicate))
        others.judge_duplicate(at);
    if (at.item->used == 0)
        return;
    if (wanted_.rules.has(rule_id::consistency))
        others.judge_consistency(at);
    if (wanted_.rules.has(rule_id::collision))
        others.judge_collision(at);
}

void linter::work::check_item(const edit_t *group, const item_t *item, const listener &to,
                              across *others)
{
    group_ = group;
    item_ = item;
    take_entries(item);
    take_switches(item);
    take_reference(item);
    const item_case at{source_, group,      item,          languages_,
                       slots_,  reference_, wanted_.ruler, wanted_.terms.get(),
                       *this};
    for (const rule *row : item_rules_)
        if (item->used != 0 || row->id == rule_id::unused || row->id == rule_id::encoding)
            row->judge_item(at);
    if (item->used != 0)
        judge_texts();
    if (others != nullptr)
        judge_across(at, *others);
    tell(to);
}

void linter::work::check(const listener &to, const std::function<void(const item_t *)> &next_item)
{
    group_ = nullptr;
    item_ = nullptr;
    if (!may_use_mnemonics(source_))
        std::erase_if(text_rules_, [](const rule *row) { return row->id == rule_id::mnemonic; });
    if (wanted_.rules.has(rule_id::duplicate))
        across::judge_languages(source_, *this);
    tell(to);
    across others(languages_.all());
    for (const edit_t *group : each<edit_t>(source_->groups)) {
        others.begin_group(group);
        for (const item_t *item : each<item_t>(group->items)) {
            if (next_item)
                next_item(item);
            check_item(group, item, to, &others);
        }
    }
}

linter::linter(const LangSource *source, choice wanted)
    : work_(std::make_unique<work>(source, std::move(wanted)))
{
}

linter::~linter() = default;

void linter::check(const listener &to, const std::function<void(const item_t *)> &next_item)
{
    work_->check(to, next_item);
}

void linter::check_item(const edit_t *group, const item_t *item, const listener &to)
{
    work_->check_item(group, item, to, nullptr);
}

std::size_t linter::unmeasured() const { return work_->unmeasured(); }

bool defines_language(const LangSource *source, const std::string &name)
{
    const each<lang_t> defined(source->langs);
    for (const lang_t *lang : defined)
        if (same_language(lang->name, name.c_str()))
            return true;
    return false;
}

} // namespace zel::lint
