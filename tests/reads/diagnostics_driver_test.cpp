// What the console entry prints.
#include "support/test_database.h"

namespace {

class DiagnosticsDriver : public TestDatabase {
  protected:
    static std::string printed(std::vector<std::string> arguments) {
        std::vector<char*> argv;
        for (std::string& argument : arguments) {
            argv.push_back(argument.data());
        }
        testing::internal::CaptureStdout();
        EXPECT_EQ(dbaccess::main0(static_cast<int>(argv.size()), argv.data()), 0);
        return testing::internal::GetCapturedStdout();
    }
};

TEST_F(DiagnosticsDriver, PrintsFoldersThenCountThenEnd) {
    EXPECT_EQ(printed({}), "argc=0\nend\n");
    EXPECT_EQ(printed({"program", "a"}), "argc=2\nend\n");
    database().list("servicelist://tamun.dvbt").uuid("a").name("100%");
    database().list("User.tvFAV1").uuid("b");
    platform::forgetMessages();
    EXPECT_EQ(printed({"program", "a", "b"}),
              "[item 0:col 0]:100% [item 0:col 1]:a [item 0:col 2]:64 [item 0:col 3]: "
              "[item 0:col 4]:63 \n"
              "[item 1:col 0]:User.tvFAV1 [item 1:col 1]:b [item 1:col 2]:5 [item 1:col 3]: "
              "[item 1:col 4]:63 \n"
              "argc=3\nend\n");
    EXPECT_THAT(texts(1),
                testing::IsSupersetOf({"called,favoriteUuId:a ", "called,favoriteUuId:b "}));
}

}  // namespace
