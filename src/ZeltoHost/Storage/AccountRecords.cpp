#include <ZeltoHost/Storage/AccountRecordsInternal.h>

#include <ZeltoHost/Storage/AccountSchemaInternal.h>

namespace zelto {

namespace {

using OptionalAccount = std::optional<ServiceAccountConfiguration>;

std::string identityOf(const ServiceAccountConfiguration& account) {
    const auto type = std::to_string(rawValue(account.serviceType()));
    return account.userName() ? type + "+" + *account.userName() : type;
}

Result<std::string, StorageError> encoded(const SQLiteConnection& connection,
                                          const ServiceAccountConfiguration& account) {
    auto record = JSONEncoder().encode(account);
    if (!record) {
        return failure(
            StorageError{StorageErrorCode::notEncodable, connection.path(), record.error().message()});
    }
    return std::move(*record);
}

// The statement's first column must be the records.
Result<ServiceAccountConfiguration, StorageError> decoded(const SQLiteConnection& connection,
                                                          const SQLiteStatement& row) {
    auto account = JSONDecoder().decode<ServiceAccountConfiguration>(row.text(0));
    if (!account) {
        return failure(
            StorageError{StorageErrorCode::recordDamaged, connection.path(), account.error().message()});
    }
    return std::move(*account);
}

Result<OptionalAccount, StorageError> firstAccount(const SQLiteConnection& connection,
                                                   SQLiteStatement& statement) {
    const auto row = statement.step();
    if (!row) {
        return failure(row.error());
    }
    if (!*row) {
        return OptionalAccount();
    }
    auto account = decoded(connection, statement);
    return account ? Result<OptionalAccount, StorageError>(std::move(*account)) : failure(account.error());
}

} // namespace

Result<void, StorageError> storeAccount(SQLiteConnection& connection,
                                        const ServiceAccountConfiguration& account, bool isOfSandbox) {
    const auto record = encoded(connection, account);
    if (!record) {
        return failure(record.error());
    }
    const auto identity = identityOf(account);
    const auto identifier = account.identifier();
    auto statement =
        connection.prepare("INSERT INTO accounts (identity, identifier, record, sandbox) VALUES (?, ?, ?, ?) "
                           "ON CONFLICT (identity) DO UPDATE SET record = excluded.record");
    return statement ? statement->bind(1, identity)
                           .bind(2, identifier)
                           .bind(3, *record)
                           .bind(4, isOfSandbox ? 1 : 0)
                           .run()
                     : failure(statement.error());
}

Result<AccountMarks, StorageError> accountMarks(SQLiteConnection& connection,
                                                const ServiceAccountConfiguration& account) {
    const auto version = connection.number("PRAGMA user_version");
    if (!version || *version < versionWithMarks) {
        return version ? Result<AccountMarks, StorageError>(AccountMarks()) : failure(version.error());
    }
    const auto identity = identityOf(account);
    auto statement =
        connection.prepare("SELECT sandbox, ifnull(key_chain, '') FROM accounts WHERE identity = ?");
    if (!statement) {
        return failure(statement.error());
    }
    const auto row = statement->bind(1, identity).step();
    if (!row) {
        return failure(row.error());
    }
    AccountMarks marks;
    if (*row) {
        const auto keyChain = statement->text(1);
        marks = {statement->integer(0) != 0, keyChain.empty() ? std::nullopt : std::optional(keyChain)};
    }
    return marks;
}

Result<void, StorageError> markAccount(SQLiteConnection& connection,
                                       const ServiceAccountConfiguration& account,
                                       const AccountMarks& marks) {
    const auto identity = identityOf(account);
    const auto keyChain = marks.keyChain.value_or("");
    auto statement =
        connection.prepare("UPDATE accounts SET sandbox = ?, key_chain = nullif(?, '') WHERE identity = ?");
    return statement ? statement->bind(1, marks.isOfSandbox ? 1 : 0).bind(2, keyChain).bind(3, identity).run()
                     : failure(statement.error());
}

Result<void, StorageError> deleteAccount(SQLiteConnection& connection,
                                         const ServiceAccountConfiguration& account) {
    const auto identity = identityOf(account);
    return connection.transaction([&]() -> Result<void, StorageError> {
        for (const auto* sql :
             {"DELETE FROM accounts WHERE identity = ?", "DELETE FROM last_used WHERE identity = ?"}) {
            auto statement = connection.prepare(sql);
            if (!statement) {
                return failure(statement.error());
            }
            if (auto done = statement->bind(1, identity).run(); !done) {
                return done;
            }
        }
        return {};
    });
}

Result<OptionalAccount, StorageError> accountWithIdentifier(SQLiteConnection& connection,
                                                            const std::string& identifier) {
    auto statement = connection.prepare("SELECT record FROM accounts WHERE identifier = ?");
    if (!statement) {
        return failure(statement.error());
    }
    statement->bind(1, identifier);
    return firstAccount(connection, *statement);
}

Result<void, StorageError> rememberLastUsed(SQLiteConnection& connection, ServiceType type,
                                            const OptionalAccount& account) {
    if (!account) {
        auto statement = connection.prepare("DELETE FROM last_used WHERE service_type = ?");
        return statement ? statement->bind(1, rawValue(type)).run() : failure(statement.error());
    }
    const auto record = encoded(connection, *account);
    if (!record) {
        return failure(record.error());
    }
    const auto identity = identityOf(*account);
    auto statement = connection.prepare(
        "INSERT OR REPLACE INTO last_used (service_type, identity, record) VALUES (?, ?, ?)");
    return statement ? statement->bind(1, rawValue(type)).bind(2, identity).bind(3, *record).run()
                     : failure(statement.error());
}

Result<OptionalAccount, StorageError> lastUsedAccount(SQLiteConnection& connection, ServiceType type) {
    auto statement = connection.prepare("SELECT ifnull(accounts.record, last_used.record) FROM last_used "
                                        "LEFT JOIN accounts USING (identity) WHERE service_type = ?");
    if (!statement) {
        return failure(statement.error());
    }
    statement->bind(1, rawValue(type));
    return firstAccount(connection, *statement);
}

Result<StoredAccounts, StorageError> allAccounts(SQLiteConnection& connection) {
    auto statement = connection.prepare("SELECT record FROM accounts ORDER BY position");
    if (!statement) {
        return failure(statement.error());
    }
    StoredAccounts stored;
    for (;;) {
        const auto row = statement->step();
        if (!row) {
            return failure(row.error());
        }
        if (!*row) {
            return stored;
        }
        if (auto account = decoded(connection, *statement)) {
            stored.accounts.push_back(std::move(*account));
        } else {
            stored.unreadable.push_back(account.error());
        }
    }
}

} // namespace zelto
