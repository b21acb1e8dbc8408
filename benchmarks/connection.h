// A connection of a benchmark's own, closed at the end of its scope.
#ifndef BENCHMARKS_CONNECTION_H
#define BENCHMARKS_CONNECTION_H

#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace benchmarks {

using RowCallback = int (*)(void*, int, char**, char**);

// Throws std::runtime_error unless `code` is `wanted`: a statement that fails must not pass for a
// fast one.
inline void expectCode(sqlite3* connection, int code, int wanted, std::string const& what) {
    if (code != wanted)
        throw std::runtime_error(what + ": " + sqlite3_errmsg(connection));
}

class Connection {
  public:
    // Nothing waits for the disk: that would take the same time under whatever is compared.
    explicit Connection(std::filesystem::path const& file) {
        sqlite3* opened = nullptr;
        int const code = sqlite3_open(file.c_str(), &opened);
        handle_.reset(opened);
        expectCode(opened, code, SQLITE_OK, file);
        execute("PRAGMA synchronous = OFF");
    }

    void execute(std::string const& sql, RowCallback callback = nullptr,
                 void* context = nullptr) const {
        int const code = sqlite3_exec(handle_.get(), sql.c_str(), callback, context, nullptr);
        expectCode(handle_.get(), code, SQLITE_OK, sql);
    }

    sqlite3* get() const { return handle_.get(); }

  private:
    struct Close {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };
    std::unique_ptr<sqlite3, Close> handle_;
};

}  // namespace benchmarks

#endif
