// Two and three processes in orders that seeds decide, a turn at every lock step: what each was
// told, and what the databases hold at the end, is that of some serial order.
//
// A failure prints its seed. SCHEDULE=SEED runs that one alone, in each cast and journal mode.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <semaphore.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include "child_process.h"
#include "entry_points.h"
#include "faulty_storage.h"
#include "quiet_platform.h"
#include "turns.h"
#include "workshop.h"

namespace {

constexpr unsigned kSchedules = 1000;  // in each journal mode
constexpr unsigned kMostActs = 3;
constexpr unsigned kMostProcesses = 3;

constexpr char kAll[] = "list-of-all-services";
constexpr char kFav1[] = "list-of-favourites-1";
constexpr char kFav3[] = "list-of-favourites-3";

// While true SQLite does not tell the library that others have written.
bool isBlind = false;

}  // namespace

extern "C" int sqlite3_file_control(sqlite3* connection, char const* name, int what, void* value) {
    static auto* const real =
        reinterpret_cast<decltype(&sqlite3_file_control)>(dlsym(RTLD_NEXT, "sqlite3_file_control"));
    static unsigned version = 0;
    if (!isBlind || what != SQLITE_FCNTL_DATA_VERSION)
        return real(connection, name, what, value);
    *static_cast<unsigned*>(value) = ++version;  // an edit asks before its own commit, and after
    return SQLITE_OK;
}

namespace {

// Something that a process does; the text is what it was told.
using Act = std::function<std::string()>;
using Acts = std::vector<Act>;  // of one process, in their order

struct Cast {
    char const* name;
    std::vector<Acts> processes;
};

std::string textOf(ResultSet const& rows) {
    std::string text;
    for (auto const& row : rows)
        for (std::string const& column : *row)
            text += column + '|';
    return text;
}

Act edits(std::vector<std::string> const& arguments) {
    return [=] { return std::to_string(dbaccess::onServiceListEdit(arguments)); };
}

Act reads(std::string const& list) {
    return [=] { return textOf(dbaccess::get_dbservices(list)); };
}

// Without the update tags, which are ahead of the edits.
std::string readsFolders() {
    ResultSet rows = dbaccess::select_Folders();
    for (auto const& row : rows)
        row->pop_back();
    return textOf(rows);
}

std::string findsAnchor() {
    std::string uuid;
    int const code = dbaccess::getAstraAnchorService(uuid);
    return std::to_string(code) + ' ' + uuid;
}

std::string findsScrambled() {
    int flag = 9;
    int const code = dbaccess::checkAstraScrambleService(flag);
    return std::to_string(code) + ' ' + std::to_string(flag);
}

// A transaction of the owner of a database, on a connection of its own; he waits for all others.
Act owns(std::string const& file, std::string const& statements) {
    return [=] {
        sqlite3* connection = nullptr;
        sqlite3_open(file.c_str(), &connection);
        for (std::string const& sql :
             {std::string("BEGIN IMMEDIATE"), statements, std::string("COMMIT")})
            while (int const code =
                       sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr)) {
                if (code != SQLITE_BUSY)
                    throw std::runtime_error(sqlite3_errmsg(connection));
                usleep(1);
            }
        sqlite3_close(connection);
        return std::string();
    };
}

// Two lists change keys, and their items with them.
std::string swapsKeys(int one, int other) {
    std::string const sum = std::to_string(one + other);
    std::string const in = " IN (" + std::to_string(one) + "," + std::to_string(other) + ");";
    return "UPDATE FavoriteList SET Pid = -Pid WHERE Pid" + in +
           "UPDATE FavoriteList SET Pid = Pid + " + sum + " WHERE Pid < 0;" +
           "UPDATE FavoriteItem SET FavoriteId = " + sum + " - FavoriteId WHERE FavoriteId" + in;
}

// A list is dropped and made anew, with other services.
std::string makesAnew(std::string const& uuid, int pid) {
    std::string const old = "(SELECT Pid FROM FavoriteList WHERE Uuid = '" + uuid + "')";
    std::string const key = std::to_string(pid);
    return "DELETE FROM FavoriteItem WHERE FavoriteId = " + old + ";" +
           "UPDATE FavoriteList SET UpdateTag = 0, Pid = " + key + " WHERE Uuid = '" + uuid +
           "';INSERT INTO FavoriteItem (ServiceId, FavoriteId, OriginalFavoriteId, ChannelNum)" +
           " SELECT Pid, " + key + ", " + key + ", Pid FROM Service WHERE Pid > 4;";
}

