#include "source/entry-name.h"

#include "support/string-copy.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace {

// Names are looked for among the next few only, so that many different ones cost no more each.
constexpr int most_compared = 64;

// Stands before the name's characters, in a ring.
struct shared_name {
    shared_name *before;
    shared_name *next;
    std::size_t entries; // that bear it

    char *text() { return reinterpret_cast<char *>(this + 1); }
};

// Items have their languages in the same order: the next name is mostly the one after the last.
shared_name *last_taken;

shared_name *find(const char *name)
{
    if (last_taken == nullptr)
        return nullptr;
    shared_name *at = last_taken->next;
    for (int i = 0; i < most_compared; ++i, at = at->next) {
        if (std::strcmp(at->text(), name) == 0)
            return at;
        if (at == last_taken)
            return nullptr;
    }
    return nullptr;
}

shared_name *add(const char *name)
{
    const std::size_t size = std::strlen(name) + 1;
    auto *made = static_cast<shared_name *>(std::malloc(sizeof(shared_name) + size));
    if (made == nullptr) {
        zel::copy_failed();
        return nullptr;
    }
    *made = {made, made, 0};
    std::memcpy(made->text(), name, size);
    if (last_taken != nullptr) {
        made->before = last_taken;
        made->next = last_taken->next;
        made->next->before = made;
        last_taken->next = made;
    }
    return made;
}

} // namespace

namespace zel {

char *take_entry_name(const char *name)
{
    if (name == nullptr)
        return nullptr;
    shared_name *shared = find(name);
    if (shared == nullptr)
        shared = add(name);
    if (shared == nullptr)
        return nullptr;
    last_taken = shared;
    ++shared->entries;
    return shared->text();
}

void drop_entry_name(char *name)
{
    if (name == nullptr)
        return;
    shared_name *shared = reinterpret_cast<shared_name *>(name) - 1;
    if (--shared->entries != 0)
        return;
    if (last_taken == shared)
        last_taken = shared->before == shared ? nullptr : shared->before;
    shared->before->next = shared->next;
    shared->next->before = shared->before;
    std::free(shared);
}

} // namespace zel
