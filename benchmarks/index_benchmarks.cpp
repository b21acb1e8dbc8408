#include "index_benchmarks.h"

#include <channel-database/builder.h>
#include <channellist-access/db_access.h>

#include <memory>

#include "benchmark_database.h"
#include "by_turns.h"
#include "connection.h"
#include "requests.h"

namespace benchmarks {

namespace {

constexpr int kServices = 5000;
constexpr int kFavorites = 500;

struct Request {
    char const* name;
    int rounds;
    Contender (*make)();
};

Contender asContender(AlternatingEdit edit) {
    auto const shared = std::make_shared<AlternatingEdit>(std::move(edit));
    return {"", [shared] { shared->run(); }, [shared] { shared->prepare(); }};
}

Contender asContender(void (*read)()) { return {"", read}; }

constexpr Request kRequests[] = {
    {"service list", 5, [] { return asContender([] { readServiceList(kServices); }); }},
    {"folder list", 51, [] { return asContender(readFolderList); }},
    {"FAV list edit", 31, [] { return asContender(favListEdit(kFavorites)); }},
    {"All list edit", 5, [] { return asContender(allListEdit(kServices)); }},
    {"Astra lookup", 51, [] { return asContender(lookUpAstra); }},
    {"BISS key", 201, [] { return asContender([] { lookUpBissKey(kServices / 2); }); }},
};

// The request on a database of its own.
Contender onDatabase(char const* name, Connection const& connection, Request const& request) {
    Contender const contender = request.make();
    return {name, contender.run, [&connection, contender] {
                db = connection.get();
                contender.prepare();
            }};
}

void withoutIndex(benchmark::State& state, std::string const& index, Request const& request) {
    Shape shape{kServices};
    shape.favorites = kFavorites;
    DatabaseCopy const indexedFile(shape);
    DatabaseCopy const withoutFile(shape);
    Connection const indexed(indexedFile.path());
    Connection const without(withoutFile.path());
    without.execute("DROP INDEX " + index);
    runByTurns(state,
               {onDatabase("without", without, request), onDatabase("indexed", indexed, request)});
}

}  // namespace

void registerIndexBenchmarks() {
    channel_database::ChannelDatabase database(":memory:");
    for (auto const& row :
         database.rows("SELECT name FROM sqlite_master WHERE type = 'index' AND sql IS NOT NULL"))
        for (Request const& request : kRequests)
            benchmark::RegisterBenchmark(("withoutIndex/" + row[0] + "/" + request.name).c_str(),
                                         withoutIndex, row[0], request)
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond)
                ->Iterations(request.rounds);
}

}  // namespace benchmarks
