/// @file
/// The channel lists of a television set: reads, edits and operator lookups on the channel database
/// "/var/tvservice/servicelist.db", which another component of the set creates and fills.
///
/// Conventions of every function here, unless its comment says otherwise:
///
/// - Opening. There is no initialisation call. A function that "opens on demand" uses `db` when it
///   is not null (a host may set it to a connection of its own before the first call) and otherwise
///   opens the file, once per process. When the open fails the handle is closed, `db` is null
///   again, and the next call tries anew; get_dbservices differs, see there. `db` is never closed.
/// - Locks. Four entry points hold svresult_mutex from start to return: get_dbservices,
///   getAstraAnchorService, checkAstraScrambleService and onServiceListEdit. The mutex is not
///   recursive: do not call them with it held, nor from a row callback. The others take no lock but
///   the library's own around opening; a host that calls them from several threads holds
///   svresult_mutex around the call.
/// - Results. 0 is success; SQLite's result codes pass through unchanged; -2: the database could
///   not be opened, a row that the operation needs is missing, or an edit failed and was rolled
///   back; -1: a malformed request, a malformed row, or a failed OTT search. A read request answers
///   with an empty ResultSet when it fails, or with the rows before the failure. A foul value costs
///   no more than itself: see service_callback, folder_callback and FAVserviceIdCallback.
/// - Waiting. A locked database (SQLITE_BUSY) is tried again with a sleep of 100 ms on the caller's
///   thread, the mutex held where the function holds it: 50 attempts for queries and steps, 10 for
///   the update tag and the BISS key. A sleep lasts whatever signals arrive. The busy timeout that
///   get_dbservices sets on the connection (1000 ms) comes on top of every attempt made after it.
/// - Numbers in texts. "signed" and "unsigned" mean an optional sign and decimal digits, nothing
///   else, within 32 bits ("-" negates an unsigned number modulo 2^32). Numbers are the same under
///   every global locale.
/// - Texts. A uuid may hold any bytes; it never ends the SQL literal that it stands in.
/// - Exceptions. Database failures raise none. `std::bad_alloc` may reach the host from
///   get_dbservices, select_dbservice, getFavriteAttributes, the row converters, onServiceListEdit,
///   renumberFAVList, UpdateListTag, the operator lookups, and main0 when it is handed uuids; locks
///   are free then and an open transaction is rolled back. select_Folders, row callbacks, the sql
///   helpers, initViews and busy_callback raise none.
/// - Messages. Every failure writes a message through the platform's debug library (level 1000,
///   module 0xda; the BISS lookup uses module 0xb4).
#ifndef CHANNELLIST_ACCESS_DB_ACCESS_H
#define CHANNELLIST_ACCESS_DB_ACCESS_H

#include <channellist-access/export.h>
#include <channellist-access/field_ids.h>
#include <channellist-access/result_rows.h>
#include <channellist-access/service_snapshot.h>

#include <pthread.h>
#include <sqlite3.h>

#include <string>
#include <vector>

/// The one connection to the channel database: null until the first open, then open for the life
/// of the process. A host may set it before the first call; it then keeps ownership, and must keep
/// it open as long as it calls the library.
extern CHANNELLIST_ACCESS_EXPORT sqlite3* db;

/// The connection to the OTT database: null until the first OTT search, and after a failed open.
extern CHANNELLIST_ACCESS_EXPORT sqlite3* db_zentova;

/// Held by the four entry points named at the top of this file. Not recursive.
extern CHANNELLIST_ACCESS_EXPORT pthread_mutex_t svresult_mutex;

/// The answer of the last BISS lookup, "NULL" for a missing key. It has no lock.
extern CHANNELLIST_ACCESS_EXPORT std::string bisskey;

/// @name SQL helpers
/// They work on the connection or statement given, take no lock, open nothing, log every failure at
/// level 1000 and raise nothing.
///@{

/// Runs `sql` as sqlite3_exec does; no retry.
///
/// @param db       connection
/// @param sql      one statement or several
/// @param callback row callback; may be null
/// @param arg      its context
/// @param errmsg   may be null. After a failure the error text has been logged and freed and
///               `*errmsg` is null: the caller never owns one.
/// @return SQLite's result code.
CHANNELLIST_ACCESS_EXPORT int sqlexec(sqlite3* db, char const* sql,
                                      int (*callback)(void*, int, char**, char**), void* arg,
                                      char** errmsg);

