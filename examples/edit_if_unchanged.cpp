// edit_if_unchanged DATABASE UUID: shows a FAV list, and once its user presses Enter moves its last
// service to the front: but only if the list still is as it was shown.
#include <channellist-access/db_access.h>

#include <cstdio>

namespace {

enum Ending { kWritten, kOvertaken, kFailed };

typedef std::vector<ResultRow> List;
constexpr std::size_t kNumber = 0, kName = 1, kAttributes = 3, kKey = 11;  // in m_svfield

List readList(std::string const& uuid) {
    List list;
    for (boost::shared_ptr<ResultRow> const& row : dbaccess::get_dbservices(uuid))
        list.push_back(*row);
    return list;
}

// The commits that the database file has seen, as far as this connection has looked: it looks
// whenever it begins to read or write.
unsigned int fileVersion() {
    unsigned int version = 0;
    sqlite3_file_control(db, "main", SQLITE_FCNTL_DATA_VERSION, &version);
    return version;
}

struct Guard {
    unsigned int version;
    bool hasRefused;
};

// SQLite asks in front of each commit, when nobody else can write any more; 1 rolls it back.
int refuseIfOvertaken(void* context) {
    Guard& guard = *static_cast<Guard*>(context);
    guard.hasRefused = guard.hasRefused || fileVersion() != guard.version;
    ++guard.version;  // an edit commits twice: the update tag, then the list
    return guard.hasRefused ? 1 : 0;
}

Ending editIfUnchanged(List const& seen, std::vector<std::string> const& request) {
    for (int attempt = 0; attempt < 20; ++attempt) {
        if (readList(request[0]) != seen)
            return kOvertaken;
        Guard guard = {fileVersion(), false};  // of that read
        sqlite3_commit_hook(db, refuseIfOvertaken, &guard);
        int const result = dbaccess::onServiceListEdit(request);
        sqlite3_commit_hook(db, nullptr, nullptr);
        if (result == 0 || result == 101)
            return kWritten;
        if (!guard.hasRefused)
            return kFailed;  // -1: a wrong request; -2: the messages tell why
    }                        // refused, perhaps for a write to another list: look again
    return kOvertaken;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 || sqlite3_open(argv[1], &db) != SQLITE_OK)
        return kFailed;
    List const seen = readList(argv[2]);
    std::vector<std::string> request = {argv[2]};
    for (std::size_t i = 0; i < seen.size(); ++i) {
        ResultRow const& row = seen[i == 0 ? seen.size() - 1 : i - 1];
        std::printf("%5s  %s\n", seen[i][kNumber].c_str(), seen[i][kName].c_str());
        bool const isShown = (std::stoul(row[kAttributes]) & 0x200) != 0;
        request.insert(request.end(), {isShown ? "0" : "1", std::to_string(i + 1), row[kKey]});
    }
    std::fflush(stdout);
    std::getchar();
    Ending const ending = editIfUnchanged(seen, request);
    char const* const words[] = {"moved", "somebody else changed the list: look again",
                                 "could not be written"};
    std::printf("%s\n", words[ending]);
    sqlite3_close(db);
    return ending;
}
