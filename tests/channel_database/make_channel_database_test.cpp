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

    // Runs the program; `output` becomes what it wrote.
    void expect(const std::string& arguments, int code, const char* message) {
        const std::string command =
            "cd " + folder.string() + " && " MAKE_CHANNEL_DATABASE " " + arguments + " 2>&1";
        output.clear();
        FILE* pipe = popen(command.c_str(), "r");
        for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) {
            output += static_cast<char>(c);
        }
        EXPECT_EQ(WEXITSTATUS(pclose(pipe)), code) << arguments;
        EXPECT_THAT(output, HasSubstr(message)) << arguments;
    }

    fs::path folder;
    std::string output;
};

TEST_F(MakeChannelDatabaseTest, ReplacesAFileOnlyWhenForcedAndOnlyByAWholeOne) {
    std::ofstream(folder / "db") << "precious";
    expect("list db", 1, "db exists; --force replaces it");
    expect("--force empty db", 1, "the list holds no channel");
    EXPECT_EQ(fs::file_size(folder / "db"), 8U);
    expect("--force list db", 0, "list:2: skipped: a channel has 9 to 13 fields");
    EXPECT_THAT(output, HasSubstr("db: 1 channels, 0 groups, 1 lines skipped"));
    channel_database::ChannelDatabase d((folder / "db").string());
    EXPECT_EQ(d.value("SELECT count(*) FROM DvbService"), "1");
    EXPECT_FALSE(fs::exists(folder / "db.part"));
}

TEST_F(MakeChannelDatabaseTest, FailsWithAReason) {
    for (const char* const arguments : {"", "list", "list db more", "--nonsense list db"}) {
        expect(arguments, 2, "usage:");
    }
    expect("missing db", 1, "cannot read missing: No such file");
    expect(". db", 1, "cannot read .");
    expect("list nowhere/db", 1, "cannot open nowhere/db");
}

}  // namespace
