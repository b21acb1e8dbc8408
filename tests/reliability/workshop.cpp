#include "workshop.h"

#include <channel-database/builder.h>
#include <channellist-access/db_access.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "faulty_storage.h"

namespace {

constexpr char kTables[] =
    "SELECT Id, ServiceId, FavoriteId, isDeleted FROM FavoriteItem ORDER BY Id;"
    "SELECT Id, ChannelNum FROM FavoriteItem WHERE FavoriteId NOT BETWEEN 2 AND 5 ORDER BY Id;"
    "SELECT Pid, Name, FavTag, FavTag2, FavTag3, FavTag4 FROM Service ORDER BY Pid;";

constexpr char kFavNumbers[] =
    "SELECT Id, ChannelNum FROM FavoriteItem WHERE FavoriteId BETWEEN 2 AND 5 ORDER BY Id;"
    "SELECT Pid, MaxChannelNumber FROM FavoriteList ORDER BY Pid;";

int append(void* context, int count, char** values, char**) {
    for (int i = 0; i < count; ++i)
        *static_cast<std::string*>(context) += std::string(values[i] ? values[i] : "NULL") + "|";
    *static_cast<std::string*>(context) += "\n";
    return 0;
}

std::string bytesOf(std::string const& file) {
    std::string bytes(std::filesystem::file_size(file), '\0');
    std::ifstream(file, std::ios::binary).read(bytes.data(), static_cast<long>(bytes.size()));
    return bytes;
}

constexpr char kOttFile[] = "/zentova_DB_V1.3.db";

// Both databases, the channel database as `file`; `directory` becomes HOME.
void makeDatabases(std::string const& file, std::string const& directory) {
    using channel_database::ChannelDatabase;
    using channel_database::List;
    using channel_database::Transaction;
    ChannelDatabase database(file);
    Transaction transaction(database);
    std::vector<List> full = {
        database.list("tamun.sl2.servicelist$all").uuid("list-of-all-services")};
    std::vector<List> favourites;
    for (int i = 1; i <= 4; ++i)
        favourites.push_back(database.list("User.tvFAV" + std::to_string(i))
                                 .uuid("list-of-favourites-" + std::to_string(i)));
    full.push_back(
        database.list("servicelist://tamun.Astra 19.2\xb0"
                      "E.14"));
    full.back().attributes(0x120);
    full[0].attributes(0x21);
    for (int i = 1; i <= kOwnLists; ++i)
        full.push_back(database.list("servicelist://tamun.dvbs." + std::to_string(i))
                           .uuid("list-own-" + std::to_string(i)));
    for (int i = 1; i <= kServices; ++i) {
        auto service = database.dvbs("Service " + std::to_string(i));
        service.encrypted(i == 9).frequency(i == 3 ? 12603750 : 11000000 + i).satellite(4);
        service.bissKey("0123456789abcdef0123456789abcdef");
        for (List const& list : full)
            database.put(list, service, i);
        for (List const& list : favourites)
            if (i <= kFavServices)
                database.put(list, service, i);
    }
    transaction.commit();
    ChannelDatabase ott(directory + kOttFile);
    ott.run("CREATE TABLE SQL_OTTFavChannels (favName TEXT, favIndex INTEGER)");
    ott.run("INSERT INTO SQL_OTTFavChannels VALUES ('FAV4', 3), ('FAV4', 1), ('FAV4', 4)");
    setenv("HOME", directory.c_str(), 1);
}

}  // namespace

Workshop::Workshop(Journal journal, bool realTime) {
    std::string name = (std::filesystem::temp_directory_path() / "reliability-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("no directory for the test");
    directory_ = name;
    file_ = directory_ + "/servicelist.db";
    beside_ = file_ + (journal == Journal::Wal ? "-wal" : "-journal");
    makeDatabases(file_, directory_);
    char const* const mode = journal == Journal::Wal ? "wal" : "delete";
    EXPECT_EQ(rows((std::string("PRAGMA journal_mode = ") + mode).c_str()),
              std::string(mode) + "|\n");
    made_ = bytesOf(file_);
    storage::install(file_, realTime);
}

Workshop::~Workshop() {
    forgetLibraryState();
    std::filesystem::remove_all(directory_);
}

void Workshop::renew() {
    forgetLibraryState();
    if (isUntouched())
        return;
    std::filesystem::remove(beside_);
    std::filesystem::remove(file_ + "-shm");
    std::ofstream(file_, std::ios::binary) << made_;
}

std::string Workshop::ottFile() const { return directory_ + kOttFile; }

bool Workshop::isUntouched() const {
    // Readers of a database in WAL mode leave an empty log.
    std::error_code absent;
    auto const size = std::filesystem::file_size(beside_, absent);
    return (absent || size == 0) && bytesOf(file_) == made_;
}

std::string Workshop::rows(char const* sql) const {
    sqlite3* opened = nullptr;
    int const code = sqlite3_open_v2(file_.c_str(), &opened, SQLITE_OPEN_READWRITE, "unix");
    std::unique_ptr<sqlite3, decltype(&sqlite3_close)> const connection(opened, sqlite3_close);
    EXPECT_EQ(code, SQLITE_OK);
    std::string all;
    EXPECT_EQ(sqlite3_exec(opened, sql, append, &all, nullptr), SQLITE_OK)
        << sqlite3_errmsg(opened);
    return all;
}

Contents Workshop::contents() const {
    Contents found = {rows(kTables), rows(kFavNumbers), {}, rows("PRAGMA integrity_check")};
    std::istringstream tags(rows("SELECT UpdateTag FROM FavoriteList ORDER BY Pid"));
    for (std::string tag; std::getline(tags, tag);)
        found.tags.push_back(std::atoi(tag.c_str()));
    return found;
}

void forgetLibraryState() {
    EXPECT_EQ(sqlite3_close(db), SQLITE_OK) << "the library holds a statement";
    EXPECT_EQ(sqlite3_close(db_zentova), SQLITE_OK) << "the library holds a statement";
    db = nullptr;
    db_zentova = nullptr;
    bisskey = std::string();
    sv = ServiceSnapshot();
}
