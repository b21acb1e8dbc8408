#include "fuzz_database.h"

#include <channel-database/builder.h>
#include <channellist-access/db_access.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "sqlite_pool.h"

namespace fuzz {
namespace {

using channel_database::ChannelDatabase;
using channel_database::Delivery;
using channel_database::List;
using channel_database::Service;

#if !__has_feature(address_sanitizer)
[[maybe_unused]] bool const pooled = (poolSqliteMemory(), true);
#endif

std::string imageOf(sqlite3* connection) {
    sqlite3_int64 size = 0;
    unsigned char* const bytes = sqlite3_serialize(connection, "main", &size, 0);
    expect(bytes != nullptr, "no image");
    std::string image(reinterpret_cast<char const*>(bytes), static_cast<std::size_t>(size));
    sqlite3_free(bytes);
    return image;
}

std::string makeDatabaseImage() {
    ChannelDatabase database(":memory:");
    std::vector<List> lists = {database.list("tamun.sl2.servicelist$all").uuid("all")};
    for (int i = 1; i <= 4; ++i)
        lists.push_back(
            database.list("User.tvFAV" + std::to_string(i)).uuid("fav" + std::to_string(i)));
    lists.push_back(database.list("servicelist://tamun.Astra 19.2E").attributes(0x200));
    std::vector<Service> services = {database.input("hdmi1"), database.dvbs("Radio").radio()};
    for (int kind = 0; kind <= static_cast<int>(Delivery::DvbS2); ++kind)
        services.push_back(database.service(static_cast<Delivery>(kind), "Service"));
    for (Service service : services) {
        service.uri("rec://plain/x").bissKey("key").set("Encrypted", 1);
        for (List const& list : lists)
            database.put(list, service, service.id());
        database.lcn(service, lists[0], 100 + service.id());
    }
    database.run("UPDATE DvbSTuner SET Satellite = 4, Frequency = 12603750");
    return imageOf(database.connection());
}

std::string makeOttImage() {
    ChannelDatabase database(":memory:");
    database.run("CREATE TABLE SQL_OTTFavChannels (favName TEXT, favIndex)");
    database.run(
        "INSERT INTO SQL_OTTFavChannels VALUES ('FAV1', 3), ('FAV1', NULL), ('FAV1', 3),"
        "('FAV2', '12x'), ('FAV2', ''), ('FAV3', x'00ff'), ('FAV4', 0)");
    return imageOf(database.connection());
}

// A foul file must not keep the target busy for long.
int giveUp(void*) { return 1; }

sqlite3* opened(std::string const& image) {
    sqlite3* connection = nullptr;
    expect(sqlite3_open(":memory:", &connection) == SQLITE_OK, "no connection");
    auto* const bytes = static_cast<unsigned char*>(sqlite3_malloc64(image.size() + 1));
    std::memcpy(bytes, image.data(), image.size());
    auto const size = static_cast<sqlite3_int64>(image.size());
    sqlite3_deserialize(connection, "main", bytes, size, size + 1,
                        SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE);
    sqlite3_progress_handler(connection, 2000000, giveUp, nullptr);
    return connection;
}

}  // namespace

std::string const& databaseImage() {
    static std::string const image = makeDatabaseImage();
    return image;
}

std::vector<std::string> const& columns() {
    static std::vector<std::string> const names = [] {
        std::vector<std::string> found;
        for (auto const& row : ChannelDatabase(":memory:")
                                   .rows("SELECT m.name || '.' || c.name FROM sqlite_master m, "
                                         "pragma_table_info(m.name) c"
                                         " WHERE m.type = 'table'"))
            found.push_back(row[0]);
        return found;
    }();
    return names;
}

void openDatabase(std::string const& image) {
    static std::string const ottImage = makeOttImage();
    expect(sqlite3_close(db) == SQLITE_OK, "a statement was left");
    expect(sqlite3_close(db_zentova) == SQLITE_OK, "a statement was left");
    db = opened(image);
    db_zentova = opened(ottImage);
}

void expectLibraryAtRest() {
    expect(pthread_mutex_trylock(&svresult_mutex) == 0, "the mutex was kept");
    pthread_mutex_unlock(&svresult_mutex);
    expect(sqlite3_get_autocommit(db) != 0, "a transaction was left open");
    expect(sqlite3_next_stmt(db, nullptr) == nullptr, "a statement was left");
}

std::vector<std::string> lines(std::string_view text) {
    std::vector<std::string> all;
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find('\n');
        all.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? 0 : end + 1);
    }
    return all;
}

void expect(bool holds, char const* what) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

}  // namespace fuzz
