#pragma once

// Reading a catalog, message by message.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "exchange/input.h"
#include "exchange/po-message.h"

namespace zel::exchange {

struct po_scan;  // the scanner with its place in the file
struct po_known; // the messages that have been met

class po_reader {
public:
    // The bytes are in the encoding that the file's header names, UTF-8 when it names none. They
    // stay the caller's and must live as long as the reader. Remarks and places keep the
    // carriage returns at their ends only as_written.
    explicit po_reader(std::string_view bytes, bool as_written = false);
    ~po_reader();
    po_reader(const po_reader &) = delete;
    po_reader &operator=(const po_reader &) = delete;

    // The next message; false at the end and at a fault. A header names UTF-8, as texts are. Two
    // messages of one context and id, but for obsolete ones, are a fault.
    bool next(po_message &message);

    const fault &wrong() const { return wrong_; }

private:
    bool recode(std::string_view bytes, const std::string &charset);
    bool fail(const std::string &text);
    bool advance();
    bool read_string(std::string &text);
    bool read_id(po_message &message, std::optional<std::string> po_id::*part);
    bool read_text(po_message &message);
    bool read_comment(po_message &message);
    bool read_word(po_message &message);

    bool is_first(const po_message &message);

    bool as_written_;
    std::string recoded_;
    std::unique_ptr<po_scan> scan_;
    std::unique_ptr<po_known> known_;
    fault wrong_;
};

} // namespace zel::exchange
