#include "exchange/keyed-source.h"

#include "exchange/language-code.h"
#include "exchange/plural-header.h"
#include "langlib/plural-rule.h"
#include "source/entry.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace zel::exchange {

namespace {

constexpr std::string_view form_names[] = {"zero", "one", "two", "few", "many", "other"};
constexpr std::size_t most_told = 3; // keys in a line

// A plural's identity ends so, as a key of its base alone may be there, too.
std::string identity_of(const std::string &group, std::string_view key, bool is_plural)
{
    return (group + '\0').append(key).append(is_plural ? 1 : 0, '\0');
}

// The form that a key names at its end, "one" of "files_one", which is cut off; empty for none.
// Ordinal numbers take other forms than counts, for which nothing here asks.
std::string_view cut_form(std::string_view &key)
{
    const std::size_t sign = key.rfind('_');
    if (sign == key.npos || sign == 0 || key.substr(0, sign).ends_with("_ordinal"))
        return {};
    const std::string_view end = key.substr(sign + 1);
    if (std::find(std::begin(form_names), std::end(form_names), end) == std::end(form_names))
        return {};
    key = key.substr(0, sign);
    return end;
}

// "2 texts ...: menu.a, menu.b"
struct told_keys {
    std::size_t count = 0;
    std::string keys;

    void add(const std::string &key)
    {
        if (++count <= most_told)
            keys.append(keys.empty() ? "" : ", ").append(key);
        else if (count == most_told + 1)
            keys += " ...";
    }
};

// The form for 1 and the one for what has no other form.
std::string form_of(const keyed_text &one, std::string_view name)
{
    const auto found = std::find(one.cases.begin(), one.cases.end(), name);
    return found == one.cases.end()
               ? std::string()
               : one.forms[static_cast<std::size_t>(found - one.cases.begin())];
}

bool is_blank(const keyed_text &one)
{
    return without_end(one.text).empty() &&
           std::all_of(one.forms.begin(), one.forms.end(),
                       [](const std::string &form) { return without_end(form).empty(); });
}

po_message message_of(const keyed_text &one)
{
    po_message message;
    message.line = one.line;
    if (!one.group.empty())
        message.id.context = one.group;
    else
        message.group = "messages";
    message.extracted = {one.key};
    message.id.text = one.text;
    if (!one.forms.empty()) {
        message.id.plural = form_of(one, "other");
        message.id.text = form_of(one, "one");
        if (message.id.text->empty())
            message.id.text = message.id.plural;
    }
    return message;
}

} // namespace

fault keyed_source::take(keyed_reader read, const std::string &path, std::string_view bytes)
{
    keyed_file file;
    if (fault wrong = read(bytes, file))
        return wrong;
    for (const std::string &line : file.notes)
        made_.tell(std::string(path).append(": ").append(line));
    for (keyed_part &one : file.parts) {
        part made{path, std::move(one.language), {}, {}, file.has_suffixes, std::move(one.texts),
                  {}};
        if (made.said.name.empty() && made.said.code.empty() && code_of_file(path).empty())
            look_at_folder(made);
        made.language = new_source::name_language(path, made.said).first;
        const auto before = std::find_if(parts_.begin(), parts_.end(), [&](const part &of) {
            return of.language == made.language;
        });
        if (before == parts_.end())
            parts_.push_back(std::move(made));
        else if (before->scope.empty() || made.scope.empty() || before->scope == made.scope)
            return {0, "of the language \"" + made.language + "\", and so is " + before->path};
        else
            std::move(made.texts.begin(), made.texts.end(), std::back_inserter(before->texts));
    }
    return {};
}

// Of en/menu.json the folder says the language, and the file's name stands before its keys.
void keyed_source::look_at_folder(part &of)
{
    const std::string_view folder =
        std::string_view(of.path).substr(0, std::min(of.path.rfind('/'), of.path.size()));
    const std::string code = code_of(folder.substr(folder.rfind('/') + 1));
    if (name_of_code(code).empty())
        return;
    of.said.code = code;
    of.scope = stem_of(of.path);
    for (keyed_text &one : of.texts) {
        one.key.insert(0, of.scope + ":");
        if (one.group.empty())
            one.group = of.scope;
    }
}

