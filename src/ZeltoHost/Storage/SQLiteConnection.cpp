#include <ZeltoHost/Storage/SQLiteConnectionInternal.h>

#include <Platform/FileDescriptor.h>
#include <Platform/PercentEncoding.h>

#include <cerrno>
#include <random>
#include <thread>

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace zelto {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds maximumWait{5000};

// Time in which this process did not run must not count as waiting.
constexpr int minimumAttempts = 1000;

// SQLite reads "?" and "#" of a URI as the ends of its path.
std::string uriOf(const std::filesystem::path& path, SQLiteConnection::Access access) {
    return "file:" + percentEncodeBytes(path.native(), AllowedCharacters::path) +
           (access == SQLiteConnection::Access::immutable ? "?immutable=1" : "");
}

StorageErrorCode codeOf(int result) {
    switch (result & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL: // other processes were faster too many times
        return StorageErrorCode::busy;
    case SQLITE_FULL:
        return StorageErrorCode::noSpace;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_ERROR: // our statements are correct, so the tables are not ours
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
        return StorageErrorCode::damaged;
    default:
        return StorageErrorCode::cannotAccess;
    }
}

// Whether the file could not be opened or written for a reason of the system's, which SQLite's text leaves
// out.
bool isOfSystem(int result) {
    const int primary = result & 0xff;
    return primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN || primary == SQLITE_READONLY;
}

// Why no file can be made and filled in the folder; 0 if one can, or if that cannot be tried.
int refusalToWriteIn(const std::filesystem::path& folder) {
    const FileDescriptor tried(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (!tried) {
        return errno == EOPNOTSUPP || errno == EISDIR ? 0 : errno;
    }
    constexpr char page[4096] = {};
    for (std::size_t written = 0; written < sizeof page;) {
        const auto count = ::write(tried.number(), page, sizeof page - written);
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return 0;
}

// After a refusal SQLite goes on to other calls, which may leave an error number of their own.
int systemNumberOf(sqlite3* database, const std::filesystem::path& file) {
    const int last = sqlite3_system_errno(database);
    if (last == ENOSPC || last == EDQUOT || last == EROFS) {
        return last;
    }
    if (const int refusal = refusalToWriteIn(file.parent_path() / "."); refusal != 0) {
        return refusal;
    }
    return ::access(file.c_str(), W_OK) != 0 ? errno : last;
}

} // namespace

void SQLiteStatement::Finalizer::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

SQLiteStatement& SQLiteStatement::bind(int parameter, std::int64_t value) {
    sqlite3_bind_int64(statement_.get(), parameter, value);
    return *this;
}

SQLiteStatement& SQLiteStatement::bind(int parameter, std::string_view text) {
    sqlite3_bind_text64(statement_.get(), parameter, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
    return *this;
}

Result<bool, StorageError> SQLiteStatement::step() {
    switch (sqlite3_step(statement_.get())) {
    case SQLITE_ROW:
        return true;
    case SQLITE_DONE:
        return false;
    default:
        return failure(connection_->error());
    }
}

Result<void, StorageError> SQLiteStatement::run() {
    for (;;) {
        const auto row = step();
        if (!row) {
            return failure(row.error());
        }
        if (!*row) {
            return {};
        }
    }
}

std::int64_t SQLiteStatement::integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

std::string SQLiteStatement::text(int column) const {
    const auto* text = sqlite3_column_text(statement_.get(), column);
    const auto size = sqlite3_column_bytes(statement_.get(), column);
    return text == nullptr ? std::string()
                           : std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
}

void SQLiteConnection::Closer::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}

// SQLite's own waiting grows to steps of a tenth of a second: a process among many that write without pause
// would hardly ever find the lock free.
int SQLiteConnection::waitForOthers(void* connection, int calls) {
    auto& self = *static_cast<SQLiteConnection*>(connection);
    const auto now = std::chrono::steady_clock::now();
    if (calls == 0) {
        self.waitingSince_ = now;
    }
    if (now - self.waitingSince_ >= maximumWait && calls >= minimumAttempts) {
        return 0;
    }
    thread_local std::minstd_rand random(std::random_device{}());
    std::this_thread::sleep_for(std::chrono::microseconds(500 + random() % 3500));
    return 1;
}

Result<std::unique_ptr<SQLiteConnection>, StorageError>
SQLiteConnection::open(const std::filesystem::path& path, Access access) {
    std::unique_ptr<SQLiteConnection> connection(new SQLiteConnection(path));
    sqlite3* database = nullptr;
    const int flags = (access == Access::readWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY) |
                      SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    const int opened = sqlite3_open_v2(uriOf(path, access).c_str(), &database, flags, nullptr);
    connection->database_.reset(database);
    if (opened != SQLITE_OK) {
        return failure(connection->error());
    }
    sqlite3_busy_handler(database, &waitForOthers, connection.get());
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    return connection;
}

Result<SQLiteStatement, StorageError> SQLiteConnection::prepare(std::string_view sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database_.get(), sql.data(), static_cast<int>(sql.size()), &statement, nullptr) !=
        SQLITE_OK) {
        return failure(error());
    }
    return SQLiteStatement(*this, statement);
}

Result<void, StorageError> SQLiteConnection::execute(const std::string& sql) {
    if (sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        return failure(error());
    }
    return {};
}

Result<std::int64_t, StorageError> SQLiteConnection::number(std::string_view sql) {
    auto statement = prepare(sql);
    if (!statement) {
        return failure(statement.error());
    }
    const auto row = statement->step();
    if (!row) {
        return failure(row.error());
    }
    return *row ? statement->integer(0) : 0;
}

bool SQLiteConnection::hasMoved() const {
    int moved = 0;
    return sqlite3_file_control(database_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK &&
           moved != 0;
}

StorageError SQLiteConnection::error() const {
    if (!database_) {
        return {StorageErrorCode::cannotAccess, path_, sqlite3_errstr(SQLITE_NOMEM)};
    }
    const int result = sqlite3_extended_errcode(database_.get());
    const int systemNumber = isOfSystem(result) ? systemNumberOf(database_.get(), path_) : 0;
    if (systemNumber != 0) {
        return StorageError::fromSystem(systemNumber, path_);
    }
    return {codeOf(result), path_, sqlite3_errmsg(database_.get())};
}

} // namespace zelto
