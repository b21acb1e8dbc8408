// With the recommended indexes no statement of the library reads a table's every row, but the
// folder list, which shows nearly all of them.
#include <set>

#include "support/test_database.h"

namespace {

using namespace testing;

class QueryPlans : public TestDatabase {
  protected:
    // Calls every entry point and returns what SQLite's plans of their statements hold of `step`.
    std::set<std::string> stepsWith(std::string const& step) {
        dbaccess::get_dbservices("astra");
        sqlite3_trace_v2(db, SQLITE_TRACE_STMT, collect, &statements_);
        dbaccess::get_dbservices("astra");
        dbaccess::select_Folders();
        int flag = 0;
        dbaccess::checkAstraScrambleService(flag);
        dbaccess::getBissKeyFromService("anchor");
        EXPECT_GE(dbaccess::onServiceListEdit({"fav1", "0", "1", "2"}), 0);
        EXPECT_GE(dbaccess::onServiceListEdit({"astra", "6", "7", "1"}), 0);
        sqlite3_trace_v2(db, 0, nullptr, nullptr);

        std::set<std::string> steps;
        for (std::string const& statement : statements_) {
            if (statement.find("TRANSACTION") == std::string::npos) {
                // On the library's connection, which has the views.
                for (auto const& row :
                     channel_database::ChannelDatabase(db).rows("EXPLAIN QUERY PLAN " + statement))
                    if (row[3].rfind(step, 0) == 0)
                        steps.insert(row[3]);
            }
        }
        return steps;
    }

    void SetUp() override {
        TestDatabase::SetUp();
        auto astra = database().list("servicelist://tamun.Astra 19.2E").uuid("astra");
        auto anchor = database().dvbs("anchor", 1).uuid("anchor");
        database().put(astra, anchor.satellite(4).frontend(4).frequency(12603750), 1);
        database().dvbs("other", 2);
        for (char const* number : {"1", "2", "3", "4"}) {
            std::string const creator = std::string("User.tvFAV") + number;
            database().put(database().list(creator).uuid("fav" + creator.substr(10)), anchor, 1);
        }
    }

    std::set<std::string> statements_;

  private:
    static int collect(unsigned int, void* context, void* statement, void*) {
        char* const sql = sqlite3_expanded_sql(static_cast<sqlite3_stmt*>(statement));
        static_cast<std::set<std::string>*>(context)->insert(sql);
        sqlite3_free(sql);
        return 0;
    }
};

TEST_F(QueryPlans, OnlyTheFolderListReadsAWholeTable) {
    EXPECT_THAT(stepsWith("SCAN "), ElementsAre("SCAN FavoriteList"));
    EXPECT_GE(statements_.size(), 20U);
}

TEST_F(QueryPlans, EveryRecommendedIndexServesAStatement) {
    std::set<std::string> const searches = stepsWith("SEARCH ");
    auto const indexes =
        database().rows("SELECT name FROM sqlite_master WHERE type = 'index' AND sql NOT NULL");
    EXPECT_THAT(indexes, Not(IsEmpty()));
    for (auto const& index : indexes)
        EXPECT_THAT(searches, Contains(HasSubstr(" INDEX " + index[0] + " ")));
}

}  // namespace
