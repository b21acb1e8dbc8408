#include "turns.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace turns {

// In memory that all processes map. Only the one whose turn it is touches it, but for `sitting`.
struct Shared {
    std::uint64_t random;
    unsigned seats;
    unsigned sitting;
    unsigned turns;
    unsigned current;  // the seat whose turn it is
    struct Seat {
        sem_t turn;
        unsigned wakesAt;  // in turns
        bool isLeft;
    } seat[Table::kMostSeats];
};

namespace {

constexpr unsigned kSleep = 40;         // in turns of others
constexpr unsigned kLongestTurn = 120;  // in seconds

Shared* table = nullptr;  // while this process takes part
unsigned own = 0;

[[noreturn]] void giveUp(char const* why) {
    std::fprintf(stderr, "turns: seat %u: %s\n", own, why);
    _exit(97);
}

// Multiplier and mixer of SplitMix64.
unsigned drawn(unsigned below) {
    std::uint64_t bits = table->random += 0x9e3779b97f4a7c15U;
    bits = (bits ^ bits >> 30) * 0xbf58476d1ce4e5b9U;
    bits = (bits ^ bits >> 27) * 0x94d049bb133111ebU;
    return static_cast<unsigned>((bits ^ bits >> 31) % below);
}

// One who is awake, else the one who wakes first; kMostSeats when all have left.
unsigned next() {
    unsigned awake[Table::kMostSeats];
    unsigned count = 0;
    unsigned first = Table::kMostSeats;
    for (unsigned seat = 0; seat < table->seats; ++seat) {
        if (table->seat[seat].isLeft)
            continue;
        if (table->seat[seat].wakesAt <= table->turns)
            awake[count++] = seat;
        if (first == Table::kMostSeats || table->seat[seat].wakesAt < table->seat[first].wakesAt)
            first = seat;
    }
    return count > 0 ? awake[drawn(count)] : first;
}

void await() {
    timespec until;
    clock_gettime(CLOCK_REALTIME, &until);
    until.tv_sec += kLongestTurn;
    while (sem_timedwait(&table->seat[own].turn, &until) != 0)
        if (errno != EINTR)
            giveUp("the turn of another never ended");
}

// False when all have left.
bool passOn() {
    unsigned const chosen = next();
    if (chosen == Table::kMostSeats)
        return false;
    table->current = chosen;
    sem_post(&table->seat[chosen].turn);
    return true;
}

void endTurn() {
    if (table == nullptr)
        return;
    ++table->turns;
    passOn();
    await();
}

void sleepForTurns() {
    table->seat[own].wakesAt = table->turns + kSleep;
    endTurn();
}

void standUp() {
    if (table == nullptr)
        return;
    table->seat[own].isLeft = true;
    passOn();
    table = nullptr;
}

void sitDown(Shared* shared, unsigned seat) {
    table = shared;
    own = seat;
    if (__atomic_add_fetch(&shared->sitting, 1, __ATOMIC_SEQ_CST) == shared->seats)
        passOn();
    await();
}

Shared* mapped(int file) {
    void* const memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return memory == MAP_FAILED ? nullptr : static_cast<Shared*>(memory);
}

// A program into which the library was loaded sits down before main, and stands up behind it.
struct Visitor {
    Visitor() {
        char const* const name = std::getenv("TURNS_TABLE");
        char const* const seat = std::getenv("TURNS_SEAT");
        if (name == nullptr || seat == nullptr)
            return;
        Shared* const shared = mapped(open(name, O_RDWR | O_CLOEXEC));
        if (shared == nullptr)
            giveUp("no table");
        unsigned const number = static_cast<unsigned>(std::strtoul(seat, nullptr, 10));
        unsetenv("TURNS_SEAT");  // its children take no part
        sitDown(shared, number);
    }
    ~Visitor() { standUp(); }
} visitor;

// A child of one who takes part does not.
[[maybe_unused]] int const atFork = pthread_atfork(nullptr, nullptr, [] { table = nullptr; });

template <typename Function>
Function* real(char const* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool isLock(int command) { return command == F_SETLK || command == F_SETLKW; }

}  // namespace

Table::Table(unsigned seats, std::uint64_t seed) : file_("/dev/shm/turns-XXXXXX") {
    int const file = mkstemp(file_.data());
    if (file < 0 || ftruncate(file, sizeof(Shared)) != 0)
        throw std::runtime_error("no table");
    shared_ = mapped(file);
    if (shared_ == nullptr)
        throw std::runtime_error("no table");
    renew(seats, seed);
}

void Table::renew(unsigned seats, std::uint64_t seed) {
    if (seats > kMostSeats)
        throw std::runtime_error("too many seats");
    *shared_ = {};
    shared_->random = seed;
    shared_->seats = seats;
    for (Shared::Seat& seat : shared_->seat)
        sem_init(&seat.turn, 1, 0);
}

Table::~Table() {
    munmap(shared_, sizeof(Shared));
    unlink(file_.c_str());
}

Seat Table::sit(unsigned seat) {
    sitDown(shared_, seat);
    return Seat();
}

void Table::clear(unsigned seat) {
    shared_->seat[seat].isLeft = true;
    timespec const moment = {0, 1000000};
    nanosleep(&moment, nullptr);  // whoever was just choosing this seat has done so
    table = shared_;
    if (shared_->current == seat)
        passOn();
    table = nullptr;
}

Seat::~Seat() { standUp(); }

unsigned Table::turns() const { return shared_->turns; }

}  // namespace turns

