#include <channel-database/builder.h>

#include <algorithm>
#include <stdexcept>

namespace channel_database {
namespace {

/// The tuner table of a delivery kind and the values of a typical tuner, or no table.
struct TunerKind {
    char const* table;
    char const* insert;
};

// clang-format off
constexpr TunerKind kTuners[] = {
    /* Uri    */ {nullptr, nullptr},
    /* Analog */ {nullptr, nullptr},
    /* DvbT   */ {"DvbTTuner", "INSERT INTO DvbTTuner (TunerId, Frequency, Bandwidth,"
                               " Constellation) VALUES (?, 506000, 8, 64)"},
    /* DvbC   */ {"DvbCTuner", "INSERT INTO DvbCTuner (TunerId, Frequency, SymbolRate,"
                               " Modulation) VALUES (?, 394000, 6900, 256)"},
    /* DvbS   */ {"DvbSTuner", "INSERT INTO DvbSTuner (TunerId, Satellite, Frequency, SymbolRate,"
                               " Modulation, CodeRate, Polarization, Band)"
                               " VALUES (?, 4, 11953500, 27500, 2, 34, 1, 2)"},
    /* Ip     */ {"DvbIpTuner", "INSERT INTO DvbIpTuner (TunerId) VALUES (?)"},
    /* DvbT2  */ {"DvbT2Tuner", "INSERT INTO DvbT2Tuner (TunerId, Frequency, Bandwidth,"
                                " Constellation) VALUES (?, 538000, 8, 256)"},
    /* DvbC2  */ {"DvbC2Tuner", "INSERT INTO DvbC2Tuner (TunerId, Frequency, Bandwidth,"
                                " DataSliceId) VALUES (?, 610000, 8, 1)"},
    /* DvbS2  */ {"DvbS2Tuner", "INSERT INTO DvbS2Tuner (TunerId, Satellite, Frequency,"
                                " SymbolRate, ModulationCoding, Polarization, Band)"
                                " VALUES (?, 4, 11493750, 22000, 13, 1, 1)"},
};
// clang-format on

int bind(sqlite3_stmt* statement, int position, Value const& value) {
    if (auto const* number = std::get_if<std::int64_t>(&value))
        return sqlite3_bind_int64(statement, position, *number);
    if (auto const* text = std::get_if<std::string>(&value)) {
        return sqlite3_bind_text(statement, position, text->data(), static_cast<int>(text->size()),
                                 SQLITE_TRANSIENT);
    }
    return sqlite3_bind_null(statement, position);
}

sqlite3* openFile(std::string const& path) {
    sqlite3* connection = nullptr;
    if (sqlite3_open(path.c_str(), &connection) != SQLITE_OK) {
        std::string const reason = sqlite3_errmsg(connection);
        sqlite3_close(connection);
        throw std::runtime_error("cannot open " + path + ": " + reason);
    }
    return connection;
}

}  // namespace

ChannelDatabase::ChannelDatabase(std::string const& path, Indexes indexes)
    : owned_(openFile(path)), connection_(owned_.get()) {
    sqlite3_busy_timeout(connection_, 1000);
    rows("PRAGMA synchronous = OFF");
    rows("PRAGMA journal_mode = MEMORY");
    createSchema(connection_, indexes);
}

ChannelDatabase::ChannelDatabase(sqlite3* connection, Indexes indexes) : connection_(connection) {
    createSchema(connection_, indexes);
}

List ChannelDatabase::list(std::string const& creator, Id pid) {
    pid = newId("FavoriteList", "Pid", pid);
    run("INSERT INTO FavoriteList (Pid, Creator, Name, Uuid) VALUES (?, ?, ?, ?)",
        {pid, creator, creator, "list-" + std::to_string(pid)});
    return List(*this, {{{"FavoriteList", "Pid", pid}}});
}

Item ChannelDatabase::put(Id list, Id service, Id channelNumber) {
    run("INSERT INTO FavoriteItem (ServiceId, FavoriteId, OriginalFavoriteId, ChannelNum)"
        " VALUES (?, ?, ?, ?)",
        {service, list, list, channelNumber});
    return Item(*this, {{{"FavoriteItem", "Id", sqlite3_last_insert_rowid(connection_)}}});
}

void ChannelDatabase::lcn(Id service, Id list, Value const& number) {
    run("INSERT INTO Lcn (ServiceId, FavoriteId, Lcn) VALUES (?, ?, ?)", {service, list, number});
}

Service ChannelDatabase::service(Delivery delivery, std::string const& name, Id pid, Id tuner) {
    auto const type = static_cast<Id>(delivery);
    pid = newId("Service", "Pid", pid);
    run("INSERT INTO Service (Pid, Type, Name, Uuid) VALUES (?, ?, ?, ?)",
        {pid, type, name, "service-" + std::to_string(pid)});
    if (delivery == Delivery::Analog) {
        run("INSERT INTO AnalogService (ServiceId, Frequency) VALUES (?, 175250)", {pid});
        return Service(*this, {{{"Service", "Pid", pid}, {"AnalogService", "ServiceId", pid}}});
    }

    TunerKind const& kind = kTuners[type];
    if (kind.table != nullptr && tuner == kNewId) {
        tuner = newId("Tuner", "TunerId", kNewId);
        run("INSERT INTO Tuner (TunerId, TunerUuid, NITId, Frontend) VALUES (?, ?, 1, ?)",
            {tuner, "tuner-" + std::to_string(tuner), type});
        run(kind.insert, {tuner});
    }
    run("INSERT INTO DvbService (ServiceId, TunerId, Oid, Tid, Sid) VALUES (?, ?, 1, 1000, ?)",
        {pid, kind.table != nullptr ? Value(tuner) : Value(nullptr), pid});
    RowNames rows = {{{"Service", "Pid", pid}, {"DvbService", "ServiceId", pid}}};
    if (kind.table != nullptr) {
        rows[2] = {"Tuner", "TunerId", tuner};
        rows[3] = {kind.table, "TunerId", tuner};
    }
    return Service(*this, rows);
}

Service ChannelDatabase::analog(std::string const& name, Id pid) {
    return service(Delivery::Analog, name, pid);
}

Service ChannelDatabase::dvbt(std::string const& name, Id pid) {
    return service(Delivery::DvbT, name, pid);
}

Service ChannelDatabase::dvbt2(std::string const& name, Id pid) {
    return service(Delivery::DvbT2, name, pid);
}

Service ChannelDatabase::dvbc(std::string const& name, Id pid) {
    return service(Delivery::DvbC, name, pid);
}

Service ChannelDatabase::dvbc2(std::string const& name, Id pid) {
    return service(Delivery::DvbC2, name, pid);
}

Service ChannelDatabase::dvbs(std::string const& name, Id pid) {
    return service(Delivery::DvbS, name, pid);
}

Service ChannelDatabase::dvbs2(std::string const& name, Id pid) {
    return service(Delivery::DvbS2, name, pid);
}

Service ChannelDatabase::ip(std::string const& name, Id pid) {
    return service(Delivery::Ip, name, pid).networkUrl("rtp://239.0.0.1:5000");
}

Service ChannelDatabase::uri(std::string const& name, std::string const& uri, Id pid) {
    return service(Delivery::Uri, name, pid).uri(uri);
}

Service ChannelDatabase::input(std::string const& name, Id pid) {
    pid = newId("Service", "Pid", pid);
    run("INSERT INTO Service (Pid, Type, Name, Uuid) VALUES (?, 0, ?, ?)", {pid, name, name});
    run("INSERT INTO AnalogService (ServiceId) VALUES (?)", {pid});
    return Service(*this, {{{"Service", "Pid", pid}, {"AnalogService", "ServiceId", pid}}});
}

void ChannelDatabase::run(std::string const& sql, std::initializer_list<Value> parameters) {
    sqlite3_stmt* statement = prepared(sql);
    sqlite3_clear_bindings(statement);
    int position = 0;
    for (Value const& value : parameters)
        if (bind(statement, ++position, value) != SQLITE_OK)
            fail(sql);
    while (sqlite3_step(statement) == SQLITE_ROW) {
    }
    if (sqlite3_reset(statement) != SQLITE_OK)
        fail(sql);
}

std::vector<std::vector<std::string>> ChannelDatabase::rows(std::string const& sql) {
    std::vector<std::vector<std::string>> result;
    sqlite3_stmt* statement = prepared(sql);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        std::vector<std::string>& row = result.emplace_back();
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            auto const* text =
                reinterpret_cast<char const*>(sqlite3_column_text(statement, column));
            row.emplace_back(text == nullptr ? "NULL" : text);
        }
    }
    if (sqlite3_reset(statement) != SQLITE_OK)
        fail(sql);
    return result;
}

