#include "faulty_storage.h"

#include <sqlite3.h>

#include <csignal>
#include <cstring>
#include <map>

#include "fault.h"

namespace storage {
namespace {

sqlite3_vfs* real = nullptr;
std::string target;

// The real layer's operations on a file, some of them struck first.
struct Operations : sqlite3_io_methods {
    sqlite3_io_methods const* real;
};

sqlite3_io_methods const* realOf(sqlite3_file* file) {
    return static_cast<Operations const*>(file->pMethods)->real;
}

bool errorStrikes() { return fault.strikes(FaultKind::StorageError); }

void killIfStruck() {
    if (fault.strikes(FaultKind::Kill))
        raise(SIGKILL);
}

int readFile(sqlite3_file* file, void* data, int size, sqlite3_int64 offset) {
    return errorStrikes() ? SQLITE_IOERR_READ : realOf(file)->xRead(file, data, size, offset);
}

int writeFile(sqlite3_file* file, void const* data, int size, sqlite3_int64 offset) {
    if (errorStrikes())
        return SQLITE_IOERR_WRITE;
    if (fault.strikes(FaultKind::StorageFull))
        return SQLITE_FULL;
    if (fault.strikes(FaultKind::Kill)) {
        realOf(file)->xWrite(file, data, size / 2, offset);
        raise(SIGKILL);
    }
    return realOf(file)->xWrite(file, data, size, offset);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    killIfStruck();
    return errorStrikes() ? SQLITE_IOERR_TRUNCATE : realOf(file)->xTruncate(file, size);
}

int syncFile(sqlite3_file* file, int flags) {
    killIfStruck();
    if (errorStrikes())
        return SQLITE_IOERR_FSYNC;
    return flushes ? realOf(file)->xSync(file, flags) : SQLITE_OK;
}

int fileSize(sqlite3_file* file, sqlite3_int64* size) {
    return errorStrikes() ? SQLITE_IOERR_FSTAT : realOf(file)->xFileSize(file, size);
}

int lockFile(sqlite3_file* file, int level) {
    if (errorStrikes())
        return SQLITE_IOERR_LOCK;
    return fault.strikes(FaultKind::StorageBusy) ? SQLITE_BUSY : realOf(file)->xLock(file, level);
}

int mapSharedMemory(sqlite3_file* file, int page, int size, int extend, void volatile** memory) {
    return errorStrikes() ? SQLITE_IOERR_SHMMAP
                          : realOf(file)->xShmMap(file, page, size, extend, memory);
}

int lockSharedMemory(sqlite3_file* file, int offset, int count, int flags) {
    if ((flags & SQLITE_SHM_LOCK) == 0)
        return realOf(file)->xShmLock(file, offset, count, flags);
    if (errorStrikes())
        return SQLITE_IOERR_SHMLOCK;
    return fault.strikes(FaultKind::StorageBusy)
               ? SQLITE_BUSY
               : realOf(file)->xShmLock(file, offset, count, flags);
}

int checkReservedLock(sqlite3_file* file, int* isReserved) {
    return errorStrikes() ? SQLITE_IOERR_CHECKRESERVEDLOCK
                          : realOf(file)->xCheckReservedLock(file, isReserved);
}

// The real layer has one set of operations for databases and one for journals.
Operations const* struck(sqlite3_io_methods const* operations) {
    static std::map<sqlite3_io_methods const*, Operations> all;
    auto const [entry, isNew] = all.try_emplace(operations, Operations{*operations, operations});
    if (isNew) {
        Operations& ours = entry->second;
        ours.iVersion = 2;  // without memory maps, which would bypass the faults
        ours.xRead = readFile;
        ours.xWrite = writeFile;
        ours.xTruncate = truncateFile;
        ours.xSync = syncFile;
        ours.xFileSize = fileSize;
        ours.xLock = lockFile;
        ours.xShmMap = mapSharedMemory;
        ours.xShmLock = lockSharedMemory;
        ours.xCheckReservedLock = checkReservedLock;
    }
    return &entry->second;
}

int openFile(sqlite3_vfs*, char const* name, sqlite3_file* file, int flags, int* outFlags) {
    file->pMethods = nullptr;
    if (errorStrikes())
        return SQLITE_CANTOPEN;
    int const code = real->xOpen(real, name, file, flags, outFlags);
    if (file->pMethods != nullptr)
        file->pMethods = struck(file->pMethods);
    return code;
}

int deleteFile(sqlite3_vfs*, char const* name, int flushDirectory) {
    killIfStruck();
    return errorStrikes() ? SQLITE_IOERR_DELETE
                          : real->xDelete(real, name, flushes ? flushDirectory : 0);
}

int accessFile(sqlite3_vfs*, char const* name, int flags, int* result) {
    return errorStrikes() ? SQLITE_IOERR_ACCESS : real->xAccess(real, name, flags, result);
}

int fullPath(sqlite3_vfs*, char const* name, int size, char* path) {
    if (errorStrikes())
        return SQLITE_CANTOPEN_FULLPATH;
    bool const isChannelDatabase = std::strcmp(name, "/var/tvservice/servicelist.db") == 0;
    return real->xFullPathname(real, isChannelDatabase ? target.c_str() : name, size, path);
}

int doNotSleep(sqlite3_vfs*, int microseconds) { return microseconds; }

}  // namespace

void install(std::string const& channelDatabase, bool realTime) {
    static sqlite3_vfs layer;
    target = channelDatabase;
    if (real == nullptr) {
        real = sqlite3_vfs_find(nullptr);
        layer = *real;
        layer.zName = "faulty";
        layer.xOpen = openFile;
        layer.xDelete = deleteFile;
        layer.xAccess = accessFile;
        layer.xFullPathname = fullPath;
        sqlite3_vfs_register(&layer, 1);
    }
    layer.xSleep = realTime ? real->xSleep : doNotSleep;
}

}  // namespace storage