// Finds the keys whose ends are forms: "files_other" with another one beside it.
void keyed_source::find_plurals(const part &of)
{
    std::unordered_map<std::string, std::pair<bool, bool>> found; // "other", and another form
    for (const keyed_text &one : of.texts) {
        std::string_view base = one.key;
        const std::string_view form = cut_form(base);
        if (form.empty())
            continue;
        const std::string identity = identity_of(one.group, base, true);
        auto &[has_other, has_more] = found[identity];
        (form == "other" ? has_other : has_more) = true;
        if (has_other && has_more)
            plurals_.insert(identity);
    }
}

// Puts the forms of a plural into one text, at the place of the first.
void keyed_source::join_forms(part &of) const
{
    std::vector<keyed_text> texts;
    for (keyed_text &one : of.texts) {
        std::string_view base = one.key;
        const std::string_view form = of.has_suffixes ? cut_form(base) : std::string_view();
        std::string identity = identity_of(one.group, base, true);
        if (form.empty() || plurals_.count(identity) == 0) {
            of.places.emplace(identity_of(one.group, one.key, false), texts.size());
            texts.push_back(std::move(one));
            continue;
        }
        const auto [at, added] = of.places.emplace(std::move(identity), texts.size());
        std::string name(form);
        if (added)
            texts.push_back({one.group, std::string(base), {}, {}, {}, one.remarks, one.line});
        texts[at->second].cases.push_back(std::move(name));
        texts[at->second].forms.push_back(std::move(one.text));
    }
    of.texts = std::move(texts);
}

// What all languages but that one say of a key.
std::string keyed_source::signature(const std::string &identity, const part &reference) const
{
    std::string out;
    for (const part &of : parts_) {
        const auto found = of.places.find(identity);
        if (&of == &reference || found == of.places.end()) {
            out += '\0';
            continue;
        }
        const keyed_text &one = of.texts[found->second];
        out += '\1' + one.text;
        for (std::size_t at = 0; at < one.forms.size(); ++at)
            out += '\2' + one.cases[at] + '\3' + one.forms[at];
    }
    return out;
}

std::vector<po_message> keyed_source::messages_of(const part &reference)
{
    std::vector<po_message> messages;
    std::unordered_map<std::string, std::size_t> counts; // of what the keys have in common
    const auto common = [](const keyed_text &one) {
        std::string out = one.group + '\0' + one.text;
        for (std::size_t at = 0; at < one.forms.size(); ++at)
            out += '\2' + one.cases[at] + '\3' + one.forms[at];
        return out;
    };
    for (const keyed_text &one : reference.texts)
        ++counts[common(one)];
    std::unordered_map<std::string, std::size_t> known; // by that, and the other languages' texts
    told_keys apart;
    told_keys blank;
    for (const keyed_text &one : reference.texts) {
        if (is_blank(one)) {
            blank.add(one.key);
            continue;
        }
        const std::string shared = common(one);
        const std::string identity = identity_of(one.group, one.key, !one.forms.empty());
        std::string others;
        std::size_t place = messages.size();
        if (counts[shared] > 1) {
            others = signature(identity, reference);
            place = known.emplace(std::string(shared).append(1, '\4').append(others), place)
                        .first->second;
        }
        messages_.emplace(identity, place);
        if (place < messages.size()) {
            messages[place].extracted.push_back(one.key);
            continue;
        }
        messages.push_back(message_of(one));
        // Of a plural the form for 1 alone may be another one's, too.
        messages.back().told_apart = others + messages.back().id.plural.value_or("");
        // The first of several keeps the group's own name.
        if (!others.empty() && !known.emplace(shared, place).second)
            apart.add(one.key);
    }
    if (apart.count != 0)
        made_.tell(
            reference.path + ": " + counted_words(apart.count, "key") +
            " with the text of another key and other translations, in groups with a number: " +
            apart.keys);
    if (blank.count != 0)
        made_.tell(reference.path + ": left out " + counted_words(blank.count, "key") +
                   " without a text: " + blank.keys);
    return messages;
}

