#include <ZeltoHost/Storage/DirectoryIdentity.h>

#include <ZeltoHost/Storage/AccountFileInternal.h>
#include <ZeltoHost/Storage/AccountSchemaInternal.h>
#include <ZeltoHost/Storage/DirectoryIdentityInternal.h>

#include <filesystem>
#include <system_error>

namespace zelto {

namespace {

struct IdentityRow {
    DirectoryIdentity identity;
    std::string path; // of the directory when the row was written; empty at first
};

Result<IdentityRow, StorageError> readRow(SQLiteConnection& connection) {
    auto statement = connection.prepare("SELECT identity, path, had_accounts FROM directory");
    if (!statement) {
        return failure(statement.error());
    }
    const auto row = statement->step();
    if (!row) {
        return failure(row.error());
    }
    if (!*row) {
        return failure(
            StorageError{StorageErrorCode::damaged, connection.path(), "the directory has no identity"});
    }
    return IdentityRow{{statement->text(0), statement->integer(2) != 0}, statement->text(1)};
}

std::string directoryOf(const SQLiteConnection& connection) {
    std::error_code error;
    const auto directory = connection.path().parent_path();
    const auto whole = std::filesystem::canonical(directory, error);
    return (error ? directory : whole).string();
}

// Whether another directory than this one has the identity still.
bool isOfAnother(const IdentityRow& row, const std::string& directory) {
    std::error_code error;
    if (row.path.empty() || std::filesystem::equivalent(row.path, directory, error) || error) {
        return false;
    }
    const auto other = readAccountFile(row.path);
    const auto version = other ? other->number("PRAGMA user_version") : 0;
    if (!version || *version < versionWithIdentity) {
        return false;
    }
    const auto otherRow = readRow(*other);
    return otherRow && otherRow->identity.text == row.identity.text;
}

Result<void, StorageError> makeOwn(SQLiteConnection& connection) {
    return connection.execute("UPDATE directory SET identity = lower(hex(randomblob(16))), had_accounts = 0");
}

Result<void, StorageError> notePath(SQLiteConnection& connection, const std::string& directory) {
    auto statement = connection.prepare("UPDATE directory SET path = ?");
    return statement ? statement->bind(1, directory).run() : failure(statement.error());
}

} // namespace

Result<DirectoryIdentity, StorageError> directoryIdentity(SQLiteConnection& connection) {
    const auto version = connection.number("PRAGMA user_version");
    if (!version) {
        return failure(version.error());
    }
    if (*version < versionWithIdentity) {
        return DirectoryIdentity();
    }
    const auto directory = directoryOf(connection);
    auto row = readRow(connection);
    if (!row) {
        return failure(row.error());
    }
    if (row->path == directory) {
        return row->identity;
    }
    const auto updated = connection.transaction([&]() -> Result<void, StorageError> {
        // Another process may have been faster.
        row = readRow(connection);
        if (!row || row->path == directory) {
            return row ? Result<void, StorageError>() : failure(row.error());
        }
        if (isOfAnother(*row, directory)) {
            if (auto made = makeOwn(connection); !made) {
                return made;
            }
        }
        return notePath(connection, directory);
    });
    // A directory that was moved to a disk that cannot be written to is the same one.
    if (!updated && (!row || isOfAnother(*row, directory))) {
        return failure(updated.error());
    }
    row = readRow(connection);
    return row ? Result<DirectoryIdentity, StorageError>(row->identity) : failure(row.error());
}

} // namespace zelto
