// The fault that the storage and the memory of these test programs are struck by.
#pragma once

enum class FaultKind {
    None,
    StorageError,  // any operation on a file: I/O error
    StorageFull,   // what makes a file longer: disk full
    StorageBusy,   // a lock: held by somebody else
    Kill,          // what changes a file: the process dies, a write half done
    New,           // operator new
    SqliteMemory,  // SQLite's allocator
    Interrupt,     // a step of SQLite's engine: the host interrupts it
};

/// Strikes the `at`th operation of its kind inside a FaultWindow, and every later one if `lasting`.
struct Fault {
    FaultKind kind = FaultKind::None;
    unsigned at = 0;
    bool lasting = false;
    unsigned seen = 0;

    bool strikes(FaultKind asked) noexcept;
    unsigned struck() const { return seen < at ? 0 : lasting ? seen - at + 1 : 1; }
};

inline Fault fault;
inline bool faultWindowOpen = false;

/// Open around the call under test alone: nothing that the test itself does is struck.
struct FaultWindow {
    FaultWindow() { faultWindowOpen = true; }
    ~FaultWindow() { faultWindowOpen = false; }
};

inline bool Fault::strikes(FaultKind asked) noexcept {
    if (!faultWindowOpen || asked != kind)
        return false;
    ++seen;
    return lasting ? seen >= at : seen == at;
}
