// With the recommended indexes no statement of the library reads a table's every row, but the
// folder list, which shows nearly all of them.
#include <gmock/gmock.h>

#include <set>

#include "support/test_database.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class QueryPlans : public TestDatabase {
  protected:
    // Calls every entry point and returns what SQLite's plans of their statements hold of `step`.
    std::set<std::string> stepsWith(const std::string& step) {
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
        for (const std::string& statement : statements_) {
            const auto find = [&](const std::string& detail) {
                if (detail.rfind(step, 0) == 0)
                    steps.insert(detail);
            };
            plan(statement, find);
        }
        return steps;
    }

    void SetUp() override {
        TestDatabase::SetUp();
        auto astra = database().list("servicelist://tamun.Astra 19.2E").uuid("astra");
        auto anchor = database().dvbs("anchor", 1).uuid("anchor");
        database().put(astra, anchor.satellite(4).frontend(4).frequency(12603750), 1);
        database().dvbs("other", 2);
        for (const char* number : {"1", "2", "3", "4"}) {
            const std::string creator = std::string("User.tvFAV") + number;
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

    template <typename Find>
    static void plan(const std::string& sql, Find find) {
        const auto row = [](void* context, int, char** values, char**) {
            (*static_cast<Find*>(context))(values[3]);
            return 0;
        };
        const std::string explain = "EXPLAIN QUERY PLAN " + sql;
        if (sql.find("TRANSACTION") == std::string::npos) {
            EXPECT_EQ(sqlite3_exec(db, explain.c_str(), row, &find, nullptr), SQLITE_OK) << explain;
        }
    }
};

TEST_F(QueryPlans, OnlyTheFolderListReadsAWholeTable) {
    EXPECT_THAT(stepsWith("SCAN "), ElementsAre("SCAN FavoriteList"));
    EXPECT_GE(statements_.size(), 20U);
}

TEST_F(QueryPlans, EveryRecommendedIndexServesAStatement) {
    const std::set<std::string> searches = stepsWith("SEARCH ");
    const auto indexes =
        database().rows("SELECT name FROM sqlite_master WHERE type = 'index' AND sql NOT NULL");
    EXPECT_THAT(indexes, Not(IsEmpty()));
    for (const auto& index : indexes)
        EXPECT_THAT(searches, Contains(HasSubstr(" INDEX " + index[0] + " ")));
}

}  // namespace
