// What is asked before a list is written, and where a person's text lies until it is.
#include <unistd.h>

#include <cstdlib>

#include "tool_process.h"

using testing::HasSubstr;

namespace {

class Question : public ToolTest {
  protected:
    // At a terminal, with `answer` typed; `redirections` of the tool's own output.
    std::string at(std::string const& command, std::string const& editor, std::string const& answer,
                   std::string const& redirections = "") {
        return typed("printf '" + answer + "\\n'", command, editor, redirections);
    }

    // With what `typist` prints, who sees what is "shown".
    std::string typed(std::string const& typist, std::string const& command,
                      std::string const& editor, std::string const& redirections = "") {
        write("ed", editor);
        write("run", "EDITOR='sh ./ed' TMPDIR=$PWD " TOOL " --db set.db " + command + redirections +
                         "\necho code $?\n");
        std::system(("cd '" + folder.string() + "' && { " + typist +
                     "; } | PATH=$PWD/bin:$PATH HOME=$PWD VISUAL= script -qefc 'sh ./run' /dev/null"
                     " >shown 2>&1")
                        .c_str());
        return content("shown");
    }
};

constexpr char kWithoutVox[] = "sed -i /VOX/d \"$1\"\n";

TEST_F(Question, IsAskedWhereverSomebodySits) {
    const struct {
        char const* command;
        char const* editor;
        char const* answer;
        char const* redirections;
        char const* shown;
        char const* fav1;
    } cases[] = {
        {"edit FAV1", kWithoutVox, "y", "", "Write this to FAV1? [y/N]", "1 1;2 2;5 5"},
        {"edit FAV1", kWithoutVox, "n", "", "nothing is written", "1 1;2 2;3 3;5 5"},
        {"edit FAV1", kWithoutVox, "", "", "your text is kept in", "1 1;2 2;3 3;5 5"},
        {"edit FAV1 --json", kWithoutVox, "n", "", "nothing is written", "1 1;2 2;3 3;5 5"},
        // No person comes back ten times in less than a second.
        {"edit FAV1", "echo CNN >>\"$1\"", "y", "", "no service fits 'CNN'", "1 1;2 2;3 3;5 5"},
        {"edit FAV1", kWithoutVox, "n", " 2>err", "Your text is in", "1 1;2 2;3 3;5 5"},
        {"edit FAV1", kWithoutVox, "n", " >out", "FAV1  removed", "1 1;2 2;3 3;5 5"},
        {"edit FAV1", kWithoutVox, "y", " >out 2>err", "Write this to FAV1", "1 1;2 2;5 5"},
        // What is hidden in the list of all services is hidden in FAV1 to FAV4.
        {"edit all", "sed -i 's/shown\\(.*VOX\\)/hidden\\1/' \"$1\"", "n", "", "FAV1  hidden",
         "1 1;2 2;3 3;5 5"},
        // What others write while it is open is merged, and asked anew.
        {"edit FAV1", "sed -i /VOX/d \"$1\"; " TOOL " --db set.db edit FAV1 hide 1 >/dev/null", "y",
         "", "others: Das Erste hidden", "1 1 deleted;2 2;5 5"},
        {"edit FAV1 -n", kWithoutVox, "", "", "your text is kept in", "1 1;2 2;3 3;5 5"},
    };
    std::string const before = content("set.db");
    for (auto const& c : cases) {
        std::string const shown = at(c.command, c.editor, c.answer, c.redirections);
        EXPECT_THAT(shown, HasSubstr(c.shown)) << c.command << c.redirections;
        EXPECT_EQ(fav(1), c.fav1) << c.command << c.redirections << shown;
        write("set.db", before);
    }
}

// Ctrl-C is no answer, either.
TEST_F(Question, IsLeftWithTheTextWhereItSaid) {
    std::string const shown =
        typed("while ! grep -q 'y/N' shown; do sleep 0.05; done; printf '\\003'; sleep 0.2",
              "edit FAV1", kWithoutVox);
    EXPECT_EQ(fav(1), "1 1;2 2;3 3;5 5");
    std::size_t const at = shown.find("Your text is in ");
    ASSERT_NE(at, std::string::npos) << shown;
    std::string const path = shown.substr(at + 16, shown.find(' ', at + 16) - at - 16);
    EXPECT_THAT(content(path), HasSubstr("Jazz"));
    EXPECT_THAT(content(path), testing::Not(HasSubstr("VOX")));
    expect({"undo", 1, nullptr, "nothing is kept"});
}

// The editor takes the tool's room on the disk away before the second round.
TEST_F(Question, CutsNoTextOnAFullDisk) {
    write("ed",
          "echo CNN >>\"$1\"; cp \"$1\" mine; for p in $PPID"
          " $(awk '/^PPid/ { print $2 }' /proc/$PPID/status); do prlimit --pid $p --fsize=512; "
          "done\n");
    EXPECT_EQ(
        run("edit FAV1 --db set.db",
            "TMPDIR=$PWD VISUAL= EDITOR='sh ./ed' sh -c 'trap \"\" XFSZ; exec \"$0\" \"$@\"'"),
        1);
    EXPECT_THAT(err, HasSubstr("cannot write"));
    EXPECT_EQ(std::system(("cd '" + folder.string() + "' && cmp mine channellist-*.txt").c_str()),
              0)
        << err;
}

// An edit that is committed is told as written, whatever keeps the tool from reading it again.
TEST_F(Question, TellsACommittedEditAsWritten) {
    write("bin/sync",
          "#!/bin/sh\npython3 -c 'import sqlite3, time; c = sqlite3.connect(\"set.db\");"
          " c.execute(\"BEGIN EXCLUSIVE\"); open(\"held\", \"w\"); time.sleep(5); c.close(); "
          "import os; "
          "os.remove(\"held\")' &\n"
          "while [ ! -e held ]; do sleep 0.05; done\n");
    expect({"edit FAV1 move 3 to 7", 0, "Written, and flushed", "cannot be read again"});
    while (std::filesystem::exists(folder / "held"))
        usleep(10000);
    write("bin/sync", "#!/bin/sh\n");
    EXPECT_EQ(run("undo --db set.db"), 0) << err;
    EXPECT_EQ(fav(1), "1 1;2 2;3 3;5 5");
}

}  // namespace
