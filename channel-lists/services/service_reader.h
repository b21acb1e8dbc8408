// Reads lists through the library, with every column that it has.
#pragma once

#include <channellist-access/db_access.h>

#include <string>
#include <vector>

namespace channel_lists {

// What a list delivers. `complete` is false when the library left out a list, or stopped in
// front of rows: its messages say why.
struct Rows {
    std::vector<ResultRow> rows;
    bool complete = true;
};

// The rows' columns are numbered by field id: row[SERVICE_FIELD_CAPTION].
Rows readServices(std::string const& listUuid);
// row[FOLDER_FIELD_CAPTION]
Rows readFolders();

// The rows in the columns that the library gives on its own accord.
Rows readRawServices(std::string const& listUuid);
Rows readRawFolders();

}  // namespace channel_lists
