// What a terminal is shown: tables that fit it, colours, help.
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tool_process.h"

using testing::HasSubstr;
using testing::Not;

namespace {

struct Terminal {
    char const* setting;  // of the environment
    int columns;          // 0: a serial console that does not tell
    char const* arguments;
    char const* shown;  // part of it
    char const* hidden;
};

class TerminalTest : public ToolTest {
  protected:
    std::string shownOn(Terminal const& terminal) {
        std::string const resize = "stty rows 24 cols " + std::to_string(terminal.columns) + "; ";
        run("--version", "true; script -qec '" + resize +
                             "env -u COLUMNS -u NO_COLOR PATH=$PWD/bin:$PATH"
                             " TERM=xterm " +
                             terminal.setting + " " TOOL " --db set.db " + terminal.arguments +
                             "' /dev/null >shown; true");
        return content("shown");
    }
};

TEST_F(TerminalTest, TablesFitAndStylesAreModest) {
    std::string big;
    for (int service = 1; service <= 600; ++service)
        big += "Name:11000:HC34:S19.2E:22000:1:2:0:0:" + std::to_string(service) + ":1:1:0\n";
    write("big", big);
    change("UPDATE Service SET Name = '一二三四五六七八九十e\xCC\x81z' WHERE Pid = 1");
    Terminal const terminals[] = {
        {"NO_COLOR=1", 120, "services FAV1", "一二三四五六七八九十e\xCC\x81z  TV", "…"},
        {"NO_COLOR=1", 100, "services FAV1", "ONID  ", "LCN"},
        {"NO_COLOR=1", 80, "services FAV1",
         " 1  一二三四五六七八九十e\xCC\x81z  TV     satellite  ", "LCN"},
        {"NO_COLOR=1", 0, "services FAV1", "Delivery", "LCN"},
        {"NO_COLOR=1 COLUMNS=45", 0, "services FAV1", "State", "Delivery"},
        {"NO_COLOR=1", 26, "services FAV1", " 2  ZD…", "ZDF"},
        {"NO_COLOR=1", 18, "find zdf", "ZDF HD  all 2,\r\n        FAV1 2\r\n", "…"},
        {"NO_COLOR=1", 8, "find zdf", "ZD…  all\r\n     2,\r\n     FAV\r\n     1 2\r\n", "ZDF"},
        {"NO_COLOR=1", 20, "--wide services FAV1", "LCN", "…"},
        {"NO_COLOR=1", 60, "services FAV1", "ZDF HD", "\x1b["},
        {"TERM=dumb", 60, "services FAV1", "ZDF HD", "\x1b["},
        {"", 60, "--color never services FAV1", "ZDF HD", "\x1b["},
        {"", 60, "services --hidden all", "\x1b[2mJazz\x1b[0m", "\x1b[2mVOX"},
        {"NO_COLOR=1", 60, "--color always services --hidden all", "\x1b[2mJazz\x1b[0m", "…"},
        {"", 60, "services FAV1 --json", "ZDF HD", "\x1b["},
        {"", 60, "edit FAV1 -n move 2 to 1", "\x1b[2m2\x1b[0m", "\x1b[31m"},
        {"", 60, "services --help",
         "names that hold this, whatever\r\n                              its case",
         "(the order of the set)  "},
        {"", 1, "folders --help", "lists\r\nthat", "lists that"},
        {"", 60, "import big set.db --force", "Importing 500 of 600", "…"},
        {"", 20, "import big set.db --force", "Importing 500 of 6…", "500 of 600"},
        {"TERM=dumb", 60, "import big set.db --force", "600", "\x1b["},
        {"", 60, "import --help", "replace the content of an\r\n", "of an existing database"},
    };
    change("UPDATE FavoriteItem SET isDeleted = 1 WHERE ServiceId = 5");
    for (Terminal const& terminal : terminals) {
        std::string const shown = shownOn(terminal);
        EXPECT_THAT(shown, HasSubstr(terminal.shown))
            << terminal.setting << " " << terminal.columns << " " << terminal.arguments;
        EXPECT_THAT(shown, Not(HasSubstr(terminal.hidden)))
            << terminal.setting << " " << terminal.columns << " " << terminal.arguments;
    }
    EXPECT_THAT(output("services FAV1"), Not(HasSubstr("\x1b["))) << "no terminal, no colour";
    expect({"--color loud services FAV1", 2, nullptr, "'loud' is none of auto, always and never"});
}

// A less of the test's own tells what it was asked, and ends in the midst.
TEST_F(TerminalTest, LongTablesGoThroughThePager) {
    std::string big;
    for (int service = 1; service <= 3000; ++service)
        big += "Name:11000:HC34:S19.2E:22000:1:2:0:0:" + std::to_string(service) + ":1:1:0\n";
    write("big", big);
    run("import big set.db --force");
    write("bin/less",
          "#!/bin/sh\ncase $1 in --version) echo less ${VERSION} x;; *) echo \"[$LESS $*]\"; head "
          "-1;;"
          " esac\n");
    std::filesystem::permissions(folder / "bin/less", std::filesystem::perms::all);
    Terminal const terminals[] = {
        {"VERSION=608", 80, "services all", "[FRX --header=2]\r\n", "---"},
        {"VERSION=590 LESS=S", 80, "services all", "[S ]\r\n", "---"},
        {"PAGER=\"head -3\"", 80, "services all", "   1 ", "   2 "},
        {"PAGER=missing-pager", 80, "services all", "3000 ", "[FRX"},
        {"PAGER=", 80, "services all", "3000 ", "[FRX"},
        {"VERSION=608", 80, "--no-pager services all", "3000 ", "[FRX"},
        {"VERSION=608", 80, "services all --json", "3000", "[FRX"},
        {"VERSION=608", 80, "services FAV1", "State", "[FRX"},
        {"VERSION=608", 80, "services all | cat", "3000 ", "[FRX"},
    };
    for (Terminal const& terminal : terminals) {
        std::string const shown = shownOn(terminal);
        EXPECT_THAT(shown, HasSubstr(terminal.shown)) << terminal.setting << terminal.arguments;
        EXPECT_THAT(shown, Not(HasSubstr(terminal.hidden)))
            << terminal.setting << terminal.arguments;
        EXPECT_EQ(err, "");
    }
}

}  // namespace