/// Prepares a statement as sqlite3_prepare_v2 does; no retry.
///
/// @return SQLite's result code; after a failure `*stmt` is null.
CHANNELLIST_ACCESS_EXPORT int sqlprepare(sqlite3* db, char const* sql, int nByte,
                                         sqlite3_stmt** stmt, char const** tail);

/// Steps a statement that returns no rows; waits out a locked database (up to 50 attempts, about
/// five seconds of sleep).
///
/// @param stmt address of the caller's handle. On every result but 101 the statement has been
///             finalized and the handle is null; on 101 it is the caller's to reset or finalize.
/// @param hint names the operation in the messages.
/// @return 101 (SQLITE_DONE) on success; 5 after 50 busy attempts; otherwise SQLite's code, at once
///         (SQLITE_ROW and SQLITE_LOCKED too).
CHANNELLIST_ACCESS_EXPORT int sqlstep(sqlite3_stmt** stmt, char const* hint);

/// As sqlstep, for a query: success is 100 (SQLITE_ROW). The end of the rows, 101, counts as a
/// failure: it is logged, and the statement is finalized and the handle null.
CHANNELLIST_ACCESS_EXPORT int sqlstepquery(sqlite3_stmt** stmt, char const* hint);

///@}

/// Row callback of the BISS lookup: copies column 0 into `bisskey`. The context is not read.
///
/// @return 0; -1 when `values` is null or the text cannot be stored. A null column leaves `bisskey`
///         as it is.
CHANNELLIST_ACCESS_EXPORT int getbissKey_callback(void* context, int count, char** values,
                                                  char** names);

