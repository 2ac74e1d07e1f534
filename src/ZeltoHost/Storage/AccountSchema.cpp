#include <ZeltoHost/Storage/AccountSchemaInternal.h>

#include <array>

namespace zelto {

namespace {

// accounts.identity is the service type's raw value, followed by "+" and the user name if there is one. It
// contains what an account's identifier does, but is also constant for the type whose identifiers are random.
// last_used keeps the record as well as the identity, for an account that was used without having been
// stored.
constexpr std::array steps{
    R"(CREATE TABLE accounts (
           position INTEGER PRIMARY KEY,
           identity TEXT NOT NULL UNIQUE,
           identifier TEXT NOT NULL UNIQUE,
           record TEXT NOT NULL
       ) STRICT;
       CREATE TABLE last_used (
           service_type INTEGER PRIMARY KEY,
           identity TEXT NOT NULL,
           record TEXT NOT NULL
       ) STRICT;)",
    // The marks of an account, which are no part of its record; see AccountMarks.
    R"(ALTER TABLE accounts ADD COLUMN key_chain TEXT;
       ALTER TABLE accounts ADD COLUMN sandbox INTEGER NOT NULL DEFAULT 0;)",
    // One row; see DirectoryIdentity.
    R"(CREATE TABLE directory (
           identity TEXT NOT NULL,
           path TEXT NOT NULL,
           had_accounts INTEGER NOT NULL
       ) STRICT;
       INSERT INTO directory (identity, path, had_accounts)
           SELECT lower(hex(randomblob(16))), '', EXISTS (SELECT 1 FROM accounts);)",
};

} // namespace

std::span<const char* const> accountSchemaSteps() {
    return steps;
}

Result<void, StorageError> migrate(SQLiteConnection& connection, std::span<const char* const> all) {
    const auto known = static_cast<std::int64_t>(all.size());
    const auto before = connection.number("PRAGMA user_version");
    if (!before || *before == known) {
        return before ? Result<void, StorageError>() : failure(before.error());
    }
    return connection.transaction([&]() -> Result<void, StorageError> {
        // Another process may have been faster.
        const auto version = connection.number("PRAGMA user_version");
        if (!version) {
            return failure(version.error());
        }
        if (*version < 0) {
            return failure(StorageError{StorageErrorCode::damaged, connection.path(), "impossible format"});
        }
        if (*version > known) {
            return failure(StorageError{StorageErrorCode::newerVersion, connection.path(),
                                        "format " + std::to_string(*version) + ", known up to " +
                                            std::to_string(known)});
        }
        for (auto next = *version; next < known; ++next) {
            const auto step = connection.execute(all[static_cast<std::size_t>(next)]);
            if (!step) {
                return step;
            }
        }
        return connection.execute("PRAGMA user_version = " + std::to_string(known));
    });
}

} // namespace zelto
