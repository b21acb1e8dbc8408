// Processes that call the library beside the test.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <new>
#include <stdexcept>

/// Runs `work` in a process of its own, which ends with it. Returns the process id.
template <typename Work>
pid_t startChild(Work work) {
    pid_t const child = fork();
    if (child == 0) {
        work();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    EXPECT_GT(child, 0);
    return child;
}

/// Waits for the process. Returns the signal that killed it; 0 when it ended well.
inline int endOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0) << "the process failed";
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

/// A value that the processes started after it share with the test, until this one ends.
template <typename Value>
Value& sharedValue() {
    void* const page =
        mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED)
        throw std::runtime_error("no shared memory");
    return *new (page) Value();
}
