/// Builds channel databases, for tests, benchmarks and tools.
///
///     ChannelDatabase d("servicelist.db");
///     auto fav1 = d.list("User.tvFAV1").name("FAV1").uuid("fav1");
///     auto erste = d.dvbs2("Das Erste HD").frequency(11493750).triplet(1, 1019, 10301);
///     auto radio = d.dvbs("Bayern 3").radio().set("GamingMode", 1);
///     d.put(fav1, erste, 1);
///     d.put(fav1, radio, 2).visible(0).deleted();
///     d.lcn(erste, fav1, 5);
///
/// Every column has a default: a new service is visible, selectable, free to air, TV, and has a
/// tuner of its kind with real-looking values. set() gives any column any value, also NULL or
/// text in a number's column. The handles that the builder returns name rows; they are cheap to
/// copy, are usable as the row's key (Pid, or Id of an item), and write at once.
///
/// Failures throw std::runtime_error with SQLite's message. Outside a Transaction every call is
/// a transaction of its own; put thousands of rows into one Transaction.
#pragma once

#include <channel-database/schema.h>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <variant>
#include <vector>

namespace channel_database {

using Id = std::int64_t;
/// What a column can hold; nullptr is NULL.
using Value = std::variant<std::nullptr_t, std::int64_t, std::string>;

/// Service.Type; a service's Tuner.Frontend starts with the same number.
enum class Delivery { Uri, Analog, DvbT, DvbC, DvbS, Ip, DvbT2, DvbC2, DvbS2 };

/// The key that lets the database choose.
constexpr Id kNewId = 0;

class ChannelDatabase;

/// A row: `table`'s row whose `key` column is `id`.
struct RowName {
    char const* table = nullptr;
    char const* key = nullptr;
    Id id = 0;
};
/// The rows of one record, the first names it; a service has up to four (with its tuner's).
using RowNames = std::array<RowName, 4>;

/// What all records can do. `Self` is the derived class.
template <class Self>
class Record {
  public:
    Record(ChannelDatabase& database, RowNames const& rows) : database_(&database), rows_(rows) {}

    /// Sets the column of that name in whichever of the record's tables has it; "Table.Column"
    /// names the table too. Column names are spelled as the schema spells them.
    Self& set(std::string const& column, Value const& value);
    /// Deletes the record's row of that table, for example a service's "Tuner".
    Self& without(std::string const& table);

    Id id() const { return rows_[0].id; }
    operator Id() const { return id(); }

  protected:
    ChannelDatabase* database_;
    RowNames rows_;
};

/// A list (folder).
class List : public Record<List> {
  public:
    using Record::Record;
    List& uuid(Value const& v) { return set("Uuid", v); }
    List& name(Value const& v) { return set("Name", v); }
    List& attributes(Value const& v) { return set("Attributes", v); }
    List& networkId(Value const& v) { return set("NetworkId", v); }
    List& batId(Value const& v) { return set("BATId", v); }
    List& updateTag(Value const& v) { return set("UpdateTag", v); }
    List& maxChannelNumber(Value const& v) { return set("MaxChannelNumber", v); }
};

/// A service with its delivery and tuner rows.
class Service : public Record<Service> {
  public:
    using Record::Record;
    Service& uuid(Value const& v) { return set("Uuid", v); }
    Service& name(Value const& v) { return set("Name", v); }
    Service& shortName(Value const& v) { return set("ShortName", v); }
    Service& serviceName(Value const& v) { return set("ServiceName", v); }
    Service& uri(Value const& v) { return set("Uri", v); }
    Service& bissKey(Value const& v) { return set("bissKey", v); }
    Service& radio() { return set("MediaType", 2); }
    Service& encrypted(Value const& v = 1) { return set("Encrypted", v); }
    Service& hdtv(Value const& v = 1) { return set("Hdtv", v); }
    Service& visible(Value const& v) { return set("Visible", v); }
    Service& selectable(Value const& v) { return set("Selectable", v); }
    /// The membership mark of FAV`index`, 1 to 4.
    Service& favTag(int index, Value const& v = 1) {
        return set(index == 1 ? "FavTag" : "FavTag" + std::to_string(index), v);
    }

    Service& frequency(Value const& v) { return set("Frequency", v); }
    Service& symbolRate(Value const& v) { return set("SymbolRate", v); }
    Service& polarization(Value const& v) { return set("Polarization", v); }
    Service& satellite(Value const& v) { return set("Satellite", v); }
    Service& frontend(Value const& v) { return set("Frontend", v); }
    Service& plpId(Value const& v) { return set("PlpId", v); }
    Service& nitId(Value const& v) { return set("NITId", v); }
    Service& tunerUuid(Value const& v) { return set("TunerUuid", v); }
    Service& networkUrl(Value const& v) { return set("NetworkUrl", v); }
    /// Original network, transport stream and service id.
    Service& triplet(Value const& oid, Value const& tid, Value const& sid) {
        return set("Oid", oid).set("Tid", tid).set("Sid", sid);
    }

