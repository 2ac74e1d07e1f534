#pragma once

// For sources only.

#include <ZeltoHost/Storage/StorageError.h>

#include <Platform/Result.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace zelto {

class SQLiteConnection;

// One prepared statement. Parameters are counted from 1, columns from 0. Must not outlive its connection.
class SQLiteStatement {
  public:
    SQLiteStatement& bind(int parameter, std::int64_t value);
    SQLiteStatement& bind(int parameter, std::string_view text); // the text must live until the last step

    // Whether there is a row.
    Result<bool, StorageError> step();

    // For statements without rows, or with rows that are not needed.
    Result<void, StorageError> run();

    std::int64_t integer(int column) const;
    std::string text(int column) const;

  private:
    friend class SQLiteConnection;

    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };

    SQLiteStatement(SQLiteConnection& connection, sqlite3_stmt* statement)
        : connection_(&connection), statement_(statement) {}

    SQLiteConnection* connection_;
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

// One connection to a database file. One thread at a time. Waits up to five seconds for other processes.
class SQLiteConnection {
  public:
    enum class Access {
        readWrite,
        readOnly,  // needs the files beside a log to be there already
        immutable, // takes the file as it is, without its log; nobody else may write to it
    };

    // The file must exist.
    static Result<std::unique_ptr<SQLiteConnection>, StorageError> open(const std::filesystem::path& path,
                                                                        Access access = Access::readWrite);

    SQLiteConnection(const SQLiteConnection&) = delete;
    SQLiteConnection& operator=(const SQLiteConnection&) = delete;

    Result<SQLiteStatement, StorageError> prepare(std::string_view sql);

    // One or several statements; rows are ignored.
    Result<void, StorageError> execute(const std::string& sql);

    // The first column of the first row, as a number.
    Result<std::int64_t, StorageError> number(std::string_view sql);

    // Everything is done, or nothing, even if the body throws.
    template <class F> Result<void, StorageError> transaction(F&& body) {
        if (auto begun = execute("BEGIN IMMEDIATE"); !begun) {
            return begun;
        }
        Rollback rollback{this};
        Result<void, StorageError> done = body();
        if (done) {
            done = execute("COMMIT");
        }
        if (done) {
            rollback.connection = nullptr;
        }
        return done;
    }

    // Whether the open file is no longer the one at its path.
    bool hasMoved() const;

    const std::filesystem::path& path() const { return path_; }

    // Of the previous call.
    StorageError error() const;

  private:
    struct Rollback {
        ~Rollback() {
            if (connection) {
                (void)connection->execute("ROLLBACK");
            }
        }

        SQLiteConnection* connection;
    };

    struct Closer {
        void operator()(sqlite3* database) const;
    };

    explicit SQLiteConnection(std::filesystem::path path) : path_(std::move(path)) {}

    static int waitForOthers(void* connection, int calls);

    std::filesystem::path path_;
    std::chrono::steady_clock::time_point waitingSince_;
    std::unique_ptr<sqlite3, Closer> database_;
};

} // namespace zelto
