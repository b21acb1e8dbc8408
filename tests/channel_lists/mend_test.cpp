// What check mends, beside others that write.
#include <channel-database/builder.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

#include "check/examination.h"
#include "database/session.h"
#include "edit/commit_guard.h"

using namespace channel_lists;
namespace fs = std::filesystem;

namespace {

// What was examined may have changed, and what another wrote since stays.
TEST(Mend, WritesOnlyWhatWasExamined) {
    std::string pattern = (fs::temp_directory_path() / "mend-XXXXXX").string();
    fs::path const folder = mkdtemp(pattern.data());
    std::string const file = (folder / "set.db").string();
    {
        setenv("HOME", folder.c_str(), 1);
        setenv("PATH", (folder.string() + ":" + std::getenv("PATH")).c_str(), 1);
        fs::create_symlink("/bin/true", folder / "sync");
        channel_database::ChannelDatabase other(file);
        other.list("tamun.sl2.servicelist$all", 1).name("$all").uuid("all");
        for (int i = 1; i <= 4; ++i)
            other.list("User.tvFAV" + std::to_string(i), 10 + i).uuid("fav" + std::to_string(i));
        other.run("UPDATE FavoriteList SET UpdateTag = -1 WHERE Pid = 12");

        auto const mendIt = [&](char const* meanwhile) {
            Session const session(file, Access::Write);
            CommitGuard const guard;
            auto const statements = certainStatements(examineDatabase());
            EXPECT_EQ(statements.size(), 1U);
            if (meanwhile != nullptr)
                other.run(meanwhile);
            mend(statements);
        };
        EXPECT_THROW(mendIt("UPDATE FavoriteList SET UpdateTag = -7 WHERE Pid = 12"), Failure);
        EXPECT_EQ(other.rows("SELECT UpdateTag FROM FavoriteList WHERE Pid = 12")[0][0], "-7");
        mendIt(nullptr);
        EXPECT_EQ(other.rows("SELECT UpdateTag FROM FavoriteList WHERE Pid = 12")[0][0], "0");
    }
    fs::remove_all(folder);
}

}  // namespace
