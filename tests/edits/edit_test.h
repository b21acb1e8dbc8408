// A small world of lists to edit, and what to ask about an edit.
#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/test_database.h"

/// Services 10 to 15 in these lists, as service@number; service 12's item in list 7 has Id 712:
///
///     1 "all"     10@1 11@2 12@3 13@4 14@5 15@6
///     2 "cable"   10@1 11@2
///     6 "fav1"    10@1 12@5 14@9
///     7 "fav2"    10@1 11@2 12@3
///     8 "fav3"    12@4
///     9 "fav4"
///
/// After every request and test: the mutex is free, no transaction is open, no statement is left
/// on the connection, and every message is one of the database-access module.
class EditTest : public TestDatabase {
  protected:
    using Texts = std::vector<std::string>;

    void SetUp() override;
    void TearDown() override;
    /// Back to the world of SetUp, for the next case of a table.
    void startAnew();

    /// Runs an edit request; "sync" must run once when it succeeds, else not at all.
    int request(Texts const& arguments);
    /// The same with the arguments in one text: "fav2  0 1 10  1 2 11".
    int edit(std::string const& arguments);
    /// Runs anything else of the library under the same watch.
    int watched(std::function<int()> const& call);

    /// What the last request changed in any table, by row: "-Item 711; Item 712: isDeleted 0>1;
    /// List 7: UpdateTag 0>1; +Item 813|..." (Id, service, list, original list, number, deleted,
    /// visible, selectable). "Favorite" is left out of the tables' names.
    std::string changes();
    /// The statements that the last request ran, with their values, a line each.
    std::string const& statements() const { return statements_; }
    /// Runs `action` once, just before the library's next statement that begins so.
    void when(std::string const& beginning, std::function<void()> action);

    /// Changes the world: `sql` on a connection other than the library's.
    void change(std::string const& sql) { database().run(sql); }
    /// Makes writes of rows fail: "UPDATE OF ChannelNum ON FavoriteItem", "NEW.Id = 712".
    void forbid(std::string const& write, std::string const& condition = "1");
    void put(int list, int service, int number);
    /// Makes the OTT database with these rows: "('FAV1', 5), ('FAV1', 3)".
    void ott(std::string const& rows);
    std::string ottFile() const { return directory() + "/zentova_DB_V1.3.db"; }

  private:
    using Row = std::vector<std::pair<std::string, std::string>>;  // column, value

    std::map<std::string, Row> everything();
    void expectAtRest();
    static int onStatement(unsigned int, void* test, void* statement, void* text);

    std::map<std::string, Row> before_;
    std::string statements_;
    std::pair<std::string, std::function<void()>> action_;
};