/// The requests to the channel database.
namespace dbaccess {

/// @name Reads
///@{

/// The services of the list whose uuid is `favoriteUuId`, by channel number, or by media type and
/// then channel number for lists with attribute bit 0x200. One row per item, deleted items too
/// (attribute bit 0x200 of the row is clear for them); columns by m_svfield. When two lists share
/// the uuid the first one is read, while the attribute bit is the last one's. When the attributes
/// cannot be read the order is that of the channel numbers.
///
/// Opens on demand, sets the 1000 ms busy timeout, creates the views, and holds svresult_mutex.
/// After a failed open the handle stays in `db`: every later request of the process then fails on
/// it with SQLite's misuse code (21) and nothing opens the file again.
///
/// @return the rows; empty when the list is unknown, has no items, or anything fails; the rows that
///         came before a failure in the middle. May wait up to 50 attempts. May raise
///         `std::bad_alloc`.
CHANNELLIST_ACCESS_EXPORT ResultSet get_dbservices(std::string favoriteUuId);

/// Runs the service query of get_dbservices on `db` and appends the rows to `*result`, a ResultSet.
/// The caller holds svresult_mutex and has created the views. Sets m_selectedServiceListId to 1.
/// The list's attributes are read as getFavriteAttributes does, on the global `db`: of another
/// connection the order may not be that of its own attributes.
///
/// @return the code of the closing COMMIT, 0 on success; not that of the query.
CHANNELLIST_ACCESS_EXPORT int select_dbservice(sqlite3* db, std::string favoriteUuId, void* result);

/// The lists that a viewer can browse, in the order in which the set shows them: all but the All
/// list and the IP lists. Columns by m_flfield. Opens on demand, takes no lock.
///
/// @return the rows; empty when there are none or the query fails; the rows that came before a
///         failure in the middle. May wait up to 50 attempts.
CHANNELLIST_ACCESS_EXPORT ResultSet select_Folders();

/// Reads the attribute word of the list `favoriteUuId` into `*attributes`. Opens on demand, takes
/// no lock; no retry. When several lists share the uuid the last one's word remains.
///
/// @return 0, also when no list has the uuid (`*attributes` then keeps the caller's value); -2 when
///         the database cannot be opened; otherwise SQLite's code, 4 (SQLITE_ABORT) when the stored
///         word is null or no unsigned number, `*attributes` unchanged.
CHANNELLIST_ACCESS_EXPORT int getFavriteAttributes(std::string favoriteUuId,
                                                   unsigned int* attributes);

///@}

/// @name Rows of the reads
/// Row callbacks return 0 to go on and -1 to stop the query, and raise nothing.
///@{

/// Row callback of the service query: converts the row as computeService does, but an integer
/// column that does not convert counts as 0, with a message that names service, column and text, so
/// that the viewer keeps the service and all behind it. `data` is the ResultSet.
///
/// @return 0; -1 ("serivce_callback failed!!") for a malformed row, or when memory runs out.
CHANNELLIST_ACCESS_EXPORT int service_callback(void* data, int argc, char** values, char** names);

/// Converts a raw service row (see fetchServiceItem) and appends its result row to `*out`.
///
/// The attribute word of the row is the stored one with 0x4 added for a tuning URI with "hdtv=1",
/// and with 0x20000 when neither 0x1 nor 0x10 is set. The frontend class is, for a URI with a
/// "frontend" parameter: 1 analogue, 2 terrestrial, 3 cable, 4 satellite, 5 IP, else 0; without
/// one: 6 HDMI, 7 SCART, 8 AVS, 9 VGA, 10 S/PDIF, else 0.
///
/// @return 0; -1 with nothing appended when `argc` (as an unsigned number) exceeds the row's
///         length, the row is shorter than 34 strings, or the result row cannot be allocated.
/// @throws boost::bad_lexical_cast (from std::string to int) when an integer column does not
///         convert; nothing is appended.
CHANNELLIST_ACCESS_EXPORT int computeService(int argc, std::vector<std::string> const& svrow,
                                             ResultSet* out);

/// Converts a raw service row, the 34 column texts of the service query, into the snapshot `sv`.
///
/// Attribute bits, each set when its column is not 0 unless said otherwise: 0x1 Encrypted, 0x4
/// Hdtv, 0x8 EpgService, 0x10 ParentalLock, 0x20 GamingMode, 0x40 EngineAutoStart is 0, 0x200
/// isDeleted is 0, 0x40000 Protected, 0x200000 FavTag, 0x400000 HbbTvEnable, 0x800000 FavTag2,
/// 0x1000000 FavTag3, 0x2000000 FavTag4, 0x4000000 Type is 1, 0x10000000 SVisible.
///
/// @throws boost::bad_lexical_cast when an integer column that the row's kind needs does not
///         convert; `sv` is unchanged. External inputs never need MediaType, SSelectable,
///         SoundSelection and the Teletext columns.
/// @throws std::out_of_range when `row` has fewer than 34 strings; `sv` is unchanged.
CHANNELLIST_ACCESS_EXPORT void fetchServiceItem(std::vector<std::string> const& row);

/// Row callback of the folder query: converts the row as computeFolder does, but a list whose
/// attributes are no signed number is left out, with a message that names it, and the query goes
/// on. `data` is the ResultSet.
CHANNELLIST_ACCESS_EXPORT int folder_callback(void* data, int argc, char** values, char** names);

/// Converts a raw folder row (Pid, Uuid, Name, Creator, attributes with the LCN term, NetworkId,
/// UpdateTag) and appends its result row to `*out`.
///
/// The capability code, by the list's attribute word A (see attr), first match: A as a signed
/// number below 0x100000: "63"; bit 0x800000: "18"; bits 0x100000 and 0x1000000: "48"; bit
/// 0x100000: "18"; else "50".
///
/// @return 0; -1 with nothing appended when `argc` (as an unsigned number) exceeds the row's length
///         or the row is shorter than seven strings.
/// @throws boost::bad_lexical_cast when the attributes are no signed number.
CHANNELLIST_ACCESS_EXPORT int computeFolder(int argc, std::vector<std::string> const& flrow,
                                            ResultSet* out);

/// Row callback of getFavriteAttributes: stores column 0 in the `unsigned int` at `context`.
///
/// @return 0; -1 when the column is null or no unsigned number, the word unchanged.
CHANNELLIST_ACCESS_EXPORT int attributesCallback(void* context, int count, char** values,
                                                 char** names);

///@}

/// @name Edits
///@{

/// Writes an edited list, whole or not at all, and runs "sync" once it is committed.
///
/// `arguments` holds the list's uuid, then per entry three unsigned numbers: flags, channel number,
/// service id (`Service.Pid`). Flag 0x01: the service is marked deleted in the list. For one of the
/// four FAV lists the entries are its complete new content: stored services that no entry names are
/// removed, new ones added, and the services' FavTag column of that list follows. For every other
/// list each entry rewrites its service's channel number and deleted flag, and copies the flag to
/// the four FAV lists; flags 0x04, 0x08, 0x10 and 0x20 beside 0x01 or 0x02 then renumber FAV1 to
/// FAV4 (see renumberFAVList) and advance the update tags of those that they name.
///
/// Opens on demand, holds svresult_mutex. The list's update tag advances before the transaction
/// begins, so it has advanced even when a later step fails; an advance that fails is logged, and
/// the edit goes on. So is a renumbering that fails, the items before the failing one with their
/// new numbers, unless SQLite has rolled the edit back, which fails it. Stored items without a
/// service id are counted in a message and left where they are. Each query before the writes, each
/// write and the commit may wait up to 50 attempts; a query that stays locked out says so. An edit
/// that another connection overtook, between its first query and its first write, is made anew
/// behind a lock, for which it may wait up to 50 attempts more: it means the lists that its uuid
/// and the FAV lists' creators name there, and advances the list's update tag again: what the first
/// look announced may have been another list, which bore the key then.
///
/// @return 0 or 101: the edit is committed (0: a FAV list edit that added and removed nothing).
///         -1: the number of strings is not 1 + 3k, or a number does not convert. -2: the database
///         cannot be opened, the uuid is empty or unknown, there are not exactly four FAV lists,
///         the list is no FAV list and there are no entries, the database stays locked, the stored
///         items cannot be read, or a statement or the commit failed. After a negative result
///         nothing of the edit is written, save the update tag of the list itself. May raise
///         `std::bad_alloc`, with the same promise.
CHANNELLIST_ACCESS_EXPORT int onServiceListEdit(std::vector<std::string> arguments);

/// Gives the items of FAV list `favIndex` (1 to 4) that are not deleted, and whose service exists,
/// the channel numbers that its OTT channels leave free, in their present order, then stores the
/// list's highest number.
/// Memory is bounded by the items and the OTT numbers. Does not open the database; the caller holds
/// svresult_mutex. Preparing its statement and each step may wait up to 50 attempts, the query of
/// the items is one attempt. A failing step is logged, the items from it on keep their numbers, and
/// the result is still 0.
///
/// @param listPid  key of the list
/// @param favIndex which of the OTT database's four lists holds the numbers to leave free
/// @return 0; -2 when `favIndex` is not 1 to 4, the database is not open, the list has no such
///         item, its items cannot be read, or the statement does not prepare: nothing is written
///         then; -2 too when a failing step made SQLite roll back the caller's transaction.
CHANNELLIST_ACCESS_EXPORT int renumberFAVList(unsigned int listPid, unsigned char favIndex);

/// Advances the change counter of the list with key `listPid` by one; 65535 becomes 0. Does not
/// open the database; the caller holds svresult_mutex. Up to 10 attempts.
///
/// @return SQLite's code of the last attempt: 0, also for an unknown list; 5 after ten busy
///         attempts; 21 (SQLITE_MISUSE) when the database is not open.
CHANNELLIST_ACCESS_EXPORT int UpdateListTag(unsigned int listPid);

///@}

/// @name Rows of the edits
/// Each converts column 0 to an unsigned number; the result is 0, or -1 to stop the query when the
/// column is null, no unsigned number (but see FAVserviceIdCallback), or cannot be stored.
///@{

/// Stores the list's key in the `unsigned int` at `context`; the last row remains.
CHANNELLIST_ACCESS_EXPORT int listIdCallback(void* context, int count, char** values, char** names);
/// Appends the key of a FAV list to the `std::vector<unsigned int>` at `context`.
CHANNELLIST_ACCESS_EXPORT int FAVlistIdCallback(void* context, int count, char** values,
                                                char** names);
/// Appends the service id of a stored item to the `std::vector<unsigned int>` at `context`. An item
/// without one, null or no number, belongs to no service: the result is 0, and nothing is appended.
CHANNELLIST_ACCESS_EXPORT int FAVserviceIdCallback(void* context, int count, char** values,
                                                   char** names);
/// Appends the key of an item to the `std::vector<unsigned int>` at `context`.
CHANNELLIST_ACCESS_EXPORT int FAVitemIdCallback(void* context, int count, char** values,
                                                char** names);

///@}

/// @name Operator lookups
///@{

/// Finds the anchor service of the Astra 19.2E list, the operator's list first, then the standard
/// one: the first service by channel number that is not deleted and is received on satellite 4
/// through frontend 4 between 12600750 and 12606750 kHz. Opens on demand, holds svresult_mutex.
///
/// @param uuid receives the anchor's uuid; left alone when there is none. Pass an empty string: a
///             non-empty one counts as an anchor found.
/// @return 0; -2 when there is none or a list stayed locked. May wait up to 50 attempts for each of
///         the two lists, and once more where another process writes meanwhile.
CHANNELLIST_ACCESS_EXPORT int getAstraAnchorService(std::string& uuid);

/// The search of getAstraAnchorService in the operator's list (`isOperator`) or the standard one.
/// Does not open the database; the caller holds svresult_mutex. A service whose uuid is null counts
/// as no anchor.
///
/// @return 0 when `uuid` is not empty afterwards, else -2, also when the list stayed locked.
CHANNELLIST_ACCESS_EXPORT int _getAstraAnchorService(std::string& uuid, bool isOperator);

/// Tells whether the Astra list that holds an anchor (see getAstraAnchorService) holds a service
/// whose Encrypted is 1. Opens on demand, holds svresult_mutex.
///
/// @param isExistent receives 1 or 0; 0 when there is no anchor; untouched when the database cannot
///                   be opened or stays locked. When the flags cannot be read for another reason
///                   it tells what the rows before the failure gave.
/// @return 0; -2 when the database cannot be opened or stays locked, or there is no anchor.
CHANNELLIST_ACCESS_EXPORT int checkAstraScrambleService(int& isExistent);

/// Row callback of checkAstraScrambleService: sets the `int` at `context` to 1 when column 0 is 1.
///
/// @return 0 always, so that every row is visited; a null or no unsigned number leaves the flag.
CHANNELLIST_ACCESS_EXPORT int serviceEncryptedCallback(void* context, int count, char** values,
                                                       char** names);

/// The BISS key stored with the service `uuid`, unchanged; the last one's when several services
/// share the uuid. Opens on demand, takes no lock and writes the global `bisskey`: hold
/// svresult_mutex. Up to 10 attempts.
///
/// @return the key; "NULL" when there is none or the lookup failed.
CHANNELLIST_ACCESS_EXPORT std::string getBissKeyFromService(std::string uuid);

/// Runs `statement` on the OTT database, "$HOME/zentova_DB_V1.3.db", and appends column 0 of every
/// row to `values`, read by `strtol` in base 10 and saturated at the signed 32-bit range (a
/// negative number wraps; a row with a null is skipped). Opens the file on first use and keeps it
/// open, even when HOME changes; after a failed open `db_zentova` is null and the next call tries
/// anew. Takes no mutex; on a connection that it opened it waits up to 1 s for a lock on the file.
///
/// @return 0; -1 when HOME is not set, the file cannot be opened or the statement fails; the values
///         of rows before the failure stay.
CHANNELLIST_ACCESS_EXPORT int searchOTTdb(char const* statement, std::vector<unsigned int>& values);

/// Appends the positions that OTT channels hold in FAV1; results as searchOTTdb.
CHANNELLIST_ACCESS_EXPORT int getOttFav1List(std::vector<unsigned int>& values);
/// Appends the positions that OTT channels hold in FAV2; results as searchOTTdb.
CHANNELLIST_ACCESS_EXPORT int getOttFav2List(std::vector<unsigned int>& values);
/// Appends the positions that OTT channels hold in FAV3; results as searchOTTdb.
CHANNELLIST_ACCESS_EXPORT int getOttFav3List(std::vector<unsigned int>& values);
/// Appends the positions that OTT channels hold in FAV4; results as searchOTTdb.
CHANNELLIST_ACCESS_EXPORT int getOttFav4List(std::vector<unsigned int>& values);

///@}

/// @name Plumbing and diagnostics
///@{

/// Creates the temporary views UriView and FavoriteItemView on `db` where they do not exist. They
/// live as long as the connection. The caller holds svresult_mutex.
///
/// @return 0, or SQLite's code of the first statement that failed.
CHANNELLIST_ACCESS_EXPORT int initViews(sqlite3* db);

/// A busy handler for sqlite3_busy_handler that never gives up: sleeps 100 ms, logs `count` and
/// returns 1. The library registers it nowhere. `arg` is not used.
CHANNELLIST_ACCESS_EXPORT int busy_callback(void* arg, int count);

/// Prints the folders, then `argc`, and queries the services of the lists whose uuids are argv[1]
/// and argv[2] (of those that are there), on standard output.
///
/// @return 0
CHANNELLIST_ACCESS_EXPORT int main0(int argc, char** argv);

///@}

}  // namespace dbaccess

#endif
