// consumer DATABASE: lists folders and services of a channel database, and edits one favourite list
// of it. Exits with 0 if every answer is as it must be.
#include <channellist-access/db_access.h>
#include <channellist-access/item_info.h>

#include <cstdio>

namespace {

int failures = 0;

void check(bool holds, char const* what) {
    std::printf("%s: %s\n", holds ? "ok" : "FAILED", what);
    failures += holds ? 0 : 1;
}

std::size_t columnOf(std::vector<int> const& columns, int field) {
    std::size_t column = 0;
    while (column < columns.size() && columns[column] != field)
        ++column;
    return column;
}

// The uuid of the list FAV1.
std::string firstFavouriteList() {
    std::size_t const uuid = columnOf(m_flfield, FOLDER_FIELD_UUID);
    std::size_t const name = columnOf(m_flfield, FOLDER_FIELD_FAV_NAME);
    for (boost::shared_ptr<ResultRow> const& folder : dbaccess::select_Folders())
        if (folder->at(name) == "FAV1")
            return folder->at(uuid);
    return std::string();
}

std::vector<std::string> pidsOf(std::string const& list) {
    std::size_t const pid = columnOf(m_svfield, SERVICE_FIELD_PID);
    std::vector<std::string> pids;
    for (boost::shared_ptr<ResultRow> const& service : dbaccess::get_dbservices(list))
        pids.push_back(service->at(pid));
    return pids;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || sqlite3_open(argv[1], &db) != SQLITE_OK) {
        std::fprintf(stderr, "usage: consumer DATABASE\n");
        return 2;
    }
    std::string const list = firstFavouriteList();
    check(!list.empty(), "FAV1 is among the folders");
    std::vector<std::string> const pids = pidsOf(list);
    check(pids.size() >= 2, "FAV1 holds services");
    if (failures == 0) {
        std::vector<std::string> const edited(pids.rbegin(), pids.rbegin() + 2);
        check(dbaccess::onServiceListEdit({list, "0", "1", edited[0], "0", "2", edited[1]}) == 101,
              "FAV1 is cut to its last two services");
        check(pidsOf(list) == edited, "the edit is read back");
    }

    VideoItemInfo item("Das Erste", "uuid");
    item.setTitle(" Das Erste ");
    check(item.getTitle() == "Das Erste" && item.getItemType() == ITEM_TYPE_VIDEO, "an item");
    check(dbaccess::getBissKeyFromService("unknown") == "NULL", "no BISS key");
    check(sqlite3_close(db) == SQLITE_OK, "the host closes its connection");
    return failures == 0 ? 0 : 1;
}
