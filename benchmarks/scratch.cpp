#include "scratch.h"

#include <cstdlib>
#include <string>
#include <system_error>

#include "connection.h"

// The edits of the library end with "sync", which would wait for the disk of the whole machine.
extern "C" int system(char const* /*command*/) { return 0; }

namespace benchmarks {

namespace {

std::filesystem::path scratchDirectory;

void makeOttDatabase(std::filesystem::path const& path) {
    Connection const ott(path);
    ott.execute("CREATE TABLE SQL_OTTFavChannels (favName TEXT, favIndex INTEGER)");
    for (char const fav : {'1', '2', '3', '4'})
        for (int position = 10; position <= 100; position += 10)
            ott.execute(std::string("INSERT INTO SQL_OTTFavChannels VALUES ('FAV") + fav + "', " +
                        std::to_string(position) + ")");
}

}  // namespace

Scratch::Scratch() {
    std::string name = std::filesystem::temp_directory_path() / "channellist-benchmarks-XXXXXX";
    if (mkdtemp(name.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), name);
    scratchDirectory = name;
    setenv("HOME", name.c_str(), 1);
    makeOttDatabase(scratchDirectory / "zentova_DB_V1.3.db");
}

Scratch::~Scratch() {
    std::error_code ignored;  // what is left lies where temporary files belong
    std::filesystem::remove_all(scratchDirectory, ignored);
}

std::filesystem::path const& Scratch::directory() { return scratchDirectory; }

}  // namespace benchmarks
