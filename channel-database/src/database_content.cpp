#include <channel-database/database_content.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace channel_database {
namespace {

constexpr int kBusyTimeoutMilliseconds = 10000;
constexpr int kDefaultPageSize = 4096;
constexpr std::string_view kHeader("SQLite format 3\0", 16);

struct CloseConnection {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;

struct FreeMemory {
    void operator()(unsigned char* memory) const { sqlite3_free(memory); }
};

[[noreturn]] void fail(std::string const& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

// Closes the descriptor, and removes the name that the file has until it is linked into place.
class UnlinkedFile {
  public:
    explicit UnlinkedFile(std::string const& path) {
        std::size_t const slash = path.rfind('/');
        folder_ = slash == std::string::npos ? "." : path.substr(0, slash + 1);
        descriptor_ = open(folder_.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
        name_ = "/proc/self/fd/" + std::to_string(descriptor_);
        isNamed_ = descriptor_ < 0 || access(name_.c_str(), F_OK) != 0;
        if (!isNamed_)
            return;
        if (descriptor_ >= 0)
            close(descriptor_);
        name_ = path + ".part-" + std::to_string(getpid());
        descriptor_ = open(name_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
        if (descriptor_ < 0)
            fail("cannot make " + path);
    }
    ~UnlinkedFile() {
        if (isNamed_)
            unlink(name_.c_str());
        close(descriptor_);
    }
    UnlinkedFile(UnlinkedFile const&) = delete;
    UnlinkedFile& operator=(UnlinkedFile const&) = delete;

    void write(unsigned char const* bytes, std::size_t count, std::string const& path) {
        while (count > 0) {
            ssize_t const written = ::write(descriptor_, bytes, count);
            if (written < 0 && errno != EINTR)
                fail("cannot write " + path);
            if (written > 0) {
                bytes += written;
                count -= static_cast<std::size_t>(written);
            }
        }
        if (fsync(descriptor_) != 0)
            fail("cannot write " + path);
    }

    void linkTo(std::string const& path) {
        if (linkat(AT_FDCWD, name_.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) != 0)
            fail("cannot make " + path);
        int const folder = open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder >= 0) {
            fsync(folder);  // the name; where a folder cannot be flushed, nothing can be done
            close(folder);
        }
    }

  private:
    std::string folder_;
    std::string name_;
    int descriptor_ = -1;
    bool isNamed_ = false;
};

// The first read settles what a process that died has left: its journal or write-ahead log.
Connection openSettled(std::string const& path) {
    sqlite3* opened = nullptr;
    int const code = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    Connection connection(opened);
    if (code != SQLITE_OK)
        throw std::runtime_error("cannot open " + path + ": " + sqlite3_errmsg(opened));
    sqlite3_busy_timeout(opened, kBusyTimeoutMilliseconds);
    if (sqlite3_exec(opened, "PRAGMA schema_version", nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error("cannot read " + path + ": " + sqlite3_errmsg(opened));
    return connection;
}

}  // namespace

void checkReplaceable(std::string const& path) {
    struct stat file;
    if (stat(path.c_str(), &file) != 0)
        fail("cannot replace " + path);
    if (!S_ISREG(file.st_mode))
        throw std::runtime_error(path + " is no regular file; it is left as it is");
    if (file.st_size == 0)
        return;
    char header[kHeader.size()] = {};
    std::ifstream(path, std::ios::binary).read(header, sizeof header);
    if (std::string_view(header, sizeof header) != kHeader)
        throw std::runtime_error(path + " is no SQLite database; it is left as it is");
}

int pageSize(std::string const& path) {
    Connection const connection = openSettled(path);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(connection.get(), "PRAGMA page_size", -1, &statement, nullptr);
    int const size =
        sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int(statement, 0) : kDefaultPageSize;
    sqlite3_finalize(statement);
    return size;
}

void replaceContent(sqlite3* source, std::string const& path) {
    Connection const target = openSettled(path);
    sqlite3_backup* const backup = sqlite3_backup_init(target.get(), "main", source, "main");
    if (backup == nullptr)
        throw std::runtime_error("cannot write " + path + ": " + sqlite3_errmsg(target.get()));
    int const step = sqlite3_backup_step(backup, -1);
    int const end = sqlite3_backup_finish(backup);
    if (step == SQLITE_BUSY || step == SQLITE_LOCKED)
        throw std::runtime_error(path + " is locked by another process; nothing is written");
    if (step != SQLITE_DONE || end != SQLITE_OK)
        throw std::runtime_error("cannot write " + path + ": " +
                                 sqlite3_errstr(step != SQLITE_DONE ? step : end));
}

void writeNewFile(sqlite3* source, std::string const& path) {
    sqlite3_int64 size = 0;
    std::unique_ptr<unsigned char, FreeMemory> const image(
        sqlite3_serialize(source, "main", &size, 0));
    if (image == nullptr)
        throw std::runtime_error("cannot make " + path + ": " + sqlite3_errmsg(source));
    UnlinkedFile file(path);
    file.write(image.get(), static_cast<std::size_t>(size), path);
    file.linkTo(path);
}

void copyToNewFile(std::string const& path, std::string const& file) {
    writeNewFile(openSettled(path).get(), file);
}

}  // namespace channel_database
