// follow DATABASE UUID: prints a list, and prints it again whenever it has changed.
//
//     follow /var/tvservice/servicelist.db "$uuid"
#include <channellist-access/db_access.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kNotReadable = -1;  // locked just now: ask again later

int storeNumber(void* number, int /*count*/, char** values, char** /*names*/) {
    *static_cast<int*>(number) = std::atoi(values[0]);
    return 0;
}

// A number that is another one once another connection has committed anything.
int dataVersion() {
    int version = kNotReadable;
    sqlexec(db, "PRAGMA data_version", storeNumber, &version, nullptr);
    return version;
}

typedef std::vector<ResultRow> List;  // the library's rows are shared; these are ours

List readList(std::string const& uuid) {
    List list;
    for (boost::shared_ptr<ResultRow> const& row : dbaccess::get_dbservices(uuid))
        list.push_back(*row);
    return list;
}

void print(List const& list) {
    std::printf("%zu services\n", list.size());
    for (ResultRow const& row : list)
        std::printf("%5s  %s\n", row[0].c_str(), row[1].c_str());  // number and name
    std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 || sqlite3_open(argv[1], &db) != SQLITE_OK) {
        std::fprintf(stderr, "usage: follow DATABASE UUID\n");
        return 2;
    }
    List shown;
    int seen = kNotReadable;
    for (bool isFirst = true;; usleep(250000)) {
        // The version before the list: what is committed between the two is read now, and once more
        // at the next look. The other way round it would be taken for seen, and never be shown.
        int const version = dataVersion();
        if (version == seen)
            continue;
        List const list = readList(argv[2]);
        // An empty list may be one that could not be read: it is asked for again.
        seen = list.empty() ? kNotReadable : version;
        if (isFirst || list != shown)  // another list may be what changed
            print(list);
        if (std::fflush(stdout) != 0)
            break;  // nobody reads any more
        isFirst = false;
        shown = list;
    }
    sqlite3_close(db);
    return 0;
}
