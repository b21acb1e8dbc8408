// The edits beside their statements alone.
#include <channellist-access/db_access.h>

#include <algorithm>
#include <stdexcept>

#include "benchmark_database.h"
#include "by_turns.h"
#include "connection.h"
#include "recording.h"
#include "requests.h"

namespace benchmarks {
namespace {

constexpr int kServicesOfFavEdit = 5000;
constexpr int kFavoritesOfAllEdit = 500;

int appendText(void* context, int count, char** values, char** /*names*/) {
    for (int column = 0; column < count; ++column)
        static_cast<std::string*>(context)->append(values[column]).append(" ");
    return 0;
}

// What edits change, as one text.
std::string editedContent(Connection const& connection) {
    std::string content;
    for (char const* const sql :
         {"SELECT FavoriteId, ServiceId, ChannelNum, isDeleted FROM FavoriteItem ORDER BY 1, 2",
          "SELECT FavTag, FavTag2, FavTag3, FavTag4 FROM Service ORDER BY Pid",
          "SELECT MaxChannelNumber FROM FavoriteList ORDER BY Pid"})
        connection.execute(sql, appendText, &content);
    return content;
}

// The statements of the edit that comes next.
Recording recordEdit(AlternatingEdit& edit, Connection const& floor) {
    edit.prepare();
    Recording statements({db, db_zentova}, [&] { edit.run(); });
    statements.redirect(db, floor.get());
    return statements;
}

// The library edits one copy of the database, the floor another one.
void editByTurns(benchmark::State& state, Shape const& shape, AlternatingEdit edit) {
    DatabaseCopy const libraryFile(shape);
    DatabaseCopy const floorFile(shape);
    Connection const library(libraryFile.path());
    Connection const floor(floorFile.path());
    db = library.get();
    std::vector<unsigned int> opensTheOttDatabase;
    dbaccess::getOttFav1List(opensTheOttDatabase);
    Recording const there = recordEdit(edit, floor);
    Recording const back = recordEdit(edit, floor);
    there.replay();
    back.replay();

    bool isThere = false;
    runByTurns(state, {{"library", [&] { edit.run(); }, [&] { edit.prepare(); }},
                       {"floor", [&] {
                            (isThere ? back : there).replay();
                            isThere = !isThere;
                        }}});
    if (editedContent(library) != editedContent(floor))
        throw std::runtime_error("the floor wrote something else than the library");
}

void editFavList(benchmark::State& state) {
    int const favorites = static_cast<int>(state.range(0));
    Shape shape{kServicesOfFavEdit};
    shape.favorites = favorites;
    editByTurns(state, shape, favListEdit(favorites));
}

void editAllList(benchmark::State& state) {
    int const services = static_cast<int>(state.range(0));
    Shape shape{services};
    shape.favorites = std::min(services / 2, kFavoritesOfAllEdit);
    editByTurns(state, shape, allListEdit(services));
}

void editTime(benchmark::internal::Benchmark* edit) {
    edit->UseManualTime()->Unit(benchmark::kMicrosecond);
}

BENCHMARK(editFavList)->Apply(editTime)->Arg(50)->Arg(500)->Iterations(201);
BENCHMARK(editFavList)->Apply(editTime)->Arg(4000)->Iterations(31);
BENCHMARK(editAllList)->Apply(editTime)->Arg(100)->Arg(1000)->Iterations(101);
BENCHMARK(editAllList)->Apply(editTime)->Arg(5000)->Arg(20000)->Iterations(11);

}  // namespace
}  // namespace benchmarks
