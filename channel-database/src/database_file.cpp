#include <channel-database/database_content.h>
#include <channel-database/database_file.h>
#include <sys/stat.h>

#include <algorithm>

#include <memory>
#include <stdexcept>

namespace channel_database {
namespace {

constexpr int kDefaultPageSize = 4096;

struct CloseConnection {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;

// A database without a name, which SQLite keeps in its own temporary place, whatever ends the
// process.
Connection openTemporary(int pageSize) {
    sqlite3* opened = nullptr;
    int const code = sqlite3_open("", &opened);
    Connection connection(opened);
    std::string const settings = "PRAGMA page_size = " + std::to_string(pageSize) +
                                 "; PRAGMA journal_mode = MEMORY; PRAGMA synchronous = OFF";
    if (code != SQLITE_OK ||
        sqlite3_exec(opened, settings.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error("cannot make a temporary database");
    return connection;
}

}  // namespace

std::size_t makeDatabaseFile(ChannelsConf const& list, std::string const& path, bool replace,
                             ImportProgress const& progress,
                             std::function<void(sqlite3*)> const& beforeReplacing) {
    struct stat file;
    bool const exists = lstat(path.c_str(), &file) == 0;
    if (exists && !replace)
        throw std::runtime_error(path + " exists; --force replaces its content");
    if (exists)
        checkReplaceable(path);
    if (list.channels.empty())
        throw std::runtime_error("the list holds no channel");
    if (std::all_of(list.channels.begin(), list.channels.end(),
                    [](Channel const& channel) { return channel.isReference; }))
        throw std::runtime_error("the list names services of another one, which it needs");
    Connection const temporary = openTemporary(exists ? pageSize(path) : kDefaultPageSize);
    // Indexes that grow row by row would take most of the time.
    ChannelDatabase database(temporary.get(), Indexes::PrimaryKeysOnly);
    std::size_t const services = importChannels(database, list, progress);
    createSchema(temporary.get(), Indexes::Recommended);
    if (exists)
        replaceContent(temporary.get(), path, [&] {
            if (beforeReplacing)
                beforeReplacing(temporary.get());
        });
    else
        writeNewFile(temporary.get(), path);
    return services;
}

}  // namespace channel_database