// The two Astra lists: one of them alone has an anchor, and the operator's a scrambled service.
constexpr char kMovesAnchor[] =
    "UPDATE FavoriteItem SET isDeleted = 1 - isDeleted"
    " WHERE (FavoriteId = 6 AND ServiceId = 3) OR (FavoriteId = 7 AND ServiceId = 5);";
std::string const kAstraLists =
    "UPDATE FavoriteList SET Creator = 'servicelist://tamun.Astra 19.2E' WHERE Pid = 7;"
    "UPDATE DvbSTuner SET Frequency = 12603750 WHERE TunerId ="
    " (SELECT TunerId FROM DvbService WHERE ServiceId = 5);"
    "DELETE FROM FavoriteItem WHERE FavoriteId = 7 AND ServiceId IN (3, 9);"
    "UPDATE FavoriteItem SET isDeleted = 1 WHERE ServiceId = 5 AND FavoriteId IN (6, 7);";

std::vector<Cast> casts(Workshop const& workshop) {
    auto const owner = [&](std::string const& sql) { return owns(workshop.file(), sql); };
    auto const ottOwner = [&](char const* sql) { return owns(workshop.ottFile(), sql); };
    Act const editsFav1 = edits(edit(kFav1, {2, 7, 4, 8, 6}, 11));
    Act const editsFav1Too = edits(edit(kFav1, {1, 2, 9}, 21));
    Act const editsFav3 = edits(edit(kFav3, {1, 10}, 31));
    Act const editsOwn = edits(edit("list-own-2", {6, 5, 4}, 41));
    Act const hides = edits(edit(kAll, {1, 3, 5}, 51, 0x01 | 0x04 | 0x20));
    Act const shows = edits(edit(kAll, {3, 5}, 61, 0x02 | 0x10 | 0x20));
    return {
        {"two editors", {{editsFav1, hides, editsOwn}, {editsFav1Too, shows, editsFav3}}},
        {"an editor, and the owner who gives lists other keys",
         {{editsFav1, hides, editsOwn},
          {owner(swapsKeys(2, 4)), owner(swapsKeys(2, 8)), owner(makesAnew("list-own-2", 30))}}},
        {"an editor, and the owner who scans anew",
         {{editsFav1, editsOwn, editsFav3},
          {owner(makesAnew(kFav1, 2)), owner(makesAnew("list-own-2", 8)),
           owner(makesAnew(kFav3, 40))}}},
        {"lookups, and the owner who moves the anchor",
         {{findsAnchor, findsScrambled, findsAnchor}, {owner(kMovesAnchor), owner(kMovesAnchor)}}},
        {"a reader, an editor and an owner",
         {{reads(kFav1), readsFolders, reads(kFav1)},
          {editsFav1, hides},
          {owner(swapsKeys(2, 4)), owner(makesAnew("list-own-2", 30))}}},
        {"an editor, lookups and an owner",
         {{editsFav1, shows},
          {findsScrambled, findsAnchor},
          {owner(std::string(kMovesAnchor) + swapsKeys(3, 5)), owner(kMovesAnchor)}}},
        {"renumberings, and the owner of the OTT database",
         {{hides, shows},
          {editsFav1},
          {ottOwner("DELETE FROM SQL_OTTFavChannels;"
                    "INSERT INTO SQL_OTTFavChannels VALUES ('FAV1', 2), ('FAV4', 2)"),
           ottOwner("DELETE FROM SQL_OTTFavChannels")}}},
    };
}

// The bytes of both databases, with nobody at them.
struct Files {
    std::string channels, ott;
};

std::string bytesOf(std::string const& name) {
    std::ostringstream bytes;
    bytes << std::ifstream(name, std::ios::binary).rdbuf();
    return bytes.str();
}

// The databases of one journal mode, and what acts make of them one after the other.
class World {
  public:
    explicit World(Journal journal) : workshop_(journal, true) {
        owns(workshop_.file(), kAstraLists)();
        casts_ = casts(workshop_);
        made_ = {bytesOf(workshop_.file()), bytesOf(workshop_.ottFile())};
    }

