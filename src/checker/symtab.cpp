#include "checker/symtab.h"

#include "support/hash-index.h"
#include "support/string-copy.h"

#include <cstdio>
#include <cstring>

namespace {

struct symbol {
    zel::string_guard name;
    zel::string_guard value;
    bool is_doubtful = false;
};

} // namespace

struct symtab_t {
    std::vector<symbol> pairs; // in the order of their definitions
    zel::hash_index names;
};

namespace {

std::uint32_t find(const symtab_t *table, std::uint32_t hash, const char *name)
{
    return table->names.find(hash, [&](std::uint32_t at) {
        return std::strcmp(table->pairs[at].name.get(), name) == 0;
    });
}

} // namespace

symtab_t *symtab_new() { return new symtab_t; }

void symtab_free(symtab_t *table) { delete table; }

int symtab_add(symtab_t *table, const char *name, const char *value)
{
    const std::uint32_t hash = zel::hash_of(name);
    // The first definition stays.
    if (find(table, hash, name) != zel::hash_index::none) {
        std::printf("symtab_add: duplicate key >%s<\n", name);
        return 1;
    }
    symbol added{zel::string_guard(zel_strdup2(name)), zel::string_guard(zel_strdup2(value)),
                 false};
    if (added.name == nullptr || added.value == nullptr)
        return 1;
    table->names.add(hash, static_cast<std::uint32_t>(table->pairs.size()));
    table->pairs.push_back(std::move(added));
    return 0;
}

const char *symtab_get(const symtab_t *table, const char *name)
{
    const std::uint32_t at = find(table, zel::hash_of(name), name);
    return at == zel::hash_index::none ? nullptr : table->pairs[at].value.get();
}

void symtab_doubt(symtab_t *table, const char *name)
{
    const std::uint32_t at = find(table, zel::hash_of(name), name);
    if (at != zel::hash_index::none)
        table->pairs[at].is_doubtful = true;
}

bool symtab_is_doubtful(const symtab_t *table, const char *name)
{
    const std::uint32_t at = find(table, zel::hash_of(name), name);
    return at != zel::hash_index::none && table->pairs[at].is_doubtful;
}
