// The program as its user meets it: exit codes, messages, and what becomes of the files.
#include <channel-database/builder.h>

#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

struct MakeChannelDatabaseTest : testing::Test {
    MakeChannelDatabaseTest() {
        std::string pattern = (fs::temp_directory_path() / "maker-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        std::ofstream(folder / "list") << "A:410:M64:C:6900:1:1:0:0:1:1:1:0\nfoul\n";
        std::ofstream(folder / "empty") << "foul\n";
    }
    ~MakeChannelDatabaseTest() override { fs::remove_all(folder); }

    // The exit code; `output` becomes what the program wrote.
    int run(const std::string& arguments) {
        const std::string command =
            "cd " + folder.string() + " && " MAKE_CHANNEL_DATABASE " " + arguments + " 2>&1";
        output.clear();
        FILE* pipe = popen(command.c_str(), "r");
        for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) {
            output += static_cast<char>(c);
        }
        return WEXITSTATUS(pclose(pipe));
    }
    std::string services() {
        return channel_database::ChannelDatabase((folder / "db").string())
            .value("SELECT count(*) FROM DvbService");
    }

    fs::path folder;
    std::string output;
};

TEST_F(MakeChannelDatabaseTest, MakesADatabaseAndNamesSkippedLines) {
    EXPECT_EQ(run("list db"), 0);
    EXPECT_THAT(output, HasSubstr("list:2: skipped: a channel has 9 to 13 fields"));
    EXPECT_THAT(output, HasSubstr("db: 1 channels, 0 groups, 1 lines skipped"));
    EXPECT_EQ(services(), "1");
}

TEST_F(MakeChannelDatabaseTest, ReplacesAFileOnlyWhenForcedAndOnlyByAWholeOne) {
    std::ofstream(folder / "db") << "precious";
    EXPECT_EQ(run("list db"), 1);
    EXPECT_THAT(output, HasSubstr("db exists; --force replaces it"));
    EXPECT_EQ(run("--force empty db"), 1);
    EXPECT_THAT(output, HasSubstr("the list holds no channel"));
    EXPECT_EQ(fs::file_size(folder / "db"), 8U);
    EXPECT_EQ(run("--force list db"), 0);
    EXPECT_EQ(services(), "1");
    EXPECT_FALSE(fs::exists(folder / "db.part"));
}

TEST_F(MakeChannelDatabaseTest, FailsWithAReason) {
    const struct {
        const char* arguments;
        int code;
        const char* message;
    } cases[] = {{"", 2, "usage:"},
                 {"list", 2, "usage:"},
                 {"list db more", 2, "usage:"},
                 {"--nonsense list db", 2, "usage:"},
                 {"missing db", 1, "cannot read missing: No such file"},
                 {". db", 1, "cannot read ."},
                 {"list nowhere/db", 1, "cannot open nowhere/db"}};
    for (const auto& c : cases) {
        EXPECT_EQ(run(c.arguments), c.code) << c.arguments;
        EXPECT_THAT(output, HasSubstr(c.message)) << c.arguments;
    }
}

}  // namespace
