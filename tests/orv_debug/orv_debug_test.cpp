// The debug library stand-in, each time in a child process whose standard error is caught: the
// library reads its environment once.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orv-debug/orv_debug.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <thread>

namespace {

using namespace testing;

// Every piece that `body` wrote to its standard error with ORV_DEBUG as given. A packet socket
// keeps the borders between writes, a pipe holds less than a long message.
std::vector<std::string> standardErrorOf(char const* orvDebug, std::function<void()> const& body,
                                         bool isPipe = false) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(isPipe ? pipe(ends) : socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0);
    pid_t const child = fork();
    if (child == 0) {
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        close(ends[1]);
        orvDebug != nullptr ? setenv("ORV_DEBUG", orvDebug, 1) : unsetenv("ORV_DEBUG");
        body();
        _exit(0);
    }
    close(ends[1]);
    std::vector<std::string> pieces;
    std::vector<char> buffer(1 << 20);
    for (ssize_t length = 0; (length = read(ends[0], buffer.data(), buffer.size())) > 0;)
        pieces.emplace_back(buffer.data(), static_cast<std::size_t>(length));
    close(ends[0]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    return pieces;
}

std::string joined(std::vector<std::string> const& pieces) {
    std::string whole;
    for (std::string const& piece : pieces)
        whole += piece;
    return whole;
}

bool isEnabled(unsigned int module, unsigned int level) {
    unsigned int descriptor[3] = {module << 16 | level, 0, 0};
    return orvDebugCheckLevelGetFrameAndChunk(descriptor) != 0;
}

template <typename... Arguments>
void output(char const* format, Arguments... arguments) {
    unsigned int descriptor[3] = {0xda << 16 | 1000, 0, 0};
    orvDebugOutput0(descriptor, format, arguments...);
}

// clang-format off

TEST(OrvDebug, EnvironmentOpensLevelsAndModules) {
    // Level 1000, two opened or shut levels of the usual modules, and the greatest of both.
    std::pair<unsigned int, unsigned int> const questions[] = {
        {0xda, 1000}, {0xda, 1}, {0xd2, 1}, {0xda, 4000}, {0xd2, 4000}, {0xb4, 5000},
        {0xffff, 0xffff}};
    char const* const cases[][2] = {
        {nullptr, "+------"}, {"", "+------"}, {"4000", "+--++--"}, {"1,4000", "+++++--"},
        {"0xda:4000", "+--+---"}, {"218:4000", "+--+---"}, {"0XDA:*", "++-+---"},
        {"0xd2:all", "+-+-+--"}, {"*:1,0xb4:5000", "+++--+-"},
        {" 1 , 0xda : 4000 ,, ", "++++---"}, {"0xffff:65535", "+-----+"}, {"all", "+++++++"},
        {"*", "+++++++"}, {"3000,0:0", "+------"}};
    for (auto const& [orvDebug, enabled] : cases) {
        auto const answers = standardErrorOf(orvDebug, [&] {
            for (auto const& [module, level] : questions)
                output("%c", isEnabled(module, level) ? '+' : '-');
        });
        EXPECT_EQ(joined(answers), enabled) << (orvDebug != nullptr ? orvDebug : "(unset)");
    }
}

// clang-format on

TEST(OrvDebug, UnreadableItemsAreNamedOnceAndOpenNothing) {
    for (char const* item : {"x", "0x", "-1", "1 2", "65536", "0x10000:1", "1:", ":1", "1:2:3",
                             "all:1", "1:0xg", "99999999999999999999", "%s%n"}) {
        auto const pieces = standardErrorOf((std::string(item) + ",4000").c_str(), [] {
            for (int i = 0; i < 2; ++i)
                output("%d%d%d%d\n", isEnabled(1, 1), isEnabled(1, 2), isEnabled(0xda, 1),
                       isEnabled(1, 4000));
        });
        EXPECT_THAT(pieces,
                    ElementsAre(HasSubstr('"' + std::string(item) + '"'), "0001\n", "0001\n"));
    }
}

TEST(OrvDebug, MessageIsOneWriteOfAnyLength) {
    for (std::size_t const length : {0U, 1U, 1022U, 1023U, 1024U, 1025U, 4097U, 100000U}) {
        std::string const text(length, 'x');
        EXPECT_THAT(standardErrorOf("", [&] { output("%s:%d\n", text.c_str(), 7); }),
                    ElementsAre(text + ":7\n"));
    }
    EXPECT_THAT(standardErrorOf("", [] { output("%s", ""); }), IsEmpty());
}

TEST(OrvDebug, MessagesOfThreadsStayWhole) {
    constexpr std::size_t kThreads = 8;
    constexpr int kMessages = 40;
    constexpr std::size_t kLength = 100000;  // more than a pipe takes at once
    auto const body = [] {
        fcntl(STDERR_FILENO, F_SETFL, O_NONBLOCK);
        std::vector<std::thread> threads;
        for (char const letter : std::string("abcdefgh", kThreads))
            threads.emplace_back([text = std::string(kLength, letter)] {
                for (int i = 0; i < kMessages; ++i)
                    output("%s\n", text.c_str());
            });
        for (auto& thread : threads)
            thread.join();
    };
    std::string const whole = joined(standardErrorOf("4000", body, true));
    ASSERT_EQ(whole.size(), (kLength + 1) * kThreads * kMessages);
    for (std::size_t start = 0; start < whole.size(); start += kLength + 1)
        ASSERT_EQ(whole.substr(start, kLength + 1), std::string(kLength, whole[start]) + "\n");
}

}  // namespace
