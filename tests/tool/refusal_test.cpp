// Wrong usage, and files that are no channel database.
#include <sys/stat.h>

#include <map>
#include <regex>
#include <sstream>

#include "tool_process.h"

using testing::ContainsRegex;
using testing::HasSubstr;

namespace {

// The commands that the help names.
std::vector<std::string> commandsIn(std::string const& help) {
    std::vector<std::string> commands;
    std::istringstream lines(help.substr(help.find("Subcommands:\n")));
    for (std::string line; std::getline(lines, line);)
        if (line.size() > 2 && line.compare(0, 2, "  ") == 0 && line[2] != ' ')
            commands.push_back(line.substr(2, line.find(' ', 2) - 2));
    return commands;
}

TEST_F(ToolTest, ExplainsItselfInHelpAndManual) {
    std::string const manual = content(TOOL_SOURCE "/channellist.1");
    EXPECT_EQ(run("--help"), 0);
    std::vector<std::string> const commands = commandsIn(out);
    std::string const declared = content(TOOL_SOURCE "/commands/commands.h");
    std::regex const declaration("\nvoid add[A-Za-z]+Command\\(");
    std::sregex_iterator const first(declared.begin(), declared.end(), declaration);
    EXPECT_EQ(static_cast<std::ptrdiff_t>(commands.size()), std::distance(first, {}))
        << "commands.h and main.cpp differ";
    for (std::string const& command : commands) {
        EXPECT_EQ(run(command + " --help"), 0);
        EXPECT_THAT(out, HasSubstr("Examples:\n  channellist " + command)) << command;
        EXPECT_THAT(manual, ContainsRegex("\n\\.TP\n\\.B[IR]+ (anchor \", \" )?" + command + " "))
            << command << " has no entry in channellist.1";
    }
}

// A rule is named where its users look for it.
TEST_F(ToolTest, FindsEveryRuleOfCheckInTheDocumentation) {
    std::string const page = content(DOCUMENTATION "/channel-database.md");
    std::regex const name("\\{\\s*\"([a-z-]+)\",\\s*Severity::");
    int rules = 0;
    for (auto const& file : std::filesystem::directory_iterator(RULES)) {
        std::string const source = content(file.path());
        for (std::sregex_iterator rule(source.begin(), source.end(), name), end; rule != end;
             ++rule) {
            EXPECT_THAT(page, HasSubstr('`' + (*rule)[1].str() + '`')) << file.path();
            ++rules;
        }
    }
    EXPECT_GT(rules, 30);
}

// Of bash, which breaks words at "=" and ":", run as its completion runs it; those of zsh and fish
// ask the tool in the same way.
TEST_F(ToolTest, CompletesWhatIsTyped) {
    struct {
        char const* words;
        int at;
        char const* candidates;
    } const lines[] = {
        {"channellist serv", 1, "services"},
        {"channellist edit --ren", 2, "--renumber"},
        {"channellist --db set.db services A", 4, "Astra"},
        {"channellist services A --db set.db", 2, "Astra"},
        {"channellist services A --db=set.db", 2, "Astra"},
        {"channellist edit FAV1 add Z --db set.db", 4, "ZDF HD"},
        {"channellist edit FAV1 add ZDF\\ HD a --db set.db", 5, "add at"},
        {"channellist edit FAV1 move VOX to --db set.db", 6, "--db"},
        {"channellist services FAV1 --sort n", 4, "number name"},
        {"channellist services F --db missing.db", 2, "FAV1 FAV2 FAV3 FAV4"},
        {"channellist watch FAV1 A --db set.db", 3, "Astra"},
        {"channellist import se", 2, "set.db"},
        {"channellist --db se", 2, "set.db"},
        {"channellist services --db = set.db A", 5, "Astra"},
        {"channellist --db = se", 3, "set.db"},
        {"channellist list FAV1 '>' se", 4, "set.db"},
        {"channellist --db set.db services u : as", 6, "astra"},
    };
    change("UPDATE FavoriteList SET Uuid = 'u:astra' WHERE Uuid = 'u-astra'");
    write("complete", "channellist() { " TOOL " \"$@\"; }; . " TOOL_SOURCE
                      "/completions/channellist.bash; shift 0; COMP_CWORD=$1; shift;"
                      " COMP_WORDS=(\"$@\") all=\"$*\" COMP_LINE=${all// = /=}"
                      " COMP_LINE=${COMP_LINE// : /:}; _channellist; echo \"${COMPREPLY[*]}\"");
    for (auto const& line : lines) {
        run("--version",
            "bash complete " + std::to_string(line.at) + " " + line.words + " >completed;");
        EXPECT_EQ(content("completed"), std::string(line.candidates) + "\n") << line.words;
    }
}

TEST_F(ToolTest, RefusesWrongUsage) {
    std::string letter;
    for (int line = 1; line <= 3; ++line)
        letter += "Dear aunt, this is line " + std::to_string(line) + "\n";
    write("letter", letter);
    Invocation const runs[] = {
        {"import letter set.db --force", 1, nullptr,
         "letter: this is no channel list of VDR, Enigma2 or libdvbv5, and no M3U\n"},
        {"", 2, nullptr, "A subcommand is required"},
        {"servics", 2, nullptr, "no command 'servics'; did you mean 'services'?"},
        {"services all --jsn", 2, nullptr, "no option --jsn of services; did you mean '--json'"},
        {"help services", 0, "channellist services [OPTIONS] LIST", nullptr},
        {"help", 0, "help COMMAND", nullptr},
        {"edit FAV1 --from .", 1, nullptr, "channellist: cannot read .: Is a directory"},
        {"services", 2, nullptr, "LIST is required"},
        {"folders more", 2, nullptr, "more"},
        {"folders --trace loud", 2, nullptr, "'loud' is not [MODULE:]LEVEL"},
        {"driver a b c", 2, nullptr, "c"},
        {"import list", 2, nullptr, "import needs the name of the database to make"},
        {"import list --list FAV1", 2, nullptr, "channellist: --list requires --favourites"},
        {"import list --favourites --force", 2, nullptr, "channellist: --force excludes --fav"},
        {"undo 1 --list", 2, nullptr, "channellist: NUMBER excludes --list"},
        {"import list other.db", 2, nullptr, "the database is named twice, by --db and behind"},
    };
    for (Invocation const& each : runs)
        expect(each);
}

TEST_F(ToolTest, OpensOnlyChannelDatabasesAndCreatesNone) {
    write("empty.db", "");
    write("text.db", "this is no database, but a text that is long enough to look at\n");
    std::filesystem::create_directory(folder / "directory.db");
    sqlite3* foreign = nullptr;
    sqlite3_open((folder / "foreign.db").c_str(), &foreign);
    sqlite3_exec(foreign, "CREATE TABLE Other (Id)", nullptr, nullptr, nullptr);
    sqlite3_close(foreign);
    const struct {
        char const* file;
        char const* sentence;
    } cases[] = {
        {"missing.db", "there is no database missing.db"},
        {"empty.db", "empty.db is empty: it holds no channel database"},
        {"text.db", "text.db is no SQLite database"},
        {"directory.db", "directory.db is a directory, not a database"},
        {"foreign.db", "but no channel database: it has none of the tables Service"},
        {"set.db/set.db", "cannot open set.db/set.db: Not a directory"},
    };
    for (auto const& c : cases) {
        std::string const before = content(c.file);
        for (char const* command :
             {"folders", "driver", "check", "export FAV1", "edit FAV1 hide 1"}) {
            EXPECT_EQ(run(std::string(command) + " --db " + c.file), 1) << command << c.file;
            EXPECT_EQ(out, "");
            EXPECT_THAT(err, HasSubstr("channellist: ")) << command;
            EXPECT_THAT(err, HasSubstr(c.sentence)) << command;
        }
        EXPECT_EQ(content(c.file), before);
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "missing.db"));
}

