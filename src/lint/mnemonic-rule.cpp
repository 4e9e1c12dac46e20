#include "lint/item-case.h"
#include "lint/mnemonics.h"
#include "lint/rule-list.h"

namespace zel::lint {

namespace {

// A name with underscores, "Page_Up", whose reference has none, "Page Up": translations keep them.
bool is_name(const text_case &at)
{
    return at.item != nullptr && !at.reference.has(has_underscore) &&
           name_of(at.item->name).find('_') != std::string_view::npos;
}

} // namespace

bool judge_mnemonic(const text_case &at, std::string &message)
{
    if (!at.own.has(has_underscore) && !at.reference.has(has_underscore))
        return false;
    const mnemonics own = read_mnemonics(at.own.bytes);
    const mnemonics reference = read_mnemonics(at.reference.bytes);
    if (reference.count > 1 || is_name(at))
        return false;
    if (own.sure > 1)
        message = "there are two mnemonics";
    else if (own.count == 0 && reference.sure == 1)
        message = "the mnemonic of the reference is missing";
    else if (own.sure == 1 && reference.count == 0)
        message = "there is a mnemonic, the reference has none";
    return !message.empty();
}

} // namespace zel::lint