// Says once which forms of a language its file lacks, where the form for all else stands in.
void keyed_source::tell_missing_forms(const part &of)
{
    const std::string_view rule = plural_rule_of(of.language);
    std::map<std::string_view, std::size_t> missing;
    for (const keyed_text &one : of.texts)
        for (std::size_t form = 0; form < count_plural_forms(rule).everyday; ++form)
            if (const std::string_view name = plural_form_name(rule, form);
                !one.forms.empty() && !form_of(one, "other").empty() && form_of(one, name).empty())
                ++missing[name];
    for (const auto &[name, count] : missing)
        made_.tell(of.path + ": form \"" + std::string(name) + "\" is missing: " +
                   counted_words(count, "text") + " with that of \"other\" in its place");
}

fault keyed_source::translate(const part &of, const std::vector<po_message> &messages)
{
    std::vector<po_message> told;
    std::vector<std::size_t> done(messages.size(), messages.size()); // its place among the told
    told_keys unknown;
    for (const keyed_text &one : of.texts) {
        const auto found = messages_.find(identity_of(one.group, one.key, !one.forms.empty()));
        if (found == messages_.end()) {
            if (!is_blank(one))
                unknown.add(one.key);
            continue;
        }
        std::size_t &place = done[found->second];
        // Keys that are one item have the same text, but not the same remarks.
        if (place == messages.size()) {
            place = told.size();
            told.push_back(messages[found->second]);
            told.back().line = one.line;
            told.back().cases = one.cases;
            told.back().texts = one.forms.empty() ? std::vector<std::string>{one.text} : one.forms;
        }
        std::vector<std::string> &to =
            of.language == default_language_ ? told[place].extracted : told[place].remarks;
        to.insert(to.end(), one.remarks.begin(), one.remarks.end());
    }
    if (unknown.count != 0)
        made_.tell(of.path + ": left out " + counted_words(unknown.count, "text") +
                   " of keys that " + default_language_ + " lacks: " + unknown.keys);
    tell_missing_forms(of);
    return made_.take_language(of.path, of.said, told);
}

// The part of the default language. Of several files one alone may say no language: strings.ini
// beside strings_de.ini.
std::vector<keyed_source::part>::iterator keyed_source::find_reference()
{
    const auto found = std::find_if(parts_.begin(), parts_.end(), [&](const part &of) {
        return of.language == default_language_;
    });
    const auto says_none = [](const part &of) {
        return of.said.name.empty() && of.said.code.empty() && code_of_file(of.path).empty();
    };
    const auto only = std::find_if(parts_.begin(), parts_.end(), says_none);
    if (found != parts_.end() || std::count_if(parts_.begin(), parts_.end(), says_none) != 1)
        return found;
    only->said.name = only->language = default_language_;
    return only;
}

fault keyed_source::finish(std::string &path)
{
    for (const part &of : parts_)
        if (of.has_suffixes)
            find_plurals(of);
    for (part &of : parts_)
        join_forms(of);
    const auto reference = find_reference();
    if (reference == parts_.end()) {
        if (parts_.empty())
            return {0, "no texts"};
        std::string names;
        for (const part &of : parts_)
            names.append(names.empty() ? "" : ", ").append(of.language);
        path = parts_.front().path;
        return {0, "no file of the default language \"" + default_language_ +
                       "\", which --default names: only " + names};
    }
    std::rotate(parts_.begin(), reference, reference + 1);
    const std::vector<po_message> messages = messages_of(parts_.front());
    for (const part &of : parts_)
        if (fault wrong = translate(of, messages)) {
            path = of.path;
            return wrong;
        }
    return {};
}

} // namespace zel::exchange
