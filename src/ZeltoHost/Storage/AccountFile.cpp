#include <ZeltoHost/Storage/AccountFileInternal.h>

#include <ZeltoHost/Storage/AccountSchemaInternal.h>

#include <Platform/FileManager.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto {

namespace {

using std::filesystem::path;
using StorageResult = Result<void, StorageError>;

constexpr mode_t fileMode = 0600;

constexpr std::string_view unfinishedPrefix = ".zelto-new-";

// The folder where a new file is made; removed with its content in the end.
class UnfinishedFile {
  public:
    static Result<UnfinishedFile, StorageError> make(const path& directory) {
        auto name = (directory / (std::string(unfinishedPrefix) + "XXXXXX")).string();
        if (::mkdtemp(name.data()) == nullptr || ::chmod(name.c_str(), 0700) != 0) {
            return failure(StorageError::fromSystem(errno, directory));
        }
        return UnfinishedFile(name);
    }

    UnfinishedFile(UnfinishedFile&& other) noexcept : folder_(std::exchange(other.folder_, {})) {}

    UnfinishedFile& operator=(UnfinishedFile&&) = delete;

    ~UnfinishedFile() {
        std::error_code ignored;
        if (!folder_.empty()) {
            std::filesystem::remove_all(folder_, ignored);
        }
    }

    path file() const { return folder_ / accountFileName; }

  private:
    explicit UnfinishedFile(path folder) : folder_(std::move(folder)) {}

    path folder_;
};

// Removes what a process left that was killed while it made the file. A recent one may still be in use.
void removeLeftovers(const path& directory) {
    std::error_code ignored;
    const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::minutes(1);
    for (const auto& entry : std::filesystem::directory_iterator(directory, ignored)) {
        if (entry.path().filename().native().starts_with(unfinishedPrefix) &&
            std::filesystem::last_write_time(entry.path(), ignored) < old) {
            std::filesystem::remove_all(entry.path(), ignored);
        }
    }
}

StorageResult fillNewFile(const path& file) {
    {
        const auto created = FileManager::createFile(file, fileMode);
        if (!created || ::fchmod(created->number(), fileMode) != 0) {
            return failure(StorageError::fromSystem(created ? errno : created.error().systemNumber, file));
        }
    }
    auto connection = SQLiteConnection::open(file);
    if (!connection) {
        return failure(connection.error());
    }
    // Filled without a log, whose content could not be written back at the closing when the disk is full. The
    // log is switched on at last, since processes that did so at once would be in each other's way.
    auto done = (*connection)
                    ->execute("PRAGMA synchronous = FULL; PRAGMA application_id = " +
                              std::to_string(accountApplicationId));
    if (done) {
        done = migrate(**connection, accountSchemaSteps());
    }
    return done ? (*connection)->execute("PRAGMA journal_mode = WAL") : done;
}

// Moves it to its place unless another process was faster.
StorageResult publish(const path& from, const path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) != 0) {
        const bool isUnknown = errno == EINVAL || errno == ENOSYS;
        if (isUnknown && ::link(from.c_str(), to.c_str()) == 0) {
            errno = EEXIST;
        }
        if (errno != EEXIST) {
            return failure(StorageError::fromSystem(errno, to));
        }
    }
    const FileDescriptor directory(::open(to.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!directory || ::fsync(directory.number()) != 0) {
        return failure(StorageError::fromSystem(errno, to.parent_path()));
    }
    return {};
}

StorageResult createIfMissing(const path& directory, const path& file) {
    // In this order, since the log is created after the file.
    const path log = file.native() + "-wal";
    const bool hasLog = ::access(log.c_str(), F_OK) == 0;
    if (::access(file.c_str(), F_OK) == 0) {
        return {};
    }
    if (errno != ENOENT) {
        return failure(StorageError::fromSystem(errno, file));
    }
    if (hasLog) {
        return failure(StorageError{StorageErrorCode::damaged, file,
                                    "it is missing, but " + log.filename().string() + " is there"});
    }
    const auto unfinished = UnfinishedFile::make(directory);
    if (!unfinished) {
        return failure(unfinished.error());
    }
    auto done = fillNewFile(unfinished->file());
    if (done) {
        done = publish(unfinished->file(), file);
    }
    if (!done && done.error().path == unfinished->file()) {
        done.error().path = file;
    }
    return done;
}

