// Every column of every table filled with what it should not hold.
#include <sstream>

#include "tool_process.h"

namespace {

// Whatever a column holds, a command ends with an exit code of its own, and what keeps a list from
// being read is a finding of the check.
class ToolOnFoulColumns : public ToolTest, public testing::WithParamInterface<char const*> {};

TEST_P(ToolOnFoulColumns, EndsWithACodeOfItsOwn) {
    std::string const before = content("set.db");
    char const* const columns =
        "SELECT m.name || '.' || c.name FROM sqlite_master m, pragma_table_info(m.name) c"
        " WHERE m.type = 'table' AND c.pk = 0";
    std::istringstream names(rows(columns));
    for (std::string name; std::getline(names, name, ';');) {
        auto const dot = name.find('.');
        write("set.db", before);
        change("UPDATE " + name.substr(0, dot) + " SET " + name.substr(dot + 1) + " = " +
               GetParam());
        SCOPED_TRACE(name + " = " + GetParam());
        int const check = run("check --db set.db");
        EXPECT_THAT(check, testing::AnyOf(0, 1)) << err;
        for (char const* command :
             {"folders", "services u-all", "edit u-fav1 move id:5 to 1 --dry-run"}) {
            int const code = run(std::string(command) + " --db set.db");
            EXPECT_THAT(code, testing::AnyOf(0, 1)) << command << err;
            EXPECT_LE(code, check) << command << " fails, but check finds nothing: " << err;
        }
    }
}

// Tests of their own, because they are long and run beside each other.
INSTANTIATE_TEST_SUITE_P(Values, ToolOnFoulColumns, testing::Values("NULL", "'x'"),
                         [](auto const& test) {
                             return std::string(*test.param == 'N' ? "Null" : "Text");
                         });

}  // namespace
