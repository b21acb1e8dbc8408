// Fuzz target: an edit request, one argument a line.
#include <channellist-access/db_access.h>

#include <cstdint>

#include "fuzz_database.h"

namespace {

int append(void* text, int, char** values, char**) {
    *static_cast<std::string*>(text) += values[0] != nullptr ? values[0] : "NULL";
    return 0;
}

std::string contents() {
    std::string text;
    for (char const* sql :
         {"SELECT Id || '|' || ServiceId || '|' || FavoriteId || '|' || ChannelNum"
          " || '|' || isDeleted FROM FavoriteItem",
          "SELECT FavTag || FavTag2 || FavTag3 || FavTag4 FROM Service", "PRAGMA integrity_check"})
        fuzz::expect(sqlite3_exec(db, sql, append, &text, nullptr) == SQLITE_OK, "unreadable");
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    fuzz::openDatabase(fuzz::databaseImage());
    static std::string const before = contents();
    int const code =
        dbaccess::onServiceListEdit(fuzz::lines({reinterpret_cast<char const*>(data), size}));
    fuzz::expectLibraryAtRest();
    fuzz::expect(code == 0 || code == SQLITE_DONE || code == -1 || code == -2, "unknown result");
    std::string const after = contents();
    fuzz::expect(after.size() >= 2 && after.substr(after.size() - 2) == "ok",
                 "the file is damaged");
    fuzz::expect(code >= 0 || after == before, "a failed edit wrote");
    return 0;
}