namespace {

using Fcntl = int(int, int, ...);

// A lock takes a turn, whichever name the C library's function has.
int lockInTurn(Fcntl* real, int file, int command, va_list arguments) {
    if (turns::isLock(command))
        turns::endTurn();
    return real(file, command, va_arg(arguments, void*));
}

}  // namespace

extern "C" int fcntl(int file, int command, ...) {
    static auto* const real = turns::real<Fcntl>("fcntl");
    va_list arguments;
    va_start(arguments, command);
    int const result = lockInTurn(real, file, command, arguments);
    va_end(arguments);
    return result;
}

extern "C" int fcntl64(int file, int command, ...) {
    static auto* const real = turns::real<Fcntl>("fcntl64");
    va_list arguments;
    va_start(arguments, command);
    int const result = lockInTurn(real, file, command, arguments);
    va_end(arguments);
    return result;
}

// Weak: a test program may have its own, which comes to nanosleep.
extern "C" __attribute__((weak)) int usleep(useconds_t microseconds) {
    if (turns::table != nullptr)
        return turns::sleepForTurns(), 0;
    timespec const time = {microseconds / 1000000,
                           static_cast<long>(microseconds % 1000000) * 1000};
    return turns::real<int(timespec const*, timespec*)>("nanosleep")(&time, nullptr);
}

extern "C" int nanosleep(timespec const* time, timespec* left) {
    if (turns::table != nullptr)
        return turns::sleepForTurns(), 0;
    return turns::real<int(timespec const*, timespec*)>("nanosleep")(time, left);
}

// A wait for something that another does.
extern "C" int poll(pollfd* sources, nfds_t count, int timeout) {
    static auto* const real = turns::real<int(pollfd*, nfds_t, int)>("poll");
    if (turns::table == nullptr || timeout == 0)
        return real(sources, count, timeout);
    turns::sleepForTurns();
    return real(sources, count, 0);
}

extern "C" int fsync(int file) {
    if (turns::table != nullptr)
        return turns::endTurn(), 0;
    return turns::real<int(int)>("fsync")(file);
}

extern "C" int fdatasync(int file) {
    if (turns::table != nullptr)
        return turns::endTurn(), 0;
    return turns::real<int(int)>("fdatasync")(file);
}
