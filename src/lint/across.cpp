#include "lint/across.h"

#include "lint/mnemonics.h"
#include "source/entry.h"
#include "support/hash-index.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

namespace zel::lint {

namespace {

// A compiled file's name, without the ending that it has anyway.
std::string_view file_name(const lang_t *lang)
{
    std::string_view name = name_of(lang->file);
    if (name.ends_with(".lang"))
        name.remove_suffix(5);
    return name;
}

// As same_language compares names.
std::string folded(std::string_view name)
{
    std::string out(name);
    std::transform(out.begin(), out.end(), out.begin(), g_ascii_tolower);
    return out;
}

std::string key_of(const edit_t *group, const item_t *item)
{
    std::string key(name_of(group->name));
    return key.append(":").append(name_of(item->name));
}

struct seen_item {
    const edit_t *group;
    const item_t *item;
};

// The first text of a group with a mnemonic.
struct marked {
    const item_t *item;
    char32_t reference; // mnemonic of its reference text
};

// At least two words, so that "OK" and "File" are none.
bool is_phrase(std::string_view text)
{
    const std::size_t blank = text.find(' ');
    return blank != std::string_view::npos && blank > 1 && blank + 2 < text.size();
}

// Without the marks of mnemonics, which are another matter.
std::string unmarked(std::string_view text)
{
    std::string out(text);
    std::erase(out, '_');
    return out;
}

std::string in_quotes(std::string_view text) { return std::string("\"").append(text).append("\""); }

} // namespace

struct across::state {
    std::span<const language> languages;

    std::vector<seen_item> items; // all, for duplicates
    hash_index keys;

    struct seen_reference {
        seen_item first;
        std::string text;
    };
    std::vector<seen_reference> references;
    hash_index texts;
    std::vector<bool> reported; // of each reference the languages

    // Of the group.
    const edit_t *group = nullptr;
    enum class is_window { unknown, no, yes } window = is_window::unknown; // texts seen together
    bool is_in_window(const LangSource *source)
    {
        if (window == is_window::unknown)
            window = may_be_window(source, group) ? is_window::yes : is_window::no;
        return window == is_window::yes;
    }
    std::unordered_map<std::uint64_t, marked> marks; // by language and mnemonic
};

across::across(std::span<const language> languages) : state_(std::make_unique<state>())
{
    state_->languages = languages;
}

across::~across() = default;

void across::judge_languages(const LangSource *source, item_case::sink &found)
{
    std::vector<const lang_t *> all;
    std::unordered_map<std::string, std::size_t> names; // the first definition with that one
    std::unordered_map<std::string, std::size_t> files;
    for (const lang_t *lang : each<lang_t>(source->langs)) {
        const auto [name, new_name] = names.try_emplace(folded(name_of(lang->name)), all.size());
        const auto [file, new_file] = files.try_emplace(std::string(file_name(lang)), all.size());
        all.push_back(lang);
        // One line for each definition: of both faults the one whose first half stands earlier.
        if (!new_name && name->second <= file->second)
            found.say(rule_id::duplicate, lang->name, lang, "a second definition of the language");
        else if (!new_file)
            found.say(rule_id::duplicate, lang->name, lang,
                      "the file " + in_quotes(name_of(lang->file)) + " is that of " +
                          std::string(name_of(all[file->second]->name)) + " already");
    }
}

void across::judge_duplicate(const item_case &at)
{
    state &s = *state_;
    // Group and item are hashed apart, so that "a:b" in "c" is not "a" in "b:c".
    const std::uint32_t hash =
        hash_of(name_of(at.group->name)) * 31 + hash_of(name_of(at.item->name));
    const std::uint32_t known = s.keys.find(hash, [&](std::uint32_t i) {
        return name_of(s.items[i].item->name) == name_of(at.item->name) &&
               name_of(s.items[i].group->name) == name_of(at.group->name);
    });
    if (known != hash_index::none) {
        at.found.say(rule_id::duplicate, nullptr, at.item,
                     "a second item " + in_quotes(key_of(at.group, at.item)) +
                         ", which is never found");
        return;
    }
    s.keys.add(hash, static_cast<std::uint32_t>(s.items.size()));
    s.items.push_back({at.group, at.item});
}

void across::judge_consistency(const item_case &at)
{
    state &s = *state_;
    const std::string_view reference = at.reference.bytes;
    if (!is_phrase(reference)) // single words have many meanings
        return;
    const std::uint32_t hash = hash_of(reference);
    const std::uint32_t known =
        s.texts.find(hash, [&](std::uint32_t i) { return s.references[i].text == reference; });
    if (known == hash_index::none) {
        s.texts.add(hash, static_cast<std::uint32_t>(s.references.size()));
        s.references.push_back({{at.group, at.item}, std::string(reference)});
        return;
    }
    // Grows with the references; a bit for each language of each.
    if (s.reported.size() < s.references.size() * s.languages.size())
        s.reported.resize(s.references.size() * s.languages.size());
    std::string buffer;
    for (std::size_t i = 0; i < at.slots.size(); ++i) {
        const slot &one = at.slots[i];
        const std::size_t bit = known * s.languages.size() + i;
        if (one.entry == nullptr || one.own.is_blank() || at.languages[i].is_default ||
            s.reported[bit])
            continue;
        const seen_item &first = s.references[known].first;
        const std::string_view other = first_text(first.item, at.languages[i].name, buffer);
        if (look_at(other).is_blank() || other == one.own.bytes ||
            unmarked(other) == unmarked(one.own.bytes))
            continue;
        s.reported[bit] = true;
        at.found.say(rule_id::consistency, at.languages[i].name, one.entry,
                     in_quotes(reference) + " is " + in_quotes(one.own.bytes) + " here and " +
                         in_quotes(other) + " in " + key_of(first.group, first.item));
    }
}

void across::begin_group(const edit_t *group)
{
    state_->marks.clear();
    state_->window = state::is_window::unknown;
    state_->group = group;
}

void across::judge_collision(const item_case &at)
{
    state &s = *state_;
    if (!at.reference.has(has_underscore) || at.reference.bytes.starts_with('/'))
        return;
    const mnemonics reference = read_mnemonics(at.reference.bytes);
    if (reference.count != 1 || !s.is_in_window(at.source))
        return;
    for (std::size_t i = 0; i < at.slots.size(); ++i) {
        const slot &one = at.slots[i];
        if (one.entry == nullptr || !one.own.has(has_underscore))
            continue;
        const mnemonics own = read_mnemonics(one.own.bytes);
        if (own.count != 1)
            continue;
        const auto [known, added] =
            s.marks.try_emplace(std::uint64_t{i} << 32 | own.key, marked{at.item, reference.key});
        // Where the reference has them on one key already, they are not seen together.
        if (added || (known->second.reference == reference.key && !at.languages[i].is_default))
            continue;
        // Told at the second of the two texts: the first one was right until then.
        std::string buffer;
        at.found.say(rule_id::collision, at.languages[i].name, one.entry,
                     "the mnemonic is that of " +
                         in_quotes(first_text(known->second.item, at.languages[i].name, buffer)));
    }
}

} // namespace zel::lint
