// Preloaded into the tool: its process dies at the write that KILL_AT counts to, before it is made,
// or with KILL_HALF when half of it is.
#include <dlfcn.h>
#include <sys/types.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace {

bool isLast() {
    static long left = [] {
        char const* const text = getenv("KILL_AT");
        return text == nullptr ? 0 : std::atol(text);
    }();
    return left > 0 && --left == 0;
}

template <typename Half>
void dieAtTheLast(Half writeHalf) {
    if (!isLast())
        return;
    if (getenv("KILL_HALF") != nullptr)
        writeHalf();
    raise(SIGKILL);
}

}  // namespace

// The calls by which a database, its journal or a kept copy changes on the disk.
#define INTERPOSE(result, name, parameters, arguments, half)                                    \
    extern "C" __attribute__((visibility("default"))) result name parameters {                  \
        static auto* const next = reinterpret_cast<decltype(&::name)>(dlsym(RTLD_NEXT, #name)); \
        dieAtTheLast([&] { half; });                                                            \
        return next arguments;                                                                  \
    }

INTERPOSE(ssize_t, pwrite, (int fd, void const* data, size_t size, off_t at), (fd, data, size, at),
          (void)!next(fd, data, size / 2, at))
INTERPOSE(ssize_t, pwrite64, (int fd, void const* data, size_t size, off64_t at),
          (fd, data, size, at), (void)!next(fd, data, size / 2, at))
INTERPOSE(int, ftruncate, (int fd, off_t size), (fd, size), )
INTERPOSE(int, ftruncate64, (int fd, off64_t size), (fd, size), )
INTERPOSE(int, fsync, (int fd), (fd), )
INTERPOSE(int, fdatasync, (int fd), (fd), )
INTERPOSE(int, unlink, (char const* path), (path), next(path))
INTERPOSE(int, rename, (char const* from, char const* to), (from, to), next(from, to))
INTERPOSE(int, linkat, (int a, char const* from, int b, char const* to, int flags),
          (a, from, b, to, flags), next(a, from, b, to, flags))

extern "C" __attribute__((visibility("default"))) ssize_t write(int fd, void const* data,
                                                                size_t size) {
    static auto* const next =
        reinterpret_cast<ssize_t (*)(int, void const*, size_t)>(dlsym(RTLD_NEXT, "write"));
    if (fd > STDERR_FILENO)
        dieAtTheLast([&] { (void)!next(fd, data, size / 2); });
    return next(fd, data, size);
}