    std::vector<Cast> const& allCasts() const { return casts_; }
    void renew() { put(made_); }
    Contents contents() const { return workshop_.contents(); }

    // What the processes of one schedule were told.
    struct Reports {
        char text[kMostProcesses][kMostActs][16384];
    };
    bool isSerial(unsigned cast, Reports const& reports, Contents const& contents);

  private:
    struct State {
        Files files;
        Contents contents;
        std::string key;
    };
    struct Step {
        std::string report;
        State after;
    };
    using Places = std::array<unsigned, kMostProcesses>;  // how far each process is

    void put(Files const& files);
    State taken();
    Step const& step(unsigned cast, unsigned process, unsigned act, State const& before);
    bool leadsTo(unsigned cast, Places const& places, State const& state, Reports const& reports,
                 Contents const& contents);

    Workshop workshop_;
    std::vector<Cast> casts_;
    Files made_;
    std::map<std::string, Step> steps_;
};

void World::put(Files const& files) {
    for (char const* beside : {"-wal", "-shm", "-journal"})
        std::filesystem::remove(workshop_.file() + beside);
    std::ofstream(workshop_.file(), std::ios::binary) << files.channels;
    std::ofstream(workshop_.ottFile(), std::ios::binary) << files.ott;
}

World::State World::taken() {
    State state;
    state.contents = workshop_.contents();
    state.files = {bytesOf(workshop_.file()), bytesOf(workshop_.ottFile())};
    std::ostringstream key;
    key << state.contents.tables << state.contents.favNumbers << state.files.ott
        << workshop_.rows("SELECT Pid, Uuid, Creator, UpdateTag FROM FavoriteList");
    state.key = key.str();
    return state;
}

World::Step const& World::step(unsigned cast, unsigned process, unsigned act, State const& before) {
    std::string const name = {static_cast<char>(cast), static_cast<char>(process),
                              static_cast<char>(act)};
    auto const [entry, isNew] = steps_.try_emplace(name + before.key);
    if (isNew) {
        put(before.files);
        entry->second.report = casts_[cast].processes[process][act]();
        forgetLibraryState();
        entry->second.after = taken();
    }
    return entry->second;
}

bool World::leadsTo(unsigned cast, Places const& places, State const& state, Reports const& reports,
                    Contents const& contents) {
    bool isEnd = true;
    for (unsigned process = 0; process < casts_[cast].processes.size(); ++process) {
        if (places[process] == casts_[cast].processes[process].size())
            continue;
        isEnd = false;
        Step const& next = step(cast, process, places[process], state);
        if (next.report != reports.text[process][places[process]])
            continue;
        Places further = places;
        ++further[process];
        if (leadsTo(cast, further, next.after, reports, contents))
            return true;
    }
    if (!isEnd || contents.tables != state.contents.tables ||
        contents.favNumbers != state.contents.favNumbers)
        return false;
    // An edit that was overtaken may have announced another list, too.
    for (std::size_t list = 0; list < contents.tags.size(); ++list)
        if (contents.tags[list] < state.contents.tags[list])
            return false;
    return true;
}

bool World::isSerial(unsigned cast, Reports const& reports, Contents const& contents) {
    renew();
    return leadsTo(cast, {}, taken(), reports, contents);
}

// The processes, which outlive a schedule: starting them anew takes longer than most schedules.
class Actors {
  public:
    explicit Actors(World const& world) {
        for (sem_t& semaphore : stage_.begin)
            sem_init(&semaphore, 1, 0);
        sem_init(&stage_.end, 1, 0);
        for (unsigned process = 0; process < kMostProcesses; ++process)
            children_.push_back(startChild([&] { act(world, process); }));
    }
    ~Actors() {
        stage_.isOver = true;
        for (sem_t& semaphore : stage_.begin)
            sem_post(&semaphore);
        for (pid_t const child : children_)
            EXPECT_EQ(endOf(child), 0);
    }

