#include "faulty_storage.h"

#include <sqlite3.h>

#include <csignal>
#include <cstring>

#include "fault.h"

namespace storage {
namespace {

sqlite3_vfs* real = nullptr;
std::string target;

// SQLite allocates szOsFile bytes for a file: this header, and the real file behind it.
struct File {
    sqlite3_file base;
    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_file* realOf(sqlite3_file* file) { return reinterpret_cast<File*>(file)->real(); }
sqlite3_io_methods const* methodsOf(sqlite3_file* file) { return realOf(file)->pMethods; }

bool errorStrikes() { return fault.strikes(FaultKind::StorageError); }

void killIfStruck() {
    if (fault.strikes(FaultKind::Kill))
        raise(SIGKILL);
}

int closeFile(sqlite3_file* file) { return methodsOf(file)->xClose(realOf(file)); }

int readFile(sqlite3_file* file, void* data, int size, sqlite3_int64 offset) {
    return errorStrikes() ? SQLITE_IOERR_READ
                          : methodsOf(file)->xRead(realOf(file), data, size, offset);
}

int writeFile(sqlite3_file* file, void const* data, int size, sqlite3_int64 offset) {
    if (errorStrikes())
        return SQLITE_IOERR_WRITE;
    if (fault.strikes(FaultKind::StorageFull))
        return SQLITE_FULL;
    if (fault.strikes(FaultKind::Kill)) {
        methodsOf(file)->xWrite(realOf(file), data, size / 2, offset);
        raise(SIGKILL);
    }
    return methodsOf(file)->xWrite(realOf(file), data, size, offset);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    killIfStruck();
    return errorStrikes() ? SQLITE_IOERR_TRUNCATE : methodsOf(file)->xTruncate(realOf(file), size);
}

// A killed process loses nothing that it has written, so nothing has to reach the disk.
int syncFile(sqlite3_file*, int) {
    killIfStruck();
    return errorStrikes() ? SQLITE_IOERR_FSYNC : SQLITE_OK;
}

int fileSize(sqlite3_file* file, sqlite3_int64* size) {
    return errorStrikes() ? SQLITE_IOERR_FSTAT : methodsOf(file)->xFileSize(realOf(file), size);
}

int lockFile(sqlite3_file* file, int level) {
    if (errorStrikes())
        return SQLITE_IOERR_LOCK;
    return fault.strikes(FaultKind::StorageBusy) ? SQLITE_BUSY
                                                 : methodsOf(file)->xLock(realOf(file), level);
}

int unlockFile(sqlite3_file* file, int level) {
    return methodsOf(file)->xUnlock(realOf(file), level);
}

int checkReservedLock(sqlite3_file* file, int* isReserved) {
    return errorStrikes() ? SQLITE_IOERR_CHECKRESERVEDLOCK
                          : methodsOf(file)->xCheckReservedLock(realOf(file), isReserved);
}

int controlFile(sqlite3_file* file, int operation, void* argument) {
    return methodsOf(file)->xFileControl(realOf(file), operation, argument);
}

int sectorSize(sqlite3_file* file) { return methodsOf(file)->xSectorSize(realOf(file)); }

int characteristics(sqlite3_file* file) {
    return methodsOf(file)->xDeviceCharacteristics(realOf(file));
}

// Version 1: without shared memory and memory maps, which would bypass the faults.
sqlite3_io_methods const kMethods = {
    1,          closeFile,         readFile,    writeFile,  truncateFile,    syncFile, fileSize,
    lockFile,   unlockFile,        checkReservedLock,       controlFile,     sectorSize,
    characteristics, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};

int openFile(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    file->pMethods = nullptr;
    if (errorStrikes())
        return SQLITE_CANTOPEN;
    int const code = real->xOpen(real, name, realOf(file), flags, outFlags);
    if (realOf(file)->pMethods != nullptr)
        file->pMethods = &kMethods;
    return code;
}

int deleteFile(sqlite3_vfs*, const char* name, int) {
    killIfStruck();
    return errorStrikes() ? SQLITE_IOERR_DELETE : real->xDelete(real, name, 0);
}

int accessFile(sqlite3_vfs*, const char* name, int flags, int* result) {
    return errorStrikes() ? SQLITE_IOERR_ACCESS : real->xAccess(real, name, flags, result);
}

int fullPath(sqlite3_vfs*, const char* name, int size, char* path) {
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
        layer.szOsFile += static_cast<int>(sizeof(File));
        layer.xOpen = openFile;
        layer.xDelete = deleteFile;
        layer.xAccess = accessFile;
        layer.xFullPathname = fullPath;
        sqlite3_vfs_register(&layer, 1);
    }
    layer.xSleep = realTime ? real->xSleep : doNotSleep;
}

}  // namespace storage
