#include "merge/fields.h"

#include <utility>

namespace zel {

namespace {

// The bytes of a list's strings, one after another.
class text_walk {
public:
    explicit text_walk(GList *texts) : node_(texts) { skip_to_byte(); }

    bool at_end() const { return *at_ == '\0'; }
    char byte() const { return *at_; }
    void next()
    {
        ++at_;
        skip_to_byte();
    }

    // The writer drops the blank end of a text: what differs only there is the same text on the
    // disk.
    bool only_blanks() const
    {
        text_walk rest = *this;
        while (!rest.at_end() && is_space(rest.byte()))
            rest.next();
        return rest.at_end();
    }

private:
    // Strings may be empty, and null; the walk stands on a byte or at the end.
    void skip_to_byte()
    {
        while (*at_ == '\0' && node_ != nullptr) {
            const auto *text = static_cast<const char *>(node_->data);
            at_ = text == nullptr ? "" : text;
            node_ = node_->next;
        }
    }

    GList *node_;
    const char *at_ = "";
};

// Both behind what they have in common.
std::pair<text_walk, text_walk> behind_common(GList *a, GList *b)
{
    text_walk left(a);
    text_walk right(b);
    while (!left.at_end() && !right.at_end() && left.byte() == right.byte()) {
        left.next();
        right.next();
    }
    return {left, right};
}

} // namespace

// A missing entry has no value; an empty one has the empty text.
field_value value_of(const lang_entry_t *entry)
{
    return entry == nullptr ? field_value{} : field_value{field_value::text, text_of(entry)};
}

bool same_strings(GList *a, GList *b)
{
    for (; a != nullptr && b != nullptr; a = a->next, b = b->next)
        if (view_of(static_cast<char *>(a->data)) != view_of(static_cast<char *>(b->data)))
            return false;
    return a == b;
}

// Most texts are cut into the same lines: comparing those first saves the walk by bytes.
bool same_text(GList *a, GList *b)
{
    if (same_strings(a, b))
        return true;
    const auto [left, right] = behind_common(a, b);
    return left.at_end() && right.at_end();
}

bool same_written_text(GList *a, GList *b)
{
    if (same_strings(a, b))
        return true;
    const auto [left, right] = behind_common(a, b);
    return left.only_blanks() && right.only_blanks();
}

} // namespace zel