    void play(World const& world, unsigned cast, std::uint64_t seed, bool areBlind) {
        auto const processes = static_cast<unsigned>(world.allCasts()[cast].processes.size());
        table_.renew(processes, seed);
        stage_.cast = cast;
        stage_.areBlind = areBlind;
        for (unsigned process = 0; process < processes; ++process)
            sem_post(&stage_.begin[process]);
        for (unsigned process = 0; process < processes; ++process)
            ASSERT_EQ(sem_wait(&stage_.end), 0);
        turns_ += table_.turns();
    }

    World::Reports const& reports() const { return stage_.reports; }
    unsigned long turns() const { return turns_; }

  private:
    struct Stage {
        World::Reports reports;
        unsigned cast;
        bool areBlind, isOver;
        sem_t begin[kMostProcesses], end;
    };

    void act(World const& world, unsigned process) {
        while (sem_wait(&stage_.begin[process]) == 0 && !stage_.isOver) {
            isBlind = stage_.areBlind;
            {
                turns::Seat const seat = table_.sit(process);
                Acts const& acts = world.allCasts()[stage_.cast].processes[process];
                for (std::size_t each = 0; each < acts.size(); ++each)
                    std::snprintf(stage_.reports.text[process][each],
                                  sizeof stage_.reports.text[0][0], "%s", acts[each]().c_str());
                forgetLibraryState();
            }
            sem_post(&stage_.end);
        }
    }

    Stage& stage_ = sharedValue<Stage>();
    turns::Table table_{1, 0};
    std::vector<pid_t> children_;
    unsigned long turns_ = 0;
};

class Schedules : public testing::TestWithParam<Journal> {
  protected:
    static void SetUpTestSuite() { setenv("TMPDIR", "/dev/shm", 1); }  // no disk is waited for

    Schedules() {
        platform::sleepsTakeTime = true;
        storage::flushes = true;
        world_ = std::make_unique<World>(GetParam());
        actors_ = std::make_unique<Actors>(*world_);
    }
    ~Schedules() override {
        platform::sleepsTakeTime = false;
        storage::flushes = false;
    }

    // Whether the schedule ends as a serial order does.
    bool isSerial(unsigned cast, std::uint64_t seed, bool areBlind = false) {
        world_->renew();
        actors_->play(*world_, cast, seed, areBlind);
        Contents const contents = world_->contents();
        EXPECT_EQ(contents.integrity, "ok|\n");
        return world_->isSerial(cast, actors_->reports(), contents);
    }

    std::string reports(unsigned cast) const {
        std::string all = world_->allCasts()[cast].name;
        auto const& processes = world_->allCasts()[cast].processes;
        for (unsigned process = 0; process < processes.size(); ++process)
            for (std::size_t act = 0; act < processes[process].size(); ++act)
                all += std::string("\n") + actors_->reports().text[process][act];
        return all;
    }

    std::unique_ptr<World> world_;
    std::unique_ptr<Actors> actors_;
};

TEST_P(Schedules, EndAsSomeSerialOrderDoes) {
    char const* const only = std::getenv("SCHEDULE");
    auto const count = static_cast<unsigned>(world_->allCasts().size());
    std::uint64_t const first = only != nullptr ? std::strtoull(only, nullptr, 10)
                                                : std::uint64_t{std::random_device()()} << 16;
    unsigned const schedules = only != nullptr ? count : kSchedules;
    for (unsigned schedule = 0; schedule < schedules && !HasFailure(); ++schedule) {
        unsigned const cast = schedule % count;
        std::uint64_t const seed = first + schedule / count;
        EXPECT_TRUE(isSerial(cast, seed)) << "seed " << seed << ": " << reports(cast);
    }
    std::printf("figure: %u schedules, %s\n", schedules,
                GetParam() == Journal::Wal ? "WAL" : "rollback journal");
    std::printf("figure: %lu turns in them\n", actors_->turns());
}

// The control: an edit that does not learn of other writers lands in the wrong list.
TEST_P(Schedules, FindAnEditThatDoesNotLookAgain) {
    unsigned faults = 0;
    for (std::uint64_t seed = 1; seed <= 60; ++seed)
        faults += isSerial(1, seed, true) ? 0 : 1;
    EXPECT_GT(faults, 0U);
    std::printf("figure: %u faults found in 60 schedules without the second look\n", faults);
}

INSTANTIATE_TEST_SUITE_P(Journals, Schedules, testing::Values(Journal::Rollback, Journal::Wal),
                         testing::PrintToStringParamName());

}  // namespace