    /// Key of the tuner, to give it to further services of the transponder; 0 without one.
    Id tuner() const { return rows_[2].id; }
};

/// A service's entry in a list.
class Item : public Record<Item> {
  public:
    using Record::Record;
    Item& visible(Value const& v) { return set("Visible", v); }
    Item& selectable(Value const& v) { return set("Selectable", v); }
    Item& deleted(Value const& v = 1) { return set("isDeleted", v); }
    Item& original(Value const& list) { return set("OriginalFavoriteId", list); }
};

/// An open channel database.
class ChannelDatabase {
  public:
    /// Opens or creates the file (":memory:" for none) and creates the missing tables. Its writes
    /// do not wait for the disk: a power cut may cost the file, which can be made again.
    explicit ChannelDatabase(std::string const& path, Indexes indexes = Indexes::Recommended);
    /// Works on a connection that the caller keeps open longer than this object.
    explicit ChannelDatabase(sqlite3* connection, Indexes indexes = Indexes::Recommended);
    ChannelDatabase(ChannelDatabase const&) = delete;
    ChannelDatabase& operator=(ChannelDatabase const&) = delete;

    /// A list of that creator; its name is the creator, its uuid "list-" and the Pid.
    List list(std::string const& creator, Id pid = kNewId);
    /// The item of `service` in `list`, which is also its original list.
    Item put(Id list, Id service, Id channelNumber);
    void lcn(Id service, Id list, Value const& number);

    /// A service of any kind; its uuid is "service-" and the Pid, its service id the Pid.
    /// `tuner` shares the tuner of an earlier service of the same kind.
    Service service(Delivery delivery, std::string const& name, Id pid = kNewId, Id tuner = kNewId);
    Service analog(std::string const& name, Id pid = kNewId);
    Service dvbt(std::string const& name, Id pid = kNewId);
    Service dvbt2(std::string const& name, Id pid = kNewId);
    Service dvbc(std::string const& name, Id pid = kNewId);
    Service dvbc2(std::string const& name, Id pid = kNewId);
    Service dvbs(std::string const& name, Id pid = kNewId);
    Service dvbs2(std::string const& name, Id pid = kNewId);
    Service ip(std::string const& name, Id pid = kNewId);
    /// A service that is only a URI: with a delivery row, so that lists show it, but no tuner.
    Service uri(std::string const& name, std::string const& uri, Id pid = kNewId);
    /// An external input ("hdmi1", "AV1", "AVS", "PC IN", ...); its uuid is its name.
    Service input(std::string const& name, Id pid = kNewId);

    /// Runs one statement with its parameters bound; prepared once for all calls.
    void run(std::string const& sql, std::initializer_list<Value> parameters = {});
    /// The rows of a query as text, NULL as "NULL".
    std::vector<std::vector<std::string>> rows(std::string const& sql);
    /// The first column of the first row of a query as text; "" without a row.
    std::string value(std::string const& sql);
    sqlite3* connection() const { return connection_; }

    /// Sets `column` in the one of `rows` that has it. Records call this.
    void assign(RowNames const& rows, std::string const& column, Value const& value);

  private:
    struct Closer {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    sqlite3_stmt* prepared(std::string const& sql);
    Id newId(char const* table, char const* key, Id wanted);
    [[noreturn]] void fail(std::string const& what) const;

    std::unique_ptr<sqlite3, Closer> owned_;
    sqlite3* connection_;
    std::unordered_map<std::string, std::unique_ptr<sqlite3_stmt, Finalizer>> statements_;
    std::map<std::string, Id> lastIds_;
    std::unordered_set<std::string> columns_;  // "Table.Column"
};

/// Makes all writes one, and undoes them unless commit() is reached.
class Transaction {
  public:
    explicit Transaction(ChannelDatabase& database);
    ~Transaction();
    Transaction(Transaction const&) = delete;
    Transaction& operator=(Transaction const&) = delete;
    void commit();

  private:
    ChannelDatabase& database_;
    bool open_ = true;
};

template <class Self>
Self& Record<Self>::set(std::string const& column, Value const& value) {
    database_->assign(rows_, column, value);
    return static_cast<Self&>(*this);
}

template <class Self>
Self& Record<Self>::without(std::string const& table) {
    for (RowName const& row : rows_)
        if (row.table != nullptr && table == row.table)
            database_->run("DELETE FROM " + table + " WHERE " + row.key + " = ?", {row.id});
    return static_cast<Self&>(*this);
}

}  // namespace channel_database
