// A list as a table for spreadsheets: comma-separated values by RFC 4180, UTF-8, with a header row.
#pragma once

#include <string>
#include <vector>

#include "lists/list_text.h"
#include "services/service_reader.h"

namespace channel_lists {

// Number, State (shown or hidden), Name, Triplet and Key say what an edit takes back; Kind,
// Delivery and Frequency (kHz) are for the reader.
std::string formatCsv(std::vector<ResultRow> const& services);

// Whether the text begins with such a header row.
bool isCsv(std::string const& text);

// The rows as the lines of a text, by the names of their columns, in whatever order.
ListText parseCsv(std::string const& text);

}  // namespace channel_lists
