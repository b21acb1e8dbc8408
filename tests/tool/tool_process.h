// Runs the tool as its user does, in a folder and home directory of the test's own, on a small
// database with something of everything.
#pragma once

#include <channel-database/builder.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

// One run of a table.
struct Invocation {
    char const* arguments;
    int code;
    char const* out;  // part of what it writes; null when it must write nothing
    char const* err;
};

class ToolTest : public testing::Test {
  protected:
    // The database, "set.db":
    //
    //   all    1 Das Erste (1)  2 ZDF HD (2)  3 VOX (3, scrambled)  4 テレビ東京 (4, locked)
    //          5 Jazz (5, radio, hidden)  6 ZDF HD (6, cable)
    //   FAV1   1 Das Erste  2 ZDF HD (2)  3 VOX  5 Jazz;  FAV2   1 VOX, deleted
    //   av     1 HDMI 1 (7);  Astra  1 Das Erste, 2 VOX
    ToolTest();
    ~ToolTest() override { std::filesystem::remove_all(folder); }

    // Runs "channellist ARGUMENTS" in the folder, with `settings` in front ("HOME=x --"); gives
    // the exit code. `out` and `err` become what it wrote.
    int run(std::string const& arguments, std::string const& settings = "");
    // As run, with "--db set.db"; fails the test when the exit code is another.
    std::string output(std::string const& arguments, int code = 0);

    // As output, held against the expectation.
    void expect(Invocation const& expected);

    // Runs SQL on the database.
    void change(std::string const& sql, std::string const& file = "set.db");
    // Rows of the database, "a|b;c|d".
    std::string rows(std::string const& sql, std::string const& file = "set.db");
    std::string fav(int index);  // "number service deleted;..." of the list
    void write(std::string const& file, std::string const& text);
    // Makes an OTT database that holds these positions of FAV1.
    void ott(std::initializer_list<channel_database::Id> positions);
    std::string content(std::string const& file);
    bool synced();  // whether "sync" ran

    std::filesystem::path folder;
    std::string out, err;
};