std::string ChannelDatabase::value(std::string const& sql) {
    auto const all = rows(sql);
    return all.empty() ? "" : all[0][0];
}

void ChannelDatabase::assign(RowNames const& rows, std::string const& column, Value const& value) {
    auto const dot = column.find('.');
    std::string const table = dot == std::string::npos ? "" : column.substr(0, dot);
    std::string const name = dot == std::string::npos ? column : column.substr(dot + 1);
    if (columns_.empty())  // SQLite itself would also take "Oid" for the key of any table
        for (auto const& row : this->rows("SELECT tables.name || '.' || columns.name"
                                          " FROM sqlite_master AS tables,"
                                          " pragma_table_info(tables.name) AS columns"))
            columns_.insert(row[0]);
    for (RowName const& row : rows) {
        if (row.table == nullptr || (!table.empty() && table != row.table))
            continue;
        if (columns_.count(row.table + ("." + name)) != 0) {
            run(std::string("UPDATE ") + row.table + " SET " + name + " = ? WHERE " + row.key +
                    " = ?",
                {value, row.id});
            return;
        }
    }
    throw std::runtime_error("no column " + column + " in this kind of record");
}

sqlite3_stmt* ChannelDatabase::prepared(std::string const& sql) {
    auto& statement = statements_[sql];
    if (statement == nullptr) {
        sqlite3_stmt* fresh = nullptr;
        if (sqlite3_prepare_v2(connection_, sql.c_str(), -1, &fresh, nullptr) != SQLITE_OK)
            fail(sql);
        statement.reset(fresh);
    }
    return statement.get();
}

Id ChannelDatabase::newId(char const* table, char const* key, Id wanted) {
    if (wanted != kNewId)
        return wanted;
    // A key is not given twice, even when its row is deleted: what still names it stays an orphan.
    Id& last = lastIds_[table];
    std::string const stored =
        value(std::string("SELECT ifnull(max(") + key + "), 0) FROM " + table);
    last = std::max<Id>(last, std::stoll(stored)) + 1;
    return last;
}

void ChannelDatabase::fail(std::string const& what) const {
    throw std::runtime_error(what + ": " + sqlite3_errmsg(connection_));
}

Transaction::Transaction(ChannelDatabase& database) : database_(database) {
    database_.run("BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
    if (open_)
        sqlite3_exec(database_.connection(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit() {
    database_.run("COMMIT");
    open_ = false;
}

}  // namespace channel_database
