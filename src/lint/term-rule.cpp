#include "lint/glossary.h"
#include "lint/item-case.h"
#include "lint/rule-list.h"

#include <algorithm>

namespace zel::lint {

namespace {

std::string words_of(const glossary::term &term, const glossary::translation &wanted)
{
    std::string out = "the term \"" + term.text + "\" ";
    if (wanted.is_kept)
        return out + "does not stay as it is";
    for (const std::string &one : wanted.any)
        out.append(&one == wanted.any.data() ? "is not \"" : " or \"").append(one).append("\"");
    return out + " here";
}

// The terms of the reference, each once.
std::vector<const glossary::term *> terms_of(const item_case &at)
{
    std::vector<const glossary::term *> out;
    for (const glossary::hit &hit : at.terms->in(at.reference.bytes))
        out.push_back(hit.what);
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    return out;
}

} // namespace

void judge_term(const item_case &at)
{
    if (at.terms == nullptr)
        return;
    for (const glossary::term *term : terms_of(at)) {
        std::size_t guess = 0; // lists of terms have the languages in the order of the source's
        for (const glossary::translation &wanted : term->translations) {
            const std::size_t i = at.languages.find(wanted.language.c_str(), guess);
            guess = i + 1;
            if (i == at.languages.size() || at.languages[i].is_default || !at.languages[i].wanted)
                continue;
            const slot &one = at.slots[i];
            // A text that is the reference is not translated, which another rule tells.
            if (one.entry != nullptr && !one.own.is_blank() &&
                one.own.bytes != at.reference.bytes && !has_any(one.own.bytes, wanted))
                at.found.say(rule_id::term, at.languages[i].name, one.entry,
                             words_of(*term, wanted));
        }
    }
}

} // namespace zel::lint
