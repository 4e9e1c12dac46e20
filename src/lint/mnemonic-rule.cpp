#include "lint/item-case.h"
#include "lint/mnemonics.h"
#include "lint/rule-list.h"

namespace zel::lint {

namespace {

// "Page_Up" of an item of that name, whose reference is "Page Up".
bool is_of_name(const text_case &at, const mnemonics &own)
{
    const std::string_view text = at.own.bytes;
    std::size_t start = own.at;
    while (start > 0 && is_word_byte(text[start - 1]))
        --start;
    std::size_t end = own.at;
    while (end < text.size() && is_word_byte(text[end]))
        ++end;
    return start < own.at && at.item != nullptr &&
           name_of(at.item->name).find(text.substr(start, end - start)) != std::string_view::npos;
}

} // namespace

bool judge_mnemonic(const text_case &at, std::string &message)
{
    if (!at.own.has(has_underscore) && !at.reference.has(has_underscore))
        return false;
    const mnemonics own = read_mnemonics(at.own.bytes);
    const mnemonics reference = read_mnemonics(at.reference.bytes);
    if (reference.count > 1)
        return false;
    if (own.sure > 1)
        message = "there are two mnemonics";
    else if (own.count == 0 && reference.sure == 1)
        message = "the mnemonic of the reference is missing";
    else if (own.sure == 1 && reference.count == 0 && !is_of_name(at, own))
        message = "there is a mnemonic, the reference has none";
    return !message.empty();
}

} // namespace zel::lint
