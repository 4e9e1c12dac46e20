#pragma once

// A walk through an XML file from outside, for readers of formats: no entity is expanded, no
// reference followed, a document type refused, and depth and sizes have bounds.

#include <cstdint>
#include <string>
#include <string_view>

#include "exchange/input.h"

struct _xmlTextReader;

namespace zel::exchange {

class xml_walker {
public:
    xml_walker() = default;
    virtual ~xml_walker() = default;
    xml_walker(const xml_walker &) = delete;
    xml_walker &operator=(const xml_walker &) = delete;

    // Walks through the bytes, which must be UTF-8. Some formats begin with a document type that
    // says no more than the name given here. Without libxml2 nothing is read, and the fault names
    // the format.
    fault walk(std::string_view bytes, std::string_view format, std::string_view type = {});

    // The first fault counts, as it is the cause of all others. Always false.
    bool fail(const std::string &what);
    bool fail_at(std::uint32_t line, const std::string &what);

protected:
    // What a reader hears; false ends the walk. An element without content closes at once.
    virtual bool open(std::string_view name) = 0; // without the prefix of its namespace
    virtual bool close() = 0;
    virtual bool add(std::string_view text) = 0;

    // Of the element that opens.
    std::string attribute(const char *name) const;
    bool is_empty() const;
    std::uint32_t line() const;         // up to which the library has looked
    std::uint32_t element_line() const; // of the element itself

private:
    bool step();

    _xmlTextReader *xml_ = nullptr;
    std::size_t depth_ = 0;
    fault wrong_;
};

// The text of a code point; empty where there is no such, or zero.
std::string text_of_code(std::int64_t code);

} // namespace zel::exchange
