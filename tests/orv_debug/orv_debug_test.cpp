// The debug library stand-in, each time in a child process whose standard error is caught: the
// library reads its environment once.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orv-debug/orv_debug.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A packet socket keeps the borders between writes, a pipe holds less than a long message.
enum class StandardError { kPackets, kPipe, kNonBlockingPipe };

// Every piece that `body` wrote to its standard error with ORV_DEBUG as given.
std::vector<std::string> standardErrorOf(const char* orvDebug, const std::function<void()>& body,
                                         StandardError kind = StandardError::kPackets) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(
        kind == StandardError::kPackets ? socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) : pipe(ends),
        0);
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        close(ends[1]);
        if (kind == StandardError::kNonBlockingPipe) {
            fcntl(STDERR_FILENO, F_SETFL, O_NONBLOCK);
        }
        orvDebug != nullptr ? setenv("ORV_DEBUG", orvDebug, 1) : unsetenv("ORV_DEBUG");
        body();
        _exit(0);
    }
    close(ends[1]);
    std::vector<std::string> pieces;
    std::vector<char> buffer(1 << 20);
    for (ssize_t length = 0; (length = read(ends[0], buffer.data(), buffer.size())) > 0;) {
        pieces.emplace_back(buffer.data(), static_cast<std::size_t>(length));
    }
    close(ends[0]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    return pieces;
}

std::string joined(const std::vector<std::string>& pieces) {
    std::string whole;
    for (const auto& piece : pieces) {
        whole += piece;
    }
    return whole;
}

bool isEnabled(unsigned int module, unsigned int level) {
    unsigned int descriptor[3] = {module << 16 | level, 0, 0};
    return orvDebugCheckLevelGetFrameAndChunk(descriptor) != 0;
}

template <typename... Arguments>
void output(const char* format, Arguments... arguments) {
    unsigned int descriptor[3] = {0xda << 16 | 1000, 0, 0};
    orvDebugOutput0(descriptor, format, arguments...);
}

TEST(OrvDebug, EnvironmentOpensLevelsAndModules) {
    struct Question {
        unsigned int module, level;
    };
    // Level 1000, two opened or shut levels of the usual modules, and the greatest of both.
    const Question questions[] = {{0xda, 1000}, {0xda, 1},    {0xd2, 1},       {0xda, 4000},
                                  {0xd2, 4000}, {0xb4, 5000}, {0xffff, 0xffff}};
    const struct {
        const char* orvDebug;
        const char* enabled;
    } cases[] = {
        {nullptr, "+------"},
        {"", "+------"},
        {"4000", "+--++--"},
        {"1,4000", "+++++--"},
        {"0xda:4000", "+--+---"},
        {"218:4000", "+--+---"},
        {"0XDA:*", "++-+---"},
        {"0xd2:all", "+-+-+--"},
        {"*:1,0xb4:5000", "+++--+-"},
        {" 1 , 0xda : 4000 ,, ", "++++---"},
        {"0xffff:65535", "+-----+"},
        {"all", "+++++++"},
        {"*", "+++++++"},
        {"3000,0:0", "+------"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.orvDebug != nullptr ? c.orvDebug : "(unset)");
        const auto answers = standardErrorOf(c.orvDebug, [&] {
            for (const auto& question : questions) {
                output("%c", isEnabled(question.module, question.level) ? '+' : '-');
            }
        });
        EXPECT_EQ(joined(answers), c.enabled);
    }
}

TEST(OrvDebug, UnreadableItemsAreNamedOnceAndOpenNothing) {
    for (const char* item : {"x", "0x", "-1", "1 2", "65536", "0x10000:1", "1:", ":1", "1:2:3",
                             "all:1", "1:0xg", "99999999999999999999", "%s%n"}) {
        SCOPED_TRACE(item);
        const auto pieces = standardErrorOf((std::string(item) + ",4000").c_str(), [] {
            for (int i = 0; i < 3; ++i) {
                output("%d%d%d%d\n", isEnabled(1, 1), isEnabled(1, 2), isEnabled(0xda, 1),
                       isEnabled(1, 4000));
            }
        });
        EXPECT_THAT(pieces, ElementsAre(HasSubstr('"' + std::string(item) + '"'), "0001\n",
                                        "0001\n", "0001\n"));
    }
}

TEST(OrvDebug, ItemsBeyondTheLimitAreNamed) {
    std::string items;
    for (int level = 1; level <= 65; ++level) {
        items += std::to_string(level) + ",";
    }
    const auto pieces = standardErrorOf(items.c_str(), [] {
        output("%d%d%d", isEnabled(1, 1), isEnabled(1, 64), isEnabled(1, 65));
    });
    EXPECT_THAT(pieces, ElementsAre(HasSubstr("\"65\""), "110"));
}

TEST(OrvDebug, MessageIsOneWriteOfAnyLength) {
    for (const std::size_t length : {0, 1, 1022, 1023, 1024, 1025, 4097, 100000}) {
        SCOPED_TRACE(length);
        const std::string text(length, 'x');
        EXPECT_THAT(standardErrorOf("", [&] { output("%s:%d\n", text.c_str(), 7); }),
                    ElementsAre(text + ":7\n"));
    }
    EXPECT_THAT(standardErrorOf("", [] { output("%s", ""); }), IsEmpty());
}

TEST(OrvDebug, ErrnoSurvivesMessage) {
    const auto pieces = standardErrorOf("", [] {
        close(STDERR_FILENO);
        errno = ENOENT;
        output("%s", "nobody reads this");
        _exit(errno == ENOENT ? 0 : 1);
    });
    EXPECT_THAT(pieces, IsEmpty());
}

TEST(OrvDebug, MessagesOfThreadsStayWhole) {
    constexpr std::size_t kThreads = 8;
    constexpr int kMessages = 40;
    // Longer than what a pipe takes at once, so that the kernel alone would mix them.
    constexpr std::size_t kLength = 100000;
    const auto body = [] {
        std::vector<std::thread> threads;
        threads.reserve(kThreads);
        for (std::size_t t = 0; t < kThreads; ++t) {
            threads.emplace_back([t] {
                const std::string text(kLength, "abcdefgh"[t]);
                for (int i = 0; i < kMessages; ++i) {
                    if (isEnabled(0xda, 4000)) {
                        output("%s\n", text.c_str());
                    }
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
    };
    for (const auto kind : {StandardError::kPipe, StandardError::kNonBlockingPipe}) {
        const std::string whole = joined(standardErrorOf("4000", body, kind));
        ASSERT_EQ(whole.size(), (kLength + 1) * kThreads * kMessages);
        for (std::size_t start = 0; start < whole.size(); start += kLength + 1) {
            ASSERT_EQ(whole.substr(start, kLength + 1), std::string(kLength, whole[start]) + "\n");
        }
    }
}

}  // namespace
