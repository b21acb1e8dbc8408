// The channel databases that the benchmarks read and edit.
#ifndef BENCHMARKS_BENCHMARK_DATABASE_H
#define BENCHMARKS_BENCHMARK_DATABASE_H

#include <channel-database/schema.h>

#include <filesystem>
#include <string>

namespace benchmarks {

inline constexpr int kListCount = 64;
inline constexpr int kServicesOfATuner = 8;

inline constexpr char kAllList[] = "list-all";    // every service
inline constexpr char kFav1List[] = "list-fav1";  // the first services, as many as `favorites`

struct Shape {
    int services = 0;
    channel_database::Indexes indexes = channel_database::Indexes::Recommended;
    int favorites = 50;  // in each of FAV1 to FAV4
};

// A file with the database of a shape, removed at the end. Services have the keys 1, 2, 3, ...;
// their kinds of delivery come in turn, eight services share a tuner, one in five is a radio
// service, and services of cable and terrestrial delivery have an LCN.
class DatabaseCopy {
  public:
    explicit DatabaseCopy(Shape const& shape);
    ~DatabaseCopy();
    DatabaseCopy(DatabaseCopy const&) = delete;
    DatabaseCopy& operator=(DatabaseCopy const&) = delete;

    std::filesystem::path const& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// The uuid of the service with this key, as long as a set's are.
std::string serviceUuid(int key);

}  // namespace benchmarks

#endif