// By its path, since closing a descriptor of the file would release the locks that this process holds on it
// through another connection.
StorageResult checkRights(const path& file) {
    struct stat status {};

    if (::stat(file.c_str(), &status) != 0) {
        return failure(StorageError::fromSystem(errno, file));
    }
    if (status.st_uid != ::geteuid()) {
        return failure(StorageError{StorageErrorCode::foreignOwner, file, {}});
    }
    if (!S_ISREG(status.st_mode) || status.st_size == 0) {
        return failure(StorageError{StorageErrorCode::damaged, file,
                                    S_ISREG(status.st_mode) ? "it is empty" : "it is no regular file"});
    }
    if ((status.st_mode & 0777) != fileMode && ::chmod(file.c_str(), fileMode) != 0) {
        return failure(StorageError::fromSystem(errno, file));
    }
    return {};
}

StorageResult checkContent(SQLiteConnection& connection) {
    const auto application = connection.number("PRAGMA application_id");
    const auto version = connection.number("PRAGMA user_version");
    if (!application || !version) {
        return failure(application ? version.error() : application.error());
    }
    if (*application != accountApplicationId || *version < 1) {
        return failure(StorageError{StorageErrorCode::damaged, connection.path(), "another program's file"});
    }
    auto check = connection.prepare("PRAGMA quick_check(1)");
    if (!check) {
        return failure(check.error());
    }
    const auto row = check->step();
    if (!row) {
        return failure(row.error());
    }
    auto verdict = check->text(0);
    if (verdict != "ok") {
        std::ranges::replace(verdict, '\n', ' ');
        return failure(StorageError{StorageErrorCode::damaged, connection.path(), std::move(verdict)});
    }
    return {};
}

// Of the version that the file has.
StorageResult checkTables(SQLiteConnection& connection) {
    const auto version = connection.number("PRAGMA user_version");
    if (!version) {
        return failure(version.error());
    }

    struct Row {
        std::int64_t firstVersion;
        const char* sql;
    };

    constexpr Row rows[] = {
        {1, "SELECT position, identity, identifier, record FROM accounts"},
        {1, "SELECT service_type, identity, record FROM last_used"},
        {versionWithMarks, "SELECT key_chain, sandbox FROM accounts"},
        {versionWithIdentity, "SELECT identity, path, had_accounts FROM directory"},
    };
    for (const auto& row : rows) {
        if (row.firstVersion > *version) {
            continue;
        }
        if (const auto statement = connection.prepare(row.sql); !statement) {
            return failure(statement.error());
        }
    }
    return {};
}

// Whether there may be more in the log than in the file.
bool hasLog(const path& file) {
    std::error_code error;
    const auto size = std::filesystem::file_size(file.native() + "-wal", error);
    return !error && size > 0;
}

} // namespace

Result<std::unique_ptr<SQLiteConnection>, StorageError> openAccountFile(const path& directory) {
    const auto file = directory / accountFileName;
    removeLeftovers(directory);
    StorageResult done = createIfMissing(directory, file);
    if (done) {
        done = checkRights(file);
    }
    if (!done) {
        return failure(done.error());
    }
    auto connection = SQLiteConnection::open(file);
    if (!connection) {
        return connection;
    }
    auto& database = **connection;
    done = checkContent(database);
    if (done) {
        done = database.execute(
            "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA cell_size_check = ON");
    }
    if (done) {
        done = migrate(database, accountSchemaSteps());
    }
    if (done) {
        done = checkTables(database);
    }
    if (!done) {
        return failure(done.error());
    }
    return connection;
}

std::unique_ptr<SQLiteConnection> readAccountFile(const path& directory) {
    using Access = SQLiteConnection::Access;
    const auto file = directory / accountFileName;
    for (const auto access : {Access::readOnly, Access::immutable}) {
        if (access == Access::immutable && hasLog(file)) {
            break;
        }
        auto connection = SQLiteConnection::open(file, access);
        if (connection && checkContent(**connection) && checkTables(**connection)) {
            return std::move(*connection);
        }
    }
    return nullptr;
}

} // namespace zelto
