#pragma once

// A table for spreadsheets: UTF-8 with its mark, commas, records ended by CR LF. The first record
// names the columns: group, item, description, one for each language, and where wanted
// "comment LANGUAGE". Cells are quoted where they hold a comma, a quote, a line end, or a blank at
// an end; tabs and carriage returns are carried. A cell that a spreadsheet would take for a formula
// gets an apostrophe before it, and so does one that begins with an apostrophe; reading takes one
// off again.
//
// What is read may have its columns in any order and be separated by semicolons or tabs.

#include "exchange/export.h"
#include "exchange/texts.h"

namespace zel::exchange {

void write_csv(exporter &from, std::vector<outgoing_file> &to);
fault read_csv(std::string_view bytes, encoding good, const text_listener &hear);

} // namespace zel::exchange