TEST_F(ToolTest, SaysThatADatabaseIsLocked) {
    std::string const before = content("set.db");
    output("backup copy.db");
    channel_database::ChannelDatabase other((folder / "set.db").string());
    other.rows("BEGIN EXCLUSIVE");  // until this process closes any descriptor of the file
    expect({"folders", 1, nullptr, "channellist: set.db is locked by another process\n"});
    std::string const terminal = "cd '" + folder.string() + "' && script -qec '" TOOL;
    system((terminal + " folders --db set.db' /dev/null >out </dev/null").c_str());
    EXPECT_EQ(content("out"),
              "channellist: waiting for another process that uses set.db (Ctrl-C to stop)\r\n"
              "channellist: set.db is locked by another process\r\n");
    system((terminal + " restore copy.db -n --db set.db' /dev/null >out </dev/null").c_str());
    EXPECT_THAT(content("out"), HasSubstr("waiting for another process that uses set.db (Ctrl-C"));
    EXPECT_EQ(run("edit --db set.db FAV1 move 1 to 9", "timeout -s INT --preserve-status 0.2"),
              130);
    other.rows("ROLLBACK");
    EXPECT_TRUE(content("set.db") == before);
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(run("folders --db fifo"), 1);
    EXPECT_THAT(err, HasSubstr("fifo is no regular file"));
}

// The library's errors are told where the command fails, and never beside an answer.
TEST_F(ToolTest, ShowsTheLibrarysErrorsWhereTheCommandFails) {
    change(
        "CREATE TRIGGER t BEFORE UPDATE ON FavoriteItem BEGIN SELECT RAISE(ABORT, 'no'); END;"
        "UPDATE Service SET Encrypted = 'x' WHERE Pid = 2; DELETE FROM FavoriteItem WHERE "
        "FavoriteId"
        " = 21");
    expect({"edit FAV1 hide 1", 1, nullptr,
            "channellist: the library says: sqlite3_step failed:19, hint:"});
    EXPECT_THAT(err, testing::Not(HasSubstr(".cpp:")));
    expect({"services FAV1", 0, "ZDF HD", nullptr});
    output("services FAV1 --trace 3000");
    EXPECT_THAT(err, HasSubstr(".cpp:"));
}

TEST_F(ToolTest, ReportsWhenItsOutputCannotBeWritten) {
    constexpr char kSentence[] = "channellist: the output could not be written\n";
    std::string const written =
        std::string("channellist: the database is written, and flushed to the disk\n") + kSentence;
    for (auto const& [command, sentence] :
         std::map<std::string, std::string>{{"services all", kSentence},
                                            {"driver u-fav1 u-all", kSentence},
                                            {"edit FAV1 move 3 to 7", written},
                                            {"edit FAV1 move 7 to 3 --json", written},
                                            {"undo", written}}) {
        EXPECT_EQ(run(command + " --db set.db >/dev/full 2>err; exit $?; :"), 1) << command;
        EXPECT_EQ(err, sentence) << command;
    }
}

}  // namespace
